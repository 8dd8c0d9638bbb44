// VELL: data-driven hierarchical state machines.
// tests/support/LogTest.h: tests that record the log.
#pragma once

#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

namespace vell::test
{

/// Records the log from the start of each test to its end.
class LogTest : public testing::Test
{
protected:
    LogRecorder log;
};

} // namespace vell::test
