// VELL: data-driven hierarchical state machines.
// tests/machine/HSMHooksTest.cpp: the triggers and actions that a host plugs in.
#include <vell/BaseDef.h>
#include <vell/IBaseDef.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestListener.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

const std::string kAssignTrigger = "vell::HSM::AssignTrigger";
const std::string kRegisterAction = "vell::HSM::RegisterAction";

DocumentBuilder Document()
{
    return DocumentBuilder()
        .Start(12)
        .Node(Generic("Run", 12, {100}).Set(JSON_ScriptName, "run.script"))
        .Node(Generic("Stand", 10))
        .Node(Substate("Combat", 20, 21, 22))
        .Node(Enter("In", 21, 10, 20))
        .Node(Exit("Out", 22, 20))
        .Node(Connector("Door", 30, "entering"))
        .Node(Clip("Walk", 11, "walk.anim"))
        .Node(Node(DURMBaseLib::BUILDER_Base, "Note", 40))
        .Node(Transition("Go", 100, 12, 11))
        .GlobalNode(Global("Anywhere", 50));
}

/// Makes a machine without a node table: its document could not be read.
struct FailedMachine : TestMachine
{
    FailedMachine() : TestMachine("no document")
    {
    }
};

int triggerCalls = 0;
IHSM* triggerMachine = nullptr;
SMState* triggerState = nullptr;

bool Hold(IHSM* machine, SMState* state)
{
    ++triggerCalls;
    triggerMachine = machine;
    triggerState = state;
    return true;
}

Lines notes;

Action* MakeDefault(const char* scriptName)
{
    const std::string script = scriptName == nullptr ? "(null)" : scriptName;
    notes.push_back("make " + script);
    auto* action = new TestAction("default", notes);
    action->onOwner = [action]
    {
        notes.push_back(action->owner->GetName());
    };
    return action;
}

Action* MakeNothing(const char*)
{
    return nullptr;
}

class HSMHooks : public testing::Test
{
protected:
    void SetUp() override
    {
        notes.clear();
        ASSERT_EQ(machine.Init(), 1);
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine{Document()};
};

} // namespace

TEST_F(HSMHooks, MakeATransitionHoldByATriggerThatReceivesTheMachineAndNoState)
{
    triggerCalls = 0;
    machine.Start();
    triggerState = machine.GetCurrentState();

    EXPECT_EQ(machine.AssignTrigger("Go", Hold), 1);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(triggerCalls, 1);
    EXPECT_EQ(triggerMachine, &machine);
    EXPECT_EQ(triggerState, nullptr);
}

TEST_F(HSMHooks, LogNothingWhenATriggerIsAssigned)
{
    EXPECT_EQ(machine.AssignTrigger("Go", Hold), 1);

    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMHooks, RefuseATriggerForAnUnknownNameWithOneLine)
{
    EXPECT_EQ(machine.AssignTrigger("Gone", Hold), 0);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kAssignTrigger)}));

    EXPECT_EQ(machine.AssignTrigger(nullptr, Hold), 0);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kAssignTrigger)}));
}

TEST_F(HSMHooks, RefuseATriggerForANodeThatIsNoTransition)
{
    EXPECT_EQ(machine.AssignTrigger("Run", Hold), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kAssignTrigger)}));
}

TEST_F(HSMHooks, OfferANullTriggerTwice)
{
    EXPECT_EQ(machine.AssignTrigger("Go", nullptr), 0);

    const std::string inner = ErrorBreak("vell::TransitionDef::RegisterCondition");
    EXPECT_EQ(log.Take(), (Lines{inner, inner, ErrorBreak(kAssignTrigger)}));
}

TEST_F(HSMHooks, RefuseATriggerOnAMachineWithoutNodes)
{
    FailedMachine failed;
    log.Clear();

    EXPECT_EQ(failed.AssignTrigger("Go", Hold), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kAssignTrigger)}));
}

TEST_F(HSMHooks, PutADefaultActionOnEachPlainStateInAscendingOrderOfIds)
{
    EXPECT_EQ(machine.AssignDefaultAction(MakeDefault), 6);

    EXPECT_EQ(notes, (Lines{"make (null)", "owner default", "Stand", "make (null)", "owner default",
                            "Walk", "make run.script", "owner default", "Run", "make (null)",
                            "owner default", "In", "make (null)", "owner default", "Out",
                            "make (null)", "owner default", "Anywhere"}));
    EXPECT_EQ(
        log.Take(),
        (Lines{"6 Assigned a Default Action to 6 states of eHSMDefTypes::DefTypesState type"}));
    EXPECT_EQ(machine.FindDef(20u)->GetActions(), nullptr);
}

