// VELL: data-driven hierarchical state machines.
// tools/vell/GraphDot.cpp: a graph in Graphviz's language.
#include "tools/vell/GraphDot.h"

#include "tools/source/Printable.h"
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
    return '"' +
           Replaced(source::ToPrintableLines(text),
                    {{'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}}) +
           '"';
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
               direction + ", nodesep=0.3, ranksep=" + RankDistance() + ", pad=0.2, bgcolor=\"" +
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
        if (!IsMark(node))
        {
            AddBox(node, depth);
        }
        else if (!IsInBox(node))
        {
            const Colour& colour = node.light == NodeLight::Active    ? kActive
                                   : node.light == NodeLight::Waiting ? kWaiting
                                                                      : kInk;
            text += Indent(depth) + NodeKey(node.id) + " [" +
                    MarkLook(node.shape == NodeShape::Exit, colour) +
                    ", tooltip=" + Quoted(NodeTip(node, index)) + "];\n";
        }
    }

    /// An enter node is a dot on the box of its level, from where an arrow leads into the level; it
    /// is a dot of its own when something else leads to it.
    bool IsInBox(const GraphNode& node) const
    {
        return node.shape == NodeShape::Enter && IsMark(node) && !index.IsReached(node.id) &&
               !node.isStart && !index.Around(node.id).empty();
    }

    void AddBox(const GraphNode& node, std::size_t depth)
    {
        text += Indent(depth) + NodeKey(node.id) + " [label=<\n" +
                BoxMarkup(node, Indent(depth + 1)) + Indent(depth) +
                ">, tooltip=" + Quoted(NodeTip(node, index)) + "];\n";
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
        starts = "    start -> " + Head(node.id) + " [tooltip=\"The machine starts here\"];\n";
    }

    void AddLevel(const GraphNode& node, std::size_t depth)
    {
        const std::string indent = Indent(depth + 1);
        const bool isLit = node.light != NodeLight::None;
        const Colour& frame = node.light == NodeLight::Active ? kActive : isLit ? kWaiting : kFrame;
        text += Indent(depth) + "subgraph cluster_" + NodeKey(node.id) + " {\n";
        text += indent + "label=\"\"; tooltip=" + Quoted(NodeTip(node, index)) + ";\n";
        text += indent + "style=\"rounded,filled\"; peripheries=1; margin=14; penwidth=" +
                (isLit ? "3" : "1") + ";\n";
        text += indent + "fillcolor=\"" + LevelGround(depth - 2).light + "\"; color=\"" +
                frame.light + "\";\n";
        AddBox(node, depth + 1);
        for (const GraphNode& inner : node.inside)
        {
            AddNode(inner, depth + 1);
        }
        text += Indent(depth) + "}\n";
    }

    /// Many edges need room between the ranks, or they run into one another there.
    std::string RankDistance() const
    {
        constexpr std::size_t kManyEdges = 40;
        return graph.edges.size() > kManyEdges ? "1.1" : "0.7";
    }

    /// Gives the end of an edge that leads to a node. The arrow out of an open level's dot takes
    /// the other side of its box.
    std::string Head(unsigned int id) const
    {
        if (IsMark(*index.Find(id)))
        {
            return NodeKey(id);
        }
        const char* side = !index.IsOpenLevel(id) ? "_"
                           : direction == "LR"    ? "w"
                           : direction == "RL"    ? "e"
                           : direction == "TB"    ? "n"
                                                  : "_";
        return NodeKey(id) + ":head:" + side;
    }

    /// The same of a transition. One of the global node comes from above where the picture leads
    /// down: between two of its states there is no room for the arrow.
    std::string HeadOf(const GraphEdge& edge) const
    {
        const GraphNode* from = index.Find(edge.from);
        const bool isFromAbove = direction == "TB" && from != nullptr &&
                                 from->shape == NodeShape::Global && !IsMark(*index.Find(edge.to));
        return isFromAbove ? NodeKey(edge.to) + ":head:n" : Head(edge.to);
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

    /// The box of a node: its name, and a row for each transition. The box of an open level is
    /// inside its frame.
    std::string BoxMarkup(const GraphNode& node, const std::string& indent) const
    {
        const BoxLook look = LookOf(node);
        const std::string name = "<FONT POINT-SIZE=\"" +
                                 std::to_string(index.IsOpenLevel(node.id) ? 16 : 13) + "\"><B>" +
                                 Coloured(Markup(node.name), look.ink) + "</B></FONT>";
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
        // Where the picture leads to a side, so does each row. With nothing below it, the edge of
        // the last one could leave from the bottom of the box.
        const bool hasFoot = row != 0 && (direction == "LR" || direction == "RL");
        const char* const foot = "<TR><TD HEIGHT=\"1\" CELLPADDING=\"0\"></TD></TR>\n";
        return markup + (hasFoot ? indent + foot : "") + indent + "</TABLE>\n";
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
        if (edge.from == edge.to)
        {
            lines.insert(lines.rfind("<BR"), std::string("&#160;&#160;") + kAgainSign);
        }
        return "<HR/><TR><TD PORT=\"row" + std::to_string(row) +
               "\" ALIGN=\"LEFT\" BALIGN=\"LEFT\"><FONT POINT-SIZE=\"11\">" + Coloured(lines, ink) +
               "</FONT></TD></TR>\n";
    }

    void AddEdge(const GraphEdge& edge)
    {
        if (edge.isEntry)
        {
            AddEntry(edge);
            return;
        }
        const std::size_t row = rows[edge.from]++;
        if (edge.from == edge.to)
        {
            return; // A sign in its row says so.
        }
        text += "    " + NodeKey(edge.from) + ":row" + std::to_string(row) + ":_ -> " +
                HeadOf(edge) + " [color=\"" + EdgeColour(index.ColourNumber(edge.from)).light +
                "\", tooltip=" + Quoted(TransitionTip(edge)) +
                (edge.isDisabled || edge.isUnlisted ? ", style=dashed" : "") + "];\n";
    }

    void AddEntry(const GraphEdge& edge)
    {
        const GraphNode& enter = *index.Find(edge.from);
        const bool isInBox = IsInBox(enter);
        const std::string tail =
            isInBox ? NodeKey(index.Around(edge.from).back()->id) + ":head:_" : Head(edge.from);
        text += "    " + tail + " -> " + Head(edge.to) + " [weight=8, tooltip=" +
                Quoted("The substate starts here: " + NodeTip(enter, index)) +
                (isInBox ? ", dir=both, arrowtail=dot" : "") + "];\n";
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
