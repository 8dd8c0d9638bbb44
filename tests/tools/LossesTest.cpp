// VELL: data-driven hierarchical state machines.
// tests/tools/LossesTest.cpp: documents that load and lose something on the way.
#include <vell/Types.h>

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/LogExplanation.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// States A and B with `builder` as the builder of B.
DocumentBuilder WithBuilder(const std::string& builder)
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("A", 10)).Node(Generic("B", 11).Set(JSON_BuilderType, builder));
    return document;
}

DocumentBuilder WithDuplicate()
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("A", 10)).Node(Generic("B", 10)).Node(Generic("C", 12));
    return document;
}

} // namespace

TEST(VellLosses, AreAnErrorOfEachCommand)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", WithDuplicate().Text());
    const std::string script = folder.Write("a.script", "tick\n");
    const std::string errors =
        path + ": 2 of 3 nodes are lost, the first is B (10)\n"
               "From the library's log (use --log FILE for all of it):\n"
               "  Duplicate ID (10) error: B conflicts with A  (2 times)\n"
               "      Two nodes have the id 10. The second one, and all nodes after it in its\n"
               "      list, are left out.\n";
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"run", path},
                                               {"graph", path},
                                               {"tree", path},
                                               {"context", "save", path, "--after", script}})
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitFailed) << words[0];
        EXPECT_EQ(outcome.errors, errors);
        EXPECT_NE(outcome.out, "") << words[0];
    }
}

TEST(VellLosses, OfAllNodesLeaveNothingToRun)
{
    const Outcome outcome = RunScript(WithBuilder("genric"), "tick\n");

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n')),
              "a.json: all 2 nodes are lost, the first is A (10); B (11) has the unknown builder "
              "'genric'");
    EXPECT_NE(outcome.errors.find("'genric' is not a builder; did you mean 'generic'?"),
              std::string::npos)
        << outcome.errors;
    EXPECT_NE(outcome.errors.find("a.json: nothing to run: the start state does not exist: no node "
                                  "has the id 10\n"),
              std::string::npos)
        << outcome.errors;
}

TEST(VellLosses, OfAnArenaThatIsTooSmallSayWhatToRaise)
{
    DocumentBuilder small = Walker();
    small.Head().Set(JSON_HeadMemory, 25);
    DocumentBuilder tiny = Walker();
    tiny.Head().Set(JSON_HeadMemory, 5);

    for (const DocumentBuilder* document : {&small, &tiny})
    {
        const Outcome outcome = RunScript(*document, "tick\n");

        EXPECT_EQ(outcome.code, tool::ExitFailed);
        EXPECT_NE(outcome.errors.find("; the arena is nearly full, raise \"memory\" in the head\n"),
                  std::string::npos)
            << outcome.errors;
    }
}

TEST(VellLosses, OfTheHeadAreNamed)
{
    DocumentBuilder typeless;
    typeless.Head().Remove(JSON_HeadMachineType);
    DocumentBuilder memoryless;
    memoryless.Head().Set(JSON_HeadMemory, 0);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[]", "its root is not an object"},
        {"{}", "it has no object \"head\""},
        {typeless.Text(), "its head has no text \"machineType\""},
        {memoryless.Text(), "\"memory\" in its head is 0"}};
    for (const auto& [text, reason] : cases)
    {
        const Folder folder;
        const std::string path = folder.Write("a.json", text);

        const std::string errors = CallVell({"graph", path}).errors;

        EXPECT_EQ(errors.substr(0, errors.find('\n')),
                  path + ": not a machine document: " + reason);
    }
}

TEST(VellLosses, AreNotFoundInASoundDocument)
{
    EXPECT_EQ(RunScript(Walker(), "tick\n").errors, "");
}

TEST(VellLosses, OfTheStartStateAreNamedByTheirReason)
{
    DocumentBuilder unnamed;
    unnamed.Start(10).Node(Generic("A", 10));
    unnamed.Head().Set(JSON_HeadSubstateRoot, 0);
    DocumentBuilder transition;
    transition.Start(10).Node(Transition("T", 10, 11, 11, {})).Node(Generic("A", 11));
    const std::vector<std::pair<DocumentBuilder*, std::string>> cases = {
        {&unnamed, "the head names no start state: \"substateRoot\" is missing or 0, or "
                   "\"version\" is below 3"},
        {&transition, "the start state T (10) cannot be entered"}};
    for (const auto& [document, reason] : cases)
    {
        const Outcome outcome = RunScript(*document, "tick\n");

        EXPECT_EQ(outcome.code, tool::ExitFailed);
        EXPECT_NE(outcome.errors.find("a.json: nothing to run: " + reason + "\n"),
                  std::string::npos)
            << outcome.errors;
    }
}

TEST(LogExplanation, HasWordsForTheAuthorOfADocument)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"Conditions failed / missing for transition: Ignoring this transitionJump",
         "The transition 'Jump' is not ignored. It keeps the conditions before the invalid one, "
         "and its triggers. With neither, nothing fires it."},
        {"Failed to create builder type - ()",
         "A node has no \"builder\". The nodes read so far are dropped, and later layers are not "
         "read."},
        {"Failed to create builder type - (animClp)",
         "'animClp' is not a builder; did you mean 'animClip'? The nodes read so far are dropped, "
         "and later layers are not read."},
        {"Failed to create builder type - (enter)",
         "A node with the builder 'enter' is incomplete, or the arena is too small for it. The "
         "nodes read so far are dropped, and later layers are not read."},
        {"Failed to activate state: Unable to find state ID:  (7)",
         "No node with the id 7 can run as a state."},
        {"a line of a host", ""}};
    for (const auto& [line, words] : cases)
    {
        EXPECT_EQ(tool::ExplainLogLine(line), words);
    }
}

TEST(LogExplanation, ShowsEachLineOnceAndLeavesOutPlacesAlone)
{
    using Lines = std::vector<std::string>;

    EXPECT_EQ(tool::ExplainLog({"b", "ERROR_BREAK(0) at 5 in vell::Somewhere", "a", "b", "c"}, 2),
              (Lines{"b  (2 times)", "a", "... and 1 more"}));
    EXPECT_EQ(tool::ExplainLog({"Failed to activate state: Unable to find state ID:  (0)",
                                "Failed to create builder type - (x)",
                                "Parsing JSON file has caused an exception"},
                               9),
              (Lines{"Failed to create builder type - (x)",
                     "    'x' is not a builder. The nodes read so far are dropped, and later",
                     "    layers are not read."}));
    EXPECT_EQ(
        tool::ExplainLog({"Parsing JSON file has caused an exception"}, 9),
        (Lines{"Parsing JSON file has caused an exception", "    A step of loading failed."}));
    EXPECT_EQ(tool::ExplainLog({"State failed to be pushed onto state stack: 3",
                                "State failed to be pushed onto state stack: 4"},
                               9),
              (Lines{"State failed to be pushed onto state stack: 3",
                     "    The state 3 could not be entered.",
                     "State failed to be pushed onto state stack: 4"}));
}

} // namespace vell::test
