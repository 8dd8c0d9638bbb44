// VELL: data-driven hierarchical state machines.
// tests/machine/HSMStackTest.cpp: pushing, popping and rewriting of the stacks.
#include <vell/UpdateResult.h>

#include "tests/support/Scene.h"
#include "tests/support/TestAction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// The states Low (10), Mid (11) and High (12), and Shut (13), which cannot be entered. Transitions
/// of Mid lead to High (100), to no node (101) and to Shut (102).
DocumentBuilder StackDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(PulseParameter("up"))
        .Parameter(PulseParameter("lost"))
        .Parameter(PulseParameter("shut"))
        .Nodes({Generic("Low", 10), Generic("Mid", 11, {100, 101, 102}), Generic("High", 12)})
        .Node(Node(kOwnBuilder, "Shut", 13))
        .Node(Transition("ToHigh", 100, 11, 12, {Holds("up")})
                  .Set(JSON_TransitionSwitchArgument, 0.125))
        .Node(Transition("ToNowhere", 101, 11, 999, {Holds("lost")}))
        .Node(Transition("ToShut", 102, 11, 13, {Holds("shut")}));
}

/// A running machine with Low below Mid.
class HSMStack : public testing::Test
{
protected:
    HSMStack() : scene(StackDocument(), MakeState<ShutState>), machine(scene.machine)
    {
        scene.Run(0);
        machine.PushState(11u);
        scene.log.Clear();
    }

    Scene scene;
    TestMachine& machine;
};

/// Notes the stack at the moment it performs.
Action* NoteStack(TestMachine& machine)
{
    return new TestAction(
        [&machine](float)
        {
            LogRecorder::Note("stack: " + machine.MainStack());
            return 0;
        });
}

/// Calls a function once, when its state is left.
Action* OnceOnExit(const std::function<void()>& call)
{
    return new TestAction(
        [call, isDone = std::make_shared<bool>(false)](float)
        {
            if (!std::exchange(*isDone, true))
            {
                call();
            }
            return 1;
        });
}

UpdateResult Record(int popLevel, unsigned int target)
{
    UpdateResult result;
    result.popLevel = popLevel;
    result.targetID = target;
    return result;
}

} // namespace

TEST_F(HSMStack, PushByIdActivatesEntersAndAppends)
{
    SMState* pushed = machine.PushState(12u);

    EXPECT_EQ(pushed, machine.FindState(12));
    EXPECT_EQ(scene.log.Take(), Activated("High", 12, "-") + Entered("High"));
    EXPECT_EQ(machine.StackInTree("stackStates"), (Ids{10, 11, 12}));
    EXPECT_EQ(machine.GetCurrentState(), pushed);
}

TEST_F(HSMStack, PushByPointerActivatesNothing)
{
    SMState* low = machine.FindState(10);

    EXPECT_EQ(machine.PushState(low), low);

    EXPECT_EQ(scene.log.Take(), Entered("Low"));
    EXPECT_EQ(machine.MainStack(), "Low/Mid/Low");
}

TEST_F(HSMStack, StateIsEnteredBeforeItStandsOnTheStack)
{
    machine.FindDef(12u)->RegisterEnter(NoteStack(machine));

    machine.PushState(12u);

    EXPECT_EQ(scene.log.Take(),
              Activated("High", 12, "-") +
                  (Lines{"High entry 0", "stack: Low/Mid", "6 [Enter] High - SMState.cpp : #"}));
}

TEST_F(HSMStack, PushOfAStateThatWillNotBeEnteredAsksTwiceAndLeavesTheStack)
{
    SMState* shut = machine.ActivateState(13, 0.0f);
    scene.log.Clear();

    EXPECT_EQ(machine.PushState(shut), nullptr);

    EXPECT_EQ(scene.log.Take(),
              (Lines{"asked to enter", "asked to enter", ErrorBreak("vell::HSM::PushState")}));
    EXPECT_EQ(machine.StackInTree("stackStates"), (Ids{10, 11}));
}

TEST_F(HSMStack, PushByIdOfAStateThatWillNotBeEnteredNamesTheId)
{
    EXPECT_EQ(machine.PushState(13u), nullptr);

    EXPECT_EQ(scene.log.Take(),
              Activated("Shut", 13, "-") +
                  (Lines{"asked to enter", "asked to enter", ErrorBreak("vell::HSM::PushState"),
                         "3 State failed to be pushed onto state stack: 13"}));
    EXPECT_EQ(machine.MainStack(), "Low/Mid");
}

