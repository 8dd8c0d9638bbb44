// VELL: data-driven hierarchical state machines.
// tools/vell/ManualCommand.cpp: printing the manual page.
#include "tools/vell/CommandDescription.h"
#include "tools/vell/Commands.h"
#include "tools/vell/ManualPage.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

namespace vell::tool
{

void AddManualCommand(CLI::App& app, Session& session)
{
    CLI::App* manual =
        session.AddCommand(app, "manual", "Prints the manual page, for man",
                           [&app, &session]
                           {
                               return session.Write(ManualPage(Describe(app), VELL_VERSION));
                           });
    session.AddOutput(*manual);
    manual->footer("\n`make install` installs the page. To read it without: "
                   "vell manual | man -l -");
}

} // namespace vell::tool
