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
/// *How.* The table library may offer that a writer keeps the value of a key (tessel/Slots.h):
/// whoever reads the tree reads the value here, and `Write` is a store. Where a site's own library
/// does not offer it, `Write` always says no.
///
/// *What ends it.* The table library, as soon as somebody else may hear of a write, the key gets
/// another type or the table is closed. And the parameter's `revision`, which whatever gives it
/// another table raises: assignment, and `Init`. Each write by the setter asks for it again.
///
/// *Where it is.* With the table of parameters, on the heap: neither the parameter nor the arena is
/// larger for it, and those of the parameters are side by side. A parameter that is in no such
/// table has none. The value that a tick reads is not this one: a host may store there, and the
/// tree does not show it.
struct ParameterDef::Slot
{
    Slot() = default;
    /// The key gets its value back.
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
        std::memcpy(slot->key.bytes, &value, sizeof(value));
        return true;
    }

    /// Asks for the next writes of a value like this one, which has just been written by the
    /// setter.
    template <class Value>
    static void Expect(const ParameterDef& parameter, const Value& value)
    {
        if (Slot* slot = parameter.slot.pointer)
        {
            slot->Bind(parameter, TypeOf(value));
        }
    }

private:
    bool IsBound() const
    {
        return key.value != nullptr && boundAt == revision.number;
    }

    void Bind(const ParameterDef& parameter, Tessel::ValueType type);

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

    Tessel::KVSlot key{};
    Revision revision;        ///< of the parameter
    unsigned int boundAt = 0; ///< the revision at which it was bound

public:
    ParameterTable* owner = nullptr; ///< resets the parameter, if it asks for that
};

} // namespace vell
