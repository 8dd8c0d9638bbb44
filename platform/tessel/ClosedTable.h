// VELL: data-driven hierarchical state machines.
// platform/tessel/ClosedTable.h: the table behind null and stale handles.
#pragma once

#include <tessel/Tessel.h>

namespace Tessel
{

/// Gives the shared closed table, which answers 0 or null and does nothing. It has no state, so
/// every thread may use it.
ITable* GetClosedTable();

} // namespace Tessel
