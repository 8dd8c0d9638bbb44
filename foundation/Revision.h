// VELL: data-driven hierarchical state machines.
// foundation/Revision.h: a count of changes.
#pragma once

namespace vell
{

/// Counts changes after which something that was remembered is void. States and definitions point
/// to the revision of whoever remembers, and raise it. Those that a machine ticks point to the
/// machine's (idle/IdleCache.h says which changes count); a parameter points to that of its slot
/// (parameters/ParameterSlot.h).
struct Revision
{
    void Raise()
    {
        ++number;
    }

    unsigned int number = 1;
};

} // namespace vell
