// VELL: data-driven hierarchical state machines.
// include/vell/ArenaLink.h: what ties an object with memory of its own to its arena.
#pragma once

#include <vell/Export.h>

#include <tessel/Tessel.h>

namespace vell
{

class HSMAlloc;

/// A member of classes whose objects are placed in an arena and hold memory on the ordinary heap.
/// The arena runs no destructor. When its block goes, it calls the function
///
///     Tessel::KVTable ReleaseStorage(TheClass& object, ArenaLink::AtEnd);
///
/// that argument-dependent look-up finds, best a friend of the class. It frees the heap memory and
/// returns the object's table, or a null handle; the arena closes the table when it is destroyed.
/// The function `ArenaLink& GetArenaLink(TheClass&)` gives the member. The library's classes have
/// both. A class of a host that derives from one of them and adds heap memory of its own adds a
/// ReleaseStorage for itself, which ends with that of its base.
///
/// A host may run the destructor of such an object by hand: the arena then leaves it alone.
class VELL_API ArenaLink
{
public:
    /// Tells the function from any other ReleaseStorage, of a host's for instance.
    struct AtEnd
    {
    };

    ArenaLink() = default;
    /// A copy is an object of its own: it does not take over what an arena knows.
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
