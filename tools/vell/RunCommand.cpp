// VELL: data-driven hierarchical state machines.
// tools/vell/RunCommand.cpp: running a machine and showing what happens.
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace vell::tool
{
namespace
{

constexpr std::uint64_t kDefaultTicks = 10;

int RunMachine(Session& session)
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
    if (!session.CheckExplain(machine))
    {
        return ExitUsage;
    }
    const std::unique_ptr<Report> report = session.MakeReport();
    Runner runner(machine, *report, session.errors, session.options.run);
    if (!runner.Start())
    {
        session.ShowComplaints(machine);
        return ExitFailed;
    }
    return session.Drive(runner, *script, session.options.script.empty() ? kDefaultTicks : 0);
}

} // namespace

void AddRunCommand(CLI::App& app, Session& session)
{
    CLI::App* run = session.AddCommand(app, "run", "Runs a machine and shows what happens",
                                       [&session]
                                       {
                                           return RunMachine(session);
                                       });
    session.AddDocument(*run);
    session.AddRunOptions(*run, "Ticks after the script; default 10 without a script");
    run->footer(kScriptHelp);
}

} // namespace vell::tool
