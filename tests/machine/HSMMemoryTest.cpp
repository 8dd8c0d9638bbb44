// VELL: data-driven hierarchical state machines.
// tests/machine/HSMMemoryTest.cpp: what a machine takes from the heap, and that it gives it back.
#include <durm/DURMBaseLib.h>
#include <vell/Action.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>

#include "definitions/NodeDefTable.h"
#include "parameters/ParameterTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

const std::string kLongText = "a text that is too long to stand inside a string object";

/// A document with every kind of node, attribute, parameter and condition, whose machine has three
/// states on its stack after two ticks, until "alert" is set.
DocumentBuilder FullDocument()
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(BoolParameter("alert", false))
        .Parameter(IntParameter("count", 1).Set(JSON_ParameterResetEachFrame, true))
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(VectorParameter(4, "stick", "0.5,1"))
        .Parameter(MessageParameter("hit", kLongText).Set(JSON_ParameterResetEachFrame, true))
        .Node(Substate("Life", 10, 20, 21, {100}))
        .Node(Enter("In", 20, 30, 10))
        .Node(Exit("Out", 21, 10))
        .Node(Substate("Ground", 30, 40, 41, {101}, 10))
        .Node(Enter("GroundIn", 40, 50, 30))
        .Node(Exit("GroundOut", 41, 30))
        .Node(Clip("Run", 50, "run_loop", {102, 103}, 30)
                  .Set(JSON_ScriptName, "OnRun")
                  .Set(JSON_Attributes, Json::Array({Attribute("power", "double", 0.5),
                                                     Attribute("label", "QString", kLongText),
                                                     Attribute("offset", "QVector3D", "1,2,3")})))
        .Node(Generic("Fall", 51, {}, 30))
        .Node(Connector("Join", 60, "entering"))
        .Node(Transition("Die", 100, 10, 51, {IntCondition("count", 5, 0)}))
        .Node(Transition("Jump", 101, 30, 51, {FloatCondition("speed", 3, 1.0)}))
        .Node(Transition("Trip", 102, 50, 51, {BoolCondition("alert", true)}))
        .Node(Transition("Hurt", 103, 50, 51, {MessageCondition("hit", "never")}))
        .GlobalNode(Global("Anywhere", 5, {104}))
        .GlobalNode(Transition("Hit", 104, 5, 51, {IntCondition("count", 6, 0)}))
        .Skeleton(JsonObject()
                      .Set(JSON_ModelFileName, "hero.mdl")
                      .Set(JSON_SkeletonFileName, "hero.skl"));
    document.Head().Set(JSON_HeadMemory, 1000);
    return document;
}

/// A document whose load logs every refusal that goes on: duplicates, a bad transition, a bad
/// layer.
DocumentBuilder FaultyDocument()
{
    DocumentBuilder document = FullDocument();
    document.Parameter(FloatParameter("speed", 1.0))
        .Node(Transition("Bare", 110, 10, 51))
        .Node(Generic("Twin", 10).Set(JSON_Attributes, Json::Array({Attribute("a", "int", 1)})))
        .Layer("Bad")
        .Node(Enter("Nowhere", 70, 0));
    return document;
}

/// Records nothing, so that the recording takes no memory.
class Silence
{
public:
    Silence()
    {
        SetLogCallBackBase(nullptr);
    }

private:
    LogRecorder log;
};

bool LiesIn(const HSMAlloc& arena, const void* object)
{
    const auto* address = static_cast<const unsigned char*>(object);
    return address >= arena.block && address < arena.block + arena.used;
}

void RunWhole(const std::string& text)
{
    HSM machine(text.c_str());
    machine.Init();
    machine.Start();
    for (int i = 0; i < 3; ++i)
    {
        machine.Update(0.1f);
    }
    machine.SetParameterMessage(ParameterId("hit"), kLongText.c_str());
    machine.PushState(51u);
    machine.Uninit();
    machine.Destroy();
}

void RunWithoutUninit(const std::string& text)
{
    HSM machine(text.c_str());
    machine.Init();
    machine.Start();
    machine.Update(0.1f);
}

void RunWithRuntimeParameters(const std::string& text)
{
    HSM machine(text.c_str());
    machine.Init();
    IParameterFloatDef* height = nullptr;
    IParameterMessageDef* note = nullptr;
    machine.GetParameterTable()->CreateFloatParameter("height", 1.0f, &height);
    machine.GetParameterTable()->CreateMessageParameter("note", kLongText.c_str(), &note);
    machine.GetParameterTable()->CreateMessageParameter("note", kLongText.c_str(), &note);
    machine.Start();
    machine.Update(0.1f);
    machine.Uninit();
}

void RunWithAnAction(const std::string& text)
{
    HSM machine(text.c_str());
    machine.Init();
    if (IBaseDef* def = machine.FindDef("Run"))
    {
        def->RegisterEnter(new Action);
        def->RegisterExecute(new Action);
    }
    machine.Start();
    machine.Uninit();
}

void InitTwice(const std::string& text)
{
    HSM machine(text.c_str());
    machine.Init();
    machine.Init();
    machine.Uninit();
    machine.Uninit();
}

void CreateOnly(const std::string& text)
{
    const HSM machine(text.c_str());
}

/// Gives how many blocks a thousand runs leave, after a few that fill what the process keeps.
std::ptrdiff_t BlocksLeftBy(void (*run)(const std::string&), const std::string& text)
{
    const Silence silence;
    for (int i = 0; i < 3; ++i)
    {
        run(text);
    }
    const HeapWatch heap;
    for (int i = 0; i < 1000; ++i)
    {
        run(text);
    }
    return heap.BlocksKept();
}

