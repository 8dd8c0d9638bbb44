// VELL: data-driven hierarchical state machines.
// tools/check/NearId.h: which node an id that nobody has may mean.
#pragma once

#include "tools/check/DocumentModel.h"

#include <string>

namespace vell::check
{

/// Gives "did you mean 11, 'Walk'?" when one node alone has an id that is one digit away from
/// `id` and `isWanted`, and an empty text otherwise.
std::string SuggestNode(const DocumentModel& model, unsigned int id,
                        bool (*isWanted)(const NodeModel& node));

/// The same, for parameters.
std::string SuggestParameter(const DocumentModel& model, unsigned int id);

} // namespace vell::check
