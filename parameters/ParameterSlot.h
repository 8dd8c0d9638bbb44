// VELL: data-driven hierarchical state machines.
// parameters/ParameterSlot.h: a parameter's value as the tree shows it.
#pragma once

#include <vell/ParameterDef.h>

#include "foundation/NoInline.h"
#include "foundation/Revision.h"
#include "foundation/SlotOperations.h"
#include "foundation/TableSync.h"

#include <cstring>

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
/// *How.* The table library may keep the value of a key in memory of its writer (tessel/Slots.h):
/// whoever reads the tree then reads the value here, and `Write` is a store. Where a site's own
/// library does not offer that, `Write` always returns false.
///
/// *What ends it.* Two things. The table library unbinds the slot as soon as somebody else may hear
/// of a write, the key gets a value of another type, or the table is closed. And `revision` is
/// raised by whatever gives the parameter another table: assignment and `Init`. After each write by
/// the setter, the slot is bound again if that is possible.
///
/// *Where it is.* In slabs, in groups that the table of parameters owns: the parameter and the
/// arena are not larger for it. A parameter that is in no such table has no slot.
///
/// *Two values.* The value that a tick reads is in the parameter or in a ValueBlock, not here. A
/// host that writes to it by `GetValuePtr` changes nothing in the tree.
struct ParameterDef::Slot
{
    Slot() = default;
    /// Unbinds the slot: the key keeps the value.
    ~Slot();
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    /// Makes this the slot of `parameter`, which `newOwner` has taken in.
    void Follow(ParameterDef& parameter, ParameterTable& newOwner);

    /// Writes the value that `parameter` has just been given, or returns false.
    template <class Value>
    static bool Write(const ParameterDef& parameter, const Value& value)
    {
        Slot* slot = parameter.slot.pointer;
        if (slot == nullptr || parameter.syncState != kSyncIdle || !slot->IsBound())
        {
            return false;
        }
        std::memcpy(slot->shown.bytes, &value, sizeof(value));
        return true;
    }

    /// Binds the slot of `parameter`, if that is possible, so that the next writes are stores. To
    /// be called when the setter has written `value`, which tells the type.
    template <class Value>
    static void TryBind(ParameterDef& parameter, const Value& value)
    {
        if (Slot* slot = parameter.slot.pointer)
        {
            slot->Bind(parameter, TypeOf(value));
        }
    }

    /// Tells the table of parameters that its parameter was assigned.
    void NoteAssigned();

private:
    bool IsBound() const
    {
        return shown.value != nullptr && boundAt == revision.number;
    }

    void Bind(ParameterDef& parameter, Tessel::ValueType type);

    static Tessel::ValueType TypeOf(int)
    {
        return Tessel::ValueType_Int;
    }
    static Tessel::ValueType TypeOf(float)
    {
        return Tessel::ValueType_Float;
    }
    static Tessel::ValueType TypeOf(const Tessel::Float2&)
    {
        return Tessel::ValueType_Float2;
    }
    static Tessel::ValueType TypeOf(const Tessel::Float3&)
    {
        return Tessel::ValueType_Float3;
    }
    static Tessel::ValueType TypeOf(const Tessel::Float4&)
    {
        return Tessel::ValueType_Float4;
    }

    Tessel::KVSlot shown{};          ///< the value as the tree shows it
    Revision revision;               ///< raised when the parameter gets another table
    unsigned int boundAt = 0;        ///< the revision at which it was bound
    ParameterTable* owner = nullptr; ///< resets the parameter, if it asks for that
};

} // namespace vell
