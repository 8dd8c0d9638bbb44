// VELL: data-driven hierarchical state machines.
// tests/tools/CommandLineTest.cpp: words, exit codes, streams and files of the command.
#include "tools/vell/CommandLine.h"

#include <vell/Types.h>

#include "tests/support/System.h"
#include "tests/tools/CommandRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

std::string Join(const Words& words)
{
    std::string line = "vell";
    for (const std::string& word : words)
    {
        line += " " + word;
    }
    return line;
}

Words operator+(Words left, const Words& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Every command that loads a document, without the document.
struct Command
{
    Words words;
    Words options;
};

std::vector<Command> Commands(const Folder& folder)
{
    const std::string script = folder.Write("a.script", "tick\n");
    const std::string record =
        folder.Write("record.json", R"({"stackStates":[],"stackBlip":[],"nextState":0,)"
                                    R"("previousState":0,"transitionTriggered":0})");
    return {{{"run"}, {}},
            {{"run"}, {"--script", script}},
            {{"graph"}, {}},
            {{"graph"}, {"--format", "svg"}},
            {{"tree"}, {}},
            {{"tree"}, {"--after", script}},
            {{"context", "save"}, {"--after", script}},
            {{"context", "restore"}, {record}}};
}

#if !defined(_WIN32)
std::size_t OpenDescriptors()
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        count += entry.path().empty() ? 0 : 1;
    }
    return count;
}
#endif

/// A document that the library complains of twelve times before it refuses it: a transition without
/// conditions is worth a warning.
DocumentBuilder Lamentable()
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("A", 10));
    for (unsigned int i = 0; i < 12; ++i)
    {
        document.Node(Transition("T" + std::to_string(i), 100 + i, 10, 10));
    }
    document.Root().Set(JSON_Global, 5);
    return document;
}

} // namespace

TEST(VellCommand, PrintsWhatWasAskedForToItsOutput)
{
    for (const Words& words : {Words{"--help"},
                               {"run", "--help"},
                               {"graph", "--help"},
                               {"tree", "--help"},
                               {"context", "--help"},
                               {"context", "save", "--help"},
                               {"context", "restore", "--help"}})
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitWell) << Join(words);
        EXPECT_EQ(outcome.errors, "") << Join(words);
        EXPECT_THAT(outcome.out, testing::HasSubstr("Usage: vell")) << Join(words);
    }
    const Outcome version = CallVell({"--version"});
    EXPECT_EQ(version.code, tool::ExitWell);
    EXPECT_EQ(version.errors, "");
    EXPECT_THAT(version.out, MatchesPattern("vell [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(VellCommand, SaysWhatItDoesNotUnderstandOnStandardError)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string record = folder.Write("record.json", "{}");
    for (const Words& words : {Words{},
                               {"walk"},
                               {"run"},
                               {"run", path, "more"},
                               {"run", path, "--ticks", "many"},
                               {"run", path, "--ticks", "-1"},
                               {"run", path, "--dt", "fast"},
                               {"run", path, "--format", "dot"},
                               {"run", path, "--after", record},
                               {"graph"},
                               {"graph", path, "--format", "jsonl"},
                               {"graph", path, "--script", record},
                               {"tree"},
                               {"tree", path, "--format", "svg"},
                               {"tree", path, "--script", record},
                               {"context"},
                               {"context", path},
                               {"context", "save"},
                               {"context", "save", path},
                               {"context", "restore"},
                               {"context", "restore", path},
                               {"context", "restore", path, record, "--format", "xml"}})
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitUsage) << Join(words);
        EXPECT_EQ(outcome.out, "") << Join(words);
        EXPECT_NE(outcome.errors, "") << Join(words);
    }
    EXPECT_THAT(CallVell({}).errors, testing::HasSubstr("Usage: vell"));
}

