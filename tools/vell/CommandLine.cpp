// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.cpp: reading the command line.
#include "tools/vell/CommandLine.h"

#include "tools/vell/Commands.h"
#include "tools/vell/HelpFormatter.h"
#include "tools/vell/Session.h"
#include "tools/vell/TextFile.h"
#include "tools/vell/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kFooter = R"(
Examples:
  vell check hero.json                      find what is wrong with it
  vell run hero.json                        show the first ten ticks
  vell run hero.json --script jump.script   drive the machine, and check it
  vell run hero.json --script - --explain   show why nothing fires
  vell graph hero.json --format svg -o hero.svg
  vell tree hero.json --after jump.script   print the whole machine
  vell context save hero.json --after jump.script -o jump.json
  vell context restore hero.json jump.json  continue from there
  vell diff old.json new.json               show what changed
  vell help COMMAND                         the options of one command

Exit codes:
  0  success
  1  a document could not be loaded, or was loaded with losses; a tick was
     aborted; an expectation failed
  2  invalid command line or script; a file could not be read or written)";

/// Flushes `out` before each write to `errors`, so that a reader of both sees them in order.
class Tie
{
public:
    explicit Tie(const Console& console) : errors(console.errors), saved(errors.tie(&console.out))
    {
    }
    ~Tie()
    {
        errors.tie(saved);
    }
    Tie(const Tie&) = delete;
    Tie& operator=(const Tie&) = delete;

private:
    std::ostream& errors;
    std::ostream* saved;
};

int Call(const std::vector<std::string>& words, const Console& console)
{
    Session session(console);
    CLI::App app("Inspects and runs machine documents.", "vell");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", "vell " VELL_VERSION, "Show the version");
    // On Windows, too, what begins with a slash is a path.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    AddCommands(app, session);
    app.footer(kFooter); // behind the commands, which would inherit it
    if (words.empty())
    {
        console.errors << app.help();
        return ExitUsage;
    }
    std::string fault;
    if (FindCommand(app, words, &fault) == nullptr)
    {
        console.errors << fault << '\n';
        return ExitUsage;
    }
    try
    {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    }
    catch (const CLI::Success& success)
    {
        return app.exit(success, console.out, console.errors);
    }
    catch (const CLI::ParseError& error)
    {
        console.errors << UsageErrorText(app, error) << '\n';
        return ExitUsage;
    }
    return session.RunAction();
}

/// Tells whether everything that was written to the output has arrived.
bool IsWritten(std::ostream& out)
{
    const bool wasWell = out.good();
    out.clear(); // a stream in a bad state would not be asked again for the reason
    errno = 0;
    out.flush();
    return wasWell && out.good();
}

} // namespace

int RunCommandLine(int argc, const char* const* argv, const Console& console)
{
    const Tie tie(console);
    const int code = Call({argv + std::min(argc, 1), argv + argc}, console);
    if (!IsWritten(console.out))
    {
        console.errors << CannotWrite("standard output", errno) << '\n';
        return ExitUsage;
    }
    return code;
}

} // namespace vell::tool
