// VELL: data-driven hierarchical state machines.
// tools/author/Elements.cpp: from short forms to the document's objects.
#include "tools/author/Elements.h"

#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "document/DataMembers.h"
#include "document/VectorWidth.h"
#include "tools/author/Expression.h"
#include "tools/check/Check.h"
#include "tools/check/Nearest.h"

#include <algorithm>
#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

constexpr int kMostNumbers = 4; ///< of a vector

std::string_view N(__JSONTYPES__ member)
{
    return GetJsonName(member);
}

/// The word of a source for a parameter type, which messages use too.
std::string TypeTitle(int type)
{
    switch (type)
    {
    case PARAM_Bool:
        return "true or false";
    case PARAM_Integer:
        return "an integer";
    case PARAM_Float:
        return "a float";
    case PARAM_Message:
        return "a message";
    default:
        return "a vector";
    }
}

/// Gives the numbers of a list as the text of a vector; empty when it is not one of `width`.
std::string VectorText(const Value& value, int width)
{
    std::string text;
    for (const Value& number : value.elements)
    {
        if (!number.IsNumber())
        {
            return "";
        }
        text += (text.empty() ? "" : ", ") + number.text;
    }
    return value.elements.size() == static_cast<std::size_t>(width) ? text : "";
}

bool FitsParameter(const Value& value, int type)
{
    switch (type)
    {
    case PARAM_Bool:
        return value.IsBool();
    case PARAM_Integer:
        return value.IsInteger();
    case PARAM_Float:
        return value.IsNumber();
    case PARAM_Message:
        return value.IsString();
    default:
        return !VectorText(value, VectorWidth(type)).empty();
    }
}

std::string DefaultTitle(int type)
{
    const int width = VectorWidth(type);
    return width != 0              ? "a list of " + std::to_string(width) + " numbers"
           : type == PARAM_Integer ? "a whole number"
           : type == PARAM_Float   ? "a number"
           : type == PARAM_Message ? "a text"
                                   : "true or false";
}

Made MakeDefault(const Machine& machine, const Value& value, int type, std::size_t file)
{
    if (VectorWidth(type) == 0)
    {
        return Made::Copy(machine.Bytes(file), value, file);
    }
    const Origin origin{file, value.span, true};
    Made data = Made::Object(origin);
    data.Set(kVectorDataMember, Made::Text(VectorText(value, VectorWidth(type)), origin));
    Made array = Made::Array(origin);
    array.Add(std::move(data));
    return array;
}

/// Makes the conditions of one entry of a `when`.
class ConditionMaker
{
public:
    ConditionMaker(const Machine& newMachine, const Value& entryText, std::size_t entryFile)
        : machine(newMachine),
          text(entryText),
          file(entryFile),
          expression(ReadExpression(entryText.text))
    {
    }

    /// Gives one condition, or two for `not in`; none after a report.
    std::vector<Made> Make()
    {
        if (!expression.error.message.empty())
        {
            const ExpressionError& error = expression.error;
            Report(error.begin, error.end, error.message, error.hint);
            return {};
        }
        const auto found = machine.parametersByName.find(expression.parameter);
        if (found == machine.parametersByName.end())
        {
            ReportUnknown();
            return {};
        }
        parameter = found->second;
        switch (parameter->type)
        {
        case PARAM_Bool:
            MakeFlag();
            break;
        case PARAM_Integer:
        case PARAM_Float:
            MakeNumber();
            break;
        case PARAM_Message:
            MakeText();
            break;
        case 0:
            break;
        default:
            ReportName(Quoted() + " is a vector, which no condition tests",
                       "let the host set a float from it, such as its length");
        }
        return std::move(made);
    }

private:
    Origin Within(std::size_t begin, std::size_t end) const
    {
        return {file, SpanWithin(machine.Bytes(file), text, begin, end), true};
    }

    void Report(std::size_t begin, std::size_t end, const std::string& message,
                const std::string& hint = {}, check::Code code = check::Code::SourceCondition)
    {
        machine.problems.Add(Within(begin, end), message, hint, code);
    }

    void ReportName(const std::string& message, const std::string& hint)
    {
        Report(expression.parameterBegin, expression.parameterEnd, message, hint);
    }

    std::string Quoted() const
    {
        return "'" + expression.parameter + "'";
    }

