// VELL: data-driven hierarchical state machines.
// foundation/HugePage.h: asking the system for a huge page.
#pragma once

#include <cstddef>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vell
{

/// The size and alignment of a huge page on most systems.
constexpr std::size_t kHugePage = std::size_t{2} << 20;

/// Asks the system to make one page of the `kHugePage` bytes at `begin`, which have that alignment.
/// Where it has none, or on another system, nothing changes.
inline void RequestHugePage([[maybe_unused]] void* begin)
{
#if defined(__linux__)
    madvise(begin, kHugePage, MADV_HUGEPAGE);
#endif
}

} // namespace vell
