// VELL: data-driven hierarchical state machines.
// foundation/SlabMemory.cpp: the slabs of the process.
#include "foundation/SlabMemory.h"

#include "foundation/HugePage.h"
#include "foundation/Prefetch.h"
#include "foundation/Sanitizer.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <new>

namespace vell
{
namespace
{

#if defined(VELL_ADDRESS_SANITIZER)
// It watches blocks of the heap, not parts of slabs.
constexpr std::size_t kMostLines = 0;
#else
constexpr std::size_t kMostLines = 32;
#endif

std::size_t CountLines(std::size_t size)
{
    return std::max(size + kCacheLine - 1, kCacheLine) / kCacheLine;
}

void* TakeLines(std::size_t lines)
{
    const std::size_t size = lines * kCacheLine;
    return ::operator new (size, std::align_val_t{kCacheLine});
}

void FreeLines(void* begin)
{
    ::operator delete (begin, std::align_val_t{kCacheLine});
}

/// The slabs of the process, for blocks of up to `kMostLines` cache lines.
class Slabs
{
public:
    /// They are never destroyed, so that a machine may still be deleted while static objects are
    /// destroyed.
    static Slabs& Get()
    {
        static auto* slabs = new Slabs;
        return *slabs;
    }

    void* Take(std::size_t lines)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        BlockSize& size = sizes[lines];
        Link* block = size.freed;
        if (block != nullptr)
        {
            size.freed = block->next;
        }
        else
        {
            if (size.next == size.end)
            {
                AddSlab(size, lines);
            }
            block = reinterpret_cast<Link*>(size.next);
            size.next += lines * kCacheLine;
        }
        ++blockCount;
        return block;
    }

    void Free(void* block, std::size_t lines)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        sizes[lines].freed = new (block) Link{sizes[lines].freed};
        if (--blockCount == 0)
        {
            FreeSlabs();
        }
    }

private:
    struct Link
    {
        Link* next;
    };

    /// The blocks of one size.
    struct BlockSize
    {
        Link* freed = nullptr;
        unsigned char* next = nullptr; ///< the first block of the latest slab that was never taken
        unsigned char* end = nullptr;
        std::size_t slabLines = 0; ///< of the latest slab, without its first line
    };

    /// What is in the first line of a slab.
    struct SlabHead
    {
        SlabHead* before; ///< the slab that was added before this one
        std::align_val_t alignment;
    };

    /// The first slab has few blocks, because most processes have few machines. Each has twice as
    /// many as the one before it. The largest ones are huge pages: for thousands of machines, the
    /// processor's translation buffer (TLB) has too few entries for small pages.
    static constexpr std::size_t kFirstBlocks = 8;
    static constexpr std::size_t kMostSlabLines = kHugePage / kCacheLine - 1;

    void AddSlab(BlockSize& size, std::size_t lines)
    {
        const std::size_t most = kMostSlabLines / lines * lines;
        const std::size_t slabLines =
            std::min(std::max(kFirstBlocks * lines, 2 * size.slabLines), most);
        const bool isLargest = slabLines == most;
        const std::size_t bytes = isLargest ? kHugePage : (1 + slabLines) * kCacheLine;
        const std::align_val_t alignment{isLargest ? kHugePage : kCacheLine};
        void* const slab = ::operator new(bytes, alignment);
        if (isLargest)
        {
            RequestHugePage(slab);
        }
        latestSlab = new (slab) SlabHead{latestSlab, alignment};
        size.next = static_cast<unsigned char*>(slab) + kCacheLine;
        size.end = size.next + slabLines * kCacheLine;
        size.slabLines = slabLines;
    }

    void FreeSlabs()
    {
        while (latestSlab != nullptr)
        {
            SlabHead* const slab = latestSlab;
            latestSlab = slab->before;
            ::operator delete(slab, slab->alignment);
        }
        sizes = {};
    }

    std::mutex mutex;
    std::array<BlockSize, kMostLines + 1> sizes; ///< by the number of lines
    SlabHead* latestSlab = nullptr;
    std::size_t blockCount = 0; ///< taken and not yet freed
};

} // namespace

void* SlabMemory::Take(std::size_t size)
{
    const std::size_t lines = CountLines(size);
    return lines > kMostLines ? TakeLines(lines) : Slabs::Get().Take(lines);
}

void SlabMemory::Free(void* block, std::size_t size)
{
    const std::size_t lines = CountLines(size);
    if (lines > kMostLines)
    {
        FreeLines(block);
    }
    else
    {
        Slabs::Get().Free(block, lines);
    }
}

} // namespace vell
