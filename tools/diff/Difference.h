// VELL: data-driven hierarchical state machines.
// tools/diff/Difference.h: what differs between two documents.
#pragma once

#include "tools/diff/DocumentModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vell::diff
{

enum class Change : std::uint8_t
{
    Added,
    Removed,
    Changed,
    Moved,
    Reordered
};

/// One thing that differs within a subject. `before` and `after` are empty where there is nothing.
struct Detail
{
    Change change = Change::Changed;
    std::string what; ///< `priority`, `condition`, `attribute surface`, `level`, `layer`
    std::string before;
    std::string after;
};

enum class Subject : std::uint8_t
{
    Head,
    Parameter,
    Layer,
    State, ///< every node but a transition
    Transition,
    Skeleton,
    Other
};

/// One subject that differs.
struct Difference
{
    Subject subject = Subject::Other;
    Change change = Change::Changed; ///< Added, Removed, Changed or Reordered
    std::string name;                ///< of the second document, or of the first when removed
    unsigned int id = 0;             ///< in the same; 0 for what has none
    std::string description;         ///< of what was added or removed; where a transition leads
    std::vector<Detail> details;
};

/// Compares two documents by what they say: nodes and parameters are matched by name and id, so a
/// reference to a node that has another id is not a change. The layout, the order of members and
/// default values do not count. The differences are in the order of the subjects, and within one in
/// the order of the second document, with what was removed at the end.
std::vector<Difference> Compare(const DocumentModel& before, const DocumentModel& after);

} // namespace vell::diff
