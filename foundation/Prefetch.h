// VELL: data-driven hierarchical state machines.
// foundation/Prefetch.h: fetching memory into the cache before it is read.
#pragma once

#include <cstddef>

namespace vell
{

constexpr std::size_t kCacheLine = 64;

/// Asks for the cache lines of the `size` bytes at `begin`, or for the first only, by a size of 1;
/// and does not wait. Any address is allowed.
inline void Prefetch([[maybe_unused]] const void* begin, [[maybe_unused]] std::size_t size)
{
#if defined(__GNUC__)
    const char* const bytes = static_cast<const char*>(begin);
    for (std::size_t i = 0; i < size; i += kCacheLine)
    {
        __builtin_prefetch(bytes + i);
    }
#endif
}

} // namespace vell
