// VELL: data-driven hierarchical state machines.
// tools/diff/Matching.h: which node of one document is which of the other.
#pragma once

#include "tools/diff/DocumentModel.h"

#include <cstddef>
#include <vector>

namespace vell::diff
{

constexpr std::size_t kUnmatched = static_cast<std::size_t>(-1);

/// By index: the partner of each in the other document, or kUnmatched.
struct Matching
{
    std::vector<std::size_t> before;
    std::vector<std::size_t> after;
};

/// Matches nodes: first those with the same id and name, then those with the same name when it is
/// unique among the rest, then those with the same id. A transition is matched with a transition
/// only. The matching of swapped documents is the same, swapped.
Matching MatchNodes(const DocumentModel& before, const DocumentModel& after);

/// Matches parameters in the same way.
Matching MatchParameters(const DocumentModel& before, const DocumentModel& after);

} // namespace vell::diff
