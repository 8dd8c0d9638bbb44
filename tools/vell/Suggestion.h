// VELL: data-driven hierarchical state machines.
// tools/vell/Suggestion.h: the known word that a misspelt one is nearest to.
#pragma once

#include <string>
#include <vector>

namespace vell::tool
{

/// Gives the word of `known` that `word` was probably meant to be, or an empty text when none is
/// near. Upper and lower case count as equal, and so do two neighbours that are swapped.
std::string NearestWord(const std::string& word, const std::vector<std::string>& known);

/// Gives `; did you mean 'run'?`, or an empty text when no known word is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& known);

/// Gives `a, b or c`.
std::string ListOfWords(const std::vector<std::string>& words);

} // namespace vell::tool
