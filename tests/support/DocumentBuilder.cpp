// VELL: data-driven hierarchical state machines.
// tests/support/DocumentBuilder.cpp: the pieces of a machine document.
#include "tests/support/DocumentBuilder.h"

#include <durm/DURMBaseLib.h>

#include "platform/durm/Vocabulary.h"

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

template <std::size_t N>
std::string FindWord(const Word (&words)[N], int number)
{
    for (const Word& word : words)
    {
        if (word.number == number)
        {
            return word.text;
        }
    }
    return std::string();
}

/// A document of the tests needs no more than 16 KiB times the arena's factor of 100.
constexpr int kMemoryFigure = 16384;

} // namespace

std::string BuilderName(int number)
{
    const std::string word = FindWord(kBuilders, number);
    return word.empty() ? std::to_string(number) : word;
}

std::string ParameterTypeName(int number)
{
    return FindWord(kParameterTypes, number);
}

std::string OperatorName(int number)
{
    return FindWord(kOperators, number);
}

std::string AssignName(int number)
{
    return FindWord(kAssigns, number);
}

std::string MachineTypeName(int number)
{
    return FindWord(kMachineTypes, number);
}

unsigned int ParameterId(const std::string& name)
{
    std::string text = name;
    return ConvertStringToCRC(text);
}

JsonObject Node(int builder, const std::string& name, unsigned int id, const Ids& children,
                unsigned int parent)
{
    JsonObject node;
    node.Set(JSON_Name, name).Set(JSON_ID, id).Set(JSON_ParentID, parent);
    node.Set(JSON_BuilderType, BuilderName(builder));
    if (!children.empty())
    {
        node.Set(JSON_Children, Json::Array(children));
    }
    return node;
}

JsonObject Generic(const std::string& name, unsigned int id, const Ids& children,
                   unsigned int parent)
{
    return Node(BUILDER_Generic, name, id, children, parent);
}

JsonObject Clip(const std::string& name, unsigned int id, const std::string& clipName,
                const Ids& children, unsigned int parent)
{
    return Node(BUILDER_AnimClip, name, id, children, parent).Set(JSON_ClipName, clipName);
}

JsonObject Enter(const std::string& name, unsigned int id, unsigned int target, unsigned int parent)
{
    return Node(BUILDER_Enter, name, id, {}, parent).Set(JSON_EntryTarget, target);
}

JsonObject Exit(const std::string& name, unsigned int id, unsigned int parent)
{
    return Node(BUILDER_Exit, name, id, {}, parent);
}

JsonObject Substate(const std::string& name, unsigned int id, unsigned int enter, unsigned int exit,
                    const Ids& children, unsigned int parent)
{
    return Node(BUILDER_Substate, name, id, children, parent)
        .Set(JSON_SubstateEnter, enter)
        .Set(JSON_SubstateExit, exit);
}

JsonObject Global(const std::string& name, unsigned int id, const Ids& children)
{
    return Node(BUILDER_Global, name, id, children);
}

JsonObject Connector(const std::string& name, unsigned int id, const std::string& kind)
{
    return Node(BUILDER_Connector, name, id).Set(JSON_ConnectorType, kind);
}

JsonObject Transition(const std::string& name, unsigned int id, unsigned int source,
                      unsigned int target, const std::vector<Json>& conditions)
{
    JsonObject node = Node(BUILDER_Transition, name, id);
    node.Set(JSON_TransitionSource, source).Set(JSON_TransitionTarget, target);
    if (!conditions.empty())
    {
        node.Set(JSON_Conditions, Json::Array(conditions));
    }
    return node;
}

JsonObject Condition(int parameterType, const std::string& parameterName, int evaluation,
                     const Json& value)
{
    JsonObject operand;
    operand.Set(JSON_Value, value);
    JsonObject condition;
    condition.Set(JSON_Name, "on " + parameterName);
    condition.Set(JSON_ConditionType, ParameterTypeName(parameterType));
    condition.Set(JSON_ConditionParameter, ParameterId(parameterName));
    condition.Set(JSON_ConditionEvaluation, OperatorName(evaluation));
    condition.Set(JSON_ConditionValue, Json::Array({operand}));
    return condition;
}

JsonObject BoolCondition(const std::string& parameterName, bool value)
{
    return Condition(PARAM_Bool, parameterName, 1, value);
}

JsonObject IntCondition(const std::string& parameterName, int evaluation, int value)
{
    return Condition(PARAM_Integer, parameterName, evaluation, value);
}

JsonObject FloatCondition(const std::string& parameterName, int evaluation, double value)
{
    return Condition(PARAM_Float, parameterName, evaluation, value);
}

JsonObject MessageCondition(const std::string& parameterName, const std::string& text)
{
    return Condition(PARAM_Message, parameterName, 1, text);
}

