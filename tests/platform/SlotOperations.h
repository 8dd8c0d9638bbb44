// VELL: data-driven hierarchical state machines.
// tests/platform/SlotOperations.h: what the tests of slots and of branches begin with.
#pragma once

#include <tessel/Slots.h>

namespace vell::test
{

/// The operations of the library under test, which has them.
inline const Tessel::SlotOperations& Slots()
{
    return *TesselGetSlotOperations();
}

/// A listener that anyone may add.
inline int HearNothing(void*, Tessel::opResult, Tessel::KVTable, const char*)
{
    return 0;
}

} // namespace vell::test
