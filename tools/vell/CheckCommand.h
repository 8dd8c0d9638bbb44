// VELL: data-driven hierarchical state machines.
// tools/vell/CheckCommand.h: the command `vell check`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddCheckCommand(CLI::App& app, Session& session);

} // namespace vell::tool
