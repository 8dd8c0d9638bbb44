// VELL: data-driven hierarchical state machines.
// tools/check/Nearest.cpp: the distance between two words.
#include "tools/check/Nearest.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>
#include <numeric>

namespace vell::check
{
namespace
{

constexpr std::size_t kMost = 3;     ///< words that are proposed
constexpr std::size_t kLongest = 64; ///< of words that are compared
constexpr std::size_t kFar = std::numeric_limits<std::size_t>::max();

std::string ToLower(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lower;
}

/// The edits from one word to the other: letters put in, left out, replaced, or swapped with their
/// neighbour (the optimal string alignment distance).
std::size_t Distance(const std::string& left, const std::string& right)
{
    std::vector<std::size_t> before;
    std::vector<std::size_t> last(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i)
    {
        std::vector<std::size_t> row(right.size() + 1, i);
        for (std::size_t j = 1; j <= right.size(); ++j)
        {
            const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
            {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before = std::move(last);
        last = std::move(row);
    }
    return last.back();
}

/// Words with a long front in common: "less" and "lessThan", "childs" and "children".
bool HaveOneFront(const std::string& left, const std::string& right)
{
    const std::size_t shorter = std::min(left.size(), right.size());
    const auto ends = std::mismatch(
        left.begin(), left.begin() + static_cast<std::ptrdiff_t>(shorter), right.begin());
    const auto common = static_cast<std::size_t>(ends.first - left.begin());
    return common >= 3 && common * 3 >= shorter * 2;
}

/// Words of the same letters: "stickLeft" and "leftStick".
bool HaveTheSameLetters(const std::string& left, const std::string& right)
{
    return left.size() == right.size() && left.size() >= 4 &&
           std::is_permutation(left.begin(), left.end(), right.begin());
}

std::size_t Farness(const std::string& wrong, const std::string& word)
{
    const std::size_t distance = Distance(wrong, word);
    const std::size_t limit = std::max<std::size_t>(1, std::min(wrong.size(), word.size()) / 3);
    if (distance <= limit)
    {
        return distance;
    }
    return HaveOneFront(wrong, word) || HaveTheSameLetters(wrong, word) ? kLongest + distance
                                                                        : kFar;
}

} // namespace

std::vector<std::string_view> FindNearest(std::string_view wrong,
                                          const std::vector<std::string_view>& words)
{
    std::vector<std::string_view> found;
    if (wrong.empty() || wrong.size() > kLongest)
    {
        return found;
    }
    const std::string lower = ToLower(wrong);
    std::size_t nearest = kFar;
    for (const std::string_view word : words)
    {
        const std::size_t farness = Farness(lower, ToLower(word));
        if (farness < nearest)
        {
            nearest = farness;
            found.clear();
        }
        if (farness == nearest && farness != kFar && found.size() < kMost &&
            std::find(found.begin(), found.end(), word) == found.end())
        {
            found.push_back(word);
        }
    }
    return found;
}

std::string DidYouMean(std::string_view wrong, const std::vector<std::string_view>& words)
{
    const std::vector<std::string_view> found = FindNearest(wrong, words);
    std::string text;
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        text += i == 0 ? "did you mean '" : i + 1 == found.size() ? "' or '" : "', '";
        text += found[i];
    }
    return text.empty() ? text : text + "'?";
}

} // namespace vell::check
