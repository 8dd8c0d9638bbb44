// VELL: data-driven hierarchical state machines.
// tests/support/DocumentBuilder.h: machine documents for tests, in the vocabulary's words.
#pragma once

#include "tests/support/Json.h"

#include <string>
#include <vector>

namespace vell::test
{

using Ids = std::vector<unsigned int>;

// The vocabulary's words for numbers; an empty text for a number that has none.
std::string BuilderName(int number);
std::string ParameterTypeName(int number);
std::string OperatorName(int number);
std::string AssignName(int number);
std::string MachineTypeName(int number);

/// Gives the id of a parameter: the CRC of its name.
unsigned int ParameterId(const std::string& name);

// Nodes. Each has a name, an id, a builder, a parent id, and where given its children; further
// members are set on the result.
JsonObject Node(int builder, const std::string& name, unsigned int id, const Ids& children = {},
                unsigned int parent = 0);
JsonObject Generic(const std::string& name, unsigned int id, const Ids& children = {},
                   unsigned int parent = 0);
JsonObject Clip(const std::string& name, unsigned int id, const std::string& clipName,
                const Ids& children = {}, unsigned int parent = 0);
JsonObject Enter(const std::string& name, unsigned int id, unsigned int target,
                 unsigned int parent = 0);
JsonObject Exit(const std::string& name, unsigned int id, unsigned int parent = 0);
JsonObject Substate(const std::string& name, unsigned int id, unsigned int enter, unsigned int exit,
                    const Ids& children = {}, unsigned int parent = 0);
JsonObject Global(const std::string& name, unsigned int id, const Ids& children = {});
JsonObject Connector(const std::string& name, unsigned int id, const std::string& kind);
/// Without conditions the member is left out; the load then warns and the transition never holds by
/// itself.
JsonObject Transition(const std::string& name, unsigned int id, unsigned int source,
                      unsigned int target, const std::vector<Json>& conditions = {});

/// A condition of a parameter type number, on the parameter `parameterName`, with an operator
/// number.
JsonObject Condition(int parameterType, const std::string& parameterName, int evaluation,
                     const Json& value);
JsonObject BoolCondition(const std::string& parameterName, bool value);
JsonObject IntCondition(const std::string& parameterName, int evaluation, int value);
JsonObject FloatCondition(const std::string& parameterName, int evaluation, double value);
JsonObject MessageCondition(const std::string& parameterName, const std::string& text);

/// An attribute; `typeName` is one of "QString", "int", "double", "QVector2D", "QVector3D",
/// "QVector4D", "bool".
JsonObject Attribute(const std::string& name, const std::string& typeName, const Json& value);

// Parameters, each with its CRC as id.
JsonObject Parameter(int parameterType, const std::string& name, const Json& value);
JsonObject BoolParameter(const std::string& name, bool value);
JsonObject IntParameter(const std::string& name, int value);
JsonObject FloatParameter(const std::string& name, double value);
JsonObject MessageParameter(const std::string& name, const std::string& text);
/// A bool parameter that is false again after every tick.
JsonObject PulseParameter(const std::string& name);
/// Two to four floats as a text such as "0.5,1".
JsonObject VectorParameter(int parameterType, const std::string& name, const std::string& numbers);

/// A whole document: a version 3 head with an identity, a small arena and a start state, an array
/// of parameters, and one layer, "Base", until others are added.
class DocumentBuilder
{
public:
    DocumentBuilder();

    /// The head, for setting or removing members.
    JsonObject& Head();
    /// Members of the root that stand in place of those built, or beside them.
    JsonObject& Root();
    /// Leaves a member of the root out.
    DocumentBuilder& LeaveOut(DURMBaseLib::__JSONTYPES__ member);

    /// The state that Start pushes; also the head's entry node.
    DocumentBuilder& Start(unsigned int id);
    DocumentBuilder& Parameter(const Json& parameter);
    /// Adds a node to the layer added last.
    DocumentBuilder& Node(const Json& node);
    DocumentBuilder& Nodes(const std::vector<Json>& nodes);
    /// Adds a substate with its enter node, `id` + 1, which leads to `first`, and its exit node,
    /// `id` + 2, named NAMEIn and NAMEOut.
    DocumentBuilder& Level(const std::string& name, unsigned int id, unsigned int first,
                           const Ids& children = {}, unsigned int parent = 0);
    /// Starts a further layer. The first call renames the layer "Base" while that has no nodes.
    DocumentBuilder& Layer(const std::string& name);
    DocumentBuilder& GlobalNode(const Json& node);
    DocumentBuilder& Skeleton(const Json& skeleton);

    std::string Text() const;

private:
    struct LayerNodes
    {
        std::string name;
        std::vector<Json> nodes;
    };

    JsonObject head;
    JsonObject root;
    std::vector<Json> parameters;
    std::vector<LayerNodes> layers;
    std::vector<Json> globals;
    std::vector<Json> skeletons;
    std::vector<DURMBaseLib::__JSONTYPES__> left;
};

} // namespace vell::test
