// VELL: data-driven hierarchical state machines.
// tools/vell/ParameterText.cpp: the texts of values, and how a text becomes a value.
#include "tools/vell/ParameterText.h"

#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <string_view>

namespace vell::tool
{
namespace
{

std::string Quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string Apostrophes(const std::string& text)
{
    return "'" + text + "'";
}

std::string BoolText(bool value)
{
    return value ? "true" : "false";
}

/// A bool condition compares the first byte of its parameter, which need not be a bool.
std::string ByteText(const void* bound)
{
    unsigned char byte = 0;
    std::memcpy(&byte, bound, sizeof(byte));
    return byte > 1 ? std::to_string(byte) : BoolText(byte == 1);
}

bool IsFinite(int)
{
    return true;
}

bool IsFinite(float number)
{
    return std::isfinite(number);
}

/// Reads a number, and nothing else. Neither "nan" nor "inf" is one: no transition tests them in
/// the way that a designer would expect.
template <class Number>
bool ParseNumber(std::string_view text, Number* out)
{
    while (!text.empty() && text.front() == ' ')
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ')
    {
        text.remove_suffix(1);
    }
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *out);
    return error == std::errc() && stop == end && IsFinite(*out);
}

/// Reads exactly `count` numbers, separated by commas.
bool ParseFloats(std::string_view text, std::size_t count, float* out)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::size_t comma = text.find(',');
        const bool isLast = comma == std::string_view::npos;
        if (isLast != (i + 1 == count) || !ParseNumber(text.substr(0, comma), out + i))
        {
            return false;
        }
        text.remove_prefix(isLast ? text.size() : comma + 1);
    }
    return true;
}

std::string FloatsText(const float* numbers, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
    {
        text += (i == 0 ? "" : ",") + NumberText(numbers[i]);
    }
    return text;
}

std::string Fault(ParameterDef& parameter, const std::string& text)
{
    const auto type = static_cast<__ePARAMTYPE__>(parameter.GetParamType());
    static const char* const forms[] = {"of another type: expected another kind of value",
                                        "a bool: expected true or false",
                                        "an integer: expected a whole number",
                                        "a float: expected a number such as 1.5",
                                        "a float2: expected two numbers such as 0.3,0.8",
                                        "a float3: expected three numbers such as 1,0,0",
                                        "a float4: expected four numbers such as 1,0,0,1"};
    const bool isKnown = type >= DURMBaseLib::PARAM_Bool && type <= DURMBaseLib::PARAM_Float4;
    return Apostrophes(parameter.GetName()) + " is " + forms[isKnown ? type : 0] + ", got " +
           Apostrophes(text);
}

/// A value parsed from a text, for a parameter of any class.
struct Value
{
    bool boolean = false;
    int integer = 0;
    float floats[4] = {};
    std::string text;
};

bool ParseValue(ParameterDef& parameter, const std::string& text, Value* out)
{
    switch (parameter.GetParamType())
    {
    case DURMBaseLib::PARAM_Bool:
        out->boolean = text == "true" || text == "1";
        return out->boolean || text == "false" || text == "0";
    case DURMBaseLib::PARAM_Integer:
        return ParseNumber(text, &out->integer);
    case DURMBaseLib::PARAM_Float:
        return ParseFloats(text, 1, out->floats);
    case DURMBaseLib::PARAM_Float2:
        return ParseFloats(text, 2, out->floats);
    case DURMBaseLib::PARAM_Float3:
        return ParseFloats(text, 3, out->floats);
    case DURMBaseLib::PARAM_Float4:
        return ParseFloats(text, 4, out->floats);
    default:
        out->text = text;
        return dynamic_cast<ParameterMessageDef*>(&parameter) != nullptr;
    }
}

