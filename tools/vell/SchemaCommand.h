// VELL: data-driven hierarchical state machines.
// tools/vell/SchemaCommand.h: the command `vell schema`.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Adds the command to `app`. Both must outlive the command line.
void AddSchemaCommand(CLI::App& app, Session& session);

} // namespace vell::tool
