// VELL: data-driven hierarchical state machines.
// tests/tools/GraphTest.cpp: the pictures of a machine as text.
#include "tools/vell/Graph.h"

#include <vell/ConditionDef.h>
#include <vell/Types.h>

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

namespace vell::test
{
namespace
{

TEST(VellGraph, WritesLevelsAsClustersForGraphviz)
{
    const Folder folder;

    const Outcome outcome = CallVell({"graph", folder.Write("a.json", Walker().Text())});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(
        outcome.out,
        "digraph machine {\n"
        "    compound=true;\n"
        "    fontname=\"Helvetica\";\n"
        "    node [fontname=\"Helvetica\", shape=box, style=rounded];\n"
        "    edge [fontname=\"Helvetica\", fontsize=10];\n"
        "    subgraph cluster_n10 {\n"
        "        label=\"Locomotion\";\n"
        "        style=rounded;\n"
        "        n10 [shape=point, style=invis];\n"
        "        n11 [label=\"Stand\"];\n"
        "        n12 [label=\"Walk\"];\n"
        "        n20 [label=\"In\", shape=oval, style=filled, fillcolor=lightgrey];\n"
        "        n21 [label=\"Out\", shape=oval, peripheries=2, style=filled, "
        "fillcolor=lightgrey];\n"
        "    }\n"
        "    n50 [label=\"Reactions\", shape=octagon, style=filled, fillcolor=lightyellow];\n"
        "    n51 [label=\"Hurt\"];\n"
        "    n52 [label=\"Done\", shape=oval, peripheries=2, style=filled, fillcolor=lightgrey];\n"
        "    n99 [label=\"no node 99\", style=dashed, color=red, fontcolor=red];\n"
        "    start [shape=point, width=0.2];\n"
        "    start -> n10 [lhead=cluster_n10];\n"
        "    n11 -> n12 [label=\" 5: speed > 1.5 \", tooltip=\"ToWalk\"];\n"
        "    n12 -> n11 [label=\" 3: speed < 0.5 or halt == \\\"now\\\" \", tooltip=\"ToStand\"];\n"
        "    n12 -> n99 [label=\" 1: speed > 0 \", tooltip=\"ToNowhere\", style=dashed];\n"
        "    n20 -> n11 [style=dotted];\n"
        "    n50 -> n51 [label=\" 20: hit == true \", tooltip=\"TakeHit\"];\n"
        "    n51 -> n52 [label=\" 5: hit == false \", tooltip=\"Healed\"];\n"
        "}\n");
}

TEST(VellGraph, WritesLevelsAsSubgraphsForMermaid)
{
    const Folder folder;

    const Outcome outcome =
        CallVell({"graph", folder.Write("a.json", Walker().Text()), "--format", "mermaid"});

    EXPECT_EQ(outcome.out, "flowchart TB\n"
                           "    classDef unknown stroke:#c00,color:#c00,stroke-dasharray:4\n"
                           "    subgraph n10[\"Locomotion\"]\n"
                           "        n11(\"Stand\")\n"
                           "        n12(\"Walk\")\n"
                           "        n20((\"In\"))\n"
                           "        n21(((\"Out\")))\n"
                           "    end\n"
                           "    n50{{\"Reactions\"}}\n"
                           "    n51(\"Hurt\")\n"
                           "    n52(((\"Done\")))\n"
                           "    n99[\"no node 99\"]:::unknown\n"
                           "    start((\" \")) --> n10\n"
                           "    n11 -->|\"5: speed #gt; 1.5\"| n12\n"
                           "    n12 -->|\"3: speed #lt; 0.5 or halt == #quot;now#quot;\"| n11\n"
                           "    n12 -.->|\"1: speed #gt; 0\"| n99\n"
                           "    n20 -.-> n11\n"
                           "    n50 -->|\"20: hit == true\"| n51\n"
                           "    n51 -->|\"5: hit == false\"| n52\n");
}

TEST(VellGraph, ShowsWhatIsWrongWithADocumentInsteadOfDroppingIt)
{
    DocumentBuilder builder;
    builder.Start(77)
        .Node(Generic("A \"quoted\"", 10, {100}))
        .Node(Transition("Nowhere", 100, 10, 0))
        .Node(Transition("Unlisted", 101, 10, 11))
        // Two levels that claim to hold one another.
        .Node(Substate("P", 20, 30, 31, {}, 21))
        .Node(Substate("Q", 21, 30, 31, {}, 20));
    const Folder folder;

    const Outcome outcome = CallVell({"graph", folder.Write("a.json", builder.Text())});

    EXPECT_EQ(outcome.errors, "");
    const std::string body = outcome.out.substr(outcome.out.find("    n10"));
    EXPECT_EQ(body,
              "    n10 [label=\"A \\\"quoted\\\"\"];\n"
              "    subgraph cluster_n20 {\n"
              "        label=\"P\";\n"
              "        style=rounded;\n"
              "        n20 [shape=point, style=invis];\n"
              "        subgraph cluster_n21 {\n"
              "            label=\"Q\";\n"
              "            style=rounded;\n"
              "            n21 [shape=point, style=invis];\n"
              "        }\n"
              "    }\n"
              "    n0 [label=\"no node\", style=dashed, color=red, fontcolor=red];\n"
              "    n11 [label=\"no node 11\", style=dashed, color=red, fontcolor=red];\n"
              "    n77 [label=\"no node 77\", style=dashed, color=red, fontcolor=red];\n"
              "    start [shape=point, width=0.2];\n"
              "    start -> n77;\n"
              "    n10 -> n0 [label=\" 5: a trigger \", tooltip=\"Nowhere\"];\n"
              "    n10 -> n11 [label=\" 5: a trigger (no state lists it) \", tooltip=\"Unlisted\", "
              "style=dashed];\n"
              "}\n");
}

TEST(VellGraph, CutsEdgesOffAtTheBorderOfALevelThatTheyDoNotStartIn)
{
    tool::Graph graph;
    tool::GraphNode level;
    level.id = 1;
    level.name = "L";
    level.shape = tool::NodeShape::Level;
    tool::GraphNode inside;
    inside.id = 2;
    inside.name = "I";
    level.inside.push_back(inside);
    tool::GraphNode outside;
    outside.id = 3;
    outside.name = "O";
    graph.nodes = {level, outside};
    for (const auto& [from, to] : {std::pair(1u, 3u), std::pair(3u, 1u), std::pair(1u, 2u),
                                   std::pair(2u, 1u), std::pair(1u, 1u)})
    {
        tool::GraphEdge edge;
        edge.from = from;
        edge.to = to;
        edge.isEntry = true;
        graph.edges.push_back(edge);
    }

    const std::string dot = tool::GraphToDot(graph);
    EXPECT_EQ(dot.substr(dot.find("    n1 ->")), "    n1 -> n3 [style=dotted, ltail=cluster_n1];\n"
                                                 "    n3 -> n1 [style=dotted, lhead=cluster_n1];\n"
                                                 "    n1 -> n2 [style=dotted];\n"
                                                 "    n2 -> n1 [style=dotted];\n"
                                                 "    n1 -> n1 [style=dotted];\n"
                                                 "}\n");
    const std::string mermaid = tool::GraphToMermaid(graph);
    EXPECT_EQ(mermaid.substr(mermaid.find("    subgraph")), "    subgraph n1[\"L\"]\n"
                                                            "        n1_level(\"L\")\n"
                                                            "        n2(\"I\")\n"
                                                            "    end\n"
                                                            "    n3(\"O\")\n"
                                                            "    n1 -.-> n3\n"
                                                            "    n3 -.-> n1\n"
                                                            "    n1_level -.-> n2\n"
                                                            "    n2 -.-> n1_level\n"
                                                            "    n1_level -.-> n1_level\n");
}

/// Gives the lines of the graph of `builder` that contain `part`.
std::string LinesWith(const DocumentBuilder& builder, const std::string& part,
                      const std::string& format = "dot")
{
    const Folder folder;
    const Outcome outcome =
        CallVell({"graph", folder.Write("a.json", builder.Text()), "--format", format});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    std::istringstream lines(outcome.out);
    std::string found;
    for (std::string line; std::getline(lines, line);)
    {
        found += line.find(part) == std::string::npos ? "" : line + "\n";
    }
    return found;
}

TEST(VellGraph, DrawsTransitionsWithoutSourceOrTargetOfLevelsAndStates)
{
    DocumentBuilder builder;
    builder.Start(20)
        .Level("L", 20, 11, {100})
        .Node(Generic("A", 11, {101}, 20))
        .Node(Transition("LevelNowhere", 100, 20, 0))
        .Node(Transition("StateNowhere", 101, 11, 0))
        .Node(Transition("FromNobody", 102, 98, 20))
        .Node(Transition("FromNothing", 103, 0, 20));

    EXPECT_EQ(LinesWith(builder, " -> "),
              "    start -> n20 [lhead=cluster_n20];\n"
              "    n11 -> n0 [label=\" 5: a trigger \", tooltip=\"StateNowhere\"];\n"
              "    n20 -> n0 [label=\" 5: a trigger \", tooltip=\"LevelNowhere\", "
              "ltail=cluster_n20];\n"
              "    n21 -> n11 [style=dotted];\n"
              "    n98 -> n20 [label=\" 5: a trigger (no state lists it) \", "
              "tooltip=\"FromNobody\", style=dashed, lhead=cluster_n20];\n"
              "    n0 -> n20 [label=\" 5: a trigger (no state lists it) \", "
              "tooltip=\"FromNothing\", style=dashed, lhead=cluster_n20];\n");
    EXPECT_EQ(LinesWith(builder, "no node"),
              "    n0 [label=\"no node\", style=dashed, color=red, fontcolor=red];\n"
              "    n98 [label=\"no node 98\", style=dashed, color=red, fontcolor=red];\n");
    EXPECT_EQ(LinesWith(builder, "n0", "mermaid"),
              "    n0[\"no node\"]:::unknown\n"
              "    n11 -->|\"5: a trigger\"| n0\n"
              "    n20 -->|\"5: a trigger\"| n0\n"
              "    n0 -.->|\"5: a trigger (no state lists it)\"| n20\n");
}

TEST(VellGraph, DrawsConnectorsApartFromStates)
{
    DocumentBuilder builder;
    builder.Start(10).Node(Clip("A", 10, "a.anim")).Node(Connector("C", 11, "in"));

    EXPECT_EQ(LinesWith(builder, "label="), "    n10 [label=\"A\"];\n"
                                            "    n11 [label=\"C\", style=dotted];\n");
    EXPECT_EQ(LinesWith(builder, "\"]", "mermaid") + LinesWith(builder, "\")", "mermaid"),
              "    n11[\"C\"]\n"
              "    n10(\"A\")\n"
              "    start((\" \")) --> n10\n");
}

TEST(VellGraph, EscapesNamesOfStatesLevelsAndTransitions)
{
    const std::string name = "a\"b\\c\nd#e<f>g`h";
    const std::string dot = "a\\\"b\\\\c\\nd#e<f>g`h";
    const std::string mermaid = "a#quot;b\\c d#35;e#lt;f#gt;g#96;h";
    DocumentBuilder builder;
    builder.Start(20)
        .Parameter(MessageParameter("m", ""))
        .Level(name, 20, 10)
        .Node(Generic(name, 10, {100}, 20))
        .Node(Transition(name, 100, 10, 10, {MessageCondition("m", name)}));

    EXPECT_EQ(LinesWith(builder, "d#e"),
              "        label=\"" + dot + "\";\n        n10 [label=\"" + dot +
                  "\"];\n        n21 [label=\"" + dot +
                  "In\", shape=oval, style=filled, fillcolor=lightgrey];\n        n22 [label=\"" +
                  dot +
                  "Out\", shape=oval, peripheries=2, style=filled, fillcolor=lightgrey];\n"
                  "    n10 -> n10 [label=\" 5: m == \\\"" +
                  dot + "\\\" \", tooltip=\"" + dot + "\"];\n");
    EXPECT_EQ(LinesWith(builder, "#35;", "mermaid"),
              "    subgraph n20[\"" + mermaid + "\"]\n        n10(\"" + mermaid +
                  "\")\n        n21((\"" + mermaid + "In\"))\n        n22(((\"" + mermaid +
                  "Out\")))\n    n10 -->|\"5: m == #quot;" + mermaid + "#quot;\"| n10\n");
}

/// Sets a variable of the environment for as long as it lives.
class Variable
{
public:
    Variable(const char* variable, const std::string& value) : name(variable)
    {
        const char* old = std::getenv(name);
        wasSet = old != nullptr;
        saved = wasSet ? old : "";
        setenv(name, value.c_str(), 1);
    }
    ~Variable()
    {
        wasSet ? setenv(name, saved.c_str(), 1) : unsetenv(name);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name;
    bool wasSet = false;
    std::string saved;
};

/// Draws the Walker by a program `dot` of these lines.
Outcome DrawBy(const Folder& folder, const std::string& lines)
{
    const std::string program = folder.Write("dot", "#!/bin/sh\n" + lines);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const std::string document = folder.Write("a.json", Walker().Text());
    const Variable path("PATH", folder.PathOf("") + ":" + std::getenv("PATH"));
    return CallVell({"graph", document, "--format", "svg"});
}

TEST(VellGraph, SaysThatGraphvizCouldNotDraw)
{
    for (const char* end : {"exit 1\n", "exit 2\n", "exit 126\n", "kill -9 $$\n"})
    {
        const Folder folder;

        const Outcome outcome = DrawBy(folder, std::string("echo half a picture\n") + end);

        EXPECT_EQ(outcome.code, tool::ExitFailed) << end;
        EXPECT_EQ(outcome.errors,
                  "Graphviz could not draw the picture; use --log FILE to see its messages\n");
        EXPECT_EQ(outcome.out, "") << end;
    }
}

TEST(VellGraph, TakesThePictureWholeAndLeavesNoFileBehind)
{
    const Folder folder;
    const Folder temporary;
    const Variable place("TMPDIR", temporary.PathOf(""));

    const Outcome outcome = DrawBy(folder, "yes 0123456789 | head -n 5000\n");
    const Outcome failed = DrawBy(folder, "exit 1\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out.size(), 55000u);
    EXPECT_EQ(failed.code, tool::ExitFailed);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.PathOf("")));
}

TEST(VellGraph, SaysThatGraphvizIsMissing)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const Variable nothing("PATH", "/nowhere");

    const Outcome outcome = CallVell({"graph", path, "--format", "svg"});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              "svg needs Graphviz's program dot, which is not installed; install the package "
              "graphviz, or use --format dot or mermaid\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellGraph, DrawsAPictureIntoAFile)
{
    const Folder folder;
    // A program of the name stands in for Graphviz, which need not be here.
    const std::string program = folder.Write("dot", "#!/bin/sh\nprintf 'drawn from '\n"
                                                    "head -n 1 \"$2\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const Variable path("PATH", folder.PathOf("") + ":" + std::getenv("PATH"));

    const Outcome outcome = CallVell({"graph", folder.Write("a.json", Walker().Text()), "--format",
                                      "svg", "-o", folder.PathOf("a.svg")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.Read("a.svg"), "drawn from digraph machine {\n");
}

} // namespace
} // namespace vell::test
