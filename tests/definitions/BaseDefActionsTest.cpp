// VELL: data-driven hierarchical state machines.
// tests/definitions/BaseDefActionsTest.cpp: the action lists of a definition, also while they run.
#include <vell/SMState.h>

#include "tests/support/Definitions.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestAction.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace vell::test
{
namespace
{

/// A definition whose actions write down what happens to them.
class BaseDefActions : public testing::Test
{
protected:
    TestAction* NewAction(const std::string& name)
    {
        return new TestAction(name, events);
    }

    /// Puts a new action on the execute list.
    TestAction* Execute(const std::string& name)
    {
        TestAction* action = NewAction(name);
        def.RegisterExecute(action);
        return action;
    }

    /// Runs the execute list with the time 0.5 and gives what happened, without "owner" lines.
    Lines Run()
    {
        SMState state;
        state.Init(&def);
        events.clear();
        state.Execute(0.5);
        return events;
    }

    static Lines Names(Action* first)
    {
        Lines names;
        for (Action* action = first; action != nullptr; action = action->next)
        {
            names.push_back(static_cast<TestAction*>(action)->name);
        }
        return names;
    }

    LogRecorder log;
    Lines events;
    OpenDef def{"Walk", 1, 0};
};

std::string Performed(const std::string& name)
{
    return name + " execution 0.5";
}

} // namespace

TEST_F(BaseDefActions, StandInTheOrderOfTheirRegistration)
{
    Execute("a");
    Execute("b");
    Execute("c");

    EXPECT_EQ(Names(def.GetActions()), (Lines{"a", "b", "c"}));
    EXPECT_EQ(def.numExecute, 3u);
}

TEST_F(BaseDefActions, StandInThreeListsApart)
{
    EXPECT_EQ(def.RegisterEnter(NewAction("enter")), 1);
    EXPECT_EQ(def.RegisterExit(NewAction("exit 1")), 1);
    EXPECT_EQ(def.RegisterExit(NewAction("exit 2")), 1);
    EXPECT_EQ(def.RegisterExecute(NewAction("run")), 1);

    EXPECT_EQ(Names(def.GetEnterActions()), (Lines{"enter"}));
    EXPECT_EQ(Names(def.GetExitActions()), (Lines{"exit 1", "exit 2"}));
    EXPECT_EQ(Names(def.GetActions()), (Lines{"run"}));
    EXPECT_EQ(def.numEnter, 1u);
    EXPECT_EQ(def.numExit, 2u);
    EXPECT_EQ(def.numExecute, 1u);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(BaseDefActions, HearOfTheirOwnerBeforeTheyStandInTheList)
{
    Execute("a");
    TestAction* second = NewAction("b");
    Lines whenOwned;
    second->onOwner = [this, &whenOwned]
    {
        whenOwned = Names(def.GetActions());
        whenOwned.push_back(std::to_string(def.numExecute));
    };

    def.RegisterExecute(second);

    EXPECT_EQ(whenOwned, (Lines{"a", "1"}));
    EXPECT_EQ(second->owner, &def);
}

TEST_F(BaseDefActions, AreRefusedWhenNull)
{
    EXPECT_EQ(def.RegisterEnter(nullptr), 0);
    EXPECT_EQ(def.RegisterExit(nullptr), 0);
    EXPECT_EQ(def.RegisterExecute(nullptr), 0);
    EXPECT_EQ(def.RemoveAction(nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::BaseDef::RegisterEnter"),
                                 ErrorBreak("vell::BaseDef::RegisterExit"),
                                 ErrorBreak("vell::BaseDef::RegisterExecute"),
                                 ErrorBreak("vell::BaseDef::RemoveAction")}));
    EXPECT_EQ(def.numEnter + def.numExit + def.numExecute, 0u);
}

TEST_F(BaseDefActions, LeaveTheOthersInPlaceWhenTheFirstIsRemoved)
{
    TestAction* first = Execute("a");
    Execute("b");
    Execute("c");
    events.clear();

    EXPECT_EQ(def.RemoveAction(first), 1);

    EXPECT_EQ(Names(def.GetActions()), (Lines{"b", "c"}));
    EXPECT_EQ(def.numExecute, 2u);
    EXPECT_EQ(events, (Lines{"delete a"}));
}

TEST_F(BaseDefActions, KeepThePrevOfTheNewHeadWhenTheFirstIsRemoved)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* elsewhere = Execute("c");
    second->prev = elsewhere;

    def.RemoveAction(first);

    EXPECT_EQ(second->prev, elsewhere);
}

