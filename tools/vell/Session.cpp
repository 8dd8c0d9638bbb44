// VELL: data-driven hierarchical state machines.
// tools/vell/Session.cpp: the options that commands share, and the steps of their work.
#include "tools/vell/Session.h"

#include "tools/vell/CommandLine.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Report.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <ostream>
#include <utility>

namespace vell::tool
{
namespace
{

constexpr std::size_t kComplaintsShown = 10;

} // namespace

Session::Session(std::ostream& newOut, std::ostream& newErrors, bool isTerminal)
    : out(newOut), errors(newErrors)
{
    options.run.showProgress = isTerminal;
}

CLI::App* Session::AddCommand(CLI::App& app, const std::string& name,
                              const std::string& description, Action newAction)
{
    CLI::App* command = app.add_subcommand(name, description);
    command->callback(
        [this, newAction = std::move(newAction)]
        {
            action = newAction;
        });
    return command;
}

void Session::AddDocument(CLI::App& command)
{
    command.add_option("DOCUMENT", options.document, "The machine document, a JSON file")
        ->required();
    command.add_option("--log", options.log, "Write the library's log to this file")
        ->type_name("FILE");
}

void Session::AddFormat(CLI::App& command, const std::string& description,
                        const std::vector<std::string>& formats)
{
    command.add_option("--format", options.format, description)
        ->check(CLI::IsMember(formats))
        ->type_name("FORMAT");
}

void Session::AddOutput(CLI::App& command)
{
    command
        .add_option("-o,--output", options.output, "Write to this file instead of standard output")
        ->type_name("FILE");
}

CLI::Option* Session::AddAfter(CLI::App& command)
{
    return command
        .add_option("--after", options.script,
                    "Script to run first; - is standard input. See: vell run --help")
        ->type_name("SCRIPT");
}

void Session::AddRunOptions(CLI::App& command, const std::string& ticksHelp)
{
    command.add_option("--script", options.script, "Script to run; - is standard input")
        ->type_name("FILE");
    // Without the check a negative number becomes a very large one.
    command.add_option("--ticks", options.ticks, ticksHelp)
        ->check(CLI::NonNegativeNumber)
        ->type_name("N");
    command.add_option("--dt", options.run.timeStep, "Seconds per tick; default 1/60")
        ->type_name("SECONDS");
    AddFormat(command, "text (default), or jsonl: one object per line", {"text", "jsonl"});
    command.add_flag("--explain", options.run.explain,
                     "Show each transition that is tested, the values its conditions saw, and "
                     "why it did not fire");
}

int Session::RunAction()
{
    const LogRedirect redirect(options.log);
    if (!redirect.IsActive())
    {
        errors << options.log << ": cannot write the file; choose another one with --log\n";
        return ExitUsage;
    }
    return action();
}

std::unique_ptr<Script> Session::LoadScript()
{
    if (options.script.empty())
    {
        return std::make_unique<Script>();
    }
    auto script = std::make_unique<Script>(ReadScriptFile(options.script));
    for (const std::string& error : script->errors)
    {
        errors << error << '\n';
    }
    return script->errors.empty() ? std::move(script) : nullptr;
}

bool Session::LoadMachine(ObservedMachine& machine)
{
    const std::string fault = machine.Load(options.document);
    if (!fault.empty())
    {
        errors << fault << '\n';
        ShowComplaints(machine);
    }
    return fault.empty();
}

bool Session::RunQuietly(ObservedMachine& machine, const Script& script)
{
    Report report;
    Runner runner(machine, report, errors, options.run);
    if (!runner.Start())
    {
        ShowComplaints(machine);
        return false;
    }
    runner.Run(script);
    return runner.Failures() == 0;
}

int Session::Drive(Runner& runner, const Script& script, std::uint64_t defaultTicks)
{
    runner.Run(script);
    runner.Tick(options.ticks.value_or(defaultTicks));
    runner.ReportStack();
    return runner.Failures() == 0 ? ExitWell : ExitFailed;
}

std::unique_ptr<Report> Session::MakeReport()
{
    return options.format == "jsonl" ? MakeJsonReport(out) : MakeTextReport(out);
}

int Session::Write(const std::string& text)
{
    if (options.output.empty())
    {
        out << text;
        return ExitWell;
    }
    std::ofstream file(options.output, std::ios::binary);
    file << text << std::flush;
    if (!file)
    {
        errors << options.output << ": cannot write the file; choose another one with -o\n";
        return ExitUsage;
    }
    return ExitWell;
}

void Session::ShowComplaints(const ObservedMachine& machine)
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

} // namespace vell::tool
