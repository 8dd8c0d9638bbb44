// VELL: data-driven hierarchical state machines.
// tests/machine/HSMObserversTest.cpp: listeners of state changes and events.
#include <vell/Events.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestListener.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>

namespace vell::test
{
namespace
{

using Subscription = int (HSM::*)(IBroadcastListener*);

struct ListenerLists
{
    Subscription subscribe;
    Subscription unsubscribe;
};

constexpr ListenerLists kStateChange{&HSM::SubscribeStateChange, &HSM::UnsubscribeStateChange};
constexpr ListenerLists kTransitionChange{&HSM::SubscribeTransitionChange,
                                          &HSM::UnsubscribeTransitionChange};
constexpr ListenerLists kEvents{&HSM::SubscribeEvents, &HSM::UnsubscribeEvents};
constexpr ListenerLists kAllLists[] = {kStateChange, kTransitionChange, kEvents};

DocumentBuilder TwoStates()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("lost", false))
        .Parameter(BoolParameter("hit", false))
        .Node(Generic("Stand", 10, {100, 101}))
        .Node(Clip("Walk", 11, "walk.anim"))
        .Node(Clip("Flinch", 12, "flinch.anim").Set(JSON_ClipFlag, true))
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Lose", 101, 10, 999, {BoolCondition("lost", true)}))
        .GlobalNode(Global("Anywhere", 50, {500}))
        .GlobalNode(Transition("Hit", 500, 50, 12, {BoolCondition("hit", true)}));
}

class HSMObservers : public testing::Test
{
protected:
    void SetUp() override
    {
        log.Clear();
    }

    /// Subscribes listeners to state changes, in the order given.
    void Hear(std::initializer_list<IBroadcastListener*> listeners)
    {
        for (IBroadcastListener* listener : listeners)
        {
            machine.SubscribeStateChange(listener);
        }
    }

    Tessel::KVTable Context() const
    {
        return TableAt(machine.GetKVTable(), "contextInfo");
    }

    LogRecorder log;
    StartedMachine machine{TwoStates()};
    Lines notes;
    TestListener a{notes, "a"};
    TestListener b{notes, "b"};
    TestListener c{notes, "c"};
};

const Ids kNoSwitch{0, 0, 0};
const Ids kWalkSwitch{100, 10, 11};

int NoteWrite(void* object, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    static_cast<Lines*>(object)->push_back(std::string(key) + " = " +
                                           std::to_string(table->GetUInt(key)));
    return 0;
}

} // namespace

