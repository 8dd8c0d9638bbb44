// VELL: data-driven hierarchical state machines.
// include/vell/ArenaObject.h: what the arena knows about an object with memory of its own.
#pragma once

#include <vell/Export.h>

namespace vell
{

class HSMAlloc;

/// Base of the classes whose objects lie in an arena and hold memory on the ordinary heap. The
/// arena runs no destructor. When its block goes, it calls the function
///
///     Tessel::KVTable ReleaseStorage(TheClass& object, ArenaObject::AtEnd);
///
/// that argument-dependent look-up finds, best a friend of the class. It frees the heap memory and
/// returns the object's table, or a null handle; the arena closes the table when it is destroyed.
/// The library's classes have it. A class of a host that adds heap memory of its own adds a
/// ReleaseStorage for itself, which ends with that of its base.
///
/// A host may run the destructor of such an object by hand: the arena then leaves it alone.
class VELL_API ArenaObject
{
public:
    /// Tells the function from any other ReleaseStorage, of a host's for instance.
    struct AtEnd
    {
    };

protected:
    ArenaObject() = default;
    /// A copy is an object of its own: it does not take over what an arena knows.
    ArenaObject(const ArenaObject&)
    {
    }
    ArenaObject& operator=(const ArenaObject&)
    {
        return *this;
    }
    ~ArenaObject()
    {
        if (owningArena != nullptr)
        {
            LeaveArena();
        }
    }

private:
    friend class HSMAlloc;

    void LeaveArena();

    HSMAlloc* owningArena = nullptr; ///< null for an object that lies in none
    unsigned int entryInArena = 0;   ///< number of its record there
};

} // namespace vell
