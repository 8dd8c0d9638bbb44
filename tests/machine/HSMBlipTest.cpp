// VELL: data-driven hierarchical state machines.
// tests/machine/HSMBlipTest.cpp: interruptions, from their start to their end.
#include "tests/support/Scene.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestAction.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace vell::test
{
namespace
{

const Lines kStarts = {"6 State Blip: Global"};

std::string Numbered(const char* name, int number)
{
    return name + std::to_string(number);
}

unsigned int MainId(int index)
{
    return 100 + 10 * static_cast<unsigned int>(index);
}

unsigned int BlipId(int index)
{
    return 200 + 10 * static_cast<unsigned int>(index);
}

/// A main stack of the states Main0, Main1 and so on, and a blip stack of Blip0, Blip1 and so on
/// that ends in the exit node Last at the index `exitIndex`. All but the last of each are levels.
DocumentBuilder TowersDocument(int mainSize, int exitIndex)
{
    DocumentBuilder document;
    document.Start(MainId(0))
        .Parameter(PulseParameter("hit"))
        .Node(Transition("ToBlip", 400, 50, BlipId(0), {Holds("hit")}))
        .GlobalNode(Global("Global", 50, {400}));
    for (int i = 0; i + 1 < mainSize; ++i)
    {
        document.Level(Numbered("Main", i), MainId(i), MainId(i + 1), {},
                       i == 0 ? 0 : MainId(i - 1));
    }
    const int mainTop = mainSize == 0 ? 0 : mainSize - 1;
    document.Node(Generic(Numbered("Main", mainTop), MainId(mainTop), {},
                          mainTop == 0 ? 0 : MainId(mainTop - 1)));
    for (int i = 0; i < exitIndex; ++i)
    {
        document.Level(Numbered("Blip", i), BlipId(i), BlipId(i + 1), {},
                       i == 0 ? 0 : BlipId(i - 1));
    }
    return document.Node(
        Exit("Last", BlipId(exitIndex), exitIndex == 0 ? 0 : BlipId(exitIndex - 1)));
}

/// The execute actions of the states NAME`top` to NAME0.
Lines Executions(const char* name, int top)
{
    Lines lines;
    for (int i = top; i >= 0; --i)
    {
        lines.push_back(Numbered(name, i) + " execution 0.5");
    }
    return lines;
}

/// What the first update of the exit node tells when it is at `exitIndex` of the blip stack.
Lines BlipEnd(int exitIndex)
{
    Lines lines = {ExitNodeLine("Last"), "6 Revert to Previous State", ExitNodeLine("Last")};
    for (int i = exitIndex - 1; i >= 0; --i)
    {
        lines = lines + Left(Numbered("Blip", i));
    }
    return lines;
}

/// What the start of element `index` of the blip stack tells.
Lines BlipStep(int index, int exitIndex)
{
    if (index == exitIndex)
    {
        return Activated("Last", BlipId(index), "-") + Lines{ExitNodeLine("Last")} +
               Entered("Last");
    }
    const std::string name = Numbered("Blip", index);
    return Activated(name, BlipId(index), "-") + Entered(name);
}

class HSMBlipEnd : public testing::TestWithParam<std::tuple<int, int>>
{
};

/// One state Stand, and a global node with the transitions 400, 401 and so on, each with a priority
/// of its own, on the parameters "go0", "go1" and so on, to the states Goal0, Goal1 and so on.
DocumentBuilder GoalsDocument(const std::vector<int>& priorities)
{
    DocumentBuilder document = SmallDocument();
    Ids transitions;
    for (unsigned int i = 0; i < priorities.size(); ++i)
    {
        const std::string number = std::to_string(i);
        transitions.push_back(400 + i);
        document.Parameter(PulseParameter("go" + number))
            .Node(Generic("Goal" + number, 60 + i))
            .Node(Transition("To" + number, 400 + i, 50, 60 + i, {Holds(("go" + number).c_str())})
                      .Set(JSON_TransitionPriority, priorities[i])
                      .Set(JSON_TransitionSwitchArgument, 0.75));
    }
    return document.GlobalNode(Global("Global", 50, transitions));
}

} // namespace

TEST_P(HSMBlipEnd, GoesOnBelowTheExitNodesIndexOfTheMainStack)
{
    const auto [mainSize, exitIndex] = GetParam();
    Scene scene(TowersDocument(mainSize, exitIndex));
    scene.Run(mainSize);
    if (mainSize == 0)
    {
        scene.machine.PopState();
        scene.log.Clear();
    }
    const std::string mainStack = scene.machine.MainStack();

    Lines expected = Fired("Global", 400) + kStarts + BlipStep(0, exitIndex);
    for (int top = 0; top < exitIndex; ++top)
    {
        scene.machine.SetBool("hit", top == 0);
        expected = expected + BlipStep(top + 1, exitIndex) + Executions("Blip", top - 1);
        ASSERT_EQ(scene.Tick(), expected);
        ASSERT_EQ(scene.machine.MainStack(), mainStack);
        expected.clear();
    }
    scene.machine.SetBool("hit", exitIndex == 0);
    if (exitIndex > mainSize)
    {
        EXPECT_THROW(scene.machine.Update(Scene::kStep), std::out_of_range);
    }
    else
    {
        scene.machine.Update(Scene::kStep);
    }

    expected = expected + BlipEnd(exitIndex);
    if (exitIndex <= mainSize)
    {
        expected = expected + Executions("Main", exitIndex - 1);
    }
    EXPECT_EQ(scene.log.Take(), expected);
    EXPECT_FALSE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.MainStack(), mainStack);
    EXPECT_EQ(scene.machine.BlipStack(), "-");
    EXPECT_EQ(scene.machine.StackInTree("stackBlip"), Ids{});
    EXPECT_EQ(scene.Tick(), Executions("Main", mainSize - 1));
}

