// VELL: data-driven hierarchical state machines.
// tests/docs/Pages.cpp: the pages of the documentation, as tests read them.
#include "tests/docs/Pages.h"

#include "tests/support/SourceDir.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace vell::test
{
namespace
{

bool IsFence(const std::string& line)
{
    return line.rfind("```", 0) == 0;
}

} // namespace

std::vector<std::string> PagePaths()
{
    std::vector<std::string> paths;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(SourceDir()) + "/docs"))
    {
        if (entry.path().extension() == ".md")
        {
            paths.push_back("docs/" + entry.path().filename().string());
        }
    }
    std::sort(paths.begin(), paths.end());
    paths.insert(paths.begin(), {"README.md", "CONTRIBUTING.md"});
    return paths;
}

TextLines ReadLines(const std::string& path)
{
    std::ifstream file(std::string(SourceDir()) + "/" + path);
    TextLines lines;
    for (std::string line; std::getline(file, line);)
    {
        lines.push_back(line);
    }
    return lines;
}

std::vector<CodeBlock> ReadBlocks(const std::string& page, const std::string& language)
{
    std::vector<CodeBlock> blocks;
    bool isInside = false;
    bool isWanted = false;
    std::size_t number = 0;
    for (const std::string& line : ReadLines(page))
    {
        ++number;
        if (IsFence(line))
        {
            isInside = !isInside;
            isWanted = isInside && line == "```" + language;
            if (isWanted)
            {
                blocks.push_back({page, number, {}});
            }
        }
        else if (isWanted)
        {
            blocks.back().lines.push_back(line);
        }
    }
    return blocks;
}

TextLines ReadProse(const std::string& page)
{
    TextLines prose;
    bool isInside = false;
    for (const std::string& line : ReadLines(page))
    {
        if (IsFence(line))
        {
            isInside = !isInside;
        }
        else if (!isInside)
        {
            prose.push_back(line);
        }
    }
    return prose;
}

} // namespace vell::test
