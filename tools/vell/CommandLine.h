// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.h: the command's words, options and exit codes.
#pragma once

#include <iosfwd>

namespace vell::tool
{

/// The exit code of the command.
enum ExitCode : int
{
    ExitWell = 0,   ///< success
    ExitFailed = 1, ///< a document could not be loaded, or an expectation failed
    ExitUsage = 2   ///< invalid command line or script
};

/// Runs the command. Output goes to `out`, errors to `errors`, which must not be the process's
/// standard error: the library's log goes there. `isTerminal` says whether `errors` is shown on a
/// terminal.
int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& errors,
                   bool isTerminal);

} // namespace vell::tool
