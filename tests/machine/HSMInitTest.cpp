// VELL: data-driven hierarchical state machines.
// tests/machine/HSMInitTest.cpp: the log and the result of Init, whole, good and bad.
#include <vell/ConditionDef.h>
#include <vell/Parameters.h>
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "parameters/ParameterTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

const std::string kInit = "vell::HSM::Init";
const std::string kParsing = "3 Parsing JSON file has caused an exception";

/// What a failed step leaves: its own lines twice, and the end of Init.
Lines Failed(const Lines& step)
{
    return step + step + Lines{ErrorBreak(kInit), kParsing};
}

/// The lines of a layer, with those of its nodes.
Lines LayerLines(int index, const std::string& name, const Lines& nodes)
{
    return Lines{"9 Importing Layer[" + std::to_string(index) + "]: " + name,
                 "9 ---------------------------------------"} +
           nodes + Lines{"9 \n"};
}

const Lines kLayersBanner = {"9 \n\nImporting HSM layers", "9 --------------------\n\n"};

/// The lines of the head that DocumentBuilder makes.
Lines HeadLines(unsigned int enterNode, unsigned int substateRoot)
{
    return {"9 \n\nHSM Entry Information",
            "9 ---------------------\n\n",
            "6 HSM_ID:\t\t\t77",
            "6 HSM_EnterLayerID:\t0",
            "6 SubstateRootID:    " + std::to_string(substateRoot),
            "6 HSM_EnterNodeID:\t" + std::to_string(enterNode),
            "6 HSM_Type:\t\t\tcharacter",
            "6 HSM_GUID:\t\t\tguid-of-the-test",
            "6 HSM_BuildID:\t\tbuild-of-the-test",
            "9 \n\n"};
}

const Lines kStandLayer = kLayersBanner + LayerLines(0, "Base", {"6 Created new BaseDef: Stand"});
const Lines kStandAndHead = kStandLayer + HeadLines(10, 10);

/// Creates a machine of `document` and gives the lines of its `Init`, which has to give `result`.
Lines LinesOfInit(const DocumentBuilder& document, int result)
{
    LogRecorder log;
    TestMachine machine(document);
    log.Clear();

    EXPECT_EQ(machine.Init(), result);
    return log.Take();
}

/// What is wrong with a document, and the lines that a test expects of its `Init`.
struct Failure
{
    const char* what;
    DocumentBuilder document;
    Lines lines;
};

/// A document that gives each step of Init something to do.
DocumentBuilder WholeDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("alert", true))
        .Node(Generic("Stand", 10, {100}))
        .Node(Transition("Go", 100, 10, 10, {BoolCondition("alert", true)}))
        .Skeleton(JsonObject()
                      .Set(JSON_ModelFileName, "hero.mdl")
                      .Set(JSON_SkeletonFileName, "hero.skel"))
        .GlobalNode(Global("Anywhere", 5, {101}))
        .GlobalNode(Transition("Flee", 101, 5, 10, {BoolCondition("alert", true)}));
}

bool IsBound(NodeDefTable* nodes, unsigned int transitionId)
{
    auto* transition =
        nodes == nullptr ? nullptr : dynamic_cast<TransitionDef*>(nodes->Find(transitionId));
    return transition != nullptr && transition->conditions.at(0)->parameter != nullptr;
}

/// What the steps of Init have left in a machine of the WholeDocument, in their order.
Lines StepsDone(TestMachine& machine)
{
    Lines steps;
    const auto note = [&steps](bool isDone, const char* step)
    {
        if (isDone)
        {
            steps.push_back(step);
        }
    };
    note(machine.parameterTable != nullptr && machine.parameterTable->GetParameterCount() == 1,
         "parameters");
    NodeDefTable* nodes = machine.nodeDefTable;
    note(nodes != nullptr && nodes->Find(100) != nullptr, "layers");
    note(nodes != nullptr && nodes->enterNodeId == 10, "head");
    note(nodes != nullptr && nodes->skeletonFileName != nullptr, "skeleton");
    note(nodes != nullptr && nodes->globalNodeId == 5, "global nodes");
    note(machine.startStateID == 10, "start state");
    note(IsBound(nodes, 100) && IsBound(nodes, 101), "conditions");
    note(static_cast<bool>(machine.kvTable), "tree");
    return steps;
}

} // namespace

