// VELL: data-driven hierarchical state machines.
// include/vell/UpdateMachines.h: one tick of many machines.
#pragma once

#include <vell/Export.h>

#include <cstddef>

namespace vell
{

class IHSM;

/// Calls `Update(timeStep)` of each of the `count` machines at `machines`, in order, as a loop of
/// the host would, but faster where there are so many that they do not fit into the processor's
/// cache: while one is updated, the next ones are fetched from memory. `machines` holds no null and
/// no deleted machine at any time of the call; a callback may put another machine in a later place.
/// The machines may be of the host's own classes, with an `Update` of their own. Throws what an
/// `Update` throws; the machines behind that one are then not updated.
VELL_API void UpdateMachines(IHSM* const* machines, std::size_t count, float timeStep);

} // namespace vell