    void ReportUnknown()
    {
        std::vector<std::string_view> words;
        for (const Parameter& each : machine.parameters)
        {
            words.push_back(each.name);
        }
        std::string hint = check::DidYouMean(expression.parameter, words);
        static constexpr std::string_view kTimers[] = {"time",    "timer",   "after",
                                                       "elapsed", "timeout", "stateTime"};
        if (hint.empty() && std::find(std::begin(kTimers), std::end(kTimers),
                                      expression.parameter) != std::end(kTimers))
        {
            hint = "a machine has no timers: let the host count into a parameter; see 'After a "
                   "time' in docs/recipes.md";
        }
        Report(expression.parameterBegin, expression.parameterEnd, "unknown parameter " + Quoted(),
               hint, check::Code::SourceName);
    }

    void Add(int evaluation, Made value, const std::string& name)
    {
        const Origin origin{file, text.span, true};
        Made condition = Made::Object(origin);
        condition.Set(N(JSON_Name), Made::Text(name, origin));
        condition.Set(N(JSON_ConditionType),
                      Made::Text(WordFor(check::Words::ConditionTypes, parameter->type), origin));
        condition.Set(
            N(JSON_ConditionParameter),
            Made::Id(parameter->id, Within(expression.parameterBegin, expression.parameterEnd)));
        condition.Set(N(JSON_ConditionEvaluation),
                      Made::Text(WordFor(check::Words::Operators, evaluation), OperatorOrigin()));
        Made operand = Made::Object(origin);
        operand.Set(N(JSON_Value), std::move(value));
        condition.Set(N(JSON_ConditionValue), Made::Array(origin)).Add(std::move(operand));
        made.push_back(std::move(condition));
    }

    Origin OperatorOrigin() const
    {
        return expression.operatorEnd > expression.operatorBegin
                   ? Within(expression.operatorBegin, expression.operatorEnd)
                   : Origin{file, text.span, true};
    }

    Origin LiteralOrigin(const Literal& literal) const
    {
        return literal.end > literal.begin ? Within(literal.begin, literal.end)
                                           : Origin{file, text.span, true};
    }

    std::string Name() const
    {
        return NameInExpression(expression.parameter);
    }

    void MakeFlag()
    {
        const bool isAlone = expression.evaluation == 0;
        const bool isComparison =
            expression.evaluation == EvaluateEqual || expression.evaluation == EvaluateNotEqual;
        if (!isAlone && !(isComparison && expression.value.kind == Literal::Kind::Flag))
        {
            Report(expression.operatorBegin, expression.value.end,
                   Quoted() + " is true or false, and can only be tested for that",
                   "write '" + Name() + "' or 'not " + Name() + "'");
            return;
        }
        const bool isEqual = expression.evaluation != EvaluateNotEqual;
        const bool flag = isAlone ? !expression.isNegated : expression.value.flag == isEqual;
        Add(EvaluateEqual, Made::Flag(flag, LiteralOrigin(expression.value)),
            (flag ? "" : "not ") + Name());
    }

    void MakeNumber()
    {
        if (expression.evaluation == 0)
        {
            ReportName(Quoted() + " is " + TypeTitle(parameter->type) +
                           ", so it is compared with a number",
                       "write '" + Name() + (expression.isNegated ? " == 0'" : " > 0'"));
            return;
        }
        if (expression.evaluation == EvaluateInRange)
        {
            MakeRange();
            return;
        }
        if (IsNumber(expression.value))
        {
            const char* const sign = SignOf(expression.evaluation);
            Add(expression.evaluation,
                Made::Raw(expression.value.text, LiteralOrigin(expression.value)),
                Name() + " " + sign + " " + expression.value.text);
        }
    }

    bool IsNumber(const Literal& literal)
    {
        if (literal.kind != Literal::Kind::Number)
        {
            Report(literal.begin, literal.end,
                   Quoted() + " is " + TypeTitle(parameter->type) +
                       ", so it is compared with a number");
            return false;
        }
        if (parameter->type == PARAM_Integer &&
            literal.text.find_first_of(".eE") != std::string::npos)
        {
            Report(literal.begin, literal.end,
                   Quoted() + " is an integer, and '" + literal.text + "' is not");
            return false;
        }
        return true;
    }

