// VELL: data-driven hierarchical state machines.
// tests/fuzz/GrammarDocument.cpp: building of documents from a fuzzer's decisions.
#include "tests/fuzz/GrammarDocument.h"

#include "tests/fuzz/Bytes.h"
#include "tests/support/DocumentBuilder.h"

#include <array>
#include <vector>

namespace vell::fuzz
{
namespace
{

using namespace DURMBaseLib;
using test::Json;
using test::JsonObject;

const std::array<const char*, 6> kNames = {"a", "b", "c", "go", "Enter", ""};

/// Builds values; every value it is asked for may come out as something else.
class Author
{
public:
    explicit Author(Bytes& decisions) : bytes(decisions)
    {
    }

    std::string Document();

private:
    Json Number()
    {
        static const char* const kExtremes[] = {"0",
                                                "-1",
                                                "2147483647",
                                                "-2147483648",
                                                "4294967295",
                                                "4294967296",
                                                "-9223372036854775808",
                                                "18446744073709551615",
                                                "1e308",
                                                "-1e308",
                                                "1e-320",
                                                "0.1",
                                                "-0.0",
                                                "1e39"};
        return Json::Raw(kExtremes[bytes.Below(14)]);
    }

    Json Text()
    {
        switch (bytes.Below(8))
        {
        case 0:
            return Json("");
        case 1:
            return Json(std::string(bytes.Byte() * 8, 'x'));
        case 2:
            return Json::Raw("\"go\\u0000stop\"");
        case 3:
            return Json::Raw("\"\xc3\x28\xff\xed\xa0\x80\"");
        case 4:
            return Json(bytes.Text(24));
        case 5:
            return Json("1,2,3,4,5,,,");
        case 6:
            return Json("9999999999999,-1e99,nan,inf");
        default:
            return Json(kNames[bytes.Below(6)]);
        }
    }

    Json Anything()
    {
        switch (bytes.Below(9))
        {
        case 0:
            return Json::Null();
        case 1:
            return Json(true);
        case 2:
            return Json::Array({});
        case 3:
            return Json::Array({Json(1), Text(), Json::Null(), Json::Array({})});
        case 4:
            return JsonObject();
        case 5:
            return JsonObject().Set(JSON_Value, Number()).Set(JSON_ID, Id());
        case 6:
            return Json::Raw(std::string(bytes.Byte(), '[') + "1");
        case 7:
            return Number();
        default:
            return Text();
        }
    }

    /// Small ids, so that they meet; and a few that nothing has.
    Json Id()
    {
        const unsigned int choice = bytes.Byte();
        return choice < 240 ? Json(choice % 24) : Number();
    }

    Json Ids()
    {
        std::vector<Json> ids;
        for (unsigned int count = bytes.Below(5); count != 0; --count)
        {
            ids.push_back(Id());
        }
        return Json::Array(ids);
    }

    /// Sets a member as it should be; now and then leaves it out, doubles or spoils it.
    void Set(JsonObject& object, __JSONTYPES__ member, const Json& good)
    {
        const unsigned int choice = bytes.Byte();
        if (choice >= 250)
        {
            object.Set(member, Anything());
        }
        else if (choice >= 247)
        {
            object.Add(GetJsonName(member), good).Add(GetJsonName(member), Anything());
        }
        else if (choice < 244)
        {
            object.Set(member, good);
        }
    }

    /// Now and then spoils one of the members of a good object.
    void Spoil(JsonObject& object, const std::vector<__JSONTYPES__>& members)
    {
        const unsigned int choice = bytes.Byte();
        if (choice >= 240)
        {
            object.Set(members[choice % members.size()], Anything());
        }
        else if (choice >= 235)
        {
            object.Remove(members[choice % members.size()]);
        }
    }

    Json Name()
    {
        const unsigned int choice = bytes.Byte();
        return choice < 240 ? Json(kNames[choice % 6]) : Text();
    }

    Json ValueOf(int type);
    Json ConditionOf(int type);
    Json Conditions();
    Json Attributes();
    Json Parameter();
    Json ConditionNode(const JsonObject& node);
    Json NodeOf(int builder);
    Json Node();
    Json Nodes(unsigned int atMost);
    Json Head();
    Json Layers();