TEST(HSMInit, TakesItsStepsInOneOrderAndEndsAtTheFirstThatFails)
{
    const Failure cases[] = {
        {"parameters", WithRoot(WholeDocument(), JSON_Parameters, 5), {}},
        {"layers", WithRoot(WholeDocument(), JSON_Layers, 5), {"parameters"}},
        {"head", WithHead(WholeDocument(), JSON_HeadEnterNode, 0), {"parameters", "layers"}},
        {"skeleton", WithRoot(WholeDocument(), JSON_Skeleton, 5), {"parameters", "layers", "head"}},
        {"global nodes",
         WithRoot(WholeDocument(), JSON_Global, 5),
         {"parameters", "layers", "head", "skeleton"}}};
    for (const Failure& failure : cases)
    {
        LogRecorder log;
        TestMachine machine(failure.document);

        EXPECT_EQ(machine.Init(), 0) << failure.what;

        EXPECT_EQ(StepsDone(machine), failure.lines) << failure.what;
    }
}

TEST(HSMInit, BindsConditionsBeforeItMakesTheTree)
{
    LogRecorder log;
    TestMachine machine(WholeDocument());
    machine.kvTable = Tessel::CreateTable("in the way");

    EXPECT_EQ(machine.Init(), 0);

    EXPECT_EQ(StepsDone(machine), (Lines{"parameters", "layers", "head", "skeleton", "global nodes",
                                         "start state", "conditions", "tree"}));
    EXPECT_EQ(machine.kvTable->GetKeyCount(), 0u);
}

TEST(HSMInit, LogsTheSkeletonBetweenTheHeadAndTheGlobalNodes)
{
    DocumentBuilder document = SmallDocument();
    document.Skeleton(JsonObject()).GlobalNode(Global("Anywhere", 5));

    EXPECT_EQ(LinesOfInit(document, 1),
              (kStandAndHead + Lines{ErrorBreak("vell::NodeDefTable::ImportSkel_ModelFileName"),
                                     ErrorBreak("vell::NodeDefTable::ImportSkel_SkeletonFileName"),
                                     "6 Created new BaseDef: Anywhere"}));
}

TEST(HSMInit, LogsAGoodLoadFromParametersToGlobalNodes)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(FloatParameter("speed", 0.5))
        .Parameter(MessageParameter("hit", "text"))
        .Layer("Ground")
        .Node(Generic("Stand", 10, {100}))
        .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)}))
        .Layer("Nested")
        .Node(Substate("Fight", 11, 20, 21))
        .Node(Enter("In", 20, 22, 11))
        .Node(Exit("Out", 21, 11))
        .GlobalNode(Global("Anywhere", 5));

    const Lines ground = {"6 Created new BaseDef: Stand", "6 Created new BaseDef: Go",
                          "6 Created new BaseDef: on speed"};
    const Lines nested = {"6 Created new BaseDef: Fight", "6 Created new BaseDef: In",
                          "6 EnterNode: In - ParentID: 11", "6 Created new BaseDef: Out"};
    EXPECT_EQ(LinesOfInit(document, 1),
              (Lines{"6 Created new BaseDef: speed", "6 float", "6 Created new BaseDef: hit",
                     "6 message"} +
               kLayersBanner + LayerLines(0, "Ground", ground) + LayerLines(1, "Nested", nested) +
               HeadLines(10, 10) + Lines{"6 Created new BaseDef: Anywhere"}));
}

TEST(HSMInit, FillsTheTablesAndMakesNoStates)
{
    LogRecorder log;
    TestMachine machine(
        SmallDocument().Parameter(BoolParameter("alert", true)).GlobalNode(Global("Anywhere", 5)));

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 1);
    EXPECT_EQ(machine.nodeDefTable->nodes.size(), 2u);
    EXPECT_EQ(machine.nodeDefTable->globalNodeId, 5u);
    EXPECT_EQ(machine.startStateID, 10u);
    EXPECT_TRUE(machine.kvTable);
    EXPECT_TRUE(machine.states.empty());
    EXPECT_TRUE(machine.stateStack.empty());
    EXPECT_EQ(machine.globalState, nullptr);
    EXPECT_EQ(machine.currentStack, nullptr);
}

TEST(HSMInit, TakesTheStartStateFromTheSubstateRootAndNotFromTheEntryNode)
{
    LogRecorder log;
    DocumentBuilder document = SmallDocument();
    document.Node(Generic("Walk", 11));
    document.Head().Set(JSON_HeadSubstateRoot, 11);
    TestMachine machine(document);

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(machine.startStateID, 11u);
    EXPECT_EQ(machine.nodeDefTable->enterNodeId, 10u);
}

