// VELL: data-driven hierarchical state machines.
// tools/vell/TreeJson.h: a tree of key/value tables as text.
#pragma once

#include <tessel/Tessel.h>

#include <string>

namespace vell::tool
{

/// Gives the table and all below it as JSON, indented, with a newline at the end. A table of keys
/// is an object, one that is used as an array is an array; one that is used as both has the array
/// under "[]". A vector is an array of its floats. Keys stand in the order in which they were made.
std::string TreeToJson(Tessel::KVTable table);

/// Gives a line for each value, `path/to/key = value`, in the same order. A text is in quotes.
std::string TreeToText(Tessel::KVTable table);

} // namespace vell::tool
