// VELL: data-driven hierarchical state machines.
// tools/vell/HelpCommand.h: the command `vell help`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddHelpCommand(CLI::App& app, Session& session);

} // namespace vell::tool