INSTANTIATE_TEST_SUITE_P(StackSizes, HSMBlipEnd,
                         testing::Combine(testing::Range(0, 5), testing::Range(0, 6)));

TEST(HSMBlip, PriorityZeroNeverStartsOneAtRestAndOneDoes)
{
    Scene scene(GoalsDocument({0, 1}));
    scene.Run(1);

    scene.TickWith("go0");
    EXPECT_FALSE(scene.machine.IsBlipState());
    scene.TickWith("go1");

    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.blipPriority, 1);
    EXPECT_EQ(scene.machine.BlipStack(), "Goal1");
}

TEST(HSMBlip, TransitionWithoutPriorityStartsOneOfPriorityFive)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("go"))
                    .Nodes({Generic("Stand", 10), Generic("Goal", 60)})
                    .Node(Transition("ToGoal", 400, 50, 60, {Holds("go")}))
                    .GlobalNode(Global("Global", 50, {400})));
    scene.Run(1);

    scene.TickWith("go");

    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.blipPriority, 5);
}

TEST(HSMBlip, WeakTransitionThatHoldsHidesAStrongerOneBehindIt)
{
    Scene scene(GoalsDocument({9, -1}));
    scene.Run(1);
    scene.machine.SetBool("go0", true);

    EXPECT_EQ(scene.TickWith("go1"), Fired("Global", 401) + Lines{"Stand execution 0.5"});
    EXPECT_EQ(scene.machine.ContextValue("transitionTriggered"), 401u);
    EXPECT_FALSE(scene.machine.IsBlipState());
}

TEST(HSMBlip, SwitchArgumentDoesNotReachTheCallbackAtItsStart)
{
    Scene scene(GoalsDocument({5}));
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("go0"), Fired("Global", 400) + kStarts +
                                         Activated("Goal0", 60, "-", "0") + Entered("Goal0") +
                                         Lines{"Goal0 execution 0.5"});
}

TEST(HSMBlip, StartAndEndWriteNoSwitchAndTellNobody)
{
    Scene scene(GoalsDocument({5}));
    scene.Run(1);

    scene.TickWith("go0");
    EXPECT_EQ(scene.machine.ContextValue("nextState"), 0u);
    EXPECT_EQ(scene.machine.ContextValue("previousState"), 0u);
    EXPECT_EQ(scene.machine.ContextValue("transitionTriggered"), 400u);
    EXPECT_EQ(scene.machine.previousState, nullptr);
    scene.log.Clear();
    scene.machine.RevertToPreviousState();

    EXPECT_EQ(scene.log.Take(), Left("Goal0"));
    EXPECT_EQ(scene.machine.previousState, scene.machine.FindState(60));
}

TEST(HSMBlip, StartNotesTheTopIndexOfTheStackThatItInterrupts)
{
    Scene scene(GoalsDocument({5}));
    scene.Run(1);
    scene.machine.PushState(60u);
    scene.machine.PushState(60u);

    scene.TickWith("go0");
    EXPECT_EQ(scene.machine.blipStackLevel, 2);

    scene.TickWith("go0");
    EXPECT_EQ(scene.machine.blipStackLevel, 0);
}

