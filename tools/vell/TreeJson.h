// VELL: data-driven hierarchical state machines.
// tools/vell/TreeJson.h: a tree of key/value tables as text.
#pragma once

#include <tessel/Tessel.h>

#include <string>

namespace vell::tool
{

/// Gives the table and all tables in it as indented JSON, with a newline at the end. A table with
/// keys is an object, one used as an array is an array; one used as both has the array under "[]".
/// A vector is an array of its floats. Keys are in the order in which they were created.
std::string TreeToJson(Tessel::KVTable table);

/// Gives one line per value, `path/to/key = value`, in the same order. A text is in quotes.
std::string TreeToText(Tessel::KVTable table);

} // namespace vell::tool
