// VELL: data-driven hierarchical state machines.
// tests/docs/RequiredBehaviourDocTest.cpp: each line of docs/required-behaviour.md names a test
// that is there, and the files that have a comment for it.
#include "tests/docs/Pages.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
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

/// A line of the page.
struct Behaviour
{
    std::string line;
    std::string test;
    TextLines files;
};

/// The lines of the page. One that does not end as it should has no test.
std::vector<Behaviour> ListedBehaviours()
{
    const std::regex form("- .+[.] `(\\w+[.]\\w+)`((?: `[\\w/]+[.](?:cpp|h)`)+)");
    const std::regex file("`([^`]+)`");
    std::vector<Behaviour> listed;
    for (const std::string& line : ReadProse("docs/required-behaviour.md"))
    {
        if (line.rfind("- ", 0) != 0)
        {
            continue;
        }
        Behaviour behaviour{line, {}, {}};
        std::smatch match;
        if (std::regex_match(line, match, form))
        {
            behaviour.test = match[1].str();
            const std::string files = match[2].str();
            for (std::sregex_iterator name(files.begin(), files.end(), file), end; name != end;
                 ++name)
            {
                behaviour.files.push_back((*name)[1].str());
            }
        }
        listed.push_back(behaviour);
    }
    return listed;
}

/// How many lines of the page name each file.
std::map<std::string, int> CountsOfThePage()
{
    std::map<std::string, int> counts;
    for (const Behaviour& behaviour : ListedBehaviours())
    {
        for (const std::string& file : behaviour.files)
        {
            ++counts[file];
        }
    }
    return counts;
}

/// How many comments that start with "Required:" each source has. Sources without one are left out.
std::map<std::string, int> CountsOfTheSources()
{
    const std::filesystem::path root(SourceDir());
    std::map<std::string, int> counts;
    for (const auto& folder : std::filesystem::directory_iterator(root))
    {
        const std::string name = folder.path().filename().string();
        if (!folder.is_directory() || name[0] == '.' || name == "tests" ||
            name.rfind("build", 0) == 0)
        {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
        {
            const std::string extension = entry.path().extension().string();
            if (extension != ".cpp" && extension != ".h")
            {
                continue;
            }
            const std::string path = entry.path().lexically_relative(root).generic_string();
            for (const std::string& line : ReadLines(path))
            {
                if (line.find("Required:") != std::string::npos)
                {
                    ++counts[path];
                }
            }
        }
    }
    return counts;
}

int CountOf(const std::map<std::string, int>& counts, const std::string& file)
{
    const auto entry = counts.find(file);
    return entry == counts.end() ? 0 : entry->second;
}

} // namespace

TEST(RequiredBehaviourPage, EndsEachLineWithTheNameOfATestThatIsThere)
{
    const std::set<std::string> tests = TestNames();
    const std::vector<Behaviour> listed = ListedBehaviours();

    EXPECT_GE(listed.size(), kMinimum);
    for (const Behaviour& behaviour : listed)
    {
        ASSERT_NE(behaviour.test, "")
            << "should end in `Suite.Test` `folder/File.cpp`: " << behaviour.line;
        EXPECT_EQ(tests.count(behaviour.test), 1u) << behaviour.line;
    }
}

TEST(RequiredBehaviourPage, NamesAFileAsOftenAsItHasRequiredComments)
{
    const std::map<std::string, int> page = CountsOfThePage();
    const std::map<std::string, int> sources = CountsOfTheSources();

    std::set<std::string> files;
    std::size_t comments = 0;
    for (const auto& [file, count] : page)
    {
        files.insert(file);
    }
    for (const auto& [file, count] : sources)
    {
        files.insert(file);
        comments += static_cast<std::size_t>(count);
    }
    EXPECT_GE(comments, kMinimum);
    for (const std::string& file : files)
    {
        EXPECT_EQ(CountOf(sources, file), CountOf(page, file))
            << file << " has " << CountOf(sources, file) << " comments with `Required:`, and "
            << CountOf(page, file) << " lines of the page name it";
    }
}

TEST(RequiredBehaviourPage, SaysEachThingOnce)
{
    std::set<std::string> pins;
    for (const Behaviour& behaviour : ListedBehaviours())
    {
        EXPECT_TRUE(pins.insert(behaviour.test).second) << behaviour.line;
    }
    EXPECT_GE(pins.size(), kMinimum);
}

} // namespace vell::test
