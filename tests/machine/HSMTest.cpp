// VELL: data-driven hierarchical state machines.
// tests/machine/HSMTest.cpp: making, starting and unmaking of a machine.
#include <vell/BaseDef.h>
#include <vell/IParameterTable.h>
#include <vell/SMState.h>
#include <vell/UpdateResult.h>

#include "definitions/NodeDefTable.h"
#include "machine/StateBuilders.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace vell::test
{
namespace
{

const std::string kPushState = "vell::HSM::PushState";

Lines ActivatedAndEntered(const std::string& name, unsigned int id)
{
    return {"6 Activated State: " + name + " (" + std::to_string(id) + ")",
            "6 [Enter] " + name + " - SMState.cpp : #"};
}

bool Ignore(IHSM*, SMState*)
{
    return false;
}

Action* MakeNoAction(const char*)
{
    return nullptr;
}

/// Calls everything a host may call on a machine that has no document, and the protected rest.
void CallEverything(TestMachine& machine)
{
    UpdateResult result;
    const char* text = "untouched";
    std::vector<unsigned int> ids;

    EXPECT_EQ(machine.Init(), 0);
    machine.Start();
    machine.Update(0.1f);
    EXPECT_EQ(machine.GetParameterTable(), nullptr);
    EXPECT_EQ(machine.FindParameterByName("speed"), 0u);
    EXPECT_EQ(machine.FindParameterByName(nullptr), 0u);
    EXPECT_FALSE(machine.GetKVTable());
    EXPECT_EQ(machine.GetCurrentState(), nullptr);
    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_EQ(machine.GetSkelAsset(), nullptr);
    EXPECT_EQ(machine.GetGUID(), nullptr);
    EXPECT_EQ(machine.BeginDef(0xffffffffu), nullptr);
    EXPECT_EQ(machine.NextDef(0xffffffffu), nullptr);
    EXPECT_EQ(machine.FindDef("Stand"), nullptr);
    EXPECT_EQ(machine.FindDef(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(machine.FindDef(10u), nullptr);
    EXPECT_EQ(machine.FindAction(1), nullptr);
    EXPECT_EQ(machine.AssignTrigger("Go", Ignore), 0);
    EXPECT_EQ(machine.AssignDefaultAction(MakeNoAction), 0);
    EXPECT_EQ(machine.PushState(10u), nullptr);
    EXPECT_EQ(machine.PushState(static_cast<SMState*>(nullptr)), nullptr);
    EXPECT_EQ(machine.PopState(), nullptr);
    EXPECT_EQ(machine.RevertToPreviousState(), 1);
    EXPECT_EQ(machine.RevertToStartState(), 0);
    EXPECT_FALSE(machine.IsBlipState());
    machine.BindParamCond();
    machine.BroadcastMessage("hit");
    machine.BroadcastMessage(nullptr);
    EXPECT_EQ(machine.GetParameterMessage(1, &text), 0);
    EXPECT_EQ(machine.SetParameterMessage(1, "text"), 0);
    EXPECT_EQ(machine.GetAttributeValue("power", &text), 0);
    EXPECT_EQ(machine.SetAttribValue("power", "text"), 0);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(machine.SetContextInfo(Tessel::KVTable()), 1);
    EXPECT_EQ(machine.UpdateState(nullptr, &result, 0.1f), 0);
    EXPECT_EQ(machine.UpdateStateStack(nullptr), 0);
    EXPECT_EQ(machine.ChangeState(10), nullptr);
    machine.StartState(10, ids);
    EXPECT_TRUE(ids.empty());
    EXPECT_EQ(machine.Destroy(), 1);
    EXPECT_EQ(machine.Uninit(), 1);
}

} // namespace

TEST(HSM, CannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<HSM>);
    EXPECT_FALSE(std::is_copy_assignable_v<HSM>);
}

TEST(HSM, IsAnInterfaceWithAVirtualDestructor)
{
    EXPECT_TRUE(std::is_abstract_v<IHSM>);
    EXPECT_TRUE(std::has_virtual_destructor_v<IHSM>);
    EXPECT_TRUE((std::is_base_of_v<IHSM, HSM>));
}

TEST(HSM, IsEmptyWhenMadeWithoutArguments)
{
    LogRecorder log;

    TestMachine machine;

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_FALSE(machine.kvTable);
    EXPECT_EQ(machine.parameterTable, nullptr);
    EXPECT_EQ(machine.nodeDefTable, nullptr);
    EXPECT_TRUE(machine.document.IsNull());
    EXPECT_EQ(machine.filePath, nullptr);
    EXPECT_EQ(machine.jsonText, nullptr);
    EXPECT_EQ(machine.startStateID, 0u);
    EXPECT_EQ(machine.machineType, 1);
    EXPECT_EQ(machine.previousState, nullptr);
    EXPECT_EQ(machine.globalState, nullptr);
    EXPECT_FALSE(machine.applyingContext);
    EXPECT_TRUE(machine.stateStack.empty());
    EXPECT_TRUE(machine.blipStack.empty());
    EXPECT_EQ(machine.currentStack, nullptr);
    EXPECT_TRUE(machine.states.empty());
    EXPECT_EQ(machine.alloc.block, nullptr);
    EXPECT_FALSE(machine.blipActive);
    EXPECT_EQ(machine.blipPriority, 1);
}

TEST(HSM, HasTheType1UntilATextOfItsOwnNamesAnother)
{
    LogRecorder log;

    EXPECT_EQ(HSM().GetHSMType(), 1);
    EXPECT_EQ(HSM("{").GetHSMType(), 1);
}

// Pins down that the constructor of machines from files leaves the type to the document.
TEST(HSM, HasNoTypeUntilAFileNamesOne)
{
    LogRecorder log;

    EXPECT_EQ(HSM("/no/such/file.json", nullptr).GetHSMType(), 0);
}

TEST(HSM, IsMadeAlsoFromNoTextAndNoFile)
{
    LogRecorder log;
    const char* none = nullptr;

    HSM fromText(none);
    HSM fromFile(none, none);

    EXPECT_EQ(log.Take(), Lines(2, ErrorBreak("vell::HSM::Create")));
    EXPECT_EQ(fromText.Init(), 0);
    EXPECT_EQ(fromFile.Init(), 0);
}

TEST(HSM, BearsEveryCallWithoutADocument)
{
    LogRecorder log;
    TestMachine machine;

    CallEverything(machine);
}

TEST(HSM, BearsEveryCallAfterAFailedCreate)
{
    LogRecorder log;
    DocumentBuilder withoutType = SmallDocument().LeaveOut(JSON_Parameters);
    withoutType.Head().Remove(JSON_HeadMachineType);

    for (const std::string& text :
         {std::string("{"), SmallDocument().LeaveOut(JSON_Head).Text(),
          WithHead(SmallDocument(), JSON_HeadMemory, 0).Text(), withoutType.Text()})
    {
        TestMachine machine(text);
        CallEverything(machine);
    }
}

TEST(HSM, BearsTicksAndStackCallsBeforeStart)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument());

    machine.Update(0.1f);

    EXPECT_EQ(machine.GetCurrentState(), nullptr);
    EXPECT_EQ(machine.PopState(), nullptr);
    EXPECT_EQ(machine.PushState(10u), nullptr);
    EXPECT_EQ(machine.RevertToPreviousState(), 1);
    EXPECT_EQ(machine.RevertToStartState(), 0);
    EXPECT_EQ(machine.MainStack(), "-");
}

