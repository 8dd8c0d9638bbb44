// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMContextTest.cpp: putting a machine into a recorded context.
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>

#include "foundation/TreeKeys.h"
#include "tests/introspection/RichDocument.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestListener.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

/// A context of the test's own, closed with it.
class RecordedContext
{
public:
    RecordedContext() : table(Tessel::CreateTable("context"))
    {
    }
    ~RecordedContext()
    {
        Tessel::CloseTable(table);
    }
    RecordedContext(const RecordedContext&) = delete;
    RecordedContext& operator=(const RecordedContext&) = delete;

    RecordedContext& Stack(const char* key, const Ids& ids)
    {
        Tessel::KVTable array = table->AddTable(key, 1);
        for (const unsigned int id : ids)
        {
            array->PushUInt(id, 1);
        }
        return *this;
    }

    RecordedContext& Switch(unsigned int transition, unsigned int previous, unsigned int next)
    {
        table->SetUInt(kTransitionKey, transition, 1);
        table->SetUInt(kPreviousStateKey, previous, 1);
        table->SetUInt(kNextStateKey, next, 1);
        return *this;
    }

    Tessel::KVTable table;
};

class ContextMachine : public TestMachine
{
public:
    using TestMachine::TestMachine;

    using HSM::SetContextInfo_StackBlip;
    using HSM::SetContextInfo_StackStates;
    using HSM::SetContextInfo_StateSwitching;
};

class HSMContext : public testing::Test
{
protected:
    void SetUp() override
    {
        log.Clear();
    }

    LogRecorder log;
    Started<ContextMachine> machine{
        RichDocument().Parameter(IntParameter("frame", 1).Set(JSON_ParameterResetEachFrame, true))};
    RecordedContext recorded;
};

const std::string kActivate = "vell::HSM::ActivateState";

int NoteKey(void*, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    LogRecorder::Note(std::string(key) + " = " + std::to_string(table->GetUInt(key)));
    return 0;
}

void TickFromWithin(HSM* machine, SMState*, SMState*, float)
{
    machine->Update(0.1f);
}

} // namespace

TEST_F(HSMContext, SetsBothStacksAndTheLastSwitch)
{
    recorded.Stack(kMainStackKey, {20, 23}).Stack(kBlipStackKey, {12}).Switch(101, 10, 20);

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
    EXPECT_EQ(machine.BlipStack(), "Flinch");
    EXPECT_EQ(machine.LastSwitch(), (Ids{101, 10, 20}));
}

TEST_F(HSMContext, ActivatesItsStatesAndNeitherLeavesNorEntersAny)
{
    recorded.Stack(kMainStackKey, {11, 23});

    machine.SetContextInfo(recorded.table);

    EXPECT_EQ(log.Take(), (Lines{"6 Activated State: Walk (11)", "6 Activated State: Guard (23)"}));
}

TEST_F(HSMContext, CallsTheSwitchCallbackForEachStateWithTheStateLastLeft)
{
    machine.TickWith("go");
    machine.SetStateSwitchCallback(RecordSwitch);
    recorded.Stack(kMainStackKey, {11, 23}).Stack(kBlipStackKey, {12});
    log.Clear();

    machine.SetContextInfo(recorded.table);

    EXPECT_EQ(log.Take(), (Activated("Walk", 11, "Idle") + Activated("Guard", 23, "Idle") +
                           Activated("Flinch", 12, "Idle")));
}

TEST_F(HSMContext, WithoutStacksLeavesBothEmpty)
{
    machine.TickWith("hit");
    log.Clear();

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "-");
    EXPECT_EQ(machine.BlipStack(), "-");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMContext, WithEmptyStacksLeavesBothEmpty)
{
    machine.TickWith("hit");
    recorded.Stack(kMainStackKey, {}).Stack(kBlipStackKey, {});

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "-");
    EXPECT_EQ(machine.BlipStack(), "-");
}

TEST_F(HSMContext, OfANullHandleEmptiesBothStacksAndClearsTheSwitch)
{
    machine.TickWith("go");
    ASSERT_EQ(machine.LastSwitch(), (Ids{100, 10, 11}));

    EXPECT_EQ(machine.SetContextInfo(Tessel::KVTable()), 1);

    EXPECT_EQ(machine.MainStack(), "-");
    EXPECT_EQ(machine.BlipStack(), "-");
    EXPECT_EQ(machine.LastSwitch(), (Ids{0, 0, 0}));
    EXPECT_FALSE(machine.applyingContext);
}

