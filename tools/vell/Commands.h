// VELL: data-driven hierarchical state machines.
// tools/vell/Commands.h: the list of the commands.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds every command, in the order in which the help lists them.
void AddCommands(CLI::App& app, Session& session);

} // namespace vell::tool