TEST(HSM, StartsWithTheGlobalStateAndThenTheStartState)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument().GlobalNode(Global("Anywhere", 5)));
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(), (Lines{"6 Activated State: Anywhere (5)", "6 Activated State: Stand (10)",
                                 "6 [Enter] Stand - SMState.cpp : #"}));
    EXPECT_EQ(machine.MainStack(), "Stand");
    ASSERT_NE(machine.globalState, nullptr);
    EXPECT_EQ(machine.globalState->GetID(), 5u);
    EXPECT_EQ(machine.currentStack, &machine.stateStack);
}

TEST(HSM, StartsWithoutAGlobalNodeAndSaysSo)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument());
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(), Lines{NotActivated(0)} + ActivatedAndEntered("Stand", 10));
    EXPECT_EQ(machine.globalState, nullptr);
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(HSM, PushesTheStartStateAgainWhenStartedAgain)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument().GlobalNode(Global("Anywhere", 5)));
    const SMState* global = machine.globalState;
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(), ActivatedAndEntered("Stand", 10));
    EXPECT_EQ(machine.MainStack(), "Stand/Stand");
    EXPECT_EQ(machine.globalState, global);
}

TEST(HSM, PushesNothingWithoutAStartState)
{
    LogRecorder log;
    DocumentBuilder document = SmallDocument();
    document.Head().Remove(JSON_HeadSubstateRoot);
    InitialisedMachine machine(document);
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(), (Lines{NotActivated(0), NotActivated(0), ErrorBreak(kPushState)}));
    EXPECT_EQ(machine.MainStack(), "-");
}

