// VELL: data-driven hierarchical state machines.
// tools/diff/DocumentModel.cpp: from values to a model.
#include "tools/diff/DocumentModel.h"

#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "tools/source/Value.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <string_view>

namespace vell::diff
{
namespace
{

using namespace DURMBaseLib;
using source::Kind;
using source::Member;
using source::Value;

constexpr const char* kAttributeData = "ATTRIB_Data";
constexpr const char* kVectorData = "VARIANT_Data";
constexpr const char* kGlobalLayer = "the global nodes";

struct Default
{
    __JSONTYPES__ member;
    const char* value;
};

/// What an absent member counts as. An empty array is equal to an absent one.
constexpr Default kDefaults[] = {{JSON_ParentID, "0"},
                                 {JSON_TransitionPriority, "5"},
                                 {JSON_TransitionDisabled, "false"},
                                 {JSON_TransitionSwitchArgument, "0.0"},
                                 {JSON_TransitionTag, "0"},
                                 {JSON_TransitionTagArgument, "0"},
                                 {JSON_TransitionTarget, "0"},
                                 {JSON_TransitionSource, "0"},
                                 {JSON_ExitConnector, "0"},
                                 {JSON_ClipFlag, "false"},
                                 {JSON_ParameterResetEachFrame, "false"},
                                 {JSON_HeadMemory, "1048576"},
                                 {JSON_HeadVersion, "0"},
                                 {JSON_HeadEnterLayer, "0"},
                                 {JSON_HeadSubstateRoot, "0"},
                                 {JSON_HeadValue84, "0"}};

constexpr std::array kReferences = {JSON_TransitionSource, JSON_TransitionTarget, JSON_EntryTarget,
                                    JSON_ExitConnector,    JSON_SubstateEnter,    JSON_SubstateExit,
                                    JSON_HeadEnterNode,    JSON_HeadSubstateRoot};

/// Members whose numbers are read as floats, so that 3 is 3.0.
constexpr std::array kFloats = {JSON_TransitionSwitchArgument};

template <class List>
bool Contains(const List& members, std::string_view name)
{
    for (const __JSONTYPES__ member : members)
    {
        if (name == GetJsonName(member))
        {
            return true;
        }
    }
    return false;
}

const Value* Find(const Value& object, __JSONTYPES__ member)
{
    return object.Find(GetJsonName(member));
}

std::string Text(const Value& object, __JSONTYPES__ member)
{
    const Value* value = Find(object, member);
    return value != nullptr && value->IsString() ? value->text : "";
}

unsigned int Number(const Value& object, __JSONTYPES__ member)
{
    const Value* value = Find(object, member);
    return value != nullptr ? value->ReadUInt() : 0;
}

std::string Quote(const std::string& text)
{
    std::string quoted = "\"";
    for (const char c : text)
    {
        char escaped[8];
        if (c == '"' || c == '\\')
        {
            quoted += '\\';
            quoted += c;
        }
        else if (static_cast<unsigned char>(c) < 0x20)
        {
            std::snprintf(escaped, sizeof(escaped), "\\u%04x", c);
            quoted += escaped;
        }
        else
        {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::string Double(double number)
{
    char digits[40];
    std::snprintf(digits, sizeof(digits), "double %.17g", number);
    return digits;
}

/// Gives the members in the order of the text, or by name: their order has no meaning.
std::vector<const Member*> InOrder(const Value& object, bool isByName)
{
    std::vector<const Member*> members;
    for (const Member& member : object.members)
    {
        members.push_back(&member);
    }
    if (isByName)
    {
        std::stable_sort(members.begin(), members.end(),
                         [](const Member* a, const Member* b)
                         {
                             return a->name < b->name;
                         });
    }
    return members;
}

/// Writes a value on one line. `isShown` keeps numbers as the document has them; otherwise equal
/// numbers get the same text, and a whole number differs from one with a fraction, which the
/// library reads in another way.
std::string OneLine(const Value& value, bool isShown)
{
    std::string line;
    switch (value.kind)
    {
    case Kind::Null:
        return "null";
    case Kind::Bool:
        return value.boolean ? "true" : "false";
    case Kind::Int:
    case Kind::UInt:
        return isShown ? value.text : std::to_string(static_cast<std::int64_t>(value.bits));
    case Kind::Double:
        return isShown ? value.text : Double(value.number);
    case Kind::String:
        return Quote(value.text);
    case Kind::Array:
        for (const Value& element : value.elements)
        {
            line += (line.empty() ? "" : ", ") + OneLine(element, isShown);
        }
        return "[" + line + "]";
    case Kind::Object:
        for (const Member* member : InOrder(value, !isShown))
        {
            line += (line.empty() ? "" : ", ") + Quote(member->name) + ": " +
                    OneLine(member->value, isShown);
        }
        return "{" + line + "}";
    }
    return line;
}

/// A text of numbers, in which blanks do not count.
std::string WithoutBlanks(const std::string& text)
{
    std::string rest;
    for (const char c : text)
    {
        rest += c == ' ' || c == '\t' ? "" : std::string(1, c);
    }
    return Quote(rest);
}

bool IsOfType(const Value& object, __JSONTYPES__ member, int type)
{
    const Value* value = Find(object, member);
    return value != nullptr && value->IsString() && GetParameterName(value->text.c_str()) == type;
}

/// The first element of an array, when it is an object that has nothing but `member`.
const Value* OnlyMember(const Value& array, std::string_view member)
{
    return array.elements.size() == 1 && array.elements[0].members.size() == 1
               ? array.elements[0].Find(member)
               : nullptr;
}

/// Reads the members of one object, the first of each name by its name and later ones apart.
class Reader
{
public:
    explicit Reader(const Value& newObject) : object(newObject)
    {
    }

    // Each takes a member out of what `Rest` gives, if it is of the expected kind.

    std::string TakeText(__JSONTYPES__ member)
    {
        const Value* value = TakeIf(member, &Value::IsString);
        return value != nullptr ? value->text : "";
    }
    unsigned int TakeNumber(__JSONTYPES__ member)
    {
        const Value* value = TakeIf(member, &Value::IsInteger);
        return value != nullptr ? value->ReadUInt() : 0;
    }
    const std::vector<Value>& TakeElements(__JSONTYPES__ member)
    {
        static const std::vector<Value> none;
        const Value* value = TakeIf(member, &Value::IsArray);
        return value != nullptr ? value->elements : none;
    }
    Properties TakeObject(__JSONTYPES__ member)
    {
        const Value* value = TakeIf(member, &Value::IsObject);
        return value != nullptr ? Reader(*value).Rest() : Properties();
    }

    Properties Rest() const
    {
        Properties properties;
        std::map<std::string, int> occurrences;
        for (const Member& member : object.members)
        {
            const int occurrence = ++occurrences[member.name];
            if (IsTaken(member.value))
            {
                continue;
            }
            Property property = ReadProperty(member);
            if (member.name == GetJsonName(JSON_ParameterDefault) && member.value.IsNumber() &&
                IsOfType(object, JSON_ParameterType, PARAM_Float))
            {
                property.canonical = Double(member.value.number); // read as a float in any case
            }
            if (occurrence > 1)
            {
                property.name += " [" + std::to_string(occurrence) + "]";
            }
            else if (IsDefault(member))
            {
                continue;
            }
            properties.push_back(property);
        }
        return properties;
    }

private:
    bool IsTaken(const Value& value) const
    {
        for (const Value* one : taken)
        {
            if (one == &value)
            {
                return true;
            }
        }
        return false;
    }

    static bool IsDefault(const Member& member)
    {
        const std::string standard = DefaultOf(member.name);
        const bool isFloat = Contains(kFloats, member.name) && member.value.IsNumber();
        return isFloat ? member.value.number == 0.0
                       : !standard.empty() && OneLine(member.value, false) == standard;
    }

    static Property ReadProperty(const Member& member)
    {
        Property property;
        property.name = member.name;
        const Value* vector = OnlyMember(member.value, kVectorData);
        property.shown = OneLine(vector != nullptr ? *vector : member.value, true);
        property.canonical = vector != nullptr && vector->IsString() ? WithoutBlanks(vector->text)
                                                                     : OneLine(member.value, false);
        if (Contains(kFloats, member.name) && member.value.IsNumber())
        {
            property.canonical = Double(member.value.number);
        }
        if (Contains(kReferences, member.name) && member.value.IsInteger())
        {
            property.isReference = true;
            property.number = member.value.ReadUInt();
        }
        return property;
    }

    const Value* TakeIf(__JSONTYPES__ member, bool (Value::*isExpected)() const)
    {
        const Value* value = Find(object, member);
        if (value == nullptr || !(value->*isExpected)())
        {
            return nullptr;
        }
        taken.push_back(value);
        return value;
    }

    const Value& object;
    std::vector<const Value*> taken;
};

/// Gives the `value` of `[{"value": ...}]`, or the whole member when it has another shape.
const Value* Operand(const Value& condition)
{
    const Value* operand = Find(condition, JSON_ConditionValue);
    const Value* value =
        operand != nullptr ? OnlyMember(*operand, GetJsonName(JSON_Value)) : nullptr;
    return value != nullptr ? value : operand;
}

/// Gives a member of a condition so that equal ones have the same text.
std::string CanonicalMember(const Value& condition, const Member& member)
{
    const Value* operand = Operand(condition);
    if (operand != nullptr && member.name == GetJsonName(JSON_ConditionValue) &&
        operand != &member.value)
    {
        const bool isRange =
            GetEvaluationEnum(Text(condition, JSON_ConditionEvaluation).c_str()) == EvaluateInRange;
        if (operand->IsString() && isRange)
        {
            return WithoutBlanks(operand->text);
        }
        if (operand->IsNumber() && IsOfType(condition, JSON_ConditionType, PARAM_Float))
        {
            return Double(operand->number);
        }
    }
    return OneLine(member.value, false);
}

Condition ReadCondition(const Value& value)
{
    Condition condition;
    condition.whole = OneLine(value, true);
    if (!value.IsObject())
    {
        condition.canonical = OneLine(value, false);
        return condition;
    }
    condition.parameter = Number(value, JSON_ConditionParameter);
    const Value* operand = Operand(value);
    condition.comparison = Text(value, JSON_ConditionEvaluation) +
                           (operand != nullptr ? " " + OneLine(*operand, true) : "");
    for (const Member* member : InOrder(value, true))
    {
        const bool isParameter =
            member->name == GetJsonName(JSON_ConditionParameter) && member->value.IsInteger();
        condition.canonical += Quote(member->name) + ": ";
        condition.canonical += isParameter ? "" : CanonicalMember(value, *member);
        condition.members.emplace(member->name, member->value.IsString()
                                                    ? member->value.text
                                                    : OneLine(member->value, true));
    }
    return condition;
}

Attribute ReadAttribute(const Value& value)
{
    Attribute attribute;
    attribute.name = Text(value, JSON_Name);
    attribute.canonical = OneLine(value, false);
    attribute.whole = OneLine(value, true);
    attribute.shown = attribute.whole;
    const Value* data = value.Find(kAttributeData);
    if (data != nullptr && data->elements.size() == 1)
    {
        const Value* content = Find(data->elements[0], JSON_Value);
        attribute.shown = Text(data->elements[0], JSON_AttributeType) +
                          (content != nullptr ? " " + OneLine(*content, true) : "");
    }
    return attribute;
}

Node ReadNode(const Value& value)
{
    Node node;
    Reader reader(value);
    node.name = reader.TakeText(JSON_Name);
    node.id = reader.TakeNumber(JSON_ID);
    node.parent = reader.TakeNumber(JSON_ParentID);
    node.builder = reader.TakeText(JSON_BuilderType);
    for (const Value& child : reader.TakeElements(JSON_Children))
    {
        node.children.push_back(child.ReadUInt());
    }
    for (const Value& condition : reader.TakeElements(JSON_Conditions))
    {
        node.conditions.push_back(ReadCondition(condition));
    }
    for (const Value& attribute : reader.TakeElements(JSON_Attributes))
    {
        node.attributes.push_back(ReadAttribute(attribute));
    }
    node.properties = reader.Rest();
    if (!value.IsObject())
    {
        node.name = OneLine(value, true);
    }
    return node;
}

Parameter ReadParameter(const Value& value)
{
    Parameter parameter;
    Reader reader(value);
    parameter.name = reader.TakeText(JSON_Name);
    parameter.id = reader.TakeNumber(JSON_ID);
    parameter.properties = reader.Rest();
    if (!value.IsObject())
    {
        parameter.name = OneLine(value, true);
    }
    return parameter;
}

void ReadNodes(const std::vector<Value>& values, const std::string& layer, DocumentModel* model)
{
    for (const Value& value : values)
    {
        Node node = ReadNode(value);
        node.layer = layer;
        model->nodes.push_back(node);
    }
}

void ReadLayer(const Value& value, DocumentModel* model)
{
    Reader reader(value);
    const std::string name = reader.TakeText(JSON_Name);
    model->layers.push_back(name);
    ReadNodes(reader.TakeElements(JSON_Nodes), name, model);
    Properties rest = reader.Rest();
    for (Property& property : rest)
    {
        property.name = "layer " + name + ": " + property.name;
        model->others.push_back(property);
    }
}

} // namespace

bool Node::IsTransition() const
{
    return GetBuilderIndex(builder.c_str()) == BUILDER_Transition;
}

const Node* DocumentModel::FindNode(unsigned int id) const
{
    const auto found = nodeIndex.find(id);
    return id != 0 && found != nodeIndex.end() ? &nodes[found->second] : nullptr;
}

const Parameter* DocumentModel::FindParameter(unsigned int id) const
{
    const auto found = parameterIndex.find(id);
    return id != 0 && found != parameterIndex.end() ? &parameters[found->second] : nullptr;
}

std::string DocumentModel::NameOfNode(unsigned int id) const
{
    if (id == 0)
    {
        return "none";
    }
    const Node* node = FindNode(id);
    return node != nullptr ? NameAndId(node->name, id) : NameAndId("", id) + " (no such node)";
}

std::string DocumentModel::NameOfParameter(unsigned int id) const
{
    const Parameter* parameter = FindParameter(id);
    if (parameter == nullptr)
    {
        return NameAndId("", id) + " (no such parameter)";
    }
    return parameter->name.empty() ? NameAndId("", id) : parameter->name;
}

std::string NameAndId(const std::string& name, unsigned int id)
{
    const std::string number = std::to_string(id);
    return name.empty() ? "#" + number : name + " (" + number + ")";
}

std::string DefaultOf(const std::string& name)
{
    for (const Default& one : kDefaults)
    {
        if (name == GetJsonName(one.member))
        {
            return one.value;
        }
    }
    return "";
}

DocumentModel ReadModel(const source::Value& root)
{
    DocumentModel model;
    Reader reader(root);
    model.head = reader.TakeObject(JSON_Head);
    model.skeleton = reader.TakeObject(JSON_Skeleton);
    for (const Value& parameter : reader.TakeElements(JSON_Parameters))
    {
        model.parameters.push_back(ReadParameter(parameter));
        model.parameterIndex.emplace(model.parameters.back().id, model.parameters.size() - 1);
    }
    for (const Value& layer : reader.TakeElements(JSON_Layers))
    {
        ReadLayer(layer, &model);
    }
    ReadNodes(reader.TakeElements(JSON_Global), kGlobalLayer, &model);
    for (std::size_t i = 0; i < model.nodes.size(); ++i)
    {
        model.nodeIndex.emplace(model.nodes[i].id, i);
    }
    const Properties rest = reader.Rest();
    model.others.insert(model.others.end(), rest.begin(), rest.end());
    return model;
}

} // namespace vell::diff
