// VELL: data-driven hierarchical state machines.
// tools/vell/ManualCommand.h: the command `vell manual`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddManualCommand(CLI::App& app, Session& session);

} // namespace vell::tool