TEST(HSM, PushesNothingWhenStartedAfterAFailedCreate)
{
    LogRecorder log;
    TestMachine machine("{");
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(), (Lines{NotActivated(0), ErrorBreak(kPushState)}));
}

TEST(HSM, ReleasesItsArenaAndClosesItsTreeInUninit)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());
    const Tessel::KVTable tree = machine.GetKVTable();
    const std::size_t tracked = machine.alloc.tracked.size();

    EXPECT_EQ(machine.Uninit(), 1);

    EXPECT_EQ(machine.alloc.block, nullptr);
    EXPECT_EQ(machine.alloc.used, 0u);
    EXPECT_EQ(machine.alloc.capacity, 0u);
    EXPECT_EQ(machine.alloc.tracked.size(), tracked);
    EXPECT_FALSE(tree->GetTable("contextInfo"));
}

// Pins down that nothing is cleared: a host sees pointers into memory that is gone.
TEST(HSM, LeavesItsPointersAsTheyStandInUninit)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());

    machine.Uninit();

    EXPECT_NE(machine.parameterTable, nullptr);
    EXPECT_NE(machine.nodeDefTable, nullptr);
    EXPECT_TRUE(machine.kvTable);
    EXPECT_EQ(machine.states.size(), 1u);
    EXPECT_EQ(machine.stateStack.size(), 1u);
}

TEST(HSM, BearsASecondUninit)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());
    machine.Uninit();
    log.Clear();

    EXPECT_EQ(machine.Uninit(), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(machine.Destroy(), 1);
}

TEST(HSM, UninitialisesTablesThatASubclassMade)
{
    LogRecorder log;
    NodeDefTable table;
    BaseDef def("Stand", 10, 0);
    table.InsertNode(&def);
    TestMachine machine;
    machine.nodeDefTable = &table;

    EXPECT_EQ(machine.Uninit(), 1);
    EXPECT_EQ(table.nodes.size(), 0u);

    table.InsertNode(&def);
    EXPECT_EQ(machine.Uninit(), 1);
    EXPECT_EQ(table.nodes.size(), 1u);
}

TEST(HSM, BearsASecondCreateWhileItRuns)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());

    EXPECT_EQ(machine.Create(), 1);

    EXPECT_EQ(machine.GetCurrentState(), nullptr);
    EXPECT_EQ(machine.GetParameterTable(), nullptr);
    machine.Update(0.1f);
    EXPECT_EQ(machine.FindDef(10u), nullptr);
    EXPECT_EQ(machine.Uninit(), 1);
}

TEST(HSM, BearsUninitWithoutInit)
{
    LogRecorder log;
    TestMachine machine(SmallDocument());

    EXPECT_EQ(machine.Uninit(), 1);

    EXPECT_EQ(machine.alloc.block, nullptr);
}

TEST(HSM, KeepsItsMemoryInDestroy)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());
    const unsigned char* block = machine.alloc.block;

    EXPECT_EQ(machine.Destroy(), 1);

    EXPECT_EQ(machine.alloc.block, block);
    EXPECT_STREQ(machine.FindDef(10u)->GetName(), "Stand");
    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(HSM, IsDeletedThroughItsInterfaceWithoutUninit)
{
    LogRecorder log;
    const std::string text = SmallDocument().Text();
    IHSM* machine = new HSM(text.c_str());
    ASSERT_EQ(machine->Init(), 1);
    machine->Start();
    const Tessel::KVTable tree = machine->GetKVTable();

    delete machine;

    EXPECT_FALSE(tree->GetTable("contextInfo"));
}

TEST(HSM, TestsANodeTableForNull)
{
    LogRecorder log;
    TestMachine machine(SmallDocument());

    EXPECT_EQ(machine.InitCond(machine.nodeDefTable), 1);
    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(machine.InitCond(nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::InitCond")}));
}

} // namespace vell::test
