// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.cpp: reading the command line and doing what it asks for.
#include "tools/vell/CommandLine.h"

#include "tools/vell/Context.h"
#include "tools/vell/Graph.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Report.h"
#include "tools/vell/Runner.h"
#include "tools/vell/Script.h"
#include "tools/vell/TreeJson.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr std::uint64_t kDefaultTicks = 10;
constexpr std::size_t kComplaintsShown = 10;

constexpr const char* kFooter = R"(
Examples:
  vell run hero.json                          show the first ten ticks
  vell run hero.json --script jump.script     drive the machine and check what it does
  vell run hero.json --script - --explain     show why a transition did not fire
  vell graph hero.json --format svg -o hero.svg
  vell tree hero.json --after jump.script     print parameters, nodes and stacks as JSON
  vell context save hero.json --after jump.script -o jump.json
  vell context restore hero.json jump.json    continue from there
  vell COMMAND --help                         the options of one command

Exit codes:
  0  success
  1  a document could not be loaded, or an expectation failed
  2  invalid command line or script)";

constexpr const char* kLogHelp = R"(
The library's log is not shown. Use --log to write it to a file.)";

constexpr const char* kScriptHelp = R"(
A script has one instruction per line. A comment starts with #.
  tick [N]                    run N ticks, or one
  set NAME VALUE              set a parameter: set speed 1.5, set grounded true,
                              set stick 0.3,0.8, set stance crouched
  message NAME                fire a message
  expect stack A/B/C          the names on the stack, from the bottom; - for an empty stack
  expect param NAME VALUE     the value of a parameter
  expect blip yes|no          whether a blip is running
Put names with spaces in quotes. A failed expectation is reported as FILE:LINE: ...
)";

constexpr const char* kContextHelp = R"(
A context has both stacks and the last state change, by node id. It does not have:
  - parameters: set them with a script after restoring;
  - the blip flags: a restored machine runs its main stack;
  - the child that each substate had reached: a restored substate pushes its first child in its
    first tick, above the states that were restored.
)";

/// The options of the command line.
struct Request
{
    std::string document;
    std::string script;
    std::string context; ///< file of a recorded context
    std::string output;  ///< empty for the stream
    std::string log;
    std::string format;
    std::optional<std::uint64_t> ticks;
    RunOptions run;
};

/// One call of the command.
class Command
{
public:
    Command(std::ostream& newOut, std::ostream& newErrors, bool isTerminal)
        : out(newOut), errors(newErrors)
    {
        request.run.showProgress = isTerminal;
    }

    int Run(int argc, const char* const* argv)
    {
        CLI::App app("Inspects and runs machine documents.", "vell");
        app.set_version_flag("--version", "vell " VELL_VERSION);
        app.require_subcommand(1);
        app.footer(kFooter);
        AddRun(app);
        AddGraph(app);
        AddTree(app);
        AddContext(app);
        if (argc < 2)
        {
            errors << app.help();
            return ExitUsage;
        }
        try
        {
            app.parse(argc, argv);
        }
        catch (const CLI::ParseError& error)
        {
            return app.exit(error, out, errors) == 0 ? ExitWell : ExitUsage;
        }
        const LogRedirect redirect(request.log);
        if (!redirect.IsActive())
        {
            errors << request.log << ": cannot write the file; choose another one with --log\n";
            return ExitUsage;
        }
        Script script;
        return LoadScript(&script) ? (this->*action)(script) : ExitUsage;
    }

private:
    using Action = int (Command::*)(const Script& script);

    CLI::App* AddCommand(CLI::App& app, const char* name, const char* description, Action newAction)
    {
        CLI::App* command = app.add_subcommand(name, description);
        command->callback(
            [this, newAction]
            {
                action = newAction;
            });
        command->add_option("DOCUMENT", request.document, "The machine document, a JSON file")
            ->required();
        command->add_option("--log", request.log, "Write the library's log to this file")
            ->type_name("FILE");
        return command;
    }

    void AddFormat(CLI::App& command, const char* description,
                   const std::vector<std::string>& formats)
    {
        command.add_option("--format", request.format, description)
            ->check(CLI::IsMember(formats))
            ->type_name("FORMAT");
    }

