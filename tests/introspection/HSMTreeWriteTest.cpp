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
#include "tests/support/TreeValues.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace vell::test
{
namespace
{

using namespace std::string_literals;
using Tessel::Float2;
using Tessel::Float3;
using Tessel::Float4;

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
        ASSERT_EQ(machine.MainStack(), "Idle");
        before = TreeLines(machine.GetKVTable());
        log.Clear();
    }

    /// The path below which an attribute of "Idle" is.
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

    /// Expects that a tool's write of `written` into a parameter leaves it the value `expected` and
    /// changes the tree from `shown` to `shownNow`.
    template <class Def, class Written, class Value>
    void ExpectParameter(const char* name, const Written& written, const Value& expected,
                         const std::string& shown, const std::string& shownNow)
    {
        SCOPED_TRACE(name);
        before = TreeLines(machine.GetKVTable());
        WriteByTool(At(ParameterPath(name)), written);
        EXPECT_TRUE(AreEqual<Value>(Parameter<Def>(name)->GetValue(), expected));
        EXPECT_EQ(Changes(ParameterPath(name)), (Lines{"- value " + shown, "+ value " + shownNow}));
    }

    template <class Value>
    Value AttributeValue(const char* name)
    {
        if constexpr (std::is_same_v<Value, std::string>)
        {
            const char* text = nullptr;
            EXPECT_EQ(machine.GetAttributeValue(name, &text), 1);
            return text;
        }
        else
        {
            Value value{};
            // A bool attribute gives its value to the state alone.
            if constexpr (std::is_same_v<Value, bool>)
            {
                EXPECT_EQ(machine.GetCurrentState()->GetAttrib(name, &value), 1);
            }
            else
            {
                EXPECT_EQ(Attrib(name)->GetValue(&value), 1);
            }
            return value;
        }
    }

    /// The same for an attribute of "Idle".
    template <class Written, class Value>
    void ExpectAttribute(const char* name, const Written& written, const Value& expected,
                         const std::string& shown, const std::string& shownNow)
    {
        SCOPED_TRACE(name);
        before = TreeLines(machine.GetKVTable());
        WriteByTool(At(AttributePath(name)), written);
        EXPECT_TRUE(AreEqual(AttributeValue<Value>(name), expected));
        EXPECT_EQ(Changes(AttributePath(name)), (Lines{"- value " + shown, "+ value " + shownNow}));
    }

    LogRecorder log;
    StartedMachine machine{RichDocument()};
    Lines before;
};

} // namespace

TEST_F(HSMTreeWrite, OfItsOwnTypeSetsAParameter)
{
    ExpectParameter<ParameterBoolDef>("hit", 1, true, "int 0", "int 1");
    ExpectParameter<ParameterIntegerDef>("count", 12, 12, "int -3", "int 12");
    ExpectParameter<ParameterFloatDef>("speed", 2.25f, 2.25f, "float 0.5", "float 2.25");
    ExpectParameter<ParameterAnalogDef>("stick", Float2{6, 8}, Float2{6, 8}, "float2 3,4",
                                        "float2 6,8");
    ExpectParameter<ParameterFloat3Def>("aim", Float3{2, 3, 6}, Float3{2, 3, 6}, "float3 1,2,3",
                                        "float3 2,3,6");
    ExpectParameter<ParameterFloat4Def>("turn", Float4{1, 0, 0, 0}, Float4{1, 0, 0, 0},
                                        "float4 0,0,0,1", "float4 1,0,0,0");
    ExpectParameter<ParameterMessageDef>("shout", "stop"s, "stop"s, "text \"\"", "text \"stop\"");
    EXPECT_EQ(Parameter<ParameterAnalogDef>("stick")->GetMagnitude(), 10.0f);
    EXPECT_EQ(Parameter<ParameterFloat3Def>("aim")->GetMagnitude(), 7.0f);
}

