// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMTreeWriteTest.cpp: what a tool's writes into the tree do to the machine.
#include <vell/AttribBase.h>
#include <vell/BaseDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>

#include "tests/introspection/RichDocument.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

int CountWrite(void* count, Tessel::opResult, Tessel::KVTable, const char*)
{
    ++*static_cast<int*>(count);
    return 0;
}

class HSMTreeWrite : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(machine.Init(), 1);
        machine.Start();
        ASSERT_EQ(machine.MainStack(), "Idle");
        before = TreeLines(machine.GetKVTable());
        log.Clear();
    }

    /// The path below which a parameter lies.
    static std::string ParameterPath(const std::string& name)
    {
        return "parameterTable/" + std::to_string(ParameterId(name));
    }

    /// The path below which an attribute of "Idle" lies.
    static std::string AttributePath(const std::string& name)
    {
        return "nodeDefTable/10/attribs/" + name;
    }

    Tessel::KVTable At(const std::string& path) const
    {
        return TableAt(machine.GetKVTable(), path);
    }

    template <class T>
    T* Parameter(const char* name)
    {
        return dynamic_cast<T*>(machine.GetParameterTable()->FindParameter(name));
    }

    AttribBase* Attrib(const char* name)
    {
        return machine.FindDef(10u)->GetAttrib(name);
    }

    /// What the tree shows differently since the start, without the path `path`.
    Lines Changes(const std::string& path) const
    {
        Lines changes = Differences(before, TreeLines(machine.GetKVTable()));
        for (std::string& line : changes)
        {
            const std::size_t place = line.find(path + "/");
            if (place != std::string::npos)
            {
                line.erase(place, path.size() + 1);
            }
        }
        return changes;
    }

    LogRecorder log;
    TestMachine machine{RichDocument()};
    Lines before;
};

} // namespace

TEST_F(HSMTreeWrite, SetsABoolParameter)
{
    At(ParameterPath("hit"))->SetInt("value", 1, 1);

    EXPECT_TRUE(Parameter<ParameterBoolDef>("hit")->GetValue());
    EXPECT_EQ(Changes(ParameterPath("hit")), (Lines{"- value int 0", "+ value int 1"}));
}

TEST_F(HSMTreeWrite, OfAnyNumberButZeroSetsABoolParameterAndIsShownAsOne)
{
    At(ParameterPath("hit"))->SetUInt("value", 5, 1);

    EXPECT_TRUE(Parameter<ParameterBoolDef>("hit")->GetValue());
    EXPECT_EQ(Changes(ParameterPath("hit")), (Lines{"- value int 0", "+ value int 1"}));
}

TEST_F(HSMTreeWrite, OfAnEqualBoolIsNotWrittenBack)
{
    Parameter<ParameterBoolDef>("hit")->SetValue(true);

    At(ParameterPath("hit"))->SetUInt("value", 5, 1);

    EXPECT_TRUE(Parameter<ParameterBoolDef>("hit")->GetValue());
    EXPECT_EQ(Changes(ParameterPath("hit")), (Lines{"- value int 0", "+ value uint 5"}));
}

TEST_F(HSMTreeWrite, SetsAnIntegerParameter)
{
    At(ParameterPath("count"))->SetInt("value", 12, 1);

    EXPECT_EQ(Parameter<ParameterIntegerDef>("count")->GetValue(), 12);
    EXPECT_EQ(Changes(ParameterPath("count")), (Lines{"- value int -3", "+ value int 12"}));
}

TEST_F(HSMTreeWrite, OfAFloatSetsAnIntegerParameterToItsWholePart)
{
    At(ParameterPath("count"))->SetFloat("value", 7.9f, 1);

    EXPECT_EQ(Parameter<ParameterIntegerDef>("count")->GetValue(), 7);
    EXPECT_EQ(Changes(ParameterPath("count")), (Lines{"- value int -3", "+ value int 7"}));
}

TEST_F(HSMTreeWrite, SetsAFloatParameter)
{
    At(ParameterPath("speed"))->SetFloat("value", 2.25f, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterFloatDef>("speed")->GetValue(), 2.25f);
    EXPECT_EQ(Changes(ParameterPath("speed")), (Lines{"- value float 0.5", "+ value float 2.25"}));
}

TEST_F(HSMTreeWrite, OfAnIntSetsAFloatParameterAndIsShownAsAFloat)
{
    At(ParameterPath("speed"))->SetInt("value", 2, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterFloatDef>("speed")->GetValue(), 2.0f);
    EXPECT_EQ(Changes(ParameterPath("speed")), (Lines{"- value float 0.5", "+ value float 2"}));
}

