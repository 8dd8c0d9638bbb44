// VELL: data-driven hierarchical state machines.
// tools/author/ShortForms.cpp: short forms, and what they leave out.
#include "tools/author/ShortForms.h"

#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "document/DataMembers.h"
#include "document/VectorWidth.h"
#include "tools/author/Elements.h"
#include "tools/author/Expression.h"

#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using source::Kind;
using source::Value;

Made Copy(const source::Text& document, const Value& value)
{
    return Made::Copy(document.bytes, value);
}

bool IsWhole(const std::string& number)
{
    return number.find_first_of(".eE") == std::string::npos;
}

/// Gives the expression of a number's condition; empty when the grammar has none.
std::string ComparisonOf(const check::ConditionModel& condition, const Value& operand,
                         const std::string& name)
{
    const bool isInteger = condition.type == PARAM_Integer;
    if (condition.evaluation == EvaluateInRange)
    {
        const std::vector<std::string> bounds =
            operand.IsString() ? NumbersIn(operand.text) : std::vector<std::string>();
        const bool isGood =
            bounds.size() == 2 && (!isInteger || (IsWhole(bounds[0]) && IsWhole(bounds[1])));
        return isGood ? name + " in " + bounds[0] + ".." + bounds[1] : "";
    }
    const char* const sign = SignOf(condition.evaluation);
    const bool isGood =
        sign != nullptr && operand.IsNumber() && (!isInteger || IsWhole(operand.text));
    return isGood ? name + " " + sign + " " + operand.text : "";
}

/// Gives the list of a vector's numbers; nothing when the text is not plain.
std::optional<Made> VectorOf(const Value& text, int width)
{
    const std::vector<std::string> numbers =
        text.IsString() ? NumbersIn(text.text) : std::vector<std::string>();
    if (numbers.size() != static_cast<std::size_t>(width))
    {
        return std::nullopt;
    }
    Made list = Made::Array();
    for (const std::string& number : numbers)
    {
        list.Add(Made::Raw(number));
    }
    return list;
}

/// The first element of an array that is a member of `object`.
const Value* FirstOf(const Value& object, std::string_view member)
{
    const Value* const array = object.Find(member);
    return array == nullptr || !array->IsArray() || array->elements.empty()
               ? nullptr
               : &array->elements.front();
}

std::optional<Made> AttributeOf(const source::Text& document, const Value& attribute)
{
    const Value* const data = FirstOf(attribute, kAttribDataMember);
    const Value* const value = data == nullptr ? nullptr : check::Find(*data, JSON_Value);
    if (value == nullptr)
    {
        return std::nullopt;
    }
    const std::string type(check::ReadText(*data, JSON_AttributeType));
    const int number = check::NumberOf(check::Words::AttributeTypes, type);
    if (WordFor(check::Words::AttributeTypes, number) != type)
    {
        return std::nullopt;
    }
    const bool isPlain = (number == PARAM_Bool && value->IsBool()) ||
                         (number == PARAM_Integer && value->IsInteger()) ||
                         (number == PARAM_Float && value->kind == Kind::Double) ||
                         (number == PARAM_Message && value->IsString());
    if (VectorWidth(number) != 0)
    {
        return VectorOf(*value, VectorWidth(number));
    }
    return isPlain ? std::optional<Made>(Copy(document, *value)) : std::nullopt;
}

/// Gives a parameter's default in a source.
Made DefaultOf(const source::Text& document, const Value* initial, int type)
{
    if (VectorWidth(type) != 0)
    {
        const bool isList = initial != nullptr && initial->IsArray() && !initial->elements.empty();
        const Value* const text =
            isList ? initial->elements.front().Find(kVectorDataMember) : nullptr;
        const std::optional<Made> list =
            text == nullptr ? std::nullopt : VectorOf(*text, VectorWidth(type));
        Made zeros = Made::Array();
        for (int i = 0; i < VectorWidth(type); ++i)
        {
            zeros.Add(Made::Raw("0"));
        }
        return list ? *list : zeros;
    }
    const bool isGood = initial != nullptr && ((type == PARAM_Bool && initial->IsBool()) ||
                                               (type == PARAM_Integer && initial->IsInteger()) ||
                                               (type == PARAM_Float && initial->IsNumber()) ||
                                               (type == PARAM_Message && initial->IsString()));
    if (isGood)
    {
        return Copy(document, *initial);
    }
    return Made::Raw(type == PARAM_Bool      ? "false"
                     : type == PARAM_Integer ? "0"
                     : type == PARAM_Float   ? "0.0"
                                             : "\"\"");
}

