// VELL: data-driven hierarchical state machines.
// tools/vell/Suggestion.cpp: the known word that a misspelt one is nearest to.
#include "tools/vell/Suggestion.h"

#include "tools/check/Nearest.h"

#include <cstddef>
#include <string_view>

namespace vell::tool
{

std::string NearestWord(const std::string& word, const std::vector<std::string>& known)
{
    const std::vector<std::string_view> found =
        check::FindNearest(word, {known.begin(), known.end()});
    return found.empty() ? "" : std::string(found.front());
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& known)
{
    const std::string nearest = NearestWord(word, known);
    return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

std::string ListOfWords(const std::vector<std::string>& words)
{
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        list += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    return list;
}

} // namespace vell::tool
