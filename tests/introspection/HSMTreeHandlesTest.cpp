// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMTreeHandlesTest.cpp: handles that outlive their tables, and what is left.
#include <vell/AttribBase.h>
#include <vell/Factories.h>
#include <vell/IBaseDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "tests/introspection/RichDocument.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace vell::test
{
namespace
{

using MachinePointer = std::unique_ptr<IHSM>;

/// Paths of tables of every kind, as the rich document makes them, and a run-time parameter.
std::vector<std::string> KeptPaths()
{
    return {"",
            "contextInfo",
            "contextInfo/stackStates",
            "contextInfo/stackBlip",
            "parameterTable",
            ParameterPath("count"),
            ParameterPath("count") + "/attribs",
            ParameterPath("late"),
            "nodeDefTable",
            "nodeDefTable/10",
            "nodeDefTable/10/attribs",
            "nodeDefTable/10/attribs/steps",
            "nodeDefTable/100",
            "nodeDefTable/50"};
}

/// What a tool sees of a table, and what becomes of a try to write.
Lines Answers(Tessel::KVTable table)
{
    const char* name = Tessel::GetTableName(table);
    return {std::string("name ") + (name == nullptr ? "(null)" : name),
            "keys " + std::to_string(table->GetKeyCount()),
            "elements " + std::to_string(table->GetCount()),
            "id " + std::to_string(table->GetUInt("id")),
            table->FindValue("value") == nullptr ? "no value" : "value",
            table->GetTable("attribs") ? "child" : "no child",
            "write " + std::to_string(table->SetInt("value", 1, 1)),
            "push " + std::to_string(table->PushUInt(1, 1)),
            table->GetValueListener("value") == nullptr ? "no listener" : "listener",
            table->AddTable("new", 1) ? "added" : "not added"};
}

const Lines kClosedAnswers{"name (null)", "keys 0",  "elements 0", "id 0",        "no value",
                           "no child",    "write 0", "push 0",     "no listener", "not added"};

class HSMTreeHandles : public testing::Test
{
protected:
    void SetUp() override
    {
        text = RichDocument().Text();
        machine.reset(CreateHSMJson(text.c_str()));
        ASSERT_EQ(machine->Init(), 1);
        IParameterIntDef* late = nullptr;
        ASSERT_EQ(machine->GetParameterTable()->CreateIntParameter("late", 1, &late), 1);
        machine->Start();
        for (const std::string& path : KeptPaths())
        {
            kept.push_back(TableAt(machine->GetKVTable(), path));
            ASSERT_NE(Tessel::GetTableName(kept.back()), nullptr) << path;
        }
    }

    void ExpectClosed()
    {
        for (std::size_t i = 0; i < kept.size(); ++i)
        {
            EXPECT_TRUE(static_cast<bool>(kept[i]));
            EXPECT_EQ(Answers(kept[i]), kClosedAnswers) << KeptPaths()[i];
        }
    }

    LogRecorder log;
    std::string text;
    MachinePointer machine;
    std::vector<Tessel::KVTable> kept;
};

/// Gives how many tables are open after `life` that were not before, with the log kept quiet.
int LeftOpen(const std::function<void()>& life)
{
    LogRecorder log;
    const unsigned before = Tessel::GetOpenTableCount();
    life();
    return static_cast<int>(Tessel::GetOpenTableCount()) - static_cast<int>(before);
}

/// Makes a machine from `text`, takes it as far as it goes, and deletes it without Uninit. Gives
/// the result of Init.
int LiveWithoutUninit(const std::string& text)
{
    const MachinePointer machine(CreateHSMJson(text.c_str()));
    if (machine->Init() == 0)
    {
        return 0;
    }
    machine->Start();
    machine->Update(0.1f);
    return 1;
}

DocumentBuilder OneNode()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(FloatParameter("speed", 0.5))
        .Node(Generic("Idle", 10)
                  .Set(JSON_Attributes, Json::Array({Attribute("surface", "QString", "stone")})));
}

} // namespace

TEST_F(HSMTreeHandles, AnswerNothingAfterTheMachineIsDeleted)
{
    machine->Uninit();
    machine->Destroy();
    machine.reset();

    ExpectClosed();
}

TEST_F(HSMTreeHandles, AnswerNothingAfterTheMachineIsDeletedWithoutUninit)
{
    machine.reset();

    ExpectClosed();
}

TEST_F(HSMTreeHandles, NeverReachATableThatWasMadeLater)
{
    machine.reset();
    MachinePointer second(CreateHSMJson(text.c_str()));
    ASSERT_EQ(second->Init(), 1);
    const Lines tree = TreeLines(second->GetKVTable());

    ExpectClosed();

    EXPECT_EQ(TreeLines(second->GetKVTable()), tree);
}

TEST_F(HSMTreeHandles, MayBeClosedByATool)
{
    machine.reset();

    for (const Tessel::KVTable handle : kept)
    {
        Tessel::CloseTable(handle);
        Tessel::CloseTable(handle);
    }

    ExpectClosed();
}

