// VELL: data-driven hierarchical state machines.
// tools/check/CheckMembers.cpp: members that are unknown, missing, or have no place there.
#include "tools/check/Check.h"
#include "tools/check/CheckValue.h"
#include "tools/check/MemberTable.h"
#include "tools/check/Nearest.h"
#include "tools/check/Walk.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vell::check
{
namespace
{

using source::Member;
using source::Value;
using namespace DURMBaseLib;

std::vector<std::string_view> NamesOf(const Visit& visit)
{
    std::vector<std::string_view> names;
    for (const MemberRule& rule : RulesOf(visit.kind))
    {
        names.emplace_back(rule.name);
    }
    if (visit.kind == ObjectKind::Node)
    {
        for (const MemberRule& rule : RulesOfBuilder(visit.builder))
        {
            names.emplace_back(rule.name);
        }
    }
    return names;
}

/// A node whose builder is a host's own, which may read any member.
bool IsHostNode(const Visit& visit)
{
    return visit.kind == ObjectKind::Node && visit.builder != 0 &&
           !IsStandardBuilder(visit.builder);
}

/// A member that is not the machine's business.
bool IsRemark(const Visit& visit, const std::string& name)
{
    return name == kCommentMember || name == kAllowMember ||
           (name == kSchemaMember && visit.kind == ObjectKind::Root);
}

/// The ids of nodes and parameters, and the conditions of transitions, are the business of the
/// families of ids and references.
bool IsOfOtherFamily(const Visit& visit, const MemberRule& rule)
{
    const std::string_view name = rule.name;
    return (name == GetJsonName(JSON_ID) &&
            (visit.kind == ObjectKind::Node || visit.kind == ObjectKind::Parameter)) ||
           (name == GetJsonName(JSON_Conditions) && visit.builder == BUILDER_Transition);
}

bool IsNearest(std::string_view name, const std::vector<std::string_view>& nearest)
{
    return !nearest.empty() && nearest[0] == name;
}

/// Finds the unknown member that is perhaps the missing one, misspelt.
const Member* FindMisspelt(const Visit& visit, std::string_view name)
{
    for (const Member& member : visit.object.members)
    {
        if (!member.isRepeated && FindRule(visit, member.name) == nullptr &&
            !IsRemark(visit, member.name) && OwnersOf(member.name).empty() &&
            IsNearest(name, FindNearest(member.name, NamesOf(visit))))
        {
            return &member;
        }
    }
    return nullptr;
}

/// Tells whether the unknown member is perhaps a missing one, which is then reported in its place.
bool IsMissingOne(const Visit& visit, const Member& member)
{
    const auto names = [&visit, &member](const MemberRules& rules)
    {
        return std::any_of(rules.begin(), rules.end(),
                           [&visit, &member](const MemberRule& rule)
                           {
                               return rule.isRequired && !IsOfOtherFamily(visit, rule) &&
                                      visit.object.Find(rule.name) == nullptr &&
                                      FindMisspelt(visit, rule.name) == &member;
                           });
    };
    return names(RulesOf(visit.kind)) ||
           (visit.kind == ObjectKind::Node && names(RulesOfBuilder(visit.builder)));
}

void CheckUnknown(const Visit& visit, const Member& member, Findings& findings)
{
    if (IsRemark(visit, member.name) || IsHostNode(visit))
    {
        return;
    }
    const std::string owners = OwnersOf(member.name);
    if (!owners.empty())
    {
        // Of a node without a builder nobody knows what it should have. Nodes at the root are the
        // business of the family of references.
        const bool isRoot = visit.kind == ObjectKind::Root;
        if ((visit.kind != ObjectKind::Node || visit.builder != 0) &&
            !(isRoot && member.name == GetJsonName(JSON_Nodes)))
        {
            findings.Add(Code::MisplacedMember, member.nameSpan,
                         NameOf(visit) + " does not read the member '" + member.name + "'",
                         "it belongs in " + owners);
        }
        return;
    }
    if (!IsMissingOne(visit, member))
    {
        findings.Add(Code::UnknownMember, member.nameSpan, "unknown member '" + member.name + "'",
                     DidYouMean(member.name, NamesOf(visit)));
        const std::vector<std::string_view> nearest = FindNearest(member.name, NamesOf(visit));
        findings.hasMisspeltList =
            findings.hasMisspeltList ||
            (member.value.IsArray() && (IsNearest(GetJsonName(JSON_Children), nearest) ||
                                        IsNearest(GetJsonName(JSON_Global), nearest)));
    }
}

/// The place of an object's opening bracket.
source::Span OpeningOf(const Value& object)
{
    source::Span span{object.span.begin, object.span.begin};
    ++span.end.column;
    ++span.end.offset;
    return span;
}

/// A member without which nodes are lost.
bool LeadsToNodes(std::string_view name)
{
    return name == GetJsonName(JSON_Layers) || name == GetJsonName(JSON_Nodes) ||
           name == GetJsonName(JSON_BuilderType);
}

void AddMissing(const Visit& visit, std::string_view name, Findings& findings)
{
    const Member* misspelt = FindMisspelt(visit, name);
    const std::string message = NameOf(visit) + " has no member '" + std::string(name) + "'";
    if (misspelt == nullptr)
    {
        findings.Add(Code::MissingMember, OpeningOf(visit.object), message);
    }
    else
    {
        findings.Add(Code::MissingMember, misspelt->nameSpan, message,
                     "did you misspell it '" + misspelt->name + "'?");
    }
    findings.hasLostNodes = findings.hasLostNodes || LeadsToNodes(name);
}

void CheckRequired(const Visit& visit, const MemberRules& rules, Findings& findings)
{
    for (const MemberRule& rule : rules)
    {
        if (rule.isRequired && !IsOfOtherFamily(visit, rule) &&
            visit.object.Find(rule.name) == nullptr)
        {
            AddMissing(visit, rule.name, findings);
        }
    }
}

void CheckVectorDefault(const Visit& visit, Findings& findings)
{
    if (visit.kind == ObjectKind::Parameter && VectorWidthOf(visit.object) != 0 &&
        visit.object.Find(GetJsonName(JSON_ParameterDefault)) == nullptr)
    {
        AddMissing(visit, GetJsonName(JSON_ParameterDefault), findings);
    }
}

/// A member that is read only when another one is there.
void CheckPair(const Visit& visit, __JSONTYPES__ member, __JSONTYPES__ other, Findings& findings)
{
    const Member* found = visit.object.FindMember(GetJsonName(member));
    if (found != nullptr && visit.object.Find(GetJsonName(other)) == nullptr)
    {
        findings.Add(Code::MemberWithoutOther, found->nameSpan,
                     std::string("'") + GetJsonName(member) + "' is read only beside '" +
                         GetJsonName(other) + "'");
    }
}

void CheckPairs(const Visit& visit, Findings& findings)
{
    if (visit.builder == BUILDER_Transition)
    {
        CheckPair(visit, JSON_TransitionTagArgument, JSON_TransitionTag, findings);
    }
    if (visit.builder == BUILDER_AnimClip)
    {
        CheckPair(visit, JSON_ClipSecondaryB, JSON_ClipSecondaryA, findings);
    }
}

void CheckVersion(const Visit& visit, Findings& findings)
{
    if (visit.kind != ObjectKind::Head)
    {
        return;
    }
    const Value* version = visit.object.Find(GetJsonName(JSON_HeadVersion));
    if (version == nullptr || !version->IsInteger())
    {
        return;
    }
    for (const Member& member : visit.object.members)
    {
        const MemberRule* rule = FindRule(visit, member.name);
        // What a machine starts with is the business of the family of references.
        if (rule != nullptr && version->ReadUInt() < rule->version &&
            member.name != GetJsonName(JSON_HeadSubstateRoot))
        {
            findings.Add(Code::VersionTooLow, version->span,
                         "a head of version " + version->text + " does not read '" + member.name +
                             "'",
                         "write 3");
        }
    }
}

void CheckAllow(const Member& member, Findings& findings)
{
    if (!member.value.IsArray())
    {
        findings.Add(Code::WrongType, member.value.span,
                     "'$allow' must be an array of codes, not " + Describe(member.value),
                     "write [\"VELL020\"]");
    }
    for (const Value& code : member.value.elements)
    {
        if (!code.IsString() || FindEntry(code.text) == nullptr)
        {
            findings.Add(Code::UnknownCode, code.span,
                         "unknown code " +
                             (code.IsString() ? "'" + code.text + "'" : Describe(code)));
        }
    }
}

/// Nodes are lost with an array that is none, and with an element of it that is no object.
bool LosesNodes(const MemberRule& rule, const Value& value)
{
    const bool isList = rule.contents == ObjectKind::Layer ||
                        (rule.contents == ObjectKind::Node && rule.name == GetJsonName(JSON_Nodes));
    return isList && (!value.IsArray() || !std::all_of(value.elements.begin(), value.elements.end(),
                                                       [](const Value& element)
                                                       {
                                                           return element.IsObject();
                                                       }));
}

/// A node in the place of a layer.
bool IsNodeForLayer(const Visit& visit)
{
    return visit.kind == ObjectKind::Layer &&
           visit.object.Find(GetJsonName(JSON_Nodes)) == nullptr &&
           visit.object.Find(GetJsonName(JSON_BuilderType)) != nullptr;
}

void CheckObject(const Visit& visit, Findings& findings)
{
    for (const Member& member : visit.object.members)
    {
        if (member.isRepeated)
        {
            continue;
        }
        const MemberRule* rule = FindRule(visit, member.name);
        if (rule != nullptr)
        {
            CheckValue(visit, *rule, member.value, findings);
            findings.hasLostNodes = findings.hasLostNodes || LosesNodes(*rule, member.value);
        }
        else
        {
            CheckUnknown(visit, member, findings);
        }
        if (member.name == kAllowMember)
        {
            CheckAllow(member, findings);
        }
    }
    CheckRequired(visit, RulesOf(visit.kind), findings);
    if (visit.kind == ObjectKind::Node)
    {
        CheckRequired(visit, RulesOfBuilder(visit.builder), findings);
    }
    CheckVectorDefault(visit, findings);
    CheckPairs(visit, findings);
    CheckVersion(visit, findings);
}

} // namespace

void CheckMembers(const Document& document, Findings& findings)
{
    if (!document.root.IsObject())
    {
        findings.Add(Code::WrongType, document.root.span,
                     "the document must be an object, not " + Describe(document.root));
        return;
    }
    bool isLayerTold = false;
    VisitObjects(document.root,
                 [&findings, &isLayerTold](const Visit& visit)
                 {
                     if (!IsNodeForLayer(visit))
                     {
                         CheckObject(visit, findings);
                     }
                     else if (!isLayerTold)
                     {
                         isLayerTold = true;
                         findings.hasLostNodes = true;
                         findings.Add(Code::MissingMember, OpeningOf(visit.object),
                                      "the elements of 'layers' are layers, and this is a node",
                                      "write \"layers\": [{\"nodes\": [...]}]");
                     }
                 });
}

} // namespace vell::check
