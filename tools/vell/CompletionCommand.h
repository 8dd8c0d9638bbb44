// VELL: data-driven hierarchical state machines.
// tools/vell/CompletionCommand.h: the command `vell completion`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddCompletionCommand(CLI::App& app, Session& session);

} // namespace vell::tool
