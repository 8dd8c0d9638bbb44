// VELL: data-driven hierarchical state machines.
// tests/host/HostParametersTest.cpp: a host steers a machine through its parameters.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

constexpr int kStick = 2;

/// A machine with a parameter of each class, in "Stand", which a message or a late bool leaves.
DocumentBuilder AllParameters()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("bool", true))
        .Parameter(IntParameter("int", 2))
        .Parameter(FloatParameter("float", 0.5))
        .Parameter(
            VectorParameter(4, "analog", "3,4").Set(JSON_ParameterAssign, AssignName(kStick)))
        .Parameter(VectorParameter(5, "float3", "2,3,6"))
        .Parameter(VectorParameter(6, "float4", "1,2,3,4"))
        .Parameter(MessageParameter("message", "go"))
        .Node(Generic("Stand", 10, {100, 101}))
        .Node(Generic("Walk", 11))
        .Node(Transition("ByMessage", 100, 10, 11, {MessageCondition("message", "go")}))
        .Node(Transition("ByLate", 101, 10, 11, {BoolCondition("late", true)}));
}

class HostParameters : public testing::Test
{
protected:
    HostParameters() : machine(CreateHSMJson(AllParameters().Text().c_str()))
    {
        machine->Init();
        machine->Start();
        table = machine->GetParameterTable();
        log.Clear();
    }
    ~HostParameters() override
    {
        machine->Uninit();
        machine->Destroy();
    }

    template <class Interface>
    Interface* Find(const char* name)
    {
        return dynamic_cast<Interface*>(table->FindParameter(name));
    }
    std::string Current()
    {
        SMState* state = machine->GetCurrentState();
        return state == nullptr ? "-" : state->GetDef()->GetName();
    }

    LogRecorder log;
    std::unique_ptr<IHSM> machine;
    IParameterTable* table = nullptr;
};

} // namespace

TEST_F(HostParameters, AreHeldByTheirValueInterfaces)
{
    ASSERT_NE(Find<IParameterBoolDef>("bool"), nullptr);
    ASSERT_NE(Find<IParameterIntDef>("int"), nullptr);
    ASSERT_NE(Find<IParameterFloatDef>("float"), nullptr);
    ASSERT_NE(Find<IParameterAnalogDef>("analog"), nullptr);
    ASSERT_NE(Find<IParameterFloat3Def>("float3"), nullptr);
    ASSERT_NE(Find<IParameterFloat4Def>("float4"), nullptr);
    ASSERT_NE(Find<IParameterMessageDef>("message"), nullptr);

    EXPECT_TRUE(Find<IParameterBoolDef>("bool")->GetValue());
    EXPECT_EQ(Find<IParameterIntDef>("int")->GetValue(), 2);
    EXPECT_EQ(Find<IParameterFloatDef>("float")->GetValue(), 0.5f);
    EXPECT_EQ(Find<IParameterAnalogDef>("analog")->GetMagnitude(), 5.0f);
    EXPECT_EQ(Find<IParameterFloat3Def>("float3")->GetMagnitude(), 7.0f);
    EXPECT_EQ(Find<IParameterFloat4Def>("float4")->GetValue().w, 4.0f);
    EXPECT_EQ(Find<IParameterMessageDef>("message")->GetDefaultValue(), "go");
    EXPECT_EQ(Find<IParameterMessageDef>("message")->GetValue(), "");
}

TEST_F(HostParameters, TakeTheInputOfTheirBinding)
{
    const unsigned int id = machine->FindParameterByName("analog");
    ParamBroadcast input{};
    input.binding = table->GetParameterAssign(id);
    input.input.stick.scalar[0] = 6.0f;
    input.input.stick.scalar[1] = -8.0f;

    EXPECT_EQ(input.binding, kStick);
    EXPECT_EQ(table->GetParameterAssignClass(id), 4);
    EXPECT_EQ(table->GetBroadcastListener(id)->OnBroadcastEvent(1, &input), 1);

    EXPECT_EQ(Find<IParameterAnalogDef>("analog")->GetValue().y, -8.0f);
    EXPECT_EQ(Find<IParameterAnalogDef>("analog")->GetMagnitude(), 10.0f);
}

TEST_F(HostParameters, MakeATransitionFireByAMessage)
{
    auto* hsm = dynamic_cast<HSM*>(machine.get());
    ASSERT_NE(hsm, nullptr);
    machine->Update(0.1f);
    ASSERT_EQ(Current(), "Stand");

    hsm->BroadcastMessage("message");
    machine->Update(0.1f);

    EXPECT_EQ(Current(), "Walk");
}

TEST_F(HostParameters, MadeWhileTheMachineRunsFireOnceTheyAreBound)
{
    IParameterBoolDef* late = nullptr;
    ASSERT_EQ(table->CreateBoolParameter("late", true, &late), 1);
    machine->Update(0.1f);
    EXPECT_EQ(Current(), "Stand");

    dynamic_cast<HSM&>(*machine).BindParamCond();
    machine->Update(0.1f);

    EXPECT_EQ(Current(), "Walk");
    EXPECT_EQ(Find<IParameterBoolDef>("late"), late);
}

TEST_F(HostParameters, ReportAnUnknownNameInTheLog)
{
    EXPECT_EQ(table->FindParameter("unknown"), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterTable::FindParameter")}));
}

} // namespace vell::test
