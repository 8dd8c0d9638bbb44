// VELL: data-driven hierarchical state machines.
// tools/check/Check.cpp: all families in turn, and what a document allows.
#include "tools/check/Check.h"

#include <durm/DURMBaseLib.h>

#include "tools/check/Rules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

namespace vell::check
{
namespace
{

using source::Kind;
using source::Value;

/// An object that allows codes for all within it.
struct Permission
{
    const Value* object;
    const Value* codes;
};

/// Finds the objects with a member "$allow", without recursion.
std::vector<Permission> FindPermissions(const Value& root)
{
    std::vector<Permission> permissions;
    std::vector<const Value*> open{&root};
    while (!open.empty())
    {
        const Value& value = *open.back();
        open.pop_back();
        for (const Value& element : value.elements)
        {
            if (element.IsObject() || element.IsArray())
            {
                open.push_back(&element);
            }
        }
        for (const source::Member& member : value.members)
        {
            if (member.value.IsArray() && member.name == kAllowMember)
            {
                permissions.push_back({&value, &member.value});
            }
            else if (member.value.IsObject() || member.value.IsArray())
            {
                open.push_back(&member.value);
            }
        }
    }
    return permissions;
}

bool Allows(const Permission& permission, const Finding& finding)
{
    const source::Span& span = permission.object->span;
    if (finding.where.begin.offset < span.begin.offset ||
        finding.where.begin.offset >= span.end.offset)
    {
        return false;
    }
    const std::vector<Value>& codes = permission.codes->elements;
    return std::any_of(codes.begin(), codes.end(),
                       [&finding](const Value& code)
                       {
                           const CodeEntry* entry =
                               code.IsString() ? FindEntry(code.text) : nullptr;
                           return entry != nullptr && entry->code == finding.code;
                       });
}

void LeaveOutAllowed(const Value& root, Findings& findings)
{
    const std::vector<Permission> permissions = FindPermissions(root);
    if (permissions.empty())
    {
        return;
    }
    const auto isAllowed = [&permissions](const Finding& finding)
    {
        return std::any_of(permissions.begin(), permissions.end(),
                           [&finding](const Permission& permission)
                           {
                               return Allows(permission, finding);
                           });
    };
    std::vector<Finding>& list = findings.list;
    list.erase(std::remove_if(list.begin(), list.end(), isAllowed), list.end());
}

bool IsMistakeOfValue(Code code)
{
    return code == Code::WrongType || code == Code::OutOfRange || code == Code::Fraction;
}

/// Of what nodes refer to and mean, and of the memory that they need.
bool IsAboutNodes(Code code)
{
    return (code >= Code::TargetAbsent && code < Code::ConditionTypeDiffers &&
            code != Code::NodesAtRoot && code != Code::NoLayers) ||
           (code >= Code::StateUnreached && code <= Code::MemoryTooLarge);
}

/// Without parameters, each condition tests one that does not exist.
bool HasParameters(const source::Value& root)
{
    const Value* parameters = root.Find(DURMBaseLib::GetJsonName(DURMBaseLib::JSON_Parameters));
    return parameters != nullptr && parameters->IsArray();
}

/// Leaves out what only follows from the wrong type of a value, or from nodes that are lost by
/// another mistake.
void LeaveOutConsequences(const source::Value& root, Findings& findings)
{
    const bool hasParameters = HasParameters(root);
    std::set<std::uint32_t> wrong;
    for (const Finding& finding : findings.list)
    {
        if (IsMistakeOfValue(finding.code))
        {
            wrong.insert(finding.where.begin.offset);
        }
    }
    const auto isConsequence = [&findings, &wrong, hasParameters](const Finding& finding)
    {
        const bool isError = GetEntry(finding.code).severity == Severity::Error;
        return (findings.hasLostNodes && IsAboutNodes(finding.code)) ||
               (findings.hasMisspeltList && !isError && IsAboutNodes(finding.code)) ||
               (!hasParameters && finding.code == Code::ConditionParameter) ||
               (finding.code >= Code::NodeWithoutId && finding.code < Code::MemoryTooSmall &&
                wrong.count(finding.where.begin.offset) != 0);
    };
    std::vector<Finding>& list = findings.list;
    list.erase(std::remove_if(list.begin(), list.end(), isConsequence), list.end());
}

} // namespace

Findings CheckDocument(const source::Text& text)
{
    const Document document{text, text.root};
    Findings findings;
    CheckText(document, findings);
    if (text.isWhole)
    {
        CheckMembers(document, findings);
        CheckWords(document, findings);
        CheckRules(document, findings);
        LeaveOutConsequences(document.root, findings);
        LeaveOutAllowed(document.root, findings);
    }
    std::stable_sort(findings.list.begin(), findings.list.end(),
                     [](const Finding& left, const Finding& right)
                     {
                         return left.where.begin.offset < right.where.begin.offset;
                     });
    return findings;
}

} // namespace vell::check