TEST(HSMBlip, CurrentStateIsTheTopOfTheBlipStackWhileItRuns)
{
    Scene scene(GoalsDocument({5}));
    scene.Run(1);

    scene.TickWith("go0");

    EXPECT_EQ(scene.machine.currentStack, &scene.machine.blipStack);
    EXPECT_EQ(scene.machine.GetCurrentState(), scene.machine.FindState(60));
    scene.machine.RevertToPreviousState();
    EXPECT_EQ(scene.machine.currentStack, &scene.machine.stateStack);
    EXPECT_EQ(scene.machine.GetCurrentState(), scene.machine.FindState(10));
}

TEST(HSMBlip, SecondStartGoesBackToTheMainStackAndTheNextBlipEmptiesThat)
{
    Scene scene(GoalsDocument({5}));
    scene.Run(1);
    scene.TickWith("go0");

    scene.machine.Start();
    EXPECT_EQ(scene.log.Take(), Activated("Stand", 10, "-") + Entered("Stand"));
    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.blipPriority, 5);
    EXPECT_EQ(scene.machine.MainStack() + " " + scene.machine.BlipStack(), "Stand/Stand Goal0");
    EXPECT_EQ(scene.Tick(), (Lines{"Stand execution 0.5", "Stand execution 0.5"}));

    EXPECT_EQ(scene.TickWith("go0"), Fired("Global", 400) + kStarts + Left("Stand") +
                                         Left("Stand") + Activated("Goal0", 60, "Stand") +
                                         Entered("Goal0") +
                                         (Lines{"Goal0 execution 0.5", "Goal0 execution 0.5"}));
    EXPECT_EQ(scene.machine.StackInTree("stackStates"), Ids{});
    EXPECT_EQ(scene.machine.StackInTree("stackBlip"), (Ids{60, 60}));
}

TEST(HSMBlip, TransitionsInsideItRewriteTheBlipStackAndAreReported)
{
    Scene scene(
        DocumentBuilder()
            .Start(10)
            .Parameter(PulseParameter("hit"))
            .Parameter(PulseParameter("fall"))
            .Nodes({Generic("Stand", 10), Generic("Stagger", 60, {401}), Generic("Lie", 61)})
            .Node(Transition("ToStagger", 400, 50, 60, {Holds("hit")}))
            .Node(Transition("ToLie", 401, 60, 61, {Holds("fall")}))
            .GlobalNode(Global("Global", 50, {400})));
    scene.Run(1);
    scene.TickWith("hit");

    EXPECT_EQ(scene.TickWith("fall"), Lines{"Stagger execution 0.5"} + Fired("Stagger", 401) +
                                          Left("Stagger") + Activated("Lie", 61, "Stagger") +
                                          Entered("Lie") + Reported(401, 60, 61));
    EXPECT_EQ(scene.machine.StackInTree("stackBlip"), (Ids{61}));
    EXPECT_EQ(scene.machine.StackInTree("stackStates"), (Ids{10}));
}

TEST(HSMBlip, FailsToStartAndIsNotRolledBackWhenItsStateWillNotBeEntered)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(PulseParameter("hit"))
        .Nodes({Generic("Stand", 10), Node(kOwnBuilder, "Shut", 60)})
        .Node(Transition("ToShut", 400, 50, 60, {Holds("hit")}))
        .GlobalNode(Global("Global", 50, {400}));
    Scene scene(document, MakeState<ShutState>);
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("hit"),
              Fired("Global", 400) + kStarts + Activated("Shut", 60, "-") +
                  (Lines{"asked to enter", "asked to enter", ErrorBreak("vell::HSM::PushState"),
                         "3 State failed to be pushed onto state stack: 60"}));
    EXPECT_TRUE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.machine.GetCurrentState(), nullptr);
    EXPECT_EQ(scene.machine.MainStack() + scene.machine.BlipStack(), "Stand-");
    EXPECT_EQ(scene.machine.blipPriority, 5);
}

TEST(HSMBlip, IsSetUpWholeBeforeItsStateIsEntered)
{
    Lines lines;
    Lines seen;
    Scene scene(GoalsDocument({5, 7}));
    scene.Run(1);
    scene.machine.PushState(10u);
    auto* action = new TestAction("Goal1", lines);
    action->onPerform = [&]
    {
        seen = {scene.machine.IsBlipState() ? "blip" : "no blip",
                std::to_string(scene.machine.blipPriority),
                std::to_string(scene.machine.blipStackLevel),
                scene.machine.MainStack(),
                scene.machine.currentStack == &scene.machine.blipStack ? "on the blip's stack"
                                                                       : "on the main stack",
                scene.machine.BlipStack()};
    };
    scene.machine.FindDef("Goal1")->RegisterEnter(action);

    scene.TickWith("go1");
    EXPECT_EQ(seen, (Lines{"blip", "7", "1", "Stand/Stand", "on the blip's stack", "-"}));

    seen.clear();
    scene.TickWith("go1");
    EXPECT_EQ(seen, (Lines{"blip", "7", "0", "Stand/Stand", "on the blip's stack", "-"}));
}

