// VELL: data-driven hierarchical state machines.
// tests/tools/IdCommandTest.cpp: the ids that vell id prints.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(VellId, PrintsTheIdOfEachNameOnALine)
{
    const StandardInput names("grounded\n\nstance\r\n");

    const Outcome outcome = CallVell({"id", "speed", "-", "jump"});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out, "254213878\n3390684310\n2197635900\n2813527574\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(VellId, RefusesAnEmptyName)
{
    const Outcome outcome = CallVell({"id", "speed", ""});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors,
              "a parameter needs a name: an empty one has the id 0, which means none\n");
}

} // namespace vell::test
