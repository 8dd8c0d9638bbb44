// VELL: data-driven hierarchical state machines.
// tests/support/HeapWatch.cpp: counting and refusing of heap blocks.
#include "tests/support/HeapWatch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <memory>
#include <new>

// The linker leads this program's calls of malloc and its kin here (--wrap), which works beside the
// sanitizers, whose own malloc is the real one then. operator new is replaced as the language
// allows, so that calls from inside the standard library are counted too.
extern "C"
{
    void* __real_malloc(std::size_t size);
    void* __real_calloc(std::size_t count, std::size_t size);
    void* __real_realloc(void* block, std::size_t size);
    void __real_free(void* block);
    void* __wrap_malloc(std::size_t size);
    void* __wrap_calloc(std::size_t count, std::size_t size);
    void* __wrap_realloc(void* block, std::size_t size);
    void __wrap_free(void* block);
}

namespace
{

struct Counters
{
    bool watching;
    std::size_t mallocs;
    std::size_t news;
    std::ptrdiff_t kept;
    std::ptrdiff_t bytes;
    std::ptrdiff_t mostBytes;
    std::size_t asked;
    std::size_t refuseAt; ///< a value of `asked`; 0 for none
    std::size_t refuseSize;
    std::size_t refuseCount;
    std::size_t refused;
};

// Plain data without a constructor, so that any allocation may find it.
#if defined(__MINGW32__)
// There a thread's own data is itself allocated on first use, by the calloc that is watched. One
// watch lives at a time, and the tests that have one use a single thread.
Counters counters;
#else
thread_local Counters counters;
#endif

std::ptrdiff_t SizeOf(void* block)
{
#if defined(_WIN32)
    return static_cast<std::ptrdiff_t>(_msize(block));
#else
    return static_cast<std::ptrdiff_t>(malloc_usable_size(block));
#endif
}

/// Counts a block that is asked for, and tells whether it is to be refused.
bool Refuses()
{
    if (!counters.watching)
    {
        return false;
    }
    ++counters.asked;
    if (counters.asked != counters.refuseAt)
    {
        return false;
    }
    ++counters.refused;
    return true;
}

bool RefusesSize(std::size_t size)
{
    if (counters.refuseCount == 0 || size != counters.refuseSize)
    {
        return false;
    }
    --counters.refuseCount;
    ++counters.refused;
    return true;
}

void* Taken(void* block, std::size_t& kind)
{
    if (counters.watching && block != nullptr)
    {
        ++kind;
        ++counters.kept;
        counters.bytes += SizeOf(block);
        counters.mostBytes = std::max(counters.mostBytes, counters.bytes);
    }
    return block;
}

void GivenBack(void* block)
{
    if (counters.watching && block != nullptr)
    {
        --counters.kept;
        counters.bytes -= SizeOf(block);
    }
}

void* TakenByNew(std::size_t size)
{
    return Refuses() ? nullptr : Taken(__real_malloc(size == 0 ? 1 : size), counters.news);
}

} // namespace

void* __wrap_malloc(std::size_t size)
{
    return RefusesSize(size) || Refuses() ? nullptr : Taken(__real_malloc(size), counters.mallocs);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return Refuses() ? nullptr : Taken(__real_calloc(count, size), counters.mallocs);
}

void* __wrap_realloc(void* block, std::size_t size)
{
    if (Refuses())
    {
        return nullptr;
    }
    const std::ptrdiff_t had = block == nullptr ? 0 : SizeOf(block);
    void* moved = __real_realloc(block, size);
    if (block != nullptr && (moved != nullptr || size == 0) && counters.watching)
    {
        --counters.kept;
        counters.bytes -= had;
    }
    return Taken(moved, counters.mallocs);
}

void __wrap_free(void* block)
{
    GivenBack(block);
    __real_free(block);
}

void* operator new(std::size_t size)
{
    void* block = TakenByNew(size);
    if (block == nullptr)
    {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return TakenByNew(size);
}

// The sanitizers' own do not come by the operators above.
void* operator new[](std::size_t size)
{
    return ::operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept
{
    return ::operator new(size, nothrow);
}

void operator delete(void* block) noexcept
{
    GivenBack(block);
    __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    ::operator delete(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept
{
    ::operator delete(block);
}

void operator delete[](void* block) noexcept
{
    ::operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    ::operator delete(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    ::operator delete(block);
}

// A block of a larger alignment is a part of one of the usual kind, whose address is in front of
// it.
void* operator new(std::size_t size, std::align_val_t alignment)
{
    const auto width = static_cast<std::size_t>(alignment);
    std::size_t space = size + width;
    void* const whole = ::operator new(sizeof(whole) + space);
    void* block = static_cast<void**>(whole) + 1;
    std::align(width, size, block, space);
    std::memcpy(static_cast<void**>(block) - 1, &whole, sizeof(whole));
    return block;
}

void operator delete(void* block, std::align_val_t) noexcept
{
    if (block != nullptr)
    {
        void* whole = nullptr;
        std::memcpy(&whole, static_cast<void**>(block) - 1, sizeof(whole));
        ::operator delete(whole);
    }
}

void operator delete(void* block, std::size_t, std::align_val_t alignment) noexcept
{
    ::operator delete(block, alignment);
}

namespace vell::test
{

HeapWatch::HeapWatch()
{
    counters = Counters();
    counters.watching = true;
}

HeapWatch::~HeapWatch()
{
    counters = Counters();
}

std::size_t HeapWatch::Mallocs() const
{
    return counters.mallocs;
}

std::size_t HeapWatch::News() const
{
    return counters.news;
}

std::ptrdiff_t HeapWatch::BlocksKept() const
{
    return counters.kept;
}

std::size_t HeapWatch::MostBytes() const
{
    return static_cast<std::size_t>(counters.mostBytes);
}

std::size_t HeapWatch::Asked() const
{
    return counters.asked;
}

void HeapWatch::RefuseAfter(std::size_t count)
{
    counters.refuseAt = counters.asked + count + 1;
}

void HeapWatch::RefuseNothing()
{
    counters.refuseAt = 0;
    counters.refuseCount = 0;
}

void HeapWatch::RefuseMalloc(std::size_t size, std::size_t count)
{
    counters.refuseSize = size;
    counters.refuseCount = count;
}

std::size_t HeapWatch::Refused() const
{
    return counters.refused;
}

} // namespace vell::test