TEST_F(HSMStack, PushOfAnUnknownIdGivesNull)
{
    EXPECT_EQ(machine.PushState(999u), nullptr);

    EXPECT_EQ(scene.log.Take(), (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(999),
                                       ErrorBreak("vell::HSM::PushState")}));
    EXPECT_EQ(machine.MainStack(), "Low/Mid");
}

TEST_F(HSMStack, PopExitsTheTopAndKeepsTheStateForTheNextActivation)
{
    SMState* mid = machine.FindState(11);

    EXPECT_EQ(machine.PopState(), mid);

    EXPECT_EQ(scene.log.Take(), Left("Mid"));
    EXPECT_EQ(machine.StackInTree("stackStates"), (Ids{10}));
    EXPECT_EQ(machine.FindState(11), mid);
    EXPECT_EQ(machine.previousState, nullptr);
}

TEST_F(HSMStack, StateIsLeftWhileItStillStandsOnTheStack)
{
    machine.FindDef(11u)->RegisterExit(NoteStack(machine));

    machine.PopState();

    EXPECT_EQ(scene.log.Take(), Left("Mid") + Lines{"stack: Low/Mid"});
    EXPECT_EQ(machine.MainStack(), "Low");
}

TEST_F(HSMStack, PopOfANullEntryChangesNothing)
{
    machine.stateStack.push_back(nullptr);

    EXPECT_EQ(machine.PopState(), nullptr);

    EXPECT_EQ(scene.log.Take(), (Lines{ErrorBreak("vell::HSM::PopState")}));
    EXPECT_EQ(machine.stateStack.size(), 3u);
}

TEST_F(HSMStack, PopOfAnEmptyStackGivesNull)
{
    machine.PopState();
    machine.PopState();
    scene.log.Clear();

    EXPECT_EQ(machine.PopState(), nullptr);
    EXPECT_EQ(machine.RevertToPreviousState(), 1);
    EXPECT_EQ(machine.GetCurrentState(), nullptr);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST_F(HSMStack, NullStateIsNotPushed)
{
    EXPECT_EQ(machine.PushState(static_cast<SMState*>(nullptr)), nullptr);

    EXPECT_EQ(machine.MainStack(), "Low/Mid");
}

TEST_F(HSMStack, RewriteRefusesANullRecord)
{
    EXPECT_EQ(machine.UpdateStateStack(nullptr), 0);

    EXPECT_EQ(scene.log.Take(), (Lines{ErrorBreak("vell::HSM::UpdateStateStack")}));
}

TEST_F(HSMStack, RewriteWithoutATargetPopsOnly)
{
    UpdateResult result = Record(1, 0);

    EXPECT_EQ(machine.UpdateStateStack(&result), 1);

    EXPECT_EQ(scene.log.Take(), Left("Mid"));
    EXPECT_EQ(machine.previousState, machine.FindState(11));
    EXPECT_EQ(result.popLevel, 1);
}

TEST_F(HSMStack, RewriteRemembersTheFirstStatePoppedOnly)
{
    UpdateResult result = Record(0, 12);
    result.switchArgument = 0.5f;

    EXPECT_EQ(machine.UpdateStateStack(&result), 1);

    EXPECT_EQ(scene.log.Take(), Left("Mid") + Left("Low") + Activated("High", 12, "Mid", "0.5") +
                                    Entered("High") + Reported(0, 11, 12));
    EXPECT_EQ(machine.previousState, machine.FindState(11));
    EXPECT_EQ(result.popLevel, -1);
    EXPECT_EQ(result.targetID, 0u);
}

TEST_F(HSMStack, RewriteAboveTheTopPopsNothingAndReportsNoPreviousState)
{
    UpdateResult result = Record(2, 12);

    EXPECT_EQ(machine.UpdateStateStack(&result), 1);

    EXPECT_EQ(scene.log.Take(), Activated("High", 12, "-") + Entered("High") + Reported(0, 0, 12));
    EXPECT_EQ(machine.MainStack(), "Low/Mid/High");
}

TEST_F(HSMStack, RewriteOfAFreshRecordWalksBelowTheStack)
{
    UpdateResult result;

    EXPECT_THROW(machine.UpdateStateStack(&result), std::out_of_range);
}

TEST_F(HSMStack, TransitionHandsItsSwitchArgumentToTheCallback)
{
    EXPECT_EQ(scene.TickWith("up"), Lines{"Mid execution 0.5"} + Fired("Mid", 100) + Left("Mid") +
                                        Activated("High", 12, "Mid", "0.125") + Entered("High") +
                                        Reported(100, 11, 12) + Lines{"Low execution 0.5"});
}

TEST_F(HSMStack, UnknownTargetLeavesTheStackShorterAndNotifiesNobody)
{
    EXPECT_EQ(scene.TickWith("lost"),
              Lines{"Mid execution 0.5"} + Fired("Mid", 101) + Left("Mid") +
                  (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(999),
                         ErrorBreak("vell::HSM::UpdateStateStack"), "Low execution 0.5"}));
    EXPECT_EQ(machine.StackInTree("stackStates"), (Ids{10}));
    EXPECT_EQ(machine.ContextValue("transitionTriggered"), 101u);
    EXPECT_EQ(machine.ContextValue("nextState"), 0u);
}

