// VELL: data-driven hierarchical state machines.
// tests/model/ModelCase.cpp: the document and the host calls of a case, as text.

#include "tests/model/ModelCase.h"

#include <durm/DURMBaseLib.h>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>

namespace model
{

namespace
{

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

const char* OperatorName(int evaluation)
{
    static const char* const names[] = {nullptr,          "equal", "notEqual",   "greater",
                                        "greaterOrEqual", "less",  "lessOrEqual"};
    if (evaluation == 10)
    {
        return "range";
    }
    return evaluation >= 1 && evaluation <= 6 ? names[evaluation] : "unheardOf";
}

void Member(Writer& writer, vell::__JSONTYPES__ member)
{
    writer.Key(DURMBaseLib::GetJsonName(member));
}

void MemberId(Writer& writer, vell::__JSONTYPES__ member, unsigned int id)
{
    Member(writer, member);
    writer.Uint(id);
}

void MemberText(Writer& writer, vell::__JSONTYPES__ member, const std::string& text)
{
    Member(writer, member);
    writer.String(text.c_str());
}

std::string FloatText(float value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "%.9g", static_cast<double>(value));
    return buffer;
}

void WriteTyped(Writer& writer, int type, const Value& value)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        writer.Bool(value.flag);
        break;
    case DURMBaseLib::PARAM_Integer:
        writer.Int(value.whole);
        break;
    case DURMBaseLib::PARAM_Float:
        writer.Double(static_cast<double>(value.reals[0]));
        break;
    default:
        writer.String(value.text.c_str());
        break;
    }
}

void WriteParameter(Writer& writer, const Parameter& parameter)
{
    writer.StartObject();
    MemberText(writer, DURMBaseLib::JSON_Name, parameter.name);
    MemberId(writer, DURMBaseLib::JSON_ID, parameter.Id());
    MemberText(writer, DURMBaseLib::JSON_ParameterType,
               DURMBaseLib::GetParameterName(static_cast<vell::__ePARAMTYPE__>(parameter.type)));
    if (!parameter.assign.empty())
    {
        MemberText(writer, DURMBaseLib::JSON_ParameterAssign, parameter.assign);
    }
    if (parameter.hasReset)
    {
        Member(writer, DURMBaseLib::JSON_ParameterResetEachFrame);
        writer.Bool(true);
    }
    Member(writer, DURMBaseLib::JSON_ParameterDefault);
    if (parameter.type >= DURMBaseLib::PARAM_Float2 && parameter.type <= DURMBaseLib::PARAM_Float4)
    {
        std::string text = FloatText(parameter.initial.reals[0]);
        for (int index = 1; index < parameter.type - 2; ++index)
        {
            text += "," + FloatText(parameter.initial.reals[static_cast<std::size_t>(index)]);
        }
        writer.StartArray();
        writer.StartObject();
        writer.Key("VARIANT_Data");
        writer.String(text.c_str());
        writer.EndObject();
        writer.EndArray();
    }
    else
    {
        WriteTyped(writer, parameter.type, parameter.initial);
    }
    writer.EndObject();
}

void WriteCondition(Writer& writer, const Condition& condition)
{
    const int type = condition.mistake == Mistake::VectorType
                         ? static_cast<int>(DURMBaseLib::PARAM_Float2)
                         : condition.type;
    writer.StartObject();
    MemberText(writer, DURMBaseLib::JSON_Name, "condition");
    MemberText(writer, DURMBaseLib::JSON_ConditionType,
               DURMBaseLib::GetParameterName(static_cast<vell::__ePARAMTYPE__>(type)));
    MemberId(writer, DURMBaseLib::JSON_ConditionParameter, condition.parameterId);
    if (condition.mistake != Mistake::NoOperator)
    {
        MemberText(writer, DURMBaseLib::JSON_ConditionEvaluation,
                   OperatorName(condition.evaluation));
    }
    if (condition.mistake != Mistake::NoOperand)
    {
        Member(writer, DURMBaseLib::JSON_ConditionValue);
        writer.StartArray();
        writer.StartObject();
        Member(writer, DURMBaseLib::JSON_Value);
        WriteTyped(writer, condition.hasRange ? 8 : condition.type, condition.value);
        writer.EndObject();
        writer.EndArray();
    }
    writer.EndObject();
}

void WriteTransition(Writer& writer, const Node& node)
{
    MemberId(writer, DURMBaseLib::JSON_TransitionSource, node.parentId);
    MemberId(writer, DURMBaseLib::JSON_TransitionTarget, node.targetId);
    if (node.hasPriority)
    {
        Member(writer, DURMBaseLib::JSON_TransitionPriority);
        writer.Int(node.priority);
    }
    if (node.disabled)
    {
        Member(writer, DURMBaseLib::JSON_TransitionDisabled);
        writer.Bool(true);
    }
    Member(writer, DURMBaseLib::JSON_TransitionSwitchArgument);
    writer.Double(static_cast<double>(node.switchArgument));
    Member(writer, DURMBaseLib::JSON_Conditions);
    writer.StartArray();
    for (const Condition& condition : node.conditions)
    {
        WriteCondition(writer, condition);
    }
    writer.EndArray();
}