    void AddOutput(CLI::App& command)
    {
        command
            .add_option("-o,--output", request.output,
                        "Write to this file instead of standard output")
            ->type_name("FILE");
    }

    CLI::Option* AddAfter(CLI::App& command)
    {
        return command
            .add_option("--after", request.script,
                        "Script to run first; - is standard input. See: vell run --help")
            ->type_name("SCRIPT");
    }

    void AddRunOptions(CLI::App& command, const char* ticksHelp)
    {
        command.add_option("--script", request.script, "Script to run; - is standard input")
            ->type_name("FILE");
        // Without the check a negative number becomes a very large one.
        command.add_option("--ticks", request.ticks, ticksHelp)
            ->check(CLI::NonNegativeNumber)
            ->type_name("N");
        command.add_option("--dt", request.run.timeStep, "Seconds per tick; default 1/60")
            ->type_name("SECONDS");
        AddFormat(command, "text (default), or jsonl: one object per line", {"text", "jsonl"});
        command.add_flag("--explain", request.run.explain,
                         "Show each transition that is tested, the values its conditions saw, and "
                         "why it did not fire");
    }

    void AddRun(CLI::App& app)
    {
        CLI::App* run =
            AddCommand(app, "run", "Runs a machine and shows what happens", &Command::RunMachine);
        AddRunOptions(*run, "Ticks after the script; default 10 without a script");
        run->footer(std::string(kScriptHelp) + kLogHelp);
    }

    void AddGraph(CLI::App& app)
    {
        CLI::App* graph =
            AddCommand(app, "graph", "Draws the states and transitions", &Command::DrawGraph);
        AddFormat(*graph, "dot (default), mermaid, or svg: drawn by Graphviz",
                  {"dot", "mermaid", "svg"});
        AddOutput(*graph);
        graph->footer(
            "\nEach transition shows its priority and its conditions, any one of which is "
            "enough.\nA disabled transition is dashed. A target that does not exist is red.\n" +
            std::string(kLogHelp));
    }

    void AddTree(CLI::App& app)
    {
        CLI::App* tree = AddCommand(app, "tree", "Prints the tree of tables that mirrors a machine",
                                    &Command::PrintTree);
        AddAfter(*tree);
        AddFormat(*tree, "json (default), or text: one line per value", {"json", "text"});
        AddOutput(*tree);
        tree->footer("\nWithout --after, the machine is loaded but not started.\n" +
                     std::string(kLogHelp));
    }

    void AddContext(CLI::App& app)
    {
        CLI::App* context = app.add_subcommand(
            "context", "Saves the stacks of a running machine and restores them");
        context->require_subcommand(1);
        context->footer(kContextHelp);
        CLI::App* save = AddCommand(*context, "save", "Runs a script and saves the context",
                                    &Command::RecordContext);
        AddAfter(*save)->required();
        AddOutput(*save);
        save->footer(std::string(kContextHelp) + kLogHelp);
        CLI::App* restore =
            AddCommand(*context, "restore", "Restores a context and continues from it",
                       &Command::GoOnFromContext);
        restore->add_option("CONTEXT", request.context, "The file that context save wrote")
            ->required();
        AddRunOptions(*restore, "Ticks after the script; default 0");
        restore->footer(std::string(kContextHelp) + kScriptHelp + kLogHelp);
    }

    int RunMachine(const Script& script)
    {
        ObservedMachine machine;
        if (!LoadMachine(machine))
        {
            return ExitFailed;
        }
        const std::unique_ptr<Report> report = MakeReport();
        Runner runner(machine, *report, errors, request.run);
        if (!runner.Start())
        {
            ShowComplaints(machine);
            return ExitFailed;
        }
        return Drive(runner, script, request.script.empty() ? kDefaultTicks : 0);
    }

    int Drive(Runner& runner, const Script& script, std::uint64_t defaultTicks)
    {
        runner.Run(script);
        runner.Tick(request.ticks.value_or(defaultTicks));
        runner.ReportStack();
        return runner.Failures() == 0 ? ExitWell : ExitFailed;
    }

