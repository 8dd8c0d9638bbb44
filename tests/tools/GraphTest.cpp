// VELL: data-driven hierarchical state machines.
// tests/tools/GraphTest.cpp: the texts of pictures, for Graphviz and for Mermaid.
#include "tools/vell/Graph.h"

#include <vell/TransitionDef.h>
#include <vell/Types.h>

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/GraphDot.h"
#include "tools/vell/GraphMermaid.h"
#include "tools/vell/GraphText.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

std::string GraphOf(const DocumentBuilder& builder, const Words& options = {},
                    const std::string& script = "")
{
    const Folder folder;
    Words words{"graph", folder.Write("a.json", builder.Text())};
    words.insert(words.end(), options.begin(), options.end());
    if (!script.empty())
    {
        words.emplace_back("--after");
        words.push_back(folder.Write("a.script", script));
    }
    const Outcome outcome = CallVell(words);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    return outcome.out;
}

/// Gives the lines that contain `part`, without indent.
std::string LinesWith(const std::string& text, const std::string& part)
{
    std::istringstream lines(text);
    std::string found;
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t start = line.find_first_not_of(' ');
        found += line.find(part) == std::string::npos ? "" : line.substr(start) + "\n";
    }
    return found;
}

/// Gives the rows of the boxes of a text for Graphviz: `Name` or `- transition`, without markup.
std::string Rows(const std::string& dot)
{
    std::string rows;
    for (std::istringstream lines(dot); !lines.eof();)
    {
        std::string line;
        std::getline(lines, line);
        const bool isHead = line.find("PORT=\"head\"") != std::string::npos;
        if (!isHead && line.find("PORT=\"row") == std::string::npos)
        {
            continue;
        }
        std::string text;
        bool isMarkup = false;
        for (const char c : line)
        {
            isMarkup = c == '<' || (isMarkup && c != '>');
            text += isMarkup || c == '>' ? "" : std::string(1, c);
        }
        text.erase(0, text.find_first_not_of(' '));
        rows += (isHead ? "" : "- ") + text + "\n";
    }
    return rows;
}

TEST(GraphDot, WritesLevelsAsFramesAndTransitionsAsRows)
{
    const std::string dot = GraphOf(Walker());

    EXPECT_EQ(Rows(dot), "Locomotion\n"
                         "Stand\n"
                         "- speed &gt; 1.5\n"
                         "Walk\n"
                         "- 1&#160;&#160;speed &gt; 0 (disabled)\n"
                         "- 3&#160;&#160;speed &lt; 0.5or halt == &quot;now&quot;\n"
                         "Reactions\n"
                         "- 20&#160;&#160;hit == true\n"
                         "Hurt\n"
                         "- hit == false\n"
                         "no node 99\n");
    EXPECT_EQ(dot.substr(dot.find("    start ->")),
              "    start -> n10:head:w [tooltip=\"The machine starts here\"];\n"
              "    n11:row0:_ -> n12:head:_ [color=\"#0072b2\", tooltip=\"ToWalk (Stand -> Walk), "
              "priority 5: speed > 1.5\"];\n"
              "    n12:row0:_ -> n99:head:_ [color=\"#a84300\", tooltip=\"ToNowhere (Walk -> no "
              "node 99), priority 1: speed > 0 (disabled)\", style=dashed];\n"
              "    n12:row1:_ -> n11:head:_ [color=\"#a84300\", tooltip=\"ToStand (Walk -> Stand), "
              "priority 3: speed < 0.5 or halt == \\\"now\\\"\"];\n"
              "    n10:head:_ -> n11:head:_ [weight=8, tooltip=\"The substate starts here: In, id "
              "20\", dir=both, arrowtail=dot];\n"
              "    n50:row0:_ -> n51:head:_ [color=\"#00664b\", tooltip=\"TakeHit (Reactions -> "
              "Hurt), priority 20: hit == true\"];\n"
              "    n51:row0:_ -> n52 [color=\"#a14fa6\", tooltip=\"Healed (Hurt -> Done), priority "
              "5: hit == false\"];\n"
              "}\n");
}

