// VELL: data-driven hierarchical state machines.
// tools/vell/DecompileCommand.h: the command `vell decompile`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddDecompileCommand(CLI::App& app, Session& session);

} // namespace vell::tool