TEST_F(HSMStack, FailedPushOfATargetIsReportedAllTheSame)
{
    EXPECT_EQ(scene.TickWith("shut"),
              Lines{"Mid execution 0.5"} + Fired("Mid", 102) + Left("Mid") +
                  Activated("Shut", 13, "Mid") +
                  (Lines{"asked to enter", "asked to enter", ErrorBreak("vell::HSM::PushState")}) +
                  Reported(102, 11, 13) + Lines{"Low execution 0.5"});
    EXPECT_EQ(machine.MainStack(), "Low");
}

TEST_F(HSMStack, ChangeIsReportedWithZerosWithoutATree)
{
    const Tessel::KVTable tree = machine.kvTable;
    machine.kvTable = Tessel::KVTable();
    UpdateResult result = Record(1, 12);

    machine.UpdateStateStack(&result);

    machine.kvTable = tree;
    EXPECT_EQ(scene.log.Take(), Left("Mid") + Activated("High", 12, "Mid") + Entered("High") +
                                    Lines{"changes: change 0: 0 -> 0"});
}

TEST(HSMStackBeforeStart, HoldsNothingAndTakesNothing)
{
    Scene scene(StackDocument());

    EXPECT_EQ(scene.machine.PopState(), nullptr);
    EXPECT_EQ(scene.machine.RevertToPreviousState(), 1);
    EXPECT_EQ(scene.machine.RevertToStartState(), 0);
    EXPECT_EQ(scene.machine.GetCurrentState(), nullptr);
    EXPECT_FALSE(scene.machine.IsBlipState());
    EXPECT_EQ(scene.log.Take(), Lines{});
    EXPECT_EQ(scene.machine.PushState(10u), nullptr);
    EXPECT_EQ(scene.log.Take(), Activated("Low", 10, "-") +
                                    Lines{"3 State failed to be pushed onto state stack: 10"});
}

TEST(HSMStartState, ClimbsFromALevelToTheOutermostOneWithoutPushing)
{
    Scene scene(DocumentBuilder()
                    .Start(30)
                    .Level("Outer", 10, 20)
                    .Level("Inner", 20, 30, {}, 10)
                    .Node(Generic("Leaf", 30, {}, 20)));
    std::vector<unsigned int> ids;

    scene.machine.StartState(20, ids);

    EXPECT_EQ(ids, (Ids{20, 10}));
    EXPECT_EQ(scene.log.Take(), Activated("Inner", 20, "-") + Activated("Outer", 10, "-"));
    EXPECT_EQ(scene.machine.MainStack(), "-");
}

TEST(HSMStartState, EndsWhereLevelsAreEachOthersParents)
{
    Scene scene(DocumentBuilder()
                    .Start(30)
                    .Level("One", 10, 30, {}, 20)
                    .Level("Other", 20, 30, {}, 10)
                    .Node(Generic("Leaf", 30, {}, 20)));
    std::vector<unsigned int> ids;

    scene.machine.StartState(20, ids);

    EXPECT_EQ(ids, (Ids{20, 10}));
    EXPECT_EQ(scene.log.Take(), Activated("Other", 20, "-") + Activated("One", 10, "-") +
                                    Activated("Other", 20, "-"));
}

