// VELL: data-driven hierarchical state machines.
// tests/machine/HSMRunTest.cpp: a document alone drives a running machine.
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(HSM, RunsFromTheDocumentToAFiredTransition)
{
    LogRecorder log;
    StartedMachine machine(
        DocumentBuilder()
            .Start(10)
            .Parameter(FloatParameter("speed", 0.0))
            .Node(Generic("Stand", 10, {100}))
            .Node(Generic("Walk", 11))
            .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)})));
    machine.Update(0.1f);
    ASSERT_EQ(machine.MainStack(), "Stand");
    log.Clear();

    auto* speed =
        dynamic_cast<ParameterFloatDef*>(machine.GetParameterTable()->FindParameter("speed"));
    ASSERT_NE(speed, nullptr);
    speed->SetValue(1.0f);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(log.Take(),
              (Lines{"6 Transition satisfied: Stand", "6 [Exit] Stand - SMState.cpp : #",
                     "6 Activated State: Walk (11)", "6 [Enter] Walk - SMState.cpp : #"}));
    EXPECT_EQ(machine.StackInTree("stackStates"), (Ids{11}));
}

} // namespace vell::test
