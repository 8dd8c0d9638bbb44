// VELL: data-driven hierarchical state machines.
// tools/vell/GraphLegend.cpp: the title and the legend of a picture.
#include "tools/vell/GraphLegend.h"

#include "tools/source/Printable.h"

#include <algorithm>
#include <functional>

namespace vell::tool
{
namespace
{

constexpr std::size_t kColumns = 2;

/// A sign and what it means.
struct Entry
{
    std::string sign;    ///< a table cell; empty when the meaning says it
    std::string meaning; ///< markup
};

std::string SignCell(const std::string& markup)
{
    return "<TD ALIGN=\"LEFT\">" + markup + "</TD>";
}

/// A small box. It is a table of its own: the cell would be stretched to its column.
std::string BoxCell(const Colour& ground, const Colour& border, const char* style = "ROUNDED")
{
    return SignCell(
        "<TABLE ALIGN=\"LEFT\" BORDER=\"1\" CELLBORDER=\"0\" CELLSPACING=\"0\" STYLE=\"" +
        std::string(style) + "\" COLOR=\"" + border.light + "\" BGCOLOR=\"" + ground.light +
        "\"><TR><TD FIXEDSIZE=\"TRUE\" WIDTH=\"28\" HEIGHT=\"12\"></TD></TR></TABLE>");
}

class Legend
{
public:
    Legend(const Graph& newGraph, const GraphIndex& newIndex) : graph(newGraph), index(newIndex)
    {
    }

    std::string Write()
    {
        AddNodes();
        AddTransitions();
        AddLights();
        std::string markup = "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"5\" "
                             "CELLPADDING=\"2\">\n";
        for (std::size_t i = 0; i < entries.size(); i += kColumns)
        {
            markup += "    <TR>";
            for (std::size_t j = i; j < std::min(i + kColumns, entries.size()); ++j)
            {
                const std::string span = entries[j].sign.empty() ? " COLSPAN=\"2\"" : "";
                markup += entries[j].sign + "<TD ALIGN=\"LEFT\"" + span +
                          "><FONT POINT-SIZE=\"11\">" + Coloured(entries[j].meaning, kFaintInk) +
                          "</FONT></TD>";
            }
            markup += "</TR>\n";
        }
        return markup + "    </TABLE>";
    }

private:
    bool HasNode(const std::function<bool(const GraphNode&)>& matches) const
    {
        return std::any_of(index.Nodes().begin(), index.Nodes().end(),
                           [this, &matches](const GraphNode* node)
                           {
                               return index.IsShown(*node) && matches(*node);
                           });
    }

    bool HasShape(NodeShape shape) const
    {
        return HasNode(
            [shape](const GraphNode& node)
            {
                return node.shape == shape;
            });
    }

    bool HasEdge(const std::function<bool(const GraphEdge&)>& matches) const
    {
        return std::any_of(graph.edges.begin(), graph.edges.end(), matches);
    }

    void Add(bool isThere, const std::string& sign, const std::string& meaning)
    {
        if (isThere)
        {
            entries.push_back({sign, meaning});
        }
    }

    void AddNodes()
    {
        Add(true, SignCell(Coloured("&#9679;", kInk)), "where the machine or a substate starts");
        Add(HasShape(NodeShape::Exit), SignCell(Coloured("&#9673;", kInk)),
            "exit node: ends a blip");
        Add(HasShape(NodeShape::Global), BoxCell(kGlobalBox, kFrame),
            "global node: starts blips, whatever runs");
        Add(HasNode(
                [](const GraphNode& node)
                {
                    return node.shape == NodeShape::Level;
                }),
            BoxCell(kLevelBox, kFrame), "substate: tested whatever is active inside");
        Add(HasNode(
                [](const GraphNode& node)
                {
                    return node.isPort;
                }),
            BoxCell(kBox, kFrame, "ROUNDED,DASHED"), "outside the substate that is drawn");
        Add(HasShape(NodeShape::Other), BoxCell(kBox, kFrame, "ROUNDED,DASHED"),
            "connector, or another node that cannot run");
        Add(HasShape(NodeShape::Unknown), BoxCell(kBox, kUnknown), "a node that does not exist");
    }

    void AddTransitions()
    {
        Add(HasEdge(
                [](const GraphEdge& edge)
                {
                    return !edge.isEntry && edge.priority != kDefaultPriority;
                }),
            SignCell("<B>1</B>"),
            "priority, where it is not " + std::to_string(kDefaultPriority) +
                "; smaller is tested first");
        Add(HasEdge(
                [](const GraphEdge& edge)
                {
                    return !edge.isEntry && edge.from == edge.to;
                }),
            SignCell(kAgainSign), "leaves the state and enters it again");
        Add(HasEdge(
                [](const GraphEdge& edge)
                {
                    return edge.isDisabled || edge.isUnlisted;
                }),
            SignCell(Coloured("- - -", kFaintInk)), "a transition that is never tested");
    }

    void AddLights()
    {
        for (const auto& [light, colour, meaning] :
             {Light{NodeLight::Active, kActive, "on the stack that runs"},
              Light{NodeLight::Waiting, kWaiting, "on the stack that waits"}})
        {
            const NodeLight wanted = light;
            Add(HasNode(
                    [wanted](const GraphNode& node)
                    {
                        return node.light == wanted;
                    }),
                BoxCell(colour, colour), meaning);
        }
    }

    struct Light
    {
        NodeLight light;
        Colour colour;
        const char* meaning;
    };

    const Graph& graph;
    const GraphIndex& index;
    std::vector<Entry> entries;
};

} // namespace

std::string Markup(const std::string& text)
{
    // Graphviz refuses markup without text.
    return Replaced(
        text.empty() ? "?" : source::ToPrintableLines(text),
        {{'"', "&quot;"}, {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'\n', "<BR/>"}});
}

std::string Coloured(const std::string& markup, const Colour& colour)
{
    return "<FONT COLOR=\"" + std::string(colour.light) + "\">" + markup + "</FONT>";
}

std::string TitleMarkup(const Graph& graph)
{
    const std::string title = "<FONT POINT-SIZE=\"20\"><B>" +
                              Markup(graph.title.empty() ? "machine" : graph.title) + "</B></FONT>";
    return graph.subtitle.empty()
               ? title
               : title + "<BR ALIGN=\"LEFT\"/><FONT POINT-SIZE=\"12\">" +
                     Coloured(Markup(graph.subtitle), kFaintInk) + "</FONT><BR ALIGN=\"LEFT\"/>";
}

std::string LegendMarkup(const Graph& graph, const GraphIndex& index)
{
    return Legend(graph, index).Write();
}

} // namespace vell::tool