    Bytes& bytes;
};

Json Author::ValueOf(int type)
{
    if (bytes.Below(12) == 0)
    {
        return Anything();
    }
    switch (type)
    {
    case PARAM_Bool:
        return Json(bytes.Below(2) == 1);
    case PARAM_Integer:
    case PARAM_Float:
        return bytes.Below(4) == 0 ? Number() : Json(static_cast<int>(bytes.Below(5)) - 2);
    default:
        return Text();
    }
}

Json Author::ConditionOf(int type)
{
    const bool isRange = bytes.Below(6) == 0;
    const int evaluation = isRange ? 10 : static_cast<int>(bytes.Below(8));
    const Json value = isRange && bytes.Below(4) != 0 ? Json("-1,1") : ValueOf(type);
    JsonObject condition = test::Condition(type, kNames[bytes.Below(4)], evaluation, value);
    Spoil(condition, {JSON_Name, JSON_ConditionType, JSON_ConditionParameter,
                      JSON_ConditionEvaluation, JSON_ConditionValue});
    return condition;
}

Json Author::Conditions()
{
    std::vector<Json> conditions;
    for (unsigned int count = bytes.Below(4); count != 0; --count)
    {
        conditions.push_back(ConditionOf(static_cast<int>(bytes.Below(9))));
    }
    return Json::Array(conditions);
}

Json Author::Attributes()
{
    static const char* const kTypes[] = {"QString",   "int",       "double", "QVector2D",
                                         "QVector3D", "QVector4D", "bool",   "other"};
    static const int kTypeNumbers[] = {PARAM_Text,   PARAM_Integer, PARAM_Float, PARAM_Float2,
                                       PARAM_Float3, PARAM_Float4,  PARAM_Bool,  PARAM_Text};
    std::vector<Json> attributes;
    for (unsigned int count = bytes.Below(4); count != 0; --count)
    {
        const unsigned int type = bytes.Below(8);
        const bool isVector = type >= 3 && type <= 5;
        const Json value = isVector ? Json("1,2,3,4") : ValueOf(kTypeNumbers[type]);
        JsonObject attribute = test::Attribute(kNames[bytes.Below(6)], kTypes[type], value);
        if (bytes.Below(16) == 0)
        {
            attribute.Set("ATTRIB_Data", Json::Array({Anything()}));
        }
        Spoil(attribute, {JSON_Name, JSON_Value});
        attributes.push_back(attribute);
    }
    return Json::Array(attributes);
}

Json Author::Parameter()
{
    const int type = static_cast<int>(bytes.Below(10));
    const std::string name = kNames[bytes.Below(5)];
    const bool isVector = type >= PARAM_Float2 && type <= PARAM_Float4;
    JsonObject parameter = isVector ? test::VectorParameter(type, name, "1,2,3,4")
                                    : test::Parameter(type, name, ValueOf(type));
    if (bytes.Below(3) == 0)
    {
        Set(parameter, JSON_ParameterAssign, test::AssignName(static_cast<int>(bytes.Below(64))));
        Set(parameter, JSON_ParameterResetEachFrame, Json(bytes.Below(2) == 1));
    }
    Spoil(parameter, {JSON_Name, JSON_ID, JSON_ParameterType, JSON_ParameterDefault});
    return parameter;
}

/// Adds what a condition has to what every node has.
Json Author::ConditionNode(const JsonObject& node)
{
    const std::string condition = ConditionOf(static_cast<int>(bytes.Below(9))).Text();
    std::string text = node.Text();
    text.pop_back();
    return Json::Raw(text + (text.size() > 1 ? "," : "") + condition.substr(1));
}

Json Author::NodeOf(int builder)
{
    JsonObject node;
    Set(node, JSON_Name, Name());
    Set(node, JSON_ID, Id());
    Set(node, JSON_ParentID, Id());
    Set(node, JSON_BuilderType, test::BuilderName(builder));
    Set(node, JSON_Children, Ids());
    const unsigned int extras = bytes.Byte();
    if ((extras & 1u) != 0)
    {
        Set(node, JSON_Attributes, Attributes());
    }
    if ((extras & 2u) != 0)
    {
        Set(node, JSON_ScriptName, Text());
    }
    if ((extras & 12u) == 12u)
    {
        Set(node, JSON_ExitConnector, Id());
    }
    switch (builder)
    {
    case BUILDER_Transition:
        Set(node, JSON_TransitionSource, Id());
        Set(node, JSON_TransitionTarget, Id());
        Set(node, JSON_TransitionPriority, Json(bytes.Below(6)));
        Set(node, JSON_Conditions, Conditions());
        if (bytes.Below(4) == 0)
        {
            Set(node, JSON_TransitionDisabled, Json(bytes.Below(2) == 1));
            Set(node, JSON_TransitionTag, Number());
            Set(node, JSON_TransitionTagArgument, Anything());
            Set(node, JSON_TransitionSwitchArgument, Number());
        }
        break;
    case BUILDER_Condition:
        return ConditionNode(node);
    case BUILDER_Enter:
        Set(node, JSON_EntryTarget, Id());
        break;
    case BUILDER_Connector:
        Set(node, JSON_ConnectorType,
            Json(GetConnectorName(static_cast<__CONNECTOR_TYPES__>(1 + bytes.Below(4)))));
        break;
    case BUILDER_AnimClip:
        Set(node, JSON_ClipName, Text());
        Set(node, JSON_ClipFlag, Anything());
        Set(node, JSON_ClipSecondaryA, Anything());
        Set(node, JSON_ClipSecondaryB, Anything());
        break;
    case BUILDER_Substate:
        Set(node, JSON_SubstateEnter, Id());
        Set(node, JSON_SubstateExit, Id());
        break;
    default:
        break;
    }
    return node;
}

Json Author::Node()
{
    static const int kBuilders[] = {BUILDER_Generic,    BUILDER_Generic,    BUILDER_Substate,
                                    BUILDER_Enter,      BUILDER_Exit,       BUILDER_Transition,
                                    BUILDER_Transition, BUILDER_Transition, BUILDER_AnimClip,
                                    BUILDER_Global,     BUILDER_Connector,  BUILDER_Condition,
                                    BUILDER_Base,       BUILDER_None};
    return NodeOf(kBuilders[bytes.Below(14)]);
}

Json Author::Nodes(unsigned int atMost)
{
    std::vector<Json> nodes;
    for (unsigned int count = bytes.Below(atMost + 1); count != 0; --count)
    {
        nodes.push_back(Node());
    }
    return Json::Array(nodes);
}

Json Author::Head()
{
    JsonObject head;
    Set(head, JSON_HeadVersion, Json(bytes.Below(2) == 0 ? 3 : 2));
    Set(head, JSON_HeadEnterNode, Id());
    Set(head, JSON_HeadSubstateRoot, Id());
    Set(head, JSON_HeadMachineType, test::MachineTypeName(1));
    Set(head, JSON_HeadMemory, bytes.Below(16) == 0 ? Json(bytes.Byte() * 4) : Json(1000));
    if (bytes.Below(3) == 0)
    {
        Set(head, JSON_GUID, Text());
        Set(head, JSON_HeadBuildID, Text());
        Set(head, JSON_HeadEnterLayer, Id());
        Set(head, JSON_HeadValue84, Number());
    }
    return head;
}

Json Author::Layers()
{
    std::vector<Json> layers;
    for (unsigned int count = 1 + bytes.Below(2); count != 0; --count)
    {
        JsonObject layer;
        Set(layer, JSON_Name, Name());
        Set(layer, JSON_ID, Id());
        Set(layer, JSON_Nodes, Nodes(14));
        layers.push_back(layer);
    }
    return Json::Array(layers);
}

std::string Author::Document()
{
    JsonObject root;
    Set(root, JSON_Head, Head());
    std::vector<Json> parameters;
    for (unsigned int count = bytes.Below(6); count != 0; --count)
    {
        parameters.push_back(Parameter());
    }
    Set(root, JSON_Parameters, Json::Array(parameters));
    Set(root, JSON_Layers, Layers());
    const unsigned int extras = bytes.Byte();
    if ((extras & 1u) != 0)
    {
        Set(root, JSON_Global, Nodes(4));
    }
    if ((extras & 2u) != 0)
    {
        JsonObject skeleton;
        Set(skeleton, JSON_ModelFileName, Text());
        Set(skeleton, JSON_SkeletonFileName, Text());
        Set(skeleton, JSON_SkeletonValue89, Number());
        Set(root, JSON_Skeleton, skeleton);
    }
    return root.Text();
}

} // namespace

std::string GrammarDocument(Bytes& bytes)
{
    return Author(bytes).Document();
}

} // namespace vell::fuzz
