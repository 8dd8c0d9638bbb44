// VELL: data-driven hierarchical state machines.
// tools/vell/GraphText.h: what the writers of pictures share: places of nodes, texts, escapes.
#pragma once

#include "tools/vell/Graph.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vell::tool
{

/// Finds the nodes of a graph and what leads from them. The graph must outlive it.
class GraphIndex
{
public:
    explicit GraphIndex(const Graph& graph);

    /// Gives the node, or null.
    const GraphNode* Find(unsigned int id) const;
    /// Tells whether `id` is a level that is drawn with what it holds inside.
    bool IsOpenLevel(unsigned int id) const;
    /// Tells whether `id` is `level` or somewhere inside it.
    bool Holds(unsigned int level, unsigned int id) const;
    /// The levels around the node `id`, outermost first.
    std::vector<const GraphNode*> Around(unsigned int id) const;
    /// The transitions of the node `id`, in the order in which they are tested.
    const std::vector<const GraphEdge*>& TransitionsOf(unsigned int id) const;
    /// The number of the colour of the node's transitions. Nodes with transitions are counted in
    /// the order in which they are drawn.
    std::size_t ColourNumber(unsigned int id) const;
    /// Tells whether an edge leads to the node.
    bool IsReached(unsigned int id) const;
    /// Tells whether the node is part of the picture: an exit node is only when something reaches
    /// it.
    bool IsShown(const GraphNode& node) const;
    /// All nodes, a level before what it holds.
    const std::vector<const GraphNode*>& Nodes() const;

private:
    struct Place
    {
        const GraphNode* node = nullptr;
        unsigned int level = 0; ///< around it; 0 is the top
        bool isReached = false;
        std::size_t colourNumber = 0;
        std::vector<const GraphEdge*> transitions;
    };

    void Take(const GraphNode& node, unsigned int level);

    std::map<unsigned int, Place> places;
    std::vector<const GraphNode*> nodes;
};

/// The priority of a transition whose document names none. It is left out of pictures.
constexpr int kDefaultPriority = 5;

/// Gives the text of a transition, one line per condition.
std::vector<std::string> TransitionLines(const GraphEdge& edge);

/// Gives the text of a transition with its name, priority and every condition, for a tool tip.
std::string TransitionTip(const GraphEdge& edge);

/// Gives the text of a node with all its transitions, for a tool tip.
std::string NodeTip(const GraphNode& node, const GraphIndex& index);

/// Replaces single characters.
std::string Replaced(const std::string& text, const std::map<char, std::string_view>& replacements);

/// Names a node in the languages of Graphviz and Mermaid.
std::string NodeKey(unsigned int id);

std::string Indent(std::size_t depth);

} // namespace vell::tool
