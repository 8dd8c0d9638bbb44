// VELL: data-driven hierarchical state machines.
// tools/vell/TreeJson.h: a tree of key/value tables as text.
#pragma once

#include <tessel/Tessel.h>

#include <functional>
#include <string>

namespace vell::tool
{

/// Gives the names of ids, each an empty text for an id that has none.
struct TreeNames
{
    std::function<std::string(unsigned int id)> node;
    std::function<std::string(unsigned int id)> parameter;
};

/// Gives the table and all tables in it as indented JSON, with a newline at the end. A table with
/// keys is an object, one used as an array is an array; one used as both has the array under "[]".
/// A vector is an array of its floats. Keys that are words come first, by the alphabet, then those
/// that are numbers, by their value. With `names`, the root of a machine's tree gets names beside
/// its ids: the member "#" in the table of a parameter or node, and "KEY#" behind "KEY" in
/// "contextInfo".
std::string TreeToJson(Tessel::KVTable table, const TreeNames* names = nullptr);

/// Gives one line per value, `path/to/key = value`, in the same order. A text is in quotes. With
/// `names`, a line about an id ends with `  # NAME`.
std::string TreeToText(Tessel::KVTable table, const TreeNames* names = nullptr);

} // namespace vell::tool
