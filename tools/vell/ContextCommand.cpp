// VELL: data-driven hierarchical state machines.
// tools/vell/ContextCommand.cpp: saving the stacks of a running machine and restoring them.
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Context.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"
#include "tools/vell/TextFile.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace vell::tool
{
namespace
{

constexpr const char* kContextHelp = R"(
A context has both stacks and the last state change, by node id. It does not
have:
  - parameters: set them with a script after restoring;
  - the blip flags: a restored machine runs its main stack;
  - the child that each substate had reached: a restored substate pushes
    its first child in its first tick, above the states that were restored.)";

int SaveTheContext(Session& session)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    ObservedMachine machine;
    const int loadCode = session.LoadMachine(machine);
    if (loadCode != ExitWell)
    {
        return loadCode;
    }
    const int runCode = session.RunQuietly(machine, *script);
    return runCode == ExitWell ? session.Write(SaveContext(machine)) : runCode;
}

int ContinueFromContext(Session& session, const std::string& path)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    std::string json;
    std::string fault = ReadTextFile(path, &json);
    if (!fault.empty())
    {
        session.Complain(fault);
        return ExitUsage;
    }
    source::Text context;
    const int readCode = ParseDocument(session, path, json, &context, {});
    if (readCode != ExitWell)
    {
        return readCode;
    }
    ObservedMachine machine;
    const int loadCode = session.LoadMachine(machine);
    if (loadCode != ExitWell)
    {
        return loadCode;
    }
    if (!session.CheckExplain(machine))
    {
        return ExitUsage;
    }
    // A tick needs a started machine; the context then replaces its stacks.
    const std::string startFault = machine.StartRunning();
    if (!startFault.empty())
    {
        session.Complain(startFault);
    }
    fault = RestoreContext(machine, json);
    if (!fault.empty())
    {
        session.Complain(FileName(path) + ": " + fault);
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
    save->footer(kContextHelp);
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
    restore->footer(std::string(kContextHelp) + '\n' + kScriptHelp);
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
