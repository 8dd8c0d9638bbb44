// VELL: data-driven hierarchical state machines.
// tools/check/CheckTypes.cpp: conditions against their parameters, operators and operands.
#include <vell/ConditionDef.h>

#include "document/NumberText.h"
#include "tools/check/Rules.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

/// One condition under examination.
struct Case
{
    const NodeModel& transition;
    std::size_t index;

    const ConditionModel& Condition() const
    {
        return transition.conditions[index];
    }
    std::string Title() const
    {
        return TitledCondition(transition, index);
    }
};

std::string TypeName(int type)
{
    const char* name = GetParameterName(static_cast<__ePARAMTYPE__>(type));
    return name == nullptr ? "unknown" : name;
}

bool IsVector(int type)
{
    return type == PARAM_Float2 || type == PARAM_Float3 || type == PARAM_Float4;
}

/// Returns false when the types differ so much that the rest says nothing.
bool CheckConditionType(const Case& condition, Findings& findings)
{
    const ConditionModel& model = condition.Condition();
    if (model.parameter == nullptr || model.parameter->type == 0 || model.type == 0)
    {
        return true;
    }
    const int type = model.parameter->type;
    const bool isText = type == PARAM_Text && model.type == PARAM_Message;
    if (type == model.type || isText)
    {
        return true;
    }
    const std::string what = condition.Title() + " is of the type '" + TypeName(model.type) +
                             "', but " + Named(*model.parameter) + " is of the type '" +
                             TypeName(type) + "'";
    const source::Span place = PlaceOf(*model.value, JSON_ConditionType);
    const source::Span other = PlaceOf(*model.parameter->value, JSON_ParameterType);
    const char* const note = "the type of the parameter";
    if (model.type == PARAM_Float && IsVector(type))
    {
        findings.Add(Code::ConditionOfVector, place, what + ": it tests the first number alone", "",
                     other, note);
        return true;
    }
    const std::string effect =
        model.type == PARAM_Message ? ": it never holds" : ": it compares bytes of another kind";
    const bool hasWord =
        type == PARAM_Bool || type == PARAM_Integer || type == PARAM_Float || type == PARAM_Message;
    findings.Add(Code::ConditionTypeDiffers, place, what + effect,
                 hasWord ? "conditionType should be '" + TypeName(type) + "'" : "", other, note);
    return false;
}

