// VELL: data-driven hierarchical state machines.
// tools/vell/GraphText.cpp: a graph in the languages of Graphviz and Mermaid.
#include "tools/vell/Graph.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace vell::tool
{
namespace
{

std::string Escaped(const std::string& text, const std::map<char, std::string_view>& replacements)
{
    std::string escaped;
    for (const char c : text)
    {
        const auto entry = replacements.find(c);
        escaped += entry == replacements.end() ? std::string(1, c) : std::string(entry->second);
    }
    return '"' + escaped + '"';
}

std::string DotText(const std::string& text)
{
    return Escaped(text, {{'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}});
}

std::string MermaidText(const std::string& text)
{
    return Escaped(
        text,
        {{'"', "#quot;"}, {'#', "#35;"}, {'<', "#lt;"}, {'>', "#gt;"}, {'`', "#96;"}, {'\n', " "}});
}

std::string NodeKey(unsigned int id)
{
    return "n" + std::to_string(id);
}

/// What both writers need to know of the substates.
class Levels
{
public:
    explicit Levels(const Graph& graph)
    {
        for (const GraphNode& node : graph.nodes)
        {
            Take(node, 0);
        }
    }

    bool IsLevel(unsigned int id) const
    {
        return levels.count(id) != 0;
    }

    /// Tells whether `id` is `level` or somewhere inside it.
    bool Holds(unsigned int level, unsigned int id) const
    {
        while (id != level)
        {
            const auto entry = enclosing.find(id);
            if (entry == enclosing.end() || entry->second == 0)
            {
                return false;
            }
            id = entry->second;
        }
        return true;
    }

private:
    void Take(const GraphNode& node, unsigned int level)
    {
        enclosing[node.id] = level;
        if (node.shape == NodeShape::Level)
        {
            levels.insert(node.id);
        }
        for (const GraphNode& inner : node.inside)
        {
            Take(inner, node.id);
        }
    }

    std::set<unsigned int> levels;
    std::map<unsigned int, unsigned int> enclosing; ///< the level around each node; 0 is the top
};

std::string Indent(unsigned int depth)
{
    return std::string(std::size_t{depth} * 4, ' ');
}

class DotWriter
{
public:
    explicit DotWriter(const Graph& newGraph) : graph(newGraph), levels(newGraph)
    {
    }

    std::string Write()
    {
        text = "digraph machine {\n"
               "    compound=true;\n"
               "    fontname=\"Helvetica\";\n"
               "    node [fontname=\"Helvetica\", shape=box, style=rounded];\n"
               "    edge [fontname=\"Helvetica\", fontsize=10];\n";
        for (const GraphNode& node : graph.nodes)
        {
            AddNode(node, 1);
        }
        text += starts;
        for (const GraphEdge& edge : graph.edges)
        {
            AddEdge(edge);
        }
        return text + "}\n";
    }

private:
    static std::string Look(NodeShape shape)
    {
        switch (shape)
        {
        case NodeShape::Enter:
            return ", shape=oval, style=filled, fillcolor=lightgrey";
        case NodeShape::Exit:
            return ", shape=oval, peripheries=2, style=filled, fillcolor=lightgrey";
        case NodeShape::Global:
            return ", shape=octagon, style=filled, fillcolor=lightyellow";
        case NodeShape::Other:
            return ", style=dotted";
        case NodeShape::Unknown:
            return ", style=dashed, color=red, fontcolor=red";
        case NodeShape::State:
        case NodeShape::Level:
            break;
        }
        return "";
    }

    void AddNode(const GraphNode& node, unsigned int depth)
    {
        const std::string indent = Indent(depth);
        const std::string key = NodeKey(node.id);
        if (node.shape == NodeShape::Level)
        {
            // Edges lead to a point inside and are clipped at the border.
            text += indent + "subgraph cluster_" + key + " {\n" + Indent(depth + 1) +
                    "label=" + DotText(node.name) + ";\n" + Indent(depth + 1) + "style=rounded;\n" +
                    Indent(depth + 1) + key + " [shape=point, style=invis];\n";
            for (const GraphNode& inner : node.inside)
            {
                AddNode(inner, depth + 1);
            }
            text += indent + "}\n";
        }
        else
        {
            text += indent + key + " [label=" + DotText(node.name) + Look(node.shape) + "];\n";
        }
        if (node.isStart)
        {
            starts += "    start [shape=point, width=0.2];\n    start -> " + key +
                      (node.shape == NodeShape::Level ? " [lhead=cluster_" + key + "]" : "") +
                      ";\n";
        }
    }

    void AddEdge(const GraphEdge& edge)
    {
        std::string look;
        if (edge.isEntry)
        {
            look = "style=dotted";
        }
        else
        {
            look = "label=" + DotText(" " + edge.label + " ") + ", tooltip=" + DotText(edge.name) +
                   (edge.isDisabled ? ", style=dashed" : "");
        }
        if (levels.IsLevel(edge.from) && !levels.Holds(edge.from, edge.to))
        {
            look += ", ltail=cluster_" + NodeKey(edge.from);
        }
        if (levels.IsLevel(edge.to) && !levels.Holds(edge.to, edge.from))
        {
            look += ", lhead=cluster_" + NodeKey(edge.to);
        }
        text += "    " + NodeKey(edge.from) + " -> " + NodeKey(edge.to) + " [" + look + "];\n";
    }

    const Graph& graph;
    const Levels levels;
    std::string text;
    std::string starts;
};

class MermaidWriter
{
public:
    explicit MermaidWriter(const Graph& newGraph) : graph(newGraph), levels(newGraph)
    {
    }

    std::string Write()
    {
        for (const GraphEdge& edge : graph.edges)
        {
            NoteAnchors(edge);
        }
        text = "flowchart TB\n"
               "    classDef unknown stroke:#c00,color:#c00,stroke-dasharray:4\n";
        for (const GraphNode& node : graph.nodes)
        {
            AddNode(node, 1);
        }
        text += starts;
        for (const GraphEdge& edge : graph.edges)
        {
            AddEdge(edge);
        }
        return text;
    }

private:
    /// An edge between a substate and a node inside it cannot end at the frame of the substate; an
    /// extra node inside represents the substate then.
    void NoteAnchors(const GraphEdge& edge)
    {
        if (levels.IsLevel(edge.from) && levels.Holds(edge.from, edge.to))
        {
            anchors.insert(edge.from);
        }
        if (levels.IsLevel(edge.to) && levels.Holds(edge.to, edge.from))
        {
            anchors.insert(edge.to);
        }
    }

    std::string End(unsigned int id, unsigned int other) const
    {
        const bool isAnchored = levels.IsLevel(id) && levels.Holds(id, other);
        return NodeKey(id) + (isAnchored ? "_level" : "");
    }

    static std::string Shaped(const GraphNode& node)
    {
        const std::string name = MermaidText(node.name);
        switch (node.shape)
        {
        case NodeShape::Enter:
            return "((" + name + "))";
        case NodeShape::Exit:
            return "(((" + name + ")))";
        case NodeShape::Global:
            return "{{" + name + "}}";
        case NodeShape::Other:
            return "[" + name + "]";
        case NodeShape::Unknown:
            return "[" + name + "]:::unknown";
        case NodeShape::State:
        case NodeShape::Level:
            break;
        }
        return "(" + name + ")";
    }

    void AddNode(const GraphNode& node, unsigned int depth)
    {
        const std::string indent = Indent(depth);
        const std::string key = NodeKey(node.id);
        if (node.shape == NodeShape::Level)
        {
            text += indent + "subgraph " + key + "[" + MermaidText(node.name) + "]\n";
            if (anchors.count(node.id) != 0)
            {
                text += Indent(depth + 1) + key + "_level" + Shaped(node) + "\n";
            }
            for (const GraphNode& inner : node.inside)
            {
                AddNode(inner, depth + 1);
            }
            text += indent + "end\n";
        }
        else
        {
            text += indent + key + Shaped(node) + "\n";
        }
        if (node.isStart)
        {
            starts += "    start((\" \")) --> " + key + "\n";
        }
    }

    void AddEdge(const GraphEdge& edge)
    {
        const char* arrow = edge.isDisabled || edge.isEntry ? " -.->" : " -->";
        text += "    " + End(edge.from, edge.to) + arrow +
                (edge.isEntry ? "" : "|" + MermaidText(edge.label) + "|") + " " +
                End(edge.to, edge.from) + "\n";
    }

    const Graph& graph;
    const Levels levels;
    std::set<unsigned int> anchors;
    std::string text;
    std::string starts;
};

/// A temporary file that is deleted with the object.
class TemporaryFile
{
public:
    TemporaryFile()
    {
        path = (std::filesystem::temp_directory_path() / "vell-XXXXXX").string();
        descriptor = mkstemp(path.data());
    }
    ~TemporaryFile()
    {
        if (descriptor >= 0)
        {
            close(descriptor);
            unlink(path.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool Fill(const std::string& text) const
    {
        return descriptor >= 0 &&
               write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

    std::string path;

private:
    int descriptor = -1;
};

constexpr int kCommandNotFound = 127;

} // namespace

std::string GraphToDot(const Graph& graph)
{
    return DotWriter(graph).Write();
}

std::string GraphToMermaid(const Graph& graph)
{
    return MermaidWriter(graph).Write();
}

std::string DotToSvg(const std::string& dot, std::string* fault)
{
    const TemporaryFile file;
    std::FILE* pipe =
        file.Fill(dot) ? popen(("dot -Tsvg '" + file.path + "'").c_str(), "r") : nullptr;
    if (pipe == nullptr)
    {
        *fault = "cannot draw the picture: failed to create a temporary file or a process";
        return "";
    }
    std::string svg;
    char block[4096];
    for (std::size_t size = 0; (size = std::fread(block, 1, sizeof(block), pipe)) != 0;)
    {
        svg.append(block, size);
    }
    const int status = pclose(pipe);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
    {
        return svg;
    }
    *fault = WIFEXITED(status) && WEXITSTATUS(status) == kCommandNotFound
                 ? "svg needs Graphviz's program dot, which is not installed; install the package "
                   "graphviz, or use --format dot or mermaid"
                 : "Graphviz could not draw the picture; use --log FILE to see its messages";
    return "";
}

} // namespace vell::tool
