// VELL: data-driven hierarchical state machines.
// tests/site/PlatformCallsTest.cpp: what a site's own platform libraries see of the library.
#include <vell/AttribBase.h>
#include <vell/Factories.h>
#include <vell/IHSM.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "definitions/ConnectorDef.h"
#include "tests/introspection/RichDocument.h"
#include "tests/site/PlatformWatch.h"
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace vell::test
{
namespace
{

using MachinePointer = std::unique_ptr<IHSM>;

/// An attribute whose table a test may look at.
class WatchedAttrib : public AttribBase
{
public:
    WatchedAttrib() : AttribBase(DURMBaseLib::PARAM_Integer)
    {
    }
    using AttribBase::SetValue;
    void SetValue(int) override
    {
        ++taken;
    }

    int taken = 0;
};

/// One state with an attribute, one parameter, and a transition with two conditions.
DocumentBuilder SmallDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("go", false))
        .Node(Generic("Idle", 10, {100})
                  .Set(JSON_Attributes, Json::Array({Attribute("surface", "QString", "stone")})))
        .Node(Generic("Away", 20))
        .Node(Transition("Leave", 100, 10, 20,
                         {BoolCondition("go", true), BoolCondition("go", true)}));
}

/// A definition that is about to load one attribute.
struct LoadingDef
{
    int Init()
    {
        return def.Init(*node, &alloc);
    }

    LogRecorder log;
    Arena alloc;
    const ParsedJson node{
        Generic("Idle", 10).Set(JSON_Attributes, Json::Array({Attribute("speed", "int", 5)}))};
    OpenDef def;
    PlatformWatch watch;
};

