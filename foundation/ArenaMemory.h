// VELL: data-driven hierarchical state machines.
// foundation/ArenaMemory.h: texts and arrays in the arena.
#pragma once

#include <vell/HSMAlloc.h>

#include <climits>
#include <cstddef>
#include <cstring>

namespace vell
{

/// Takes zero-filled space for a text of `length` characters and two bytes behind it. Null when
/// there is no space.
inline char* AllocText(HSMAlloc& alloc, std::size_t length)
{
    // Required: one byte for the terminator would do. A host sees two in `used`.
    return length > UINT_MAX - 2
               ? nullptr
               : static_cast<char*>(alloc.AllocRaw(static_cast<unsigned int>(length) + 2u));
}

/// Takes zero-filled space for an array. Null when `count` is 0 or there is no space. The array may
/// be misaligned: elements are stored and loaded with `StoreElement` and `LoadElement`.
template <class T>
T* AllocArray(HSMAlloc& alloc, unsigned int count)
{
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer, and its own size is meant.
    constexpr unsigned int kWidth = sizeof(T);
    return count > UINT_MAX / kWidth ? nullptr : static_cast<T*>(alloc.AllocRaw(count * kWidth));
}

template <class T>
void StoreElement(T* array, unsigned int i, T value)
{
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer, and its own size is meant.
    constexpr std::size_t kWidth = sizeof(T);
    std::memcpy(reinterpret_cast<unsigned char*>(array) + i * kWidth, &value, kWidth);
}

template <class T>
T LoadElement(const T* array, unsigned int i)
{
    T value;
    std::memcpy(&value, reinterpret_cast<const unsigned char*>(array) + std::size_t{i} * sizeof(T),
                sizeof(T));
    return value;
}

} // namespace vell
