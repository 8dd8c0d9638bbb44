// VELL: data-driven hierarchical state machines.
// tests/support/HeapWatch.h: what a test's thread takes from the heap, and blocks refused to it.
#pragma once

#include <cstddef>

namespace vell::test
{

/// Counts, for as long as it lives, what its thread takes and gives back: by malloc, calloc,
/// realloc and free as this program's own code calls them, and by operator new and delete wherever
/// they are called. One watch lives at a time.
class HeapWatch
{
public:
    HeapWatch();
    ~HeapWatch();
    HeapWatch(const HeapWatch&) = delete;
    HeapWatch& operator=(const HeapWatch&) = delete;

    /// Gives how many blocks were taken by malloc, calloc and realloc.
    std::size_t Mallocs() const;
    /// Gives how many blocks were taken by operator new.
    std::size_t News() const;
    /// Gives how many of all blocks taken since the watch began, or before, are left more than at
    /// its beginning; negative when fewer are.
    std::ptrdiff_t BlocksKept() const;

    /// Gives the most bytes that stood taken at one time, of all that the watch saw taken.
    std::size_t MostBytes() const;
    /// Gives how many blocks were asked for, refused ones too.
    std::size_t Asked() const;

    /// Refuses one block, of whatever kind, after the next `count`: malloc and its kin give null,
    /// operator new throws std::bad_alloc.
    void RefuseAfter(std::size_t count);
    /// Ends all refusing.
    void RefuseNothing();
    /// Makes malloc give null to the next `count` calls for exactly `size` bytes.
    void RefuseMalloc(std::size_t size, std::size_t count);
    /// Gives how many calls were refused.
    std::size_t Refused() const;
};

} // namespace vell::test
