// VELL: data-driven hierarchical state machines.
// tools/author/Members.cpp: the members of an object, held to the table.
#include "tools/author/Machine.h"
#include "tools/check/Nearest.h"

#include <algorithm>
#include <string>

namespace vell::author
{
namespace
{

using source::Kind;
using source::Member;
using source::Value;

bool AreAll(const Value& array, bool (Value::*is)() const)
{
    return array.IsArray() && std::all_of(array.elements.begin(), array.elements.end(),
                                          [is](const Value& element)
                                          {
                                              return (element.*is)();
                                          });
}

bool IsConditions(const Value& value)
{
    const auto isCondition = [](const Value& element)
    {
        return element.IsString() || element.IsObject();
    };
    return isCondition(value) ||
           (value.IsArray() &&
            std::all_of(value.elements.begin(), value.elements.end(), isCondition));
}

bool HasShape(const Value& value, SourceShape shape)
{
    switch (shape)
    {
    case SourceShape::Text:
    case SourceShape::Words:
        return value.IsString();
    case SourceShape::TextOrNull:
        return value.IsString() || value.kind == Kind::Null;
    case SourceShape::Name:
    case SourceShape::Builder:
        return value.IsString() || value.kind == Kind::UInt;
    case SourceShape::Integer:
        return value.IsInteger();
    case SourceShape::Id:
        return value.kind == Kind::UInt && value.bits <= 0xffffffffu;
    case SourceShape::Number:
        return value.IsNumber();
    case SourceShape::Flag:
        return value.IsBool();
    case SourceShape::Texts:
        return AreAll(value, &Value::IsString);
    case SourceShape::Nodes:
    case SourceShape::Transitions:
        return AreAll(value, &Value::IsObject);
    case SourceShape::Conditions:
        return IsConditions(value);
    case SourceShape::Members:
    case SourceShape::States:
    case SourceShape::Parameters:
    case SourceShape::Attributes:
    case SourceShape::EndNode:
        return value.IsObject();
    case SourceShape::GlobalNode:
        return value.IsObject() || value.kind == Kind::Null;
    case SourceShape::ExitNode:
        return value.IsObject() || value.IsString();
    case SourceShape::Value:
    case SourceShape::Any:
        break;
    }
    return true;
}

/// What people write for a member that has another name here.
const char* OtherName(std::string_view name)
{
    struct Synonym
    {
        std::string_view wrong;
        const char* right;
    };
    static constexpr Synonym kSynonyms[] = {
        {"transitions", "go"},
        {"target", "to"},
        {"condition", "when"},
        {"conditions", "when"},
        {"if", "when"},
        {"switchArgument", "blend"},
        {"duration", "blend"},
        {"initial", "start"},
        {"initialState", "start"},
        {"children", "states"},
        {"clipName", "clip"},
        {"animation", "clip"},
        {"scriptName", "script"},
        {"resetEachFrame", "reset"},
        {"assign", "input"},
        {"machineType", "type"},
        {"global", "interrupts"},
        {"anyState", "interrupts"},
        {"substateRoot", "start"},
        {"entryTarget", "next"},
        {"connectorType", "connector"},
        {"final", "ends"},
        {"title", "name"},
    };
    for (const Synonym& synonym : kSynonyms)
    {
        if (synonym.wrong == name)
        {
            return synonym.right;
        }
    }
    return nullptr;
}

std::string HintFor(SourceKind kind, std::string_view name)
{
    const char* const other = OtherName(name);
    if (other != nullptr && FindRule(kind, other) != nullptr)
    {
        return std::string("write '") + other + "'";
    }
    std::vector<std::string_view> words;
    for (const SourceRule& rule : RulesOf(kind))
    {
        words.push_back(rule.name);
    }
    const std::string near = check::DidYouMean(name, words);
    const std::string owners = OwnersOf(name);
    if (near.empty() && !owners.empty())
    {
        return "it belongs to " + owners;
    }
    return near.empty() ? "a member for the host goes into 'members'" : near;
}

void CheckWord(const Machine& machine, const Origin& where, const SourceRule& rule,
               const Value& value)
{
    if (check::NumberOf(rule.words, value.text) == 0)
    {
        machine.problems.Add(
            where, std::string("unknown ") + check::TitleOf(rule.words) + " '" + value.text + "'",
            check::DidYouMean(value.text, check::WordsOf(rule.words)));
    }
}

void CheckMember(const Machine& machine, const Piece& piece, const Member& member)
{
    const Origin nameOrigin{piece.file, member.nameSpan, true};
    const Origin where{piece.file, member.value.span, true};
    const SourceRule* const rule = FindRule(piece.kind, member.name);
    const std::string name = "'" + member.name + "'";
    if (rule == nullptr)
    {
        machine.problems.Add(nameOrigin,
                             TitleOf(piece.kind) + std::string(" has no member ") + name,
                             HintFor(piece.kind, member.name));
    }
    else if (!HasShape(member.value, rule->shape))
    {
        const bool isSingle = rule->shape == SourceShape::Transitions && member.value.IsObject();
        machine.problems.Add(where, name + " must be " + DescriptionOf(*rule),
                             isSingle ? "put it into [ ]" : "");
    }
    else if (rule->words != check::Words::None && member.value.IsString())
    {
        CheckWord(machine, where, *rule, member.value);
    }
}

} // namespace

Found Find(const Piece& piece, std::string_view name)
{
    const SourceRule* const rule = FindRule(piece.kind, name);
    const Member* const member = piece.value == nullptr ? nullptr : piece.value->FindMember(name);
    const bool isGood =
        rule != nullptr && member != nullptr && HasShape(member->value, rule->shape);
    return {isGood ? member : nullptr, piece.file};
}

Found Find(const std::vector<Piece>& pieces, std::string_view name)
{
    for (const Piece& piece : pieces)
    {
        if (const Found found = Find(piece, name))
        {
            return found;
        }
    }
    return {};
}

std::string TextOf(const Found& found)
{
    return found ? found->text : std::string();
}

void CheckMembers(const Machine& machine, const Piece& piece)
{
    for (const Member& member : piece.value->members)
    {
        if (!member.isRepeated)
        {
            CheckMember(machine, piece, member);
        }
    }
}

} // namespace vell::author
