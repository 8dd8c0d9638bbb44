// VELL: data-driven hierarchical state machines.
// tests/check/Mutation.h: one mistake in a document, made at random.
#pragma once

#include "tools/source/Value.h"

#include <random>
#include <string>

namespace vell::test
{

/// A document with one mistake more.
struct Mutated
{
    std::string text;
    source::Span object; ///< the object or array of the mistake, as it is now
    bool isId = false;   ///< an id was changed, so what names it is wrong as well
};

/// Makes one mistake in a text that is well-formed: a member left out, misspelt or written twice,
/// an element left out, or a value replaced. The text stays well-formed.
Mutated Mutate(const std::string& text, std::mt19937& random);

} // namespace vell::test
