// VELL: data-driven hierarchical state machines.
// tools/vell/DiffCommand.h: the command `vell diff`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddDiffCommand(CLI::App& app, Session& session);

} // namespace vell::tool
