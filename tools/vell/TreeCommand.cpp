// VELL: data-driven hierarchical state machines.
// tools/vell/TreeCommand.cpp: printing the tree of tables of a machine.
#include "tools/vell/TreeCommand.h"

#include "tools/vell/CommandLine.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Session.h"
#include "tools/vell/TreeJson.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace vell::tool
{
namespace
{

int PrintTree(Session& session)
{
    const std::unique_ptr<Script> script = session.LoadScript();
    if (script == nullptr)
    {
        return ExitUsage;
    }
    ObservedMachine machine;
    if (!session.LoadMachine(machine) ||
        (!session.options.script.empty() && !session.RunQuietly(machine, *script)))
    {
        return ExitFailed;
    }
    const Tessel::KVTable root = machine.GetKVTable();
    return session.Write(session.options.format == "text" ? TreeToText(root) : TreeToJson(root));
}

} // namespace

void AddTreeCommand(CLI::App& app, Session& session)
{
    CLI::App* tree =
        session.AddCommand(app, "tree", "Prints the tree of tables that mirrors a machine",
                           [&session]
                           {
                               return PrintTree(session);
                           });
    session.AddDocument(*tree);
    session.AddAfter(*tree);
    session.AddFormat(*tree, "json (default), or text: one line per value", {"json", "text"});
    session.AddOutput(*tree);
    tree->footer("\nWithout --after, the machine is loaded but not started.");
}

} // namespace vell::tool
