// VELL: data-driven hierarchical state machines.
// tests/definitions/NodeDefTableTest.cpp: building, filing and finding of definitions.
#include "definitions/EnterDef.h"
#include "tests/support/NodeTables.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <memory>

namespace vell::test
{
namespace
{

using NodeDefTableFields = NodeTableTest;
using NodeDefTableInit = NodeTableTest;
using NodeDefTableInsert = NodeTableTest;
using NodeDefTableWalk = NodeTableTest;

const char* const kInit = "vell::NodeDefTable::Init";
const char* const kCreate = "vell::NodeDefTable::CreateNodeDef";
const char* const kInsert = "vell::NodeDefTable::InsertNode";

std::string EnterLine(const std::string& name, unsigned int parent)
{
    return "6 EnterNode: " + name + " - ParentID: " + std::to_string(parent);
}

/// A host's definition that counts what is done to it.
class HostDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        return alloc->New<HostDef>();
    }
    int Init(const GenericValue& node, HSMAlloc* alloc) override
    {
        ++inits;
        return BaseDef::Init(node, alloc) != 0 && initResult;
    }
    void Uninit() override
    {
        order.push_back(id);
        BaseDef::Uninit();
    }
    int InitKVTable() override
    {
        if (!withTable)
        {
            DestroyKVTable();
            kvTable = {};
        }
        return withTable ? BaseDef::InitKVTable() : 0;
    }

    static inline int inits;
    static inline bool initResult;
    static inline bool withTable;
    static inline Ids order;
};

constexpr int kHostBuilder = 500;

/// A table for which a host registered a builder of its own.
class NodeDefTableOfAHost : public NodeTableTest
{
protected:
    NodeDefTableOfAHost()
    {
        HostDef::inits = 0;
        HostDef::initResult = true;
        HostDef::withTable = true;
        HostDef::order.clear();
        table->RegisterNodeDef(static_cast<__DURM_BUILDERS__>(kHostBuilder), HostDef::Create);
    }
    ~NodeDefTableOfAHost() override
    {
        NodeDefTable::ClearBuilders();
    }

    static JsonObject HostNode(const std::string& name, unsigned int id)
    {
        return Node(kHostBuilder, name, id);
    }
};

Ids WalkAll(NodeDefTable& table, unsigned int mask)
{
    Ids ids;
    for (BaseDef* def = table.FindFirst(mask); def != nullptr; def = table.FindNext(mask))
    {
        ids.push_back(def->GetID());
    }
    return ids;
}

} // namespace

TEST_F(NodeDefTableFields, AreBlankAtFirst)
{
    EXPECT_FALSE(table->kvTable);
    EXPECT_EQ(table->numNodes, 0u);
    EXPECT_EQ(table->nextIndex, 0u);
    EXPECT_EQ(table->enterNodeId, 0u);
    EXPECT_EQ(table->globalNodeId, 0u);
    EXPECT_EQ(table->substateRootId, 0u);
    EXPECT_EQ(table->headValue84, 0u);
    EXPECT_STREQ(table->guid, "");
    EXPECT_STREQ(table->buildId, "");
    EXPECT_EQ(sizeof(table->guid), 70u);
    EXPECT_EQ(sizeof(table->buildId), 70u);
    EXPECT_TRUE(table->nodes.empty());
    EXPECT_TRUE(table->enterNodes.empty());
    EXPECT_TRUE(table->nodeIds.empty());
    EXPECT_EQ(table->modelFileName, nullptr);
    EXPECT_EQ(table->skeletonFileName, nullptr);
    EXPECT_EQ(table->skelValue89, 0u);
}

