// VELL: data-driven hierarchical state machines.
// tests/machine/HSMSequenceTest.cpp: whole sequences of what a running machine tells.
#include <vell/SMState.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/Scene.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

/// The level Fight (20) with Jab (23) and Hook (24) in it, and Rest (30) beside it.
DocumentBuilder FightDocument()
{
    return DocumentBuilder()
        .Start(20)
        .Parameter(PulseParameter("hook"))
        .Parameter(PulseParameter("finish"))
        .Parameter(PulseParameter("leave"))
        .Parameter(PulseParameter("back"))
        .Level("Fight", 20, 23, {102})
        .Node(Generic("Jab", 23, {100, 101}, 20))
        .Node(Generic("Hook", 24, {}, 20))
        .Node(Generic("Rest", 30, {103}))
        .Node(Transition("JabToHook", 100, 23, 24, {Holds("hook")}))
        .Node(Transition("JabToOut", 101, 23, 22, {Holds("finish")}))
        .Node(Transition("FightToRest", 102, 20, 30, {Holds("leave")})
                  .Set(JSON_TransitionSwitchArgument, 0.25))
        .Node(Transition("RestToFight", 103, 30, 20, {Holds("back")}));
}

/// The state Stand (10), and a global node whose transitions interrupt it: 400 and 401 of priority
/// 5, 402 of priority 4, 403 of priority 6, and 404, which leads to no node.
DocumentBuilder HitDocument()
{
    DocumentBuilder document = SmallDocument();
    document.GlobalNode(Global("Global", 50, {400, 401, 402, 403, 404}));
    document.Parameter(PulseParameter("lost"))
        .Node(Transition("ToNowhere", 404, 50, 999, {Holds("lost")}));
    const char* const names[] = {"hit", "push", "weak", "strong"};
    const char* const states[] = {"Hit", "Push", "Weak", "Strong"};
    const int priorities[] = {5, 5, 4, 6};
    for (unsigned int i = 0; i < 4; ++i)
    {
        document.Parameter(PulseParameter(names[i]))
            .Node(Generic(states[i], 60 + i))
            .Node(Transition(std::string("To") + states[i], 400 + i, 50, 60 + i, {Holds(names[i])})
                      .Set(JSON_TransitionPriority, priorities[i]));
    }
    return document;
}

} // namespace

TEST(HSMSequence, NestedStartTakesTwoTicks)
{
    Scene scene(DocumentBuilder()
                    .Start(20)
                    .Level("Fight", 20, 23)
                    .Node(Clip("Jab", 23, "jab.clip", {}, 20).Set(JSON_ClipFlag, true))
                    .GlobalNode(Global("Global", 50)));

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take(),
              Activated("Global", 50, "-") + Activated("Fight", 20, "-") + Entered("Fight"));
    EXPECT_EQ(scene.Tick(),
              Activated("Jab", 23, "-") + Entered("Jab") + Lines{"events: play jab.clip 1 30"});
    EXPECT_EQ(scene.machine.StackInTree("stackStates"), (Ids{20, 23}));
    EXPECT_EQ(scene.Tick(), (Lines{"Jab execution 0.5", "Fight execution 0.5"}));
}

TEST(HSMSequence, LevelResumesAtTheChildAtWhichItWasLeft)
{
    Scene scene(FightDocument());
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("hook"), Lines{"Jab execution 0.5"} + Fired("Jab", 100) + Left("Jab") +
                                          Activated("Hook", 24, "Jab") + Entered("Hook") +
                                          Reported(100, 23, 24) + Lines{"Fight execution 0.5"});
    EXPECT_EQ(scene.TickWith("leave"), (Lines{"Hook execution 0.5", "Fight execution 0.5"}) +
                                           Fired("Fight", 102) + Left("Hook") + Left("Fight") +
                                           Activated("Rest", 30, "Hook", "0.25") + Entered("Rest") +
                                           Reported(102, 24, 30));
    EXPECT_EQ(scene.TickWith("back"), Lines{"Rest execution 0.5"} + Fired("Rest", 103) +
                                          Left("Rest") + Activated("Fight", 20, "Rest") +
                                          Entered("Fight") + Reported(103, 30, 20));
    EXPECT_EQ(scene.Tick(), Entered("Hook"));
    EXPECT_EQ(scene.machine.MainStack(), "Fight/Hook");
    EXPECT_EQ(scene.Tick(), (Lines{"Hook execution 0.5", "Fight execution 0.5"}));
}