void WriteMembersOfBuilder(Writer& writer, const Node& node)
{
    switch (node.builder)
    {
    case DURMBaseLib::BUILDER_Connector:
        MemberText(writer, DURMBaseLib::JSON_ConnectorType,
                   DURMBaseLib::GetConnectorName(DURMBaseLib::CONNECTOR_Entering));
        break;
    case DURMBaseLib::BUILDER_Transition:
        WriteTransition(writer, node);
        break;
    case DURMBaseLib::BUILDER_Enter:
        MemberId(writer, DURMBaseLib::JSON_EntryTarget, node.entryTarget);
        break;
    case DURMBaseLib::BUILDER_AnimClip:
        if (!node.clipName.empty())
        {
            MemberText(writer, DURMBaseLib::JSON_ClipName, node.clipName);
        }
        Member(writer, DURMBaseLib::JSON_ClipFlag);
        writer.Bool(node.clipFlag);
        break;
    case DURMBaseLib::BUILDER_Substate:
        MemberId(writer, DURMBaseLib::JSON_SubstateEnter, node.enterId);
        MemberId(writer, DURMBaseLib::JSON_SubstateExit, node.exitId);
        break;
    default:
        break;
    }
}

void WriteNodes(Writer& writer, const std::vector<Node>& nodes)
{
    writer.StartArray();
    for (const Node& node : nodes)
    {
        writer.StartObject();
        MemberText(writer, DURMBaseLib::JSON_Name, node.Name());
        MemberId(writer, DURMBaseLib::JSON_ID, node.id);
        MemberId(writer, DURMBaseLib::JSON_ParentID, node.parentId);
        MemberText(writer, DURMBaseLib::JSON_BuilderType, std::to_string(node.builder));
        if (!node.children.empty())
        {
            Member(writer, DURMBaseLib::JSON_Children);
            writer.StartArray();
            for (const unsigned int child : node.children)
            {
                writer.Uint(child);
            }
            writer.EndArray();
        }
        WriteMembersOfBuilder(writer, node);
        writer.EndObject();
    }
    writer.EndArray();
}

void WriteHead(Writer& writer, const Document& document)
{
    Member(writer, DURMBaseLib::JSON_Head);
    writer.StartObject();
    MemberId(writer, DURMBaseLib::JSON_ID, 1);
    MemberId(writer, DURMBaseLib::JSON_HeadVersion, 3);
    MemberText(writer, DURMBaseLib::JSON_HeadMachineType, "character");
    MemberId(writer, DURMBaseLib::JSON_HeadMemory, 4000);
    MemberId(writer, DURMBaseLib::JSON_HeadEnterNode, 1);
    MemberId(writer, DURMBaseLib::JSON_HeadSubstateRoot, document.startId);
    writer.EndObject();
}

std::string IdList(const Ids& ids)
{
    std::string text = "[";
    for (const unsigned int id : ids)
    {
        text += (text.size() > 1 ? " " : "") + std::to_string(id);
    }
    return text + "]";
}

const char* KindName(InputKind kind)
{
    static const char* const names[] = {"Tick",
                                        "Start",
                                        "SetParameter",
                                        "ToolWrite",
                                        "ParameterEvent",
                                        "Broadcast",
                                        "SetMessage",
                                        "CreateParameter",
                                        "Rebind",
                                        "PushId",
                                        "PushCurrent",
                                        "Pop",
                                        "RevertToPrevious",
                                        "RevertToStart",
                                        "ChangeState",
                                        "AssignTrigger",
                                        "SubscribeState",
                                        "UnsubscribeState",
                                        "SubscribeTransition",
                                        "SubscribeEvents",
                                        "UnsubscribeEvents",
                                        "FireEvent",
                                        "SetCallback",
                                        "SetContext"};
    return names[static_cast<int>(kind)];
}

} // namespace

unsigned int Parameter::Id() const
{
    std::string text = name;
    return DURMBaseLib::ConvertStringToCRC(text);
}

std::string Node::Name() const
{
    const char* prefix = "N";
    switch (builder)
    {
    case DURMBaseLib::BUILDER_Transition:
        prefix = "T";
        break;
    case DURMBaseLib::BUILDER_Enter:
        prefix = "Enter";
        break;
    case DURMBaseLib::BUILDER_Exit:
        prefix = "Exit";
        break;
    case DURMBaseLib::BUILDER_Global:
        prefix = "Global";
        break;
    case DURMBaseLib::BUILDER_Substate:
        prefix = "Sub";
        break;
    default:
        break;
    }
    return prefix + std::to_string(id);
}

