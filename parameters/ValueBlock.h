// VELL: data-driven hierarchical state machines.
// parameters/ValueBlock.h: the values of many parameters, side by side.
#pragma once

#include <cstddef>

namespace vell
{

/// Space for the current values of a machine's first bool, integer and float parameters. A tick
/// reads them all, and in the parameters themselves each would have a cache line of its own.
class ValueBlock
{
public:
    ValueBlock() = default;
    ValueBlock(const ValueBlock&) = delete;
    ValueBlock& operator=(const ValueBlock&) = delete;

    /// Gives space for one value, or null when all is taken.
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
