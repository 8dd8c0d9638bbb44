// VELL: data-driven hierarchical state machines.
// tests/machine/HSMDefinitionsTest.cpp: what a machine tells of its document.
#include <vell/IBaseDef.h>

#include "definitions/NodeDefTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

JsonObject Skeleton(const std::string& model, const std::string& skeleton)
{
    JsonObject object;
    object.Set(JSON_ModelFileName, model).Set(JSON_SkeletonFileName, skeleton);
    return object;
}

DocumentBuilder Document()
{
    DocumentBuilder document;
    JsonObject condition = BoolCondition("go", true);
    condition.Set(JSON_ID, 60).Set(JSON_Name, "Condition");
    condition.Set(JSON_BuilderType, BuilderName(DURMBaseLib::BUILDER_Condition));
    document.Start(12)
        .Parameter(BoolParameter("go", false))
        .Node(Generic("Run", 12, {100}))
        .Node(Generic("Same", 11))
        .Node(Generic("Same", 10))
        .Node(Substate("Combat", 20, 21, 22))
        .Node(Enter("In", 21, 10, 20))
        .Node(Exit("Out", 22, 20))
        .Node(Connector("Door", 30, "entering"))
        .Node(Node(DURMBaseLib::BUILDER_Base, "Note", 40))
        .Node(condition)
        .Node(Transition("Go", 100, 12, 11, {BoolCondition("go", true)}))
        .GlobalNode(Global("Anywhere", 50));
    return document;
}

Ids Walk(TestMachine& machine, unsigned int mask)
{
    Ids ids;
    for (IBaseDef* def = machine.BeginDef(mask); def != nullptr; def = machine.NextDef(mask))
    {
        ids.push_back(def->GetID());
    }
    return ids;
}

class HSMDefinitions : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(machine.Init(), 1);
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine{Document()};
};

/// A machine without a node table: its document could not be read.
class HSMWithoutNodes : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(machine.nodeDefTable, nullptr);
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine{"no document"};
};

class HSMAssets : public testing::Test
{
protected:
    /// Loads the document and forgets its log lines.
    void Load(const DocumentBuilder& document)
    {
        machine.Load(document.Text());
        ASSERT_EQ(machine.Init(), 1);
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine;
};

} // namespace

TEST_F(HSMDefinitions, AreWalkedByTheirClassInAscendingOrderOfIds)
{
    EXPECT_EQ(Walk(machine, DefTypesState), (Ids{10, 11, 12, 21, 22, 50}));
    EXPECT_EQ(Walk(machine, DefTypesConnector), (Ids{30}));
    EXPECT_EQ(Walk(machine, DefTypesCondition), (Ids{60}));
    EXPECT_EQ(Walk(machine, DefTypesTransition), (Ids{100}));
    EXPECT_EQ(Walk(machine, DefTypesSubstate), (Ids{20}));
    EXPECT_EQ(Walk(machine, DefTypesConnector | DefTypesSubstate), (Ids{20, 30}));
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMDefinitions, DoNotHoldTheParameters)
{
    EXPECT_EQ(Walk(machine, DefTypesParameter), Ids());
}

TEST_F(HSMDefinitions, AreAllWalkedByTheFullMaskAndNoneByZero)
{
    EXPECT_EQ(Walk(machine, 0xffffffffu), (Ids{10, 11, 12, 20, 21, 22, 30, 40, 50, 60, 100}));
    EXPECT_EQ(Walk(machine, 0x7fffffffu), (Ids{10, 11, 12, 20, 21, 22, 30, 50, 60, 100}));
    EXPECT_EQ(Walk(machine, 0), Ids());
}

TEST_F(HSMDefinitions, AreWalkedByOneCursorThatEachBeginMoves)
{
    EXPECT_EQ(machine.BeginDef(DefTypesState)->GetID(), 10u);
    EXPECT_EQ(machine.BeginDef(DefTypesSubstate)->GetID(), 20u);

    EXPECT_EQ(machine.NextDef(DefTypesState)->GetID(), 21u);
    EXPECT_EQ(machine.NextDef(0xffffffffu)->GetID(), 22u);
}

TEST_F(HSMDefinitions, KeepTheCursorWhereItIsWhenNothingIsFound)
{
    machine.BeginDef(DefTypesConnector);

    EXPECT_EQ(machine.NextDef(DefTypesParameter), nullptr);
    EXPECT_EQ(machine.BeginDef(DefTypesParameter), nullptr);

    EXPECT_EQ(machine.NextDef(0xffffffffu)->GetID(), 40u);
}

