// VELL: data-driven hierarchical state machines.
// tools/vell/Graph.h: the picture of a machine.
#pragma once

#include <string>
#include <vector>

namespace vell::tool
{

class ObservedMachine;

/// What a node is drawn as.
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

/// A machine as nodes, level in level, and edges between them, in ascending order of ids.
struct Graph
{
    std::vector<GraphNode> nodes;
    std::vector<GraphEdge> edges;
};

/// Reads the graph from the definitions of a loaded machine. A target that no node has is a node of
/// its own, so that it shows.
Graph ReadGraph(const ObservedMachine& machine);

/// Gives the text of the graph for Graphviz.
std::string GraphToDot(const Graph& graph);

/// Gives the text of the graph for Mermaid.
std::string GraphToMermaid(const Graph& graph);

/// Draws a text for Graphviz by its program `dot`. Gives an empty text, with what is wrong in
/// `fault`, when that failed.
std::string DotToSvg(const std::string& dot, std::string* fault);

} // namespace vell::tool
