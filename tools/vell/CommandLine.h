// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.h: one call of the command, and its exit codes.
#pragma once

#include <iosfwd>

namespace vell::tool
{

/// The exit code of the command.
enum ExitCode : int
{
    ExitWell = 0,   ///< success
    ExitFailed = 1, ///< a document is not sound, or an expectation failed
    ExitUsage = 2   ///< invalid command line or script, or output that cannot be written
};

/// Where a call writes to.
struct Console
{
    std::ostream& out;
    std::ostream& errors;       ///< not the process's standard error: the library's log goes there
    bool isOutTerminal = false; ///< a person watches `out`
    bool isErrorTerminal = false; ///< a person watches `errors`
};

/// Runs the command, and returns its exit code. What was written to `out` is flushed before
/// anything is written to `errors`, so that both can be shown together.
int RunCommandLine(int argc, const char* const* argv, const Console& console);

} // namespace vell::tool
