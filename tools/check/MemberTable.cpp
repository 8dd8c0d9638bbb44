// VELL: data-driven hierarchical state machines.
// tools/check/MemberTable.cpp: the table of members.
#include "tools/check/MemberTable.h"

#include "document/DataMembers.h"

#include <map>
#include <utility>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

constexpr bool kRequired = true;
constexpr bool kOptional = false;

const char* N(__JSONTYPES__ member)
{
    const char* name = GetJsonName(member);
    return name == nullptr ? "" : name;
}

MemberRules RootRules()
{
    return {
        {N(JSON_Head), Shape::Object, kRequired, nullptr,
         "Machine type, memory, and where to start.", ObjectKind::Head},
        {N(JSON_Parameters), Shape::Array, kRequired, "[]",
         "The inputs that conditions test. [] when there are none.", ObjectKind::Parameter},
        {N(JSON_Layers), Shape::Array, kRequired, nullptr,
         "Groups of nodes, read in order. A layer leaves no trace in the machine.",
         ObjectKind::Layer},
        {N(JSON_Skeleton), Shape::Object, kOptional, nullptr, "File names for the host.",
         ObjectKind::Skeleton},
        {N(JSON_Global), Shape::Array, kOptional, "[]",
         "The global node, whose transitions interrupt all others.", ObjectKind::Node},
    };
}

MemberRules HeadRules()
{
    return {
        {N(JSON_ID), Shape::Id, kOptional, "0", "The machine's id, for the log."},
        {N(JSON_HeadVersion), Shape::Id, kRequired, "3",
         "3. Below 3 substateRoot is not read, and the machine cannot start."},
        {N(JSON_GUID), Shape::Identity, kOptional, "\"\"",
         "The identity of the machine: a text of fewer than 70 bytes.", ObjectKind::None,
         Words::None, 2},
        {N(JSON_HeadBuildID), Shape::Identity, kOptional, nullptr,
         "The identity of this build: a text of fewer than 70 bytes. Absent: the guid.",
         ObjectKind::None, Words::None, 2},
        {N(JSON_HeadMachineType), Shape::Text, kRequired, nullptr,
         "What the machine controls. Stored for the host.", ObjectKind::None, Words::MachineTypes},
        {N(JSON_HeadMemory), Shape::Integer, kOptional, "1048576",
         "The arena has 100 times as many bytes. `vell check` tells what the document needs."},
        {N(JSON_HeadEnterLayer), Shape::Id, kOptional, "0", "Only printed."},
        {N(JSON_HeadEnterNode), Shape::Id, kRequired, nullptr,
         "The id of the node to enter. The machine starts at substateRoot."},
        {N(JSON_HeadSubstateRoot), Shape::Id, kRequired, nullptr,
         "The id of the state that Start enters.", ObjectKind::None, Words::None, 3},
        {N(JSON_HeadValue84), Shape::Id, kOptional, "0", "Only stored.", ObjectKind::None,
         Words::None, 3},
    };
}

MemberRules ParameterRules()
{
    return {
        {N(JSON_Name), Shape::Text, kRequired, nullptr, "The name by which the host knows it."},
        {N(JSON_ID), Shape::Id, kRequired, nullptr,
         "The CRC-32 of the name: `vell id NAME` prints it."},
        {N(JSON_ParameterType), Shape::Text, kRequired, nullptr, "What values it has.",
         ObjectKind::None, Words::ParameterTypes},
        {N(JSON_ParameterDefault), Shape::ByType, kOptional, nullptr,
         "The value at the start. Of a message: the text that it takes when it is fired.",
         ObjectKind::VectorDefault},
        {N(JSON_ParameterAssign), Shape::Text, kOptional, nullptr,
         "The input that the host binds to it.", ObjectKind::None, Words::Inputs},
        {N(JSON_ParameterResetEachFrame), Shape::Flag, kOptional, "false",
         "Whether it has its default again after every tick. Not for messages."},
    };
}

MemberRules LayerRules()
{
    return {
        {N(JSON_Name), Shape::Text, kOptional, nullptr, "The layer's name, for the log."},
        {N(JSON_Nodes), Shape::Array, kRequired, nullptr,
         "States, transitions and other nodes, in any order.", ObjectKind::Node},
    };
}

