// VELL: data-driven hierarchical state machines.
// tests/docs/RequiredBehaviourDocTest.cpp: each line of docs/required-behaviour.md names a test
// that is there.
#include "tests/docs/Pages.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace vell::test
{
namespace
{

constexpr std::size_t kMinimum = 180;

/// The text of each source of the tests.
std::vector<std::string> TestSources()
{
    std::vector<std::string> sources;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::string(SourceDir()) + "/tests"))
    {
        if (entry.path().extension() == ".cpp")
        {
            std::ifstream file(entry.path());
            sources.emplace_back(std::istreambuf_iterator<char>(file),
                                 std::istreambuf_iterator<char>());
        }
    }
    return sources;
}

/// All tests as "Suite.Name".
std::set<std::string> TestNames()
{
    const std::regex test("\\b(?:TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)"
                          "\\(\\s*(\\w+)\\s*,\\s*(\\w+)\\s*\\)");
    std::set<std::string> names;
    for (const std::string& source : TestSources())
    {
        for (std::sregex_iterator match(source.begin(), source.end(), test), end; match != end;
             ++match)
        {
            names.insert((*match)[1].str() + "." + (*match)[2].str());
        }
    }
    return names;
}

TextLines ListedBehaviours()
{
    TextLines listed;
    for (const std::string& line : ReadProse("docs/required-behaviour.md"))
    {
        if (line.rfind("- ", 0) == 0)
        {
            listed.push_back(line);
        }
    }
    return listed;
}

} // namespace

TEST(RequiredBehaviourPage, EndsEachLineWithTheNameOfATestThatIsThere)
{
    const std::regex form("- .+[.] `(\\w+[.]\\w+)`");
    const std::set<std::string> tests = TestNames();
    const TextLines listed = ListedBehaviours();

    EXPECT_GE(listed.size(), kMinimum);
    for (const std::string& line : listed)
    {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, form)) << line;
        EXPECT_EQ(tests.count(match[1].str()), 1u) << line;
    }
}

TEST(RequiredBehaviourPage, SaysEachThingOnce)
{
    std::set<std::string> pins;
    for (const std::string& line : ListedBehaviours())
    {
        EXPECT_TRUE(pins.insert(line.substr(line.rfind(' '))).second) << line;
    }
    EXPECT_GE(pins.size(), kMinimum);
}

} // namespace vell::test