TEST_F(HSMContext, OfAClosedTableIsAnEmptyOne)
{
    recorded.Stack(kMainStackKey, {11});
    Tessel::CloseTable(recorded.table);

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "-");
}

TEST_F(HSMContext, WithAnUnknownSecondIdKeepsTheFirstAndSucceeds)
{
    recorded.Stack(kMainStackKey, {11, 999, 23});

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(log.Take(),
              (Lines{"6 Activated State: Walk (11)", ErrorBreak(kActivate), NotActivated(999),
                     ErrorBreak("vell::HSM::SetContextInfo_StackStates")}));
    EXPECT_FALSE(machine.applyingContext);
}

TEST_F(HSMContext, WithAnUnknownIdOnTheBlipStackNamesItsOwnStep)
{
    recorded.Stack(kMainStackKey, {11}).Stack(kBlipStackKey, {0, 12});

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(machine.BlipStack(), "-");
    EXPECT_EQ(log.Take(), (Lines{"6 Activated State: Walk (11)", NotActivated(0),
                                 ErrorBreak("vell::HSM::SetContextInfo_StackBlip")}));
}

TEST_F(HSMContext, StepsGiveOneWhateverTheyFind)
{
    recorded.Stack(kMainStackKey, {999});
    const Tessel::KVTable stack = recorded.table->GetTable(kMainStackKey);

    EXPECT_EQ(machine.SetContextInfo_StackStates(stack), 1);
    EXPECT_EQ(machine.SetContextInfo_StackStates(Tessel::KVTable()), 1);
    EXPECT_EQ(machine.SetContextInfo_StackBlip(stack), 1);
    EXPECT_EQ(machine.SetContextInfo_StackBlip(Tessel::KVTable()), 1);
    EXPECT_EQ(machine.SetContextInfo_StateSwitching(Tessel::KVTable()), 1);
}

TEST_F(HSMContext, IsTakenUpByTheNextTickWithoutEnteringItsStates)
{
    machine.Update(0.1f);
    machine.TickWith("fight");
    machine.Update(0.1f);
    ASSERT_EQ(machine.MainStack(), "Combat/Guard");
    machine.SetContextInfo(recorded.Stack(kMainStackKey, {10}).table);
    ASSERT_EQ(machine.MainStack(), "Idle");
    log.Clear();

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Combat");
    EXPECT_EQ(log.Take(),
              (Lines{"6 Transition satisfied: Idle", "6 [Exit] Idle - SMState.cpp : #",
                     "6 Activated State: Combat (20)", "6 [Enter] Combat - SMState.cpp : #"}));
}

TEST_F(HSMContext, LeavesTheArraysOfTheMachineAsTheyWere)
{
    recorded.Stack(kMainStackKey, {11, 23, 11}).Stack(kBlipStackKey, {12});

    machine.SetContextInfo(recorded.table);
    EXPECT_EQ(machine.StackInTree(kMainStackKey), (Ids{10}));
    EXPECT_EQ(machine.StackInTree(kBlipStackKey), Ids());

    machine.PopState();
    EXPECT_EQ(machine.MainStack(), "Walk/Guard");
    EXPECT_EQ(machine.StackInTree(kMainStackKey), Ids());
    machine.PopState();
    machine.PushState(12u);
    EXPECT_EQ(machine.StackInTree(kMainStackKey), (Ids{12}));
}

TEST_F(HSMContext, LeavesTheBlipTheActiveStackAndTheParametersAsTheyAre)
{
    machine.TickWith("hit");
    recorded.Stack(kMainStackKey, {11}).Stack(kBlipStackKey, {});

    machine.SetContextInfo(recorded.table);

    EXPECT_TRUE(machine.IsBlipState());
    EXPECT_EQ(machine.blipPriority, 5);
    EXPECT_EQ(machine.currentStack, &machine.blipStack);
    EXPECT_EQ(machine.GetCurrentState(), nullptr);
    auto* hit = dynamic_cast<ParameterBoolDef*>(machine.GetParameterTable()->FindParameter("hit"));
    ASSERT_NE(hit, nullptr);
    EXPECT_TRUE(hit->GetValue());
}