TEST(HSMSequence, LevelLeftAtItsExitNodeResumesAtItsExitNode)
{
    Scene scene(FightDocument());
    scene.Run(1);
    const std::string out = ExitNodeLine("FightOut");
    const Lines entered = Lines{out} + Entered("FightOut");

    EXPECT_EQ(scene.TickWith("finish"), Lines{"Jab execution 0.5"} + Fired("Jab", 101) +
                                            Left("Jab") + Activated("FightOut", 22, "Jab") +
                                            entered + Reported(101, 23, 22) +
                                            Lines{"Fight execution 0.5"});
    EXPECT_EQ(scene.Tick(), (Lines{out, "Fight execution 0.5"}));
    EXPECT_EQ(scene.TickWith("leave"), (Lines{out, "Fight execution 0.5"}) + Fired("Fight", 102) +
                                           Lines{out} + Left("Fight") +
                                           Activated("Rest", 30, "FightOut", "0.25") +
                                           Entered("Rest") + Reported(102, 22, 30));
    scene.TickWith("back");
    EXPECT_EQ(scene.Tick(), entered);
    EXPECT_EQ(scene.machine.MainStack(), "Fight/FightOut");
}

TEST(HSMSequence, InnerTransitionFiresBeforeOuterInOneTick)
{
    Scene scene(DocumentBuilder()
                    .Start(20)
                    .Parameter(PulseParameter("both"))
                    .Level("Outer", 20, 30)
                    .Level("Middle", 30, 40, {101}, 20)
                    .Level("Inner", 40, 43, {}, 30)
                    .Node(Generic("Leaf", 43, {100}, 40))
                    .Node(Generic("Twig", 44, {}, 40))
                    .Node(Generic("Other", 45, {}, 20))
                    .Node(Transition("LeafToTwig", 100, 43, 44, {Holds("both")}))
                    .Node(Transition("MiddleToOther", 101, 30, 45, {Holds("both")})));
    scene.Run(3);
    ASSERT_EQ(scene.machine.MainStack(), "Outer/Middle/Inner/Leaf");

    EXPECT_EQ(scene.TickWith("both"),
              Lines{"Leaf execution 0.5"} + Fired("Leaf", 100) + Left("Leaf") +
                  Activated("Twig", 44, "Leaf") + Entered("Twig") + Reported(100, 43, 44) +
                  (Lines{"Inner execution 0.5", "Middle execution 0.5"}) + Fired("Middle", 101) +
                  Left("Twig") + Left("Inner") + Left("Middle") + Activated("Other", 45, "Twig") +
                  Entered("Other") + Reported(101, 44, 45) + Lines{"Outer execution 0.5"});
    EXPECT_EQ(scene.machine.StackInTree("stackStates"), (Ids{20, 45}));
}

TEST(HSMSequence, EqualBlipDisplacesARunningOneAndAWeakerOneDoesNot)
{
    Scene scene(HitDocument());
    scene.Run(1);
    const Lines starts = {"6 State Blip: Global"};

    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 400) + starts + Activated("Hit", 60, "-") +
                                         Entered("Hit") + Lines{"Hit execution 0.5"});
    EXPECT_EQ(scene.TickWith("weak"), Fired("Global", 402) + Lines{"Hit execution 0.5"});
    EXPECT_EQ(scene.machine.ContextValue("transitionTriggered"), 402u);
    EXPECT_EQ(scene.TickWith("push"), Fired("Global", 401) + starts + Left("Hit") +
                                          Activated("Push", 61, "Hit") + Entered("Push") +
                                          Lines{"Push execution 0.5"});
    EXPECT_EQ(scene.TickWith("strong"), Fired("Global", 403) + starts + Left("Push") +
                                            Activated("Strong", 63, "Push") + Entered("Strong") +
                                            Lines{"Strong execution 0.5"});
    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 400) + Lines{"Strong execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Stand");
    EXPECT_EQ(scene.machine.StackInTree("stackBlip"), (Ids{63}));
}

TEST(HSMSequence, BlipWhoseTargetCannotBeActivatedFreezesTheMainStack)
{
    Scene scene(HitDocument());
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("lost"),
              Fired("Global", 404) +
                  (Lines{"6 State Blip: Global", ErrorBreak("vell::HSM::ActivateState"),
                         NotActivated(999), ErrorBreak("vell::HSM::PushState")}));
    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.GetCurrentState(), nullptr);
    EXPECT_EQ(scene.Tick(), Lines{});
    EXPECT_EQ(scene.machine.RevertToPreviousState(), 1);
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});
}