/// Gives the pieces between commas, of which empty ones do not count.
std::vector<std::string> Pieces(const std::string& text)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    while (begin <= text.size())
    {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        if (end > begin)
        {
            pieces.push_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return pieces;
}

/// Tells whether a piece is a number and nothing else but blanks.
bool IsNumberText(const std::string& piece)
{
    char* end = nullptr;
    const double number = std::strtod(piece.c_str(), &end);
    const std::size_t behind = static_cast<std::size_t>(end - piece.c_str());
    return behind != 0 && piece.find_first_not_of(" \t\r\n", behind) == std::string::npos &&
           !std::isnan(number);
}

/// Gives what a text such as "0-2" or "0..2" means as a range, or an empty text.
std::string MeantRange(const std::string& text)
{
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    std::string first(text.c_str(), static_cast<const char*>(end));
    std::string rest = end;
    while (!first.empty() && first.back() == '.')
    {
        first.pop_back();
    }
    std::size_t begin = rest.find_first_not_of(" .;:-/to");
    if (first.empty() || begin == 0 || begin == std::string::npos)
    {
        return "";
    }
    // Of "-2--1" and of "0 to -1" the last dash belongs to the second number.
    begin -= begin > 1 && rest[begin - 1] == '-' ? 1 : 0;
    rest = rest.substr(begin);
    return IsNumberText(rest) ? first + ", " + rest : "";
}

/// A bound of a range, which is to be a value of the condition's type. Returns false when it is
/// not.
bool CheckBound(const Case& condition, const Value& operand, const std::string& piece, double bound,
                Findings& findings)
{
    const int type = condition.Condition().type;
    const std::size_t before = findings.list.size();
    const std::string begin = "'" + piece + "' in the range of " + condition.Title() + " ";
    if (type == PARAM_Integer && (bound < -2147483648.0 || bound > 2147483647.0))
    {
        findings.Add(Code::OperandRange, operand.span,
                     begin + "does not fit 32 bits and counts as " +
                         std::to_string(TruncateToInt(bound)));
    }
    else if (type == PARAM_Integer && std::trunc(bound) != bound)
    {
        findings.Add(Code::OperandFraction, operand.span,
                     begin + "is not a whole number and counts as " +
                         std::to_string(TruncateToInt(bound)) + ": the condition is of the type '" +
                         TypeName(type) + "'");
    }
    else if (type == PARAM_Float && std::isinf(static_cast<float>(bound)))
    {
        findings.Add(Code::OperandRange, operand.span,
                     begin + "does not fit a float and counts as infinite");
    }
    return findings.list.size() == before;
}

/// The first bound that is no value of the condition's type is told.
void CheckBounds(const Case& condition, const Value& operand,
                 const std::vector<std::string>& pieces, const double (&bounds)[2],
                 Findings& findings)
{
    for (std::size_t i = 0; i < 2; ++i)
    {
        if (IsNumberText(pieces[i]) &&
            !CheckBound(condition, operand, pieces[i], bounds[i], findings))
        {
            return;
        }
    }
}

void CheckRange(const Case& condition, const Value& operand, Findings& findings)
{
    const std::string text(ReadText(&operand));
    if (!operand.IsString())
    {
        findings.Add(Code::RangeNotText, operand.span,
                     "the value of " + condition.Title() +
                         " is no text: the range of 'range' is written as \"0, 2\", and without it "
                         "the condition and those behind it are left out");
        return;
    }
    double bounds[2];
    if (!ReadNumbers(text.c_str(), bounds, 2))
    {
        const std::string meant = MeantRange(text);
        findings.Add(Code::RangeText, operand.span,
                     "'" + text.substr(0, 40) + "' is not a range, so " + condition.Title() +
                         " and those behind it are left out",
                     meant.empty() ? "write two numbers, as in \"0, 2\""
                                   : "write \"" + meant + "\"");
        return;
    }
    const std::vector<std::string> pieces = Pieces(text);
    for (std::size_t i = 0; i < 2; ++i)
    {
        if (!IsNumberText(pieces[i]))
        {
            findings.Add(
                Code::RangePiece, operand.span,
                "'" + pieces[i] + "' in the range of " + condition.Title() +
                    " is not a number and counts as " +
                    std::to_string(static_cast<long>(std::isnan(bounds[i]) ? 0 : bounds[i])));
        }
    }
    CheckBounds(condition, operand, pieces, bounds, findings);
    if (pieces.size() > 2)
    {
        findings.Add(Code::RangePiece, operand.span,
                     "the range of " + condition.Title() + " has " + std::to_string(pieces.size()) +
                         " numbers: those behind the second are "
                         "not read");
    }
}

/// What to write where true or false is meant.
std::string AdviseFlag(const Value& operand)
{
    if (operand.IsString() && (operand.text == "true" || operand.text == "false"))
    {
        return "write " + operand.text + " without quotes";
    }
    const bool isFlag =
        (operand.IsNumber() || operand.IsString()) && (operand.text == "0" || operand.text == "1");
    return !isFlag ? "" : operand.text == "1" ? "write true" : "write false";
}

/// The value of a condition with another operator than `range`.
void CheckValue(const Case& condition, const Value& operand, Findings& findings)
{
    const int type = condition.Condition().type;
    const std::string begin = "the value of " + condition.Title() + " ";
    const std::string ofType = ": the condition is of the type '" + TypeName(type) + "'";
    switch (type)
    {
    case PARAM_Bool:
        if (!operand.IsBool())
        {
            findings.Add(Code::OperandType, operand.span,
                         begin + "is neither true nor false and counts as false" + ofType,
                         AdviseFlag(operand));
        }
        return;
    case PARAM_Message:
        if (!operand.IsString())
        {
            findings.Add(Code::OperandType, operand.span,
                         begin + "is no text, so it and those behind it are left out" + ofType);
        }
        else if (ReadText(&operand).empty())
        {
            findings.Add(Code::OperandEmpty, operand.span,
                         begin + "is an empty text, so it and those behind it are left out",
                         "no condition can test for a message that was not fired");
        }
        return;
    default:
        break;
    }
    if (!operand.IsNumber())
    {
        findings.Add(Code::OperandType, operand.span,
                     begin + "is no number and counts as 0" + ofType,
                     operand.IsString() && Pieces(operand.text).size() == 2
                         ? "the operator of a range is 'range'"
                     : operand.IsString() && IsNumberText(operand.text)
                         ? "write " + operand.text + " without quotes"
                         : "");
    }
    else if (type == PARAM_Integer && !operand.IsInteger())
    {
        findings.Add(Code::OperandFraction, operand.span,
                     begin + "is not a whole number and counts as " +
                         std::to_string(static_cast<std::int32_t>(operand.ReadUInt())) + ofType);
    }
    else if (type == PARAM_Integer &&
             (operand.number < -2147483648.0 || operand.number > 2147483647.0))
    {
        findings.Add(Code::OperandRange, operand.span,
                     begin + "does not fit 32 bits and counts as " +
                         std::to_string(static_cast<std::int32_t>(operand.ReadUInt())));
    }
    else if (type == PARAM_Float && std::isinf(static_cast<float>(operand.number)))
    {
        findings.Add(Code::OperandRange, operand.span,
                     begin + "does not fit a float and counts as infinite");
    }
}

void CheckOperator(const Case& condition, Findings& findings)
{
    const ConditionModel& model = condition.Condition();
    const bool isEquality = model.type == PARAM_Bool || model.type == PARAM_Message;
    if (!isEquality || model.evaluation == EvaluateEqual || model.evaluation == 0)
    {
        return;
    }
    const std::string word(ReadText(*model.value, JSON_ConditionEvaluation));
    const bool canTurn = model.type == PARAM_Bool && model.evaluation == EvaluateNotEqual &&
                         model.operand != nullptr && model.operand->IsBool();
    const std::string other =
        canTurn ? (model.operand->boolean ? "write 'equal' and false" : "write 'equal' and true")
                : "write 'equal'";
    findings.Add(Code::OperatorUnread, PlaceOf(*model.value, JSON_ConditionEvaluation),
                 condition.Title() + " has the operator '" + word + "', but a " +
                     TypeName(model.type) + " is always tested for equality",
                 other);
}

} // namespace

void CheckTypes(const DocumentModel& model, Findings& findings)
{
    for (const NodeModel& transition : model.nodes)
    {
        for (std::size_t i = 0; i < transition.conditions.size(); ++i)
        {
            const Case condition{transition, i};
            const ConditionModel& read = condition.Condition();
            if (!CheckConditionType(condition, findings))
            {
                continue;
            }
            CheckOperator(condition, findings);
            const bool isNumber = read.type == PARAM_Integer || read.type == PARAM_Float;
            if (read.operand == nullptr || read.type == 0)
            {
                continue;
            }
            isNumber&& read.evaluation == EvaluateInRange
                ? CheckRange(condition, *read.operand, findings)
                : CheckValue(condition, *read.operand, findings);
        }
    }
}

} // namespace vell::check
