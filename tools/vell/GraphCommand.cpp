// VELL: data-driven hierarchical state machines.
// tools/vell/GraphCommand.cpp: drawing the states and transitions of a document.
#include "tools/vell/GraphCommand.h"

#include "tools/vell/CommandLine.h"
#include "tools/vell/Graph.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <string>

namespace vell::tool
{
namespace
{

int DrawGraph(Session& session)
{
    ObservedMachine machine;
    if (!session.LoadMachine(machine))
    {
        return ExitFailed;
    }
    const Graph graph = ReadGraph(machine);
    const std::string& format = session.options.format;
    if (format != "svg")
    {
        return session.Write(format == "mermaid" ? GraphToMermaid(graph) : GraphToDot(graph));
    }
    std::string fault;
    const std::string svg = DotToSvg(GraphToDot(graph), &fault);
    if (!fault.empty())
    {
        session.Complain(fault);
        return ExitFailed;
    }
    return session.Write(svg);
}

} // namespace

void AddGraphCommand(CLI::App& app, Session& session)
{
    CLI::App* graph = session.AddCommand(app, "graph", "Draws the states and transitions",
                                         [&session]
                                         {
                                             return DrawGraph(session);
                                         });
    session.AddDocument(*graph);
    session.AddFormat(*graph, "dot (default), mermaid, or svg: drawn by Graphviz",
                      {"dot", "mermaid", "svg"});
    session.AddOutput(*graph);
    graph->footer(R"(
Each transition shows its priority and its conditions, any one of which is
enough. A disabled transition is dashed. A target that does not exist is red.)");
}

} // namespace vell::tool
