// VELL: data-driven hierarchical state machines.
// tests/fuzz/TreeWrites.h: what a tool may do to a machine's tree.
#pragma once

#include <tessel/Tessel.h>

namespace vell::fuzz
{

class Bytes;

/// Writes once somewhere into the tree under `root`: a value of any type, also of a wrong one, over
/// any key or beside them, or changes an array, or takes a table of the tree away. `bytes` decide.
void WriteIntoTree(Tessel::KVTable root, Bytes& bytes);

} // namespace vell::fuzz
