// VELL: data-driven hierarchical state machines.
// tools/vell/StatsCommand.h: the command `vell stats`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddStatsCommand(CLI::App& app, Session& session);

} // namespace vell::tool
