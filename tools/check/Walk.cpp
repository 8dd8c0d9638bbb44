// VELL: data-driven hierarchical state machines.
// tools/check/Walk.cpp: from an object to those within it, by the table of members.
#include "tools/check/Walk.h"

namespace vell::check
{
namespace
{

using source::Value;
using Visitor = std::function<void(const Visit&)>;

int BuilderOf(const Value& object, ObjectKind kind)
{
    if (kind == ObjectKind::Condition)
    {
        return DURMBaseLib::BUILDER_Condition;
    }
    static const char* const kName = DURMBaseLib::GetJsonName(DURMBaseLib::JSON_BuilderType);
    const Value* builder = kind == ObjectKind::Node ? object.Find(kName) : nullptr;
    return builder != nullptr && builder->IsString() ? NumberOf(Words::Builders, builder->text) : 0;
}

// The depth of this is that of the table, whatever the document is.
void VisitObject(const Value& object, ObjectKind kind, const Value* parent, const Visitor& visitor)
{
    const Visit visit{object, kind, parent, BuilderOf(object, kind)};
    visitor(visit);
    for (const source::Member& member : object.members)
    {
        if (!member.value.IsObject() && !member.value.IsArray())
        {
            continue;
        }
        const MemberRule* rule = FindRule(visit, member.name);
        if (rule == nullptr || rule->contents == ObjectKind::None || member.isRepeated)
        {
            continue;
        }
        if (member.value.IsObject() && rule->shape == Shape::Object)
        {
            VisitObject(member.value, rule->contents, &object, visitor);
        }
        for (const Value& element : member.value.elements)
        {
            if (element.IsObject())
            {
                VisitObject(element, rule->contents, &object, visitor);
            }
            if (rule->shape != Shape::Array)
            {
                break;
            }
        }
    }
}

const char* NounOf(ObjectKind kind)
{
    switch (kind)
    {
    case ObjectKind::Parameter:
        return "the parameter";
    case ObjectKind::Layer:
        return "the layer";
    case ObjectKind::Condition:
        return "the condition";
    case ObjectKind::Attribute:
        return "the attribute";
    case ObjectKind::VectorDefault:
        return "the default";
    case ObjectKind::Operand:
        return "the operand";
    case ObjectKind::AttributeData:
        return "the attribute's data";
    default:
        return TitleOf(kind);
    }
}

} // namespace

void VisitObjects(const Value& root, const Visitor& visitor)
{
    if (root.IsObject())
    {
        VisitObject(root, ObjectKind::Root, nullptr, visitor);
    }
}

const MemberRule* FindRule(const Visit& visit, std::string_view name)
{
    const MemberRule* rule = FindRule(RulesOf(visit.kind), name);
    const bool isNode = visit.kind == ObjectKind::Node;
    return rule == nullptr && isNode ? FindRule(RulesOfBuilder(visit.builder), name) : rule;
}

std::string NameOf(const Visit& visit)
{
    std::string text = NounOf(visit.kind);
    if (visit.kind == ObjectKind::Node)
    {
        text = TitleOfNode(visit.builder);
        text = "the" + text.substr(text.find(' '));
    }
    static const char* const kName = DURMBaseLib::GetJsonName(DURMBaseLib::JSON_Name);
    const Value* name = FindRule(visit, kName) == nullptr ? nullptr : visit.object.Find(kName);
    const bool hasName = name != nullptr && name->IsString() && !name->text.empty();
    return hasName ? text + " '" + name->text + "'" : text;
}

} // namespace vell::check
