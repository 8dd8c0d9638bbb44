// VELL: data-driven hierarchical state machines.
// tests/machine/ActionTest.cpp: an action that a host has not given a behaviour.
#include <vell/Action.h>

#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(Action, DoesNothingUntilAHostOverridesIt)
{
    LogRecorder log;
    Action action;

    EXPECT_EQ(action.Init(), 1);
    EXPECT_EQ(action.Perform(ActTypeEntry, 0.5f), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(action.next, nullptr);
    EXPECT_EQ(action.prev, nullptr);
    EXPECT_EQ(action.id, 0u);
}

} // namespace vell::test
