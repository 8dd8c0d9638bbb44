// VELL: data-driven hierarchical state machines.
// tools/vell/CompileCommand.h: the command `vell compile`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddCompileCommand(CLI::App& app, Session& session);

} // namespace vell::tool