TEST(HSMInit, LoadsAHeadOfVersion1WithoutIdentityAndStartState)
{
    LogRecorder log;
    TestMachine machine(WithHead(SmallDocument(), JSON_HeadVersion, 1));

    EXPECT_EQ(machine.Init(), 1);

    EXPECT_STREQ(machine.GetGUID(), "");
    EXPECT_STREQ(machine.nodeDefTable->buildId, "");
    EXPECT_EQ(machine.nodeDefTable->substateRootId, 0u);
    EXPECT_EQ(machine.startStateID, 0u);
}

TEST(HSMInit, LoadsChildrenBeforeTheirParentsAlike)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder()
                            .Start(10)
                            .Node(Transition("Go", 100, 10, 11, {BoolCondition("alert", true)}))
                            .Node(Generic("Walk", 11))
                            .Node(Generic("Stand", 10, {100}))
                            .Parameter(BoolParameter("alert", true)));

    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST(HSMInit, IgnoresMembersThatItDoesNotKnow)
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("Stand", 10).Set("colour", "red"));
    document.Head().Set("author", Json::Null());
    document.Root().Set("editor", Json::Array({1, 2}));

    EXPECT_EQ(LinesOfInit(document, 1), kStandAndHead);
}

// Pins down that an id written with a decimal point is taken bit by bit.
TEST(HSMInit, TakesTheLowBitsOfAnIdThatIsARealNumber)
{
    LogRecorder log;
    TestMachine machine(SmallDocument().Node(Generic("Walk", 11).Set(JSON_ID, 11.0)));

    ASSERT_EQ(machine.Init(), 1);

    ASSERT_NE(machine.FindDef("Walk"), nullptr);
    EXPECT_EQ(machine.FindDef("Walk")->GetID(), 0u);
}

TEST(HSMInit, RunsTheStepThatFailsASecondTimeAndEnds)
{
    const std::string table = ErrorBreak("vell::ParameterTable::Init");
    const std::string create = ErrorBreak("vell::ParameterTable::CreateKVTable");
    const std::string step = ErrorBreak("vell::HSM::InitParameterTable");
    const Lines again = {create, create, table};
    const Failure failures[] = {
        {"no head, and so no arena", SmallDocument().LeaveOut(JSON_Head), Failed({step})},
        {"parameters that are no array, which are taken four times",
         WithRoot(SmallDocument(), JSON_Parameters, 5),
         Lines{table} + again + Lines{step} + again + again +
             Lines{step, ErrorBreak(kInit), kParsing}},
        {"a skeleton that is no object", SmallDocument().Skeleton(5),
         kStandAndHead + Failed({ErrorBreak("vell::NodeDefTable::ImportSkel")})},
        {"global nodes that are no array", WithRoot(SmallDocument(), JSON_Global, 5),
         kStandAndHead + Failed({ErrorBreak("vell::NodeDefTable::ImportGlobal")})}};
    for (const Failure& failure : failures)
    {
        SCOPED_TRACE(failure.what);
        EXPECT_EQ(LinesOfInit(failure.document, 0), failure.lines);
    }
}

TEST(HSMInit, FailsAndPrintsTheWholeHeadTwiceWithoutAnEntryNode)
{
    EXPECT_EQ(LinesOfInit(WithHead(SmallDocument(), JSON_HeadEnterNode, 0), 0),
              kStandLayer +
                  Failed(HeadLines(0, 10) + Lines{ErrorBreak("vell::NodeDefTable::ImportHead")}));
}

TEST(HSMInit, FailsInTheTreeWithoutParameters)
{
    EXPECT_EQ(LinesOfInit(SmallDocument().LeaveOut(JSON_Parameters), 0),
              kStandAndHead + Failed({ErrorBreak("vell::HSM::CreateKVTable")}));
}

TEST(HSMInit, FailsWithoutADocument)
{
    LogRecorder log;
    TestMachine empty;
    TestMachine afterAFailedCreate("{");
    for (TestMachine* machine : {&empty, &afterAFailedCreate})
    {
        log.Clear();

        EXPECT_EQ(machine->Init(), 0);

        EXPECT_EQ(log.Take(), Failed({ErrorBreak("vell::HSM::ImportLayers")}));
    }
}

TEST(HSMInit, FailsWithoutANodeTable)
{
    LogRecorder log;
    TestMachine machine(WithRoot(SmallDocument(), JSON_Layers, Json::Array({})));
    NodeDefTable* table = machine.nodeDefTable;
    machine.nodeDefTable = nullptr;

    EXPECT_EQ(machine.Init(), 0);

    EXPECT_EQ(log.Take(), kLayersBanner + Lines({ErrorBreak(kInit), kParsing}));
    machine.nodeDefTable = table;
}

