// VELL: data-driven hierarchical state machines.
// tests/fuzz/Dictionary.h: the words that a fuzzer of documents should know.
#pragma once

#include <string>

namespace vell::fuzz
{

/// Gives the text of tests/fuzz/vell.dict: every word of the vocabulary, a line each, as libFuzzer
/// reads a dictionary.
std::string DictionaryText();

} // namespace vell::fuzz