TEST(GraphDot, PutsTheBoxOfASubstateInsideItsFrame)
{
    const std::string dot = GraphOf(Walker());

    const std::string frame = dot.substr(dot.find("subgraph cluster_n10"));
    EXPECT_EQ(
        frame.substr(0, frame.find("n11")),
        "subgraph cluster_n10 {\n"
        "            label=\"\"; tooltip=\"Locomotion, id 10\";\n"
        "            style=\"rounded,filled\"; peripheries=1; margin=14; penwidth=1;\n"
        "            fillcolor=\"#f6f8fa\"; color=\"#8b96a5\";\n"
        "            n10 [label=<\n"
        "                <TABLE BORDER=\"1\" COLOR=\"#8b96a5\" STYLE=\"ROUNDED\" "
        "BGCOLOR=\"#d9e2ee\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n"
        "                <TR><TD PORT=\"head\" CELLPADDING=\"6\"><FONT POINT-SIZE=\"16\"><B><FONT "
        "COLOR=\"#1f2933\">Locomotion</FONT></B></FONT></TD></TR>\n"
        "                </TABLE>\n"
        "            >, tooltip=\"Locomotion, id 10\"];\n"
        "            ");
    EXPECT_EQ(LinesWith(dot, "tooltip=\"Stand"),
              ">, tooltip=\"Stand, id 11\\nToWalk (Stand -> Walk), priority 5: speed > 1.5\"];\n");
}

TEST(GraphMermaid, WritesTheWholePicture)
{
    EXPECT_EQ(GraphOf(Walker(), {"--format", "mermaid"}),
              "---\n"
              "title: \"a\"\n"
              "---\n"
              "flowchart LR\n"
              "    classDef mark fill:#57606a,stroke:#57606a\n"
              "    classDef port stroke-dasharray:4\n"
              "    classDef unknown stroke:#c00,color:#c00,stroke-dasharray:4\n"
              "    classDef active fill:#1158c7,color:#fff,stroke:#1158c7,stroke-width:3px\n"
              "    classDef waiting fill:#6e7781,color:#fff,stroke:#6e7781,stroke-width:3px\n"
              "    subgraph n10[\"Locomotion\"]\n"
              "        n11(\"Stand\")\n"
              "        n12(\"Walk\")\n"
              "        n20((\" \")):::mark\n"
              "    end\n"
              "    n50{{\"Reactions\"}}\n"
              "    n51(\"Hurt\")\n"
              "    n52(((\"Done\")))\n"
              "    n99[\"no node 99\"]:::unknown\n"
              "    start((\" \")):::mark --> n10\n"
              "    n11 -->|\"speed #gt; 1.5\"| n12\n"
              "    n12 -.->|\"1: speed #gt; 0 (disabled)\"| n99\n"
              "    n12 -->|\"3: speed #lt; 0.5 or halt == #quot;now#quot;\"| n11\n"
              "    n20 --> n11\n"
              "    n50 -->|\"20: hit == true\"| n51\n"
              "    n51 -->|\"hit == false\"| n52\n"
              "    linkStyle 1 stroke:#0072b2\n"
              "    linkStyle 2 stroke:#a84300\n"
              "    linkStyle 3 stroke:#a84300\n"
              "    linkStyle 5 stroke:#00664b\n"
              "    linkStyle 6 stroke:#a14fa6\n");
}

