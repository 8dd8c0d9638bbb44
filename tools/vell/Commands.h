// VELL: data-driven hierarchical state machines.
// tools/vell/Commands.h: the commands. A new one gets a line here.
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

class Session;

/// Each adds one command to `app`. Both arguments must outlive the command line. Each is in a file
/// of its own: `AddRunCommand` in RunCommand.cpp.
void AddCheckCommand(CLI::App& app, Session& session);
void AddCompileCommand(CLI::App& app, Session& session);
void AddCompletionCommand(CLI::App& app, Session& session);
void AddContextCommand(CLI::App& app, Session& session);
void AddDecompileCommand(CLI::App& app, Session& session);
void AddDiffCommand(CLI::App& app, Session& session);
void AddFmtCommand(CLI::App& app, Session& session);
void AddGraphCommand(CLI::App& app, Session& session);
void AddHelpCommand(CLI::App& app, Session& session);
void AddIdCommand(CLI::App& app, Session& session);
void AddIdsCommand(CLI::App& app, Session& session);
void AddManualCommand(CLI::App& app, Session& session);
void AddNewCommand(CLI::App& app, Session& session);
void AddRunCommand(CLI::App& app, Session& session);
void AddSchemaCommand(CLI::App& app, Session& session);
void AddStatsCommand(CLI::App& app, Session& session);
void AddTreeCommand(CLI::App& app, Session& session);

/// Adds every command, in the order in which the help lists them.
void AddCommands(CLI::App& app, Session& session);

} // namespace vell::tool
