// VELL: data-driven hierarchical state machines.
// tests/machine/HSMLayersTest.cpp: how layers are taken in, and what a bad one leaves.
#include "definitions/NodeDefTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

const Lines kBanner = {"9 \n\nImporting HSM layers", "9 --------------------\n\n"};
const std::string kImportLayers = ErrorBreak("vell::HSM::ImportLayers");
const std::string kImportStates = ErrorBreak("vell::HSM::ImportStates");
const std::string kInitTable = ErrorBreak("vell::HSM::InitNodeDefTable");
const std::string kInitNodes = ErrorBreak("vell::NodeDefTable::Init");
const std::string kInsert = ErrorBreak("vell::NodeDefTable::InsertNode");

Lines Joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts)
    {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

Lines LayerHead(int index, const std::string& name)
{
    return {"9 Importing Layer[" + std::to_string(index) + "]: " + name,
            "9 ---------------------------------------"};
}

Lines Created(const std::string& name)
{
    return {"6 Created new BaseDef: " + name};
}

const Lines kLayerEnd = {"9 \n"};

/// What a layer leaves whose nodes fail with the lines of `walk`: eight walks in all.
Lines FailedLayer(const Lines& walk)
{
    const Lines table = Joined({walk, walk, {kInitTable}});
    const Lines states = Joined({table, table, {kImportStates}});
    return Joined({states, states, {kImportLayers}});
}

/// A layer from its members.
JsonObject LayerObject(const std::string& name, const Json& nodes)
{
    return JsonObject().Set(JSON_Name, name).Set(JSON_Nodes, nodes);
}

DocumentBuilder DocumentOf(const std::vector<Json>& layers)
{
    DocumentBuilder document;
    document.Start(10).Root().Set(JSON_Layers, Json::Array(layers));
    return document;
}

/// A document that has nodes at its root and no layers.
DocumentBuilder RootNodes(const std::vector<Json>& nodes)
{
    DocumentBuilder document;
    document.Start(10).LeaveOut(JSON_Layers).Root().Set(JSON_Nodes, Json::Array(nodes));
    return document;
}

/// Calls ImportLayers of a fresh machine.
struct Import
{
    explicit Import(const DocumentBuilder& document) : machine(document)
    {
        log.Clear();
        result = machine.ImportLayers(machine.document, &machine.alloc);
        lines = log.Take();
    }

    std::vector<unsigned int> Ids() const
    {
        std::vector<unsigned int> ids;
        for (const auto& entry : machine.nodeDefTable->nodes)
        {
            ids.push_back(entry.first);
        }
        return ids;
    }

    LogRecorder log;
    TestMachine machine;
    int result = -1;
    Lines lines;
};

} // namespace

TEST(HSMLayers, FillOneTableInTheOrderOfTheDocument)
{
    const Import import(DocumentOf({LayerObject("Ground", Json::Array({Generic("B", 20)})),
                                    LayerObject("Air", Json::Array({Generic("A", 10)}))}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, "Ground"), Created("B"), kLayerEnd,
                                    LayerHead(1, "Air"), Created("A"), kLayerEnd}));
    EXPECT_EQ(import.Ids(), (Ids{10, 20}));
    EXPECT_EQ(import.machine.nodeDefTable->nodeIds, (Ids{20, 10}));
    EXPECT_TRUE(import.machine.states.empty());
}

TEST(HSMLayers, MayReferToNodesOfEachOther)
{
    LogRecorder log;
    StartedMachine machine(DocumentBuilder()
                               .Start(10)
                               .Parameter(BoolParameter("alert", true))
                               .Layer("One")
                               .Node(Generic("Stand", 10, {100}))
                               .Layer("Two")
                               .Node(Transition("Go", 100, 10, 11, {BoolCondition("alert", true)}))
                               .Layer("Three")
                               .Node(Generic("Walk", 11)));

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST(HSMLayers, AreLoggedWithTheirWholeNames)
{
    const std::string name(3000, 'n');

    const Import import(DocumentOf({LayerObject(name, Json::Array({}))}));

    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, name), kLayerEnd}));
}

TEST(HSMLayers, AreLoggedWithoutANameWhenTheyHaveNone)
{
    JsonObject layer;
    layer.Set(JSON_Nodes, Json::Array({Generic("A", 10)}));

    const Import import(DocumentOf({layer}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, ""), Created("A"), kLayerEnd}));
}