TEST_F(HSMHooks, RunTheDefaultActionOnEachUpdateOnly)
{
    machine.AssignDefaultAction(MakeDefault);
    notes.clear();

    machine.Start();
    EXPECT_EQ(notes, Lines());
    machine.Update(0.25f);
    machine.PopState();

    EXPECT_EQ(notes, (Lines{"default execution 0.25"}));
}

TEST_F(HSMHooks, PutTheDefaultActionBehindThoseThatAreThere)
{
    auto* first = new TestAction("first", notes);
    machine.FindDef(12u)->RegisterExecute(first);

    machine.AssignDefaultAction(MakeDefault);
    machine.AssignDefaultAction(MakeDefault);

    Action* head = machine.FindDef(12u)->GetActions();
    EXPECT_EQ(head, first);
    ASSERT_NE(head->next, nullptr);
    ASSERT_NE(head->next->next, nullptr);
    EXPECT_EQ(head->next->next->next, nullptr);
}

TEST_F(HSMHooks, CountADefaultActionThatIsNull)
{
    EXPECT_EQ(machine.AssignDefaultAction(MakeNothing), 6);

    const std::string refused = ErrorBreak("vell::BaseDef::RegisterExecute");
    EXPECT_EQ(
        log.Take(),
        (Lines{refused, refused, refused, refused, refused, refused,
               "6 Assigned a Default Action to 6 states of eHSMDefTypes::DefTypesState type"}));
    EXPECT_EQ(machine.FindDef(12u)->GetActions(), nullptr);
}

TEST_F(HSMHooks, FollowTheFlagsThatAHostSets)
{
    machine.FindDef(20u)->SetFlags(DefTypesState | DefTypesSubstate);
    machine.FindDef(10u)->SetFlags(0);
    log.Clear();

    EXPECT_EQ(machine.AssignDefaultAction(MakeDefault), 6);

    EXPECT_NE(machine.FindDef(20u)->GetActions(), nullptr);
    EXPECT_EQ(machine.FindDef(10u)->GetActions(), nullptr);
}

TEST_F(HSMHooks, DoNothingForANullFactory)
{
    EXPECT_EQ(machine.AssignDefaultAction(nullptr), 0);

    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMHooks, AssignNoDefaultActionWhereThereIsNoState)
{
    FailedMachine failed;
    InitialisedMachine empty(DocumentBuilder().Start(1));
    log.Clear();

    EXPECT_EQ(failed.AssignDefaultAction(MakeDefault), 0);
    EXPECT_EQ(empty.AssignDefaultAction(MakeDefault), 0);

    EXPECT_EQ(notes, Lines());
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMHooks, GiveDefaultActionsBackWithTheDefinitions)
{
    machine.AssignDefaultAction(MakeDefault);
    notes.clear();

    machine.Uninit();

    EXPECT_EQ(notes, Lines(6, "delete default"));
}

TEST_F(HSMHooks, GiveZeroForARegisteredActionToo)
{
    TestAction action("a", notes);
    action.id = 7;

    EXPECT_EQ(machine.RegisterAction(&action), 0);

    EXPECT_EQ(machine.FindAction(7), &action);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMHooks, KeepTheFirstOfTwoActionsWithOneId)
{
    TestAction first("first", notes);
    TestAction second("second", notes);
    first.id = 7;
    second.id = 7;
    machine.RegisterAction(&first);

    EXPECT_EQ(machine.RegisterAction(&second), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kRegisterAction)}));
    EXPECT_EQ(machine.FindAction(7), &first);
}

TEST_F(HSMHooks, RefuseTheSameActionTwice)
{
    TestAction action("a", notes);
    machine.RegisterAction(&action);

    EXPECT_EQ(machine.RegisterAction(&action), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kRegisterAction)}));
    EXPECT_EQ(machine.FindAction(0), &action);
}

TEST_F(HSMHooks, RefuseANullActionWithItsLine)
{
    EXPECT_EQ(machine.RegisterAction(nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kRegisterAction)}));
    EXPECT_EQ(machine.FindAction(0), nullptr);
}

TEST_F(HSMHooks, FindNoUnknownActionAndSayNothing)
{
    EXPECT_EQ(machine.FindAction(8), nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMHooks, NeitherRunNorDeleteNorOwnARegisteredAction)
{
    TestAction action("a", notes);
    {
        InitialisedMachine other(Document());
        other.RegisterAction(&action);
        other.Start();
        other.Update(0.1f);
        other.Uninit();
        EXPECT_EQ(other.FindAction(0), &action);
    }

    EXPECT_EQ(notes, Lines());
}

TEST_F(HSMHooks, TakeActionsOnAMachineWhoseDocumentFailed)
{
    FailedMachine failed;
    TestAction action("a", notes);
    action.id = 3;

    EXPECT_EQ(failed.RegisterAction(&action), 0);

    EXPECT_EQ(failed.FindAction(3), &action);
}

} // namespace vell::test
