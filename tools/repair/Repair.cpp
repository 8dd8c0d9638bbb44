// VELL: data-driven hierarchical state machines.
// tools/repair/Repair.cpp: from fixes to edits of the text.
#include "tools/repair/Repair.h"

#include <durm/DURMBaseLib.h>

#include "tools/check/Check.h"
#include "tools/check/DocumentModel.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace vell::repair
{
namespace
{

using namespace DURMBaseLib;
using check::Fix;
using source::Member;
using source::Value;

constexpr int kMostRounds = 10;

/// Where a missing member goes: behind this one, or at the end of its object.
std::string NeighbourOf(const std::string& member)
{
    constexpr std::pair<__JSONTYPES__, __JSONTYPES__> kNeighbours[] = {
        {JSON_ID, JSON_Name},
        {JSON_ParentID, JSON_ID},
        {JSON_Children, JSON_BuilderType},
        {JSON_TransitionSource, JSON_BuilderType}};
    for (const auto& [missing, neighbour] : kNeighbours)
    {
        if (member == GetJsonName(missing))
        {
            return GetJsonName(neighbour);
        }
    }
    return "";
}

unsigned int CrcOf(std::string_view name)
{
    std::string text(name);
    return ConvertStringToCRC(text);
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

/// Writes what is inserted as its neighbours are written.
class Style
{
public:
    explicit Style(const std::string& newBytes) : bytes(newBytes)
    {
    }

    std::string Piece(std::uint32_t begin, std::uint32_t end) const
    {
        return bytes.substr(begin, end - begin);
    }

    /// Gives what is between two members, beside the one at `index`.
    std::string BetweenMembers(const Value& object, std::size_t index) const
    {
        const std::vector<Member>& members = object.members;
        const Member& member = members[index];
        if (index + 1 < members.size())
        {
            return Separator(member.value.span.end.offset,
                             members[index + 1].nameSpan.begin.offset);
        }
        if (index > 0)
        {
            return Separator(members[index - 1].value.span.end.offset,
                             member.nameSpan.begin.offset);
        }
        return AfterBracket(object, member.nameSpan.begin.offset, ", ");
    }

    /// Gives what is between a name and its value.
    std::string Colon(const Member& member) const
    {
        const std::string piece = Piece(member.nameSpan.end.offset, member.value.span.begin.offset);
        return piece.find_first_not_of(" \t\r\n:") == std::string::npos ? piece : ": ";
    }

    /// Gives what is between two elements; `isCompact` when the document has no blanks.
    std::string BetweenElements(const Value& array, bool isCompact) const
    {
        const std::vector<Value>& elements = array.elements;
        if (elements.size() > 1)
        {
            return Separator(elements[elements.size() - 2].span.end.offset,
                             elements.back().span.begin.offset);
        }
        return AfterBracket(array, elements[0].span.begin.offset, isCompact ? "," : ", ");
    }

private:
    /// A comma with the blanks around it; without what else is there, such as a comment.
    std::string Separator(std::uint32_t begin, std::uint32_t end) const
    {
        const std::string piece = Piece(begin, end);
        return piece.find_first_not_of(" \t\r\n,") == std::string::npos ? piece : ", ";
    }

    /// Gives a separator for what has only one item: on a line of its own, or `usual`.
    std::string AfterBracket(const Value& container, std::uint32_t item,
                             const std::string& usual) const
    {
        const std::string piece = Piece(container.span.begin.offset + 1, item);
        const bool isSpread = IsBlank(piece) && piece.find('\n') != std::string::npos;
        return isSpread ? "," + piece : usual;
    }

    const std::string& bytes;
};

/// Collects fixes by object and member, and turns them into edits.
class Editor
{
public:
    explicit Editor(const source::Text& text) : style(text.bytes), model(text.root)
    {
        for (const check::NodeModel& node : model.nodes)
        {
            for (const check::ConditionModel& condition : node.conditions)
            {
                if (condition.parameter != nullptr)
                {
                    conditions[condition.parameter->value].push_back(condition.value);
                }
            }
        }
    }

    void Add(const Fix& fix)
    {
        if (fix.object == nullptr || !fix.object->IsObject() || fix.object->members.empty())
        {
            return;
        }
        Target& target = targets[{fix.object->span.begin.offset, fix.member}];
        target.object = fix.object;
        std::set<unsigned int>& ids = fix.isElement ? target.elements : target.values;
        if (ids.insert(fix.id).second && fix.isElement)
        {
            target.order.push_back(fix.id);
        }
        FollowParameter(fix);
    }

    /// A parameter that has no number as its id.
    void AddMissingIds()
    {
        for (const check::ParameterModel& parameter : model.parameters)
        {
            const Value* id = check::Find(*parameter.value, JSON_ID);
            const bool hasNumber = id != nullptr && id->IsNumber();
            if (!hasNumber && !parameter.name.empty() &&
                model.FindParameterByName(parameter.name) == &parameter)
            {
                Add({parameter.value, GetJsonName(JSON_ID), CrcOf(parameter.name)});
            }
        }
    }

    std::vector<Edit> Edits()
    {
        std::vector<Edit> edits;
        for (const auto& [key, target] : targets)
        {
            AddEdit(key.second, target, &edits);
        }
        std::stable_sort(edits.begin(), edits.end(),
                         [](const Edit& left, const Edit& right)
                         {
                             return left.begin < right.begin;
                         });
        return edits;
    }

private:
    /// What one member of one object is to be.
    struct Target
    {
        const Value* object = nullptr;
        std::set<unsigned int> values;
        std::set<unsigned int> elements;
        std::vector<unsigned int> order; ///< of the elements
    };

    /// The conditions of a parameter that gets another id.
    void FollowParameter(const Fix& fix)
    {
        if (fix.member != GetJsonName(JSON_ID))
        {
            return;
        }
        const auto found = conditions.find(fix.object);
        if (found != conditions.end())
        {
            for (const Value* condition : found->second)
            {
                Add({condition, GetJsonName(JSON_ConditionParameter), fix.id});
            }
        }
    }

    void AddEdit(const std::string& name, const Target& target, std::vector<Edit>* edits) const
    {
        const Value* value = target.object->Find(name);
        if (!target.elements.empty())
        {
            value == nullptr ? Insert(*target.object, name, "[" + ListOf(target) + "]", edits)
                             : Append(*target.object, *value, target, edits);
        }
        else if (target.values.size() == 1)
        {
            const std::string text = std::to_string(*target.values.begin());
            value == nullptr
                ? Insert(*target.object, name, text, edits)
                : edits->push_back({value->span.begin.offset, value->span.end.offset, text});
        }
    }

    bool IsCompact(const Value& object) const
    {
        return style.BetweenMembers(object, 0) == "," && object.members.size() > 1;
    }

    static std::string ListOf(const Target& target)
    {
        std::string list;
        for (const unsigned int id : target.order)
        {
            list += (list.empty() ? "" : ", ") + std::to_string(id);
        }
        return list;
    }

    void Insert(const Value& object, const std::string& name, const std::string& text,
                std::vector<Edit>* edits) const
    {
        const std::string neighbour = NeighbourOf(name);
        std::size_t index = object.members.size() - 1;
        for (std::size_t i = object.members.size(); i-- > 0;)
        {
            index = object.members[i].name == neighbour ? i : index;
        }
        const Member& member = object.members[index];
        const std::uint32_t at = member.value.span.end.offset;
        edits->push_back({at, at,
                          style.BetweenMembers(object, index) + "\"" + name + "\"" +
                              style.Colon(member) + text});
    }

    void Append(const Value& object, const Value& array, const Target& target,
                std::vector<Edit>* edits) const
    {
        if (!array.IsArray())
        {
            if (array.IsNumber())
            {
                edits->push_back(
                    {array.span.begin.offset, array.span.end.offset, "[" + ListOf(target) + "]"});
            }
            return;
        }
        if (array.elements.empty())
        {
            const std::uint32_t begin = array.span.begin.offset + 1;
            const std::uint32_t end = array.span.end.offset - 1;
            edits->push_back(
                {begin, IsBlank(style.Piece(begin, end)) ? end : begin, ListOf(target)});
            return;
        }
        const std::string separator = style.BetweenElements(array, IsCompact(object));
        std::string text;
        for (const unsigned int id : target.order)
        {
            text += separator + std::to_string(id);
        }
        const std::uint32_t at = array.elements.back().span.end.offset;
        edits->push_back({at, at, text});
    }

    const Style style;
    const check::DocumentModel model;
    std::unordered_map<const Value*, std::vector<const Value*>> conditions; ///< by parameter
    std::map<std::pair<std::uint32_t, std::string>, Target> targets;
};

/// Finds names and texts of digits where an id belongs, and writes the id.
class NameEditor
{
public:
    explicit NameEditor(const source::Text& text) : model(text.root)
    {
        for (const check::NodeModel& node : model.nodes)
        {
            const bool isOther = !nodesByName.emplace(node.name, node.id).second;
            nodesByName[node.name] = isOther ? 0 : node.id;
        }
    }

    std::vector<Edit> Edits()
    {
        if (model.head != nullptr)
        {
            ReplaceNodes(*model.head, {JSON_HeadEnterNode, JSON_HeadSubstateRoot});
        }
        for (const check::NodeModel& node : model.nodes)
        {
            ReplaceNodes(*node.value, {JSON_ParentID, JSON_TransitionSource, JSON_TransitionTarget,
                                       JSON_SubstateEnter, JSON_SubstateExit, JSON_EntryTarget});
            for (const check::ChildModel& child : node.children)
            {
                ReplaceNode(child.value);
            }
            for (const check::ConditionModel& condition : node.conditions)
            {
                ReplaceParameter(check::Find(*condition.value, JSON_ConditionParameter));
            }
        }
        std::sort(edits.begin(), edits.end(),
                  [](const Edit& left, const Edit& right)
                  {
                      return left.begin < right.begin;
                  });
        return std::move(edits);
    }

private:
    void ReplaceNodes(const Value& object, std::initializer_list<__JSONTYPES__> members)
    {
        for (const __JSONTYPES__ member : members)
        {
            ReplaceNode(check::Find(object, member));
        }
    }

    void ReplaceNode(const Value* value)
    {
        if (value != nullptr && value->IsString() && !value->text.empty())
        {
            const auto found = nodesByName.find(value->text);
            const unsigned int digits = DigitsOf(value->text);
            const bool isNode = found == nodesByName.end() && model.FindNode(digits) != nullptr;
            Replace(*value, found != nodesByName.end() ? found->second : isNode ? digits : 0);
        }
    }

    void ReplaceParameter(const Value* value)
    {
        if (value != nullptr && value->IsString() && !value->text.empty())
        {
            const unsigned int digits = DigitsOf(value->text);
            const bool isName = model.FindParameterByName(value->text) != nullptr;
            const bool isId = !isName && model.FindParameter(digits) != nullptr;
            Replace(*value, isName ? CrcOf(value->text) : isId ? digits : 0);
        }
    }

    /// Gives the number of a text of digits; 0 for any other text.
    static unsigned int DigitsOf(const std::string& text)
    {
        constexpr std::size_t kMostDigits = 9; // fits 32 bits
        const bool isNumber =
            text.size() <= kMostDigits && text.find_first_not_of("0123456789") == std::string::npos;
        return isNumber ? static_cast<unsigned int>(std::stoul(text)) : 0;
    }

    void Replace(const Value& value, unsigned int id)
    {
        if (id != 0)
        {
            edits.push_back({value.span.begin.offset, value.span.end.offset, std::to_string(id)});
        }
    }

    const check::DocumentModel model;
    std::unordered_map<std::string_view, unsigned int> nodesByName; ///< 0 for a name of several
    std::vector<Edit> edits;
};

std::size_t CountErrors(const check::Findings& findings)
{
    return static_cast<std::size_t>(
        std::count_if(findings.list.begin(), findings.list.end(),
                      [](const check::Finding& finding)
                      {
                          return check::GetEntry(finding.code).severity == check::Severity::Error;
                      }));
}

} // namespace

std::vector<Edit> FindEdits(const source::Text& text, const check::Findings& findings)
{
    // They first, and alone: the findings took them for what is missing.
    std::vector<Edit> names = NameEditor(text).Edits();
    if (!names.empty())
    {
        return names;
    }
    Editor editor(text);
    for (const check::Finding& finding : findings.list)
    {
        for (const Fix& fix : finding.fixes)
        {
            editor.Add(fix);
        }
    }
    editor.AddMissingIds();
    return editor.Edits();
}

std::string Apply(const std::string& bytes, const std::vector<Edit>& edits)
{
    std::string result;
    std::size_t at = 0;
    for (const Edit& edit : edits)
    {
        if (edit.begin >= at)
        {
            result.append(bytes, at, edit.begin - at);
            result += edit.text;
            at = edit.end;
        }
    }
    return result.append(bytes, at, std::string::npos);
}

Repaired Repair(const source::Text& text, const std::function<void(check::Findings&)>& leaveOut)
{
    Repaired repaired{text.bytes, 0};
    source::Text current = text;
    check::Findings findings = check::CheckDocument(current);
    for (int round = 0; round < kMostRounds && current.parsed; ++round)
    {
        const std::size_t errors = CountErrors(findings);
        leaveOut(findings);
        const std::vector<Edit> edits = FindEdits(current, findings);
        current = source::ReadText(Apply(repaired.bytes, edits));
        findings = check::CheckDocument(current);
        if (edits.empty() || !current.parsed || CountErrors(findings) > errors)
        {
            break;
        }
        repaired.bytes = current.bytes;
        repaired.edits += edits.size();
    }
    return repaired;
}

} // namespace vell::repair