TEST_F(HSMTreeWrite, OfATextSetsANumberParameterToZero)
{
    At(ParameterPath("speed"))->SetString("value", "9", 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterFloatDef>("speed")->GetValue(), 0.0f);
    EXPECT_EQ(Changes(ParameterPath("speed")), (Lines{"- value float 0.5", "+ value float 0"}));
}

TEST_F(HSMTreeWrite, SetsATwoFloatParameterWithItsMagnitude)
{
    const Tessel::Float2 value{6.0f, 8.0f};
    At(ParameterPath("stick"))->SetFloat2("value", &value, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterAnalogDef>("stick")->GetValue().x, 6.0f);
    EXPECT_FLOAT_EQ(Parameter<ParameterAnalogDef>("stick")->GetMagnitude(), 10.0f);
    EXPECT_EQ(Changes(ParameterPath("stick")), (Lines{"- value float2 3,4", "+ value float2 6,8"}));
}

TEST_F(HSMTreeWrite, SetsAThreeFloatParameterWithItsMagnitude)
{
    const Tessel::Float3 value{2.0f, 3.0f, 6.0f};
    At(ParameterPath("aim"))->SetFloat3("value", &value, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterFloat3Def>("aim")->GetValue().y, 3.0f);
    EXPECT_FLOAT_EQ(Parameter<ParameterFloat3Def>("aim")->GetMagnitude(), 7.0f);
    EXPECT_EQ(Changes(ParameterPath("aim")),
              (Lines{"- value float3 1,2,3", "+ value float3 2,3,6"}));
}

TEST_F(HSMTreeWrite, SetsAFourFloatParameter)
{
    const Tessel::Float4 value{1.0f, 0.0f, 0.0f, 0.0f};
    At(ParameterPath("turn"))->SetFloat4("value", &value, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterFloat4Def>("turn")->GetValue().x, 1.0f);
    EXPECT_EQ(Changes(ParameterPath("turn")),
              (Lines{"- value float4 0,0,0,1", "+ value float4 1,0,0,0"}));
}

TEST_F(HSMTreeWrite, SetsAMessageParameter)
{
    At(ParameterPath("shout"))->SetString("value", "stop", 1);

    EXPECT_EQ(Parameter<ParameterMessageDef>("shout")->GetValue(), "stop");
    EXPECT_EQ(Changes(ParameterPath("shout")),
              (Lines{"- value text \"\"", "+ value text \"stop\""}));
}

TEST_F(HSMTreeWrite, OfAnotherTypeLeavesVectorsAndMessagesAsTheyAre)
{
    At(ParameterPath("stick"))->SetFloat("value", 1.0f, 1);
    At(ParameterPath("aim"))->SetInt("value", 1, 1);
    At(ParameterPath("turn"))->SetString("value", "1,2,3,4", 1);
    At(ParameterPath("shout"))->SetInt("value", 1, 1);

    EXPECT_FLOAT_EQ(Parameter<ParameterAnalogDef>("stick")->GetValue().y, 4.0f);
    EXPECT_FLOAT_EQ(Parameter<ParameterFloat3Def>("aim")->GetValue().z, 3.0f);
    EXPECT_FLOAT_EQ(Parameter<ParameterFloat4Def>("turn")->GetValue().w, 1.0f);
    EXPECT_EQ(Parameter<ParameterMessageDef>("shout")->GetValue(), "");
    EXPECT_EQ(At(ParameterPath("shout"))->GetInt("value"), 1);
}

TEST_F(HSMTreeWrite, SetsARunTimeParameter)
{
    IParameterIntDef* made = nullptr;
    ASSERT_EQ(machine.GetParameterTable()->CreateIntParameter("late", 1, &made), 1);

    At(ParameterPath("late"))->SetInt("value", 44, 1);

    EXPECT_EQ(made->GetValue(), 44);
}