Parameter RuntimeParameter(int number)
{
    static const int types[kRuntimeParameterCount] = {
        DURMBaseLib::PARAM_Bool, DURMBaseLib::PARAM_Integer, DURMBaseLib::PARAM_Float,
        DURMBaseLib::PARAM_Message};
    Parameter parameter;
    parameter.name = "runtime" + std::to_string(number);
    parameter.type = types[number];
    parameter.initial.flag = true;
    parameter.initial.whole = 1;
    parameter.initial.reals[0] = 0.5f;
    parameter.initial.text = "go";
    return parameter;
}

bool TriggerHolds(int number, unsigned int count)
{
    switch (number)
    {
    case 0:
        return false;
    case 1:
        return count % 5 == 0;
    case 2:
        return count % 2 == 0;
    default:
        return count % 3 == 1;
    }
}

std::string WriteDocument(const Document& document)
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    WriteHead(writer, document);
    Member(writer, DURMBaseLib::JSON_Parameters);
    writer.StartArray();
    for (const Parameter& parameter : document.parameters)
    {
        WriteParameter(writer, parameter);
    }
    writer.EndArray();
    Member(writer, DURMBaseLib::JSON_Layers);
    writer.StartArray();
    for (const std::vector<Node>& layer : document.layers)
    {
        writer.StartObject();
        MemberText(writer, DURMBaseLib::JSON_Name, "layer");
        Member(writer, DURMBaseLib::JSON_Nodes);
        WriteNodes(writer, layer);
        writer.EndObject();
    }
    writer.EndArray();
    Member(writer, DURMBaseLib::JSON_Global);
    WriteNodes(writer, document.globals);
    writer.EndObject();
    return buffer.GetString();
}

std::string DescribeValue(const Value& value)
{
    std::string text = value.flag ? "true " : "false ";
    text += std::to_string(value.whole);
    for (const float real : value.reals)
    {
        text += " " + FloatText(real);
    }
    return text + " \"" + value.text + "\"";
}

std::string Describe(const Input& input)
{
    std::string text = KindName(input.kind);
    switch (input.kind)
    {
    case InputKind::Tick:
        return text + " " + FloatText(input.time);
    case InputKind::SetParameter:
    case InputKind::ToolWrite:
    case InputKind::SetMessage:
        return text + " " + std::to_string(input.id) + " to " + DescribeValue(input.value);
    case InputKind::ParameterEvent:
        text += " " + std::to_string(input.id) + " event " + std::to_string(input.number) + " of";
        for (const int word : input.record)
        {
            text += " " + std::to_string(word);
        }
        return text;
    case InputKind::Broadcast:
    case InputKind::PushId:
    case InputKind::ChangeState:
        return text + " " + std::to_string(input.id);
    case InputKind::AssignTrigger:
        return text + " " + std::to_string(input.number) + " to " + std::to_string(input.id);
    case InputKind::SetContext:
        return text + " stack " + IdList(input.stack) + " blip " + IdList(input.blip) + " next " +
               std::to_string(input.change[0]) + " previous " + std::to_string(input.change[1]) +
               " transition " + std::to_string(input.change[2]);
    case InputKind::Start:
    case InputKind::Rebind:
    case InputKind::PushCurrent:
    case InputKind::Pop:
    case InputKind::RevertToPrevious:
    case InputKind::RevertToStart:
        return text;
    default:
        return text + " " + std::to_string(input.number);
    }
}

std::string Describe(const ActionPlan& action)
{
    std::string text = "Action of list " + std::to_string(static_cast<int>(action.list)) +
                       " on node " + std::to_string(action.nodeId);
    if (action.parameterId != 0)
    {
        text +=
            " sets " + std::to_string(action.parameterId) + " to " + std::to_string(action.value);
    }
    return text;
}

std::string NodeName(const Document& document, unsigned int id)
{
    std::vector<std::vector<Node>> arrays = document.layers;
    arrays.push_back(document.globals);
    for (const std::vector<Node>& nodes : arrays)
    {
        for (const Node& node : nodes)
        {
            if (node.id == id)
            {
                return node.Name();
            }
        }
    }
    return "nobody";
}

std::string ParameterName(const Document& document, unsigned int id)
{
    for (const Parameter& parameter : document.parameters)
    {
        if (parameter.Id() == id)
        {
            return parameter.name;
        }
    }
    for (int number = 0; number < kRuntimeParameterCount; ++number)
    {
        if (RuntimeParameter(number).Id() == id)
        {
            return RuntimeParameter(number).name;
        }
    }
    return "nobody";
}

std::size_t CountNodes(const Document& document)
{
    std::size_t count = document.globals.size();
    for (const std::vector<Node>& layer : document.layers)
    {
        count += layer.size();
    }
    return count;
}

} // namespace model
