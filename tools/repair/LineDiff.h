// VELL: data-driven hierarchical state machines.
// tools/repair/LineDiff.h: the lines that differ between two texts.
#pragma once

#include <string>

namespace vell::repair
{

/// Gives the unified diff of two texts, as `patch` and reviewers read it; empty when they are
/// equal. `name` is at its head for both.
std::string UnifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after);

} // namespace vell::repair