TEST(VellCommand, TakesEachFormatThatItNames)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"run", path, "--format", "text"}, "     0  entered"},
        {{"run", path, "--format", "jsonl"}, "{\"tick\":0"},
        {{"graph", path}, "digraph"},
        {{"graph", path, "--format", "dot"}, "digraph"},
        {{"graph", path, "--format", "mermaid"}, "---\ntitle: "},
        {{"tree", path}, "{\n"},
        {{"tree", path, "--format", "json"}, "{\n"},
        {{"tree", path, "--format", "text"}, "contextInfo/nextState = "}};
    for (const auto& [words, start] : cases)
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitWell) << Join(words);
        EXPECT_EQ(outcome.errors, "") << Join(words);
        EXPECT_EQ(outcome.out.substr(0, start.size()), start) << Join(words);
    }
}

#if !defined(_WIN32) // which has no such device
TEST(VellCommand, SaysWhichFileItCannotWrite)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string nowhere = folder.PathOf("none/file");
    for (const Command& command : Commands(folder))
    {
        const Words words = command.words + Words{path} + command.options;
        const Outcome outcome = CallVell(words + Words{"--log", nowhere});

        EXPECT_EQ(outcome.code, tool::ExitUsage) << Join(words);
        EXPECT_EQ(outcome.errors, "cannot write " + nowhere + ": No such file or directory\n");
        EXPECT_EQ(outcome.out, "") << Join(words);
    }
    const std::string script = folder.PathOf("a.script");
    for (const Words& words :
         {Words{"graph", path}, {"tree", path}, {"context", "save", path, "--after", script}})
    {
        // A full disk shows only when the text is written out.
        for (const auto& [file, reason] :
             {std::pair<std::string, std::string>{nowhere, "No such file or directory"},
              {"/dev/full", "No space left on device"},
              {"/", "it is a folder"}})
        {
            const Outcome outcome = CallVell(words + Words{"-o", file});

            EXPECT_EQ(outcome.code, tool::ExitUsage) << Join(words);
            EXPECT_EQ(outcome.errors, "cannot write " + file + ": " + reason + "\n");
            EXPECT_EQ(outcome.out, "") << Join(words);
        }
    }
}
#endif

TEST(VellCommand, WritesNothingOfADocumentThatDoesNotLoad)
{
    const Folder folder;
    const std::string missing = folder.PathOf("none.json");
    const std::string malformed = folder.Write("b.json", "[");
    for (const Command& command : Commands(folder))
    {
        const Outcome absent = CallVell(command.words + Words{missing} + command.options);
        EXPECT_EQ(absent.code, tool::ExitUsage) << Join(command.words);
        EXPECT_EQ(absent.errors, "cannot read " + missing + ": No such file or directory\n");
        EXPECT_EQ(absent.out, "") << Join(command.words);

        const Outcome unread = CallVell(command.words + Words{malformed} + command.options);
        EXPECT_EQ(unread.code, tool::ExitFailed) << Join(command.words);
        EXPECT_EQ(unread.errors, malformed + ":1:2: invalid JSON: Invalid value.\n");
        EXPECT_EQ(unread.out, "") << Join(command.words);
    }
}

TEST(VellCommand, SaysLineAndColumnOfASyntaxError)
{
    struct Case
    {
        std::string text;
        std::string place;
        std::string what;
    };
    const std::vector<Case> cases = {
        {"", "1:1", "The document is empty."},
        {" \n ", "2:2", "The document is empty."},
        {"x", "1:1", "Invalid value."},
        {"x\n\n", "1:1", "Invalid value."},
        {"{\"a\" 1}", "1:6", "Missing a colon after a name of object member."},
        {"\n]", "2:1", "Invalid value."},
        {"{\n  \"a\" 1\n}", "2:7", "Missing a colon after a name of object member."},
        // At the end of a line, and of the text.
        {"{\n  \"a\": tru\n}", "2:11", "Invalid value."},
        {"[1,\nnul\n]", "2:4", "Invalid value."},
        {"tru\n", "1:4", "Invalid value."},
        {"[\n\ntru\n\n]", "3:4", "Invalid value."},
        {"{\"a\":1}\n\n}", "3:1", "The document root must not be followed by other values."},
        {"[1\n", "2:1", "Missing a comma or ']' after an array element."},
        {"[1,\r\n2 3]", "2:3", "Missing a comma or ']' after an array element."},
    };
    const Folder folder;
    for (const Case& one : cases)
    {
        const std::string path = folder.Write("a.json", one.text);

        const Outcome outcome = CallVell({"graph", path});

        EXPECT_EQ(outcome.errors, path + ":" + one.place + ": invalid JSON: " + one.what + "\n")
            << one.text;
    }
}