TEST_F(HSMTreeWrite, OfAParameterIsSeenByTheNextTick)
{
    At(ParameterPath("go"))->SetInt("value", 1, 1);

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST_F(HSMTreeWrite, SetsATextAttribute)
{
    At(AttributePath("surface"))->SetString("value", "mud", 1);

    const char* text = nullptr;
    EXPECT_EQ(machine.GetAttributeValue("surface", &text), 1);
    EXPECT_STREQ(text, "mud");
    EXPECT_EQ(Changes(AttributePath("surface")),
              (Lines{"- value text \"stone\"", "+ value text \"mud\""}));
}

TEST_F(HSMTreeWrite, OfATextTooLongChangesTheTreeAlone)
{
    const std::string tooLong(1024, 'x');
    At(AttributePath("surface"))->SetString("value", tooLong.c_str(), 1);

    const char* text = nullptr;
    EXPECT_EQ(machine.GetAttributeValue("surface", &text), 1);
    EXPECT_STREQ(text, "stone");
    EXPECT_EQ(At(AttributePath("surface"))->GetString("value"), tooLong);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMTreeWrite, SetsAnIntegerAttributeByEitherKindOfInteger)
{
    int value = 0;
    At(AttributePath("steps"))->SetInt("value", 8, 1);
    EXPECT_EQ(Attrib("steps")->GetValue(&value), 1);
    EXPECT_EQ(value, 8);

    At(AttributePath("steps"))->SetUInt("value", 9, 1);
    EXPECT_EQ(Attrib("steps")->GetValue(&value), 1);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(Changes(AttributePath("steps")), (Lines{"- value int -4", "+ value int 9"}));
}

TEST_F(HSMTreeWrite, SetsAFloatAttribute)
{
    float value = 0.0f;
    At(AttributePath("length"))->SetFloat("value", 1.5f, 1);

    EXPECT_EQ(Attrib("length")->GetValue(&value), 1);
    EXPECT_FLOAT_EQ(value, 1.5f);
    EXPECT_EQ(Changes(AttributePath("length")), (Lines{"- value float 0.75", "+ value float 1.5"}));
}

TEST_F(HSMTreeWrite, SetsATwoFloatAttribute)
{
    Tessel::Float2 value{5.0f, 6.0f};
    At(AttributePath("offset"))->SetFloat2("value", &value, 1);

    value = {};
    EXPECT_EQ(Attrib("offset")->GetValue(&value), 1);
    EXPECT_FLOAT_EQ(value.x, 5.0f);
    EXPECT_FLOAT_EQ(value.y, 6.0f);
    EXPECT_EQ(Changes(AttributePath("offset")),
              (Lines{"- value float2 1,-2", "+ value float2 5,6"}));
}

TEST_F(HSMTreeWrite, SetsAThreeFloatAttribute)
{
    Tessel::Float3 value{5.0f, 6.0f, 7.0f};
    At(AttributePath("pivot"))->SetFloat3("value", &value, 1);

    value = {};
    EXPECT_EQ(Attrib("pivot")->GetValue(&value), 1);
    EXPECT_FLOAT_EQ(value.z, 7.0f);
    EXPECT_EQ(Changes(AttributePath("pivot")),
              (Lines{"- value float3 1,2,3", "+ value float3 5,6,7"}));
}

TEST_F(HSMTreeWrite, OfAFourFloatAttributeChangesTheTreeAlone)
{
    Tessel::Float4 value{9.0f, 9.0f, 9.0f, 9.0f};
    At(AttributePath("tint"))->SetFloat4("value", &value, 1);

    EXPECT_EQ(Attrib("tint")->GetValue(&value), 1);
    EXPECT_FLOAT_EQ(value.x, 0.0f);
    EXPECT_FLOAT_EQ(value.w, 1.0f);
    EXPECT_EQ(Changes(AttributePath("tint")),
              (Lines{"- value float4 0,0.5,1,1", "+ value float4 9,9,9,9"}));
}

TEST_F(HSMTreeWrite, OfAnIntSetsABoolAttribute)
{
    bool value = true;
    At(AttributePath("loud"))->SetInt("value", 0, 1);
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("loud", &value), 1);
    EXPECT_FALSE(value);

    At(AttributePath("loud"))->SetInt("value", -2, 1);
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("loud", &value), 1);
    EXPECT_TRUE(value);
    EXPECT_EQ(Changes(AttributePath("loud")), Lines());
}

TEST_F(HSMTreeWrite, OfAnUnsignedLeavesABoolAttributeAsItIs)
{
    bool value = false;
    At(AttributePath("loud"))->SetUInt("value", 0, 1);

    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("loud", &value), 1);
    EXPECT_TRUE(value);
    EXPECT_EQ(Changes(AttributePath("loud")), (Lines{"- value int 1", "+ value uint 0"}));
}

TEST_F(HSMTreeWrite, OfAnotherTypeChangesTheTreeOfAnAttributeAlone)
{
    int steps = 0;
    float length = 0.0f;
    At(AttributePath("steps"))->SetFloat("value", 1.0f, 1);
    At(AttributePath("length"))->SetInt("value", 3, 1);
    At(AttributePath("surface"))->SetInt("value", 3, 1);

    Attrib("steps")->GetValue(&steps);
    Attrib("length")->GetValue(&length);
    const char* text = nullptr;
    machine.GetAttributeValue("surface", &text);
    EXPECT_EQ(steps, -4);
    EXPECT_FLOAT_EQ(length, 0.75f);
    EXPECT_STREQ(text, "stone");
    EXPECT_EQ(At(AttributePath("length"))->GetInt("value"), 3);
}