TEST_F(NodeDefTableInit, BuildsTheTenStandardKinds)
{
    const std::pair<JsonObject, eHSMDefTypes> nodes[] = {
        {Node(1, "n", 1), DefTypeBase},
        {Clip("n", 1, "clip"), DefTypeAnimClip},
        {Generic("n", 1), DefTypeGeneric},
        {Connector("n", 1, "Enter"), DefTypeConnector},
        {Transition("n", 1, 2, 3), DefTypeTransition},
        {Enter("n", 1, 2), DefTypeEnter},
        {Exit("n", 1), DefTypeExit},
        {BoolCondition("p", true).Set(JSON_ID, 1).Set(JSON_BuilderType, BuilderName(5)),
         DefTypeCondition},
        {Global("n", 1), DefTypeGlobal},
        {Substate("n", 1, 2, 3), DefTypeSubstate},
    };
    for (const auto& [node, type] : nodes)
    {
        BaseDef* def = Build(node);

        ASSERT_NE(def, nullptr) << type;
        EXPECT_EQ(def->GetType(), type);
    }
}

TEST_F(NodeDefTableInit, FilesTheNodesOfAnArray)
{
    EXPECT_EQ(Init({Generic("b", 20), Generic("a", 10)}), 1);

    EXPECT_EQ(log.Take(), (Lines{CreatedDef("b"), CreatedDef("a")}));
    EXPECT_EQ(table->numNodes, 2u);
    EXPECT_EQ(table->nextIndex, 2u);
    EXPECT_EQ(table->nodeIds, (Ids{20, 10}));
    ASSERT_EQ(table->nodes.size(), 2u);
    EXPECT_EQ(table->Find(20)->GetIndex(), 0);
    EXPECT_EQ(table->Find(10)->GetIndex(), 1);
}

TEST_F(NodeDefTableInit, AttachesTheTablesOfTheNodesByTheirIds)
{
    Fill({Generic("b", 4000000000u), Generic("a", 10)});

    EXPECT_STREQ(Tessel::GetTableName(table->kvTable), "nodeDefTable");
    EXPECT_EQ(table->kvTable->GetTable("4000000000"), table->Find(4000000000u)->GetKVTable());
    EXPECT_EQ(table->kvTable->GetTable("10"), table->Find(10)->GetKVTable());
    EXPECT_EQ(table->kvTable->GetTable("10")->GetUInt("id"), 10u);
}

TEST_F(NodeDefTableInit, SucceedsWithAnEmptyArray)
{
    EXPECT_EQ(Init({}), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(table->numNodes, 0u);
    EXPECT_TRUE(table->kvTable);
}

TEST_F(NodeDefTableInit, AddsToTheNodesOfEarlierArraysInOneTable)
{
    Fill({Generic("a", 10), Generic("b", 11)});
    const Tessel::KVTable first = table->kvTable;

    Fill({Generic("c", 12)});

    EXPECT_EQ(table->kvTable, first);
    EXPECT_EQ(table->numNodes, 1u);
    EXPECT_EQ(table->nodeIds, (Ids{10, 11, 12}));
    EXPECT_EQ(table->Find(12)->GetIndex(), 2);
}

TEST_F(NodeDefTableInit, RefusesWhatIsNoArrayAndTearsDown)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->Init(Parse(JsonObject{}), &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit)}));
    EXPECT_TRUE(table->nodes.empty());
    EXPECT_EQ(table->numNodes, 0u);
}

TEST_F(NodeDefTableInit, RefusesAnElementThatIsNoObject)
{
    EXPECT_EQ(Init({Generic("a", 10), Json(5), Generic("b", 11)}), 0);

    EXPECT_EQ(log.Take(), (Lines{CreatedDef("a"), ErrorGoto(kInit)}));
    EXPECT_TRUE(table->nodes.empty());
    EXPECT_EQ(table->numNodes, 0u);
    EXPECT_EQ(table->nodeIds, (Ids{10}));
    EXPECT_EQ(table->nextIndex, 1u);
}

TEST_F(NodeDefTableInit, RefusesAnUnknownBuilder)
{
    EXPECT_EQ(Init({Generic("a", 10).Set(JSON_BuilderType, "no such builder")}), 0);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak(kCreate), NotBuilt("no such builder"), ErrorGoto(kInit)}));
}

