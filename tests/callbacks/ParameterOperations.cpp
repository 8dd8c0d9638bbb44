// VELL: data-driven hierarchical state machines.
// tests/callbacks/ParameterOperations.cpp: the operations of parameters and attributes.
#include "tests/callbacks/Operations.h"

#include <string>

namespace vell::callbacks
{
namespace
{

const char* const kLongText = "a text of more than twenty letters";

/// Gives the protected members of a parameter.
struct OpenParameter : ParameterDef
{
    using ParameterDef::resetEachFrame;
};

/// Writes another value, whatever the class.
void WriteValue(ParameterDef& parameter)
{
    if (auto* asBool = dynamic_cast<IParameterBoolDef*>(&parameter))
    {
        asBool->SetValue(!asBool->GetValue());
    }
    else if (auto* asInt = dynamic_cast<IParameterIntDef*>(&parameter))
    {
        asInt->SetValue(asInt->GetValue() + 1);
    }
    else if (auto* asFloat = dynamic_cast<IParameterFloatDef*>(&parameter))
    {
        asFloat->SetValue(asFloat->GetValue() + 1.0f);
    }
    else if (auto* asAnalog = dynamic_cast<IParameterAnalogDef*>(&parameter))
    {
        asAnalog->SetVector(Tessel::Float2{asAnalog->GetMagnitude(), 1});
    }
    else if (auto* asText = dynamic_cast<IParameterMessageDef*>(&parameter))
    {
        asText->SetValue(asText->GetValue() + kLongText);
    }
}

void AskTable(IParameterTable& table)
{
    const int count = table.GetParameterCount();
    for (int i = 0; i <= count; ++i)
    {
        const unsigned int id = table.GetParameterIDByIndex(static_cast<unsigned int>(i));
        table.GetParameterName(id);
        table.GetParameterAssign(id);
        table.GetParameterAssignClass(id);
        table.FindParameter(id);
    }
}

void Broadcast(IParameterTable& table)
{
    const ParamBroadcast record = {};
    const int count = table.GetParameterCount();
    for (int i = 0; i < count; ++i)
    {
        const unsigned int id = table.GetParameterIDByIndex(static_cast<unsigned int>(i));
        if (IBroadcastListener* listener = table.GetBroadcastListener(id))
        {
            listener->OnBroadcastEvent(1, &record);
            listener->OnBroadcastEvent(7, &record);
        }
    }
}

/// So many that the table's maps change their shape.
void CreateMany(IParameterTable& table)
{
    static const char* const names[] = {"pa", "pb", "pc", "pd", "pe", "pf", "pg", "ph", "pi", "pj"};
    for (const char* name : names)
    {
        IParameterFloatDef* made = nullptr;
        table.CreateFloatParameter(name, 1.0f, &made);
    }
}

void AssignLit(const Hand& hand, ParameterBoolDef& parameter)
{
    if (auto* lit = dynamic_cast<ParameterBoolDef*>(FindParameter(hand, "lit")))
    {
        parameter = *lit;
    }
}

} // namespace

std::vector<Operation> ParameterOperations()
{
    // clang-format off: one entry a line
    return {
        {"parameters: ask", VELL_ON_PARAMETERS(AskTable(table))},
        {"parameters: FindParameter(null)",
         VELL_ON_PARAMETERS(table.FindParameter(static_cast<const char*>(nullptr)))},
        {"parameters: OnBroadcastEvent of all", VELL_ON_PARAMETERS(Broadcast(table))},
        {"parameters: CreateFloatParameter(no result)",
         VELL_ON_PARAMETERS(table.CreateFloatParameter("f", 1, nullptr))},
        {"parameters: CreateFloatParameter",
         VELL_ON_PARAMETERS(IParameterFloatDef * made = nullptr;
                            table.CreateFloatParameter("f", 1, &made))},
        {"parameters: create ten", VELL_ON_PARAMETERS(CreateMany(table))},
        {"parameters: CreateBoolParameter(taken)",
         VELL_ON_PARAMETERS(IParameterBoolDef * made = nullptr;
                            table.CreateBoolParameter("lit", true, &made))},
        {"parameters: CreateBoolParameter",
         VELL_ON_PARAMETERS(IParameterBoolDef * made = nullptr;
                            table.CreateBoolParameter("b", true, &made))},
        {"parameters: CreateIntParameter",
         VELL_ON_PARAMETERS(IParameterIntDef * made = nullptr;
                            table.CreateIntParameter("i", 7, &made))},
        {"parameters: CreateMessageParameter",
         VELL_ON_PARAMETERS(IParameterMessageDef * made = nullptr;
                            table.CreateMessageParameter("m", kLongText, &made))},
        {"parameter: SetValue(own)", VELL_ON_PARAMETER(WriteValue(parameter))},
        {"parameter: ResetValue(own)", VELL_ON_PARAMETER(parameter.ResetValue())},
        {"parameter: PullValue(own)", VELL_ON_PARAMETER(parameter.PullValue())},
        {"parameter: OnParamValueModified(own)",
         VELL_ON_PARAMETER(parameter.OnParamValueModified(Tessel::opResult_ValueChanged,
                                                          parameter.GetKVTable(), "value"))},
        {"parameter: SetSyncState(own)", VELL_ON_PARAMETER(parameter.SetSyncState(2))},
        {"parameter: SetAssign, SetParamType",
         VELL_ON_PARAMETER(parameter.SetAssign(3); parameter.SetParamType(7))},
        {"parameter: InitKVTableListener", VELL_ON_PARAMETER(parameter.InitKVTableListener())},
        {"parameter: UnInitKVTableListener", VELL_ON_PARAMETER(parameter.UnInitKVTableListener())},
        {"parameter: InitKVTable", VELL_ON_PARAMETER(parameter.InitKVTable())},
        {"parameter: UninitKVTable", VELL_ON_PARAMETER(parameter.UninitKVTable())},
        {"parameter: Uninit", VELL_ON_PARAMETER(parameter.Uninit())},
        {"parameter: resetEachFrame = true",
         VELL_ON_PARAMETER(parameter.*&OpenParameter::resetEachFrame = true)},
        {"parameter: int.SetValue", VELL_ON_NAMED(IParameterIntDef, "cue", parameter.SetValue(3))},
        {"parameter: bool.SetValue",
         VELL_ON_NAMED(IParameterBoolDef, "hit", parameter.SetValue(true))},
        {"parameter: float.SetValue",
         VELL_ON_NAMED(IParameterFloatDef, "speed", parameter.SetValue(200.0f))},
        {"parameter: float3.SetValue",
         VELL_ON_NAMED(IParameterFloat3Def, "wind", parameter.SetValue(Tessel::Float3{3, 2, 1}))},
        {"parameter: float4.SetValue",
         VELL_ON_NAMED(IParameterFloat4Def, "tone",
                       parameter.SetValue(Tessel::Float4{4, 3, 2, 1}))},
        {"parameter: message.SetValue(its own text)",
         VELL_ON_NAMED(
             IParameterMessageDef, "shout",
             parameter.SetValue(*static_cast<const std::string*>(parameter.GetValuePtr())))},
        {"parameter: message.SetDefaultValue",
         VELL_ON_NAMED(IParameterMessageDef, "shout", parameter.SetDefaultValue(kLongText))},
        {"parameter: bool = bool",
         VELL_ON_NAMED(ParameterBoolDef, "hit", AssignLit(hand, parameter)), kLeaves},
    };
    // clang-format on
}

std::vector<Operation> AttributeOperations()
{
    // clang-format off: one entry a line
    return {
        {"attribute: SetValue(text)", VELL_ON_ATTRIBUTE("surface", attribute.SetValue(kLongText))},
        {"attribute: SetValue(null text)",
         VELL_ON_ATTRIBUTE("surface", attribute.SetValue(static_cast<const char*>(nullptr)))},
        {"attribute: SetValue(int)", VELL_ON_ATTRIBUTE("steps", attribute.SetValue(3))},
        {"attribute: SetValue(four floats)",
         VELL_ON_ATTRIBUTE("tint", attribute.SetValue(Tessel::Float4{4, 3, 2, 1}))},
        {"attribute: SetName", VELL_ON_ATTRIBUTE("surface", attribute.SetName("s"))},
        {"attribute: CreateKVTable", VELL_ON_ATTRIBUTE("surface", attribute.CreateKVTable()),
         kLeaves},
        {"attribute: DestroyKVTable", VELL_ON_ATTRIBUTE("surface", attribute.DestroyKVTable())},
        {"attribute: InitKVTableListener",
         VELL_ON_ATTRIBUTE("surface", attribute.InitKVTableListener())},
        {"attribute: UnInitKVTableListener",
         VELL_ON_ATTRIBUTE("surface", attribute.UnInitKVTableListener())},
        {"attribute: OnAttribValueModified",
         VELL_ON_ATTRIBUTE("surface",
                           attribute.OnAttribValueModified(Tessel::opResult_ValueChanged,
                                                           attribute.GetKVTable(), "value"))},
    };
    // clang-format on
}

} // namespace vell::callbacks
