// VELL: data-driven hierarchical state machines.
// foundation/SlotOperations.h: what the table library offers beside the operations of its tables.
#pragma once

#include <tessel/Slots.h>

namespace vell
{

/// The table library's operations on slots and branches. It is asked for them once, when this
/// library is loaded. Where it has none, as a site's own may, and before that, they find and write
/// nothing.
extern Tessel::SlotOperations slotOperations;

} // namespace vell
