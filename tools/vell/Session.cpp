// VELL: data-driven hierarchical state machines.
// tools/vell/Session.cpp: the options that commands share, and the steps of their work.
#include "tools/vell/Session.h"

#include "definitions/NodeDefTable.h"
#include "tools/vell/CheckFirst.h"
#include "tools/vell/Color.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/LogExplanation.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Report.h"
#include "tools/vell/Suggestion.h"
#include "tools/vell/TextFile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <ostream>
#include <utility>

namespace vell::tool
{
namespace
{

constexpr std::size_t kComplaintsShown = 10;

/// Accepts a whole number that is not negative. CLI11 would turn -1 into a very large one.
std::string CheckTicks(const std::string& text)
{
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end
               ? ""
               : "expected a whole number, 0 or more, got '" + text + "'";
}

std::string CheckSeconds(const std::string& text)
{
    float number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && std::isfinite(number) && number >= 0
               ? ""
               : "expected seconds, 0 or more, got '" + text + "'";
}

} // namespace

Session::Session(const Console& console)
    : out(console.out),
      errors(console.errors),
      isOutTerminal(console.isOutTerminal),
      isErrorTerminal(console.isErrorTerminal)
{
    options.run.showProgress = console.isErrorTerminal;
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
    command
        .add_option("DOCUMENT", options.document,
                    "The machine document, a JSON file; - is standard input")
        ->required();
    command
        .add_option("--log", options.log,
                    "Write the library's log to this file; otherwise it is not shown")
        ->type_name("FILE");
    command.add_flag("--no-check", options.noCheck, "Go on with a document that has errors");
    command.add_flag("-W,--warnings", options.showsWarnings, "Show the warnings of vell check too");
}

void Session::AddColor(CLI::App& command)
{
    AddChoice(command, "--color", options.color,
              "When to use colours; auto (default) is on a terminal, unless NO_COLOR is set",
              {"auto", "always", "never"});
}

CLI::Option* Session::AddChoice(CLI::App& command, const std::string& name, std::string& value,
                                const std::string& description,
                                const std::vector<std::string>& words)
{
    std::string typeName;
    for (const std::string& word : words)
    {
        typeName += (typeName.empty() ? "" : "|") + word;
    }
    CLI::Option* option = command.add_option(name, value, description);
    option->check(
        [words](const std::string& word)
        {
            const bool isKnown = std::find(words.begin(), words.end(), word) != words.end();
            return isKnown ? "" : "expected " + ListOfWords(words) + ", got '" + word + "'";
        });
    return option->type_name(typeName);
}

void Session::AddFormat(CLI::App& command, const std::string& description,
                        const std::vector<std::string>& formats)
{
    AddChoice(command, "--format", options.format, description, formats);
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
    command.add_option("--ticks", options.ticks, ticksHelp)->check(CheckTicks)->type_name("N");
    command.add_option("--dt", options.run.timeStep, "Seconds per tick; default 1/60")
        ->check(CheckSeconds)
        ->type_name("SECONDS");
    AddFormat(command, "text (default), or jsonl: one object per line", {"text", "jsonl"});
    CLI::Option* why =
        command
            .add_flag(
                "--explain", explain,
                "Show why transitions fire or do not: each transition that is tested, and the "
                "values its conditions saw. Shows what changed since the last tick; with "
                "=all everything, with =NAME only that state or transition")
            ->type_name("all|NAME");
    command.add_option("--from", options.run.explain.from, "Explain from this tick on; default 0")
        ->check(CheckTicks)
        ->type_name("TICK")
        ->needs(why);
    command.add_option("--to", options.run.explain.to, "Explain up to this tick")
        ->check(CheckTicks)
        ->type_name("TICK")
        ->needs(why);
    AddColor(command);
}

int Session::RunAction()
{
    ReadExplain();
    options.run.hasErrorColor = WantsColor(options.color, isErrorTerminal);
    const ExplainOptions& ticks = options.run.explain;
    const std::string fault =
        ticks.to < ticks.from
            ? "--to " + std::to_string(ticks.to) + " is before --from " + std::to_string(ticks.from)
            : OverwriteFault();
    if (!fault.empty())
    {
        errors << fault << '\n';
        return ExitUsage;
    }
    LogRedirect redirect(options.log);
    if (!redirect.IsActive())
    {
        errors << CannotWrite(options.log, errno) << '\n';
        return ExitUsage;
    }
    const int code = action();
    const int logError = redirect.Finish();
    if (logError != 0 && !options.log.empty())
    {
        errors << CannotWrite(options.log, logError) << '\n';
        return ExitUsage;
    }
    return code == ExitWell && hasComplained ? ExitFailed : code;
}

/// Says which option would destroy what is to be read.
std::string Session::OverwriteFault() const
{
    for (const std::string& source : {options.document, options.script})
    {
        for (const std::string& target : {options.output, options.log})
        {
            if (!source.empty() && !target.empty() && IsSameFile(source, target))
            {
                return "cannot write " + target + ": it is read as well";
            }
        }
    }
    return "";
}

/// A flag without a value is "true".
void Session::ReadExplain()
{
    ExplainOptions& choice = options.run.explain;
    choice.isOn = !explain.empty();
    choice.isAll = explain == "all";
    choice.name = choice.isAll || explain == "true" ? "" : explain;
}

std::unique_ptr<Script> Session::LoadScript()
{
    if (options.script.empty())
    {
        return std::make_unique<Script>();
    }
    if (options.script == "-" && options.document == "-")
    {
        errors << "standard input is either the document or the script, not both\n";
        return nullptr;
    }
    auto script = std::make_unique<Script>(ReadScriptFile(options.script));
    for (const std::string& error : script->errors)
    {
        errors << error << '\n';
    }
    return script->errors.empty() ? std::move(script) : nullptr;
}

bool Session::IsFit(const GivenDocument& given)
{
    if (given.isSource && !given.compiled.IsGood())
    {
        ShowProblems(*this, given);
        return false;
    }
    const bool hasColor = WantsColor(options.color, isErrorTerminal);
    return options.noCheck ||
           PassesCheck(CheckGiven(given), options.showsWarnings, hasColor, errors);
}

int Session::LoadMachine(ObservedMachine& machine)
{
    std::string text;
    std::string fault = ReadTextFile(options.document, &text);
    if (!fault.empty())
    {
        Complain(fault);
        return ExitUsage;
    }
    GivenDocument given = TakeGiven(options.document, std::move(text));
    if (!IsFit(given))
    {
        return ExitFailed;
    }
    fault = machine.LoadText(options.document, std::move(given.bytes), given.isSource);
    if (!fault.empty())
    {
        Complain(fault + machine.ArenaHint());
        ShowComplaints(machine);
        return ExitFailed;
    }
    const std::string losses = machine.Losses();
    if (!losses.empty())
    {
        Complain(FileName(options.document) + ": " + losses + machine.ArenaHint());
        ShowComplaints(machine);
    }
    return ExitWell;
}

void Session::CheckStart(const ObservedMachine& machine)
{
    const std::string fault = machine.StartStateFault();
    if (!fault.empty())
    {
        Complain(FileName(options.document) + ": " + fault);
    }
}

int Session::RunQuietly(ObservedMachine& machine, const Script& script)
{
    Report report;
    Runner runner(machine, report, errors, options.run);
    if (!runner.Start())
    {
        ShowComplaints(machine);
        return ExitFailed;
    }
    const unsigned int before = runner.Failures();
    hasComplained = hasComplained || before != 0;
    runner.Run(script);
    return runner.HasWrongScript()       ? ExitUsage
           : runner.Failures() == before ? ExitWell
                                         : ExitFailed;
}

int Session::Drive(Runner& runner, const Script& script, std::uint64_t defaultTicks)
{
    runner.Run(script);
    runner.Tick(options.ticks.value_or(defaultTicks));
    runner.ReportStack();
    runner.ReportEnd();
    return runner.HasWrongScript() ? ExitUsage : runner.Failures() == 0 ? ExitWell : ExitFailed;
}

std::unique_ptr<Report> Session::MakeReport()
{
    return options.format == "jsonl"
               ? MakeJsonReport(out)
               : MakeTextReport(out, WantsColor(options.color, isOutTerminal));
}

int Session::Write(const std::string& text)
{
    if (options.output.empty())
    {
        out << text;
        return ExitWell;
    }
    const std::string fault = WriteTextFile(options.output, text);
    if (!fault.empty())
    {
        errors << fault << '\n';
        return ExitUsage;
    }
    return ExitWell;
}

void Session::Complain(const std::string& text)
{
    errors << Painted(options.run.hasErrorColor, Color::Red, text) + "\n";
    hasComplained = true;
}

bool Session::CheckExplain(const ObservedMachine& machine)
{
    const std::string& name = options.run.explain.name;
    if (name.empty())
    {
        return true;
    }
    std::vector<std::string> known;
    for (const auto& [id, def] : machine.Nodes()->nodes)
    {
        if (NameOf(*def) == name || std::to_string(id) == name)
        {
            return true;
        }
        known.push_back(NameOf(*def));
    }
    errors << "--explain: the document has no state or transition '" << name << "'"
           << DidYouMean(name, known) << '\n';
    return false;
}

void Session::ShowComplaints(const ObservedMachine& machine)
{
    const std::vector<std::string>& all = machine.Complaints();
    const std::vector<std::string> complaints(
        all.begin() + static_cast<std::ptrdiff_t>(complaintsShown), all.end());
    const bool hasCause = complaintsShown != 0;
    complaintsShown = all.size();
    const std::vector<std::string> lines = ExplainLog(complaints, kComplaintsShown, hasCause);
    if (lines.empty())
    {
        return;
    }
    errors << "From the library's log (use --log FILE for all of it):\n";
    for (const std::string& line : lines)
    {
        errors << "  " << line << '\n';
    }
}

} // namespace vell::tool