/// Calls `visit` with the parameter as its own class.
template <class Visitor>
void VisitParameter(ParameterDef& parameter, Visitor visit)
{
    if (auto* boolean = dynamic_cast<ParameterBoolDef*>(&parameter))
    {
        visit(*boolean);
    }
    else if (auto* integer = dynamic_cast<ParameterIntegerDef*>(&parameter))
    {
        visit(*integer);
    }
    else if (auto* number = dynamic_cast<ParameterFloatDef*>(&parameter))
    {
        visit(*number);
    }
    else if (auto* analog = dynamic_cast<ParameterAnalogDef*>(&parameter))
    {
        visit(*analog);
    }
    else if (auto* float3 = dynamic_cast<ParameterFloat3Def*>(&parameter))
    {
        visit(*float3);
    }
    else if (auto* float4 = dynamic_cast<ParameterFloat4Def*>(&parameter))
    {
        visit(*float4);
    }
    else if (auto* message = dynamic_cast<ParameterMessageDef*>(&parameter))
    {
        visit(*message);
    }
}

struct Writer
{
    const Value& value;

    void operator()(ParameterBoolDef& parameter) const
    {
        parameter.SetValue(value.boolean);
    }
    void operator()(ParameterIntegerDef& parameter) const
    {
        parameter.SetValue(value.integer);
    }
    void operator()(ParameterFloatDef& parameter) const
    {
        parameter.SetValue(value.floats[0]);
    }
    void operator()(ParameterAnalogDef& parameter) const
    {
        parameter.SetValue({value.floats[0], value.floats[1]});
    }
    void operator()(ParameterFloat3Def& parameter) const
    {
        parameter.SetValue({value.floats[0], value.floats[1], value.floats[2]});
    }
    void operator()(ParameterFloat4Def& parameter) const
    {
        parameter.SetValue({value.floats[0], value.floats[1], value.floats[2], value.floats[3]});
    }
    void operator()(ParameterMessageDef& parameter) const
    {
        parameter.SetValue(value.text);
    }
};

struct Reader
{
    Value& value;

    void operator()(ParameterBoolDef& parameter) const
    {
        value.boolean = parameter.GetValue();
    }
    void operator()(ParameterIntegerDef& parameter) const
    {
        value.integer = parameter.GetValue();
    }
    void operator()(ParameterFloatDef& parameter) const
    {
        value.floats[0] = parameter.GetValue();
    }
    void operator()(ParameterAnalogDef& parameter) const
    {
        const Tessel::Float2 vector = parameter.GetValue();
        Take({vector.x, vector.y});
    }
    void operator()(ParameterFloat3Def& parameter) const
    {
        const Tessel::Float3 vector = parameter.GetValue();
        Take({vector.x, vector.y, vector.z});
    }
    void operator()(ParameterFloat4Def& parameter) const
    {
        const Tessel::Float4 vector = parameter.GetValue();
        Take({vector.x, vector.y, vector.z, vector.w});
    }
    void operator()(ParameterMessageDef& parameter) const
    {
        value.text = parameter.GetValue();
    }

private:
    void Take(std::initializer_list<float> numbers) const
    {
        std::copy(numbers.begin(), numbers.end(), value.floats);
    }
};

Value ReadValue(ParameterDef& parameter)
{
    Value value;
    VisitParameter(parameter, Reader{value});
    return value;
}

std::string OperatorText(int evaluation)
{
    switch (evaluation)
    {
    case EvaluateEqual:
        return "==";
    case EvaluateNotEqual:
        return "!=";
    case EvaluateGreater:
        return ">";
    case EvaluateGreaterOrEqual:
        return ">=";
    case EvaluateLess:
        return "<";
    case EvaluateLessOrEqual:
        return "<=";
    case EvaluateInRange:
        return "in";
    default:
        return "(unknown operator, never holds)";
    }
}

std::string OperandText(int evaluation, const std::string& low, const std::string& high)
{
    return evaluation == EvaluateInRange ? low + ".." + high : low;
}

} // namespace