TEST(GraphDot, ShowsWhatIsWrongWithADocumentInsteadOfDroppingIt)
{
    DocumentBuilder builder;
    builder.Start(77)
        .Node(Generic("A \"quoted\"", 10, {100}))
        .Node(Transition("Nowhere", 100, 10, 0))
        .Node(Transition("Unlisted", 101, 10, 11))
        .Node(Transition("FromNobody", 102, 98, 10))
        // Two levels that claim to hold one another.
        .Node(Substate("P", 20, 30, 31, {}, 21))
        .Node(Substate("Q", 21, 30, 31, {}, 20));

    const Folder folder;
    const std::string dot = CallVell({"graph", folder.Write("a.json", builder.Text())}).out;

    EXPECT_EQ(Rows(dot), "A &quot;quoted&quot;\n"
                         "- a trigger\n"
                         "- a trigger (no state lists it)\n"
                         "P\n"
                         "Q\n"
                         "no node\n"
                         "no node 11\n"
                         "no node 98\n"
                         "- a trigger (no state lists it)\n"
                         "no node 77\n");
    EXPECT_EQ(LinesWith(dot, "subgraph cluster_n"),
              "subgraph cluster_n20 {\nsubgraph cluster_n21 {\n");
    EXPECT_EQ(
        LinesWith(dot, " -> n"),
        ">, tooltip=\"A \\\"quoted\\\", id 10\\n"
        "Nowhere (A \\\"quoted\\\" -> no node), priority 5: a trigger\\n"
        "Unlisted (A \\\"quoted\\\" -> no node 11), priority 5: a trigger (no state lists it)\"];\n"
        "start -> n77:head:_ [tooltip=\"The machine starts here\"];\n"
        "n10:row0:_ -> n0:head:_ [color=\"#0072b2\", tooltip=\"Nowhere (A \\\"quoted\\\" -> no "
        "node), priority 5: a trigger\"];\n"
        "n10:row1:_ -> n11:head:_ [color=\"#0072b2\", tooltip=\"Unlisted (A \\\"quoted\\\" -> no "
        "node 11), priority 5: a trigger (no state lists it)\", style=dashed];\n"
        "n98:row0:_ -> n10:head:_ [color=\"#a84300\", tooltip=\"FromNobody (no node 98 -> A "
        "\\\"quoted\\\"), priority 5: a trigger (no state lists it)\", style=dashed];\n");
}

tool::GraphNode NodeOf(unsigned int id, const std::string& name,
                       tool::NodeShape shape = tool::NodeShape::State)
{
    tool::GraphNode node;
    node.id = id;
    node.name = name;
    node.shape = shape;
    return node;
}

TEST(GraphDot, LeadsEdgesOfLevelsToTheirBoxes)
{
    tool::Graph graph;
    graph.nodes = {NodeOf(1, "L", tool::NodeShape::Level), NodeOf(3, "O")};
    graph.nodes[0].inside = {NodeOf(2, "I")};
    for (const auto& [from, to] : {std::pair(1u, 3u), std::pair(3u, 1u), std::pair(1u, 2u),
                                   std::pair(2u, 1u), std::pair(1u, 1u)})
    {
        tool::GraphEdge edge;
        edge.from = from;
        edge.to = to;
        edge.priority = tool::kDefaultPriority;
        edge.name = "T";
        graph.edges.push_back(edge);
    }

    const std::string dot = tool::GraphToDot(graph, "LR");
    EXPECT_EQ(
        LinesWith(dot, " -> "),
        "n1:row0:_ -> n3:head:_ [color=\"#0072b2\", tooltip=\"T (), priority 5: a trigger\"];\n"
        "n3:row0:_ -> n1:head:w [color=\"#00664b\", tooltip=\"T (), priority 5: a trigger\"];\n"
        "n1:row1:_ -> n2:head:_ [color=\"#0072b2\", tooltip=\"T (), priority 5: a trigger\"];\n"
        "n2:row0:_ -> n1:head:w [color=\"#a84300\", tooltip=\"T (), priority 5: a trigger\"];\n");
    const std::string mermaid = tool::GraphToMermaid(graph, "TB");
    EXPECT_EQ(mermaid.substr(mermaid.find("    subgraph")),
              "    subgraph n1[\"L\"]\n"
              "        n1_level(\"L\")\n"
              "        n2(\"I\")\n"
              "    end\n"
              "    n3(\"O\")\n"
              "    n1 -->|\"a trigger\"| n3\n"
              "    n3 -->|\"a trigger\"| n1\n"
              "    n1_level -->|\"a trigger\"| n2\n"
              "    n2 -->|\"a trigger\"| n1_level\n"
              "    n1_level -->|\"a trigger\"| n1_level\n"
              "    linkStyle 0 stroke:#0072b2\n"
              "    linkStyle 1 stroke:#00664b\n"
              "    linkStyle 2 stroke:#0072b2\n"
              "    linkStyle 3 stroke:#a84300\n"
              "    linkStyle 4 stroke:#0072b2\n");
}

