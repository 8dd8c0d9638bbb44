// VELL: data-driven hierarchical state machines.
// tools/vell/GraphCommand.cpp: drawing the states and transitions of a document.
#include "tools/author/Source.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Graph.h"
#include "tools/vell/GraphDot.h"
#include "tools/vell/GraphMermaid.h"
#include "tools/vell/GraphScope.h"
#include "tools/vell/GraphSvg.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace vell::tool
{
namespace
{

constexpr const char* kGraphHelp = R"(
Each box is a state. Its rows are its transitions, in the order in which they
are tested, with their conditions, any one of which is enough. Move the pointer
over a box or an arrow of the svg to see names, ids and priorities.

--level draws one substate alone. What is outside and has a transition into it,
or is reached from it, is drawn with a dashed border.
--depth 1 draws every substate as one box, --depth 2 opens the outermost ones.
)";

/// The options that only this command has.
struct GraphOptions
{
    GraphScope scope;
    bool isCollapsed = false;
    std::string direction = "LR";
    std::string theme = "auto";
    std::string title;
};

std::string CheckDepth(const std::string& text)
{
    const bool isNumber =
        !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    // More digits than any depth has would not fit into the number.
    return isNumber && text.size() < 10 && std::stoul(text) > 0
               ? ""
               : "expected a whole number above 0, got '" + text + "'";
}

/// The name of the document's file, without its extension.
std::string DefaultTitle(const std::string& document)
{
    std::string name = TextOf(PathOf(document).filename());
    const std::size_t extension = name.rfind(author::kSourceExtension);
    name = extension == std::string::npos ? TextOf(PathOf(document).stem())
                                          : name.substr(0, extension);
    return document == "-" ? "machine" : name;
}

/// Says after which script the states are lit, and where the stacks are.
std::string LitText(const ObservedMachine& machine, const std::string& script)
{
    const bool isBlip = &machine.Stack() == &machine.BlipStack();
    const std::string name = script == "-" ? "the script" : TextOf(PathOf(script).filename());
    return "after " + name + ": " + machine.StackPath() +
           (isBlip ? " interrupts " + PathOf(machine.MainStack()) : "");
}

int WriteGraph(Session& session, const Graph& graph, const GraphOptions& options)
{
    const std::string& format = session.options.format;
    if (format == "mermaid")
    {
        return session.Write(GraphToMermaid(graph, options.direction));
    }
    const std::string dot = GraphToDot(graph, options.direction);
    if (format != "svg")
    {
        return session.Write(dot);
    }
    std::string fault;
    const std::string svg = DotToSvg(dot, &fault);
    if (!fault.empty())
    {
        session.Complain(fault);
        return ExitFailed;
    }
    return session.Write(ThemedSvg(svg, options.theme));
}

int DrawGraph(Session& session, const GraphOptions& options)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    ObservedMachine machine;
    const std::string& scriptPath = session.options.script;
    const int loadCode = session.LoadMachine(machine);
    if (loadCode != ExitWell)
    {
        return loadCode;
    }
    if (scriptPath.empty())
    {
        session.CheckStart(machine);
    }
    else if (const int code = session.RunQuietly(machine, *script); code != ExitWell)
    {
        return code;
    }
    Graph graph = ReadGraph(machine);
    graph.title = options.title.empty() ? DefaultTitle(session.options.document) : options.title;
    graph.subtitle = scriptPath.empty() ? "" : LitText(machine, scriptPath);
    GraphScope scope = options.scope;
    if (options.isCollapsed)
    {
        scope.depth = 1;
    }
    const std::string fault = NarrowGraph(&graph, scope);
    if (!fault.empty())
    {
        session.Complain(session.options.document + ": " + fault);
        return ExitUsage;
    }
    return WriteGraph(session, graph, options);
}

void AddGraphOptions(CLI::App& command, Session& session, GraphOptions* options)
{
    command
        .add_option("--level", options->scope.level, "Draw only this substate and its neighbours")
        ->type_name("NAME");
    CLI::Option* depth = command
                             .add_option("--depth", options->scope.depth,
                                         "Draw N levels deep; substates below are boxes")
                             ->check(CheckDepth)
                             ->type_name("N");
    command
        .add_flag("--collapse", options->isCollapsed, "Draw each substate as one box: --depth 1")
        ->excludes(depth);
    session.AddChoice(command, "--direction", options->direction,
                      "Where arrows lead: LR (default, to the right), TB (down), RL or BT",
                      {"LR", "TB", "RL", "BT"});
    session.AddChoice(command, "--theme", options->theme,
                      "Colours of an svg: auto (default, as the viewer prefers), light or dark",
                      {"auto", "light", "dark"});
    command.add_option("--title", options->title, "Title; default is the document's file name")
        ->type_name("TEXT");
}

} // namespace

void AddGraphCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<GraphOptions>();
    CLI::App* graph = session.AddCommand(app, "graph", "Draws the states and transitions",
                                         [&session, options]
                                         {
                                             return DrawGraph(session, *options);
                                         });
    session.AddDocument(*graph);
    session.AddFormat(*graph, "dot (default), mermaid, or svg: drawn by Graphviz",
                      {"dot", "mermaid", "svg"});
    AddGraphOptions(*graph, session, options.get());
    session.AddAfter(*graph);
    session.AddOutput(*graph);
    graph->footer(kGraphHelp);
}

} // namespace vell::tool
