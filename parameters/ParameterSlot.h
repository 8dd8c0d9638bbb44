// VELL: data-driven hierarchical state machines.
// parameters/ParameterSlot.h: writing a parameter's value to its table without look-ups.
#pragma once

#include <vell/ParameterDef.h>

#include "foundation/NoInline.h"
#include "foundation/SlotOperations.h"
#include "foundation/TableSync.h"

namespace vell
{

/// How a parameter writes its value to the tree when nobody but itself listens. Each class has the
/// rule in its `WriteValue`, which is out of line for the sake of this one: while nothing is being
/// written, write the key "value" of the table by the setter of its type. That looks the key up,
/// and calls two listeners which do nothing about the parameter's own writes: the parameter's,
/// which hears them while `syncState` is 2, and that of the table of parameters, which never does
/// anything. Nobody listens to most parameters beside these two, and games set them in each frame.
///
/// *Contract.* Whether a value was written by `Write` or by the setter is not observable. "No" is
/// always a right answer, and the rule then does all the work.
///
/// *What it uses.* The table library's operations on slots (tessel/Slots.h). Where a site's own
/// library has none, `Write` always says no.
///
/// *What is remembered:* where the key is, for the table that it was looked for in. The key of an
/// open table never moves and is never removed.
///
/// *What is read at every write, and so cannot be out of date:* `syncState` and the parameter's
/// handle, here; whether the table is open, the type of the value and each listener, in the table
/// library. So nobody has to say when a tool listens, replaces a listener, stores another type, or
/// attaches, replaces or closes a table, or when the parameter gets another one.
///
/// *Where it is.* With the table of parameters, on the heap: neither the parameter nor the arena is
/// larger for it. Those of a document's first parameters are side by side, each in one cache line.
/// A parameter that is in no such table has none.
struct alignas(64) ParameterDef::Slot
{
    /// `listener` is what `newOwner` listens with to the tables of its parameters.
    Slot(ParameterTable& newOwner, decltype(Tessel::KVListener::function) listener)
        : owner(newOwner)
    {
        key.ownOfTable = listener;
    }

    /// Writes the value that `parameter` has just been given, or returns false.
    template <class Value>
    static bool Write(const ParameterDef& parameter, const Value& value)
    {
        Slot* slot = parameter.slot.pointer;
        if (slot == nullptr || parameter.syncState != kSyncIdle)
        {
            return false;
        }
        return slot->key.table == parameter.kvTable ? Set(slot->key, value) != 0
                                                    : slot->FindAndSet(parameter, value);
    }

    ParameterTable& owner; ///< resets the parameter, if it asks for that

private:
    void Find(const ParameterDef& parameter);

    // In line, each write would pay for the registers.
    template <class Value>
    VELL_NOINLINE bool FindAndSet(const ParameterDef& parameter, const Value& value)
    {
        Find(parameter);
        return Set(key, value) != 0;
    }

    static int Set(const Tessel::KVSlot& found, int value)
    {
        return slotOperations.setInt(&found, value);
    }
    static int Set(const Tessel::KVSlot& found, float value)
    {
        return slotOperations.setFloat(&found, value);
    }
    static int Set(const Tessel::KVSlot& found, const Tessel::Float2& value)
    {
        return slotOperations.setFloat2(&found, &value);
    }
    static int Set(const Tessel::KVSlot& found, const Tessel::Float3& value)
    {
        return slotOperations.setFloat3(&found, &value);
    }
    static int Set(const Tessel::KVSlot& found, const Tessel::Float4& value)
    {
        return slotOperations.setFloat4(&found, &value);
    }

    Tessel::KVSlot key{};
};

static_assert(sizeof(ParameterDef::Slot) == 64, "a slot fills one cache line");

} // namespace vell
