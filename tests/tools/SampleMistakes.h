// VELL: data-driven hierarchical state machines.
// tests/tools/SampleMistakes.h: mistakes that are made in a sample, and what the check finds.
#pragma once

#include <string>
#include <vector>

namespace vell::test
{

using Lines = std::vector<std::string>;

/// One mistake in tests/data/character.json.
struct Mistake
{
    const char* node; ///< behind the name of this node or parameter; empty for the head
    const char* right;
    const char* wrong;
    Lines found;
};

/// Gives a line for each finding of the check, and one for its second place.
Lines FindingsOf(const std::string& text);

/// Reads a file by its path in the project.
std::string ReadDocument(const char* path);

/// Makes each mistake by itself, and expects what is found.
void ExpectFound(const std::vector<Mistake>& mistakes);

} // namespace vell::test
