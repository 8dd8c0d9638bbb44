// VELL: data-driven hierarchical state machines.
// tools/vell/Suggestion.cpp: the distance between words.
#include "tools/vell/Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace vell::tool
{
namespace
{

/// Longer words are not compared: nobody misspells them by hand.
constexpr std::size_t kLongestWord = 64;

std::string LowerCase(std::string word)
{
    for (char& c : word)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return word;
}

/// The number of letters to insert, remove, replace or swap with a neighbour: the optimal string
/// alignment distance.
std::size_t Distance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
    {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            row[j] = std::min(
                {last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0u : 1u)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
            {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
    }
    return row[b.size()];
}

} // namespace

std::string NearestWord(const std::string& word, const std::vector<std::string>& known)
{
    if (word.empty() || word.size() > kLongestWord)
    {
        return "";
    }
    const std::string lower = LowerCase(word);
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : known)
    {
        if (candidate.size() > kLongestWord)
        {
            continue;
        }
        const std::size_t distance = Distance(lower, LowerCase(candidate));
        if (distance < least && distance < candidate.size())
        {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
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
