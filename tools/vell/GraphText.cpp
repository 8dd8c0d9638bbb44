// VELL: data-driven hierarchical state machines.
// tools/vell/GraphText.cpp: what the writers of pictures share.
#include "tools/vell/GraphText.h"

#include "tools/source/Cursor.h"
#include "tools/source/Printable.h"

#include <algorithm>

namespace vell::tool
{
namespace
{

constexpr std::size_t kLinesShown = 6;
constexpr std::size_t kLineLength = 48;

/// Cuts a text that is too long for a box; the tool tip has all of it.
std::string Shortened(const std::string& text)
{
    std::string whole = source::ToPrintableLines(text);
    source::Cursor cursor(whole);
    for (std::size_t count = 0; !cursor.AtEnd(); ++count)
    {
        if (count == kLineLength)
        {
            return std::string(cursor.From(0)) + "...";
        }
        cursor.AdvanceCharacter();
    }
    return whole;
}

std::string Remark(const GraphEdge& edge)
{
    return std::string(edge.isDisabled ? " (disabled)" : "") +
           (edge.isUnlisted ? " (no state lists it)" : "");
}

} // namespace

GraphIndex::GraphIndex(const Graph& graph)
{
    for (const GraphNode& node : graph.nodes)
    {
        Take(node, 0);
    }
    for (const GraphEdge& edge : graph.edges)
    {
        if (!edge.isEntry)
        {
            places[edge.from].transitions.push_back(&edge);
        }
        places[edge.to].isReached = true;
    }
    std::size_t count = 0;
    for (const GraphNode* node : nodes)
    {
        Place& place = places[node->id];
        place.colourNumber = place.transitions.empty() ? 0 : count++;
    }
}

void GraphIndex::Take(const GraphNode& node, unsigned int level)
{
    places[node.id].node = &node;
    places[node.id].level = level;
    nodes.push_back(&node);
    for (const GraphNode& inner : node.inside)
    {
        Take(inner, node.id);
    }
}

const GraphNode* GraphIndex::Find(unsigned int id) const
{
    const auto entry = places.find(id);
    return entry == places.end() ? nullptr : entry->second.node;
}

bool GraphIndex::IsOpenLevel(unsigned int id) const
{
    const GraphNode* node = Find(id);
    return node != nullptr && node->shape == NodeShape::Level && !node->isClosed;
}

std::vector<const GraphNode*> GraphIndex::Around(unsigned int id) const
{
    std::vector<const GraphNode*> around;
    for (auto entry = places.find(id); entry != places.end() && entry->second.level != 0;)
    {
        entry = places.find(entry->second.level);
        around.insert(around.begin(), entry->second.node);
    }
    return around;
}

bool GraphIndex::Holds(unsigned int level, unsigned int id) const
{
    const std::vector<const GraphNode*> around = Around(id);
    return id == level || std::any_of(around.begin(), around.end(),
                                      [level](const GraphNode* node)
                                      {
                                          return node->id == level;
                                      });
}

const std::vector<const GraphEdge*>& GraphIndex::TransitionsOf(unsigned int id) const
{
    static const std::vector<const GraphEdge*> kNone;
    const auto entry = places.find(id);
    return entry == places.end() ? kNone : entry->second.transitions;
}

std::size_t GraphIndex::ColourNumber(unsigned int id) const
{
    return places.at(id).colourNumber;
}

bool GraphIndex::IsReached(unsigned int id) const
{
    return places.at(id).isReached;
}

bool GraphIndex::IsShown(const GraphNode& node) const
{
    const Place& place = places.at(node.id);
    return node.shape != NodeShape::Exit || place.isReached || node.isStart ||
           node.light != NodeLight::None || !place.transitions.empty();
}

const std::vector<const GraphNode*>& GraphIndex::Nodes() const
{
    return nodes;
}

std::vector<std::string> TransitionLines(const GraphEdge& edge)
{
    std::vector<std::string> lines;
    const std::size_t count = edge.conditions.size();
    // A last line that says "1 more" would take the room of what it leaves out.
    const std::size_t shown = count <= kLinesShown ? count : kLinesShown - 1;
    for (std::size_t i = 0; i < shown; ++i)
    {
        lines.push_back((i == 0 ? "" : "or ") + Shortened(edge.conditions[i]));
    }
    if (shown < count)
    {
        lines.push_back("or " + std::to_string(count - shown) + " more");
    }
    if (lines.empty())
    {
        lines.emplace_back("a trigger");
    }
    if (!edge.via.empty())
    {
        lines.front() = Shortened(edge.via) + ": " + lines.front();
    }
    lines.back() += Remark(edge);
    return lines;
}

std::string TransitionTip(const GraphEdge& edge)
{
    std::string tip = edge.name + " (" + edge.ends + "), priority " + std::to_string(edge.priority);
    const char* separator = ": ";
    for (const std::string& condition : edge.conditions)
    {
        tip += separator + condition;
        separator = " or ";
    }
    return source::ToPrintableLines(tip + (edge.conditions.empty() ? ": a trigger" : "") +
                                    Remark(edge));
}

std::string NodeTip(const GraphNode& node, const GraphIndex& index)
{
    std::string tip = node.shape == NodeShape::Unknown
                          ? node.name
                          : node.name + ", id " + std::to_string(node.id);
    for (const GraphEdge* edge : index.TransitionsOf(node.id))
    {
        tip += "\n" + TransitionTip(*edge);
    }
    return source::ToPrintableLines(tip);
}

std::string Replaced(const std::string& text, const std::map<char, std::string_view>& replacements)
{
    std::string replaced;
    for (const char c : text)
    {
        const auto entry = replacements.find(c);
        replaced += entry == replacements.end() ? std::string(1, c) : std::string(entry->second);
    }
    return replaced;
}

std::string NodeKey(unsigned int id)
{
    return "n" + std::to_string(id);
}

std::string Indent(std::size_t depth)
{
    return std::string(depth * 4, ' ');
}

} // namespace vell::tool