TEST_F(NodeDefTableInit, RefusesANodeWithoutABuilder)
{
    EXPECT_EQ(Init({Generic("a", 10).Remove(JSON_BuilderType)}), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate), NotBuilt(""), ErrorGoto(kInit)}));
}

TEST_F(NodeDefTableInit, TearsDownWhenADefinitionFails)
{
    EXPECT_EQ(Init({Generic("a", 10), Enter("in", 11, 0)}), 0);

    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("a"), CreatedDef("in"), ErrorBreak("vell::EnterDef::Init"),
                     ErrorBreak(kCreate), NotBuilt(BuilderName(8)), ErrorGoto(kInit)}));
    EXPECT_TRUE(table->nodes.empty());
    EXPECT_TRUE(table->enterNodes.empty());
}

TEST_F(NodeDefTableInit, KeepsTheArenaOfADefinitionThatFailed)
{
    const unsigned int before = alloc.used;

    EXPECT_EQ(Build(Enter("in", 11, 0)), nullptr);

    EXPECT_EQ(alloc.used, before + sizeof(EnterDef));
}

TEST_F(NodeDefTableInit, RefusesANodeForWhichTheArenaHasNoRoom)
{
    HSMAlloc empty;

    EXPECT_EQ(table->Init(Parse(Json::Array({Generic("a", 10)})), &empty), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::GenericDef::Create"), ErrorBreak(kCreate),
                                 NotBuilt(BuilderName(10)), ErrorGoto(kInit)}));
}

TEST_F(NodeDefTableInit, RefusesToBuildWithoutAnArena)
{
    EXPECT_EQ(table->CreateNodeDef(Parse(Generic("a", 10)), nullptr), nullptr);

    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreate), NotBuilt(BuilderName(10))}));
}

TEST_F(NodeDefTableInit, RefusesToBuildWhatIsNoObject)
{
    EXPECT_EQ(table->CreateNodeDef(Parse(Json(5)), &alloc), nullptr);

    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreate), NotBuilt("")}));
}

TEST_F(NodeDefTableInit, StopsAtADuplicateIdAndSucceeds)
{
    EXPECT_EQ(
        Init({Generic("a", 1), Generic("b", 2), Generic("c", 2), Generic("d", 4), Generic("e", 5)}),
        1);

    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("a"), CreatedDef("b"), CreatedDef("c"), DuplicateID(2, "c", "b"),
                     ErrorBreak(kInsert), DuplicateID(2, "c", "b"), ErrorBreak(kInsert),
                     ErrorBreak(kInit)}));
    EXPECT_EQ(table->nodes.size(), 2u);
    EXPECT_STREQ(table->Find(2)->GetName(), "b");
    EXPECT_EQ(table->Find(4), nullptr);
    EXPECT_EQ(table->nodeIds, (Ids{1, 2, 2, 2}));
    EXPECT_EQ(table->nextIndex, 4u);
    EXPECT_EQ(table->numNodes, 5u);
    EXPECT_EQ(table->kvTable->GetTable("2"), table->Find(2)->GetKVTable());
}

TEST_F(NodeDefTableInit, FilesAnEnterNodeByItsParent)
{
    EXPECT_EQ(Init({Enter("in", 11, 12, 4)}), 1);

    EXPECT_EQ(log.Take(), (Lines{CreatedDef("in"), EnterLine("in", 4)}));
    ASSERT_EQ(table->enterNodes.size(), 1u);
    EXPECT_EQ(table->enterNodes.at(4), table->Find(11));
}

TEST_F(NodeDefTableInit, KeepsTheFirstOfTwoEnterNodesOfAParent)
{
    EXPECT_EQ(Init({Enter("one", 11, 12, 4), Enter("two", 13, 12, 4)}), 1);

    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("one"), EnterLine("one", 4), CreatedDef("two"), EnterLine("two", 4),
                     ErrorBreak("vell::NodeDefTable::InsertEnterNode")}));
    EXPECT_EQ(table->enterNodes.at(4), table->Find(11));
    EXPECT_NE(table->Find(13), nullptr);
}