TEST(VellCommand, ShowsWhatTheLibraryComplainsOf)
{
    const Folder folder;
    const std::string headless =
        folder.Write("a.json", DocumentBuilder().LeaveOut(JSON_Head).Text());
    const std::string dead = folder.Write("b.json", DocumentBuilder().Start(77).Text());
    for (const Command& command : Commands(folder))
    {
        const Words words = command.words + Words{headless} + command.options;
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitFailed) << Join(words);
        EXPECT_EQ(outcome.out, "") << Join(words);
        EXPECT_THAT(outcome.errors,
                    MatchesPattern(headless +
                                   ": not a machine document: it has no object \"head\"\n"
                                   "From the library's log \\(use --log FILE for all of it\\):\n"
                                   "  ERROR_BREAK\\(0\\) at [0-9]+ in vell::HSM::Create\n"
                                   "      The head is missing or incomplete, or there is not "
                                   "enough memory\\.\n"))
            << Join(words);
    }
    const std::string script = folder.PathOf("a.script");
    for (const Words& words : {Words{"run", dead},
                               {"tree", dead, "--after", script},
                               {"context", "save", dead, "--after", script}})
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitFailed) << Join(words);
        EXPECT_EQ(outcome.out, "") << Join(words);
        EXPECT_THAT(outcome.errors,
                    testing::HasSubstr(
                        "nothing to run: the start state does not exist: no node has the id 77\n"
                        "From the library's log (use --log FILE for all of it):\n"
                        "  Entry Node doesn't exist: 77\n"))
            << Join(words);
    }
}

TEST(VellCommand, ShowsTenComplaintsAtMost)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Lamentable().Text());

    const Outcome outcome = CallVell({"run", path, "--log", folder.PathOf("log")});

    std::string expected = path + ": cannot build the machine\n"
                                  "From the library's log \\(use --log FILE for all of it\\):\n";
    expected +=
        "  ERROR_BREAK\\(0\\) at [0-9]+ in vell::TransitionDef::InitConditions  \\(12 times\\)\n"
        "      The conditions of a transition are missing, empty or not a list\\.\n";
    for (int i = 0; i < 9; ++i)
    {
        expected += "  Conditions failed / missing for transition: Ignoring this transitionT" +
                    std::to_string(i) + "\n";
        expected += i == 0 ? "      The transition 'T0' is not ignored\\. It keeps the conditions "
                             "before the\n      invalid one, and its triggers\\. With neither, "
                             "nothing fires it\\.\n"
                           : "";
    }
    expected += "  \\.\\.\\. and [0-9]+ more\n";
    EXPECT_THAT(outcome.errors, MatchesPattern(expected));
    EXPECT_THAT(folder.Read("log"), testing::HasSubstr("Ignoring this transitionT11\n"));
}

TEST(VellCommand, WritesItsLogOverAnOlderAndLongerOne)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    CallVell({"run", path, "--log", folder.PathOf("fresh")});
    folder.Write("old", std::string(100000, 'x'));

    CallVell({"run", path, "--log", folder.PathOf("old")});

    ASSERT_NE(folder.Read("fresh"), "");
    EXPECT_EQ(folder.Read("old"), folder.Read("fresh"));
}

#if !defined(_WIN32) // where no folder shows a process its descriptors
TEST(VellCommand, LeavesStandardErrorAndDescriptorsAsTheyWere)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::filesystem::path before = std::filesystem::read_symlink("/proc/self/fd/2");
    const std::size_t open = OpenDescriptors();

    CallVell({"run", path});
    CallVell({"run", path, "--log", folder.PathOf("log")});
    CallVell({"run", path, "--log", folder.PathOf("none/log")});
    CallVell({"graph", path, "--format", "svg"});

    EXPECT_EQ(std::filesystem::read_symlink("/proc/self/fd/2"), before);
    EXPECT_EQ(OpenDescriptors(), open);
}
#endif

