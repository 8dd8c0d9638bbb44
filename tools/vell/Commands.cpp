// VELL: data-driven hierarchical state machines.
// tools/vell/Commands.cpp: the list of the commands. A new one gets a line here.
#include "tools/vell/Commands.h"

namespace vell::tool
{

void AddCommands(CLI::App& app, Session& session)
{
    AddNewCommand(app, session);
    AddCheckCommand(app, session);
    AddCompileCommand(app, session);
    AddDecompileCommand(app, session);
    AddSchemaCommand(app, session);
    AddRunCommand(app, session);
    AddGraphCommand(app, session);
    AddTreeCommand(app, session);
    AddContextCommand(app, session);
    AddFmtCommand(app, session);
    AddDiffCommand(app, session);
    AddStatsCommand(app, session);
    AddIdCommand(app, session);
    AddIdsCommand(app, session);
    AddCompletionCommand(app, session);
    AddManualCommand(app, session);
    AddHelpCommand(app, session);
}

} // namespace vell::tool
