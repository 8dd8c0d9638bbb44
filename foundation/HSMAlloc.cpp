// VELL: data-driven hierarchical state machines.
// foundation/HSMAlloc.cpp: the arena's block and what is kept for its end.
#include <vell/HSMAlloc.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace vell
{

/// The memory of the entries of `tracked`, freed all at once. Its first part is enough for few
/// objects only, because most machines are small.
struct HSMAlloc::Pool
{
    unsigned char first[512];
    std::pmr::monotonic_buffer_resource resource{first, sizeof(first),
                                                 std::pmr::new_delete_resource()};
};

HSMAlloc::HSMAlloc() : pool(std::make_unique<Pool>()), tracked(&pool->resource)
{
}

HSMAlloc::~HSMAlloc()
{
    Release();
    for (const Kept& entry : kept)
    {
        if (entry.duty != nullptr)
        {
            entry.duty->destroy(entry.object);
        }
    }
}

int HSMAlloc::Reserve(unsigned int size)
{
    Release();
    block = static_cast<unsigned char*>(std::malloc(size));
    if (block == nullptr)
    {
        return 0;
    }
    capacity = size;
    return 1;
}

void HSMAlloc::Release()
{
    // By index: a host's ReleaseStorage may have further tables closed later.
    for (std::size_t i = 0; i < kept.size(); ++i)
    {
        const Kept entry = kept[i];
        if (entry.duty != nullptr && entry.duty->release != nullptr)
        {
            void* const left = entry.duty->release(entry.object);
            kept[i] = Kept{left, left == nullptr ? nullptr : TableDuty()};
        }
    }
    // Required: no destructor of an object in the block runs, neither here nor when the arena is
    // destroyed.
    // Required: `tracked` keeps its entries, although their objects no longer exist.
    used = 0;
    capacity = 0;
    std::free(block);
    block = nullptr;
}

void* HSMAlloc::AllocRaw(unsigned int size)
{
    if (size == 0 || !HasSpace(size))
    {
        return nullptr;
    }
    unsigned char* bytes = block + used;
    std::memset(bytes, 0, size);
    used += size;
#if defined(VELL_ARENA_ROUNDING)
    const unsigned int padding = (8u - used % 8u) % 8u;
    used += padding < capacity - used ? padding : capacity - used;
#endif
    return bytes;
}

void HSMAlloc::CloseLater(Tessel::KVTable table)
{
    ReserveKept();
    kept.push_back(Kept{TableToPointer(table), TableDuty()});
}

void HSMAlloc::KeepMore()
{
    // In small steps: what is kept is little, and there is an entry for each object.
    kept.reserve(kept.size() + kept.size() / 4 + 16);
}

void HSMAlloc::Reservation::GiveBack()
{
    if (arena.kept.size() == entry + 1)
    {
        arena.kept.pop_back();
    }
    // What the constructor has allocated lives on, and so does the space in front of it.
    if (arena.used == end)
    {
        arena.used = start;
    }
}

void ArenaLink::CloseLater(Tessel::KVTable table)
{
    if (arena != nullptr && table)
    {
        arena->CloseLater(table);
    }
}

void ArenaLink::Leave()
{
    arena->kept[entry] = HSMAlloc::Kept{nullptr, nullptr};
}

void* HSMAlloc::TableToPointer(Tessel::KVTable table)
{
    static_assert(sizeof(table) == sizeof(void*), "a handle is one pointer wide");
    void* pointer = nullptr;
    std::memcpy(&pointer, &table, sizeof(pointer));
    return pointer;
}

const HSMAlloc::Duty* HSMAlloc::TableDuty()
{
    static const Duty duty{nullptr, [](void* held)
                           {
                               Tessel::KVTable table;
                               std::memcpy(static_cast<void*>(&table), &held, sizeof(table));
                               Tessel::CloseTable(table);
                           }};
    return &duty;
}

} // namespace vell
