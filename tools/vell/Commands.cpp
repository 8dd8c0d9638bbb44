// VELL: data-driven hierarchical state machines.
// tools/vell/Commands.cpp: the list of the commands. A new one gets an include and a line here.
#include "tools/vell/Commands.h"

#include "tools/vell/CheckCommand.h"
#include "tools/vell/CompileCommand.h"
#include "tools/vell/CompletionCommand.h"
#include "tools/vell/ContextCommand.h"
#include "tools/vell/DecompileCommand.h"
#include "tools/vell/DiffCommand.h"
#include "tools/vell/FmtCommand.h"
#include "tools/vell/GraphCommand.h"
#include "tools/vell/HelpCommand.h"
#include "tools/vell/IdCommand.h"
#include "tools/vell/IdsCommand.h"
#include "tools/vell/ManualCommand.h"
#include "tools/vell/NewCommand.h"
#include "tools/vell/RunCommand.h"
#include "tools/vell/SchemaCommand.h"
#include "tools/vell/StatsCommand.h"
#include "tools/vell/TreeCommand.h"

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
