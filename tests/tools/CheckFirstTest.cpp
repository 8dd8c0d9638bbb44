// VELL: data-driven hierarchical state machines.
// tests/tools/CheckFirstTest.cpp: the check before a document is run, drawn or printed.
#include <vell/Types.h>

#include "tests/support/SmallDocument.h"
#include "tests/tools/CommandRun.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

/// A document with the mistake VELL070: its transition leads nowhere.
DocumentBuilder Astray()
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("hit", false))
        .Node(Generic("Stand", 10, {100}))
        .Node(Transition("Leave", 100, 10, 99, {BoolCondition("hit", true)}));
    return builder;
}

std::string FirstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

} // namespace

TEST(VellCheckFirst, RefusesADocumentWithErrorsInEveryCommandThatLoadsOne)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Astray().Text());
    const std::string script = folder.Write("a.script", "tick\n");

    for (const Words& words : {Words{"run", path}, Words{"graph", path}, Words{"tree", path},
                               Words{"context", "save", path, "--after", script}})
    {
        const Outcome outcome = CallVellAsIs(words);

        EXPECT_EQ(outcome.code, 1) << words[0];
        EXPECT_EQ(outcome.out, "") << words[0];
        EXPECT_NE(outcome.errors.find("error VELL070"), std::string::npos) << outcome.errors;
        EXPECT_NE(outcome.errors.find("use --no-check to go on all the same"), std::string::npos);
    }
}

TEST(VellCheckFirst, GoesOnWithADocumentThatHasErrorsWhenToldTo)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Astray().Text());

    const Outcome outcome = CallVellAsIs({"run", path, "--no-check"});

    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(FirstLine(outcome.out), "     0  entered  Stand");
}

TEST(VellCheckFirst, ShowsWarningsOnlyWhenAsked)
{
    const Folder folder;
    const std::string path =
        folder.Write("a.json", WithHead(SmallDocument(), JSON_HeadMemory, 1000000).Text());

    const Outcome quiet = CallVellAsIs({"run", path});
    EXPECT_EQ(quiet.code, 0);
    EXPECT_EQ(quiet.errors, "");

    const Outcome outcome = CallVellAsIs({"run", path, "-W"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.errors.find("warning VELL151"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.out, quiet.out);
}

TEST(VellCheckFirst, FailsWithoutAStartStateEvenWhenToldToGoOn)
{
    const Folder folder;
    DocumentBuilder builder = Astray();
    builder.Head().Set(JSON_HeadSubstateRoot, 0);
    const std::string path = folder.Write("a.json", builder.Text());

    for (const std::string command : {"run", "graph", "tree"})
    {
        const Outcome outcome = CallVellAsIs({command, path, "--no-check"});

        EXPECT_EQ(outcome.code, 1) << command;
        EXPECT_NE(outcome.errors.find("nothing to run: the head names no start state"),
                  std::string::npos)
            << outcome.errors;
    }
}

TEST(VellCheckFirst, LeavesAFileThatCannotBeReadToWhatLoadsIt)
{
    const Outcome outcome = CallVellAsIs({"run", "/no/such/file.json"});

    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.errors, "cannot read /no/such/file.json: No such file or directory\n");
}

} // namespace vell::test
