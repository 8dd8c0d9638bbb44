// VELL: data-driven hierarchical state machines.
// tests/idle/IdleTickTest.cpp: what a tick costs in which nothing fires.
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vell::test
{
namespace
{

constexpr unsigned int kStates = 3;
constexpr unsigned int kTransitions = 4;

/// Three states of four transitions each, one condition each, of all four classes; none holds.
DocumentBuilder IdleDocument()
{
    DocumentBuilder document;
    document.Start(1)
        .Parameter(BoolParameter("grounded", true))
        .Parameter(IntParameter("stance", 0))
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(MessageParameter("jump", "now"));
    for (unsigned int state = 1; state <= kStates; ++state)
    {
        const unsigned int first = state * 100;
        document.Node(Generic("State" + std::to_string(state), state,
                              {first, first + 1, first + 2, first + 3}));
        const Json conditions[kTransitions] = {
            BoolCondition("grounded", false), IntCondition("stance", 1, 7),
            FloatCondition("speed", 3, 0.5), MessageCondition("jump", "now")};
        for (unsigned int i = 0; i < kTransitions; ++i)
        {
            document.Node(
                Transition("T" + std::to_string(first + i), first + i, state, 50, {conditions[i]}));
        }
    }
    document.Node(Generic("Away", 50));
    return document;
}

} // namespace

TEST(IdleTick, AllocatesNothingAndLogsNothingInAMillionTicks)
{
    LogRecorder log;
    StartedMachine machine(IdleDocument());
    machine.PushState(2);
    machine.PushState(3);
    machine.Update(0.01f);
    ASSERT_EQ(machine.MainStack(), "State1/State2/State3");
    log.Clear();
    std::size_t taken = 0;

    {
        HeapWatch heap;
        for (int i = 0; i < 1000000; ++i)
        {
            machine.Update(0.01f);
        }
        taken = heap.News() + heap.Mallocs();
    }

    EXPECT_EQ(taken, 0u);
    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(machine.MainStack(), "State1/State2/State3");
}

TEST(IdleTick, LooksNothingUp)
{
    LogRecorder log;
    StartedMachine machine(IdleDocument());
    machine.PushState(2);
    machine.PushState(3);
    auto* speed =
        dynamic_cast<ParameterFloatDef*>(machine.GetParameterTable()->FindParameter("speed"));
    auto* const nodes = std::exchange(machine.nodeDefTable, nullptr);
    auto* const parameters = std::exchange(machine.parameterTable, nullptr);
    const Tessel::KVTable tree = std::exchange(machine.kvTable, Tessel::KVTable());
    auto states = std::exchange(machine.states, {});
    log.Clear();

    machine.Update(0.01f);
    EXPECT_EQ(log.Take(), Lines()) << "goes without any table";
    states.swap(machine.states);
    machine.nodeDefTable = nodes;
    machine.parameterTable = parameters;
    machine.kvTable = tree;
    EXPECT_EQ(machine.MainStack(), "State1/State2/State3");
    speed->SetValue(1.0f);
    machine.Update(0.01f);

    EXPECT_EQ(machine.MainStack(), "Away") << "the same conditions do hold when they should";
}

} // namespace vell::test