TEST_F(HSMDefinitions, HaveNoNextOneAfterTheLast)
{
    Walk(machine, 0xffffffffu);

    EXPECT_EQ(machine.NextDef(0xffffffffu), nullptr);
    EXPECT_EQ(machine.NextDef(0xffffffffu), nullptr);
}

TEST_F(HSMDefinitions, HaveNoNextOneBeforeTheFirstWalk)
{
    EXPECT_EQ(machine.NextDef(0), nullptr);
    EXPECT_EQ(machine.NextDef(0xffffffffu), nullptr);
}

TEST_F(HSMDefinitions, AreFoundByIdWithoutALine)
{
    IBaseDef* def = machine.FindDef(20u);

    ASSERT_NE(def, nullptr);
    EXPECT_STREQ(def->GetName(), "Combat");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMDefinitions, OfOneNameAreFoundByTheLowestId)
{
    EXPECT_EQ(machine.FindDef("Same")->GetID(), 10u);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMDefinitions, OfAnUnknownIdAreLogged)
{
    EXPECT_EQ(machine.FindDef(999u), nullptr);
    EXPECT_EQ(machine.FindDef(0u), nullptr);

    EXPECT_EQ(log.Take(), (Lines{"3 Failed to find node definition ID: 999",
                                 "3 Failed to find node definition ID: 0"}));
}

TEST_F(HSMDefinitions, OfAnUnknownNameAreLogged)
{
    EXPECT_EQ(machine.FindDef("same"), nullptr);
    EXPECT_EQ(machine.FindDef(static_cast<const char*>(nullptr)), nullptr);

    EXPECT_EQ(log.Take(), (Lines{"3 Failed to find node definition named: same",
                                 "3 Failed to find node definition named: "}));
}

TEST_F(HSMWithoutNodes, FindsNoDefinitionAndSaysSo)
{
    const std::string find = ErrorBreak("vell::HSM::FindDef");

    EXPECT_EQ(machine.FindDef(1u), nullptr);
    EXPECT_EQ(log.Take(), (Lines{find}));
    EXPECT_EQ(machine.FindDef("Run"), nullptr);
    EXPECT_EQ(log.Take(), (Lines{find}));
}

TEST_F(HSMWithoutNodes, WalksNoDefinitionAndSaysSo)
{
    EXPECT_EQ(machine.BeginDef(0xffffffffu), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::BeginDef")}));
    EXPECT_EQ(machine.NextDef(0xffffffffu), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::NextDef")}));
}

TEST_F(HSMWithoutNodes, KnowsNoAssetAndSaysSo)
{
    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::GetMDLAsset")}));
    EXPECT_EQ(machine.GetSkelAsset(), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::GetSkelAsset")}));
    EXPECT_EQ(machine.GetGUID(), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::GetGUID")}));
}

TEST_F(HSMAssets, AreTheFileNamesAndTheGuidOfTheDocument)
{
    DocumentBuilder document = Document();
    document.Skeleton(Skeleton("hero.mdl", "hero.skel")).Head().Set(JSON_GUID, "guid-7");
    Load(document);

    EXPECT_STREQ(machine.GetMDLAsset(), "hero.mdl");
    EXPECT_STREQ(machine.GetSkelAsset(), "hero.skel");
    EXPECT_STREQ(machine.GetGUID(), "guid-7");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMAssets, AreNullWithoutASkeletonSection)
{
    Load(Document());

    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_EQ(machine.GetSkelAsset(), nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMAssets, OfEmptyNamesAreNull)
{
    Load(Document().Skeleton(Skeleton("", "")));

    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_EQ(machine.GetSkelAsset(), nullptr);
}

TEST_F(HSMAssets, DifferForEmptyTextsInTheTable)
{
    char empty[] = "";
    Load(Document());
    machine.nodeDefTable->modelFileName = empty;
    machine.nodeDefTable->skeletonFileName = empty;

    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_STREQ(machine.GetSkelAsset(), "");
}

TEST_F(HSMAssets, HaveAnEmptyGuidWhenTheHeadHasNone)
{
    DocumentBuilder document = Document();
    document.Head().Remove(JSON_GUID);
    Load(document);

    EXPECT_STREQ(machine.GetGUID(), "");
}

TEST_F(HSMAssets, HaveAnEmptyGuidBeforeInit)
{
    machine.Load(Document().Text());
    log.Clear();

    EXPECT_STREQ(machine.GetGUID(), "");
    EXPECT_EQ(machine.GetMDLAsset(), nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

} // namespace vell::test