MemberRules NodeRules()
{
    return {
        {N(JSON_Name), Shape::Text, kOptional, nullptr, "The node's name."},
        {N(JSON_ID), Shape::Id, kRequired, nullptr, "The node's id: not 0, and no other node's."},
        {N(JSON_BuilderType), Shape::Text, kRequired, nullptr,
         "The kind of node, or the number of a builder that the host registers.", ObjectKind::None,
         Words::Builders},
        {N(JSON_ParentID), Shape::Id, kOptional, "0",
         "The id of the node around it; 0 at the top."},
        {N(JSON_Children), Shape::Ids, kOptional, "[]",
         "The ids of the nodes that belong to it. A state has the transitions listed here."},
        {N(JSON_Attributes), Shape::Array, kOptional, "[]",
         "Named values that the host can read and set.", ObjectKind::Attribute},
        {N(JSON_ExitConnector), Shape::Id, kOptional, "0",
         "Stored; the machine does not follow it."},
        {N(JSON_ScriptName), Shape::Text, kOptional, nullptr, "A script for the host."},
    };
}

MemberRules TransitionRules()
{
    return {
        {N(JSON_TransitionSource), Shape::Id, kOptional, "0",
         "The id of the state that it leaves. What counts is which state lists it."},
        {N(JSON_TransitionTarget), Shape::Id, kRequired, nullptr,
         "The id of the state that it enters."},
        {N(JSON_Conditions), Shape::Array, kRequired, nullptr,
         "It holds when any one of these holds.", ObjectKind::Condition},
        {N(JSON_TransitionPriority), Shape::Integer, kOptional, "5",
         "Smaller is tested first. On a global node also the strength of the blip."},
        {N(JSON_TransitionDisabled), Shape::Flag, kOptional, "false",
         "Whether it is out of force."},
        {N(JSON_TransitionSwitchArgument), Shape::Number, kOptional, "0.0",
         "Passed to the host's state-switch callback."},
        {N(JSON_TransitionTag), Shape::Integer, kOptional, "0", "Stored for the host."},
        {N(JSON_TransitionTagArgument), Shape::Integer, kOptional, "0",
         "Stored for the host. Read only beside a tag."},
        {N(JSON_TransitionUnread), Shape::ByType, kOptional, nullptr, "Not read."},
    };
}

MemberRules ConditionRules()
{
    MemberRules rules = {
        {N(JSON_ConditionType), Shape::Text, kRequired, nullptr,
         "The type of the parameter that it tests.", ObjectKind::None, Words::ConditionTypes},
        {N(JSON_ConditionParameter), Shape::Id, kRequired, nullptr, "The id of the parameter."},
        {N(JSON_ConditionEvaluation), Shape::Text, kRequired, nullptr,
         "How the parameter is compared. Bools and messages are always compared for equality.",
         ObjectKind::None, Words::Operators},
        {N(JSON_ConditionValue), Shape::First, kRequired, nullptr,
         "What the parameter is compared with: [{\"value\": ...}].", ObjectKind::Operand},
    };
    for (MemberRule rule : NodeRules())
    {
        rule.isRequired = false;
        rules.push_back(rule);
    }
    return rules;
}

MemberRules OperandRules()
{
    return {
        {N(JSON_Value), Shape::ByType, kRequired, nullptr,
         "true or false, a number, a text, or for range a text such as \"5, 10\"."},
    };
}

MemberRules AttributeRules()
{
    return {
        {N(JSON_Name), Shape::Text, kRequired, nullptr, "The attribute's name."},
        {kAttribDataMember, Shape::First, kRequired, nullptr,
         "Its type and value: [{\"attributeType\": ..., \"value\": ...}].",
         ObjectKind::AttributeData},
    };
}

MemberRules AttributeDataRules()
{
    return {
        {N(JSON_AttributeType), Shape::Text, kRequired, nullptr, "What the value is.",
         ObjectKind::None, Words::AttributeTypes},
        {N(JSON_Value), Shape::ByType, kRequired, nullptr,
         "The value; of a vector a text such as \"1.5, 0\"."},
    };
}

MemberRules VectorDefaultRules()
{
    return {
        {kVectorDataMember, Shape::ByType, kRequired, nullptr,
         "The numbers in one text: \"0.5, 1\"."},
    };
}

MemberRules SkeletonRules()
{
    return {
        {N(JSON_ModelFileName), Shape::FilledText, kRequired, nullptr, "The file of the model."},
        {N(JSON_SkeletonFileName), Shape::FilledText, kRequired, nullptr,
         "The file of the skeleton."},
        {N(JSON_SkeletonValue89), Shape::Id, kOptional, "0", "Only stored."},
    };
}

