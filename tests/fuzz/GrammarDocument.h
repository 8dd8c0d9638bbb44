// VELL: data-driven hierarchical state machines.
// tests/fuzz/GrammarDocument.h: documents of known members with anything in them.
#pragma once

#include <string>

namespace vell::fuzz
{

class Bytes;

/// Builds a document's text out of the vocabulary: nodes of every kind whose ids collide, dangle
/// and form cycles, members of wrong types, missing ones and duplicates, extreme numbers, long and
/// empty texts, embedded NULs and broken UTF-8. Most of it is good, so that it loads and runs.
std::string GrammarDocument(Bytes& bytes);

} // namespace vell::fuzz
