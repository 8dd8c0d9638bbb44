// VELL: data-driven hierarchical state machines.
// tools/vell/LogExplanation.h: what the lines of the library's log mean.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vell::tool
{

/// Explains a line of the library's log to the author of a document, or gives an empty text for a
/// line that says it itself.
std::string ExplainLogLine(const std::string& line);

/// Gives at most `most` different lines of `complaints` in their order, each followed by lines that
/// explain it where that helps, but only once for lines of one kind. A line that occurs several
/// times is shown once, with the number. Lines that only name a place in the library, or are no
/// more than a consequence of one before them, are left out. `hasCause` says that others were shown
/// before these.
std::vector<std::string> ExplainLog(const std::vector<std::string>& complaints, std::size_t most,
                                    bool hasCause = false);

} // namespace vell::tool