Lines Sorted(Lines lines)
{
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// One access to a table that asks for its lock.
Lines Locked(const std::string& access)
{
    return {"NeedsLock", "Lock", access, "NeedsLock", "Unlock"};
}

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace

TEST(PlatformCalls, AskTheVocabularyForTheListedMembersAlone)
{
    LogRecorder log;
    const std::string text = SmallDocument().Text();
    const MachinePointer machine(CreateHSMJson(text.c_str()));

    EXPECT_EQ(PlatformWatch::MembersAskedFor(), PlatformWatch::MembersListed());
    EXPECT_EQ(PlatformWatch::MembersListed().size(), 53u);
}

TEST(PlatformCalls, TakeAParametersListenerRecordInABracketOfItsOwn)
{
    ParameterIntegerDef parameter;
    PlatformWatch watch;
    watch.NeedLocks();

    parameter.InitKVTable();

    EXPECT_EQ(watch.TakeOf("baseDef"),
              (Lines{"AddTable attribs", "SetUInt id", "GetTable attribs", "SetString type",
                     "SetInt value"} +
               Locked("FindValue value") + Locked("GetValueListener value")));
}

TEST(PlatformCalls, AreTheSameWhenAParameterIsToldToListenAgain)
{
    ParameterIntegerDef parameter;
    parameter.InitKVTable();
    PlatformWatch watch;
    watch.NeedLocks();

    EXPECT_EQ(parameter.InitKVTableListener(), 1);

    EXPECT_EQ(watch.TakeOf("baseDef"),
              Locked("FindValue value") + Locked("GetValueListener value"));
}

TEST(PlatformCalls, EndListeningInABracketOfItsOwn)
{
    ParameterIntegerDef parameter;
    parameter.InitKVTable();
    PlatformWatch watch;
    watch.NeedLocks();

    EXPECT_EQ(parameter.UnInitKVTableListener(), 1);

    EXPECT_EQ(watch.TakeOf("baseDef"),
              Locked("FindValue value") + Locked("RemoveValueListener value"));
}

TEST(PlatformCalls, EndListeningToAnotherTableInABracketOfItsOwn)
{
    ParameterIntegerDef assigned;
    ParameterIntegerDef moved;
    ParameterIntegerDef other;
    for (ParameterIntegerDef* parameter : {&assigned, &moved, &other})
    {
        parameter->InitKVTable();
    }
    PlatformWatch watch;
    watch.NeedLocks();

    assigned = other;
    EXPECT_EQ(watch.TakeOf("baseDef"), Locked("RemoveValueListener value"));

    static_cast<BaseDef&>(moved) = other;
    EXPECT_EQ(moved.InitKVTableListener(), 1);
    EXPECT_EQ(watch.TakeOf("baseDef"), Locked("FindValue value") +
                                           Locked("RemoveValueListener value") +
                                           Locked("GetValueListener value"));
}

TEST(PlatformCalls, OfAnAttributeTakeItsRecordAndRemoveIt)
{
    WatchedAttrib attrib;
    PlatformWatch watch;
    watch.NeedLocks();

    EXPECT_EQ(attrib.InitKVTableListener(), 1);
    EXPECT_EQ(attrib.InitKVTableListener(), 1);
    EXPECT_EQ(attrib.UnInitKVTableListener(), 1);

    EXPECT_EQ(watch.TakeOf("attribBase"), Locked("GetValueListener value") +
                                              Locked("GetValueListener value") +
                                              Locked("RemoveValueListener value"));
}

TEST(PlatformCalls, OfAnAttributeThatLoadsEndWithItsPlaceUnderItsNode)
{
    LoadingDef loading;

    EXPECT_EQ(loading.Init(), 1);

    EXPECT_EQ(loading.watch.Take(),
              (Lines{"baseDef AddTable attribs", "attribBase SetString type",
                     "attribBase SetInt value", "attribBase SetString name", "attribBase NeedsLock",
                     "attribBase GetValueListener value", "attribBase NeedsLock",
                     "baseDef GetTable attribs", "attribBase SetUInt nodeID",
                     "attribs AttachTable speed"}));
}

TEST(PlatformCalls, MayGiveAnAttributeNoTable)
{
    LoadingDef loading;
    loading.watch.RefuseTables("attribBase");

    EXPECT_EQ(loading.Init(), 1);

    EXPECT_EQ(loading.log.Take(),
              (Lines{ErrorBreak("vell::AttribBase::InitKVTableListener"), CreatedDef("Idle")}));
    EXPECT_EQ(loading.watch.Take(), (Lines{"baseDef AddTable attribs", "baseDef GetTable attribs",
                                           "attribs AttachTable speed"}));
    int value = 0;
    ASSERT_NE(loading.def.GetAttrib("speed"), nullptr);
    EXPECT_EQ(loading.def.GetAttrib("speed")->GetValue(&value), 1);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(loading.def.Uninit_Attribs(), 1);
    EXPECT_EQ(loading.log.Take(), (Lines{ErrorBreak("vell::AttribBase::UnInitKVTableListener")}));
}

TEST(PlatformCalls, AskTwiceForTheTableOfTheNodesAndTakeNoNodesWithoutIt)
{
    LogRecorder log;
    TestMachine machine(SmallDocument());
    const ParsedJson nodes(Json::Array({Generic("Idle", 10)}));
    PlatformWatch watch;
    watch.RefuseTables("nodeDefTable");

    EXPECT_EQ(machine.InitNodeDefTable(*nodes, &machine.alloc), 0);

    const std::string create = ErrorBreak("vell::NodeDefTable::CreateKVTable");
    const Lines init = {create, create, ErrorBreak("vell::NodeDefTable::Init")};
    EXPECT_EQ(log.Take(), init + init + Lines{ErrorBreak("vell::HSM::InitNodeDefTable")});
    EXPECT_EQ(machine.FindDef(10u), nullptr);
}

TEST(PlatformCalls, AskForConnectorNamesUpToTheOneThatFits)
{
    const std::pair<const char*, std::vector<int>> cases[] = {
        {"in", {3}},         {"ENTERING", {3, 1}},      {"enter", {3, 1}},
        {"Out", {3, 1, 4}},  {"exiting", {3, 1, 4, 2}}, {"EXIT", {3, 1, 4, 2}},
        {"no", {3, 1, 4, 2}}};
    for (const auto& [word, asked] : cases)
    {
        LogRecorder log;
        PlatformWatch watch;

        const Built<ConnectorDef> connector(Connector("Door", 30, word));

        EXPECT_EQ(watch.TakeConnectors(), asked) << word;
    }
}

TEST(PlatformCalls, MayShowAnAttributeAnIntegerInFourForms)
{
    for (int type = 0; type <= 20; ++type)
    {
        WatchedAttrib attrib;
        attrib.InitKVTableListener();
        PlatformWatch watch;
        watch.ShowValuesAs(type);

        attrib.GetKVTable()->SetInt("value", 7, 1);

        const bool isTaken = type == 12 || (type >= 14 && type <= 16);
        EXPECT_EQ(attrib.taken, isTaken ? 1 : 0) << type;
    }
}

TEST(PlatformCalls, FillTheOneRecordOfAKeyEachTime)
{
    PlatformWatch watch;
    watch.KeepOneRecordForEachKey();
    ParameterIntegerDef parameter;
    parameter.InitKVTable();
    WatchedAttrib attrib;
    attrib.InitKVTableListener();
    *parameter.GetKVTable()->GetValueListener("value") = Tessel::KVListener{};
    *attrib.GetKVTable()->GetValueListener("value") = Tessel::KVListener{};

    parameter.InitKVTableListener();
    attrib.InitKVTableListener();
    parameter.GetKVTable()->SetInt("value", 7, 1);
    attrib.GetKVTable()->SetInt("value", 7, 1);

    EXPECT_EQ(parameter.GetValue(), 7);
    EXPECT_EQ(attrib.taken, 1);
}

TEST(PlatformCalls, ReadTheSwitchKeysAlsoWhenNobodyListens)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());
    PlatformWatch watch;

    machine.ChangeState(20);

    EXPECT_EQ(watch.TakeOf("contextInfo"),
              (Lines{"GetTable stackStates", "GetTable stackStates", "SetUInt previousState",
                     "SetUInt nextState", "GetUInt nextState", "GetUInt previousState",
                     "GetUInt transitionTriggered"}));
}

