// VELL: data-driven hierarchical state machines.
// tools/author/SourceTable.cpp: the table of members.
#include "tools/author/SourceTable.h"

#include "tools/check/Check.h"

#include <algorithm>
#include <map>
#include <string>

namespace vell::author
{
namespace
{

using check::Words;

constexpr SourceRule kSchema = {check::kSchemaMember, SourceShape::Text,
                                "Where an editor finds the schema."};
constexpr SourceRule kInclude = {"include", SourceShape::Texts,
                                 "Files whose parameters, states and interrupts belong here too. "
                                 "Their paths are read from the folder of this file."};
constexpr SourceRule kParameters = {"parameters", SourceShape::Parameters,
                                    "The inputs that conditions test, by name."};
constexpr SourceRule kStart = {"start", SourceShape::Name, "The state that is entered first."};
constexpr SourceRule kStates = {"states", SourceShape::States, "The states, by name."};
constexpr SourceRule kNodes = {"nodes", SourceShape::Nodes,
                               "Nodes as they are in the document, for what has no other form."};
constexpr SourceRule kInterrupts = {
    "interrupts", SourceShape::Transitions,
    "Transitions that are tested before all others, whatever runs. What runs waits until the state "
    "that they lead to reaches one that ends."};
constexpr SourceRule kName = {
    "name", SourceShape::TextOrNull,
    "The name in the document, where it is not the one that the source gives. null: no name."};
constexpr SourceRule kId = {"id", SourceShape::Id,
                            "The id in the document, where it is not to come from the name."};
constexpr SourceRule kAttributes = {"attributes", SourceShape::Attributes,
                                    "Named values that the host can read and set."};
constexpr SourceRule kScript = {"script", SourceShape::Text, "A script for the host."};
constexpr SourceRule kMembers = {
    "members", SourceShape::Members,
    "Members copied to the document as they are. They take the place of those that the source "
    "gives; null leaves one out."};
constexpr SourceRule kComment = {check::kCommentMember, SourceShape::Any,
                                 "A remark that the document keeps. A comment is not kept."};
constexpr SourceRule kAllow = {check::kAllowMember, SourceShape::Texts,
                               "Codes that `vell check` leaves out here and within."};

SourceRules MachineRules()
{
    return {
        kSchema,
        {"machine", SourceShape::Text, "The name of the machine."},
        {"type", SourceShape::Words, "What the machine controls. Default: character.",
         Words::MachineTypes},
        {"guid", SourceShape::Text, "The identity of the machine. Default: its name."},
        {"buildId", SourceShape::Text, "The identity of this build. Default: the guid."},
        {"version", SourceShape::Id, "The version of the head. Default: 3."},
        {"memory", SourceShape::Integer,
         "The arena has 100 times as many bytes. Default: what is needed, and a quarter more."},
        {"head", SourceShape::Members, "Further members of the document's head."},
        {"skeleton", SourceShape::Members, "The document's skeleton: file names for the host."},
        {"layers", SourceShape::Texts,
         "The names of the layers in their order. The first is that of states that name none."},
        kInclude,
        kParameters,
        kStart,
        kStates,
        kInterrupts,
        {"global", SourceShape::GlobalNode,
         "Further members of the node of the interrupts. null: no such node, "
         "where there are no interrupts."},
        kNodes,
        {"globalNodes", SourceShape::Nodes, "As nodes, for the document's global array."},
        kMembers,
        kComment,
        kAllow,
    };
}

SourceRules PartRules()
{
    return {kSchema, kInclude, kParameters, kStates, kInterrupts, kNodes, kComment, kAllow};
}

SourceRules StateRules()
{
    return {
        {"from", SourceShape::Text,
         "A file that has the members of this state. Those that are here take their place, and "
         "transitions are added."},
        {"builder", SourceShape::Builder,
         "The kind of node, where the other members do not tell: a word, or the number of a "
         "builder that the host registers.",
         Words::Builders},
        {"clip", SourceShape::Text, "The animation clip that it plays."},
        {"clipFlag", SourceShape::Flag, "Of a clip. Stored for the host."},
        {"secondaryA", SourceShape::Text, "Of a clip. Stored for the host."},
        {"secondaryB", SourceShape::Text, "Of a clip. Stored for the host."},
        {"ends", SourceShape::Flag, "true: the end of a blip or a level; see also exit."},
        {"next", SourceShape::Name, "Of an enter or exit node: the state that follows."},
        {"connector", SourceShape::Words, "Makes it a connector of this kind, for an editor.",
         Words::Connectors},
        kStart,
        kStates,
        {"enter", SourceShape::EndNode, "Further members of the enter node that a level gets."},
        {"exit", SourceShape::ExitNode,
         "The state that ends the level, or further members of the exit node that it gets."},
        {"go", SourceShape::Transitions, "The transitions that leave it."},
        kAttributes,
        kScript,
        {"exitConnector", SourceShape::Name, "Stored; the machine does not follow it."},
        {"layer", SourceShape::Text, "The layer in the document, also of all within."},
        kName,
        kId,
        kMembers,
        kComment,
        kAllow,
    };
}

SourceRules LevelRules()
{
    SourceRules rules = {kSchema, kInclude, kParameters};
    for (const SourceRule& rule : StateRules())
    {
        if (rule.name != "from")
        {
            rules.push_back(rule);
        }
    }
    return rules;
}

SourceRules TransitionRules()
{
    return {
        {"to", SourceShape::Name, "The state that it enters, of the same level."},
        {"when", SourceShape::Conditions,
         "A condition such as \"distance < 30\", or a list, any one of which is enough. []: only a "
         "trigger of the host fires it."},
        {"priority", SourceShape::Integer,
         "Smaller is tested first. Of an interrupt also its strength. Default: 5."},
        {"blend", SourceShape::Number, "The argument of the host's state-switch callback."},
        {"disabled", SourceShape::Flag, "Whether it is out of force."},
        {"tag", SourceShape::Integer, "Stored for the host."},
        {"tagArgument", SourceShape::Integer, "Stored for the host, beside a tag."},
        kAttributes,
        kScript,
        kName,
        kId,
        kMembers,
        kComment,
        kAllow,
    };
}

SourceRules ConditionRules()
{
    return {{"if", SourceShape::Text, "The condition, such as \"distance < 30\"."},
            kName,
            kId,
            kMembers,
            kComment,
            kAllow};
}

SourceRules ParameterRules()
{
    return {
        {"bool", SourceShape::Value, "A parameter that is true or false, and its default."},
        {"integer", SourceShape::Value, "A whole number, and its default."},
        {"float", SourceShape::Value, "A number, and its default."},
        {"float2", SourceShape::Value, "Two numbers in a list, the default."},
        {"float3", SourceShape::Value, "Three numbers in a list, the default."},
        {"float4", SourceShape::Value, "Four numbers in a list, the default."},
        {"message", SourceShape::Value, "The text that it takes when it is fired."},
        {"input", SourceShape::Words, "The input that the host binds to it.", Words::Inputs},
        {"reset", SourceShape::Flag, "Whether it has its default again after every tick."},
        kId,
        kMembers,
        kComment,
        kAllow,
    };
}

SourceRules EndRules()
{
    return {kAttributes, kScript, kName, kId, kMembers, kComment, kAllow};
}

const std::map<SourceKind, SourceRules>& Table()
{
    static const std::map<SourceKind, SourceRules> table = {
        {SourceKind::Machine, MachineRules()},
        {SourceKind::Part, PartRules()},
        {SourceKind::Level, LevelRules()},
        {SourceKind::State, StateRules()},
        {SourceKind::Transition, TransitionRules()},
        {SourceKind::Condition, ConditionRules()},
        {SourceKind::Parameter, ParameterRules()},
        {SourceKind::End, EndRules()},
        {SourceKind::Global, EndRules()},
    };
    return table;
}

} // namespace

const SourceRules& RulesOf(SourceKind kind)
{
    return Table().at(kind);
}

const SourceRule* FindRule(SourceKind kind, std::string_view name)
{
    const SourceRules& rules = RulesOf(kind);
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [name](const SourceRule& rule)
                                    {
                                        return rule.name == name;
                                    });
    return found == rules.end() ? nullptr : &*found;
}

