// VELL: data-driven hierarchical state machines.
// tests/states/SMStateTransitionsTest.cpp: the transitions of a state, their order and their
// choice.
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "tests/support/Scene.h"
#include "transitions/ConditionDefBool.h"

#include <gtest/gtest.h>

#include <deque>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// A state with transitions that a test makes; each has its position as id.
class TransitionList
{
public:
    void Add(int priority)
    {
        transitions.emplace_back();
        transitions.back().priority = priority;
        transitions.back().SetID(static_cast<unsigned int>(transitions.size()));
        state.PushTransition(&transitions.back());
    }

    /// Ids in the order of evaluation, 0 for a null entry.
    Ids Order() const
    {
        Ids ids;
        for (int i = 0; i < state.GetNumTransitions(); ++i)
        {
            TransitionDef* transition = state.GetTransitionAt(i);
            ids.push_back(transition == nullptr ? 0 : transition->GetID());
        }
        return ids;
    }

    LogRecorder log;
    std::deque<TransitionDef> transitions;
    SMState state;
};

/// A state From with transitions to To1, To2 and so on that hold always, in the order of their ids
/// 100, 101 and so on.
DocumentBuilder FanDocument(const std::vector<int>& priorities)
{
    DocumentBuilder document;
    Ids ids;
    for (unsigned int i = 0; i < priorities.size(); ++i)
    {
        ids.push_back(100 + i);
        document.Node(Generic("To" + std::to_string(i), 20 + i))
            .Node(Transition("Fan" + std::to_string(i), 100 + i, 10, 20 + i, {Holds("on")})
                      .Set(JSON_TransitionPriority, priorities[i]));
    }
    return document.Start(10).Parameter(BoolParameter("on", true)).Node(Generic("From", 10, ids));
}

bool NoteTrigger(IHSM*, SMState*)
{
    LogRecorder::Note("trigger");
    return false;
}

TransitionDef& TransitionOf(Scene& scene, unsigned int id)
{
    return *dynamic_cast<TransitionDef*>(scene.machine.FindDef(id));
}

/// Notes that it is evaluated, and holds.
class NotingCondition : public ConditionDefBool
{
public:
    bool Evaluate(HSM*) override
    {
        LogRecorder::Note("condition");
        return true;
    }
};

SMState* shrinking = nullptr;

/// Takes all transitions off a state, and does not hold.
bool TakeAllOff(IHSM*, SMState*)
{
    *std::exchange(shrinking, nullptr) = SMState();
    return false;
}

} // namespace

TEST(SMStateTransitions, SmallerPrioritiesComeFirst)
{
    TransitionList list;
    for (const int priority : {5, -3, 9, 0})
    {
        list.Add(priority);
    }

    list.state.SortTransitions();

    EXPECT_EQ(list.Order(), (Ids{2, 4, 1, 3}));
}

TEST(SMStateTransitions, EqualPrioritiesKeepTheirOrderInListsOfAnyLength)
{
    for (const int length : {32, 33, 100})
    {
        TransitionList list;
        Ids expected;
        for (int i = 0; i < length; ++i)
        {
            list.Add(i % 2 == 0 ? 5 : 1);
        }
        for (const int first : {2, 1})
        {
            for (int id = first; id <= length; id += 2)
            {
                expected.push_back(static_cast<unsigned int>(id));
            }
        }

        list.state.SortTransitions();

        EXPECT_EQ(list.Order(), expected);
    }
}

TEST(SMStateTransitions, NullEntryIsNeitherBeforeNorBehindAnother)
{
    TransitionList list;
    list.Add(5);
    list.Add(3);
    list.state.PushTransition(nullptr);
    list.Add(1);

    list.state.SortTransitions();

    EXPECT_EQ(list.Order(), (Ids{2, 1, 0, 3}));
}

TEST(SMStateTransitions, LongListWithANullEntryIsSortedOnBothSidesOfIt)
{
    constexpr int kSide = 40;
    TransitionList list;
    Ids expected;
    for (int i = 0; i < 2 * kSide; ++i)
    {
        if (i == kSide)
        {
            list.state.PushTransition(nullptr);
        }
        list.Add(-i);
    }
    for (int i = kSide; i > 0; --i)
    {
        expected.push_back(static_cast<unsigned int>(i));
    }
    expected.push_back(0);
    for (int i = 2 * kSide; i > kSide; --i)
    {
        expected.push_back(static_cast<unsigned int>(i));
    }

    list.state.SortTransitions();

    EXPECT_EQ(list.Order(), expected);
}

