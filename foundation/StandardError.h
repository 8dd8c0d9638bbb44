// VELL: data-driven hierarchical state machines.
// foundation/StandardError.h: the one place that writes to standard error.
#pragma once

#include <cstddef>

namespace vell
{

/// Writes the characters to the standard error stream at once, as std::cerr would: what std::cerr
/// is tied to is flushed first, a buffer that the host has put behind std::cerr receives them, and
/// characters that wait in stderr come out before them.
void WriteToStandardError(const char* characters, std::size_t count);

} // namespace vell
