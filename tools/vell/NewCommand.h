// VELL: data-driven hierarchical state machines.
// tools/vell/NewCommand.h: the command `vell new`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddNewCommand(CLI::App& app, Session& session);

} // namespace vell::tool
