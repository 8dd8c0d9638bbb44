// VELL: data-driven hierarchical state machines.
// tests/states/ExitStateTest.cpp: an exit node on either stack.
#include "states/ExitState.h"

#include <durm/DURMBaseLib.h>

#include "definitions/ExitDef.h"
#include "tests/support/Scene.h"

#include <gtest/gtest.h>

#include <utility>

namespace vell::test
{
namespace
{

std::string In(const char* operation)
{
    return ErrorBreak(std::string("vell::ExitState::") + operation);
}

} // namespace

TEST(ExitState, RestsOnTheMainStackWithALineEachTick)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("go"))
                    .Node(Exit("Out", 10).Set(JSON_Children, Json::Array(Ids{100})))
                    .Node(Generic("Walk", 11))
                    .Node(Transition("ToWalk", 100, 10, 11, {Holds("go")})));
    const std::string out = ExitNodeLine("Out");

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take(),
              Lines{NotActivated(0)} + Activated("Out", 10, "-") + Lines{out} + Entered("Out"));
    EXPECT_EQ(scene.Tick(), Lines{out});
    EXPECT_EQ(scene.Tick(), Lines{out});
    EXPECT_EQ(scene.machine.MainStack(), "Out");
    EXPECT_EQ(scene.TickWith("go"), Lines{out} + Fired("Out", 100) + Lines{out} +
                                        Activated("Walk", 11, "Out") + Entered("Walk") +
                                        Reported(100, 10, 11));
}

TEST(ExitState, EndsABlipInItsFirstUpdateOnly)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("hit"))
                    .Parameter(PulseParameter("done"))
                    .Nodes({Generic("Stand", 10), Generic("Hurt", 11, {101}), Exit("Out", 12)})
                    .Node(Transition("ToHurt", 100, 50, 11, {Holds("hit")}))
                    .Node(Transition("ToOut", 101, 11, 12, {Holds("done")}))
                    .GlobalNode(Global("Global", 50, {100})));
    scene.Run(0);
    scene.TickWith("hit");
    const std::string out = ExitNodeLine("Out");

    EXPECT_EQ(scene.TickWith("done"), Lines{"Hurt execution 0.5"} + Fired("Hurt", 101) +
                                          Left("Hurt") + Activated("Out", 12, "Hurt") + Lines{out} +
                                          Entered("Out") + Reported(101, 11, 12));
    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.Tick(), (Lines{out, "6 Revert to Previous State", out}));
    EXPECT_FALSE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});
}

TEST(ExitState, LogsItsUpdateAndFailsItWithoutADefinition)
{
    LogRecorder log;
    ExitState state;

    EXPECT_EQ(state.Update(nullptr, 0.5f), 0);

    EXPECT_EQ(log.Take(), (Lines{ExitNodeLine(""), In("Execute"), In("Execute"),
                                 ErrorBreak("vell::SMState::Update")}));
}

TEST(ExitState, FailsToEnterAndExitWithoutADefinition)
{
    LogRecorder log;
    ExitState state;

    EXPECT_EQ(state.Enter(), 0);
    EXPECT_EQ(log.Take(), (Lines{ExitNodeLine(""), ErrorBreak("vell::SMState::Enter")}));
    EXPECT_EQ(state.Exit(), 0);
    EXPECT_EQ(log.Take(), Lines{In("Exit")});
}

TEST(ExitState, ExecutesWithoutAMachine)
{
    LogRecorder log;
    ExitDef def;
    def.SetName("Out");
    ExitState state;
    ASSERT_EQ(state.Init(&def), 1);

    EXPECT_EQ(state.Execute(0.5), 1);

    EXPECT_EQ(log.Take(), Lines{});
}

namespace
{

SMState* givenAway = nullptr;

/// A log callback that takes the machine away from a state on the first line.
void GiveAwayOnALine(int, const char*)
{
    if (givenAway != nullptr)
    {
        std::exchange(givenAway, nullptr)->SetHSM(nullptr);
    }
}

} // namespace

TEST(ExitState, EndsTheBlipOfTheMachineThatItHadBeforeItsLine)
{
    Scene scene(DocumentBuilder().Start(10).Nodes({Generic("Stand", 10), Exit("Out", 12)}));
    scene.Run(0);
    SMState* const out = scene.machine.ActivateState(12, 0.0f);
    scene.machine.blipActive = true;
    SetLogCallBackBase(GiveAwayOnALine);
    givenAway = out;

    EXPECT_EQ(out->Execute(0.5), 1);

    EXPECT_EQ(out->GetHSM(), nullptr);
    EXPECT_FALSE(scene.machine.blipActive);
}

} // namespace vell::test