    /// Outside of a range is below it or above it.
    void MakeRange()
    {
        const Literal& low = expression.value;
        const Literal& high = expression.high;
        if (!IsNumber(low) || !IsNumber(high))
        {
            return;
        }
        if (expression.isNegated)
        {
            Add(EvaluateLess, Made::Raw(low.text, LiteralOrigin(low)), Name() + " < " + low.text);
            Add(EvaluateGreater, Made::Raw(high.text, LiteralOrigin(high)),
                Name() + " > " + high.text);
            return;
        }
        Add(EvaluateInRange, Made::Text(low.text + ", " + high.text, Within(low.begin, high.end)),
            Name() + " in " + low.text + ".." + high.text);
    }

    void MakeText()
    {
        const bool isText = expression.value.kind == Literal::Kind::Text;
        if (expression.evaluation != EvaluateEqual || !isText || expression.isNegated)
        {
            const std::string value = isText ? expression.value.text : "now";
            const std::size_t end = std::max(expression.value.end, expression.parameterEnd);
            Report(0, end, Quoted() + " is a message, which can only be tested for equality",
                   "write '" + Name() + " == " + TextInExpression(value) + "'");
            return;
        }
        Add(EvaluateEqual, Made::Text(expression.value.text, LiteralOrigin(expression.value)),
            Name() + " == " + TextInExpression(expression.value.text));
    }

    const Machine& machine;
    const Value& text;
    const std::size_t file;
    const Expression expression;
    const Parameter* parameter = nullptr;
    std::vector<Made> made;
};

/// Gives the conditions that the `if` of an object makes, or one that its `members` have to fill.
std::vector<Made> ConditionsOf(const Machine& machine, const Piece& piece, const Origin& where)
{
    if (const Found text = Find(piece, "if"))
    {
        return ConditionMaker(machine, text.member->value, piece.file).Make();
    }
    if (Find(piece, "members"))
    {
        return {Made::Object(where)};
    }
    machine.problems.Add(where, "a condition needs 'if'",
                         "write { \"if\": \"CONDITION\" }, or the text alone");
    return {};
}

/// Adds the conditions of an entry that is an object: an `if`, and what the condition has besides.
void AddConditionObject(const Machine& machine, const Value& entry, std::size_t file, Made* array)
{
    const Piece piece{&entry, file, SourceKind::Condition};
    const Origin where{file, entry.span, true};
    CheckMembers(machine, piece);
    std::vector<Made> made = ConditionsOf(machine, piece, where);
    const Found name = Find(piece, "name");
    const Found id = Find(piece, "id");
    if (made.size() > 1 && (id || Find(piece, "members")))
    {
        machine.problems.Add(where,
                             "'not in' is two conditions, which cannot share an id or members",
                             "write both: 'NAME < LOW' and 'NAME > HIGH'");
    }
    for (Made& condition : made)
    {
        if (name && name->IsString())
        {
            condition.Set(N(JSON_Name), Made::Text(name->text, name.Where()));
        }
        else if (name)
        {
            condition.Remove(N(JSON_Name));
        }
        if (id)
        {
            condition.Set(N(JSON_ID), Made::Id(id->ReadUInt(), id.Where()));
        }
        AddMembers(machine, {piece}, &condition);
        array->Add(std::move(condition));
    }
}

/// Gives the attribute type of a value: that of the vocabulary's words whose values look so.
int AttributeTypeOf(const Value& value)
{
    if (value.IsArray())
    {
        const int width = static_cast<int>(std::min<std::size_t>(value.elements.size(), 5));
        const bool isVector =
            width >= 2 && width <= kMostNumbers && !VectorText(value, width).empty();
        return isVector ? PARAM_Float2 + width - 2 : 0;
    }
    return value.IsBool()      ? PARAM_Bool
           : value.IsInteger() ? PARAM_Integer
           : value.IsNumber()  ? PARAM_Float
           : value.IsString()  ? PARAM_Message
                               : 0;
}

} // namespace

std::string WordFor(check::Words words, int number)
{
    for (const std::string_view word : check::WordsOf(words))
    {
        if (check::NumberOf(words, std::string(word)) == number)
        {
            return std::string(word);
        }
    }
    return "";
}

std::vector<std::string> NumbersIn(const std::string& text)
{
    std::vector<std::string> numbers;
    for (std::size_t begin = 0; begin <= text.size();)
    {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const source::Text number = source::ReadText(text.substr(begin, end - begin));
        if (!number.parsed || !number.root.IsNumber())
        {
            return {};
        }
        numbers.push_back(number.root.text);
        begin = end + 1;
    }
    return numbers;
}