TEST(HSMStartState, GivesNothingForAStateThatIsNoLevel)
{
    Scene scene(StackDocument());
    std::vector<unsigned int> ids;

    scene.machine.StartState(10, ids);
    scene.machine.StartState(999, ids);

    EXPECT_EQ(ids, Ids{});
    EXPECT_EQ(scene.log.Take(),
              Activated("Low", 10, "-") +
                  (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(999)}));
}

TEST_F(HSMStack, TickReportsANullEntryAndUpdatesTheOthers)
{
    machine.stateStack.push_back(nullptr);

    machine.Update(0.1f);

    const Lines lines = scene.log.Take();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), ErrorBreak("vell::HSM::UpdateState"));
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Low execution 0.1"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Mid execution 0.1"), 1);
}

TEST_F(HSMStack, RewriteLeavesANullEntryWithoutALine)
{
    machine.stateStack.insert(machine.stateStack.begin() + 1, nullptr);
    UpdateResult result = Record(1, 0);

    machine.UpdateStateStack(&result);

    EXPECT_EQ(scene.log.Take(), Left("Mid"));
    ASSERT_EQ(machine.stateStack.size(), 2u);
    EXPECT_EQ(machine.stateStack[1], nullptr);
}

namespace
{

struct StackChange
{
    const char* name;
    std::function<void(TestMachine&)> change;
    const char* mainStack;
    const char* blipStack;
};

std::ostream& operator<<(std::ostream& out, const StackChange& change)
{
    return out << change.name;
}

} // namespace

/// What is done while Mid is being left, by PopState of the stack Low/Mid.
class PopStateDuring : public HSMStack, public testing::WithParamInterface<StackChange>
{
};

TEST_P(PopStateDuring, RemovesTheStateThatWasLeftAndNoOther)
{
    machine.FindDef(11u)->RegisterExit(OnceOnExit(
        [this]
        {
            GetParam().change(machine);
        }));
    SMState* const mid = machine.GetCurrentState();

    EXPECT_EQ(machine.PopState(), mid);

    EXPECT_EQ(machine.MainStack(), GetParam().mainStack);
    EXPECT_EQ(machine.BlipStack(), GetParam().blipStack);
}

INSTANTIATE_TEST_SUITE_P(HSMStack, PopStateDuring,
                         testing::Values(StackChange{"a push",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.PushState(12u);
                                                     },
                                                     "Low/High", "-"},
                                         StackChange{"a pop of the same state",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.PopState();
                                                     },
                                                     "Low", "-"},
                                         StackChange{"two pops",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.PopState();
                                                         machine.PopState();
                                                     },
                                                     "-", "-"},
                                         StackChange{"a pop and a push of the same state",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.PopState();
                                                         machine.PushState(11u);
                                                     },
                                                     "Low", "-"},
                                         StackChange{"a revert without a blip",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.RevertToPreviousState();
                                                     },
                                                     "Low", "-"},
                                         StackChange{"the other stack becoming the current one",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.currentStack = &machine.blipStack;
                                                         machine.PushState(12u);
                                                     },
                                                     "Low", "High"},
                                         StackChange{"an empty context",
                                                     [](TestMachine& machine)
                                                     {
                                                         machine.SetContextInfo(Tessel::KVTable());
                                                     },
                                                     "-", "-"}));

TEST_F(HSMStack, PopDuringABlipThatEndsMeanwhileTouchesTheStackAndTheArrayOfTheBlip)
{
    machine.currentStack = &machine.blipStack;
    machine.blipActive = true;
    machine.PushState(12u);
    machine.FindDef(12u)->RegisterExit(OnceOnExit(
        [this]
        {
            machine.blipActive = false;
            machine.currentStack = &machine.stateStack;
        }));

    machine.PopState();

    EXPECT_EQ(machine.MainStack(), "Low/Mid");
    EXPECT_EQ(machine.BlipStack(), "-");
    EXPECT_EQ(machine.StackInTree("stackStates"), (std::vector<unsigned int>{10, 11}));
    EXPECT_EQ(machine.StackInTree("stackBlip"), std::vector<unsigned int>());
}

TEST_F(HSMStack, PopLeavesTheArrayWhenTheStateIsGoneAlready)
{
    machine.FindDef(11u)->RegisterExit(OnceOnExit(
        [this]
        {
            machine.stateStack.pop_back();
        }));

    machine.PopState();

    EXPECT_EQ(machine.MainStack(), "Low");
    EXPECT_EQ(machine.StackInTree("stackStates"), (std::vector<unsigned int>{10, 11}));
}

} // namespace vell::test