TEST(SMStateTransitions, NullConditionIsPassedOver)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(BoolParameter("on", true))
                    .Node(Generic("From", 10, {100}))
                    .Node(Generic("To", 11))
                    .Node(Transition("Go", 100, 10, 11, {Holds("on")})));
    TransitionDef& transition = TransitionOf(scene, 100);
    transition.conditions.insert(transition.conditions.begin(), nullptr);
    scene.Run(1);

    EXPECT_EQ(scene.machine.MainStack(), "To");
}

TEST(SMStateTransitions, SortingOfNoneAndOfOneChangesNothing)
{
    TransitionList list;
    list.state.SortTransitions();
    EXPECT_EQ(list.Order(), Ids{});

    list.Add(5);
    list.state.SortTransitions();

    EXPECT_EQ(list.Order(), Ids{1});
}

TEST(SMStateTransitions, IndexAtTheCountGivesNullAndALine)
{
    TransitionList list;
    list.Add(5);

    EXPECT_EQ(list.state.GetTransitionAt(0), &list.transitions[0]);
    EXPECT_EQ(list.log.Take(), Lines{});
    EXPECT_EQ(list.state.GetTransitionAt(1), nullptr);
    EXPECT_EQ(list.log.Take(), Lines{ErrorBreak("vell::SMState::GetTransitionAt")});
}

TEST(SMStateTransitions, NegativeIndexGivesNull)
{
    TransitionList list;
    list.Add(5);

    EXPECT_EQ(list.state.GetTransitionAt(-1), nullptr);

    EXPECT_EQ(list.log.Take(), Lines{});
}

TEST(SMStateTransitions, NoneAndNoneThatHoldsLeaveTheRecordAlone)
{
    Scene scene(FanDocument({5}));
    scene.Run(0);
    SMState* from = scene.machine.FindState(10);
    SMState bare;
    UpdateResult result;
    result.targetID = 77;
    scene.machine.SetBool("on", false);

    EXPECT_EQ(bare.ProcessTransitions(&scene.machine, &result), 0u);
    EXPECT_EQ(from->ProcessTransitions(&scene.machine, &result), 0u);

    EXPECT_EQ(result.targetID, 77u);
    EXPECT_EQ(result.transition, nullptr);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST(SMStateTransitions, SmallestPriorityThatHoldsFires)
{
    Scene scene(FanDocument({5, -2, 3}));
    scene.Run(1);

    EXPECT_EQ(scene.machine.MainStack(), "To1");
}

TEST(SMStateTransitions, FirstOfEqualPriorityFires)
{
    Scene scene(FanDocument({3, 3, 3}));
    scene.Run(1);

    EXPECT_EQ(scene.machine.MainStack(), "To0");
}

TEST(SMStateTransitions, NoLaterOneIsAskedAfterOneThatHolds)
{
    Scene scene(FanDocument({1, 2}));
    scene.Run(0);
    scene.machine.AssignTrigger("Fan1", NoteTrigger);

    EXPECT_EQ(scene.Tick(), Lines{"From execution 0.5"} + Fired("From", 100) + Left("From") +
                                Activated("To0", 20, "From") + Entered("To0") +
                                Reported(100, 10, 20));
}

TEST(SMStateTransitions, NegativePriorityComesBeforeThoseLeftAtTheDefault)
{
    const std::vector<Json> always = {Holds("on")};
    Scene scene(
        DocumentBuilder()
            .Start(10)
            .Parameter(BoolParameter("on", true))
            .Nodes({Generic("From", 10, {100, 101, 102}), Generic("To0", 20), Generic("To1", 21),
                    Generic("To2", 22)})
            .Node(Transition("Fan0", 100, 10, 20, always))
            .Node(Transition("Fan1", 101, 10, 21, always))
            .Node(Transition("Fan2", 102, 10, 22, always).Set(JSON_TransitionPriority, -1)));
    scene.Run(1);

    EXPECT_EQ(scene.machine.MainStack(), "To2");
}

TEST(SMStateTransitions, DisabledOneIsSkippedWithItsConditionsAndTriggers)
{
    Scene scene(FanDocument({1, 2}));
    scene.Run(0);
    NotingCondition condition;
    TransitionOf(scene, 100).disabled = true;
    TransitionOf(scene, 100).conditions = {&condition};
    scene.machine.AssignTrigger("Fan0", NoteTrigger);

    EXPECT_EQ(scene.Tick(), Lines{"From execution 0.5"} + Fired("From", 101) + Left("From") +
                                Activated("To1", 21, "From") + Entered("To1") +
                                Reported(101, 10, 21));
}

TEST(SMStateTransitions, OneThatIsTakenOffBeforeItsTurnLeavesALineAndIsSkipped)
{
    TransitionList list;
    UpdateResult result;
    list.Add(1);
    list.Add(2);
    list.transitions.front().RegisterCondition(TakeAllOff);
    shrinking = &list.state;

    EXPECT_EQ(list.state.ProcessTransitions(nullptr, &result), 0u);

    EXPECT_EQ(list.log.Take(), Lines{ErrorBreak("vell::SMState::GetTransitionAt")});
    EXPECT_EQ(result.transition, nullptr);
}

TEST(SMStateTransitions, NullOneIsSkipped)
{
    Scene scene(FanDocument({5}));
    scene.Run(0);
    SMState state;
    state.PushTransition(nullptr);
    state.PushTransition(&TransitionOf(scene, 100));
    UpdateResult result;

    EXPECT_EQ(state.ProcessTransitions(&scene.machine, &result), 20u);

    EXPECT_EQ(result.transition, &TransitionOf(scene, 100));
}

TEST(SMStateTransitions, OneThatFiresFillsTheRecord)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(BoolParameter("on", true))
                    .Nodes({Generic("From", 10, {100}), Generic("To", 11)})
                    .Node(Transition("Go", 100, 10, 11, {Holds("on")})
                              .Set(JSON_TransitionTag, 42)
                              .Set(JSON_TransitionPriority, -7)
                              .Set(JSON_TransitionSwitchArgument, 1.5)));
    scene.Run(0);
    UpdateResult result;
    result.stackIndex = 4;

    EXPECT_EQ(scene.machine.FindState(10)->ProcessTransitions(&scene.machine, &result), 11u);

    EXPECT_EQ(result.transition, &TransitionOf(scene, 100));
    EXPECT_EQ(result.tag, 42u);
    EXPECT_EQ(result.targetID, 11u);
    EXPECT_EQ(result.sourceID, 10u);
    EXPECT_EQ(result.priority, -7);
    EXPECT_EQ(result.switchArgument, 1.5f);
    EXPECT_EQ(result.popLevel, -1);
    EXPECT_EQ(result.stackIndex, 4);
    EXPECT_EQ(scene.log.Take(), Lines{"tree transitionTriggered = 100"});
}

