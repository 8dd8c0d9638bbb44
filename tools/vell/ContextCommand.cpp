// VELL: data-driven hierarchical state machines.
// tools/vell/ContextCommand.cpp: saving the stacks of a running machine and restoring them.
#include "tools/vell/ContextCommand.h"

#include "tools/vell/CommandLine.h"
#include "tools/vell/Context.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>

namespace vell::tool
{
namespace
{

constexpr const char* kContextHelp = R"(
A context has both stacks and the last state change, by node id. It does not have:
  - parameters: set them with a script after restoring;
  - the blip flags: a restored machine runs its main stack;
  - the child that each substate had reached: a restored substate pushes its first child in its
    first tick, above the states that were restored.
)";

int SaveTheContext(Session& session)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    ObservedMachine machine;
    if (!session.LoadMachine(machine) || !session.RunQuietly(machine, *script))
    {
        return ExitFailed;
    }
    return session.Write(SaveContext(machine));
}

/// Restores the context in `json`. Returns an error message, or an empty text.
std::string Restore(ObservedMachine& machine, const std::string& json)
{
    // A tick needs a started machine; the context then replaces its stacks.
    machine.StartRunning();
    return RestoreContext(machine, json);
}

int ContinueFromContext(Session& session, const std::string& path)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in)
    {
        session.errors << path << ": cannot read the file: " << std::strerror(errno) << '\n';
        return ExitFailed;
    }
    const std::string json{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    ObservedMachine machine;
    if (!session.LoadMachine(machine))
    {
        return ExitFailed;
    }
    const std::string fault = Restore(machine, json);
    if (!fault.empty())
    {
        session.errors << path << ": " << fault << '\n';
        return ExitFailed;
    }
    const std::unique_ptr<Report> report = session.MakeReport();
    Runner runner(machine, *report, session.errors, session.options.run);
    runner.ReportStack();
    return session.Drive(runner, *script, 0);
}

void AddSave(CLI::App& context, Session& session)
{
    CLI::App* save = session.AddCommand(context, "save", "Runs a script and saves the context",
                                        [&session]
                                        {
                                            return SaveTheContext(session);
                                        });
    session.AddDocument(*save);
    session.AddAfter(*save)->required();
    session.AddOutput(*save);
    save->footer(std::string(kContextHelp) + kLogHelp);
}

void AddRestore(CLI::App& context, Session& session)
{
    const auto path = std::make_shared<std::string>();
    CLI::App* restore =
        session.AddCommand(context, "restore", "Restores a context and continues from it",
                           [&session, path]
                           {
                               return ContinueFromContext(session, *path);
                           });
    session.AddDocument(*restore);
    restore->add_option("CONTEXT", *path, "The file that context save wrote")->required();
    session.AddRunOptions(*restore, "Ticks after the script; default 0");
    restore->footer(std::string(kContextHelp) + kScriptHelp + kLogHelp);
}

} // namespace

void AddContextCommand(CLI::App& app, Session& session)
{
    CLI::App* context =
        app.add_subcommand("context", "Saves the stacks of a running machine and restores them");
    context->require_subcommand(1);
    context->footer(kContextHelp);
    AddSave(*context, session);
    AddRestore(*context, session);
}

} // namespace vell::tool