TEST_F(NodeDefTableInsert, RefusesNull)
{
    EXPECT_EQ(table->InsertNode(nullptr), 0);
    EXPECT_EQ(table->InsertEnterNode(nullptr), 0);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak(kInsert), ErrorBreak("vell::NodeDefTable::InsertEnterNode")}));
    EXPECT_EQ(table->nextIndex, 0u);
    EXPECT_TRUE(table->nodeIds.empty());
}

TEST_F(NodeDefTableInsert, FilesANodeAlsoWhereThereIsNoTableToAttachItTo)
{
    BaseDef* def = Build(Generic("a", 10));

    EXPECT_EQ(table->InsertNode(def), 0);

    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kInsert)}));
    EXPECT_EQ(table->Find(10), def);
    EXPECT_EQ(table->nodeIds, (Ids{10}));
}

TEST_F(NodeDefTableInsert, CreatesItsTableOnce)
{
    EXPECT_EQ(table->CreateKVTable(), 1);
    const Tessel::KVTable first = table->kvTable;

    EXPECT_EQ(table->CreateKVTable(), 0);

    EXPECT_EQ(table->kvTable, first);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::NodeDefTable::CreateKVTable")}));
}

TEST_F(NodeDefTableInsert, StoresAnEntryNodeThatDoesNotExist)
{
    Fill({Generic("a", 10)});

    table->SetEnterNode(10);
    EXPECT_EQ(log.Take(), Lines{});
    table->SetEnterNode(99);

    EXPECT_EQ(table->enterNodeId, 99u);
    EXPECT_EQ(log.Take(), (Lines{"3 Entry Node doesn't exist: 99"}));
}

TEST_F(NodeDefTableInsert, CountsANullDefinitionAsNoEntryNode)
{
    table->nodes[99] = nullptr;

    table->SetEnterNode(99);

    EXPECT_EQ(log.Take(), (Lines{"3 Entry Node doesn't exist: 99"}));
}

TEST_F(NodeDefTableWalk, FindsTheLowestIdOfAName)
{
    Fill({Generic("Walk", 12), Generic("Walk", 11), Generic("walk", 10)});

    EXPECT_EQ(table->FindByName("Walk"), table->Find(11));
    EXPECT_EQ(table->FindByName("walk"), table->Find(10));
    EXPECT_EQ(table->FindByName("WALK"), nullptr);
    EXPECT_EQ(table->FindByName(nullptr), nullptr);
}

TEST_F(NodeDefTableWalk, PassesOverNodesWithoutAName)
{
    Fill({Generic("", 9).Remove(JSON_Name), Generic("Walk", 10)});

    EXPECT_EQ(table->FindByName("Walk"), table->Find(10));
    EXPECT_EQ(table->FindByName(""), nullptr);
}

TEST_F(NodeDefTableWalk, GivesStatesForMaskOneInAscendingId)
{
    Fill({Generic("a", 40), Substate("s", 20, 1, 2), Clip("c", 30, "clip"),
          Connector("k", 10, "Exit"), Transition("t", 50, 40, 30), Exit("x", 5), Node(1, "b", 6)});

    EXPECT_EQ(WalkAll(*table, 0x01), (Ids{5, 30, 40}));
    EXPECT_EQ(WalkAll(*table, 0x02), (Ids{10}));
    EXPECT_EQ(WalkAll(*table, 0x10), (Ids{50}));
    EXPECT_EQ(WalkAll(*table, 0x20), (Ids{20}));
    EXPECT_EQ(WalkAll(*table, 0x22), (Ids{10, 20}));
}

TEST_F(NodeDefTableWalk, AcceptsNothingForMaskZeroAndAllForAllBits)
{
    Fill({Generic("a", 40), Node(1, "b", 6)});

    EXPECT_EQ(WalkAll(*table, 0), Ids{});
    EXPECT_EQ(WalkAll(*table, 0xffffffffu), (Ids{6, 40}));
    EXPECT_EQ(WalkAll(*table, 0x7fffffffu), (Ids{40}));
}

