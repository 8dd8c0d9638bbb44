// VELL: data-driven hierarchical state machines.
// tools/vell/TreeCommand.cpp: printing the tree of tables of a machine.
#include <vell/IParameterTable.h>

#include "definitions/NodeDefTable.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
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

TreeNames NamesIn(ObservedMachine& machine)
{
    TreeNames names;
    names.node = [&machine](unsigned int id)
    {
        BaseDef* def = machine.Nodes()->Find(id);
        return def == nullptr || def->GetName() == nullptr ? std::string()
                                                           : std::string(def->GetName());
    };
    names.parameter = [&machine](unsigned int id)
    {
        IParameterTable* table = machine.GetParameterTable();
        const char* name = table == nullptr ? nullptr : table->GetParameterName(id);
        return name == nullptr ? std::string() : std::string(name);
    };
    return names;
}

int PrintTree(Session& session)
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
    if (session.options.script.empty())
    {
        session.CheckStart(machine);
    }
    else if (const int code = session.RunQuietly(machine, *script); code != ExitWell)
    {
        return code;
    }
    const Tessel::KVTable root = machine.GetKVTable();
    const TreeNames names = NamesIn(machine);
    return session.Write(session.options.format == "text" ? TreeToText(root, &names)
                                                          : TreeToJson(root, &names));
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
    tree->footer(R"(
Without --after, the machine is loaded but not started. Keys are sorted. The
name of a node or parameter is beside its id: behind a # in text, under "#" or
"KEY#" in JSON. The tree itself has no such keys.)");
}

} // namespace vell::tool
