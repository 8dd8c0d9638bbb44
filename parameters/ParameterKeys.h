// VELL: data-driven hierarchical state machines.
// parameters/ParameterKeys.h: events of a parameter's input.
#pragma once

#include <vell/ParamBroadcast.h>

#include "foundation/TreeKeys.h"

#include <cstddef>
#include <cstring>

namespace vell
{

// The events that parameters react to. Their meaning is the host's.
constexpr int kEventInput = 1;  ///< a ParamBroadcast
constexpr int kEventSwitch = 4; ///< a ParamBroadcast; bool parameters alone take it
constexpr int kEventValue = 6;  ///< the bare value
constexpr int kEventReset = 7;  ///< no record is read

constexpr std::size_t kVectorOffset = offsetof(ParamBroadcast, input);
constexpr std::size_t kScalarOffset = offsetof(ParamBroadcast, input.stick.scalar);

/// Reads a T at a byte offset of a record, of whatever alignment.
template <class T>
T ReadRecord(const void* record, std::size_t offset)
{
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof(T));
    return value;
}

/// Reads the binding number of a record.
inline int ReadBinding(const void* record)
{
    return ReadRecord<int>(record, offsetof(ParamBroadcast, binding));
}

/// What the three vector classes do with an event: input of their own binding sets the value, which
/// is at `offset` of the record; a bare value sets it too, and gives 0 all the same.
template <class Vector, class VectorParameter>
int TakeVectorEvent(VectorParameter& parameter, int event, const void* record, std::size_t offset)
{
    if (event == kEventReset)
    {
        parameter.ResetValue();
        return 0;
    }
    if (record == nullptr)
    {
        return 0;
    }
    // Required: unlike a float, vectors compare the binding.
    if (event == kEventInput && ReadBinding(record) == parameter.GetAssign())
    {
        parameter.SetValue(ReadRecord<Vector>(record, offset));
        return 1;
    }
    // Required: the bare value is taken, and 0 is returned all the same.
    if (event == kEventValue)
    {
        parameter.SetValue(ReadRecord<Vector>(record, 0));
    }
    return 0;
}

} // namespace vell