MemberRules ClipRules()
{
    return {
        {N(JSON_ClipName), Shape::Text, kOptional, nullptr, "The animation clip."},
        {N(JSON_ClipFlag), Shape::Flag, kOptional, "false", "Stored for the host."},
        {N(JSON_ClipSecondaryA), Shape::Text, kOptional, nullptr, "Stored for the host."},
        {N(JSON_ClipSecondaryB), Shape::Text, kOptional, nullptr,
         "Stored for the host. Read only beside secondaryA."},
    };
}

MemberRules SubstateRules()
{
    return {
        {N(JSON_SubstateEnter), Shape::Id, kRequired, nullptr,
         "The id of the enter node that leads to its first state."},
        {N(JSON_SubstateExit), Shape::Id, kRequired, nullptr, "The id of its exit node."},
    };
}

MemberRules EntryRules(bool isRequired)
{
    return {
        {N(JSON_EntryTarget), Shape::Id, isRequired, nullptr, "The id of the state that follows."},
    };
}

MemberRules ConnectorRules()
{
    return {
        {N(JSON_ConnectorType), Shape::Text, kRequired, nullptr, "The kind of connector.",
         ObjectKind::None, Words::Connectors},
    };
}

const std::map<int, MemberRules>& BuilderTable()
{
    static const std::map<int, MemberRules> table = {
        {BUILDER_Connector, ConnectorRules()}, {BUILDER_Transition, TransitionRules()},
        {BUILDER_Condition, ConditionRules()}, {BUILDER_Enter, EntryRules(kRequired)},
        {BUILDER_Exit, EntryRules(kOptional)}, {BUILDER_AnimClip, ClipRules()},
        {BUILDER_Substate, SubstateRules()},
    };
    return table;
}

const std::map<ObjectKind, MemberRules>& KindTable()
{
    static const std::map<ObjectKind, MemberRules> table = {
        {ObjectKind::None, {}},
        {ObjectKind::Root, RootRules()},
        {ObjectKind::Head, HeadRules()},
        {ObjectKind::Parameter, ParameterRules()},
        {ObjectKind::VectorDefault, VectorDefaultRules()},
        {ObjectKind::Layer, LayerRules()},
        {ObjectKind::Node, NodeRules()},
        {ObjectKind::Condition, ConditionRules()},
        {ObjectKind::Operand, OperandRules()},
        {ObjectKind::Attribute, AttributeRules()},
        {ObjectKind::AttributeData, AttributeDataRules()},
        {ObjectKind::Skeleton, SkeletonRules()},
    };
    return table;
}

} // namespace

const MemberRules& RulesOf(ObjectKind kind)
{
    return KindTable().at(kind);
}

const MemberRules& RulesOfBuilder(int builder)
{
    const auto found = BuilderTable().find(builder);
    return found == BuilderTable().end() ? RulesOf(ObjectKind::None) : found->second;
}

const MemberRule* FindRule(const MemberRules& rules, std::string_view name)
{
    for (const MemberRule& rule : rules)
    {
        if (rule.name == name)
        {
            return &rule;
        }
    }
    return nullptr;
}

const char* TitleOf(ObjectKind kind)
{
    switch (kind)
    {
    case ObjectKind::Root:
        return "the document";
    case ObjectKind::Head:
        return "the head";
    case ObjectKind::Parameter:
        return "a parameter";
    case ObjectKind::VectorDefault:
        return "the default of a vector";
    case ObjectKind::Layer:
        return "a layer";
    case ObjectKind::Node:
        return "a node";
    case ObjectKind::Condition:
        return "a condition";
    case ObjectKind::Operand:
        return "an operand";
    case ObjectKind::Attribute:
        return "an attribute";
    case ObjectKind::AttributeData:
        return "the data of an attribute";
    case ObjectKind::Skeleton:
        return "the skeleton";
    case ObjectKind::None:
        break;
    }
    return "";
}

std::string OwnersOf(std::string_view name)
{
    std::vector<std::string> owners;
    for (const auto& [kind, rules] : KindTable())
    {
        if (FindRule(rules, name) != nullptr)
        {
            owners.emplace_back(TitleOf(kind));
        }
    }
    for (const auto& [builder, rules] : BuilderTable())
    {
        if (builder != BUILDER_Condition && FindRule(rules, name) != nullptr)
        {
            owners.push_back(TitleOfNode(builder));
        }
    }
    std::string text;
    for (std::size_t i = 0; i < owners.size(); ++i)
    {
        text += i == 0 ? "" : i + 1 == owners.size() ? " or " : ", ";
        text += owners[i];
    }
    return text;
}

} // namespace vell::check