TEST_F(HSMObservers, TakeAListenerOnceAListAndLetItGoOnce)
{
    for (const ListenerLists& list : kAllLists)
    {
        EXPECT_EQ((machine.*list.subscribe)(&a), 1);
        EXPECT_EQ((machine.*list.subscribe)(&a), 0);
        EXPECT_EQ((machine.*list.unsubscribe)(&a), 1);
        EXPECT_EQ((machine.*list.unsubscribe)(&a), 0);
    }
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMObservers, CallAListenerOnceThatSubscribedTwice)
{
    machine.SubscribeStateChange(&a);
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, GiveZeroForUnsubscribingAnUnknownListener)
{
    machine.SubscribeStateChange(&a);

    EXPECT_EQ(machine.UnsubscribeStateChange(&b), 0);
    EXPECT_EQ(machine.UnsubscribeEvents(&a), 0);
    EXPECT_EQ(machine.UnsubscribeTransitionChange(&a), 0);

    machine.TickWith("go");
    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, AreCalledInTheOrderOfSubscription)
{
    Hear({&c, &a, &b});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"c: change 100: 10 -> 11", "a: change 100: 10 -> 11",
                            "b: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, EachReceiveARecordOfTheirOwn)
{
    a.then = [&]
    {
        // The machine's records are no constants, so this is allowed, and rude.
        *const_cast<StateChangeEvent*>(static_cast<const StateChangeEvent*>(a.record)) = {1, 2, 3};
    };
    Hear({&a, &b});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11", "b: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, ReceiveTheSameRecordWhateverAnEarlierOneWritesIntoTheTree)
{
    a.then = [&]
    {
        Context()->SetUInt("transitionTriggered", 7, 1);
        Context()->SetUInt("previousState", 8, 1);
        Context()->SetUInt("nextState", 9, 1);
    };
    Hear({&a, &b});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11", "b: change 100: 10 -> 11"}));
    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
}

TEST_F(HSMObservers, KeepTheirOrderWhenOneOfThemGoes)
{
    Hear({&a, &b, &c});
    machine.UnsubscribeStateChange(&a);
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"b: change 100: 10 -> 11", "c: change 100: 10 -> 11",
                            "a: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, OfTransitionChangesAreNeverCalled)
{
    machine.SubscribeTransitionChange(&a);

    machine.TickWith("go");
    machine.TickWith("hit");

    EXPECT_EQ(notes, Lines());
    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(machine.BlipStack(), "Flinch");
}

TEST_F(HSMObservers, OfTransitionChangesLeaveTheSwitchKeysAlone)
{
    machine.SubscribeTransitionChange(&a);
    machine.SubscribeEvents(&b);

    machine.TickWith("go");

    EXPECT_EQ(machine.LastSwitch(), kWalkSwitch);
}

TEST_F(HSMObservers, LeaveTheLastSwitchReadableWhenThereAreNone)
{
    machine.TickWith("go");

    EXPECT_EQ(machine.LastSwitch(), kWalkSwitch);
}

TEST_F(HSMObservers, LeaveZeroInTheSwitchKeysAfterTheirCall)
{
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
}

TEST_F(HSMObservers, FindTheSwitchKeysAsTheRecordWhileTheyAreCalled)
{
    Ids seen;
    a.then = [&]
    {
        seen = machine.LastSwitch();
    };
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(seen, kWalkSwitch);
}

TEST_F(HSMObservers, SeeOneOrderOfWritesAroundTheirCall)
{
    Tessel::KVListener* listener = Context()->GetTableListener();
    listener->object = &notes;
    listener->function = NoteWrite;
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"transitionTriggered = 100", "previousState = 10", "nextState = 11",
                            "a: change 100: 10 -> 11", "nextState = 0", "previousState = 0",
                            "transitionTriggered = 0"}));
}

TEST_F(HSMObservers, MayBeNullWhichIsPassedOverAndNotCounted)
{
    EXPECT_EQ(machine.SubscribeEvents(nullptr), 1);
    EXPECT_EQ(machine.SubscribeEvents(nullptr), 0);
    machine.SubscribeEvents(&a);

    EXPECT_EQ(machine.FireEvent(static_cast<__HSMEventType__>(9), nullptr), 1);

    EXPECT_EQ(notes, (Lines{"a: event 9"}));
    EXPECT_EQ(machine.UnsubscribeEvents(nullptr), 1);
    EXPECT_EQ(machine.UnsubscribeEvents(nullptr), 0);
}

