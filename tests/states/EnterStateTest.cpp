// VELL: data-driven hierarchical state machines.
// tests/states/EnterStateTest.cpp: an enter node on the stack.
#include "states/EnterState.h"

#include "tests/support/Scene.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(EnterState, BehavesAsAPlainState)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("in"))
                    .Parameter(PulseParameter("on"))
                    .Nodes({Generic("Stand", 10, {100}), Generic("Walk", 11)})
                    .Node(Enter("In", 21, 11).Set(JSON_Children, Json::Array(Ids{101})))
                    .Node(Transition("ToIn", 100, 10, 21, {Holds("in")}))
                    .Node(Transition("ToWalk", 101, 21, 11, {Holds("on")})));
    scene.Run(0);

    EXPECT_EQ(scene.TickWith("in"), Lines{"Stand execution 0.5"} + Fired("Stand", 100) +
                                        Left("Stand") + Activated("In", 21, "Stand") +
                                        Entered("In") + Reported(100, 10, 21));
    EXPECT_EQ(scene.Tick(), Lines{"In execution 0.5"});
    EXPECT_EQ(scene.TickWith("on"), Lines{"In execution 0.5"} + Fired("In", 101) + Left("In") +
                                        Activated("Walk", 11, "In") + Entered("Walk") +
                                        Reported(101, 21, 11));
}

TEST(EnterState, EntersAndExitsTwiceWithoutADefinition)
{
    LogRecorder log;
    EnterState state;

    EXPECT_EQ(state.Enter(), 0);
    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak("vell::SMState::Enter"), ErrorBreak("vell::SMState::Enter"),
                     ErrorBreak("vell::EnterState::Enter")}));
    EXPECT_EQ(state.Exit(), 0);
    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak("vell::SMState::Exit"), ErrorBreak("vell::SMState::Exit"),
                     ErrorBreak("vell::EnterState::Exit")}));
}

TEST(EnterState, HoldsThreeNumbersThatStayZero)
{
    const EnterState state;

    for (const unsigned int number : state.unread)
    {
        EXPECT_EQ(number, 0u);
    }
}

} // namespace vell::test
