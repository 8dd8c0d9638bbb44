// VELL: data-driven hierarchical state machines.
// tests/tools/TotalsTest.cpp: the lines at the end of a run, and failures among its events.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vell::test
{

TEST(VellTotals, CountExpectationsAndOtherErrors)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"tick\n", ""},
        {"expect blip no\n", "1 expectation held\n"},
        {"expect blip no\nexpect blip no\n", "2 expectations held\n"},
        {"expect blip no\nexpect blip yes\n", "1 expectation held, 1 failed\n"},
        {"expect param sped 1\n", "0 expectations held, 1 failed\n"},
        {"set sped 1\n", "0 expectations held, 1 other error\n"},
        {"set hit 2\nmessage hit\nexpect blip yes\n",
         "0 expectations held, 1 failed, 2 other errors\n"}};
    for (const auto& [script, line] : cases)
    {
        const Outcome outcome = RunScript(Walker(), script);

        EXPECT_THAT(outcome.closing,
                    MatchesPattern(" +[0-9]+  arena    [0-9,]+ of [0-9,]+ bytes used\n" + line))
            << script;
        const bool isWell =
            line.find("failed") == std::string::npos && line.find("error") == std::string::npos;
        // What the document does not have makes the script wrong.
        const bool isWrong =
            script.find("sped") != std::string::npos || script.find("hit 2") != std::string::npos;
        EXPECT_EQ(outcome.code, isWell    ? tool::ExitWell
                                : isWrong ? tool::ExitUsage
                                          : tool::ExitFailed)
            << script;
    }
}

TEST(VellTotals, ShowTheUseOfTheArena)
{
    // The builder's head asks for so many hundred bytes.
    const Outcome outcome = RunScript(Walker(), "tick\n", {"--format", "jsonl"});

    EXPECT_THAT(outcome.closing,
                MatchesPattern("\\{\"tick\":1,\"event\":\"end\",\"held\":0,\"failed\":0,"
                               "\"otherErrors\":0,\"arenaUsed\":[1-9][0-9]*,"
                               "\"arenaSize\":[1-9][0-9]*00\\}\n"));
}

TEST(VellTotals, StandBehindFailuresThatProgramsSeeToo)
{
    const Outcome outcome =
        RunScript(Walker(), "tick\nexpect stack X\nset speed x\n", {"--format", "jsonl"});

    const std::string last = outcome.out.substr(outcome.out.find("\"event\":\"stack\",\"main\":[\"L"
                                                                 "ocomotion\",\"Stand\"]"));
    std::string failures = last.substr(last.find('\n') + 1);
    const std::string file = "\"file\":\"";
    for (std::size_t at = 0; (at = failures.find(file, at)) != std::string::npos;)
    {
        at += file.size();
        failures.erase(at, failures.find("a.script", at) - at);
    }
    EXPECT_EQ(
        failures,
        "{\"tick\":1,\"event\":\"expectation\",\"held\":false,\"what\":\"expected stack X, but "
        "it is Locomotion/Stand\",\"file\":\"a.script\",\"line\":2}\n"
        "{\"tick\":1,\"event\":\"error\",\"what\":\"'speed' is a float: expected a number such "
        "as 1.5, got 'x'\",\"file\":\"a.script\",\"line\":3}\n");
    EXPECT_EQ(outcome.errors,
              "a.script:2: expected stack X, but it is Locomotion/Stand\n"
              "a.script:3: 'speed' is a float: expected a number such as 1.5, got 'x'\n");
}

TEST(VellTotals, AreMissingFromARunThatNeverStarted)
{
    DocumentBuilder dead;
    dead.Start(77).Node(Generic("A", 10));

    EXPECT_EQ(RunScript(dead, "tick\n").closing, "");
}

} // namespace vell::test
