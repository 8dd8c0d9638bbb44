// VELL: data-driven hierarchical state machines.
// tools/vell/RunCommand.h: the command `vell run`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddRunCommand(CLI::App& app, Session& session);

} // namespace vell::tool
