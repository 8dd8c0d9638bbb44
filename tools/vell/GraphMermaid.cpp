// VELL: data-driven hierarchical state machines.
// tools/vell/GraphMermaid.cpp: a graph in Mermaid's language.
#include "tools/vell/GraphMermaid.h"

#include "tools/source/Printable.h"
#include "tools/vell/GraphText.h"
#include "tools/vell/GraphTheme.h"

#include <set>
#include <utility>

namespace vell::tool
{
namespace
{

std::string MermaidText(const std::string& text)
{
    return '"' +
           Replaced(source::ToPrintableLines(text), {{'"', "#quot;"},
                                                     {'#', "#35;"},
                                                     {'&', "#amp;"},
                                                     {'<', "#lt;"},
                                                     {'>', "#gt;"},
                                                     {'`', "#96;"},
                                                     {'\n', " "}}) +
           '"';
}

class MermaidWriter
{
public:
    MermaidWriter(const Graph& newGraph, const std::string& newDirection)
        : graph(newGraph), direction(newDirection), index(newGraph)
    {
    }

    std::string Write()
    {
        for (const GraphEdge& edge : graph.edges)
        {
            NoteAnchors(edge);
        }
        AddHead();
        for (const GraphNode& node : graph.nodes)
        {
            AddNode(node, 1);
        }
        text += starts;
        for (const GraphEdge& edge : graph.edges)
        {
            AddEdge(edge);
        }
        return text + links;
    }

private:
    void AddHead()
    {
        if (!graph.title.empty())
        {
            const std::string title =
                graph.title + (graph.subtitle.empty() ? "" : " - " + graph.subtitle);
            text = "---\ntitle: \"" +
                   Replaced(source::ToPrintableLines(title),
                            {{'"', "\\\""}, {'\\', "\\\\"}, {'\n', " "}}) +
                   "\"\n---\n";
        }
        text += "flowchart " + direction + "\n";
        for (const auto& [name, look] :
             {std::pair("mark", "fill:#57606a,stroke:#57606a"),
              std::pair("port", "stroke-dasharray:4"),
              std::pair("unknown", "stroke:#c00,color:#c00,stroke-dasharray:4"),
              std::pair("active", "fill:#1158c7,color:#fff,stroke:#1158c7,stroke-width:3px"),
              std::pair("waiting", "fill:#6e7781,color:#fff,stroke:#6e7781,stroke-width:3px")})
        {
            text += std::string("    classDef ") + name + " " + look + "\n";
        }
    }

    /// An edge between a substate and a node inside it cannot end at the frame of the substate; an
    /// extra node inside represents the substate then.
    void NoteAnchors(const GraphEdge& edge)
    {
        if (index.IsOpenLevel(edge.from) && index.Holds(edge.from, edge.to))
        {
            anchors.insert(edge.from);
        }
        if (index.IsOpenLevel(edge.to) && index.Holds(edge.to, edge.from))
        {
            anchors.insert(edge.to);
        }
    }

    std::string End(unsigned int id, unsigned int other) const
    {
        const bool isAnchored = index.IsOpenLevel(id) && index.Holds(id, other);
        return NodeKey(id) + (isAnchored ? "_level" : "");
    }

    static std::string Class(const GraphNode& node)
    {
        return node.light == NodeLight::Active    ? ":::active"
               : node.light == NodeLight::Waiting ? ":::waiting"
               : node.isPort                      ? ":::port"
                                                  : "";
    }

    static std::string Shaped(const GraphNode& node)
    {
        const std::string name = MermaidText(node.name);
        switch (node.shape)
        {
        case NodeShape::Enter:
            return "((\" \")):::mark";
        case NodeShape::Exit:
            return "(((" + name + ")))" + Class(node);
        case NodeShape::Global:
            return "{{" + name + "}}" + Class(node);
        case NodeShape::Other:
            return "[" + name + "]" + Class(node);
        case NodeShape::Unknown:
            return "[" + name + "]:::unknown";
        case NodeShape::State:
        case NodeShape::Level:
            break;
        }
        return "(" + name + ")" + Class(node);
    }

    void AddNode(const GraphNode& node, std::size_t depth)
    {
        if (!index.IsShown(node))
        {
            return;
        }
        const std::string key = NodeKey(node.id);
        if (index.IsOpenLevel(node.id))
        {
            AddLevel(node, depth);
        }
        else
        {
            text += Indent(depth) + key + Shaped(node) + "\n";
        }
        if (node.isStart)
        {
            starts += "    start((\" \")):::mark --> " + key + "\n";
            ++written;
        }
    }

    void AddLevel(const GraphNode& node, std::size_t depth)
    {
        const std::string key = NodeKey(node.id);
        text += Indent(depth) + "subgraph " + key + "[" + MermaidText(node.name) + "]\n";
        if (anchors.count(node.id) != 0)
        {
            text += Indent(depth + 1) + key + "_level(" + MermaidText(node.name) + ")\n";
        }
        for (const GraphNode& inner : node.inside)
        {
            AddNode(inner, depth + 1);
        }
        text += Indent(depth) + "end\n";
        if (node.light != NodeLight::None)
        {
            // The fill of a class would hide what the level holds.
            text += Indent(depth) + "style " + key +
                    " stroke:" + (node.light == NodeLight::Active ? kActive : kWaiting).light +
                    ",stroke-width:3px\n";
        }
    }

    void AddEdge(const GraphEdge& edge)
    {
        const char* arrow = edge.isDisabled || edge.isUnlisted ? " -.->" : " -->";
        text += "    " + End(edge.from, edge.to) + arrow +
                (edge.isEntry ? "" : "|" + LabelText(edge) + "|") + " " + End(edge.to, edge.from) +
                "\n";
        if (!edge.isEntry)
        {
            links += "    linkStyle " + std::to_string(written) +
                     " stroke:" + EdgeColour(index.ColourNumber(edge.from)).light + "\n";
        }
        ++written;
    }

    static std::string LabelText(const GraphEdge& edge)
    {
        std::string label =
            edge.priority == kDefaultPriority ? "" : std::to_string(edge.priority) + ": ";
        const char* separator = "";
        for (const std::string& line : TransitionLines(edge))
        {
            label += separator + line;
            separator = " ";
        }
        return MermaidText(label);
    }

    const Graph& graph;
    const std::string& direction;
    const GraphIndex index;
    std::set<unsigned int> anchors;
    std::size_t written = 0; ///< edges so far; the number of the next one
    std::string text;
    std::string starts;
    std::string links; ///< the colours of the edges
};

} // namespace

std::string GraphToMermaid(const Graph& graph, const std::string& direction)
{
    return MermaidWriter(graph, direction).Write();
}

} // namespace vell::tool