TEST_F(HSMTreeWrite, OfAnotherTypeSetsAScalarParameterAndIsShownInItsOwn)
{
    ExpectParameter<ParameterBoolDef>("hit", 5u, true, "int 0", "int 1");
    ExpectParameter<ParameterIntegerDef>("count", 7.9f, 7, "int -3", "int 7");
    ExpectParameter<ParameterFloatDef>("speed", 2, 2.0f, "float 0.5", "float 2");
    ExpectParameter<ParameterFloatDef>("speed", "9"s, 0.0f, "float 2", "float 0");
}

TEST_F(HSMTreeWrite, OfAnEqualBoolIsNotWrittenBack)
{
    Parameter<ParameterBoolDef>("hit")->SetValue(true);

    ExpectParameter<ParameterBoolDef>("hit", 5u, true, "int 1", "uint 5");
}

TEST_F(HSMTreeWrite, OfAnotherTypeLeavesVectorsAndMessagesAsTheyAre)
{
    ExpectParameter<ParameterAnalogDef>("stick", 1.0f, Float2{3, 4}, "float2 3,4", "float 1");
    ExpectParameter<ParameterFloat3Def>("aim", 1, Float3{1, 2, 3}, "float3 1,2,3", "int 1");
    ExpectParameter<ParameterFloat4Def>("turn", "1,2,3,4"s, Float4{0, 0, 0, 1}, "float4 0,0,0,1",
                                        "text \"1,2,3,4\"");
    ExpectParameter<ParameterMessageDef>("shout", 1, ""s, "text \"\"", "int 1");
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

TEST_F(HSMTreeWrite, OfItsOwnTypeSetsAnAttributeUnlessItIsOfFourFloats)
{
    ExpectAttribute("steps", 8, 8, "int -4", "int 8");
    ExpectAttribute("steps", 9u, 9, "int 8", "int 9");
    ExpectAttribute("length", 1.5f, 1.5f, "float 0.75", "float 1.5");
    ExpectAttribute("offset", Float2{5, 6}, Float2{5, 6}, "float2 1,-2", "float2 5,6");
    ExpectAttribute("pivot", Float3{5, 6, 7}, Float3{5, 6, 7}, "float3 1,2,3", "float3 5,6,7");
    ExpectAttribute("tint", Float4{9, 9, 9, 9}, Float4{0, 0.5f, 1, 1}, "float4 0,0.5,1,1",
                    "float4 9,9,9,9");
    ExpectAttribute("loud", 0, false, "int 1", "int 0");
    ExpectAttribute("surface", "mud"s, "mud"s, "text \"stone\"", "text \"mud\"");
}

TEST_F(HSMTreeWrite, OfAnIntOtherThanZeroSetsABoolAttributeAndIsShownAsOne)
{
    At(AttributePath("loud"))->SetInt("value", 0, 1);
    At(AttributePath("loud"))->SetInt("value", -2, 1);

    EXPECT_TRUE(AttributeValue<bool>("loud"));
    EXPECT_EQ(Changes(AttributePath("loud")), Lines());
}

TEST_F(HSMTreeWrite, OfAnotherTypeChangesTheTreeOfAnAttributeAlone)
{
    ExpectAttribute("steps", 1.0f, -4, "int -4", "float 1");
    ExpectAttribute("length", 3, 0.75f, "float 0.75", "int 3");
    ExpectAttribute("surface", 3, "stone"s, "text \"stone\"", "int 3");
    ExpectAttribute("loud", 0u, true, "int 1", "uint 0");
}

TEST_F(HSMTreeWrite, OfATextTooLongChangesTheTreeAlone)
{
    const std::string tooLong(1024, 'x');
    ExpectAttribute("surface", tooLong, "stone"s, "text \"stone\"", "text \"" + tooLong + "\"");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMTreeWrite, SetsATextAttributeThatTheDocumentLeftEmpty)
{
    JsonObject data;
    data.Set(JSON_AttributeType, "QString");
    JsonObject attribute;
    attribute.Set(JSON_Name, "late").Set("ATTRIB_Data", Json::Array({data}));
    StartedMachine other(DocumentBuilder().Start(1).Node(
        Generic("Only", 1).Set(JSON_Attributes, Json::Array({attribute}))));

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
