// VELL: data-driven hierarchical state machines.
// tools/check/Nearest.h: the words that were perhaps meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vell::check
{

/// Gives the words that are nearest to `wrong`, at most three; none when none is near. Upper and
/// lower case count little.
std::vector<std::string_view> FindNearest(std::string_view wrong,
                                          const std::vector<std::string_view>& words);

/// Gives "did you mean 'less'?" with the nearest words; empty when none is near.
std::string DidYouMean(std::string_view wrong, const std::vector<std::string_view>& words);

} // namespace vell::check
