// VELL: data-driven hierarchical state machines.
// tests/docs/SnippetsDocTest.cpp: the C++ blocks of the pages stand in samples that run.
#include "tests/docs/Pages.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace vell::test
{
namespace
{

constexpr std::size_t kMinimumBlocks = 14;
constexpr std::size_t kMinimumSamples = 3;

/// The sources of the samples that the build turns into programs and runs as tests.
std::vector<TextLines> SampleSources()
{
    const TextLines build = ReadLines("samples/CMakeLists.txt");
    std::vector<TextLines> sources;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(SourceDir()) + "/samples"))
    {
        const std::string name = entry.path().filename().string();
        const std::string call = "vell_sample_host(" + name + " ";
        const bool isBuilt = std::any_of(build.begin(), build.end(),
                                         [&](const std::string& line)
                                         {
                                             return line.rfind(call, 0) == 0;
                                         });
        if (isBuilt)
        {
            sources.push_back(ReadLines("samples/" + name + "/main.cpp"));
        }
    }
    return sources;
}

/// Whether `source` has the lines of `block` from its line `first` on, each indented by `indent`.
bool StandsAt(const TextLines& source, std::size_t first, const TextLines& block,
              const std::string& indent)
{
    if (source.size() - first < block.size())
    {
        return false;
    }
    for (std::size_t i = 0; i < block.size(); ++i)
    {
        if (source[first + i] != (block[i].empty() ? "" : indent + block[i]))
        {
            return false;
        }
    }
    return true;
}

bool StandsIn(const TextLines& source, const TextLines& block)
{
    for (std::size_t first = 0; first < source.size(); ++first)
    {
        for (const char* indent : {"", "    ", "        "})
        {
            if (StandsAt(source, first, block, indent))
            {
                return true;
            }
        }
    }
    return false;
}

} // namespace

TEST(Pages, ShowNoCppThatDoesNotStandInASample)
{
    const std::vector<TextLines> samples = SampleSources();
    ASSERT_GE(samples.size(), kMinimumSamples);

    std::size_t count = 0;
    for (const std::string& page : PagePaths())
    {
        for (const CodeBlock& block : ReadBlocks(page, "cpp"))
        {
            ++count;
            ASSERT_FALSE(block.lines.empty()) << page << ":" << block.line;
            EXPECT_TRUE(std::any_of(samples.begin(), samples.end(),
                                    [&](const TextLines& source)
                                    {
                                        return StandsIn(source, block.lines);
                                    }))
                << page << ":" << block.line;
        }
    }
    EXPECT_GE(count, kMinimumBlocks);
}

} // namespace vell::test