    int DrawGraph(const Script&)
    {
        ObservedMachine machine;
        if (!LoadMachine(machine))
        {
            return ExitFailed;
        }
        const Graph graph = ReadGraph(machine);
        if (request.format != "svg")
        {
            return Write(request.format == "mermaid" ? GraphToMermaid(graph) : GraphToDot(graph));
        }
        std::string fault;
        const std::string svg = DotToSvg(GraphToDot(graph), &fault);
        if (!fault.empty())
        {
            errors << fault << '\n';
            return ExitFailed;
        }
        return Write(svg);
    }

    int PrintTree(const Script& script)
    {
        ObservedMachine machine;
        if (!LoadMachine(machine) || (!request.script.empty() && !RunQuietly(machine, script)))
        {
            return ExitFailed;
        }
        const Tessel::KVTable root = machine.GetKVTable();
        return Write(request.format == "text" ? TreeToText(root) : TreeToJson(root));
    }

    int RecordContext(const Script& script)
    {
        ObservedMachine machine;
        if (!LoadMachine(machine) || !RunQuietly(machine, script))
        {
            return ExitFailed;
        }
        return Write(SaveContext(machine));
    }

    int GoOnFromContext(const Script& script)
    {
        std::ifstream in(request.context, std::ios::binary);
        if (!in)
        {
            errors << request.context << ": cannot read the file: " << std::strerror(errno) << '\n';
            return ExitFailed;
        }
        const std::string json{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
        ObservedMachine machine;
        if (!LoadMachine(machine))
        {
            return ExitFailed;
        }
        // A tick needs a started machine; the context then replaces its stacks.
        machine.StartRunning();
        const std::string fault = RestoreContext(machine, json);
        if (!fault.empty())
        {
            errors << request.context << ": " << fault << '\n';
            return ExitFailed;
        }
        const std::unique_ptr<Report> report = MakeReport();
        Runner runner(machine, *report, errors, request.run);
        runner.ReportStack();
        return Drive(runner, script, 0);
    }

    /// Starts the machine and runs the script without output.
    bool RunQuietly(ObservedMachine& machine, const Script& script)
    {
        Report report;
        Runner runner(machine, report, errors, request.run);
        if (!runner.Start())
        {
            ShowComplaints(machine);
            return false;
        }
        runner.Run(script);
        return runner.Failures() == 0;
    }

    std::unique_ptr<Report> MakeReport()
    {
        return request.format == "jsonl" ? MakeJsonReport(out) : MakeTextReport(out);
    }

    int Write(const std::string& text)
    {
        if (request.output.empty())
        {
            out << text;
            return ExitWell;
        }
        std::ofstream file(request.output, std::ios::binary);
        file << text << std::flush;
        if (!file)
        {
            errors << request.output << ": cannot write the file; choose another one with -o\n";
            return ExitUsage;
        }
        return ExitWell;
    }

    bool LoadScript(Script* script)
    {
        if (request.script.empty())
        {
            return true;
        }
        *script = ReadScriptFile(request.script);
        for (const std::string& error : script->errors)
        {
            errors << error << '\n';
        }
        return script->errors.empty();
    }

    bool LoadMachine(ObservedMachine& machine)
    {
        const std::string fault = machine.Load(request.document);
        if (!fault.empty())
        {
            errors << fault << '\n';
            ShowComplaints(machine);
        }
        return fault.empty();
    }

    void ShowComplaints(const ObservedMachine& machine)
    {
        const std::vector<std::string>& complaints = machine.Complaints();
        if (complaints.empty())
        {
            return;
        }
        errors << "From the library's log (use --log FILE for all of it):\n";
        for (std::size_t i = 0; i < complaints.size() && i < kComplaintsShown; ++i)
        {
            errors << "  " << complaints[i] << '\n';
        }
    }

    std::ostream& out;
    std::ostream& errors;
    Request request;
    Action action = nullptr;
};

} // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& errors,
                   bool isTerminal)
{
    return Command(out, errors, isTerminal).Run(argc, argv);
}

} // namespace vell::tool
