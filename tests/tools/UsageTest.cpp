// VELL: data-driven hierarchical state machines.
// tests/tools/UsageTest.cpp: what the command says to a wrong command line, and its help.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Suggestion.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

/// The words behind `vell help` of every command: those that the help of `words` lists, and theirs.
void AddHelps(const Words& words, std::vector<Words>& helps)
{
    Words line{"help"};
    line.insert(line.end(), words.begin(), words.end());
    helps.push_back(line);
    std::istringstream help(CallVell(line).out);
    bool isList = false;
    for (std::string entry; std::getline(help, entry);)
    {
        isList = entry == "Commands:" || (isList && !entry.empty());
        if (isList && entry.rfind("  ", 0) == 0 && entry[2] != ' ')
        {
            Words below = words;
            below.push_back(entry.substr(2, entry.find(' ', 2) - 2));
            AddHelps(below, helps);
        }
    }
}

std::vector<Words> AllHelps()
{
    std::vector<Words> helps;
    AddHelps({}, helps);
    EXPECT_GE(helps.size(), 10u);
    return helps;
}

} // namespace

TEST(VellUsage, SaysWhatIsWrongAndWhereTheHelpIs)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string context = "\nSee: vell context --help\n";
    const std::string run = "\nSee: vell run --help\n";
    const std::string root = "\nSee: vell --help\n";
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"rn", document}, "unknown command 'rn'; did you mean 'run'?" + root},
        {{"RUN", document}, "unknown command 'RUN'; did you mean 'run'?" + root},
        {{"grpah", document}, "unknown command 'grpah'; did you mean 'graph'?" + root},
        {{"hero.json"},
         "unknown command 'hero.json'; to run a document: vell run hero.json" + root},
        {{"help", "rn"}, "unknown command 'rn'; did you mean 'run'?" + root},
        {{"context", "sav"}, "unknown command 'sav'; did you mean 'save'?" + context},
        {{"context"}, "the command is missing; expected save or restore" + context},
        {{"--tree"}, "unknown option '--tree'" + root},
        {{"run"}, "DOCUMENT is missing" + run},
        {{"run", document, "more"}, "unexpected argument 'more'" + run},
        {{"run", document, "--explain", "Walk"},
         "unexpected argument 'Walk'; did you mean '--explain=Walk'?" + run},
        {{"run", "--tcks", "3"}, "unknown option '--tcks'; did you mean '--ticks'?" + run},
        {{"run", document, "--tcks=3"}, "unknown option '--tcks'; did you mean '--ticks'?" + run},
        {{"run", document, "--ticks"}, "--ticks: the value is missing" + run},
        {{"run", document, "--ticks", "1", "--ticks", "2"},
         "--ticks is given more than once" + run},
        {{"run", document, "--from", "3"}, "--from requires --explain" + run},
        {{"run", document, "--format", "xml"}, "--format: expected text or jsonl, got 'xml'" + run},
        {{"run", document, "--color", "yes"},
         "--color: expected auto, always or never, got 'yes'" + run},
        {{"run", document, "--explain=Wlk"},
         "--explain: the document has no state or transition 'Wlk'; did you mean 'Walk'?\n"},
        {{"run", "-", "--script", "-"},
         "standard input is either the document or the script, not both\n"},
    };
    for (const auto& [words, text] : cases)
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitUsage) << text;
        EXPECT_EQ(outcome.errors, text);
        EXPECT_EQ(outcome.out, "") << text;
    }
}

TEST(VellUsage, TakesNoTimeAndNoNumberOfTicksThatNeverEnds)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    for (const char* number : {"-1", "1.5", "1e3", "x", "nan", "18446744073709551616"})
    {
        for (const Words& words : {Words{"--ticks", number}, Words{"--ticks=" + Words{number}[0]}})
        {
            Words line{"run", document};
            line.insert(line.end(), words.begin(), words.end());
            const Outcome outcome = CallVell(line);

            EXPECT_EQ(outcome.code, tool::ExitUsage) << number;
            EXPECT_EQ(outcome.errors, "--ticks: expected a whole number, 0 or more, got '" +
                                          std::string(number) + "'\nSee: vell run --help\n");
        }
    }
    for (const char* seconds : {"-1", "nan", "inf", "-inf", "1e99", "fast", "0.1s"})
    {
        const Outcome outcome = CallVell({"run", document, "--dt", seconds});

        EXPECT_EQ(outcome.code, tool::ExitUsage) << seconds;
        EXPECT_EQ(outcome.errors, "--dt: expected seconds, 0 or more, got '" +
                                      std::string(seconds) + "'\nSee: vell run --help\n");
    }
    EXPECT_EQ(CallVell({"run", document, "--dt", "0"}).code, tool::ExitWell);
}