TEST(GraphDot, ListsTransitionsInTheOrderInWhichTheyAreTestedAndMarksLoops)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Node(Generic("A", 10, {103, 102, 101, 100}))
        .Node(Generic("B", 11))
        .Node(Transition("Last", 100, 10, 11).Set(JSON_TransitionPriority, 9))
        .Node(Transition("Second", 101, 10, 11))
        .Node(Transition("First", 102, 10, 10))
        .Node(Transition("Before", 103, 10, 11).Set(JSON_TransitionPriority, -1));

    const std::string dot = GraphOf(builder);

    EXPECT_EQ(Rows(dot), "A\n"
                         "- -1&#160;&#160;a trigger\n"
                         "- a trigger&#160;&#160;&#8635;\n"
                         "- a trigger\n"
                         "- 9&#160;&#160;a trigger\n"
                         "B\n");
    EXPECT_EQ(LinesWith(dot, "n10:row"), "n10:row0:_ -> n11:head:_ [color=\"#0072b2\", "
                                         "tooltip=\"Before (A -> B), priority -1: a trigger\"];\n"
                                         "n10:row2:_ -> n11:head:_ [color=\"#0072b2\", "
                                         "tooltip=\"Second (A -> B), priority 5: a trigger\"];\n"
                                         "n10:row3:_ -> n11:head:_ [color=\"#0072b2\", "
                                         "tooltip=\"Last (A -> B), priority 9: a trigger\"];\n");
}

TEST(GraphDot, ShowsExitNodesOnlyWhereSomethingReachesThem)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Level("L", 10, 13)
        .Node(Generic("A", 13, {100}, 10))
        .Node(Exit("Reached", 14, 10))
        .Node(Exit("Unreached", 15, 10))
        .Node(Transition("ToReached", 100, 13, 14));

    const std::string dot = GraphOf(builder);

    EXPECT_EQ(LinesWith(dot, "doublecircle"),
              "n14 [shape=doublecircle, width=0.13, label=\"\", style=filled, "
              "fillcolor=\"#1f2933\", color=\"#1f2933\", tooltip=\"Reached, id 14\"];\n");
    EXPECT_EQ(dot.find("Unreached"), std::string::npos);
    EXPECT_EQ(dot.find("LOut"), std::string::npos);
}

TEST(GraphDot, LightsBothStacks)
{
    const std::string dot = GraphOf(Walker(), {}, "tick\nset hit true\ntick\n");

    EXPECT_EQ(LinesWith(dot, "a.script"),
              "label=<<FONT POINT-SIZE=\"20\"><B>a</B></FONT><BR ALIGN=\"LEFT\"/><FONT "
              "POINT-SIZE=\"12\"><FONT COLOR=\"#57606a\">after a.script: Hurt interrupts "
              "Locomotion/Stand</FONT></FONT><BR ALIGN=\"LEFT\"/>>;\n");
    EXPECT_EQ(LinesWith(dot, "BORDER=\"3\""),
              "<TABLE BORDER=\"3\" COLOR=\"#8b96a5\" STYLE=\"ROUNDED\" BGCOLOR=\"#6e7781\" "
              "CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n"
              "<TABLE BORDER=\"3\" COLOR=\"#0072b2\" STYLE=\"ROUNDED\" BGCOLOR=\"#6e7781\" "
              "CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n"
              "<TABLE BORDER=\"3\" COLOR=\"#a14fa6\" STYLE=\"ROUNDED\" BGCOLOR=\"#1158c7\" "
              "CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n");
    EXPECT_EQ(LinesWith(dot, "penwidth=3"),
              "style=\"rounded,filled\"; peripheries=1; margin=14; penwidth=3;\n");
    const std::string mermaid =
        GraphOf(Walker(), {"--format", "mermaid"}, "tick\nset hit true\ntick\n");
    EXPECT_EQ(LinesWith(mermaid, ":::active") + LinesWith(mermaid, ":::waiting") +
                  LinesWith(mermaid, "style "),
              "n51(\"Hurt\"):::active\n"
              "n11(\"Stand\"):::waiting\n"
              "style n10 stroke:#6e7781,stroke-width:3px\n");
}