TEST_F(BaseDefActions, DoNotGetTheirPrevFromRegistration)
{
    Execute("a");
    TestAction* second = Execute("b");

    EXPECT_EQ(second->prev, nullptr);
}

TEST_F(BaseDefActions, UnlinkFromTheMiddleWhenTheHostKeptPrev)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    second->prev = first;
    third->prev = second;

    EXPECT_EQ(def.RemoveAction(second), 1);

    EXPECT_EQ(Names(def.GetActions()), (Lines{"a", "c"}));
    EXPECT_EQ(third->prev, first);
    EXPECT_EQ(def.numExecute, 2u);
}

TEST_F(BaseDefActions, LeaveThePredecessorsLinkToARemovedOneWhosePrevIsNull)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    third->prev = second;
    const auto removedAddress = reinterpret_cast<std::uintptr_t>(static_cast<Action*>(second));
    events.clear();

    EXPECT_EQ(def.RemoveAction(second), 1);

    std::uintptr_t link = 0;
    static_assert(sizeof(link) == sizeof(first->next), "an address");
    std::memcpy(&link, &first->next, sizeof(link));
    EXPECT_EQ(link, removedAddress);
    EXPECT_EQ(third->prev, nullptr);
    EXPECT_EQ(def.numExecute, 2u);
    EXPECT_EQ(events, (Lines{"delete b"}));
    first->next = third;
}

TEST_F(BaseDefActions, OfTheEnterAndExitListsCannotBeRemoved)
{
    TestAction* enter = NewAction("enter");
    TestAction* exit = NewAction("exit");
    def.RegisterEnter(enter);
    def.RegisterExit(exit);
    Execute("run");
    events.clear();

    EXPECT_EQ(def.RemoveAction(enter), 0);
    EXPECT_EQ(def.RemoveAction(exit), 0);

    EXPECT_EQ(events, Lines{});
    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(Names(def.GetEnterActions()), (Lines{"enter"}));
    EXPECT_EQ(Names(def.GetExitActions()), (Lines{"exit"}));
    EXPECT_EQ(Names(def.GetActions()), (Lines{"run"}));
    EXPECT_EQ(def.numEnter + def.numExit + def.numExecute, 3u);
}

TEST_F(BaseDefActions, AreNotFoundInAnEmptyList)
{
    TestAction stranger("stranger", events);

    EXPECT_EQ(def.RemoveAction(&stranger), 0);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(def.numExecute, 0u);
}

TEST_F(BaseDefActions, AreGoneAfterUninit)
{
    Execute("a");
    Execute("b");
    def.RegisterEnter(NewAction("enter"));
    def.RegisterExit(NewAction("exit"));
    events.clear();

    def.Uninit();

    EXPECT_EQ(events, (Lines{"delete a", "delete b", "delete exit", "delete enter"}));
    EXPECT_EQ(def.GetActions(), nullptr);
    EXPECT_EQ(def.numEnter + def.numExit + def.numExecute, 0u);
}

TEST_F(BaseDefActions, AreNotMissedByTheListPrimitivesWhereThereIsNoneOrNoList)
{
    Action* head = nullptr;
    TestAction* a = NewAction("a");
    def.AddTail(&head, a);

    EXPECT_EQ(def.AddTail(nullptr, a), 1);
    EXPECT_EQ(def.AddTail(&head, nullptr), 1);
    EXPECT_EQ(def.AddHead(nullptr, a), 1);
    EXPECT_EQ(def.AddHead(&head, nullptr), 1);
    EXPECT_EQ(def.DestroyActions(nullptr), 1);

    EXPECT_EQ(Names(head), (Lines{"a"}));
    def.DestroyActions(&head);
}

TEST_F(BaseDefActions, AreLinkedByTheListPrimitivesWithoutPrevAndWithoutCount)
{
    Action* head = nullptr;
    TestAction* a = NewAction("a");
    TestAction* b = NewAction("b");
    TestAction* c = NewAction("c");

    EXPECT_EQ(def.AddTail(&head, a), 1);
    EXPECT_EQ(def.AddTail(&head, b), 1);
    EXPECT_EQ(def.AddHead(&head, c), 1);

    EXPECT_EQ(Names(head), (Lines{"c", "a", "b"}));
    EXPECT_EQ(a->prev, nullptr);
    EXPECT_EQ(b->prev, nullptr);
    EXPECT_EQ(c->prev, nullptr);
    EXPECT_EQ(def.numExecute + def.numEnter + def.numExit, 0u);
    EXPECT_EQ(events, Lines{});

    EXPECT_EQ(def.DestroyActions(&head), 1);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(events, (Lines{"delete c", "delete a", "delete b"}));
}

