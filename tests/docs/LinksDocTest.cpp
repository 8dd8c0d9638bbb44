// VELL: data-driven hierarchical state machines.
// tests/docs/LinksDocTest.cpp: the links of the pages lead somewhere.
#include "tests/docs/Pages.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <string>

namespace vell::test
{
namespace
{

constexpr std::size_t kMinimum = 25;

/// The anchor that readers' programs give a heading.
std::string AnchorOf(const std::string& heading)
{
    std::string anchor;
    for (const char letter : heading.substr(heading.find(' ') + 1))
    {
        const auto byte = static_cast<unsigned char>(letter);
        if (std::isalnum(byte) != 0 || letter == '-' || letter == '_')
        {
            anchor += static_cast<char>(std::tolower(byte));
        }
        else if (letter == ' ')
        {
            anchor += '-';
        }
    }
    return anchor;
}

std::set<std::string> AnchorsOf(const std::string& page)
{
    std::set<std::string> anchors;
    for (const std::string& line : ReadProse(page))
    {
        if (line.rfind("#", 0) == 0)
        {
            anchors.insert(AnchorOf(line));
        }
    }
    return anchors;
}

/// Expects that what a link of `page` names is there.
void ExpectTarget(const std::string& page, const std::string& path, const std::string& anchor)
{
    const std::filesystem::path folder = std::filesystem::path(page).parent_path();
    const std::string target = path.empty() ? page : (folder / path).lexically_normal().string();
    EXPECT_TRUE(std::filesystem::exists(std::string(SourceDir()) + "/" + target))
        << page << " links " << target;
    if (!anchor.empty())
    {
        EXPECT_EQ(AnchorsOf(target).count(anchor), 1u)
            << page << " links " << target << "#" << anchor;
    }
}

} // namespace

TEST(Pages, LinkFilesAndHeadingsThatAreThere)
{
    const std::regex link("\\]\\(([^)#\\s]*)(?:#([^)\\s]*))?\\)");
    std::size_t count = 0;
    for (const std::string& page : PagePaths())
    {
        for (const std::string& line : ReadProse(page))
        {
            for (std::sregex_iterator match(line.begin(), line.end(), link), end; match != end;
                 ++match)
            {
                const std::string path = (*match)[1].str();
                if (path.find("://") == std::string::npos)
                {
                    ++count;
                    ExpectTarget(page, path, (*match)[2].str());
                }
            }
        }
    }
    EXPECT_GE(count, kMinimum);
}

} // namespace vell::test