TEST(HSMLayers, LeaveTheTableEmptyWhenThereAreNone)
{
    const Import import(DocumentOf({}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, kBanner);
    EXPECT_TRUE(import.Ids().empty());
}

TEST(HSMLayers, LetAMachineLoadWithoutItsEntryNodeWhenThereAreNone)
{
    LogRecorder log;
    TestMachine machine(DocumentOf({}));
    log.Clear();

    EXPECT_EQ(machine.Init(), 1);

    EXPECT_EQ(log.Take({3}), (Lines{"3 Entry Node doesn't exist: 10"}));
}

TEST(HSMLayers, HaveToBeAnArray)
{
    DocumentBuilder document;
    document.Start(10).Root().Set(JSON_Layers, JsonObject());
    document.Root().Set(JSON_Nodes, Json::Array({Generic("A", 10)}));

    const Import import(document);

    EXPECT_EQ(import.result, 0);
    EXPECT_EQ(import.lines, (Lines{kImportLayers}));
    EXPECT_TRUE(import.Ids().empty());
}

TEST(HSMLayers, WinOverNodesAtTheRoot)
{
    DocumentBuilder document = DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)}))});
    document.Root().Set(JSON_Nodes, Json::Array({Generic("B", 11)}));

    const Import import(document);

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.Ids(), (Ids{10}));
}

TEST(HSMLayers, NeedLayersOrNodes)
{
    DocumentBuilder document;
    document.Start(10).LeaveOut(JSON_Layers);

    const Import import(document);

    EXPECT_EQ(import.result, 0);
    EXPECT_EQ(import.lines, (Lines{kImportLayers}));
}

// Pins down that a document without layers is refused although its nodes were taken in.
TEST(HSMLayers, AreMissedAlsoWhenTheNodesAtTheRootWereTakenIn)
{
    const Import import(RootNodes({Generic("A", 10)}));

    EXPECT_EQ(import.result, 0);
    EXPECT_EQ(import.lines, Created("A"));
    EXPECT_EQ(import.Ids(), (Ids{10}));
}

TEST(HSMLayers, AreMissedByInitWhichTakesTheNodesAtTheRootInTwice)
{
    LogRecorder log;
    TestMachine machine(RootNodes({Generic("A", 10), Generic("B", 11)}));
    log.Clear();

    EXPECT_EQ(machine.Init(), 0);

    const Lines refused = {"3 Duplicate ID (10) error: A conflicts with A", kInsert};
    EXPECT_EQ(log.Take(), Joined({Created("A"),
                                  Created("B"),
                                  Created("A"),
                                  refused,
                                  refused,
                                  {kInitNodes, ErrorBreak("vell::HSM::Init"),
                                   "3 Parsing JSON file has caused an exception"}}));
    EXPECT_EQ(machine.nodeDefTable->nodes.size(), 2u);
    EXPECT_EQ(machine.nodeDefTable->nodeIds, (Ids{10, 11, 10, 10}));
}

TEST(HSMLayers, AreMissedAlsoWhenTheNodesAtTheRootFail)
{
    DocumentBuilder document;
    document.Start(10).LeaveOut(JSON_Layers).Root().Set(JSON_Nodes, 5);

    const Import import(document);

    EXPECT_EQ(import.result, 0);
    const Lines table = {kInitNodes, kInitNodes, kInitTable};
    EXPECT_EQ(import.lines, Joined({table, table, {kImportLayers}}));
}

TEST(HSMLayers, EndAtOneWithoutNodesAndLoadAllTheSame)
{
    JsonObject bare;
    bare.Set(JSON_Name, "Two");

    const Import import(DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)})), bare,
                                    LayerObject("Three", Json::Array({Generic("C", 12)}))}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner,
                                    LayerHead(0, "One"),
                                    Created("A"),
                                    kLayerEnd,
                                    LayerHead(1, "Two"),
                                    {kImportStates, kImportStates, kImportLayers}}));
    EXPECT_EQ(import.Ids(), (Ids{10}));
}

TEST(HSMLayers, EndAtOneThatIsNoObject)
{
    const Import import(DocumentOf({Json(5), LayerObject("Two", Json::Array({}))}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines,
              Joined({kBanner, LayerHead(0, ""), {kImportStates, kImportStates, kImportLayers}}));
}

// Pins down that a bad array is walked eight times and that it takes earlier layers with it.
TEST(HSMLayers, LoseAllNodesWhenOneHasABadArray)
{
    const Import import(
        DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)})), LayerObject("Two", 5),
                    LayerObject("Three", Json::Array({Generic("C", 12)}))}));

    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, "One"), Created("A"), kLayerEnd,
                                    LayerHead(1, "Two"), FailedLayer({kInitNodes})}));
    EXPECT_TRUE(import.Ids().empty());
}

TEST(HSMLayers, WalkTheNodesBeforeABadOneEightTimesAndLoseTheirRoomInTheArena)
{
    const Import good(DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)}))}));
    const unsigned int node =
        good.machine.alloc.used - static_cast<unsigned int>(sizeof(NodeDefTable));
    const Json bad = Node(10, "Bad", 11).Set(JSON_BuilderType, "no such kind");

    const Import import(
        DocumentOf({LayerObject("One", Json::Array({Generic("A", 10), bad, Generic("C", 12)}))}));

    const Lines walk = Joined({Created("A"),
                               {ErrorBreak("vell::NodeDefTable::CreateNodeDef"),
                                "3 Failed to create builder type - (no such kind)",
                                ErrorGoto("vell::NodeDefTable::Init")}});
    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, "One"), FailedLayer(walk)}));
    EXPECT_TRUE(import.Ids().empty());
    EXPECT_EQ(import.machine.alloc.used,
              static_cast<unsigned int>(sizeof(NodeDefTable)) + 8 * node);
}