TEST(HSMInit, NeedsRoomForTheParameterTable)
{
    LogRecorder log;
    TestMachine fits(SmallDocument());
    TestMachine tooSmall(SmallDocument());
    fits.alloc.used = fits.alloc.capacity - static_cast<unsigned int>(sizeof(ParameterTable));
    tooSmall.alloc.used = fits.alloc.used + 1;

    EXPECT_EQ(fits.InitParameterTable(fits.document, &fits.alloc), 1);
    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(fits.alloc.used, fits.alloc.capacity);
    EXPECT_EQ(tooSmall.Init(), 0);

    EXPECT_EQ(log.Take(), Failed({ErrorBreak("vell::HSM::InitParameterTable")}));
    EXPECT_EQ(tooSmall.parameterTable, nullptr);
}

TEST(HSMInit, MakesNoParameterTableWithoutTheMember)
{
    LogRecorder log;
    DocumentBuilder document = SmallDocument();
    document.LeaveOut(JSON_Parameters);
    TestMachine machine(document);

    EXPECT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 1);

    EXPECT_EQ(machine.parameterTable, nullptr);
    EXPECT_EQ(machine.GetParameterTable(), nullptr);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(HSMInit, LeavesWhatEarlierStepsBuiltWhenALaterOneFails)
{
    LogRecorder log;
    TestMachine machine(
        WithRoot(SmallDocument().Parameter(BoolParameter("alert", true)), JSON_Global, 5));

    ASSERT_EQ(machine.Init(), 0);

    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 1);
    EXPECT_NE(machine.FindDef(10u), nullptr);
    EXPECT_EQ(machine.startStateID, 0u);
    EXPECT_FALSE(machine.kvTable);
}

TEST(HSMInit, FailsAtItsParametersWhenRunASecondTime)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument());
    log.Clear();

    EXPECT_EQ(machine.Init(), 0);

    const std::string table = ErrorBreak("vell::ParameterTable::Init");
    const std::string create = ErrorBreak("vell::ParameterTable::CreateKVTable");
    const Lines again = {create, create, table};
    EXPECT_EQ(log.Take(),
              Failed(again + again + Lines{ErrorBreak("vell::HSM::InitParameterTable")}));
}

TEST(HSMInit, MakesNoParameterTableWithoutAnArena)
{
    LogRecorder log;
    TestMachine machine(SmallDocument());
    log.Clear();

    EXPECT_EQ(machine.InitParameterTable(machine.document, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::InitParameterTable")}));
    EXPECT_EQ(machine.parameterTable, nullptr);
}

TEST(HSMInit, TakesNodesInThroughItsTable)
{
    LogRecorder log;
    TestMachine machine(SmallDocument());
    GenericDocument nodes;
    nodes.Parse(Json::Array({Generic("Walk", 11)}).Text().c_str());
    log.Clear();

    EXPECT_EQ(machine.InitNodeDefTable(nodes, &machine.alloc), 1);

    EXPECT_EQ(log.Take(), (Lines{"6 Created new BaseDef: Walk"}));
    EXPECT_EQ(machine.nodeDefTable->nodes.size(), 1u);
}

TEST(HSMInit, TakesNoNodesInWithoutItsTable)
{
    LogRecorder log;
    TestMachine machine;
    GenericDocument nodes;
    nodes.Parse("[]");

    EXPECT_EQ(machine.InitNodeDefTable(nodes, &machine.alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::InitNodeDefTable")}));
}

TEST(HSMInit, RunsAFailedNodeTableTwiceAndEmptiesIt)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument());
    GenericDocument nodes;
    nodes.Parse("{}");
    log.Clear();

    EXPECT_EQ(machine.InitNodeDefTable(nodes, &machine.alloc), 0);

    const std::string table = ErrorBreak("vell::NodeDefTable::Init");
    EXPECT_EQ(log.Take(), (Lines{table, table, ErrorBreak("vell::HSM::InitNodeDefTable")}));
    EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
}

TEST(HSMInit, UninitialisesItsTablesForSubclasses)
{
    LogRecorder log;
    TestMachine machine(SmallDocument().Parameter(BoolParameter("alert", true)));
    TestMachine empty;
    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(machine.UninitParameterTable(&machine.alloc), 1);
    EXPECT_EQ(machine.UninitNodeDefTable(&machine.alloc), 1);
    EXPECT_EQ(empty.UninitParameterTable(&empty.alloc), 1);
    EXPECT_EQ(empty.UninitNodeDefTable(&empty.alloc), 1);

    EXPECT_EQ(machine.parameterTable->GetParameterCount(), 0);
    EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
}

} // namespace vell::test
