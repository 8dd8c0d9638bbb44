// VELL: data-driven hierarchical state machines.
// foundation/StandardError.h: the one place that writes to standard error.
#pragma once

#include <cstddef>

namespace vell
{

/// Writes the characters to the standard error stream at once. A buffer that the host has put
/// behind std::cerr, and characters that wait in its stderr, are honoured.
void WriteToStandardError(const char* characters, std::size_t count);

} // namespace vell
