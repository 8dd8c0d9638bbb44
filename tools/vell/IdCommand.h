// VELL: data-driven hierarchical state machines.
// tools/vell/IdCommand.h: the command `vell id`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddIdCommand(CLI::App& app, Session& session);

} // namespace vell::tool
