// VELL: data-driven hierarchical state machines.
// tests/tools/FmtCommandTest.cpp: which files vell fmt writes, and what it says.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

constexpr const char* kMessy = "{\"head\":{\"id\":1}}";
constexpr const char* kTidy = "{\n    \"head\": {\n        \"id\": 1\n    }\n}\n";

} // namespace

TEST(VellFmt, WritesFilesInPlaceAndSaysNothing)
{
    const Folder folder;
    const std::string messy = folder.Write("messy.json", kMessy);
    const std::string tidy = folder.Write("tidy.json", kTidy);

    const Outcome outcome = CallVell({"fmt", messy, tidy});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out + outcome.errors, "");
    EXPECT_EQ(folder.Read("messy.json"), kTidy);
    EXPECT_EQ(folder.Read("tidy.json"), kTidy);
}

TEST(VellFmt, NamesTheFilesThatWouldChangeAndLeavesThem)
{
    const Folder folder;
    const std::string messy = folder.Write("messy.json", kMessy);
    const std::string tidy = folder.Write("tidy.json", kTidy);

    const Outcome both = CallVell({"fmt", "--check", messy, tidy});
    const Outcome one = CallVell({"fmt", "--check", tidy});

    EXPECT_EQ(both.code, tool::ExitFailed);
    EXPECT_EQ(both.out, messy + "\n");
    EXPECT_EQ(both.errors, "");
    EXPECT_EQ(folder.Read("messy.json"), kMessy);
    EXPECT_EQ(one.code, tool::ExitWell);
    EXPECT_EQ(one.out + one.errors, "");
}

TEST(VellFmt, WritesStandardInputToStandardOutput)
{
    const StandardInput tidied(kMessy);

    const Outcome outcome = CallVell({"fmt", "-"});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out, kTidy);
    EXPECT_EQ(outcome.errors, "");
}

TEST(VellFmt, NamesStandardInputInMessages)
{
    const StandardInput broken("{\"head\": }");

    const Outcome outcome = CallVell({"fmt", "-"});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors.substr(0, 20), "<stdin>:1:10: error:");
}

TEST(VellFmt, LeavesAFileThatIsNotJsonAndFormatsTheOthers)
{
    const Folder folder;
    const std::string broken = folder.Write("broken.json", "{\"a\": [1}\n");
    const std::string messy = folder.Write("messy.json", kMessy);

    const Outcome outcome = CallVell({"fmt", broken, messy});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors.substr(0, broken.size() + 12), broken + ":1:9: error:");
    EXPECT_EQ(folder.Read("broken.json"), "{\"a\": [1}\n");
    EXPECT_EQ(folder.Read("messy.json"), kTidy);
}

TEST(VellFmt, FormatsTheDocumentsOfAFolder)
{
    const Folder folder;
    folder.Write("messy.json", kMessy);
    folder.Write("messy.txt", kMessy);

    EXPECT_EQ(CallVell({"fmt", folder.PathOf("")}).code, tool::ExitWell);

    EXPECT_EQ(folder.Read("messy.json"), kTidy);
    EXPECT_EQ(folder.Read("messy.txt"), kMessy);
}

TEST(VellFmt, SaysThatAFolderHasNoDocuments)
{
    const Folder folder;
    folder.Write("messy.txt", kMessy);

    const Outcome outcome = CallVell({"fmt", folder.PathOf("")});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, folder.PathOf("") + ": no *.json in this folder\n");
}

TEST(VellFmt, SaysWhichFileItCannotRead)
{
    const Folder folder;
    const std::string none = folder.PathOf("none.json");

    const Outcome outcome = CallVell({"fmt", none});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, "cannot read " + none + ": No such file or directory\n");
}

TEST(VellFmt, KeepsCommentsAndDuplicates)
{
    const Folder folder;
    const std::string path =
        folder.Write("a.hsm.json", "{\"a\": 1, // one\n\"a\": 2, /* two */\n}");

    EXPECT_EQ(CallVell({"fmt", path}).code, tool::ExitWell);

    EXPECT_EQ(folder.Read("a.hsm.json"), "{\n    \"a\": 1, // one\n    \"a\": 2 /* two */\n}\n");
}

} // namespace vell::test
