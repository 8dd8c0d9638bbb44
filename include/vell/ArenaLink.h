// VELL: data-driven hierarchical state machines.
// include/vell/ArenaLink.h: what ties an object with memory of its own to its arena.
#pragma once

#include <tessel/Tessel.h>
#include <vell/Export.h>

namespace vell
{

class HSMAlloc;

/// A member of classes whose objects are placed in an arena and hold memory on the ordinary heap.
/// The arena runs no destructor. When its block is freed, it calls the function
///
///     Tessel::KVTable ReleaseStorage(TheClass& object, ArenaLink::AtEnd);
///
/// that argument-dependent look-up finds, preferably a friend of the class. It frees the heap
/// memory and returns the object's table, or a null handle; the arena closes the table when it is
/// destroyed. The function `ArenaLink& GetArenaLink(TheClass&)` gives the member. The library's
/// classes have both. A host class that derives from one of them and adds heap memory has a
/// ReleaseStorage of its own, which ends by calling that of its base.
///
/// A host may call the destructor of such an object: the arena then does nothing about it.
class VELL_API ArenaLink
{
public:
    /// Distinguishes the function from any other named ReleaseStorage, such as a host's.
    struct AtEnd
    {
    };

    ArenaLink() = default;
    /// A copy is a separate object: it does not copy what the arena knows of the original.
    ArenaLink(const ArenaLink&)
    {
    }
    ArenaLink& operator=(const ArenaLink&)
    {
        return *this;
    }
    ~ArenaLink()
    {
        if (arena != nullptr)
        {
            Leave();
        }
    }

    /// Closes `table`, which the object is about to lose, when the arena is destroyed. Does nothing
    /// for null and for an object that is in no arena.
    void CloseLater(Tessel::KVTable table);

private:
    friend class HSMAlloc;

    void Leave();

    HSMAlloc* arena = nullptr; ///< null for an object that is in none
    unsigned int entry = 0;    ///< number of its record there
};

} // namespace vell
