// VELL: data-driven hierarchical state machines.
// tools/vell/Graph.h: the picture of a machine.
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

struct GraphNode
{
    unsigned int id = 0;
    std::string name;
    NodeShape shape = NodeShape::State;
    bool isStart = false;
    std::vector<GraphNode> inside; ///< of a level
};

struct GraphEdge
{
    unsigned int from = 0;
    unsigned int to = 0;
    std::string name;  ///< of the transition; empty for an enter node's way into its level
    std::string label; ///< priority and conditions
    bool isDisabled = false;
    bool isEntry = false; ///< an enter node's way to the level's first state
};

/// A machine as nested nodes and edges between them, in ascending order of ids.
struct Graph
{
    std::vector<GraphNode> nodes;
    std::vector<GraphEdge> edges;
};

/// Reads the graph from the definitions of a loaded machine. A target that does not exist becomes a
/// separate node, so that it is visible.
Graph ReadGraph(const ObservedMachine& machine);

/// Gives the text of the graph for Graphviz.
std::string GraphToDot(const Graph& graph);

/// Gives the text of the graph for Mermaid.
std::string GraphToMermaid(const Graph& graph);

/// Draws `dot` with Graphviz's program of that name. Returns an empty text, with an error message
/// in `fault`, on failure.
std::string DotToSvg(const std::string& dot, std::string* fault);

} // namespace vell::tool
