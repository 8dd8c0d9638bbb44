// VELL: data-driven hierarchical state machines.
// tests/tools/SystemTest.cpp: files that are replaced as a whole or not at all.
#include "tools/vell/System.h"

#include "tests/support/System.h"
#include "tests/tools/CommandRun.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

std::vector<std::string> NamesIn(const Folder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.PathOf("")))
    {
        names.push_back(tool::TextOf(entry.path().filename()));
    }
    return names;
}

} // namespace

TEST(ReplaceContent, ReplacesTheContentOfAFileOfAnyName)
{
    const Folder folder;
    const std::string name = "h\u00e9ros \u4e16\u754c.json";
    for (const std::string& path : SpellingsOf(folder.Write(name, "a longer text")))
    {
        EXPECT_EQ(tool::ReplaceContent(path, "new " + path + "\n"), "") << path;
        EXPECT_EQ(folder.Read(name), "new " + path + "\n");
        EXPECT_EQ(NamesIn(folder), std::vector<std::string>{name});
    }
}

TEST(ReplaceContent, KeepsPermissionsAndLinks)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Windows has other permissions, and links need a right of their own.";
#endif
    const Folder folder;
    const std::string path = folder.Write("a.json", "old");
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    std::filesystem::create_symlink(path, folder.PathOf("link.json"));

    ASSERT_EQ(tool::ReplaceContent(folder.PathOf("link.json"), "new"), "");

    EXPECT_EQ(folder.Read("a.json"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.PathOf("link.json")));
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

TEST(ReplaceContent, LeavesNothingBesideAFileThatItCannotReplace)
{
    const Folder folder;
    std::filesystem::create_directory(folder.PathOf("inner"));
#if defined(_WIN32)
    const std::string reasonOfFolder = "Access denied.";
#else
    const std::string reasonOfFolder = "Is a directory";
#endif

    EXPECT_EQ(tool::ReplaceContent(folder.PathOf("none.json"), "new"), "No such file or directory");
    EXPECT_EQ(tool::ReplaceContent(folder.PathOf("inner"), "new"), reasonOfFolder);

    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"inner"});
}

} // namespace vell::test