TEST_F(HSMTreeHandles, AnswerNothingAfterUninitButForAttributesAndTheNodeTable)
{
    machine->Uninit();

    const std::vector<std::string> paths = KeptPaths();
    Lines open;
    for (std::size_t i = 0; i < kept.size(); ++i)
    {
        if (Tessel::GetTableName(kept[i]) != nullptr)
        {
            open.push_back(paths[i]);
            continue;
        }
        EXPECT_EQ(Answers(kept[i]), kClosedAnswers) << paths[i];
    }
    EXPECT_EQ(open, (Lines{"nodeDefTable", "nodeDefTable/10/attribs/steps"}));
}

TEST_F(HSMTreeHandles, OfTheNodeTableShowItsTextsAndNoNodeAfterUninit)
{
    Tessel::KVTable nodes = TableAt(machine->GetKVTable(), "nodeDefTable");

    machine->Uninit();

    EXPECT_STREQ(nodes->GetString("hsmID"), "guid-of-the-test");
    EXPECT_FALSE(static_cast<bool>(nodes->GetTable("10")));
}

TEST_F(HSMTreeHandles, OfAnAttributeTakeAWriteThatReachesNobodyAfterUninit)
{
    Tessel::KVTable steps = TableAt(machine->GetKVTable(), "nodeDefTable/10/attribs/steps");

    machine->Uninit();

    EXPECT_EQ(steps->GetInt("value"), -4);
    EXPECT_EQ(steps->SetInt("value", 5, 1), 1);
    EXPECT_EQ(steps->SetString("value", "five", 1), 1);
    EXPECT_STREQ(steps->GetString("value"), "five");
}

TEST_F(HSMTreeHandles, AreNotClearedInTheMachineByUninit)
{
    const Tessel::KVTable root = machine->GetKVTable();

    machine->Uninit();

    EXPECT_EQ(machine->GetKVTable(), root);
    EXPECT_EQ(Answers(machine->GetKVTable()), kClosedAnswers);
}

TEST(HSMTreeTables, AreAllClosedAfterTheOrderlyEnd)
{
    const std::string text = RichDocument().Text();

    EXPECT_EQ(LeftOpen(
                  [&]
                  {
                      const MachinePointer machine(CreateHSMJson(text.c_str()));
                      ASSERT_EQ(machine->Init(), 1);
                      machine->Start();
                      machine->Update(0.1f);
                      machine->Uninit();
                      machine->Destroy();
                  }),
              0);
}

TEST(HSMTreeTables, AreAllClosedWithoutUninitWhateverTheDocumentSays)
{
    const JsonObject noted =
        FloatCondition("speed", 3, 9.0)
            .Set(JSON_Attributes, Json::Array({Attribute("note", "QString", "x")}));
    const JsonObject broken = JsonObject(noted).Remove(JSON_ConditionEvaluation);
    const Json oneAttribute = Json::Array({Attribute("a", "int", 1)});
    const struct
    {
        const char* what;
        DocumentBuilder document;
        int result; ///< of Init
    } cases[] = {
        {"all that a tree can show", RichDocument(), 1},
        {"no parameters", OneNode().LeaveOut(JSON_Parameters), 0},
        {"no layers", OneNode().LeaveOut(JSON_Layers), 0},
        {"nodes at the root in place of layers",
         WithRoot(OneNode().LeaveOut(JSON_Layers), JSON_Nodes,
                  Json::Array({Generic("Root", 1), Generic("Other", 2)})),
         0},
        {"no entry node", WithHead(OneNode(), JSON_HeadEnterNode, 0), 0},
        {"a vector that is a number",
         OneNode().Parameter(Parameter(DURMBaseLib::PARAM_Float3, "bad", 1)), 0},
        {"a parameter of no type",
         OneNode().Parameter(FloatParameter("odd", 1).Set(JSON_ParameterType, "no type")), 0},
        {"two parameters of one name", OneNode().Parameter(IntParameter("speed", 3)), 1},
        {"two parameters of one id",
         OneNode().Parameter(IntParameter("other", 3).Set(JSON_ID, ParameterId("speed"))), 1},
        {"two nodes of one id",
         OneNode().Node(Generic("Twin", 10).Set(JSON_Attributes, oneAttribute)), 1},
        {"a global node of a layer's id",
         OneNode().GlobalNode(Global("Anywhere", 10)).Layer("Second").Node(Generic("Twin", 10)), 1},
        {"a child of the id zero",
         OneNode().Node(Generic("Bad", 11, {7, 0, 9}).Set(JSON_Attributes, oneAttribute)), 1},
        {"a node of no kind", OneNode().Node(Node(99, "Unknown", 12)), 1},
        {"an attribute of no type",
         OneNode().Node(Generic("Odd", 13).Set(
             JSON_Attributes, Json::Array({Attribute("a", "int", 1), Attribute("b", "QRect", 1)}))),
         1},
        {"conditions with attributes, of which one fails",
         OneNode().Node(Transition("Go", 100, 10, 10, {noted, broken, noted})), 1}};
    for (const auto& example : cases)
    {
        SCOPED_TRACE(example.what);
        int result = -1;
        EXPECT_EQ(LeftOpen(
                      [&]
                      {
                          result = LiveWithoutUninit(example.document.Text());
                      }),
                  0);
        EXPECT_EQ(result, example.result);
    }
}

