// VELL: data-driven hierarchical state machines.
// tools/vell/GraphScope.cpp: the part of a machine that a picture shows.
#include "tools/vell/GraphScope.h"

#include "tools/vell/GraphText.h"
#include "tools/vell/Suggestion.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace vell::tool
{
namespace
{

std::vector<const GraphNode*> AllLevels(const GraphIndex& index)
{
    std::vector<const GraphNode*> levels;
    for (const GraphNode* node : index.Nodes())
    {
        if (node->shape == NodeShape::Level)
        {
            levels.push_back(node);
        }
    }
    return levels;
}

std::string NoSuchLevel(const std::string& name, const std::vector<const GraphNode*>& levels)
{
    if (levels.empty())
    {
        return "no level named '" + name + "'; the machine has no levels";
    }
    std::vector<std::string> names;
    std::string list;
    for (const GraphNode* level : levels)
    {
        list += (list.empty() ? "" : ", ") + level->name;
        names.push_back(level->name);
    }
    return "no level named '" + name + "'; levels are " + list + DidYouMean(name, names);
}

/// Finds the level by its name, or else by its id. Returns null and an error message when it is
/// not exactly one.
const GraphNode* FindLevel(const GraphIndex& index, const std::string& name, std::string* fault)
{
    const std::vector<const GraphNode*> levels = AllLevels(index);
    std::vector<const GraphNode*> found;
    std::copy_if(levels.begin(), levels.end(), std::back_inserter(found),
                 [&name](const GraphNode* level)
                 {
                     return level->name == name;
                 });
    if (found.empty())
    {
        std::copy_if(levels.begin(), levels.end(), std::back_inserter(found),
                     [&name](const GraphNode* level)
                     {
                         return std::to_string(level->id) == name;
                     });
    }
    if (found.size() == 1)
    {
        return found.front();
    }
    if (found.empty())
    {
        *fault = NoSuchLevel(name, levels);
        return nullptr;
    }
    *fault = std::to_string(found.size()) + " levels are named '" + name + "'; use an id: ";
    for (const GraphNode* level : found)
    {
        *fault += (level == found.front() ? "" : ", ") + std::to_string(level->id);
    }
    return nullptr;
}

/// Takes one level out of a graph, with its neighbours.
class Extraction
{
public:
    Extraction(const Graph& newGraph, const GraphIndex& newIndex) : graph(newGraph), index(newIndex)
    {
    }

    Graph Extract(const GraphNode& level)
    {
        Graph part;
        part.title = graph.title + ": " + level.name;
        part.subtitle = graph.subtitle;
        part.nodes.push_back(level);
        for (const GraphEdge& edge : graph.edges)
        {
            const bool isFromInside = index.Holds(level.id, edge.from);
            const bool isToInside = index.Holds(level.id, edge.to);
            if (isFromInside || isToInside)
            {
                part.edges.push_back(edge);
            }
            if (isFromInside != isToInside)
            {
                AddPort(isFromInside ? edge.to : edge.from);
            }
        }
        part.nodes.insert(part.nodes.end(), ports.begin(), ports.end());
        return part;
    }

private:
    void AddPort(unsigned int id)
    {
        if (!placed.insert(id).second)
        {
            return;
        }
        GraphNode port = *index.Find(id);
        port.inside.clear();
        port.isPort = true;
        port.isClosed = true;
        std::string path;
        for (const GraphNode* around : index.Around(id))
        {
            path += around->name + "/";
        }
        port.name = path + port.name;
        ports.push_back(port);
    }

    const Graph& graph;
    const GraphIndex& index;
    std::vector<GraphNode> ports;
    std::set<unsigned int> placed;
};

/// Closes levels, and moves the edges of what they hold to the boxes.
class Closing
{
public:
    void Close(std::vector<GraphNode>* nodes, std::size_t depth)
    {
        for (GraphNode& node : *nodes)
        {
            if (node.shape != NodeShape::Level || node.isClosed)
            {
                continue;
            }
            if (depth != 0)
            {
                Close(&node.inside, depth - 1);
                continue;
            }
            for (const GraphNode& inner : node.inside)
            {
                Hide(inner, &node);
            }
            node.inside.clear();
            node.isClosed = true;
        }
    }

    void MoveEdges(Graph* graph) const
    {
        std::vector<GraphEdge> edges;
        for (GraphEdge& edge : graph->edges)
        {
            const auto from = hidden.find(edge.from);
            const auto to = hidden.find(edge.to);
            const unsigned int newFrom = from == hidden.end() ? edge.from : from->second.box;
            const unsigned int newTo = to == hidden.end() ? edge.to : to->second.box;
            const bool isHidden = from != hidden.end() && (newFrom == newTo || edge.isEntry);
            if (isHidden)
            {
                continue;
            }
            edge.via = from == hidden.end() ? "" : from->second.name;
            edge.from = newFrom;
            edge.to = newTo;
            edges.push_back(edge);
        }
        graph->edges = std::move(edges);
    }

private:
    struct Hidden
    {
        unsigned int box = 0;
        std::string name;
    };

    void Hide(const GraphNode& node, GraphNode* box)
    {
        hidden[node.id] = {box->id, node.name};
        box->isStart = box->isStart || node.isStart;
        box->light = std::max(box->light, node.light);
        for (const GraphNode& inner : node.inside)
        {
            Hide(inner, box);
        }
    }

    std::map<unsigned int, Hidden> hidden;
};

} // namespace

std::string NarrowGraph(Graph* graph, const GraphScope& scope)
{
    if (!scope.level.empty())
    {
        std::string fault;
        const GraphIndex index(*graph);
        const GraphNode* level = FindLevel(index, scope.level, &fault);
        if (level == nullptr)
        {
            return fault;
        }
        Graph part = Extraction(*graph, index).Extract(*level);
        *graph = std::move(part);
    }
    if (scope.depth)
    {
        Closing closing;
        const bool isPart = !scope.level.empty();
        // A level that is drawn alone is open; what counts is the depth inside it.
        closing.Close(isPart ? &graph->nodes.front().inside : &graph->nodes, *scope.depth - 1);
        closing.MoveEdges(graph);
    }
    return "";
}

} // namespace vell::tool
