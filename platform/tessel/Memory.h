// VELL: data-driven hierarchical state machines.
// platform/tessel/Memory.h: blocks whose addresses have free low bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace Tessel
{

/// What the addresses that `Allocate` gives are multiples of: their four low bits are free.
constexpr std::size_t kAlignment = 16;
constexpr std::uintptr_t kFreeBits = kAlignment - 1;

// The aligned forms of new are slower, and not needed where the plain ones align enough.
constexpr bool kIsPlainNewEnough = __STDCPP_DEFAULT_NEW_ALIGNMENT__ >= kAlignment;

/// Gives `size` bytes, to be given back by `Free`. May throw `std::bad_alloc`.
inline void* Allocate(std::size_t size)
{
    return kIsPlainNewEnough ? ::operator new(size)
                             : ::operator new (size, std::align_val_t{kAlignment});
}

/// Gives back what `Allocate` gave.
inline void Free(void* memory)
{
    if (kIsPlainNewEnough)
    {
        ::operator delete(memory);
    }
    else
    {
        ::operator delete (memory, std::align_val_t{kAlignment});
    }
}

/// For `std::unique_ptr`.
struct Freeing
{
    void operator()(void* memory) const
    {
        Free(memory);
    }
};

} // namespace Tessel