TEST_F(NodeDefTableWalk, FollowsTheFlagsThatAHostSet)
{
    Fill({Generic("a", 40), Node(1, "b", 6)});

    table->Find(6)->SetFlags(0x40);

    EXPECT_EQ(WalkAll(*table, 0x40), (Ids{6}));
}

TEST_F(NodeDefTableWalk, IsAtItsEndBeforeTheFirstWalkAndAfterUninit)
{
    EXPECT_EQ(table->FindNext(0xffffffffu), nullptr);
    Fill({Generic("a", 40), Generic("b", 41)});
    EXPECT_EQ(table->FindNext(0xffffffffu), nullptr);
    table->FindFirst(0xffffffffu);

    table->Uninit();

    EXPECT_EQ(table->FindNext(0xffffffffu), nullptr);
    EXPECT_EQ(table->FindFirst(0xffffffffu), nullptr);
}

TEST_F(NodeDefTableWalk, StaysWhereItWasWhenNothingIsFound)
{
    Fill({Generic("a", 40), Generic("b", 41), Generic("c", 42)});
    ASSERT_EQ(table->FindFirst(0x01), table->Find(40));

    EXPECT_EQ(table->FindFirst(0x20), nullptr);
    EXPECT_EQ(table->FindNext(0x20), nullptr);

    EXPECT_EQ(table->FindNext(0x01), table->Find(41));
    EXPECT_EQ(table->FindNext(0x01), table->Find(42));
    EXPECT_EQ(table->FindNext(0x01), nullptr);
    EXPECT_EQ(table->FindNext(0x01), nullptr);
}

TEST_F(NodeDefTableWalk, PassesOverNullDefinitions)
{
    Fill({Generic("a", 40)});
    table->nodes[5] = nullptr;

    EXPECT_EQ(WalkAll(*table, 0xffffffffu), (Ids{40}));
    EXPECT_EQ(table->FindByName("a"), table->Find(40));
    table->Uninit();
}

TEST_F(NodeDefTableOfAHost, BuildsTheHostsNodesByTheirNumber)
{
    EXPECT_EQ(Init({HostNode("h", 10)}), 1);

    EXPECT_NE(dynamic_cast<HostDef*>(table->Find(10)), nullptr);
    EXPECT_EQ(HostDef::inits, 1);
    EXPECT_EQ(table->Find(10)->GetBuilderType(), static_cast<__DURM_BUILDERS__>(kHostBuilder));
}

TEST_F(NodeDefTableOfAHost, ReplacesAStandardFactory)
{
    EXPECT_EQ(table->RegisterNodeDef(DURMBaseLib::BUILDER_Generic, HostDef::Create), 1);

    EXPECT_NE(dynamic_cast<HostDef*>(Build(Generic("a", 10))), nullptr);
}

TEST_F(NodeDefTableOfAHost, GetsTheStandardFactoriesBackWithTheNextTable)
{
    table->RegisterNodeDef(DURMBaseLib::BUILDER_Generic, HostDef::Create);

    alloc.New<NodeDefTable>();

    EXPECT_EQ(dynamic_cast<HostDef*>(Build(Generic("a", 10))), nullptr);
    EXPECT_NE(dynamic_cast<HostDef*>(Build(HostNode("h", 11))), nullptr);
}

TEST_F(NodeDefTableOfAHost, RunsAFailingInitOnce)
{
    HostDef::initResult = false;

    EXPECT_EQ(table->CreateNodeDef(Parse(HostNode("h", 10)), &alloc), nullptr);

    EXPECT_EQ(HostDef::inits, 1);
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("h"), ErrorBreak(kCreate), NotBuilt("500")}));
}

TEST_F(NodeDefTableOfAHost, RefusesAFactoryThatGivesNull)
{
    table->RegisterNodeDef(static_cast<__DURM_BUILDERS__>(501),
                           [](const GenericValue&, HSMAlloc*) -> BaseDef*
                           {
                               return nullptr;
                           });

    EXPECT_EQ(table->CreateNodeDef(Parse(Node(501, "h", 10)), &alloc), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate), NotBuilt("501")}));
}

