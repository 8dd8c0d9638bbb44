// VELL: data-driven hierarchical state machines.
// tests/author/SoundDocument.h: random documents that nothing is wrong with.
#pragma once

#include <string>

namespace vell::test
{

/// Gives a document of nested levels, with transitions between the states of a level, parameters,
/// attributes, layers and interrupts, in a random order of nodes. Names are missing or doubled now
/// and then.
std::string SoundDocument(unsigned int seed);

} // namespace vell::test
