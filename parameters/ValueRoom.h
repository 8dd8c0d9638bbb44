// VELL: data-driven hierarchical state machines.
// parameters/ValueRoom.h: where the values of many parameters lie side by side.
#pragma once

#include <cstddef>

namespace vell
{

/// Room for the current values of a machine's first bool, integer and float parameters. A tick
/// reads them all, and in the parameters themselves each would lie in a cache line of its own.
class ValueRoom
{
public:
    ValueRoom() = default;
    ValueRoom(const ValueRoom&) = delete;
    ValueRoom& operator=(const ValueRoom&) = delete;

    /// Gives room for one value, or null when all is taken.
    void* Take()
    {
        return used == kCount ? nullptr : bytes + std::size_t{kWidth} * used++;
    }

private:
    static constexpr unsigned int kWidth = 4;
    static constexpr unsigned int kCount = 32;

    alignas(kWidth) unsigned char bytes[kWidth * kCount] = {};
    unsigned int used = 0;
};

} // namespace vell