/// What the legend says, one line for each sign.
std::string Legend(const DocumentBuilder& builder, const Words& options = {},
                   const std::string& script = "")
{
    const std::string dot = GraphOf(builder, options, script);
    std::string text;
    for (std::size_t at = dot.find("label=<<TABLE");
         (at = dot.find("POINT-SIZE=\"11\"><FONT COLOR=\"#57606a\">", at)) < dot.find(">];");)
    {
        at = dot.find('>', dot.find('>', at) + 1) + 1;
        text += dot.substr(at, dot.find('<', at) - at) + "\n";
    }
    return text;
}

TEST(GraphDot, ExplainsInTheLegendWhatIsInThePictureAndNothingElse)
{
    DocumentBuilder plain;
    plain.Start(10).Node(Generic("A", 10));
    DocumentBuilder connector;
    connector.Start(10).Node(Generic("A", 10)).Node(Connector("C", 11, "in"));

    DocumentBuilder loop;
    loop.Start(10).Node(Generic("A", 10, {100})).Node(Transition("Loop", 100, 10, 10));

    const std::string start = "where the machine or a substate starts\n";
    EXPECT_EQ(Legend(plain), start);
    EXPECT_EQ(Legend(connector), start + "connector, or another node that cannot run\n");
    EXPECT_EQ(Legend(loop), start + "leaves the state and enters it again\n");
    EXPECT_EQ(Legend(plain, {}, "tick\n"), start + "on the stack that runs\n");
}

TEST(GraphDot, ExplainsInTheLegendWhatTheOptionsBring)
{
    EXPECT_EQ(Legend(Walker(), {}, "tick\nset hit true\ntick\n"),
              "where the machine or a substate starts\n"
              "exit node: ends a blip\n"
              "global node: starts blips, whatever runs\n"
              "substate: tested whatever is active inside\n"
              "a node that does not exist\n"
              "priority, where it is not 5; smaller is tested first\n"
              "a transition that is never tested\n"
              "on the stack that runs\n"
              "on the stack that waits\n");
    EXPECT_EQ(Legend(Walker(), {"--collapse"}),
              "where the machine or a substate starts\n"
              "exit node: ends a blip\n"
              "global node: starts blips, whatever runs\n"
              "substate: tested whatever is active inside\n"
              "a node that does not exist\n"
              "priority, where it is not 5; smaller is tested first\n"
              "a transition that is never tested\n");
    EXPECT_EQ(Legend(Walker(), {"--level", "Locomotion"}),
              "where the machine or a substate starts\n"
              "substate: tested whatever is active inside\n"
              "outside the substate that is drawn\n"
              "a node that does not exist\n"
              "priority, where it is not 5; smaller is tested first\n"
              "a transition that is never tested\n");
}

