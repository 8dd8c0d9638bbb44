// VELL: data-driven hierarchical state machines.
// tools/vell/TreeCommand.h: the command `vell tree`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddTreeCommand(CLI::App& app, Session& session);

} // namespace vell::tool
