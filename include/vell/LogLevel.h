// VELL: data-driven hierarchical state machines.
// include/vell/LogLevel.h: which log lines a host wants.
#pragma once

#include <vell/Export.h>

namespace vell
{

/// The levels of log lines, as the callback of `SetLogCallBack` receives them.
enum LogLevel : int
{
    LogError = 3,
    LogWarning = 4,
    LogInfo = 6,
    LogLua = 8,  ///< has a tag; no line of the library uses it
    LogPlain = 9 ///< has no tag: banners and section lines
};

/// Leaves out the library's lines of levels above `level`, for every machine of the process: they
/// are neither built nor written nor handed to the callback. `LogPlain` leaves out none, as before
/// the first call; 0 leaves out all. Only lines change: what a machine does stays the same. May be
/// called at any time from any thread; a line that is being built is still written. Lines that a
/// host hands to `LogImpl` itself are not affected.
VELL_API void SetLogLevel(int level);

} // namespace vell
