// VELL: data-driven hierarchical state machines.
// tests/support/TreeLines.h: a tree of key/value tables, shown as lines.
#pragma once

#include <tessel/Tessel.h>

#include "tests/support/LogRecorder.h"

#include <string>
#include <vector>

namespace vell::test
{

/// Walks the tree below `root` by its keys and gives a line for each table, value and array
/// element: "PATH TYPE VALUE", where the value of a table is its name. Keys come in the order of
/// their characters; the root's own line comes first, with the path "(root)".
Lines TreeLines(Tessel::KVTable root);

/// Gives the table at a path such as "nodeDefTable/10/attribs", or a null handle.
Tessel::KVTable TableAt(Tessel::KVTable root, const std::string& path);

/// Gives the elements of the array of `table`; none for a null handle.
std::vector<unsigned int> IdsOf(Tessel::KVTable table);

/// The path of a parameter of the document in a machine's tree.
std::string ParameterPath(const std::string& name);

/// Floats as a line shows them: "0.5", or "0.5,1,2".
std::string FloatText(const float* values, int count);

/// What turns `before` into `after`: "- LINE" for each line that went, then "+ LINE" for each that
/// came, each in the order of its characters.
Lines Differences(Lines before, Lines after);

} // namespace vell::test
