// VELL: data-driven hierarchical state machines.
// tests/tools/GraphTest.cpp: the pictures of a machine as text.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Graph.h"

#include <vell/ConditionDef.h>
#include <vell/Types.h>

#include <gtest/gtest.h>

#include <cstdlib>
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

/// Sets the environment's search path for as long as it lives.
class SearchPath
{
public:
    explicit SearchPath(const char* path) : saved(std::getenv("PATH"))
    {
        setenv("PATH", path, 1);
    }
    ~SearchPath()
    {
        setenv("PATH", saved.c_str(), 1);
    }
    SearchPath(const SearchPath&) = delete;
    SearchPath& operator=(const SearchPath&) = delete;

private:
    std::string saved;
};

TEST(VellGraph, SaysThatGraphvizIsMissing)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const SearchPath nothing("/nowhere");

    const Outcome outcome = CallVell({"graph", path, "--format", "svg"});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              "svg is drawn by Graphviz, whose program dot is not installed; install the package "
              "graphviz, or write --format dot or mermaid\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellGraph, DrawsAPictureIntoAFile)
{
    const Folder folder;
    // A program of the name stands in for Graphviz, which need not be here.
    const std::string program = folder.Write("dot", "#!/bin/sh\nprintf 'drawn from '\n"
                                                    "head -n 1 \"$2\"\n");
    ASSERT_EQ(std::system(("chmod +x " + program).c_str()), 0);
    const SearchPath path((folder.PathOf("") + ":" + std::getenv("PATH")).c_str());

    const Outcome outcome = CallVell({"graph", folder.Write("a.json", Walker().Text()), "--format",
                                      "svg", "-o", folder.PathOf("a.svg")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.Read("a.svg"), "drawn from digraph machine {\n");
}

} // namespace
} // namespace vell::test