TEST(HSMLayers, KeepTheEnterNodeOfTheFirstWalkWhenOneIsBadWhichRefusesThoseOfTheOtherSeven)
{
    const Import import(
        DocumentOf({LayerObject("One", Json::Array({Json(Enter("In", 20, 22, 11)), Json(5)}))}));

    const std::string refused = ErrorBreak("vell::NodeDefTable::InsertEnterNode");
    Lines failed = FailedLayer(Joined(
        {Created("In"),
         {"6 EnterNode: In - ParentID: 11", refused, ErrorGoto("vell::NodeDefTable::Init")}}));
    failed.erase(std::find(failed.begin(), failed.end(), refused));
    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner, LayerHead(0, "One"), failed}));
    EXPECT_TRUE(import.Ids().empty());
    EXPECT_EQ(import.machine.nodeDefTable->nodeIds, Ids(8, 20));
    const auto& enterNodes = import.machine.nodeDefTable->enterNodes;
    ASSERT_EQ(enterNodes.count(11), 1u);
    EXPECT_EQ(static_cast<void*>(enterNodes.at(11)),
              import.machine.alloc.block + sizeof(NodeDefTable));
}

TEST(HSMLayers, LetInitGoOnWithAnEmptyTableAfterABadOne)
{
    LogRecorder log;
    TestMachine machine(DocumentOf({LayerObject("One", 5)}));
    log.Clear();

    EXPECT_EQ(machine.Init(), 1);

    const Lines lines = log.Take({3});
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "3 Entry Node doesn't exist: 10");
    machine.Start();
    EXPECT_EQ(machine.MainStack(), "-");
}

TEST(HSMLayers, RefuseASecondNodeWithAnIdOfAnEarlierLayerAndEndThatLayer)
{
    const Import import(
        DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)})),
                    LayerObject("Two", Json::Array({Generic("B", 10), Generic("C", 11)})),
                    LayerObject("Three", Json::Array({Generic("D", 12)}))}));

    const Lines refused = {"3 Duplicate ID (10) error: B conflicts with A", kInsert};
    EXPECT_EQ(import.result, 1);
    EXPECT_EQ(import.lines, Joined({kBanner,
                                    LayerHead(0, "One"),
                                    Created("A"),
                                    kLayerEnd,
                                    LayerHead(1, "Two"),
                                    Created("B"),
                                    refused,
                                    refused,
                                    {kInitNodes},
                                    kLayerEnd,
                                    LayerHead(2, "Three"),
                                    Created("D"),
                                    kLayerEnd}));
    EXPECT_EQ(import.Ids(), (Ids{10, 12}));
    EXPECT_STREQ(import.machine.nodeDefTable->Find(10)->GetName(), "A");
}

TEST(HSMLayers, TakeTheirNodesIntoTheMachinesOwnArena)
{
    LogRecorder log;
    TestMachine machine(DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)}))}));
    const unsigned int before = machine.alloc.used;
    HSMAlloc other;
    other.Reserve(10000);

    EXPECT_EQ(machine.ImportLayers(machine.document, &other), 1);

    EXPECT_EQ(other.used, 0u);
    EXPECT_GT(machine.alloc.used, before);
}

TEST(HSMLayers, AreThoseOfTheMachinesOwnDocumentWhateverRootTellsOfThem)
{
    LogRecorder log;
    TestMachine machine(DocumentOf({LayerObject("One", Json::Array({Generic("A", 10)}))}));
    GenericDocument other;
    other.Parse(DocumentOf({LayerObject("Two", Json::Array({Generic("B", 11)}))}).Text().c_str());
    log.Clear();

    EXPECT_EQ(machine.ImportLayers(other, nullptr), 1);

    EXPECT_EQ(log.Take(), Joined({kBanner, LayerHead(0, "One"), Created("A"), kLayerEnd}));
}

TEST(HSMLayers, TakeNodesAtTheRootIntoTheMachinesOwnArena)
{
    LogRecorder log;
    TestMachine machine(RootNodes({Generic("A", 10)}));
    log.Clear();

    EXPECT_EQ(machine.ImportLayers(machine.document, nullptr), 0);

    EXPECT_EQ(log.Take(), Created("A"));
    EXPECT_NE(machine.nodeDefTable->Find(10), nullptr);
}

TEST(HSMLayers, TellOfTheStatesOfOneLayer)
{
    LogRecorder log;
    TestMachine machine(DocumentOf({}));
    GenericDocument layer;
    layer.Parse(LayerObject("One", Json::Array({Generic("A", 10)})).Text().c_str());
    log.Clear();

    EXPECT_EQ(machine.ImportStates(layer, nullptr), 1);

    EXPECT_EQ(log.Take(), Created("A"));
    layer.Parse("{}");
    EXPECT_EQ(machine.ImportStates(layer, nullptr), 0);
    EXPECT_EQ(log.Take(), (Lines{kImportStates}));
}

} // namespace vell::test
