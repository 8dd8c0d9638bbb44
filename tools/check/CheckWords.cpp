// VELL: data-driven hierarchical state machines.
// tools/check/CheckWords.cpp: words that the vocabulary does not have.
#include "tools/check/Check.h"
#include "tools/check/MemberTable.h"
#include "tools/check/Nearest.h"
#include "tools/check/Walk.h"

#include <string>

namespace vell::check
{
namespace
{

using source::Value;

/// Lists of up to this many words are told whole when no word is near.
constexpr std::size_t kShortList = 10;

Code CodeOf(Words words)
{
    switch (words)
    {
    case Words::Builders:
        return Code::UnknownBuilder;
    case Words::Operators:
        return Code::UnknownOperator;
    case Words::ParameterTypes:
        return Code::UnknownParameterType;
    case Words::ConditionTypes:
        return Code::UnknownConditionType;
    case Words::Inputs:
        return Code::UnknownInput;
    case Words::MachineTypes:
        return Code::UnknownMachineType;
    case Words::Connectors:
        return Code::UnknownConnector;
    case Words::AttributeTypes:
    case Words::None:
        break;
    }
    return Code::UnknownAttributeType;
}

/// What other programs call the words. A word that the list does not have is passed over.
constexpr const char* kOtherWords[][2] = {
    {"double", "float"},
    {"number", "float"},
    {"real", "float"},
    {"string", "message"},
    {"trigger", "message"},
    {"event", "message"},
    {"vector2", "float2"},
    {"vector3", "float3"},
    {"vector4", "float4"},
    {"state", "generic"},
    {"simple", "generic"},
    {"clip", "animClip"},
    {"animation", "animClip"},
    {"level", "substate"},
    {"any", "global"},
    {"==", "equal"},
    {"=", "equal"},
    {"!=", "notEqual"},
    {"<>", "notEqual"},
    {"<", "less"},
    {"<=", "lessOrEqual"},
    {">", "greater"},
    {">=", "greaterOrEqual"},
    {"between", "range"},
    {"float", "double"},
    {"string", "QString"},
    {"text", "QString"},
};

std::string HintFor(Words words, const std::string& wrong)
{
    for (const auto& other : kOtherWords)
    {
        if (wrong == other[0] && NumberOf(words, other[1]) != 0)
        {
            return std::string("did you mean '") + other[1] + "'?";
        }
    }
    const std::vector<std::string_view>& list = WordsOf(words);
    std::string nearest = DidYouMean(wrong, list);
    if (!nearest.empty())
    {
        return nearest;
    }
    if (list.size() > kShortList)
    {
        return "for the list, see: vell check --explain " + NameOf(CodeOf(words));
    }
    std::string all = "expected ";
    for (std::size_t i = 0; i < list.size(); ++i)
    {
        all += i == 0 ? "'" : i + 1 == list.size() ? "' or '" : "', '";
        all += list[i];
    }
    return all + "'";
}

void CheckWord(const MemberRule& rule, const Value& value, Findings& findings)
{
    const int number = NumberOf(rule.words, value.text);
    if (number == 0 && rule.words == Words::ConditionTypes &&
        NumberOf(Words::ParameterTypes, value.text) != 0)
    {
        findings.Add(Code::UnknownConditionType, value.span,
                     "a condition cannot test a parameter of type '" + value.text + "'",
                     HintFor(rule.words, ""));
    }
    else if (number == 0)
    {
        findings.Add(CodeOf(rule.words), value.span,
                     std::string("unknown ") + TitleOf(rule.words) + " '" + value.text + "'",
                     HintFor(rule.words, value.text));
        findings.hasLostNodes = findings.hasLostNodes || rule.words == Words::Builders;
    }
    else if (rule.words == Words::ParameterTypes && number == DURMBaseLib::PARAM_Text)
    {
        findings.Add(Code::TextParameter, value.span, "do not use the type '" + value.text + "'",
                     "write 'message'");
    }
}

} // namespace

void CheckWords(const Document& document, Findings& findings)
{
    VisitObjects(document.root,
                 [&findings](const Visit& visit)
                 {
                     for (const source::Member& member : visit.object.members)
                     {
                         const MemberRule* rule =
                             member.value.IsString() ? FindRule(visit, member.name) : nullptr;
                         if (rule != nullptr && rule->words != Words::None && !member.isRepeated)
                         {
                             CheckWord(*rule, member.value, findings);
                         }
                     }
                 });
}

} // namespace vell::check
