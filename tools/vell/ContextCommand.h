// VELL: data-driven hierarchical state machines.
// tools/vell/ContextCommand.h: the command `vell context`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddContextCommand(CLI::App& app, Session& session);

} // namespace vell::tool
