// VELL: data-driven hierarchical state machines.
// tools/vell/GraphDot.cpp: a graph in Graphviz's language.
#include "tools/vell/GraphDot.h"

#include "tools/vell/GraphLegend.h"
#include "tools/vell/GraphText.h"
#include "tools/vell/GraphTheme.h"

#include <map>

namespace vell::tool
{
namespace
{

/// A text in quotes. Graphviz would expand \N and the like.
std::string Quoted(const std::string& text)
{
    return '"' + Replaced(Printable(text), {{'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}}) + '"';
}

class DotWriter
{
public:
    DotWriter(const Graph& newGraph, const std::string& newDirection)
        : graph(newGraph), direction(newDirection), index(newGraph)
    {
    }

    std::string Write()
    {
        AddHead();
        text += "    subgraph cluster_machine {\n"
                "        peripheries=0;\n"
                "        margin=16;\n"
                "        labelloc=t; labeljust=l;\n"
                "        label=<" +
                TitleMarkup(graph) + ">;\n";
        for (const GraphNode& node : graph.nodes)
        {
            AddNode(node, 2);
        }
        text += "    }\n" + starts;
        for (const GraphEdge& edge : graph.edges)
        {
            AddEdge(edge);
        }
        return text + "}\n";
    }

private:
    void AddHead()
    {
        const std::string fonts = "fontname=\"Helvetica,Arial,sans-serif\", fontcolor=\"" +
                                  std::string(kInk.light) + "\"";
        text = "digraph " + Quoted(graph.title.empty() ? "machine" : graph.title) +
               " {\n"
               "    graph [rankdir=" +
               direction + ", compound=true, nodesep=0.3, ranksep=0.7, pad=0.2, bgcolor=\"" +
               kGround.light + "\", " + fonts +
               "];\n"
               "    graph [labelloc=b, labeljust=l, tooltip=\" \", label=<" +
               LegendMarkup(graph, index) +
               ">];\n"
               "    node [shape=plain, fontsize=13, " +
               fonts +
               "];\n"
               "    edge [penwidth=1.4, arrowsize=0.8, color=\"" +
               kInk.light + "\"];\n";
    }

    /// An exit or enter node without transitions is a small mark.
    bool IsMark(const GraphNode& node) const
    {
        return (node.shape == NodeShape::Enter || node.shape == NodeShape::Exit) &&
               index.TransitionsOf(node.id).empty();
    }

    void AddNode(const GraphNode& node, std::size_t depth)
    {
        if (!index.IsShown(node))
        {
            return;
        }
        if (node.isStart)
        {
            AddStart(node, depth);
        }
        if (index.IsOpenLevel(node.id))
        {
            AddLevel(node, depth);
            return;
        }
        text += Indent(depth) + NodeKey(node.id) + " [";
        if (IsMark(node))
        {
            const Colour& colour = node.light == NodeLight::Active    ? kActive
                                   : node.light == NodeLight::Waiting ? kWaiting
                                                                      : kInk;
            text += MarkLook(node.shape == NodeShape::Exit, colour);
        }
        else
        {
            text += "label=<\n" + BoxMarkup(node, Indent(depth + 1)) + Indent(depth) + ">";
        }
        text += ", tooltip=" + Quoted(NodeTip(node, index)) + "];\n";
    }

    static std::string MarkLook(bool isExit, const Colour& colour)
    {
        return std::string(isExit ? "shape=doublecircle, width=0.13" : "shape=circle, width=0.16") +
               ", label=\"\", style=filled, fillcolor=\"" + colour.light + "\", color=\"" +
               colour.light + "\"";
    }

    void AddStart(const GraphNode& node, std::size_t depth)
    {
        text += Indent(depth) + "start [" + MarkLook(false, kInk) +
                ", tooltip=\"The machine starts here\"];\n";
        starts = "    start -> " + Head(node.id) + " [tooltip=\"The machine starts here\"" +
                 (index.IsOpenLevel(node.id) ? ", lhead=cluster_" + NodeKey(node.id) : "") + "];\n";
    }

    void AddLevel(const GraphNode& node, std::size_t depth)
    {
        const std::string indent = Indent(depth + 1);
        const bool isLit = node.light != NodeLight::None;
        const Colour& frame = node.light == NodeLight::Active ? kActive : isLit ? kWaiting : kFrame;
        text += Indent(depth) + "subgraph cluster_" + NodeKey(node.id) + " {\n";
        text += indent + "label=<<B>" + Coloured(Markup(node.name), kInk) + "</B>>; labelloc=t;\n";
        text += indent + "tooltip=" + Quoted(NodeTip(node, index)) + ";\n";
        text += indent + "style=\"rounded,filled\"; peripheries=1; margin=14; penwidth=" +
                (isLit ? "3" : "1") + ";\n";
        text += indent + "fillcolor=\"" + LevelGround(depth - 2).light + "\"; color=\"" +
                frame.light + "\";\n";
        if (!index.TransitionsOf(node.id).empty())
        {
            text += indent + NodeKey(node.id) + " [label=<\n" + BoxMarkup(node, indent + "    ") +
                    indent + ">, tooltip=" + Quoted(NodeTip(node, index)) + "];\n";
        }
        else if (Anchor(node.id) == NodeKey(node.id))
        {
            text += indent + NodeKey(node.id) + " [shape=point, style=invis, label=\"\"];\n";
        }
        for (const GraphNode& inner : node.inside)
        {
            AddNode(inner, depth + 1);
        }
        text += Indent(depth) + "}\n";
    }

    /// Gives the node inside an open level that edges to the level lead to; they are cut off at its
    /// frame. It is the enter node, or else the box of the level's own transitions.
    std::string Anchor(unsigned int id) const
    {
        const GraphNode* node = index.Find(id);
        for (const GraphNode& inner : node->inside)
        {
            if (inner.shape == NodeShape::Enter && IsMark(inner))
            {
                return NodeKey(inner.id);
            }
        }
        return NodeKey(id);
    }

    /// Gives the end of an edge that leads to a node.
    std::string Head(unsigned int id) const
    {
        const std::string anchor = index.IsOpenLevel(id) ? Anchor(id) : NodeKey(id);
        const bool isBox = index.IsOpenLevel(id)
                               ? anchor == NodeKey(id) && !index.TransitionsOf(id).empty()
                               : !IsMark(*index.Find(id));
        return anchor + (isBox ? ":head:_" : "");
    }

    struct BoxLook
    {
        Colour ground = kBox;
        Colour ink = kInk;
        std::string line; ///< the colour of the border and between the rows
        int width = 1;    ///< of the border
        bool isDashed = false;
    };

    static Colour GroundOf(NodeShape shape)
    {
        switch (shape)
        {
        case NodeShape::Exit:
        case NodeShape::Enter:
            return kMarkBox;
        case NodeShape::Global:
            return kGlobalBox;
        case NodeShape::Level:
            return kLevelBox;
        case NodeShape::State:
        case NodeShape::Other:
        case NodeShape::Unknown:
            break;
        }
        return kBox;
    }

    BoxLook LookOf(const GraphNode& node) const
    {
        BoxLook look;
        look.line = index.TransitionsOf(node.id).empty()
                        ? kFrame.light
                        : EdgeColour(index.ColourNumber(node.id)).light;
        look.isDashed = node.isPort || node.shape == NodeShape::Other;
        if (index.IsOpenLevel(node.id))
        {
            return look; // The frame has the look of the level.
        }
        look.ground = GroundOf(node.shape);
        if (node.shape == NodeShape::Unknown)
        {
            look.ink = kUnknown;
            look.line = kUnknown.light;
            look.width = 2;
        }
        if (node.light != NodeLight::None)
        {
            look.ground = node.light == NodeLight::Active ? kActive : kWaiting;
            look.ink = kLitInk;
            look.width = 3;
        }
        return look;
    }

    /// The box of a node: its name, and a row for each transition. The box inside an open level has
    /// the level's own transitions; the frame has the name.
    std::string BoxMarkup(const GraphNode& node, const std::string& indent) const
    {
        const BoxLook look = LookOf(node);
        const std::string name = index.IsOpenLevel(node.id)
                                     ? Coloured("<I>anywhere inside</I>", kFaintInk)
                                     : "<B>" + Coloured(Markup(node.name), look.ink) + "</B>";
        std::string markup =
            indent + "<TABLE BORDER=\"" + std::to_string(look.width) + "\" COLOR=\"" + look.line +
            "\" STYLE=\"ROUNDED" + (look.isDashed ? ",DASHED" : "") + "\" BGCOLOR=\"" +
            look.ground.light + "\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n" +
            indent + "<TR><TD PORT=\"head\" CELLPADDING=\"6\">" + name + "</TD></TR>\n";
        std::size_t row = 0;
        for (const GraphEdge* edge : index.TransitionsOf(node.id))
        {
            const bool isFaint = edge->isDisabled || edge->isUnlisted;
            const bool isLit = node.light != NodeLight::None;
            markup += indent + RowMarkup(*edge, row++, isFaint && !isLit ? kFaintInk : look.ink);
        }
        return markup + indent + "</TABLE>\n";
    }

    static std::string RowMarkup(const GraphEdge& edge, std::size_t row, const Colour& ink)
    {
        // The spaces are part of the number: at the start of a text some viewers drop them.
        std::string lines = edge.priority == kDefaultPriority
                                ? ""
                                : "<B>" + std::to_string(edge.priority) + "&#160;&#160;</B>";
        for (const std::string& line : TransitionLines(edge))
        {
            lines += Markup(line) + "<BR ALIGN=\"LEFT\"/>";
        }
        return "<HR/><TR><TD PORT=\"row" + std::to_string(row) +
               "\" ALIGN=\"LEFT\" BALIGN=\"LEFT\"><FONT POINT-SIZE=\"11\">" + Coloured(lines, ink) +
               "</FONT></TD></TR>\n";
    }

    void AddEdge(const GraphEdge& edge)
    {
        std::string look;
        std::string tail = NodeKey(edge.from);
        if (!edge.isEntry)
        {
            tail += ":row" + std::to_string(rows[edge.from]++) + ":_";
            look = "color=\"" + std::string(EdgeColour(index.ColourNumber(edge.from)).light) +
                   "\", tooltip=" + Quoted(TransitionTip(edge)) +
                   (edge.isDisabled || edge.isUnlisted ? ", style=dashed" : "");
        }
        else
        {
            tail += index.Find(edge.from) != nullptr && !IsMark(*index.Find(edge.from)) ? ":head:_"
                                                                                        : "";
            look = "weight=8, tooltip=\"The level starts here\"";
        }
        if (index.IsOpenLevel(edge.to) && !index.Holds(edge.to, edge.from))
        {
            look += ", lhead=cluster_" + NodeKey(edge.to);
        }
        text += "    " + tail + " -> " + Head(edge.to) + " [" + look + "];\n";
    }

    const Graph& graph;
    const std::string& direction;
    const GraphIndex index;
    std::map<unsigned int, std::size_t> rows; ///< written so far
    std::string text;
    std::string starts;
};

} // namespace

std::string GraphToDot(const Graph& graph, const std::string& direction)
{
    return DotWriter(graph, direction).Write();
}

} // namespace vell::tool
