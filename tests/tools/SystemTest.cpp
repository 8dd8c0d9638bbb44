// VELL: data-driven hierarchical state machines.
// tests/tools/SystemTest.cpp: spellings of paths, and files replaced as a whole or not at all.
#include "tools/vell/System.h"

#include "tests/support/System.h"
#include "tests/tools/CommandRun.h"
#include "tools/vell/DocumentFiles.h"

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

TEST(DocumentFiles, AreFoundAndReadInAFolderInAllItsSpellings)
{
    const Folder folder;
    const std::string name = "h\u00e9ros \u4e16\u754c";
    std::filesystem::create_directory(tool::PathOf(folder.PathOf(name)));
    folder.Write(name + "/a b.json", "[1]");
    for (const std::string& path : SpellingsOf(folder.PathOf(name)))
    {
        const std::vector<tool::DocumentFile> files = tool::FindDocuments({path});

        ASSERT_EQ(files.size(), 1u) << path;
        EXPECT_FALSE(files[0].isNamed) << path;
        EXPECT_EQ(tool::ReadWholeFile(files[0].path).bytes, "[1]") << files[0].path;
    }
}

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

    const std::string none = tool::ReplaceContent(folder.PathOf("none.json"), "new");
    const std::string inner = tool::ReplaceContent(folder.PathOf("inner"), "new");

#if defined(_WIN32) // in the language of the user
    EXPECT_TRUE(!none.empty() && !inner.empty());
#else
    EXPECT_EQ(none, "No such file or directory");
    EXPECT_EQ(inner, "Is a directory");
#endif
    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"inner"});
}

} // namespace vell::test