void SetAll(const Machine& machine, const Found& members, Made* object)
{
    for (const source::Member& member : members->members)
    {
        if (member.value.kind == source::Kind::Null)
        {
            object->Remove(member.name);
        }
        else if (!member.isRepeated)
        {
            object->Set(member.name,
                        Made::Copy(machine.Bytes(members.file), member.value, members.file));
        }
    }
}

void AddMembers(const Machine& machine, const std::vector<Piece>& pieces, Made* object)
{
    const Found comment = Find(pieces, check::kCommentMember);
    if (comment)
    {
        object->Set(check::kCommentMember,
                    Made::Copy(machine.Bytes(comment.file), comment.member->value, comment.file));
    }
    if (const Found members = Find(pieces, "members"))
    {
        SetAll(machine, members, object);
    }
}

Made MakeParameter(const Machine& machine, const Parameter& parameter)
{
    const Origin nameOrigin = parameter.origin;
    const Value& value = *parameter.value;
    const Origin origin{parameter.file, value.span, true};
    Made made = Made::Object(nameOrigin);
    made.Set(N(JSON_Name), Made::Text(parameter.name, nameOrigin));
    made.Set(N(JSON_ID), Made::Id(parameter.id, nameOrigin));
    made.Set(N(JSON_ParameterType),
             Made::Text(WordFor(check::Words::ParameterTypes, parameter.type), origin));
    if (!value.IsObject())
    {
        made.Set(N(JSON_ParameterDefault),
                 MakeDefault(machine, value, parameter.type, parameter.file));
        return made;
    }
    const Piece piece{&value, parameter.file, SourceKind::Parameter};
    const Found initial =
        Find(piece, GetParameterName(static_cast<__ePARAMTYPE__>(parameter.type)));
    if (initial && FitsParameter(initial.member->value, parameter.type))
    {
        made.Set(N(JSON_ParameterDefault),
                 MakeDefault(machine, initial.member->value, parameter.type, parameter.file));
    }
    else if (initial)
    {
        machine.problems.Add(initial.Where(), "the default of '" + parameter.name + "' must be " +
                                                  DefaultTitle(parameter.type));
    }
    if (const Found input = Find(piece, "input"))
    {
        made.Set(N(JSON_ParameterAssign), Made::Text(input->text, input.Where()));
    }
    const Found reset = Find(piece, "reset");
    if (reset && reset->boolean)
    {
        made.Set(N(JSON_ParameterResetEachFrame), Made::Flag(true, reset.Where()));
    }
    AddMembers(machine, {piece}, &made);
    return made;
}

Made MakeConditions(const Machine& machine, const Transition& transition)
{
    const Found when = Find(transition.pieces, "when");
    if (!when)
    {
        return Made::Array(transition.origin);
    }
    Made array = Made::Array(when.Where());
    const auto add = [&machine, &when, &array](const Value& entry)
    {
        if (entry.IsObject())
        {
            AddConditionObject(machine, entry, when.file, &array);
            return;
        }
        for (Made& condition : ConditionMaker(machine, entry, when.file).Make())
        {
            array.Add(std::move(condition));
        }
    };
    if (!when->IsArray())
    {
        add(when.member->value);
        return array;
    }
    for (const Value& entry : when->elements)
    {
        add(entry);
    }
    return array;
}

Made MakeAttributes(const Machine& machine, const Found& attributes)
{
    Made array = Made::Array(attributes.Where());
    for (const source::Member& member : attributes->members)
    {
        const Origin origin{attributes.file, member.value.span, true};
        const int type = AttributeTypeOf(member.value);
        if (type == 0)
        {
            machine.problems.Add(origin, "an attribute is true or false, a number, a text, or a "
                                         "list of 2 to 4 numbers");
            continue;
        }
        Made data = Made::Object(origin);
        data.Set(N(JSON_AttributeType),
                 Made::Text(WordFor(check::Words::AttributeTypes, type), origin));
        data.Set(N(JSON_Value),
                 VectorWidth(type) == 0
                     ? Made::Copy(machine.Bytes(attributes.file), member.value, attributes.file)
                     : Made::Text(VectorText(member.value, VectorWidth(type)), origin));
        Made attribute = Made::Object(origin);
        attribute.Set(N(JSON_Name),
                      Made::Text(member.name, {attributes.file, member.nameSpan, true}));
        attribute.Set(kAttribDataMember, Made::Array(origin)).Add(std::move(data));
        array.Add(std::move(attribute));
    }
    return array;
}

} // namespace vell::author
