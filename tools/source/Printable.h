// VELL: data-driven hierarchical state machines.
// tools/source/Printable.h: pieces of a document that are safe to show.
#pragma once

#include <string>
#include <string_view>

namespace vell::source
{

/// Gives `text` with one printable character for each of its characters: a blank for a tab, and a
/// replacement character for other control characters, for what XML excludes, and for bytes that
/// are not UTF-8.
std::string ToPrintable(std::string_view text);

/// As `ToPrintable`, but ends of lines stay.
std::string ToPrintableLines(std::string_view text);

} // namespace vell::source