TEST_F(BaseDefActions, StandAloneAtTheHeadOfAnEmptyList)
{
    Action* head = nullptr;
    TestAction a("a", events);

    EXPECT_EQ(def.AddHead(&head, &a), 1);

    EXPECT_EQ(head, &a);
    EXPECT_EQ(a.next, nullptr);
}

TEST_F(BaseDefActions, ArePerformedInTheirOrder)
{
    Execute("a");
    Execute("b");

    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("b")}));
}

TEST_F(BaseDefActions, MayRemoveThemselvesWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    first->onPerform = [this, first]
    {
        def.RemoveAction(first);
    };
    second->prev = nullptr;
    third->prev = second;

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete a", Performed("b"), Performed("c")}));
    EXPECT_EQ(Run(), (Lines{Performed("b"), Performed("c")}));
}

TEST_F(BaseDefActions, MayRemoveThemselvesFromTheEndWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* last = Execute("b");
    last->prev = first;
    last->onPerform = [this, last]
    {
        def.RemoveAction(last);
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("b"), "delete b"}));
    EXPECT_EQ(Run(), (Lines{Performed("a")}));
}

TEST_F(BaseDefActions, MayRemoveTheNextOneWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    second->prev = first;
    third->prev = second;
    first->onPerform = [this, first, second]
    {
        first->onPerform = nullptr;
        def.RemoveAction(second);
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete b", Performed("c")}));
    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("c")}));
}

TEST_F(BaseDefActions, MayRemoveThemselvesAndThenTheNextOneWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    first->onPerform = [this, first, second]
    {
        def.RemoveAction(first);
        def.RemoveAction(second);
    };
    second->prev = nullptr;
    third->prev = nullptr;

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete a", "delete b", Performed("c")}));
    EXPECT_EQ(Run(), (Lines{Performed("c")}));
}

TEST_F(BaseDefActions, MayRemoveAnEarlierOneWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    Execute("c");
    second->onPerform = [this, first, second]
    {
        second->onPerform = nullptr;
        def.RemoveAction(first);
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("b"), "delete a", Performed("c")}));
    EXPECT_EQ(Run(), (Lines{Performed("b"), Performed("c")}));
}

TEST_F(BaseDefActions, MayRemoveAllOthersWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    second->prev = first;
    third->prev = second;
    first->onPerform = [this, second, third]
    {
        def.RemoveAction(third);
        def.RemoveAction(second);
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete c", "delete b"}));
}

TEST_F(BaseDefActions, PerformInTheSameRunWhenPutAtTheEndMeanwhile)
{
    TestAction* first = Execute("a");
    first->onPerform = [this, first]
    {
        first->onPerform = nullptr;
        Execute("late");
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), "owner late", Performed("late")}));
    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("late")}));
}

TEST_F(BaseDefActions, PerformInTheSameRunWhenTheyReplaceTheLastOne)
{
    TestAction* only = Execute("a");
    only->onPerform = [this, only]
    {
        def.RemoveAction(only);
        Execute("b");
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete a", "owner b", Performed("b")}));
}

TEST_F(BaseDefActions, DoNotPerformInARunOfAnotherList)
{
    TestAction* run = Execute("run");
    run->onPerform = [this]
    {
        def.RegisterEnter(NewAction("enter"));
    };

    EXPECT_EQ(Run(), (Lines{Performed("run"), "owner enter"}));
}

TEST_F(BaseDefActions, MayRunTheirOwnListWhileTheyPerform)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    Execute("c");
    first->onPerform = [this, first, second]
    {
        first->onPerform = nullptr;
        second->onPerform = [this, first]
        {
            def.RemoveAction(first);
        };
        SMState inner;
        inner.Init(&def);
        inner.Execute(0.5);
        second->onPerform = nullptr;
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("a"), Performed("b"), "delete a",
                            Performed("c"), Performed("b"), Performed("c")}));
}

TEST_F(BaseDefActions, MayGiveTheirStateAnotherDefinitionWhileTheyPerform)
{
    OpenDef other("Other", 2, 0);
    SMState state;
    state.Init(&def);
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    first->onPerform = [&state, &other]
    {
        state.SetDef(&other);
    };
    events.clear();

    state.Execute(0.5);
    def.RemoveAction(first);

    EXPECT_EQ(events, (Lines{Performed("a"), Performed("b"), "delete a"}));
    EXPECT_EQ(def.GetActions(), second);
}

