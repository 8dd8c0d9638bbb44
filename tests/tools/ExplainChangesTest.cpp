// VELL: data-driven hierarchical state machines.
// tests/tools/ExplainChangesTest.cpp: what --explain shows of many ticks.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// Runs `script` with the options, and gives the lines from the first of `tick` on.
std::string Explain(const std::string& script, const std::vector<std::string>& options,
                    const std::string& tick)
{
    const Outcome outcome = RunScript(Walker(), script, options);
    EXPECT_EQ(outcome.errors, "");
    const std::size_t begin = outcome.out.find("     " + tick + "  ");
    return begin == std::string::npos ? "" : outcome.out.substr(begin);
}

std::ptrdiff_t CountLines(const std::string& text)
{
    return std::count(text.begin(), text.end(), '\n');
}

} // namespace

TEST(VellExplainChanges, OfManyIdleTicksAreAHandfulOfLines)
{
    const Outcome outcome = RunScript(Walker(), "tick 600\n", {"--explain"});

    EXPECT_EQ(outcome.out, "     0  entered  Locomotion\n"
                           "     0  stack    Locomotion\n"
                           "     1  explain  Reactions:\n"
                           "     1  explain      TakeHit (150), priority 20: no condition holds: "
                           "hit == true (saw false)\n"
                           "     1  entered  Stand\n"
                           "     1  explain  Locomotion: no transitions\n"
                           "     1  stack    Locomotion/Stand\n"
                           "     2  explain  Stand:\n"
                           "     2  explain      ToWalk (100), priority 5: no condition holds: "
                           "speed > 1.5 (saw 0)\n"
                           "     2  stack    Locomotion/Stand\n"
                           "   600  stack    Locomotion/Stand\n");
}

TEST(VellExplainChanges, AreTheTransitionsWhoseReadingIsAnother)
{
    EXPECT_EQ(Explain("tick 2\nset speed 2\ntick 2\nset speed 1\ntick 5\n", {"--explain"}, "5"),
              "     5  explain  Walk:\n"
              "     5  explain      ToNowhere (102), priority 1: disabled: speed > 0 (saw 1)\n"
              "     5  explain      ToStand (101), priority 3: no condition holds: speed < 0.5 "
              "(saw 1), halt == \"now\" (saw \"\")\n"
              "     5  stack    Locomotion/Walk\n"
              "     9  stack    Locomotion/Walk\n");
}

TEST(VellExplainChanges, AreAllReadingsOfAStateThatWasNotTestedInTheTickBefore)
{
    // The blip hides Stand for two ticks.
    const std::string lines =
        Explain("tick 3\nset hit true\ntick\nset hit false\ntick 4\n", {"--explain=Stand"}, "6");

    EXPECT_EQ(lines, "     6  left     Done\n"
                     "     6  blip     ended\n"
                     "     6  stack    Locomotion/Stand\n"
                     "     7  explain  Stand:\n"
                     "     7  explain      ToWalk (100), priority 5: no condition holds: speed > "
                     "1.5 (saw 0)\n"
                     "     7  stack    Locomotion/Stand\n"
                     "     8  stack    Locomotion/Stand\n");
}

TEST(VellExplainChanges, AreNotAllThatCanBeShown)
{
    EXPECT_GT(CountLines(RunScript(Walker(), "tick 600\n", {"--explain=all"}).out), 3000);
}

TEST(VellExplainChanges, CanBeThoseOfOneStateOrTransitionByNameOrId)
{
    const std::string reading =
        "     2  explain  Stand:\n"
        "     2  explain      ToWalk (100), priority 5: no condition holds: "
        "speed > 1.5 (saw 0)\n"
        "     2  stack    Locomotion/Stand\n"
        "     9  stack    Locomotion/Stand\n";
    for (const char* name : {"Stand", "ToWalk", "11", "100"})
    {
        EXPECT_EQ(Explain("tick 9\n", {"--explain=" + std::string(name)}, "2"), reading) << name;
    }
}

TEST(VellExplainChanges, CanBeThoseOfSomeTicks)
{
    const std::vector<std::string> options = {"--explain=all", "--from", "5", "--to", "6"};
    const std::string tick = "explain  Reactions:\n";

    const std::string lines = Explain("tick 9\n", options, "5");

    EXPECT_EQ(CountLines(lines), 13) << lines;
    EXPECT_NE(lines.find("     5  " + tick), std::string::npos);
    EXPECT_NE(lines.find("     6  " + tick), std::string::npos);
    EXPECT_EQ(Explain("tick 9\n", options, "4"), "");
    EXPECT_EQ(Explain("tick 9\n", options, "7"), "");
}

TEST(VellExplainChanges, BeginWithAllReadingsOfTheFirstTickToShow)
{
    EXPECT_EQ(CountLines(Explain("tick 9\n", {"--explain", "--from", "5"}, "5")), 7);
}

} // namespace vell::test
