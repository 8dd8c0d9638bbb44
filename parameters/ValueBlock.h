// VELL: data-driven hierarchical state machines.
// parameters/ValueBlock.h: the values of many parameters, side by side.
#pragma once

#include <vell/Parameters.h>

#include <cstddef>
#include <cstring>
#include <new>

namespace vell
{

/// Space for the current values of a machine's first bool, integer and float parameters, and for
/// the defaults of the bools. A tick reads them all, and in the parameters themselves each would
/// have a cache line of its own.
class ValueBlock
{
public:
    ValueBlock() = default;
    ValueBlock(const ValueBlock&) = delete;
    ValueBlock& operator=(const ValueBlock&) = delete;

    /// Moves a value here, unless all space is taken. Its old address becomes invalid.
    template <class T>
    void TakeIn(ParameterValue<T>& value)
    {
        static_assert(sizeof(T) <= kWidth, "a value has four bytes");
        if (used != kCount)
        {
            void* space = bytes + std::size_t{kWidth} * used++;
            std::memset(space, 0, kWidth);
            value.place = new (space) T(*value.place);
        }
    }

private:
    static constexpr unsigned int kWidth = 4;
    static constexpr unsigned int kCount = 32;

    unsigned int used = 0;
    alignas(kWidth) unsigned char bytes[kWidth * kCount] = {};
};

} // namespace vell
