// VELL: data-driven hierarchical state machines.
// tests/introspection/TreeModel.h: the tree that a document has to give, worked out from its text.
#pragma once

#include "tests/support/LogRecorder.h"

#include <string>

namespace vell::test
{

/// Gives the lines that `TreeLines` has to show for an initialised machine that was made from
/// `documentText`. An empty `fileName` means a machine created from text. The document has to be
/// free of faults: no id twice, every attribute and parameter whole.
Lines ModelTree(const std::string& documentText, const std::string& fileName);

} // namespace vell::test
