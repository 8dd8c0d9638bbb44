// VELL: data-driven hierarchical state machines.
// foundation/SlotOperations.h: what the table library offers beside the operations of its tables.
#pragma once

#include <tessel/Slots.h>

namespace vell
{

/// The table library's operations on slots and branches. It is asked for them once, when this
/// library is loaded. Before that, and where it has none, as a site's own may, they do nothing
/// and return 0.
extern Tessel::SlotOperations slotOperations;

} // namespace vell
