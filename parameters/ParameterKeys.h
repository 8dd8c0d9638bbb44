// VELL: data-driven hierarchical state machines.
// parameters/ParameterKeys.h: keys of a parameter's table and events of its input.
#pragma once

#include <vell/ParamBroadcast.h>

#include <cstddef>
#include <cstring>

namespace vell
{

constexpr const char* kValueKey = "value";

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

} // namespace vell
