// VELL: data-driven hierarchical state machines.
// tools/check/CheckValue.cpp: the types of values, and what the library would read instead.
#include "tools/check/CheckValue.h"

#include <durm/DURMBaseLib.h>

#include "definitions/NodeDefTable.h"
#include "document/DataMembers.h"
#include "document/NumberText.h"
#include "document/VectorWidth.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace vell::check
{
namespace
{

using source::Kind;
using source::Value;
using namespace DURMBaseLib;

constexpr std::size_t kLongestShown = 40;
/// Of the text of an attribute and of the numbers of a vector, with the null character.
constexpr std::size_t kAttributeText = 1024;
constexpr std::size_t kVectorText = 128;
constexpr std::int64_t kMostMemory = 42949672; ///< a hundred times that fits 32 bits
constexpr std::uint64_t kIdRange = std::uint64_t{1} << 32u;

/// The length that the library sees.
std::size_t LengthOf(const Value& value)
{
    return std::string_view(value.text.c_str()).size();
}

/// A value that is checked, and the member that it is of.
struct Subject
{
    const Value& value;
    std::string_view name;
    bool isElement; ///< of the member's array
    Findings& findings;

    std::string Title() const
    {
        return std::string(isElement ? "an element of '" : "'") + std::string(name) + "'";
    }
    void Add(Code code, const std::string& says, std::string hint = {}) const
    {
        findings.Add(code, value.span, Title() + " " + says, std::move(hint));
    }
    void AddWrongType(const std::string& expected, std::string hint = {}) const
    {
        Add(Code::WrongType, "must be " + expected + ", not " + Describe(value), std::move(hint));
    }
};

/// What to write when a number is in quotes.
std::string WithoutQuotes(const Value& value)
{
    if (!value.IsString() || value.text.empty())
    {
        return {};
    }
    char* end = nullptr;
    const double number = std::strtod(value.text.c_str(), &end);
    return *end == '\0' && std::isfinite(number) ? "write " + value.text + " without quotes" : "";
}

bool CheckText(const Subject& subject)
{
    const Value& value = subject.value;
    if (value.IsString())
    {
        return true;
    }
    subject.AddWrongType("a text", value.IsNumber()           ? "write \"" + value.text + "\""
                                   : value.kind == Kind::Null ? "leave the member out"
                                                              : "");
    return false;
}

void CheckShorter(const Subject& subject, std::size_t limit)
{
    const std::size_t length = LengthOf(subject.value);
    if (CheckText(subject) && length >= limit)
    {
        subject.Add(Code::TooLong, "must have fewer than " + std::to_string(limit) +
                                       " bytes, and has " + std::to_string(length));
    }
}

void CheckFilled(const Subject& subject)
{
    if (CheckText(subject) && LengthOf(subject.value) == 0)
    {
        subject.Add(Code::EmptyText, "must not be empty");
    }
}

std::string WholeNumber(double number)
{
    return std::to_string(static_cast<long long>(number));
}

void CheckWhole(const Subject& subject, std::int64_t lowest, std::int64_t highest)
{
    const Value& value = subject.value;
    if (!value.IsNumber())
    {
        subject.AddWrongType("a whole number", WithoutQuotes(value));
        return;
    }
    const bool isWhole = std::floor(value.number) == value.number;
    const bool isInRange =
        value.number >= static_cast<double>(lowest) && value.number <= static_cast<double>(highest);
    if (!isInRange)
    {
        subject.Add(Code::OutOfRange, "must be from " + std::to_string(lowest) + " to " +
                                          std::to_string(highest) + ", not " + value.text);
    }
    else if (!value.IsInteger())
    {
        const std::int64_t read = lowest < 0 ? static_cast<std::int32_t>(value.ReadUInt())
                                             : std::int64_t{value.ReadUInt()};
        subject.Add(Code::Fraction,
                    "must be a whole number: the library reads " + value.text + " as " +
                        std::to_string(read),
                    isWhole ? "write " + WholeNumber(value.number) : "");
    }
}

void CheckId(const Subject& subject)
{
    CheckWhole(subject, 0, static_cast<std::int64_t>(kIdRange) - 1);
}

void CheckInteger(const Subject& subject)
{
    CheckWhole(subject, INT_MIN, INT_MAX);
}

void CheckFlag(const Subject& subject)
{
    const Value& value = subject.value;
    if (value.IsBool())
    {
        return;
    }
    const bool isText = value.IsString() && (value.text == "true" || value.text == "false");
    const bool isZero = value.IsNumber() && value.text == "0";
    const bool isOne = value.IsNumber() && value.text == "1";
    subject.AddWrongType("true or false", isText   ? "write " + value.text + " without quotes"
                                          : isZero ? "write false"
                                          : isOne  ? "write true"
                                                   : "");
}

void CheckNumber(const Subject& subject)
{
    const Value& value = subject.value;
    if (!value.IsNumber())
    {
        subject.AddWrongType("a number", WithoutQuotes(value));
    }
    else if (std::fabs(value.number) > static_cast<double>(FLT_MAX))
    {
        subject.Add(Code::OutOfRange, "must fit a float, and " + value.text + " does not");
    }
}

bool IsNumberText(std::string_view piece)
{
    const std::string text(piece);
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return end != text.c_str() &&
           std::string_view(end).find_first_not_of(" \t") == std::string_view::npos;
}

/// The pieces of a vector's text that are not empty.
std::vector<std::string_view> PiecesOf(std::string_view text)
{
    std::vector<std::string_view> pieces;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find(','), text.size());
        if (end != 0)
        {
            pieces.push_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pieces;
}

void CheckVector(const Subject& subject, int width)
{
    const auto count = static_cast<std::size_t>(width);
    const std::string example = std::string("0, 1, 0, 1").substr(0, 3 * count - 2);
    const std::string expected =
        "a text of " + std::to_string(width) + " numbers such as \"" + example + "\"";
    if (!subject.value.IsString())
    {
        subject.AddWrongType(expected);
        return;
    }
    if (LengthOf(subject.value) >= kVectorText)
    {
        CheckShorter(subject, kVectorText);
        return;
    }
    const std::string text = subject.value.text.c_str();
    const std::vector<std::string_view> pieces = PiecesOf(text);
    if (pieces.size() != count)
    {
        subject.Add(Code::VectorText,
                    "must be " + expected + ", and has " + std::to_string(pieces.size()));
        return;
    }
    for (const std::string_view piece : pieces)
    {
        if (!IsNumberText(piece))
        {
            subject.Add(Code::VectorText,
                        "has '" + std::string(piece) + "', which the library reads as 0");
        }
    }
}

int TypeOf(const Value& object, __JSONTYPES__ member, Words words)
{
    const Value* type = object.Find(GetJsonName(member));
    return type != nullptr && type->IsString() ? NumberOf(words, type->text) : 0;
}

/// Gives the value as a document has it, or an empty text for an array, an object or a long text.
std::string Written(const Value& value)
{
    switch (value.kind)
    {
    case Kind::Bool:
        return value.boolean ? "true" : "false";
    case Kind::Int:
    case Kind::UInt:
    case Kind::Double:
        return value.text;
    case Kind::String:
        return value.text.size() <= kLongestShown &&
                       value.text.find_first_of("\"\\") == std::string::npos
                   ? "\"" + value.text + "\""
                   : "";
    default:
        return "";
    }
}

/// Gives the object that is meant where only its value is written.
std::string MeantElement(ObjectKind contents, const Value& value)
{
    const char* const name = contents == ObjectKind::Operand         ? GetJsonName(JSON_Value)
                             : contents == ObjectKind::VectorDefault ? kVectorDataMember
                                                                     : nullptr;
    const std::string written = Written(value);
    return name == nullptr || written.empty() ? ""
                                              : "{\"" + std::string(name) + "\": " + written + "}";
}

/// The array whose first element alone is read.
void CheckFirst(const Subject& subject, const MemberRule& rule)
{
    const Value& value = subject.value;
    if (!value.IsArray())
    {
        const std::string meant = MeantElement(rule.contents, value);
        subject.AddWrongType("an array with one object", value.IsObject() ? "put it in [ ]"
                                                         : meant.empty()  ? ""
                                                                         : "write [" + meant + "]");
    }
    else if (value.elements.empty())
    {
        subject.Add(Code::NoElement, std::string("is empty, and needs ") + TitleOf(rule.contents));
    }
    else if (!value.elements[0].IsObject())
    {
        const std::string meant = MeantElement(rule.contents, value.elements[0]);
        Subject{value.elements[0], rule.name, true, subject.findings}.AddWrongType(
            "an object", meant.empty() ? "" : "write " + meant);
    }
    else if (value.elements.size() > 1)
    {
        subject.findings.Add(Code::FurtherElements, value.elements[1].span,
                             "only the first element of " + subject.Title() + " is read");
    }
}

void CheckByType(const Subject& subject, int type)
{
    switch (type)
    {
    case PARAM_Bool:
        return CheckFlag(subject);
    case PARAM_Integer:
        return CheckInteger(subject);
    case PARAM_Float:
        return CheckNumber(subject);
    case PARAM_Text:
    case PARAM_Message:
        CheckText(subject);
        return;
    default:
        break;
    }
}

void CheckAttribute(const Visit& visit, const Subject& subject)
{
    const int type = TypeOf(visit.object, JSON_AttributeType, Words::AttributeTypes);
    if (VectorWidth(type) != 0)
    {
        CheckVector(subject, VectorWidth(type));
    }
    else if (type == PARAM_Message)
    {
        CheckShorter(subject, kAttributeText);
    }
    else
    {
        CheckByType(subject, type);
    }
}

/// A value whose type another member gives. Operands are the business of the family of types.
void CheckDependent(const Visit& visit, const MemberRule& rule, const Subject& subject)
{
    switch (visit.kind)
    {
    case ObjectKind::Parameter:
        if (VectorWidthOf(visit.object) != 0)
        {
            return CheckFirst(subject, rule);
        }
        return CheckByType(subject,
                           TypeOf(visit.object, JSON_ParameterType, Words::ParameterTypes));
    case ObjectKind::VectorDefault:
        if (VectorWidthOf(*visit.parent) != 0)
        {
            CheckVector(subject, VectorWidthOf(*visit.parent));
        }
        return;
    case ObjectKind::AttributeData:
        return CheckAttribute(visit, subject);
    default:
        return;
    }
}

void CheckArray(const Subject& subject, const MemberRule& rule)
{
    const Value& value = subject.value;
    const bool isIds = rule.shape == Shape::Ids;
    if (!value.IsArray())
    {
        subject.AddWrongType(isIds ? "an array of ids" : "an array",
                             value.IsObject() || (isIds && value.IsNumber()) ? "put it in [ ]"
                                                                             : "");
        return;
    }
    for (const Value& element : value.elements)
    {
        const Subject elementSubject{element, rule.name, true, subject.findings};
        if (isIds)
        {
            CheckId(elementSubject);
        }
        else if (!element.IsObject())
        {
            elementSubject.AddWrongType("an object");
        }
    }
}

} // namespace

void CheckValue(const Visit& visit, const MemberRule& rule, const Value& value, Findings& findings)
{
    const Subject subject{value, rule.name, false, findings};
    switch (rule.shape)
    {
    case Shape::Text:
        CheckText(subject);
        return;
    case Shape::FilledText:
        return CheckFilled(subject);
    case Shape::Identity:
        return CheckShorter(subject, NodeDefTable::kIdentitySize);
    case Shape::Id:
        return CheckId(subject);
    case Shape::Integer:
        return visit.kind == ObjectKind::Head && value.number < 0.0
                   ? CheckWhole(subject, 1, kMostMemory)
                   : CheckInteger(subject);
    case Shape::Flag:
        return CheckFlag(subject);
    case Shape::Number:
        return CheckNumber(subject);
    case Shape::Object:
        if (!value.IsObject())
        {
            subject.AddWrongType("an object");
        }
        return;
    case Shape::Array:
    case Shape::Ids:
        CheckArray(subject, rule);
        if (rule.shape == Shape::Ids && value.kind == Kind::UInt)
        {
            findings.AddFix({&visit.object, std::string(rule.name), value.ReadUInt(), true});
        }
        return;
    case Shape::First:
        return CheckFirst(subject, rule);
    case Shape::ByType:
        return CheckDependent(visit, rule, subject);
    }
}

std::string Describe(const Value& value)
{
    switch (value.kind)
    {
    case Kind::Null:
        return "null";
    case Kind::Bool:
    case Kind::Int:
    case Kind::UInt:
    case Kind::Double:
        return Written(value);
    case Kind::String:
        return value.text.size() <= kLongestShown ? "the text \"" + value.text + "\"" : "a text";
    case Kind::Array:
        return "an array";
    case Kind::Object:
        break;
    }
    return "an object";
}

int VectorWidthOf(const Value& parameter)
{
    return VectorWidth(TypeOf(parameter, JSON_ParameterType, Words::ParameterTypes));
}

} // namespace vell::check