const char* TitleOf(SourceKind kind)
{
    switch (kind)
    {
    case SourceKind::Machine:
        return "the machine";
    case SourceKind::Part:
        return "an included file";
    case SourceKind::Level:
    case SourceKind::State:
        return "a state";
    case SourceKind::Transition:
        return "a transition";
    case SourceKind::Condition:
        return "a condition";
    case SourceKind::Parameter:
        return "a parameter";
    case SourceKind::End:
        return "an enter or exit node";
    case SourceKind::Global:
        break;
    }
    return "the node of the interrupts";
}

std::string OwnersOf(std::string_view name)
{
    std::string text;
    for (const SourceKind kind : {SourceKind::Machine, SourceKind::State, SourceKind::Transition,
                                  SourceKind::Condition, SourceKind::Parameter})
    {
        if (FindRule(kind, name) != nullptr)
        {
            text += (text.empty() ? "" : " or ") + std::string(TitleOf(kind));
        }
    }
    return text;
}

std::string DescriptionOf(const SourceRule& rule)
{
    switch (rule.shape)
    {
    case SourceShape::Text:
    case SourceShape::Words:
        return "a text";
    case SourceShape::TextOrNull:
        return "a text, or null for none";
    case SourceShape::Name:
        return "the name of a state";
    case SourceShape::Builder:
        return "a builder's name, or the number of one that the host registers";
    case SourceShape::Integer:
        return "a whole number";
    case SourceShape::Id:
        return "a whole number from 0 to 4294967295";
    case SourceShape::Number:
        return "a number";
    case SourceShape::Flag:
        return "true or false";
    case SourceShape::Texts:
        return "a list of texts";
    case SourceShape::Members:
    case SourceShape::EndNode:
        return "an object";
    case SourceShape::GlobalNode:
        return "an object, or null for none";
    case SourceShape::Nodes:
        return "a list of objects";
    case SourceShape::States:
        return "an object that has the states by name";
    case SourceShape::Transitions:
        return "a list of transitions";
    case SourceShape::Conditions:
        return "a condition or a list of them";
    case SourceShape::Parameters:
        return "an object that has the parameters by name";
    case SourceShape::Attributes:
        return "an object that has the attributes by name";
    case SourceShape::ExitNode:
        return "the name of a state, or an object";
    case SourceShape::Value:
    case SourceShape::Any:
        break;
    }
    return "a value";
}

} // namespace vell::author