TEST(HSMBlip, MayBeEndedByTheEnterActionOfItsState)
{
    struct Case
    {
        const char* what;
        int (HSM::*end)();
        int priority; ///< left behind
        std::string stack;
        bool startsAgain;
    };
    const std::vector<Case> cases = {
        {"previous", &HSM::RevertToPreviousState, 1, "Stand/Goal1", true},
        {"start", &HSM::RevertToStartState, 7, "Goal1", false},
    };
    for (const Case& one : cases)
    {
        Lines lines;
        Scene scene(GoalsDocument({5, 7}));
        scene.Run(1);
        auto* action = new TestAction("Goal1", lines);
        action->onPerform = [&]
        {
            (scene.machine.*one.end)();
        };
        scene.machine.FindDef("Goal1")->RegisterEnter(action);

        scene.TickWith("go1");

        EXPECT_FALSE(scene.machine.IsBlipState()) << one.what;
        EXPECT_EQ(scene.machine.blipPriority, one.priority) << one.what;
        EXPECT_EQ(scene.machine.MainStack(), one.stack) << one.what;
        EXPECT_EQ(scene.machine.BlipStack(), "-") << one.what;

        // At rest a weaker one starts; what the ended one left behind keeps it out.
        scene.TickWith("go0");
        EXPECT_EQ(scene.machine.IsBlipState(), one.startsAgain) << one.what;
    }
}

TEST(HSMBlip, DroppedTransitionLeavesItsTargetWithoutEffect)
{
    DocumentBuilder document = GoalsDocument({0});
    document.Parameter(PulseParameter("walk"))
        .Nodes({Generic("March", 11, {500}), Generic("Halt", 12)})
        .Node(Transition("MarchToHalt", 500, 11, 12, {Holds("walk")}))
        .Start(11);
    Scene scene(document);
    scene.Run(1);

    EXPECT_EQ(scene.TickWith("go0"), Fired("Global", 400) + Lines{"March execution 0.5"});
    scene.machine.SetBool("go0", true);
    EXPECT_EQ(scene.TickWith("walk"), Fired("Global", 400) + Lines{"March execution 0.5"} +
                                          Fired("March", 500) + Left("March") +
                                          Activated("Halt", 12, "March") + Entered("Halt") +
                                          Reported(500, 11, 12));
}

namespace
{

/// A blip whose exit node, at `exitIndex` of its stack, has a transition to After that holds with
/// "hit", over a main stack of the states Low and High.
DocumentBuilder LeadingExitDocument(int exitIndex)
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("hit", false))
        .Nodes({Generic("Low", 10), Generic("High", 11), Generic("After", 12)})
        .Node(Exit("Last", 60).Set(JSON_Children, Json::Array(Ids{401})))
        .Level("Around", 70, 60)
        .Node(Transition("ToBlip", 400, 50, exitIndex == 0 ? 60 : 70, {Holds("hit")}))
        .Node(Transition("ToAfter", 401, 60, 12, {BoolCondition("hit", false)}))
        .GlobalNode(Global("Global", 50, {400}));
}

} // namespace

TEST(HSMBlip, TransitionOfThePoppedExitNodeRewritesTheMainStackFromItsIndex)
{
    Scene scene(LeadingExitDocument(1));
    scene.Run(0);
    scene.machine.PushState(11u);
    scene.TickWith("hit");
    ASSERT_EQ(scene.machine.BlipStack(), "Around/Last");
    scene.machine.SetBool("hit", false);
    scene.log.Clear();

    EXPECT_EQ(scene.Tick(),
              (Lines{ExitNodeLine("Last"), "6 Revert to Previous State", ExitNodeLine("Last")}) +
                  Left("Around") + Fired("Last", 401) + Left("High") +
                  Activated("After", 12, "High") + Entered("After") + Reported(401, 11, 12) +
                  Lines{"Low execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Low/After");
}

TEST(HSMBlip, TransitionOfThePoppedExitNodePushesOntoAShorterMainStack)
{
    Scene scene(LeadingExitDocument(1));
    scene.Run(0);
    scene.TickWith("hit");
    scene.machine.SetBool("hit", false);
    scene.log.Clear();

    EXPECT_EQ(scene.Tick(),
              (Lines{ExitNodeLine("Last"), "6 Revert to Previous State", ExitNodeLine("Last")}) +
                  Left("Around") + Fired("Last", 401) + Activated("After", 12, "Last") +
                  Entered("After") + Reported(401, 0, 12) + Lines{"Low execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Low/After");
}

} // namespace vell::test
