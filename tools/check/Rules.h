// VELL: data-driven hierarchical state machines.
// tools/check/Rules.h: the families of rules about what a document means.
#pragma once

#include "tools/check/Check.h"
#include "tools/check/DocumentModel.h"
#include "tools/check/Finding.h"

#include <string>

namespace vell::check
{

/// Calls the families below, the last only when the library can parse the text.
void CheckRules(const Document& document, Findings& findings);

// Each takes linear time, or that of a sort.

/// The ids of nodes and parameters.
void CheckIds(const DocumentModel& model, Findings& findings);
/// What ids lead to, from `target` to `exitConnector`.
void CheckReferences(const DocumentModel& model, Findings& findings);
/// What `children`, `source` and `parentId` say of each other.
void CheckLevels(const DocumentModel& model, Findings& findings);
/// Conditions against their parameters.
void CheckTypes(const DocumentModel& model, Findings& findings);
/// Which states are entered, left and come back from.
void CheckReach(const DocumentModel& model, Findings& findings);
/// Which transitions can ever be taken, and what they do to each other.
void CheckTransitions(const DocumentModel& model, Findings& findings);
/// Loads the document and compares its need with `memory`; then, what the library said that no
/// finding tells. To be called last.
void CheckLoading(const DocumentModel& model, const std::string& text, Findings& findings);

} // namespace vell::check