TEST_F(HSMObservers, ThatAreNullStillHaveTheSwitchKeysSetToZero)
{
    machine.SubscribeStateChange(nullptr);

    machine.TickWith("go");

    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST_F(HSMObservers, ReceiveThreeZerosWithoutATree)
{
    const Tessel::KVTable root = machine.kvTable;
    machine.kvTable = Tessel::KVTable();
    machine.SubscribeStateChange(&a);

    machine.ChangeState(11);

    EXPECT_EQ(notes, (Lines{"a: change 0: 0 -> 0"}));
    machine.kvTable = root;
}

TEST_F(HSMObservers, ReceiveThreeZerosFromATreeWithoutTheContext)
{
    const Tessel::KVTable root = machine.kvTable;
    machine.kvTable = Tessel::CreateTable("other");
    machine.SubscribeStateChange(&a);

    machine.ChangeState(11);

    EXPECT_EQ(notes, (Lines{"a: change 0: 0 -> 0"}));
    EXPECT_EQ(machine.kvTable->GetKeyCount(), 0u);
    Tessel::CloseTable(machine.kvTable);
    machine.kvTable = root;
}

TEST_F(HSMObservers, HearOfADirectSwitchWithoutATransition)
{
    machine.SubscribeStateChange(&a);

    machine.ChangeState(11);

    EXPECT_EQ(notes, (Lines{"a: change 0: 10 -> 11"}));
}

TEST_F(HSMObservers, ReceiveTheTransitionOfAnEarlierFailedTargetWithTheNextSwitch)
{
    machine.SubscribeStateChange(&a);

    machine.TickWith("lost");
    EXPECT_EQ(notes, Lines());
    EXPECT_EQ(machine.LastSwitch(), (Ids{101, 0, 0}));

    machine.ChangeState(11);
    EXPECT_EQ(notes, (Lines{"a: change 101: 10 -> 11"}));
}

TEST_F(HSMObservers, HearNothingOfAStartAndTheEndOfABlip)
{
    machine.SubscribeStateChange(&a);

    machine.TickWith("hit");
    ASSERT_EQ(machine.BlipStack(), "Flinch");
    EXPECT_EQ(machine.LastSwitch(), (Ids{500, 0, 0}));
    machine.RevertToPreviousState();

    EXPECT_EQ(machine.BlipStack(), "-");
    EXPECT_EQ(notes, Lines());
    EXPECT_EQ(machine.LastSwitch(), (Ids{500, 0, 0}));
}

TEST_F(HSMObservers, HearNothingOfPushesAndPopsByTheHost)
{
    machine.SubscribeStateChange(&a);

    machine.PushState(11u);
    machine.PopState();

    EXPECT_EQ(notes, Lines());
    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
}

TEST_F(HSMObservers, ThatUnsubscribeThemselvesMakeTheNextOneBeSkipped)
{
    a.then = [&]
    {
        machine.UnsubscribeStateChange(&a);
    };
    Hear({&a, &b, &c});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11", "c: change 100: 10 -> 11"}));
    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
}

TEST_F(HSMObservers, AreNotCalledAfterAnotherTookThemOff)
{
    a.then = [&]
    {
        machine.UnsubscribeStateChange(&c);
    };
    Hear({&a, &b, &c});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11", "b: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, ThatSubscribeDuringACallAreCalledInTheSameWalk)
{
    a.then = [&]
    {
        machine.SubscribeStateChange(&b);
    };
    machine.SubscribeStateChange(&a);

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11", "b: change 100: 10 -> 11"}));
}

TEST_F(HSMObservers, MayAllBeTakenOffDuringACall)
{
    a.then = [&]
    {
        machine.UnsubscribeStateChange(&c);
        machine.UnsubscribeStateChange(&b);
        machine.UnsubscribeStateChange(&a);
    };
    Hear({&a, &b, &c});

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11"}));
    EXPECT_EQ(machine.LastSwitch(), kNoSwitch);
}

TEST_F(HSMObservers, OfEventsReceiveWhatTheHostFiresWithItsKind)
{
    const __PlayAnimEvent__ event{"wave.anim", true, 2.5f};
    machine.SubscribeEvents(&b);
    machine.SubscribeEvents(&a);
    machine.SubscribeStateChange(&c);

    EXPECT_EQ(machine.FireEvent(HSMEventPlayAnimation, &event), 2);
    EXPECT_EQ(machine.FireEvent(static_cast<__HSMEventType__>(42), &event), 2);

    EXPECT_EQ(notes, (Lines{"b: play wave.anim 1 2.5", "a: play wave.anim 1 2.5", "b: event 42",
                            "a: event 42"}));
}

TEST_F(HSMObservers, OfEventsMayBeMissing)
{
    EXPECT_EQ(machine.FireEvent(HSMEventPlayAnimation, nullptr), 0);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMObservers, OfEventsMayComeAndGoDuringACall)
{
    a.then = [&]
    {
        machine.UnsubscribeEvents(&a);
        machine.SubscribeEvents(&c);
    };
    machine.SubscribeEvents(&a);
    machine.SubscribeEvents(&b);

    EXPECT_EQ(machine.FireEvent(static_cast<__HSMEventType__>(1), nullptr), 2);

    EXPECT_EQ(notes, (Lines{"a: event 1", "c: event 1"}));
}

TEST_F(HSMObservers, OfEventsAreCountedAsTheyAreCalledAndNotAsTheySubscribe)
{
    struct Case
    {
        const char* what;
        std::function<void()> then; ///< what `c`, the last of three, does
        int called;
    };
    const std::vector<Case> cases = {
        {"leaves",
         [&]
         {
             machine.UnsubscribeEvents(&c);
         },
         3},
        {"takes an earlier one off",
         [&]
         {
             machine.UnsubscribeEvents(&a);
         },
         3},
        {"takes all off",
         [&]
         {
             machine.UnsubscribeEvents(&a);
             machine.UnsubscribeEvents(&b);
             machine.UnsubscribeEvents(&c);
         },
         3},
        {"adds a null",
         [&]
         {
             machine.SubscribeEvents(nullptr);
         },
         3},
        {"moves the first to the end",
         [&]
         {
             machine.UnsubscribeEvents(&a);
             machine.SubscribeEvents(&a);
         },
         3},
    };
    for (const Case& one : cases)
    {
        for (IBroadcastListener* listener : {&a, &b, &c})
        {
            machine.SubscribeEvents(listener);
        }
        c.then = one.then;

        EXPECT_EQ(machine.FireEvent(static_cast<__HSMEventType__>(1), nullptr), one.called)
            << one.what;
        EXPECT_EQ(notes, (Lines{"a: event 1", "b: event 1", "c: event 1"})) << one.what;

        notes.clear();
        for (IBroadcastListener* listener :
             {static_cast<IBroadcastListener*>(&a), static_cast<IBroadcastListener*>(&b),
              static_cast<IBroadcastListener*>(&c), static_cast<IBroadcastListener*>(nullptr)})
        {
            machine.UnsubscribeEvents(listener);
        }
    }
}

TEST_F(HSMObservers, OfEventsAreAskedToPlayTheClipOfAnEnteredState)
{
    machine.SubscribeEvents(&a);

    machine.TickWith("go");
    machine.TickWith("hit");

    EXPECT_EQ(notes, (Lines{"a: play walk.anim 0 30", "a: play flinch.anim 1 30"}));
}

TEST_F(HSMObservers, OfEventsHearOfTheClipBeforeTheStateChangeIsTold)
{
    machine.SubscribeStateChange(&a);
    machine.SubscribeEvents(&b);

    machine.TickWith("go");

    EXPECT_EQ(notes, (Lines{"b: play walk.anim 0 30", "a: change 100: 10 -> 11"}));
}

TEST(HSMObserversLife, BeginsWithTheMachineAndOutlastsUninit)
{
    LogRecorder log;
    Lines notes;
    TestListener a(notes, "a");
    TestMachine machine;
    EXPECT_EQ(machine.SubscribeStateChange(&a), 1);
    EXPECT_EQ(machine.SubscribeEvents(&a), 1);
    EXPECT_EQ(machine.SubscribeTransitionChange(&a), 1);
    machine.Load(TwoStates().Text());
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    machine.ChangeState(11);
    EXPECT_EQ(notes,
              (Lines{"a: play walk.anim 0 30", "a: play walk.anim 0 30", "a: change 0: 10 -> 11"}));

    machine.Uninit();

    EXPECT_EQ(machine.UnsubscribeStateChange(&a), 1);
    EXPECT_EQ(machine.UnsubscribeEvents(&a), 1);
    EXPECT_EQ(machine.UnsubscribeTransitionChange(&a), 1);
}

TEST(HSMObserversLife, DoesNotEndWithTheMachine)
{
    LogRecorder log;
    Lines notes;
    auto listener = std::make_unique<TestListener>(notes, "a");
    {
        TestMachine machine(TwoStates());
        machine.SubscribeStateChange(listener.get());
        machine.SubscribeEvents(listener.get());
        ASSERT_EQ(machine.Init(), 1);
    }

    EXPECT_EQ(listener->OnBroadcastEvent(7, nullptr), 0);
    EXPECT_EQ(notes, (Lines{"a: event 7"}));
}

} // namespace vell::test
