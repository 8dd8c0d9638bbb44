// VELL: data-driven hierarchical state machines.
// foundation/Revision.h: the count of a machine's changes.
#pragma once

namespace vell
{

/// Counts the changes of one machine after which a tick may have to do more than the tick before.
/// States and definitions that the machine ticks point to its revision and raise it;
/// idle/IdleCache.h says which changes count and who reads it.
struct Revision
{
    void Raise()
    {
        ++number;
    }

    unsigned int number = 1;
};

} // namespace vell