TEST_F(HSMContext, WithABlipStackDoesNotStartABlip)
{
    recorded.Stack(kMainStackKey, {10}).Stack(kBlipStackKey, {12});

    machine.SetContextInfo(recorded.table);

    EXPECT_FALSE(machine.IsBlipState());
    EXPECT_EQ(machine.currentStack, &machine.stateStack);
}

TEST_F(HSMContext, TellsItsSwitchToTheListenersAndThenClearsIt)
{
    Lines notes;
    TestListener listener(notes, "a");
    machine.SubscribeStateChange(&listener);
    recorded.Stack(kMainStackKey, {11}).Switch(100, 10, 11);

    machine.SetContextInfo(recorded.table);

    EXPECT_EQ(notes, (Lines{"a: change 100: 10 -> 11"}));
    EXPECT_EQ(machine.LastSwitch(), (Ids{0, 0, 0}));
}

TEST_F(HSMContext, WritesTheNextThePreviousAndTheTransitionAfterTheStacks)
{
    Tessel::KVListener* listener = TableAt(machine.GetKVTable(), kContextKey)->GetTableListener();
    listener->function = NoteKey;
    recorded.Stack(kMainStackKey, {11}).Switch(100, 10, 11);

    machine.SetContextInfo(recorded.table);

    EXPECT_EQ(log.Take(), (Lines{"6 Activated State: Walk (11)", "nextState = 11",
                                 "previousState = 10", "transitionTriggered = 100"}));
}

TEST_F(HSMContext, KeepsTheMachineFromTickingUntilItStands)
{
    auto* frame =
        dynamic_cast<ParameterIntegerDef*>(machine.GetParameterTable()->FindParameter("frame"));
    ASSERT_NE(frame, nullptr);
    frame->SetValue(9);
    machine.SetStateSwitchCallback(TickFromWithin);

    machine.SetContextInfo(recorded.Stack(kMainStackKey, {11}).table);
    EXPECT_EQ(frame->GetValue(), 9);
    EXPECT_FALSE(machine.applyingContext);

    machine.Update(0.1f);
    EXPECT_EQ(frame->GetValue(), 1);
}

TEST_F(HSMContext, OfAnotherMachineMakesThisOneItsMirror)
{
    StartedMachine other(RichDocument());
    other.ChangeState(20);
    other.Update(0.1f);
    other.TickWith("hit");
    ASSERT_EQ(other.BlipStack(), "Flinch");

    EXPECT_EQ(machine.SetContextInfo(TableAt(other.GetKVTable(), kContextKey)), 1);

    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
    EXPECT_EQ(machine.BlipStack(), "Flinch");
    EXPECT_EQ(machine.LastSwitch(), (Ids{500, 10, 20}));
}

TEST_F(HSMContext, OfItsOwnMakesTheStacksWhatTheArraysSay)
{
    machine.PushState(11u);
    machine.stateStack.clear();

    machine.SetContextInfo(TableAt(machine.GetKVTable(), kContextKey));

    EXPECT_EQ(machine.MainStack(), "Idle/Walk");
}

TEST_F(HSMContext, IsSetOnAMachineWithoutATreeToo)
{
    Lines notes;
    TestListener listener(notes, "a");
    machine.SubscribeStateChange(&listener);
    const Tessel::KVTable root = machine.kvTable;
    machine.kvTable = Tessel::KVTable();
    recorded.Stack(kMainStackKey, {11}).Switch(100, 10, 11);

    EXPECT_EQ(machine.SetContextInfo(recorded.table), 1);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(notes, (Lines{"a: change 0: 0 -> 0"}));
    machine.kvTable = root;
}

TEST(HSMContextEarly, IsSetBeforeTheStartAndOnAMachineWhoseDocumentFailed)
{
    LogRecorder log;
    RecordedContext recorded;
    recorded.Stack(kMainStackKey, {11});
    InitialisedMachine early(RichDocument());
    TestMachine failed("no document");
    log.Clear();

    EXPECT_EQ(early.SetContextInfo(recorded.table), 1);
    EXPECT_EQ(early.MainStack(), "Walk");
    EXPECT_EQ(log.Take(), (Lines{"6 Activated State: Walk (11)"}));

    EXPECT_EQ(failed.SetContextInfo(recorded.table), 1);
    EXPECT_EQ(failed.MainStack(), "-");
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kActivate), NotActivated(11),
                                 ErrorBreak("vell::HSM::SetContextInfo_StackStates")}));
}

} // namespace vell::test