TEST(VellCommand, TakesPathsInAnyAlphabet)
{
    const Folder folder;
    const std::string name = "h\u00e9ros \u4e16\u754c";
    const std::string script = folder.Write(name + ".script", "tick\n");
    for (const std::string& path : SpellingsOf(folder.Write(name + ".json", Walker().Text())))
    {
        const Outcome run =
            CallVell({"run", path, "--script", script, "--log", folder.PathOf(name + ".log")});
        const Outcome tree = CallVell({"tree", path, "-o", folder.PathOf(name + ".tree")});

        EXPECT_EQ(run.errors + tree.errors, "") << path;
        EXPECT_EQ(run.code, tool::ExitWell) << path;
        EXPECT_NE(folder.Read(name + ".log"), "") << path;
        EXPECT_EQ(folder.Read(name + ".tree"), CallVell({"tree", path}).out) << path;
    }
}

TEST(VellCommand, TakesAWordThatBeginsWithASlashForAPath)
{
    const Outcome outcome = CallVell({"run", "/help"});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, "cannot read /help: No such file or directory\n");
}

TEST(VellCommand, ReadsAScriptFromStandardInput)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());

    const auto call = [](const Words& words)
    {
        const StandardInput in("tick\nexpect stack Locomotion/Walk\n");
        return CallVell(words);
    };

    for (const Words& words : {Words{"run", path, "--script", "-"},
                               {"tree", path, "--after", "-"},
                               {"context", "save", path, "--after", "-"}})
    {
        const Outcome outcome = call(words);
        EXPECT_EQ(outcome.code, tool::ExitFailed) << Join(words);
        EXPECT_EQ(outcome.errors,
                  "standard input:2: expected stack Locomotion/Walk, but it is Locomotion/Stand\n");
    }
}

TEST(VellCommand, ShowsEveryWrongLineOfAScriptAndRunsNothing)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("b.script", "tock\ntick 5x\nmessage\n");
    for (const Words& words : {Words{"run", path, "--script", script},
                               {"tree", path, "--after", script},
                               {"context", "save", path, "--after", script}})
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitUsage) << Join(words);
        EXPECT_EQ(outcome.out, "") << Join(words);
        EXPECT_EQ(outcome.errors,
                  script +
                      ":1: unknown instruction 'tock'; expected tick, set, message or expect\n" +
                      script + ":2: '5x' is not a number of ticks; usage: tick [N]\n" + script +
                      ":3: expected one name; usage: message NAME\n")
            << Join(words);
    }
}

TEST(VellCommand, RunsSoManyTicksAsAreAskedFor)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("b.script", "tick 2\n");
    const std::vector<std::pair<Words, std::string>> cases = {
        {{}, "    10"},
        {{"--ticks", "0"}, "     0"},
        {{"--ticks", "1"}, "     1"},
        {{"--ticks", "12"}, "    12"},
        {{"--script", script}, "     2"},
        {{"--script", script, "--ticks", "3"}, "     5"}};
    for (const auto& [options, last] : cases)
    {
        const Outcome outcome = CallVell(Words{"run", path} + options);

        EXPECT_EQ(outcome.out.substr(outcome.out.rfind("  stack") - 6, 6), last) << Join(options);
    }
}

TEST(VellCommand, ExplainsEachTickOfARunAndOfARestoredMachine)
{
    const Folder folder;
    DocumentBuilder builder;
    builder.Start(10).Node(Generic("A", 10));
    const std::string path = folder.Write("a.json", builder.Text());
    const std::string record =
        folder.Write("record.json", R"({"stackStates":[10],"stackBlip":[],"nextState":0,)"
                                    R"("previousState":0,"transitionTriggered":0})");

    const Outcome run = CallVell({"run", path, "--ticks", "2", "--explain=all"});
    const Outcome restored =
        CallVell({"context", "restore", path, record, "--ticks", "2", "--explain=all"});

    const std::string ticks = "     0  stack    A\n"
                              "     1  explain  A: no transitions\n"
                              "     1  stack    A\n"
                              "     2  explain  A: no transitions\n"
                              "     2  stack    A\n";
    EXPECT_EQ(run.out, "     0  entered  A\n" + ticks);
    EXPECT_EQ(restored.out, ticks);
}

} // namespace vell::test