TEST_F(BaseDefActions, MayCopyTheirDefinitionWhileTheyPerform)
{
    OpenDef copy("Copy", 2, 0);
    TestAction* first = Execute("a");
    first->onPerform = [this, &copy]
    {
        copy = def;
    };
    Run();
    // The two share their actions; from here on the copy alone has them.
    def = OpenDef("Walk", 1, 0);

    EXPECT_EQ(copy.RemoveAction(first), 1);

    EXPECT_EQ(copy.GetActions(), nullptr);
    EXPECT_EQ(events.back(), "delete a");
}

TEST_F(BaseDefActions, MayThrowAndBeRemovedAfterwards)
{
    TestAction* first = Execute("a");
    Execute("b");
    first->onPerform = []
    {
        throw 1;
    };

    EXPECT_THROW(Run(), int);

    EXPECT_EQ(def.RemoveAction(first), 1);
    EXPECT_EQ(Run(), (Lines{Performed("b")}));
}

TEST_F(BaseDefActions, PerformInTheSameRunWhenLinkedBehindTheOneThatPerforms)
{
    TestAction* first = Execute("a");
    TestAction* linked = NewAction("b");
    first->onPerform = [first, linked]
    {
        first->next = linked;
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), Performed("b")}));
}

TEST_F(BaseDefActions, PerformWhenTheyFollowARemovedOneThatIsStillLinked)
{
    TestAction* first = Execute("a");
    TestAction* second = Execute("b");
    TestAction* third = Execute("c");
    first->onPerform = [this, first, second, third]
    {
        def.RemoveAction(second); // its `prev` is null, so the first one stays linked to it
        first->prev = nullptr;
        third->prev = nullptr;
    };

    EXPECT_EQ(Run(), (Lines{Performed("a"), "delete b", Performed("c")}));
    first->next = third;
}

TEST_F(BaseDefActions, EndTheirRunWhenTheyDestroyTheList)
{
    const Lines destroyed = {Performed("a"), "delete a", "delete b"};
    for (const bool isUninit : {false, true})
    {
        TestAction* first = Execute("a");
        Execute("b");
        first->onPerform = [this, isUninit]
        {
            isUninit ? def.Uninit() : static_cast<void>(def.DestroyActions(&def.executeActions));
        };

        EXPECT_EQ(Run(), destroyed);
        EXPECT_EQ(def.GetActions(), nullptr);
    }
}

TEST_F(BaseDefActions, EndTheRunOfEveryListWhenTheyUninitialiseTheirDefinition)
{
    TestAction* outer = NewAction("outer");
    def.RegisterEnter(outer);
    def.RegisterEnter(NewAction("after"));
    TestAction* inner = Execute("inner");
    inner->onPerform = [this]
    {
        def.Uninit();
    };
    outer->onPerform = [this]
    {
        SMState state;
        state.Init(&def);
        state.Execute(0.5);
    };
    SMState state;
    state.Init(&def);
    events.clear();

    state.Enter();

    EXPECT_EQ(events, (Lines{"outer entry 0", Performed("inner"), "delete inner", "delete outer",
                             "delete after"}));
}

TEST_F(BaseDefActions, MayRemoveTheirCompanionWhenTheListIsDestroyed)
{
    TestAction* first = Execute("a");
    TestAction* companion = Execute("b");
    Execute("c");
    first->onDelete = [this, companion]
    {
        def.RemoveAction(companion);
    };
    events.clear();

    def.Uninit();

    EXPECT_EQ(events, (Lines{"delete b", "delete a", "delete c"}));
    EXPECT_EQ(def.numExecute, 0u);
}

TEST_F(BaseDefActions, AreAllDeletedWhenOneRegistersItsSuccessorAsItGoes)
{
    TestAction* first = Execute("a");
    first->onDelete = [this]
    {
        Execute("successor");
    };
    events.clear();

    def.Uninit();

    EXPECT_EQ(events, (Lines{"owner successor", "delete a", "delete successor"}));
    EXPECT_EQ(def.GetActions(), nullptr);
}

TEST_F(BaseDefActions, MayRegisterTheirSuccessorWhenTheyAreRemoved)
{
    TestAction* first = Execute("a");
    first->onDelete = [this]
    {
        Execute("successor");
    };

    EXPECT_EQ(def.RemoveAction(first), 1);

    EXPECT_EQ(Names(def.GetActions()), (Lines{"successor"}));
    EXPECT_EQ(def.numExecute, 1u);
}

} // namespace vell::test
