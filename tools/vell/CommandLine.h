// VELL: data-driven hierarchical state machines.
// tools/vell/CommandLine.h: the command's words, options and exit codes.
#pragma once

#include <iosfwd>

namespace vell::tool
{

/// What the command exits with.
enum ExitCode : int
{
    ExitWell = 0,   ///< all went well
    ExitFailed = 1, ///< a document did not load, or an expectation did not hold
    ExitUsage = 2   ///< the command line or a script is not understood
};

/// Runs the command. What it shows goes to `out`, what is wrong to `errors`, which must not be the
/// process's standard error: that one takes the library's log. `isTerminal` says that a person
/// watches `errors`.
int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& errors,
                   bool isTerminal);

} // namespace vell::tool
