// VELL: data-driven hierarchical state machines.
// tools/diff/DifferenceText.h: differences for a terminal, a program and a review.
#pragma once

#include "tools/diff/Difference.h"

#include <string>
#include <vector>

namespace vell::diff
{

/// One line per subject and per thing that differs, with + - ~ in front, and a count at the end.
/// Empty when nothing differs.
std::string ToText(const std::vector<Difference>& differences);

/// A list for a review. `before` and `after` are the names of the documents.
std::string ToMarkdown(const std::vector<Difference>& differences, const std::string& before,
                       const std::string& after);

/// One object, with every difference in `differences`.
std::string ToJson(const std::vector<Difference>& differences, const std::string& before,
                   const std::string& after);

} // namespace vell::diff
