// VELL: data-driven hierarchical state machines.
// tools/vell/IdsCommand.h: the command `vell ids`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddIdsCommand(CLI::App& app, Session& session);

} // namespace vell::tool
