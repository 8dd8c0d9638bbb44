// VELL: data-driven hierarchical state machines.
// tests/author/Life.h: what a machine does, as lines that two documents can be compared by.
#pragma once

#include <string>
#include <vector>

namespace vell::test
{

/// What came of loading a document and running its machine.
struct Life
{
    std::vector<std::string> load;   ///< the log of loading, in the order of the alphabet
    std::vector<std::string> tree;   ///< the tree after loading, in the order of its paths
    std::vector<std::string> run;    ///< the log of starting and of some ticks
    std::vector<std::string> stacks; ///< the tree's stacks after each tick
};

/// Loads a document, with plain nodes for the builders of a host, starts it, and ticks it with
/// parameters that change by `seed`.
Life Live(const std::string& text, unsigned int seed);

} // namespace vell::test