TEST_F(HSMTreeWrite, SetsATextAttributeThatTheDocumentLeftEmpty)
{
    JsonObject data;
    data.Set(JSON_AttributeType, "QString");
    JsonObject attribute;
    attribute.Set(JSON_Name, "late").Set("ATTRIB_Data", Json::Array({data}));
    DocumentBuilder document;
    document.Start(1).Node(Generic("Only", 1).Set(JSON_Attributes, Json::Array({attribute})));
    TestMachine other(document);
    ASSERT_EQ(other.Init(), 1);
    other.Start();

    TableAt(other.GetKVTable(), "nodeDefTable/1/attribs/late")->SetString("value", "now", 1);

    const char* text = nullptr;
    EXPECT_EQ(other.GetAttributeValue("late", &text), 1);
    EXPECT_STREQ(text, "now");
}

TEST_F(HSMTreeWrite, IsWrittenBackOnce)
{
    for (const std::string& path : {ParameterPath("count"), AttributePath("steps")})
    {
        int writes = 0;
        Tessel::KVListener* listener = At(path)->GetValueListener("value");
        listener->object = &writes;
        listener->function = CountWrite;

        At(path)->SetInt("value", 5, 1);

        EXPECT_EQ(writes, 2) << path;
        At(path)->RemoveValueListener("value", listener);
    }
}

TEST_F(HSMTreeWrite, ByTheMachineItselfIsSeenOnce)
{
    int writes = 0;
    Tessel::KVListener* listener = At(ParameterPath("count"))->GetValueListener("value");
    listener->object = &writes;
    listener->function = CountWrite;

    Parameter<ParameterIntegerDef>("count")->SetValue(-3);
    Parameter<ParameterIntegerDef>("count")->SetValue(6);

    EXPECT_EQ(writes, 2);
}

TEST_F(HSMTreeWrite, OfAnyOtherKeyDoesNothingToTheMachine)
{
    machine.GetKVTable()->SetString("filename", "other.json", 1);
    At("contextInfo")->SetUInt("nextState", 11, 1);
    At("contextInfo/stackStates")->PushUInt(11, 1);
    At("nodeDefTable")->SetString("hsmID", "other", 1);
    At("nodeDefTable/10")->SetUInt("id", 99, 1);
    At("nodeDefTable/10/attribs")->SetUInt("id", 99, 1);
    At(ParameterPath("speed"))->SetUInt("id", 99, 1);
    At(ParameterPath("speed"))->SetString("type", "bool", 1);
    At(AttributePath("steps"))->SetString("name", "stops", 1);
    At(AttributePath("steps"))->SetUInt("nodeID", 99, 1);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Idle");
    EXPECT_STREQ(machine.GetGUID(), "guid-of-the-test");
    EXPECT_EQ(machine.FindDef(10u)->GetID(), 10u);
    EXPECT_EQ(machine.FindDef(99u), nullptr);
    EXPECT_EQ(Parameter<ParameterFloatDef>("speed")->GetID(), ParameterId("speed"));
    EXPECT_EQ(Parameter<ParameterFloatDef>("speed")->GetParamType(), 3);
    EXPECT_NE(Attrib("steps"), nullptr);
}

TEST_F(HSMTreeWrite, ByTheHostsSettersReachesTheTree)
{
    SMState* state = machine.GetCurrentState();
    EXPECT_EQ(state->SetAttrib("surface", "ice"), 1);
    EXPECT_EQ(state->SetAttrib("steps", 3), 1);
    EXPECT_EQ(state->SetAttrib("length", 4.5f), 1);
    EXPECT_EQ(state->SetAttrib("offset", Tessel::Float2{7, 7}), 1);
    EXPECT_EQ(state->SetAttrib("pivot", Tessel::Float3{8, 8, 8}), 1);
    EXPECT_EQ(state->SetAttrib("tint", Tessel::Float4{9, 9, 9, 9}), 1);
    EXPECT_EQ(state->SetAttrib("loud", false), 1);

    EXPECT_EQ(
        Changes("nodeDefTable/10/attribs"),
        (Lines{"- length/value float 0.75", "- loud/value int 1", "- offset/value float2 1,-2",
               "- pivot/value float3 1,2,3", "- steps/value int -4",
               "- surface/value text \"stone\"", "- tint/value float4 0,0.5,1,1",
               "+ length/value float 4.5", "+ loud/value int 0", "+ offset/value float2 7,7",
               "+ pivot/value float3 8,8,8", "+ steps/value int 3", "+ surface/value text \"ice\"",
               "+ tint/value float4 9,9,9,9"}));
}

} // namespace vell::test