TEST(VellUsage, SaysThatAFolderIsOne)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string fault = "cannot read " + folder.PathOf("") + ": it is a folder\n";

    const Outcome asDocument = CallVell({"run", folder.PathOf("")});
    EXPECT_EQ(asDocument.code, tool::ExitUsage);
    EXPECT_EQ(asDocument.errors, fault);
    EXPECT_EQ(CallVell({"context", "restore", document, folder.PathOf("")}).errors, fault);
    for (const Words& words : {Words{"run", document, "--script", folder.PathOf("")},
                               {"tree", document, "--after", folder.PathOf("")}})
    {
        const Outcome asScript = CallVell(words);
        EXPECT_EQ(asScript.code, tool::ExitUsage);
        EXPECT_EQ(asScript.errors, fault);
    }
}

TEST(VellUsage, DoesNotWriteOverWhatItReads)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("a.script", "tick\n");
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"graph", document, "-o", folder.PathOf("./a.json")}, folder.PathOf("./a.json")},
        {{"run", document, "--log", document}, document},
        {{"tree", document, "--after", script, "-o", script}, script}};
    for (const auto& [words, file] : cases)
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitUsage);
        EXPECT_EQ(outcome.errors, "cannot write " + file + ": it is read as well\n");
    }
    EXPECT_EQ(folder.Read("a.json"), Walker().Text());
    EXPECT_EQ(folder.Read("a.script"), "tick\n");
}

TEST(VellUsage, ShowsWhichArgumentsRepeatAndWhichOptionsAreRequired)
{
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"check"}, "Usage: vell check [OPTIONS] [DOCUMENT...]\n"},
        {{"fmt"}, "Usage: vell fmt [OPTIONS] FILE...\n"},
        {{"id"}, "Usage: vell id [OPTIONS] NAME...\n"},
        {{"run"}, "Usage: vell run [OPTIONS] DOCUMENT\n"},
        {{"context", "save"}, "Usage: vell context save [OPTIONS] --after SCRIPT DOCUMENT\n"}};
    for (const auto& [words, usage] : cases)
    {
        Words help{"help"};
        help.insert(help.end(), words.begin(), words.end());

        EXPECT_NE(CallVell(help).out.find(usage), std::string::npos) << usage;
    }
}

TEST(VellUsage, SaysThatTheLastTickIsBeforeTheFirst)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());

    const Outcome outcome = CallVell({"run", document, "--explain", "--from", "5", "--to", "3"});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, "--to 3 is before --from 5\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellUsage, HasNoHelpWiderThanATerminal)
{
    for (const Words& words : AllHelps())
    {
        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.code, tool::ExitWell);
        EXPECT_EQ(outcome.errors, "");
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);)
        {
            EXPECT_LE(line.size(), 80u) << line;
        }
    }
}

TEST(VellUsage, ShowsTheSameHelpInThreeWays)
{
    for (const Words& words : AllHelps())
    {
        Words option(words.begin() + 1, words.end());
        option.push_back("--help");
        Words shortOption(words.begin() + 1, words.end());
        shortOption.push_back("-h");

        const std::string text = CallVell(words).out;

        EXPECT_EQ(CallVell(option).out, text);
        EXPECT_EQ(CallVell(shortOption).out, text);
        EXPECT_NE(text.find("Usage: vell"), std::string::npos);
    }
}

TEST(VellUsage, ShowsAnOptionWithAValueThatMayBeLeftOut)
{
    const std::string text = CallVell({"help", "run"}).out;

    EXPECT_NE(text.find("\n  --explain[=all|NAME]"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  --format text|jsonl "), std::string::npos) << text;
    EXPECT_NE(CallVell({"help", "tree"}).out.find("\n  -o, --output FILE "), std::string::npos);
}

TEST(Suggestion, IsTheNearestWordOfThoseThatAreNear)
{
    const std::vector<std::string> known = {"run", "graph", "tree", "context", "--ticks", "canSee"};
    const std::vector<std::pair<std::string, std::string>> cases = {{"rn", "run"},
                                                                    {"runn", "run"},
                                                                    {"urn", "run"},
                                                                    {"tere", "tree"},
                                                                    {"GRAPH", "graph"},
                                                                    {"contxet", "context"},
                                                                    {"cansee", "canSee"},
                                                                    {"--tick", "--ticks"},
                                                                    {"x", ""},
                                                                    {"draw", ""},
                                                                    {"", ""},
                                                                    {"hero.json", ""},
                                                                    {std::string(65, 'r'), ""}};
    for (const auto& [word, nearest] : cases)
    {
        EXPECT_EQ(tool::NearestWord(word, known), nearest) << word;
    }
    EXPECT_EQ(tool::DidYouMean("rn", known), "; did you mean 'run'?");
    EXPECT_EQ(tool::DidYouMean("draw", known), "");
    EXPECT_EQ(tool::ListOfWords({"a"}), "a");
    EXPECT_EQ(tool::ListOfWords({"a", "b"}), "a or b");
    EXPECT_EQ(tool::ListOfWords({"a", "b", "c"}), "a, b or c");
}

} // namespace vell::test