JsonObject Attribute(const std::string& name, const std::string& typeName, const Json& value)
{
    JsonObject data;
    data.Set(JSON_AttributeType, typeName).Set(JSON_Value, value);
    JsonObject attribute;
    attribute.Set(JSON_Name, name).Set("ATTRIB_Data", Json::Array({data}));
    return attribute;
}

JsonObject Parameter(int parameterType, const std::string& name, const Json& value)
{
    JsonObject parameter;
    parameter.Set(JSON_Name, name).Set(JSON_ID, ParameterId(name));
    parameter.Set(JSON_ParameterType, ParameterTypeName(parameterType));
    parameter.Set(JSON_ParameterDefault, value);
    return parameter;
}

JsonObject BoolParameter(const std::string& name, bool value)
{
    return Parameter(PARAM_Bool, name, value);
}

JsonObject IntParameter(const std::string& name, int value)
{
    return Parameter(PARAM_Integer, name, value);
}

JsonObject FloatParameter(const std::string& name, double value)
{
    return Parameter(PARAM_Float, name, value);
}

JsonObject MessageParameter(const std::string& name, const std::string& text)
{
    return Parameter(PARAM_Message, name, text);
}

JsonObject PulseParameter(const std::string& name)
{
    return BoolParameter(name, false).Set(JSON_ParameterResetEachFrame, true);
}

JsonObject VectorParameter(int parameterType, const std::string& name, const std::string& numbers)
{
    JsonObject data;
    data.Set("VARIANT_Data", numbers);
    return Parameter(parameterType, name, Json::Array({data}));
}

DocumentBuilder::DocumentBuilder()
{
    head.Set(JSON_ID, 77).Set(JSON_HeadVersion, 3).Set(JSON_GUID, "guid-of-the-test");
    head.Set(JSON_HeadBuildID, "build-of-the-test");
    head.Set(JSON_HeadMachineType, MachineTypeName(HSMTYPE_Character));
    head.Set(JSON_HeadMemory, kMemoryFigure).Set(JSON_HeadEnterLayer, 0);
    layers.push_back({"Base", {}});
}

JsonObject& DocumentBuilder::Head()
{
    return head;
}

JsonObject& DocumentBuilder::Root()
{
    return root;
}

DocumentBuilder& DocumentBuilder::LeaveOut(__JSONTYPES__ member)
{
    left.push_back(member);
    return *this;
}

DocumentBuilder& DocumentBuilder::Start(unsigned int id)
{
    head.Set(JSON_HeadEnterNode, id).Set(JSON_HeadSubstateRoot, id);
    return *this;
}

DocumentBuilder& DocumentBuilder::Parameter(const Json& parameter)
{
    parameters.push_back(parameter);
    return *this;
}

DocumentBuilder& DocumentBuilder::Node(const Json& node)
{
    layers.back().nodes.push_back(node);
    return *this;
}

DocumentBuilder& DocumentBuilder::Nodes(const std::vector<Json>& nodes)
{
    for (const Json& node : nodes)
    {
        Node(node);
    }
    return *this;
}

DocumentBuilder& DocumentBuilder::Level(const std::string& name, unsigned int id,
                                        unsigned int first, const Ids& children,
                                        unsigned int parent)
{
    Node(Substate(name, id, id + 1, id + 2, children, parent));
    Node(Enter(name + "In", id + 1, first, id));
    return Node(Exit(name + "Out", id + 2, id));
}

DocumentBuilder& DocumentBuilder::Layer(const std::string& name)
{
    if (layers.size() == 1 && layers.back().nodes.empty())
    {
        layers.back().name = name;
        return *this;
    }
    layers.push_back({name, {}});
    return *this;
}

DocumentBuilder& DocumentBuilder::GlobalNode(const Json& node)
{
    globals.push_back(node);
    return *this;
}

DocumentBuilder& DocumentBuilder::Skeleton(const Json& skeleton)
{
    skeletons.assign(1, skeleton);
    return *this;
}

std::string DocumentBuilder::Text() const
{
    std::vector<Json> layerObjects;
    for (const LayerNodes& layer : layers)
    {
        JsonObject object;
        object.Set(JSON_Name, layer.name).Set(JSON_Nodes, Json::Array(layer.nodes));
        layerObjects.push_back(object);
    }
    JsonObject document = root;
    const auto setUnlessGiven = [&document, this](__JSONTYPES__ member, const Json& value)
    {
        if (!root.Has(member))
        {
            document.Set(member, value);
        }
    };
    setUnlessGiven(JSON_Head, head);
    setUnlessGiven(JSON_Parameters, Json::Array(parameters));
    setUnlessGiven(JSON_Layers, Json::Array(layerObjects));
    if (!globals.empty())
    {
        setUnlessGiven(JSON_Global, Json::Array(globals));
    }
    if (!skeletons.empty())
    {
        setUnlessGiven(JSON_Skeleton, skeletons.front());
    }
    for (const __JSONTYPES__ member : left)
    {
        document.Remove(member);
    }
    return document.Text();
}

} // namespace vell::test