TEST_F(NodeDefTableOfAHost, SurvivesAFactoryThatIsNull)
{
    EXPECT_EQ(table->RegisterNodeDef(static_cast<__DURM_BUILDERS__>(501), nullptr), 1);

    EXPECT_EQ(table->CreateNodeDef(Parse(Node(501, "h", 10)), &alloc), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate), NotBuilt("501")}));
}

TEST_F(NodeDefTableOfAHost, OffersANodeWithoutATableTwiceSoThatItConflictsWithItself)
{
    HostDef::withTable = false;

    EXPECT_EQ(Init({HostNode("h", 10), HostNode("i", 11)}), 1);

    EXPECT_EQ(log.Take(), (Lines{CreatedDef("h"), AssertBreak(kInsert), DuplicateID(10, "h", "h"),
                                 ErrorBreak(kInsert), ErrorBreak(kInit)}));
    EXPECT_NE(table->Find(10), nullptr);
    EXPECT_EQ(table->Find(11), nullptr);
    EXPECT_EQ(table->nodeIds, (Ids{10, 10}));
    EXPECT_EQ(table->nextIndex, 2u);
}

TEST_F(NodeDefTableOfAHost, UninitialisesItsNodesInAscendingId)
{
    Fill({HostNode("c", 30), HostNode("a", 10), Enter("in", 15, 30), HostNode("b", 20)});
    table->SetEnterNode(10);
    table->globalNodeId = 20;

    table->Uninit();

    EXPECT_EQ(HostDef::order, (Ids{10, 20, 30}));
    EXPECT_TRUE(table->nodes.empty());
    EXPECT_EQ(table->numNodes, 0u);
    EXPECT_EQ(table->enterNodes.size(), 1u);
    EXPECT_EQ(table->nodeIds, (Ids{30, 10, 15, 20}));
    EXPECT_EQ(table->nextIndex, 4u);
    EXPECT_EQ(table->enterNodeId, 10u);
    EXPECT_EQ(table->globalNodeId, 20u);
    EXPECT_STREQ(Tessel::GetTableName(table->kvTable), "nodeDefTable");
}

TEST_F(NodeDefTableOfAHost, LosesAllBuildersWhenAnotherTableIsDestroyed)
{
    auto other = std::make_unique<NodeDefTable>();

    other.reset();

    EXPECT_EQ(table->CreateNodeDef(Parse(Generic("a", 10)), &alloc), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate), NotBuilt(BuilderName(10))}));
    EXPECT_EQ(Build(HostNode("h", 11)), nullptr);
    const NodeDefTable again;
    EXPECT_NE(Build(Generic("a", 10)), nullptr);
    EXPECT_EQ(Build(HostNode("h", 11)), nullptr);
}

TEST_F(NodeDefTableOfAHost, BuildsTheNodesOfEveryMachineNotYetInitialised)
{
    DocumentBuilder document;
    document.Start(10).Node(HostNode("h", 10));
    TestMachine first(document);
    TestMachine second(document);
    NodeDefTable::ClearBuilders();
    const NodeDefTable standard; // gives the standard factories back

    first.RegisterNodeDef(static_cast<__DURM_BUILDERS__>(kHostBuilder), HostDef::Create);

    EXPECT_EQ(second.Init(), 1);
    EXPECT_NE(dynamic_cast<HostDef*>(second.FindDef(10)), nullptr);
}

TEST_F(NodeDefTableOfAHost, LosesAllBuildersWhenAnyMachineIsDeletedButNotByUninit)
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("a", 10));
    auto machine = std::make_unique<TestMachine>(document);
    machine->Init();
    machine->Uninit();
    machine->Destroy();
    EXPECT_NE(Build(HostNode("h", 11)), nullptr);

    machine.reset();

    EXPECT_EQ(Build(HostNode("h", 12)), nullptr);
    EXPECT_EQ(Build(Generic("a", 13)), nullptr);
}

} // namespace vell::test