std::string NumberText(float number)
{
    char text[64];
    const auto [end, error] = std::to_chars(text, text + sizeof(text), number);
    return error == std::errc() ? std::string(text, end) : std::string();
}

std::string ValueText(ParameterDef& parameter)
{
    const Value value = ReadValue(parameter);
    switch (parameter.GetParamType())
    {
    case DURMBaseLib::PARAM_Bool:
        return BoolText(value.boolean);
    case DURMBaseLib::PARAM_Integer:
        return std::to_string(value.integer);
    case DURMBaseLib::PARAM_Float:
        return NumberText(value.floats[0]);
    case DURMBaseLib::PARAM_Float2:
        return FloatsText(value.floats, 2);
    case DURMBaseLib::PARAM_Float3:
        return FloatsText(value.floats, 3);
    case DURMBaseLib::PARAM_Float4:
        return FloatsText(value.floats, 4);
    default:
        return value.text;
    }
}

std::string SetValueFromText(ParameterDef& parameter, const std::string& text)
{
    Value value;
    if (!ParseValue(parameter, text, &value))
    {
        return Fault(parameter, text);
    }
    VisitParameter(parameter, Writer{value});
    return "";
}

bool ValueEquals(ParameterDef& parameter, const std::string& text, std::string* fault)
{
    Value expected;
    if (!ParseValue(parameter, text, &expected))
    {
        *fault = Fault(parameter, text);
        return false;
    }
    const Value actual = ReadValue(parameter);
    return actual.boolean == expected.boolean && actual.integer == expected.integer &&
           std::equal(actual.floats, actual.floats + 4, expected.floats) &&
           actual.text == expected.text;
}

ParameterDef* FindParameter(IParameterTable* table, const std::string& name)
{
    const unsigned int id = table == nullptr ? 0 : table->GetParameterID(name.c_str());
    return id == 0 ? nullptr : table->FindParameter(id);
}

std::string ConditionText(const ConditionDef& condition, IParameterTable* table)
{
    const char* name = table == nullptr ? nullptr : table->GetParameterName(condition.parameterID);
    std::string parameter =
        name == nullptr ? "parameter " + std::to_string(condition.parameterID) : std::string(name);
    const int evaluation = condition.evaluation;
    if (auto* boolean = dynamic_cast<const ConditionDefBool*>(&condition))
    {
        return parameter + " == " + BoolText(boolean->target);
    }
    if (auto* message = dynamic_cast<const ConditionDefMessage*>(&condition))
    {
        return parameter + " == " + Quoted(message->target);
    }
    const std::string left = parameter + " " + OperatorText(evaluation) + " ";
    if (auto* integer = dynamic_cast<const ConditionDefInteger*>(&condition))
    {
        return left + OperandText(evaluation, std::to_string(integer->target),
                                  std::to_string(integer->rangeHigh));
    }
    if (auto* number = dynamic_cast<const ConditionFloatDef*>(&condition))
    {
        return left +
               OperandText(evaluation, NumberText(number->target), NumberText(number->rangeHigh));
    }
    return parameter;
}

std::string SeenText(const ConditionDef& condition)
{
    if (auto* boolean = dynamic_cast<const ConditionDefBool*>(&condition))
    {
        return boolean->boundValue == nullptr ? "" : ByteText(boolean->boundValue);
    }
    if (auto* message = dynamic_cast<const ConditionDefMessage*>(&condition))
    {
        return message->boundValue == nullptr ? "" : Quoted(*message->boundValue);
    }
    if (auto* integer = dynamic_cast<const ConditionDefInteger*>(&condition))
    {
        return integer->boundValue == nullptr ? "" : std::to_string(*integer->boundValue);
    }
    if (auto* number = dynamic_cast<const ConditionFloatDef*>(&condition))
    {
        return number->boundValue == nullptr ? "" : NumberText(*number->boundValue);
    }
    return "";
}

} // namespace vell::tool
