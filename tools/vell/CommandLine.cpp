// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.cpp: reading the command line.
#include "tools/vell/CommandLine.h"

#include "tools/vell/Commands.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <ostream>

namespace vell::tool
{
namespace
{

constexpr const char* kFooter = R"(
Examples:
  vell run hero.json                          show the first ten ticks
  vell run hero.json --script jump.script     drive the machine and check what it does
  vell run hero.json --script - --explain     show why a transition did not fire
  vell graph hero.json --format svg -o hero.svg
  vell tree hero.json --after jump.script     print parameters, nodes and stacks as JSON
  vell context save hero.json --after jump.script -o jump.json
  vell context restore hero.json jump.json    continue from there
  vell COMMAND --help                         the options of one command

Exit codes:
  0  success
  1  a document could not be loaded, or an expectation failed
  2  invalid command line or script)";

} // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& errors,
                   bool isTerminal)
{
    Session session(out, errors, isTerminal);
    CLI::App app("Inspects and runs machine documents.", "vell");
    app.set_version_flag("--version", "vell " VELL_VERSION);
    app.require_subcommand(1);
    app.footer(kFooter);
    AddCommands(app, session);
    if (argc < 2)
    {
        errors << app.help();
        return ExitUsage;
    }
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error, out, errors) == 0 ? ExitWell : ExitUsage;
    }
    return session.RunAction();
}

} // namespace vell::tool