bool IsSameText(const std::string& left, const std::string& right)
{
    const source::Text a = source::ReadText(left);
    const source::Text b = source::ReadText(right);
    if (!a.root.IsString() || !b.root.IsString())
    {
        return false;
    }
    const std::vector<std::string> numbers = NumbersIn(a.root.text);
    return numbers.size() > 1 && numbers == NumbersIn(b.root.text);
}

} // namespace

std::string ExpressionOf(const check::DocumentModel& model, const check::ConditionModel& condition)
{
    const check::ParameterModel* const parameter = condition.parameter;
    const Value* const operand = condition.operand;
    if (parameter == nullptr || operand == nullptr || parameter->type != condition.type ||
        parameter->name.empty() || model.FindParameterByName(parameter->name) != parameter)
    {
        return "";
    }
    const std::string name = NameInExpression(parameter->name);
    switch (condition.type)
    {
    case PARAM_Bool:
        return operand->IsBool() ? (operand->boolean ? "" : "not ") + name : "";
    case PARAM_Message:
        return operand->IsString() ? name + " == " + TextInExpression(operand->text) : "";
    case PARAM_Integer:
    case PARAM_Float:
        return ComparisonOf(condition, *operand, name);
    default:
        return "";
    }
}

std::optional<Made> AttributesOf(const source::Text& document, const Value& array)
{
    Made attributes = Made::Object();
    if (!array.IsArray())
    {
        return std::nullopt;
    }
    for (const Value& attribute : array.elements)
    {
        const Value* const name = check::Find(attribute, JSON_Name);
        std::optional<Made> value = AttributeOf(document, attribute);
        if (name == nullptr || !name->IsString() || !value ||
            attributes.Find(name->text) != nullptr)
        {
            return std::nullopt;
        }
        attributes.Set(name->text, std::move(*value));
    }
    return attributes;
}

Made ParameterOf(const source::Text& document, const check::ParameterModel& parameter,
                 bool mayBeShort)
{
    const Value& value = *parameter.value;
    const Value* const initial = check::Find(value, JSON_ParameterDefault);
    const int type = parameter.type == PARAM_Text ? int{PARAM_Message} : parameter.type;
    const int kind = type == 0 ? int{PARAM_Bool} : type;
    Made made = Made::Object();
    made.Set(GetParameterName(static_cast<__ePARAMTYPE__>(kind)),
             DefaultOf(document, initial, kind));
    const Value* const input = check::Find(value, JSON_ParameterAssign);
    if (input != nullptr && input->IsString() &&
        check::NumberOf(check::Words::Inputs, input->text) != 0)
    {
        made.Set("input", Copy(document, *input));
    }
    const Value* const reset = check::Find(value, JSON_ParameterResetEachFrame);
    if (reset != nullptr && reset->IsBool() && reset->boolean)
    {
        made.Set("reset", Made::Flag(true));
    }
    if (parameter.id != check::CrcOf(parameter.name))
    {
        made.Set("id", Made::Id(parameter.id));
    }
    // A value says its type, but a whole number could be a float's.
    const bool isPlain = mayBeShort && made.members.size() == 1 && initial != nullptr &&
                         (kind == PARAM_Bool || kind == PARAM_Integer ||
                          (kind == PARAM_Float && initial->kind == Kind::Double));
    return isPlain ? made.members.front().value : made;
}

bool IsSameMeaning(const Made& left, const Made& right)
{
    if (left.kind != right.kind || left.members.size() != right.members.size() ||
        left.elements.size() != right.elements.size())
    {
        return false;
    }
    for (const MadeMember& member : left.members)
    {
        const Made* const other = right.Find(member.name);
        if (other == nullptr || !IsSameMeaning(member.value, *other))
        {
            return false;
        }
    }
    for (std::size_t i = 0; i < left.elements.size(); ++i)
    {
        if (!IsSameMeaning(left.elements[i], right.elements[i]))
        {
            return false;
        }
    }
    return left.kind != Kind::Null || IsSame(left, right) || IsSameText(left.json, right.json);
}

Made DifferenceOf(const Made& made, const Made& wanted)
{
    Made members = Made::Object();
    for (const MadeMember& member : wanted.members)
    {
        const Made* const has = made.Find(member.name);
        if (has == nullptr || !IsSameMeaning(*has, member.value))
        {
            members.Set(member.name, member.value);
        }
    }
    for (const MadeMember& member : made.members)
    {
        if (wanted.Find(member.name) == nullptr)
        {
            members.Set(member.name, Made::Raw("null"));
        }
    }
    return members;
}

} // namespace vell::author