TEST(SMStateTransitions, OneThatFiresIsWrittenIntoTheTreeThatASubclassShows)
{
    class ShowingMachine : public TestMachine
    {
    public:
        Tessel::KVTable GetKVTable() const override
        {
            return shown;
        }
        Tessel::KVTable shown = Tessel::CreateTable("shown");
    } machine;
    const Tessel::KVTable context = machine.shown->AddTable("contextInfo", 1);
    Scene scene(FanDocument({5}));
    scene.Run(0);
    SMState state;
    state.PushTransition(&TransitionOf(scene, 100));
    UpdateResult result;

    EXPECT_EQ(state.ProcessTransitions(&machine, &result), 20u);

    EXPECT_EQ(context->GetUInt("transitionTriggered"), 100u);
    Tessel::CloseTable(machine.shown);
}

TEST(SMStateTransitions, OneWithoutATargetFillsTheRecordAndCountsAsNone)
{
    Scene scene(FanDocument({1, 2}));
    scene.Run(0);
    TransitionOf(scene, 100).targetID = 0;
    UpdateResult result;

    EXPECT_EQ(scene.machine.FindState(10)->ProcessTransitions(&scene.machine, &result), 0u);
    EXPECT_EQ(result.transition, &TransitionOf(scene, 100));
    EXPECT_EQ(result.sourceID, 10u);
    scene.log.Clear();

    EXPECT_EQ(scene.Tick(), (Lines{"From execution 0.5", "tree transitionTriggered = 100"}));
    EXPECT_EQ(scene.machine.MainStack(), "From");
}

TEST(SMStateTransitions, AreAskedWithoutAMachine)
{
    Scene scene(FanDocument({1}));
    scene.Run(0);
    UpdateResult result;

    EXPECT_EQ(scene.machine.FindState(10)->ProcessTransitions(nullptr, &result), 20u);
    scene.machine.SetBool("on", false);
    EXPECT_EQ(scene.machine.FindState(10)->ProcessTransitions(nullptr, &result), 0u);
}

TEST(SMStateTransitions, FireWithoutATree)
{
    Scene scene(FanDocument({1}));
    scene.Run(0);
    const Tessel::KVTable tree = scene.machine.kvTable;
    scene.machine.kvTable = Tessel::KVTable();
    UpdateResult result;

    EXPECT_EQ(scene.machine.FindState(10)->ProcessTransitions(&scene.machine, &result), 20u);

    scene.machine.kvTable = tree;
    EXPECT_EQ(scene.log.Take(), Lines{});
}

} // namespace vell::test
