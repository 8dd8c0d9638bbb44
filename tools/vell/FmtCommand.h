// VELL: data-driven hierarchical state machines.
// tools/vell/FmtCommand.h: the command `vell fmt`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddFmtCommand(CLI::App& app, Session& session);

} // namespace vell::tool
