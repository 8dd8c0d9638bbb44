// VELL: data-driven hierarchical state machines.
// tools/vell/Graph.h: a machine as the nodes and edges of a picture.
#pragma once

#include <string>
#include <vector>

namespace vell::tool
{

class ObservedMachine;

/// How a node is drawn.
enum class NodeShape
{
    State,
    Level, ///< a substate, with what it holds inside
    Enter,
    Exit,
    Global,
    Other,  ///< a connector, or another node that cannot run
    Unknown ///< an id that no node has
};

/// Whether a node is on a stack.
enum class NodeLight
{
    None,
    Waiting, ///< on the main stack while a blip runs
    Active   ///< on the stack that runs
};

struct GraphNode
{
    unsigned int id = 0;
    std::string name;
    NodeShape shape = NodeShape::State;
    bool isStart = false;
    bool isClosed = false; ///< a level that is drawn as one box
    bool isPort = false;   ///< a neighbour of the one level that is drawn
    NodeLight light = NodeLight::None;
    std::vector<GraphNode> inside; ///< of a level that is not closed
};

struct GraphEdge
{
    unsigned int from = 0;
    unsigned int to = 0;
    std::string name; ///< of the transition; empty for an enter node's way into its level
    std::string ends; ///< names of both nodes, as they are when levels are closed around them
    std::string via;  ///< the state inside a closed level whose transition it is
    int priority = 0;
    std::vector<std::string> conditions; ///< any one is enough; none when only triggers can fire it
    bool isDisabled = false;
    bool isUnlisted = false; ///< no state lists the transition
    bool isEntry = false;    ///< an enter node's way to the level's first state
};

/// A machine as nested nodes and edges between them. Nodes are in ascending order of ids; the edges
/// of one node are in the order in which its transitions are tested.
struct Graph
{
    std::string title;
    std::string subtitle; ///< may be empty
    std::vector<GraphNode> nodes;
    std::vector<GraphEdge> edges;
};

/// Reads the graph from the definitions of a loaded machine. A target that does not exist becomes a
/// separate node, so that it is visible. States on a stack are lit.
Graph ReadGraph(const ObservedMachine& machine);

} // namespace vell::tool
