// VELL: data-driven hierarchical state machines.
// tools/vell/GraphCommand.h: the command `vell graph`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddGraphCommand(CLI::App& app, Session& session);

} // namespace vell::tool
