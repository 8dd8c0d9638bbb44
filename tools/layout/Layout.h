// VELL: data-driven hierarchical state machines.
// tools/layout/Layout.h: the one layout of a document.
#pragma once

#include "tools/source/Reader.h"

#include <string>

namespace vell::layout
{

/// Gives a text in the one layout: the root, the head, the skeleton and each layer with one member
/// per line, and each parameter and node on a line of its own. It changes the white space between
/// the values and leaves out trailing commas, and nothing else: the order of members, their
/// duplicates, numbers, escapes and comments stay. What has a comment inside takes several lines.
/// One blank line between two lines is kept.
///
/// The text must have been read whole; see `Text::isWhole`. The result ends with a line feed.
std::string LayOut(const source::Text& text);

/// The same in the layout of sources: the root, the parameters and the states have a line per
/// member, and so has every other object or list that does not fit on a line of 100 columns. All
/// else is on one line.
std::string LayOutSource(const source::Text& text);

/// Tells whether two values are the same, member by member in the order of the texts, with their
/// numbers and strings as written.
bool IsSame(const source::Text& left, const source::Text& right);

} // namespace vell::layout
