// VELL: data-driven hierarchical state machines.
// bench/HeapCount.cpp: `new` and `delete` that count, and tell who asked.
#include "bench/HeapCount.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <link.h>
#include <new>

namespace vell::bench
{
namespace
{

HeapCount counted{0, 0};

/// Stands before each block.
struct BlockHead
{
    std::uint32_t charged;
    std::uint32_t isTables;
    std::uint64_t padding; ///< keeps the alignment
};

/// Where the code of the table library is.
struct CodeRange
{
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};

int FindTableCode(dl_phdr_info* info, std::size_t, void* range)
{
    if (std::strstr(info->dlpi_name, "TesselX64") == nullptr)
    {
        return 0;
    }
    for (int i = 0; i < info->dlpi_phnum; ++i)
    {
        const auto& header = info->dlpi_phdr[i];
        if (header.p_type == PT_LOAD && (header.p_flags & PF_X) != 0)
        {
            auto& found = *static_cast<CodeRange*>(range);
            found.begin = info->dlpi_addr + header.p_vaddr;
            found.end = found.begin + header.p_memsz;
        }
    }
    return 1;
}

bool IsTableCode(const void* caller)
{
    static CodeRange range;
    if (range.end == 0)
    {
        dl_iterate_phdr(FindTableCode, &range);
    }
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    return address >= range.begin && address < range.end;
}

/// What glibc's heap takes for a block: eight bytes of its own, in steps of 16, 32 at least.
std::uint32_t ChargeFor(std::size_t size)
{
    const std::size_t charge = (size + 8 + 15) / 16 * 16;
    return static_cast<std::uint32_t>(charge < 32 ? 32 : charge);
}

long long& CounterOf(const BlockHead& head)
{
    return head.isTables != 0 ? counted.tables : counted.others;
}

void* Take(std::size_t size, const void* caller)
{
    auto* head = static_cast<BlockHead*>(std::malloc(size + sizeof(BlockHead)));
    if (head == nullptr)
    {
        throw std::bad_alloc();
    }
    *head = BlockHead{ChargeFor(size), IsTableCode(caller) ? 1u : 0u, 0};
    CounterOf(*head) += head->charged;
    return head + 1;
}

} // namespace

HeapCount CountHeap()
{
    return counted;
}

} // namespace vell::bench

using vell::bench::BlockHead;

void* operator new(std::size_t size)
{
    return vell::bench::Take(size, __builtin_return_address(0));
}

void operator delete(void* block) noexcept
{
    if (block == nullptr)
    {
        return;
    }
    BlockHead* head = static_cast<BlockHead*>(block) - 1;
    vell::bench::CounterOf(*head) -= head->charged;
    std::free(head);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void* operator new[](std::size_t size)
{
    return vell::bench::Take(size, __builtin_return_address(0));
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
