// VELL: data-driven hierarchical state machines.
// foundation/SlabMemory.h: memory for what ticks read, of all machines side by side.
#pragma once

#include <cstddef>

namespace vell
{

/// Memory of the process for what each tick reads of a machine, and for nothing else. Blocks of one
/// size follow one another in the order in which they were taken. A game that updates its machines
/// in the order in which it created them reads this memory from the beginning to the end, and the
/// processor fetches it ahead. On the heap, tens of kilobytes that no tick reads would be between
/// two machines.
///
/// A block begins at a cache line of its own. Any thread may take and free blocks. A freed block is
/// used again by later ones; when the last is freed, all memory goes back to the heap.
class SlabMemory
{
public:
    /// Takes a block of `size` bytes. May throw `std::bad_alloc`.
    static void* Take(std::size_t size);
    /// Frees a block of `size` bytes.
    static void Free(void* block, std::size_t size);
};

/// A base of objects that are created in slabs by `new`.
struct InSlab
{
    static void* operator new(std::size_t size)
    {
        return SlabMemory::Take(size);
    }
    static void operator delete(void* object, std::size_t size)
    {
        SlabMemory::Free(object, size);
    }
};

/// Lets a container have its elements in slabs.
template <class T>
struct SlabAllocator
{
    // NOLINTBEGIN(readability-identifier-naming): containers want these names.
    using value_type = T;

    SlabAllocator() = default;
    template <class U>
    SlabAllocator(const SlabAllocator<U>&)
    {
    }

    T* allocate(std::size_t count)
    {
        return static_cast<T*>(SlabMemory::Take(count * sizeof(T)));
    }
    void deallocate(T* elements, std::size_t count)
    {
        SlabMemory::Free(elements, count * sizeof(T));
    }
    // NOLINTEND(readability-identifier-naming)

    template <class U>
    bool operator==(const SlabAllocator<U>&) const
    {
        return true;
    }
    template <class U>
    bool operator!=(const SlabAllocator<U>&) const
    {
        return false;
    }
};

} // namespace vell
