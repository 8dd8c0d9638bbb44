// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.cpp: reading the command line and doing what it asks for.
#include "tools/vell/CommandLine.h"

#include "tools/vell/LogRedirect.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Report.h"
#include "tools/vell/Runner.h"
#include "tools/vell/Script.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace vell::tool
{
namespace
{

constexpr std::uint64_t kDefaultTicks = 10;
constexpr std::size_t kComplaintsShown = 10;

constexpr const char* kFooter = R"(
Examples:
  vell run hero.json                        what happens in the first ten ticks
  vell run hero.json --script jump.vell     drive it and check what it does
  vell run hero.json --script - --explain   why a transition did not fire

Exit code: 0 all went well; 1 a document did not load or an expectation did not hold; 2 the command
line or a script is not understood.)";

constexpr const char* kScriptHelp = R"(
A script has an instruction a line; a # and what follows it is a comment:
  tick [N]                    N ticks, or one
  set NAME VALUE              a parameter: set speed 1.5, set grounded true, set stick 0.3,0.8,
                              set stance crouched
  message NAME                fire a message
  expect stack A/B/C          names from the bottom; - for an empty stack
  expect param NAME VALUE
  expect blip yes|no
A name with blanks stands in quotes. An expectation that does not hold is shown as FILE:LINE: ...

The library writes a log to standard error. It is kept off the terminal: --log puts it into a file.)";

/// What the command line asks for.
struct Request
{
    std::string document;
    std::string script;
    std::string log;
    std::string format = "text";
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
        CLI::App app("Looks into and drives machine documents.", "vell");
        app.set_version_flag("--version", "vell " VELL_VERSION);
        app.require_subcommand(1);
        app.footer(kFooter);
        AddRun(app);
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
            errors << request.log << ": cannot be written; name another file by --log\n";
            return ExitUsage;
        }
        return action();
    }

private:
    void AddDocument(CLI::App& command)
    {
        command.add_option("DOCUMENT", request.document, "The machine document, a JSON file")
            ->required();
        command.add_option("--log", request.log, "File for the library's log")->type_name("FILE");
    }

    void AddRun(CLI::App& app)
    {
        CLI::App* run = app.add_subcommand("run", "Runs a machine and shows what happens");
        AddDocument(*run);
        run->add_option("--script", request.script, "File of instructions; - is standard input")
            ->type_name("FILE");
        run->add_option("--ticks", request.ticks,
                        "Ticks after the script; without either, 10 ticks")
            ->type_name("N");
        run->add_option("--dt", request.run.timeStep, "Seconds a tick; 1/60 when not given")
            ->type_name("SECONDS");
        run->add_option("--format", request.format, "text: for people; jsonl: an object a line")
            ->check(CLI::IsMember({"text", "jsonl"}));
        run->add_flag("--explain", request.run.explain,
                      "Show for each state that is tested each transition, what its conditions saw "
                      "and why it did not fire");
        run->footer(kScriptHelp);
        run->callback(
            [this]
            {
                action = [this]
                {
                    return RunMachine();
                };
            });
    }

    int RunMachine()
    {
        Script script;
        if (!LoadScript(request.script, &script))
        {
            return ExitUsage;
        }
        ObservedMachine machine;
        if (!LoadMachine(machine))
        {
            return ExitFailed;
        }
        const std::unique_ptr<Report> report =
            request.format == "jsonl" ? MakeJsonReport(out) : MakeTextReport(out);
        Runner runner(machine, *report, errors, request.run);
        if (!runner.Start())
        {
            ShowComplaints(machine);
            return ExitFailed;
        }
        runner.Run(script);
        runner.Tick(request.ticks.value_or(request.script.empty() ? kDefaultTicks : 0));
        runner.ReportStack();
        return runner.Failures() == 0 ? ExitWell : ExitFailed;
    }

    bool LoadScript(const std::string& path, Script* script)
    {
        if (path.empty())
        {
            return true;
        }
        *script = ReadScriptFile(path);
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
        errors << "The library's log says (all of it by --log FILE):\n";
        for (std::size_t i = 0; i < complaints.size() && i < kComplaintsShown; ++i)
        {
            errors << "  " << complaints[i] << '\n';
        }
    }

    std::ostream& out;
    std::ostream& errors;
    Request request;
    std::function<int()> action;
};

} // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& errors,
                   bool isTerminal)
{
    return Command(out, errors, isTerminal).Run(argc, argv);
}

} // namespace vell::tool
