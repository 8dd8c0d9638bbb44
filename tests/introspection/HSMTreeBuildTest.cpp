// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMTreeBuildTest.cpp: building the tree, and what can fail in it.
#include "foundation/TreeKeys.h"
#include "parameters/ParameterTable.h"
#include "tests/introspection/RichDocument.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

const std::string kCreate = "vell::HSM::CreateKVTable";

class TreeMachine : public TestMachine
{
public:
    using TestMachine::TestMachine;

    using HSM::DestroyKVTable;
    using HSM::InitKVTable_ContextTable;
    using HSM::InitKVTable_NodeDefTable;
    using HSM::InitKVTable_ParameterTable;
    using HSM::InitKVTable_Self;
};

class HSMTreeBuild : public testing::Test
{
protected:
    LogRecorder log;
    TreeMachine machine;
};

const Lines kFreshContext{"contextInfo table contextInfo",
                          "contextInfo/nextState uint 0",
                          "contextInfo/previousState uint 0",
                          "contextInfo/stackBlip table stackBlip",
                          "contextInfo/stackStates table stackStates",
                          "contextInfo/transitionTriggered uint 0"};

Lines WithRoot(const Lines& below)
{
    Lines lines{"(root) table HSM"};
    lines.insert(lines.end(), below.begin(), below.end());
    return lines;
}

} // namespace

TEST_F(HSMTreeBuild, HappensInInitOnly)
{
    machine.Load(RichDocument().Text());
    EXPECT_FALSE(static_cast<bool>(machine.GetKVTable()));

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_TRUE(static_cast<bool>(machine.GetKVTable()));
}

TEST_F(HSMTreeBuild, FailsASecondTimeByItsFirstTest)
{
    machine.Load(RichDocument().Text());
    ASSERT_EQ(machine.Init(), 1);
    const Tessel::KVTable root = machine.GetKVTable();
    const Lines before = TreeLines(root);
    log.Clear();

    EXPECT_EQ(machine.CreateKVTable(), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
    EXPECT_EQ(machine.GetKVTable(), root);
    EXPECT_EQ(TreeLines(root), before);
}

TEST_F(HSMTreeBuild, RefusesADocumentWithoutParametersOnceItIsReached)
{
    machine.Load(
        DocumentBuilder().Start(10).Node(Generic("Only", 10)).LeaveOut(JSON_Parameters).Text());
    log.Clear();

    EXPECT_EQ(machine.Init(), 0);

    EXPECT_EQ(log.Take({3}),
              (Lines{ErrorBreak(kCreate), ErrorBreak(kCreate), ErrorBreak("vell::HSM::Init"),
                     "3 Parsing JSON file has caused an exception"}));
    EXPECT_EQ(TreeLines(machine.GetKVTable()), WithRoot(kFreshContext));
    EXPECT_EQ(machine.GetParameterTable(), nullptr);
}

TEST_F(HSMTreeBuild, PassesOverANodeTableThatHasNoTable)
{
    DocumentBuilder document;
    document.Start(10).Root().Set(JSON_Layers, Json::Raw("[]"));
    machine.Load(document.Text());
    log.Clear();

    EXPECT_EQ(machine.Init(), 1);

    EXPECT_EQ(log.Take({3}), (Lines{"3 Entry Node doesn't exist: 10"}));
    Lines expected = WithRoot(kFreshContext);
    expected.push_back("parameterTable table parameterTable");
    EXPECT_EQ(TreeLines(machine.GetKVTable()), expected);
}

TEST_F(HSMTreeBuild, PassesOverAParameterTableThatHasNoTable)
{
    machine.Load(RichDocument().Text());
    machine.parameterTable = machine.alloc.New<ParameterTable>();
    log.Clear();

    EXPECT_EQ(machine.CreateKVTable(), 1);

    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(TreeLines(machine.GetKVTable()), WithRoot(kFreshContext));
}

TEST_F(HSMTreeBuild, StepsWithoutARootDoNothing)
{
    machine.Load(RichDocument().Text());
    log.Clear();

    EXPECT_EQ(machine.InitKVTable_Self(), 0);
    EXPECT_EQ(machine.InitKVTable_ContextTable(), 1);
    EXPECT_EQ(machine.InitKVTable_ParameterTable(), 0);
    EXPECT_EQ(machine.InitKVTable_NodeDefTable(), 0);
    EXPECT_EQ(machine.DestroyKVTable(), 1);

    EXPECT_FALSE(static_cast<bool>(machine.GetKVTable()));
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMTreeBuild, StepsFillARootOneByOne)
{
    machine.filePath = "hero.json";
    machine.Load(DocumentBuilder().Start(10).Node(Generic("Only", 10)).Text());
    ASSERT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 1);
    ASSERT_EQ(machine.ImportLayers(machine.document, &machine.alloc), 1);
    machine.kvTable = Tessel::CreateTable("HSM");

    EXPECT_EQ(machine.InitKVTable_Self(), 1);
    EXPECT_EQ(TreeLines(machine.kvTable), WithRoot({"filename text \"hero.json\""}));
    EXPECT_EQ(machine.InitKVTable_ParameterTable(), 1);
    EXPECT_EQ(TreeLines(machine.kvTable),
              WithRoot({"filename text \"hero.json\"", "parameterTable table parameterTable"}));
    EXPECT_EQ(machine.InitKVTable_NodeDefTable(), 1);
    EXPECT_TRUE(static_cast<bool>(TableAt(machine.kvTable, "nodeDefTable/10")));
    EXPECT_EQ(machine.InitKVTable_ContextTable(), 1);
    EXPECT_TRUE(static_cast<bool>(TableAt(machine.kvTable, "contextInfo/stackBlip")));
}

TEST_F(HSMTreeBuild, StepsForTablesThatAreNotThereGiveZero)
{
    machine.Load(RichDocument().Text());
    machine.kvTable = Tessel::CreateTable("HSM");

    EXPECT_EQ(machine.InitKVTable_ParameterTable(), 0);
    EXPECT_EQ(machine.InitKVTable_NodeDefTable(), 0);
}

TEST_F(HSMTreeBuild, StepForTheContextBeginsAFreshOne)
{
    machine.Load(RichDocument().Text());
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    ASSERT_EQ(machine.StackInTree(kMainStackKey), (Ids{10}));

    EXPECT_EQ(machine.InitKVTable_ContextTable(), 1);

    EXPECT_EQ(machine.StackInTree(kMainStackKey), Ids());
}

TEST_F(HSMTreeBuild, IsUndoneByClosingTheRootWhoseHandleStays)
{
    machine.Load(RichDocument().Text());
    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(machine.DestroyKVTable(), 1);
    EXPECT_EQ(machine.DestroyKVTable(), 1);

    EXPECT_TRUE(static_cast<bool>(machine.GetKVTable()));
    EXPECT_EQ(machine.GetKVTable()->GetKeyCount(), 0u);
}

} // namespace vell::test