/// A machine of FullDocument in mid-run.
class RunningMachine : public TestMachine
{
public:
    RunningMachine() : TestMachine(FullDocument())
    {
        EXPECT_EQ(Init(), 1);
        Start();
        for (int i = 0; i < 5; ++i)
        {
            Update(0.1f);
        }
    }
};

} // namespace

TEST(HSMMemory, IsGivenBackByAThousandMachines)
{
    EXPECT_EQ(BlocksLeftBy(RunWhole, FullDocument().Text()), 0);
}

TEST(HSMMemory, IsGivenBackByMachinesThatAreOnlyDeleted)
{
    EXPECT_EQ(BlocksLeftBy(RunWithoutUninit, FullDocument().Text()), 0);
    EXPECT_EQ(BlocksLeftBy(CreateOnly, FullDocument().Text()), 0);
}

TEST(HSMMemory, IsGivenBackWithActions)
{
    EXPECT_EQ(BlocksLeftBy(RunWithAnAction, FullDocument().Text()), 0);
}

TEST(HSMMemory, IsGivenBackButForRuntimeParametersAndTheirTexts)
{
    // Each run leaves a float parameter, and a message with its default and its current text.
    EXPECT_EQ(BlocksLeftBy(RunWithRuntimeParameters, FullDocument().Text()), 1000 * (1 + 3));
}

TEST(HSMMemory, IsGivenBackAfterARepeatedInit)
{
    EXPECT_EQ(BlocksLeftBy(InitTwice, FullDocument().Text()), 0);
}

TEST(HSMMemory, IsGivenBackAfterFaultyLoads)
{
    DocumentBuilder withoutLayers = FullDocument();
    withoutLayers.LeaveOut(JSON_Layers).Root().Set(JSON_Nodes, Json::Array({Generic("A", 1)}));
    DocumentBuilder badParameters = FullDocument();
    badParameters.Parameter(5);
    DocumentBuilder tooSmall = FullDocument();
    tooSmall.Head().Set(JSON_HeadMemory, 40);

    for (const std::string& text :
         {FaultyDocument().Text(), withoutLayers.Text(), badParameters.Text(), tooSmall.Text(),
          std::string("{"), std::string("{}")})
    {
        EXPECT_EQ(BlocksLeftBy(RunWhole, text), 0) << text;
        EXPECT_EQ(BlocksLeftBy(RunWithoutUninit, text), 0) << text;
    }
}

TEST(HSMMemory, IsOneBlockForTheWholeModel)
{
    const Silence silence;
    RunningMachine machine;
    ParameterTable& parameters = *machine.parameterTable;

    EXPECT_TRUE(LiesIn(machine.alloc, &parameters));
    EXPECT_TRUE(LiesIn(machine.alloc, machine.nodeDefTable));
    EXPECT_TRUE(LiesIn(machine.alloc, machine.GetMDLAsset()));
    EXPECT_TRUE(LiesIn(machine.alloc, machine.FindDef("Run")->GetScriptName()));
    EXPECT_EQ(parameters.GetParameterCount(), 5);
    for (unsigned int i = 0; i < 5; ++i)
    {
        EXPECT_TRUE(
            LiesIn(machine.alloc, parameters.FindParameter(parameters.GetParameterIDByIndex(i))));
    }
    EXPECT_EQ(machine.nodeDefTable->nodes.size(), 15u);
    for (const auto& entry : machine.nodeDefTable->nodes)
    {
        EXPECT_TRUE(LiesIn(machine.alloc, entry.second)) << entry.first;
    }
    EXPECT_GE(machine.states.size(), 4u);
    for (const auto& entry : machine.states)
    {
        EXPECT_TRUE(LiesIn(machine.alloc, entry.second)) << entry.first;
    }
}

TEST(HSMMemory, IsNotTakenByATickThatChangesNoState)
{
    const Silence silence;
    RunningMachine machine;
    const std::string stack = machine.MainStack();
    ASSERT_EQ(machine.stateStack.size(), 3u) << stack;
    const unsigned int used = machine.alloc.used;
    const HeapWatch heap;

    for (int i = 0; i < 100; ++i)
    {
        machine.Update(0.1f);
    }

    EXPECT_EQ(heap.Mallocs(), 0u);
    EXPECT_EQ(heap.News(), 0u);
    EXPECT_EQ(machine.alloc.used, used);
    EXPECT_EQ(machine.MainStack(), stack);
}

TEST(HSMMemory, IsNotTakenFromTheArenaByStatesThatWereActivatedBefore)
{
    const Silence silence;
    RunningMachine machine;
    machine.PushState(51u);
    machine.PopState();
    const unsigned int used = machine.alloc.used;

    for (int i = 0; i < 100; ++i)
    {
        machine.PushState(51u);
        machine.Update(0.1f);
        machine.PopState();
    }

    EXPECT_EQ(machine.alloc.used, used);
}

TEST(HSMMemory, IsCountedWhenATickChangesAState)
{
    const Silence silence;
    RunningMachine machine;
    auto* alert = dynamic_cast<ParameterBoolDef*>(machine.parameterTable->FindParameter("alert"));
    ASSERT_NE(alert, nullptr);
    alert->SetValue(true);
    const HeapWatch heap;

    machine.Update(0.1f);

    EXPECT_GT(heap.Mallocs() + heap.News(), 0u);
    EXPECT_EQ(machine.MainStack(), "Life/Ground/Fall");
}

} // namespace vell::test