TEST(HSMSequence, RevertToPreviousStateEndsABlipAndOtherwisePops)
{
    Scene scene(HitDocument());
    scene.Run(1);
    scene.TickWith("hit");
    scene.machine.PushState(61u);
    scene.log.Clear();

    EXPECT_EQ(scene.machine.RevertToPreviousState(), 1);
    EXPECT_EQ(scene.log.Take(), Left("Push") + Left("Hit"));
    EXPECT_EQ(scene.machine.blipPriority, 1);
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});

    EXPECT_EQ(scene.machine.RevertToPreviousState(), 1);
    EXPECT_EQ(scene.log.Take(), Left("Stand"));
    EXPECT_EQ(scene.Tick(), Lines{});
}

TEST(HSMSequence, RevertToStartStateEmptiesBothStacksAndKeepsTheBlipPriority)
{
    Scene scene(HitDocument());
    scene.Run(1);
    EXPECT_EQ(scene.machine.RevertToStartState(), 0);
    EXPECT_EQ(scene.log.Take(), Lines{});
    scene.machine.PushState(62u);
    scene.TickWith("hit");

    EXPECT_EQ(scene.machine.RevertToStartState(), 1);

    EXPECT_EQ(scene.log.Take(), Left("Hit") + Left("Weak") + Left("Stand"));
    EXPECT_EQ(scene.machine.MainStack() + scene.machine.BlipStack(), "--");
    EXPECT_FALSE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.TickWith("weak"), Fired("Global", 402));
    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 400) + Lines{"6 State Blip: Global"} +
                                         Activated("Hit", 60, "Weak") + Entered("Hit") +
                                         Lines{"Hit execution 0.5"});
}

TEST(HSMSequence, StateOnBothStacksIsEnteredAgainAndGoesOnAfterItsExit)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("hit"))
                    .Node(Generic("Stand", 10))
                    .Node(Transition("ToStand", 400, 50, 10, {Holds("hit")}))
                    .GlobalNode(Global("Global", 50, {400})));
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 400) + Lines{"6 State Blip: Global"} +
                                         Activated("Stand", 10, "-") + Entered("Stand") +
                                         Lines{"Stand execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack() + " " + scene.machine.BlipStack(), "Stand Stand");
    scene.machine.RevertToPreviousState();
    EXPECT_EQ(scene.log.Take(), Left("Stand"));
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});
}

TEST(HSMSequence, SubstateOnBothStacksPushesItsChildASecondTimeAfterTheBlip)
{
    DocumentBuilder document = FightDocument();
    document.Parameter(PulseParameter("hit"))
        .Node(Transition("ToFight", 400, 50, 20, {Holds("hit")}))
        .GlobalNode(Global("Global", 50, {400}));
    Scene scene(document);
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 400) + Lines{"6 State Blip: Global"} +
                                         Activated("Fight", 20, "-") + Entered("Fight") +
                                         Lines{"Fight execution 0.5"});
    scene.machine.RevertToPreviousState();
    EXPECT_EQ(scene.log.Take(), Left("Fight"));
    EXPECT_EQ(scene.Tick(), Lines{"Jab execution 0.5"} + Entered("Jab"));
    EXPECT_EQ(scene.machine.StackInTree("stackStates"), (Ids{20, 23, 23}));
}

TEST(HSMSequence, StaleChildPointerIsNotHealed)
{
    Scene scene(FightDocument());
    scene.Run(1);

    scene.machine.PopState();
    scene.log.Clear();

    EXPECT_EQ(scene.Tick(), Lines{"Fight execution 0.5"});
    EXPECT_EQ(scene.Tick(), Lines{"Fight execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Fight");
}

TEST(HSMSequence, ChangeStateExitsTwiceAndEntersTwice)
{
    Scene scene(FightDocument());
    scene.Run(1);

    EXPECT_EQ(scene.machine.ChangeState(30), nullptr);

    EXPECT_EQ(scene.log.Take(), Left("Jab") + Left("Jab") + Activated("Rest", 30, "Jab") +
                                    Entered("Rest") + Entered("Rest") + Reported(0, 23, 30));
    EXPECT_EQ(scene.machine.MainStack(), "Fight/Rest");
}

} // namespace vell::test