TEST(HSMTreeTables, AreAllClosedWhenUninitWasCalledTwice)
{
    EXPECT_EQ(LeftOpen(
                  []
                  {
                      InitialisedMachine machine(RichDocument());
                      machine.Uninit();
                      machine.Uninit();
                  }),
              0);
}

TEST(HSMTreeTables, AreAllClosedWhenInitWasCalledTwice)
{
    EXPECT_EQ(LeftOpen(
                  []
                  {
                      const std::string text = RichDocument().Text();
                      const MachinePointer machine(CreateHSMJson(text.c_str()));
                      ASSERT_EQ(machine->Init(), 1);
                      EXPECT_EQ(machine->Init(), 0);
                  }),
              0);
}

TEST(HSMTreeTables, AreAllClosedWhenTheMachineWasNeverInitialised)
{
    EXPECT_EQ(LeftOpen(
                  []
                  {
                      const std::string text = RichDocument().Text();
                      const MachinePointer machine(CreateHSMJson(text.c_str()));
                      const MachinePointer failed(CreateHSMJson("no document"));
                      EXPECT_EQ(failed->Init(), 0);
                  }),
              0);
}

TEST(HSMTreeTables, OfRunTimeParametersAreClosedWithTheMachine)
{
    // Both have the CRC 0x4ddb0c25, so the second one is refused and deleted.
    ASSERT_EQ(ParameterId("plumless"), ParameterId("buckeroo"));
    for (const bool uninit : {false, true})
    {
        EXPECT_EQ(LeftOpen(
                      [&]
                      {
                          const std::string text = OneNode().Text();
                          const MachinePointer machine(CreateHSMJson(text.c_str()));
                          ASSERT_EQ(machine->Init(), 1);
                          IParameterTable* table = machine->GetParameterTable();
                          IParameterFloatDef* made = nullptr;
                          IParameterMessageDef* message = nullptr;
                          ASSERT_EQ(table->CreateFloatParameter("plumless", 1.0f, &made), 1);
                          ASSERT_EQ(table->CreateMessageParameter("m", "text", &message), 1);
                          const unsigned open = Tessel::GetOpenTableCount();
                          EXPECT_EQ(table->CreateFloatParameter("buckeroo", 2.0f, &made), 0);
                          EXPECT_EQ(made, nullptr);
                          EXPECT_EQ(Tessel::GetOpenTableCount(), open);
                          if (uninit)
                          {
                              machine->Uninit();
                          }
                      }),
                  0);
    }
}

TEST(HSMTreeTables, AreAllClosedHoweverSmallTheArenaIs)
{
    DocumentBuilder document = RichDocument();
    int loaded = 0;
    for (int figure = 0; figure <= 400; figure += 3)
    {
        document.Head().Set(JSON_HeadMemory, figure);
        EXPECT_EQ(LeftOpen(
                      [&]
                      {
                          const std::string text = document.Text();
                          const MachinePointer machine(CreateHSMJson(text.c_str()));
                          loaded += machine->Init();
                          machine->Start();
                          machine->Update(0.1f);
                      }),
                  0)
            << figure;
    }
    EXPECT_GT(loaded, 0);
    EXPECT_LT(loaded, 130);
}

TEST(HSMTreeTables, OfAMachineAreAsManyAsItsTreeShows)
{
    LogRecorder log;
    const unsigned before = Tessel::GetOpenTableCount();
    const std::string text = OneNode().Text();
    const MachinePointer machine(CreateHSMJson(text.c_str()));
    ASSERT_EQ(machine->Init(), 1);

    // The root, the context with two stacks, the two big tables, a parameter and a node with their
    // attributes, and the one attribute.
    EXPECT_EQ(Tessel::GetOpenTableCount() - before, 11u);
}

TEST(HSMTreeTables, OfOneMachineStayWhenAnotherOneEnds)
{
    LogRecorder log;
    const std::string text = RichDocument().Text();
    const MachinePointer first(CreateHSMJson(text.c_str()));
    ASSERT_EQ(first->Init(), 1);
    MachinePointer second(CreateHSMJson(text.c_str()));
    ASSERT_EQ(second->Init(), 1);
    const Lines tree = TreeLines(first->GetKVTable());

    second->Uninit();
    second.reset();

    EXPECT_EQ(TreeLines(first->GetKVTable()), tree);
}

} // namespace vell::test
