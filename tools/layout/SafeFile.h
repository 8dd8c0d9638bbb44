// VELL: data-driven hierarchical state machines.
// tools/layout/SafeFile.h: replacing a file so that nothing is lost.
#pragma once

#include <string>

namespace vell::layout
{

/// Replaces the content of a file: it is written to a temporary file beside it, which then takes
/// its place with its permissions. If this fails or is interrupted, the file is as before. A link
/// is followed. Returns an empty text, or why it failed.
std::string ReplaceFile(const std::string& path, const std::string& bytes);

} // namespace vell::layout