TEST(PlatformCalls, RestoreTheSwitchKeysWithoutTheFlagOfOtherWrites)
{
    LogRecorder log;
    StartedMachine machine(SmallDocument());
    PlatformWatch watch;

    machine.SetContextInfo(Tessel::KVTable());

    EXPECT_EQ(watch.TakeOf("contextInfo"),
              (Lines{"SetUInt without flag nextState", "SetUInt without flag previousState",
                     "SetUInt without flag transitionTriggered", "GetUInt nextState",
                     "GetUInt previousState", "GetUInt transitionTriggered"}));
}

TEST(PlatformCalls, CloseEachTableOnceInUninitAndTheRestAtTheDeletion)
{
    LogRecorder log;
    const std::string text = SmallDocument().Text();
    MachinePointer machine(CreateHSMJson(text.c_str()));
    ASSERT_EQ(machine->Init(), 1);
    IParameterIntDef* late = nullptr;
    ASSERT_EQ(machine->GetParameterTable()->CreateIntParameter("late", 1, &late), 1);
    machine->Start();
    machine->Update(0.1f);
    PlatformWatch watch;

    machine->Uninit();
    EXPECT_EQ(watch.TakeClosed(), (Lines{"baseDef", "baseDef", "parameterTable", "baseDef",
                                         "baseDef", "baseDef", "HSM"}));

    machine->Destroy();
    machine.reset();
    EXPECT_EQ(Sorted(watch.TakeClosed()), (Lines{"attribBase", "nodeDefTable"}));
}

TEST(PlatformCalls, CloseEachTableOnceWhenTheMachineIsOnlyDeleted)
{
    LogRecorder log;
    const std::string text = SmallDocument().Text();
    MachinePointer machine(CreateHSMJson(text.c_str()));
    ASSERT_EQ(machine->Init(), 1);
    IParameterIntDef* late = nullptr;
    ASSERT_EQ(machine->GetParameterTable()->CreateIntParameter("late", 1, &late), 1);
    PlatformWatch watch;

    machine.reset();

    EXPECT_EQ(Sorted(watch.TakeClosed()),
              (Lines{"HSM", "attribBase", "baseDef", "baseDef", "baseDef", "baseDef", "baseDef",
                     "nodeDefTable", "parameterTable"}));
}

TEST(PlatformCalls, CloseNothingAgainInASecondUninit)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument());
    machine.Uninit();
    PlatformWatch watch;

    machine.Uninit();

    EXPECT_EQ(watch.TakeClosed(), Lines());
}

TEST(PlatformCalls, NeverCloseANullHandleOrAClosedTableInAGoodLife)
{
    LogRecorder log;
    PlatformWatch watch;
    for (const bool uninit : {false, true})
    {
        const std::string text = RichDocument().Text();
        MachinePointer machine(CreateHSMJson(text.c_str()));
        ASSERT_EQ(machine->Init(), 1);
        machine->Start();
        machine->Update(0.1f);
        if (uninit)
        {
            machine->Uninit();
            machine->Destroy();
        }
        machine.reset();
        const Lines closed = watch.TakeClosed();

        EXPECT_GT(closed.size(), 20u);
        EXPECT_EQ(std::count(closed.begin(), closed.end(), "(null)"), 0) << uninit;
        EXPECT_EQ(std::count(closed.begin(), closed.end(), "(closed)"), 0) << uninit;
    }
}

TEST(PlatformCalls, CloseTheParameterTableThreeTimesWhenItsLoadFails)
{
    LogRecorder log;
    TestMachine machine(SmallDocument().Parameter(5));
    PlatformWatch watch;

    EXPECT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 0);

    EXPECT_EQ(watch.TakeClosed(), (Lines{"baseDef", "parameterTable", "(closed)", "(closed)"}));
}

TEST(PlatformCalls, GetEachLogLineAlsoBeforeACallbackIsSet)
{
    SetLogCallBackBase(nullptr);
    TestMachine machine(SmallDocument());
    ASSERT_EQ(machine.Init(), 1);
    PlatformWatch watch;
    testing::internal::CaptureStderr();

    EXPECT_EQ(machine.FindDef(99u), nullptr);
    EXPECT_EQ(machine.PushState(99u), nullptr);

    const std::string written = testing::internal::GetCapturedStderr();
    std::string logged;
    for (const std::string& line : watch.TakeLogged())
    {
        EXPECT_EQ(line.substr(0, 2), "3 ");
        logged += line.substr(2);
    }
    EXPECT_EQ(logged, written);
    EXPECT_GE(std::count(written.begin(), written.end(), '\n'), 2);
}

} // namespace vell::test