TEST(GraphDot, DrawsConnectorsApartFromStates)
{
    DocumentBuilder builder;
    builder.Start(10).Node(Clip("A", 10, "a.anim")).Node(Connector("C", 11, "in"));

    EXPECT_EQ(LinesWith(GraphOf(builder), "COLOR=\"#8b96a5\" STYLE=\"ROUNDED,DASHED\" BGCOLOR"),
              "<TABLE BORDER=\"1\" COLOR=\"#8b96a5\" STYLE=\"ROUNDED,DASHED\" BGCOLOR=\"#fefefe\" "
              "CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">\n");
    const std::string mermaid = GraphOf(builder, {"--format", "mermaid"});
    EXPECT_EQ(LinesWith(mermaid, "\"]") + LinesWith(mermaid, "\")"),
              "n11[\"C\"]\n"
              "n10(\"A\")\n"
              "start((\" \")):::mark --> n10\n");
}

TEST(GraphDot, EscapesNamesOfStatesLevelsAndTransitions)
{
    const std::string name = "a\"b\\c\nd#e<f>g`h&i\x01";
    DocumentBuilder builder;
    builder.Start(20)
        .Parameter(MessageParameter("m", ""))
        .Level(name, 20, 10)
        .Node(Generic(name, 10, {100}, 20))
        .Node(Transition(name, 100, 10, 10, {MessageCondition("m", name)}));

    EXPECT_EQ(
        LinesWith(GraphOf(builder), "d#e"),
        "label=\"\"; tooltip=\"a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD, id 20\";\n"
        "<TR><TD PORT=\"head\" CELLPADDING=\"6\"><FONT POINT-SIZE=\"16\"><B><FONT "
        "COLOR=\"#1f2933\">a&quot;b\\c<BR/>d#e&lt;f&gt;g`h&amp;i\xEF\xBF\xBD</FONT></B></FONT></"
        "TD></TR>\n"
        ">, tooltip=\"a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD, id 20\"];\n"
        "<TR><TD PORT=\"head\" CELLPADDING=\"6\"><FONT POINT-SIZE=\"13\"><B><FONT "
        "COLOR=\"#1f2933\">a&quot;b\\c<BR/>d#e&lt;f&gt;g`h&amp;i\xEF\xBF\xBD</FONT></B></FONT></"
        "TD></TR>\n"
        "<HR/><TR><TD PORT=\"row0\" ALIGN=\"LEFT\" BALIGN=\"LEFT\"><FONT POINT-SIZE=\"11\"><FONT "
        "COLOR=\"#1f2933\">m == "
        "&quot;a&quot;b\\c<BR/>d#e&lt;f&gt;g`h&amp;i\xEF\xBF\xBD&quot;&#160;&#160;&#8635;<BR "
        "ALIGN=\"LEFT\"/></FONT></FONT></TD></TR>\n"
        ">, tooltip=\"a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD, id "
        "10\\na\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD "
        "(a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD -> a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD), "
        "priority 5: m == "
        "\\\"a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD\\\"\"];\n"
        "n20:head:_ -> n10:head:_ [weight=8, tooltip=\"The substate starts here: "
        "a\\\"b\\\\c\\nd#e<f>g`h&i\xEF\xBF\xBD"
        "In, id 21\", dir=both, arrowtail=dot];\n");
    EXPECT_EQ(
        LinesWith(GraphOf(builder, {"--format", "mermaid"}), "#35;"),
        "subgraph n20[\"a#quot;b\\c d#35;e#lt;f#gt;g#96;h#amp;i\xEF\xBF\xBD\"]\n"
        "n10(\"a#quot;b\\c d#35;e#lt;f#gt;g#96;h#amp;i\xEF\xBF\xBD\")\n"
        "n10 -->|\"m == #quot;a#quot;b\\c d#35;e#lt;f#gt;g#96;h#amp;i\xEF\xBF\xBD#quot;\"| n10\n");
}

TEST(GraphOptions, AreCheckedOneByOne)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string number = "--depth: expected a whole number above 0, got ";
    const std::string levels = path + ": no level named 'Locomtion'; levels are Locomotion";
    struct Case
    {
        Words options;
        std::string error; ///< the first line
    };
    const std::vector<Case> cases{
        {{"--depth", "0"}, number + "'0'"},
        {{"--depth", "1.5"}, number + "'1.5'"},
        {{"--depth", "99999999999999999999"}, number + "'99999999999999999999'"},
        {{"--depth", "1", "--collapse"}, "--depth excludes --collapse"},
        {{"--direction", "up"}, "--direction: expected LR, TB, RL or BT, got 'up'"},
        {{"--theme", "blue"}, "--theme: expected auto, light or dark, got 'blue'"},
        {{"--level", "Locomtion"}, levels + "; did you mean 'Locomotion'?"}};
    for (const Case& one : cases)
    {
        Words words{"graph", path};
        words.insert(words.end(), one.options.begin(), one.options.end());

        const Outcome outcome = CallVell(words);

        EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n')), one.error);
        EXPECT_EQ(outcome.code, tool::ExitUsage) << one.error;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(GraphOptions, LeadTransitionsOfTheGlobalNodeToTheTopWhereThePictureLeadsDown)
{
    EXPECT_NE(GraphOf(Walker(), {"--direction", "TB"}).find("n50:row0:_ -> n51:head:n ["),
              std::string::npos);
    EXPECT_NE(GraphOf(Walker()).find("n50:row0:_ -> n51:head:_ ["), std::string::npos);
}

TEST(GraphDot, LeadsRowsToTheSideWhereThePictureDoes)
{
    // Below the last row is another, or its edge could leave from the bottom of the box.
    const std::string foot = "<TR><TD HEIGHT=\"1\" CELLPADDING=\"0\"></TD></TR>";

    EXPECT_NE(GraphOf(Walker(), {"--direction", "LR"}).find(foot), std::string::npos);
    EXPECT_NE(GraphOf(Walker(), {"--direction", "RL"}).find(foot), std::string::npos);
    EXPECT_EQ(GraphOf(Walker(), {"--direction", "TB"}).find(foot), std::string::npos);
}

TEST(GraphDot, LeavesMoreRoomBetweenTheRanksOfAPictureWithManyEdges)
{
    DocumentBuilder builder;
    std::vector<unsigned int> transitions;
    for (unsigned int id = 100; id < 141; ++id)
    {
        transitions.push_back(id);
        builder.Node(Transition("T", id, 10, 11));
    }
    builder.Start(10).Node(Generic("A", 10, transitions)).Node(Generic("B", 11));

    EXPECT_NE(GraphOf(builder).find("ranksep=1.1,"), std::string::npos);
    EXPECT_NE(GraphOf(Walker()).find("ranksep=0.7,"), std::string::npos);
}

TEST(GraphOptions, SetDirectionAndTitle)
{
    const Words options{"--direction", "BT", "--title", "The \"walker\""};
    const std::string dot = GraphOf(Walker(), options);
    EXPECT_EQ(LinesWith(dot, "digraph"), "digraph \"The \\\"walker\\\"\" {\n");
    EXPECT_NE(dot.find("rankdir=BT,"), std::string::npos);

    const Words mermaid{"--direction", "BT", "--title", "The \"walker\"", "--format", "mermaid"};
    EXPECT_EQ(GraphOf(Walker(), mermaid).substr(0, 54),
              "---\ntitle: \"The \\\"walker\\\"\"\n---\nflowchart BT\n    class");
}

TEST(GraphText, ShowsConditionsAsLinesOfBoundedLength)
{
    struct Case
    {
        Words conditions;
        Words lines;
    };
    const std::string wide(48, 'w');
    std::string accents;
    for (int i = 0; i < 50; ++i)
    {
        accents += "\xC3\xA9";
    }
    const std::vector<Case> cases{
        {{}, {"a trigger"}},
        {{"a"}, {"a"}},
        {{"a", "b"}, {"a", "or b"}},
        {{"1", "2", "3", "4", "5", "6"}, {"1", "or 2", "or 3", "or 4", "or 5", "or 6"}},
        {{"1", "2", "3", "4", "5", "6", "7"}, {"1", "or 2", "or 3", "or 4", "or 5", "or 2 more"}},
        {{wide}, {wide}},
        {{wide + "x"}, {wide + "..."}},
        {{accents}, {accents.substr(0, 96) + "..."}}};
    for (const Case& one : cases)
    {
        tool::GraphEdge edge;
        edge.conditions = one.conditions;

        EXPECT_EQ(tool::TransitionLines(edge), one.lines);
    }
}

TEST(GraphText, LeavesOutThePriorityThatADocumentNeedNotName)
{
    EXPECT_EQ(TransitionDef().priority, tool::kDefaultPriority);
}

} // namespace
} // namespace vell::test
