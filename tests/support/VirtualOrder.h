// VELL: data-driven hierarchical state machines.
// tests/support/VirtualOrder.h: the places of virtual operations in their class's table.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

namespace vell::test
{

#if defined(__x86_64__) && !defined(_WIN32)
inline constexpr bool kCanReadSlots = true;
#else
inline constexpr bool kCanReadSlots = false;
#endif

/// Gives the slot of a virtual operation, by the Itanium C++ ABI, where a pointer to a virtual
/// member holds one more than the operation's offset in the table.
template <class Member>
std::ptrdiff_t SlotOf(Member member)
{
    static_assert(sizeof(member) >= sizeof(std::ptrdiff_t), "holds at least the offset");
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &member, sizeof(offset));
    return (offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

/// Gives the slots of several operations, in the order given.
template <class... Members>
std::vector<std::ptrdiff_t> SlotsOf(Members... members)
{
    return {SlotOf(members)...};
}

/// Gives `count` slots that follow one another, from `first` on.
inline std::vector<std::ptrdiff_t> SlotsFrom(std::ptrdiff_t first, std::size_t count)
{
    std::vector<std::ptrdiff_t> slots;
    for (std::size_t i = 0; i < count; ++i)
    {
        slots.push_back(first + static_cast<std::ptrdiff_t>(i));
    }
    return slots;
}

} // namespace vell::test
