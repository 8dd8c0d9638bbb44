// VELL: data-driven hierarchical state machines.
// platform/tessel/TableStore.cpp: the slots of all tables of the process.
#include "platform/tessel/TableStore.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace Tessel
{

namespace
{

std::mutex slotMutex; ///< held to make slots and to look at all of them

std::uint64_t MakeHead(std::uint64_t before, std::uint32_t slot)
{
    // The count tells a head that was taken and put back in between from an untouched one.
    return ((before >> 32) + 1) << 32 | slot;
}

} // namespace

std::atomic<unsigned char*> TableStore::chunks[kMaxChunks];
std::uint32_t TableStore::chunkCount = 0;
std::uint32_t TableStore::freshSlot = 0;
std::uint32_t TableStore::freshEnd = 0;
std::atomic<std::uint64_t> TableStore::freeHeads[Table::kMaxRoom + 1];

Table* TableStore::Open(const char* name, std::uint32_t holders)
{
    const Key* key = Key::AcquireRemembered(name);
    const Shape& shape = Shape::GetEmpty(*key);
    Table* table = nullptr;
    try
    {
        table = Take(*key, shape);
    }
    catch (...)
    {
        Key::Release(key);
        throw;
    }
    if (table == nullptr)
    {
        Key::Release(key); // GCOVR_EXCL_LINE: 33 million tables are open
        return nullptr;    // GCOVR_EXCL_LINE
    }
    table->shape = shape.GetNumber();
    table->SetLink(holders);
    table->generation.store(table->GetGeneration() + 1, std::memory_order_relaxed);
    return table;
}

/// Gives a closed table that has its name, when its shape is to be `shape`.
Table* TableStore::Take(const Key& name, const Shape& shape)
{
    const std::uint32_t room = std::max<std::uint32_t>(1, shape.ExpectKeys());
    Table* table = TakeFree(room);
    if (table == nullptr)
    {
        table = TakeFresh(room);
    }
    if (table != nullptr && shape.GetName() == nullptr)
    {
        try
        {
            table->NeedMore().name = &name;
        }
        catch (...)
        {
            GiveBack(*table);
            throw;
        }
    }
    return table;
}

void TableStore::Close(Table& table)
{
    // The tables that wait to be released are chained through their links: closing allocates
    // nothing, and a chain of any depth needs no stack.
    BeginClose(table);
    table.SetLink(0);
    Table* pending = &table;
    while (pending != nullptr)
    {
        Table* closed = pending;
        const std::uint32_t next = closed->GetLink();
        pending = next == 0 ? nullptr : GetSlot(next);
        ReleaseContent(*closed, pending);
        if (closed->GetGeneration() != 0)
        {
            GiveBack(*closed);
        }
    }
}

void TableStore::ReleaseChild(KVTable handle)
{
    Table* child = Find(handle);
    if (child == nullptr)
    {
        return;
    }
    child->SetLink(child->GetLink() - Table::kOneParent);
    if ((child->GetLink() & Table::kHolders) == 0)
    {
        Close(*child);
    }
}

std::uint32_t TableStore::GetOpenCount()
{
    const std::lock_guard<std::mutex> lock(slotMutex);
    std::uint32_t count = 0;
    for (std::uint32_t chunk = 0; chunk < chunkCount; ++chunk)
    {
        const std::uint32_t end = (chunk + 1) * kChunkBytes;
        const std::uint32_t first = std::max(TableHandle::kSlotStep, chunk * kChunkBytes);
        count += GetOpenCount(first, end == freshEnd ? freshSlot : end);
    }
    return count;
}

std::uint32_t TableStore::GetOpenCount(std::uint32_t first, std::uint32_t end)
{
    std::uint32_t count = 0;
    for (std::uint32_t slot = first; end - slot >= GetStride(1);)
    {
        const Table& table = *GetSlot(slot);
        count += table.GetGeneration() & 1u;
        slot += GetStride(table.room);
    }
    return count;
}

void TableStore::MakeLastGeneration(std::uint32_t slot)
{
    GetSlot(slot)->generation.store(TableHandle::kLastGeneration - 1, std::memory_order_relaxed);
}

Table* TableStore::TakeFree(std::uint32_t room)
{
    std::uint64_t head = freeHeads[room].load(std::memory_order_acquire);
    for (;;)
    {
        const std::uint32_t slot = static_cast<std::uint32_t>(head);
        if (slot == 0)
        {
            return nullptr;
        }
        // Another thread may have taken the slot meanwhile; then its link is no next slot, and the
        // exchange fails.
        Table* table = GetSlot(slot);
        if (freeHeads[room].compare_exchange_weak(head, MakeHead(head, table->GetLink()),
                                                  std::memory_order_acq_rel,
                                                  std::memory_order_acquire))
        {
            return table;
        }
    }
}

/// Makes some slots, gives the first and leaves the others free. Null when no slot is left.
Table* TableStore::TakeFresh(std::uint32_t room)
{
    const std::lock_guard<std::mutex> lock(slotMutex);
    const std::uint32_t stride = GetStride(room);
    if (freshEnd - freshSlot < stride && !AddChunk())
    {
        return nullptr; // GCOVR_EXCL_LINE: 33 million tables are open
    }
    Table* taken = MakeFresh(room);
    if (freshEnd - freshSlot < stride)
    {
        return taken;
    }
    Table* first = MakeFresh(room);
    Table* last = first;
    for (std::uint32_t i = 2; i < kMadeAtOnce && freshEnd - freshSlot >= stride; ++i)
    {
        Table* made = MakeFresh(room);
        last->SetLink(made->slot);
        last = made;
    }
    GiveBack(*first, *last);
    return taken;
}

Table* TableStore::MakeFresh(std::uint32_t room)
{
    Table* made = new (GetSlot(freshSlot)) Table(freshSlot, room);
    freshSlot += GetStride(room);
    return made;
}

/// Adds a chunk for further slots; what is left of the last one becomes a free slot. False when
/// there is none left. May throw `std::bad_alloc`.
bool TableStore::AddChunk()
{
    if (chunkCount == kMaxChunks)
    {
        return false; // GCOVR_EXCL_LINE: 33 million tables are open
    }
    void* memory = ::operator new(kChunkBytes);
    for (std::uint32_t room = Table::kMaxRoom; room >= 1; --room)
    {
        if (freshEnd - freshSlot >= GetStride(room))
        {
            GiveBack(*MakeFresh(room));
        }
    }
    chunks[chunkCount].store(static_cast<unsigned char*>(memory), std::memory_order_release);
    // No slot has the number 0.
    freshSlot = std::max(TableHandle::kSlotStep, chunkCount * kChunkBytes);
    ++chunkCount;
    freshEnd = chunkCount * kChunkBytes;
    return true;
}

void TableStore::GiveBack(Table& table)
{
    GiveBack(table, table);
}

/// Makes tables free that are chained by their links, the first of which is the next to be taken.
void TableStore::GiveBack(Table& first, Table& last)
{
    std::atomic<std::uint64_t>& freeHead = freeHeads[first.room];
    std::uint64_t head = freeHead.load(std::memory_order_relaxed);
    do
    {
        last.SetLink(static_cast<std::uint32_t>(head));
    } while (!freeHead.compare_exchange_weak(head, MakeHead(head, first.slot),
                                             std::memory_order_acq_rel, std::memory_order_relaxed));
}

/// Makes every handle of `table` stale. A slot that has had its last generation gets 0 and is not
/// given back: a further one would answer to its first handles.
void TableStore::BeginClose(Table& table)
{
    const std::uint32_t generation = table.GetGeneration();
    const bool isLast = generation == TableHandle::kLastGeneration;
    table.generation.store(isLast ? 0 : generation + 1, std::memory_order_relaxed);
}

/// Frees all that `table` has, and puts the children that it alone held before `pending`.
void TableStore::ReleaseContent(Table& table, Table*& pending)
{
    const std::uint32_t count = table.CountKeys();
    for (std::uint32_t i = 0; i < count; ++i)
    {
        Entry& entry = *table.GetEntry(i);
        if (!entry.IsOwner())
        {
            continue;
        }
        entry.ReleaseMemory();
        Table* child = Find(entry.GetStoredTable());
        if (child == nullptr)
        {
            continue;
        }
        child->SetLink(child->GetLink() - Table::kOneParent);
        if ((child->GetLink() & Table::kHolders) == 0)
        {
            BeginClose(*child);
            child->SetLink(pending == nullptr ? 0 : pending->slot);
            pending = child;
        }
    }
    table.shape = Shape::kUnnamed;
    if (table.more != nullptr)
    {
        ReleaseMore(table);
    }
}

void TableStore::ReleaseMore(Table& table)
{
    const std::unique_ptr<Table::More> more(std::exchange(table.more, nullptr));
    while (more->blocks != nullptr)
    {
        ::operator delete(std::exchange(more->blocks, more->blocks->next));
    }
    Key::Release(more->name);
}

} // namespace Tessel
