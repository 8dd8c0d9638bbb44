// VELL: data-driven hierarchical state machines.
// platform/tessel/TableStore.cpp: the slots of all tables of the process.
#include "platform/tessel/TableStore.h"

#include <mutex>
#include <new>

namespace Tessel
{

namespace
{

std::mutex chunkMutex;

std::uint64_t MakeHead(std::uint64_t before, std::uint32_t slot)
{
    // The count tells a head that was taken and put back in between from an untouched one.
    return ((before >> 32) + 1) << 32 | slot;
}

} // namespace

std::atomic<Table*> TableStore::chunks[kMaxChunks];
std::atomic<std::uint32_t> TableStore::freshSlot{1};
std::atomic<std::uint64_t> TableStore::freeHead{0};

Table* TableStore::Open(const KeyText& name, std::uint32_t holders)
{
    Table* table = TakeFree();
    if (table == nullptr)
    {
        table = TakeFresh();
    }
    if (table == nullptr)
    {
        return nullptr; // GCOVR_EXCL_LINE: 33 million tables are open
    }
    try
    {
        table->name = Key::Acquire(name);
    }
    catch (...)
    {
        GiveBack(*table);
        throw;
    }
    table->SetLink(holders);
    table->generation.store(table->GetGeneration() + 1, std::memory_order_relaxed);
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
    const std::uint32_t end = freshSlot.load(std::memory_order_acquire);
    std::uint32_t count = 0;
    for (std::uint32_t slot = 1; slot < end; ++slot)
    {
        count += GetSlot(slot)->GetGeneration() & 1u;
    }
    return count;
}

void TableStore::MakeLastGeneration(std::uint32_t slot)
{
    GetSlot(slot)->generation.store(TableHandle::kLastGeneration - 1, std::memory_order_relaxed);
}

Table* TableStore::TakeFree()
{
    std::uint64_t head = freeHead.load(std::memory_order_acquire);
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
        if (freeHead.compare_exchange_weak(head, MakeHead(head, table->GetLink()),
                                           std::memory_order_acq_rel, std::memory_order_acquire))
        {
            return table;
        }
    }
}

Table* TableStore::TakeFresh()
{
    std::uint32_t slot = freshSlot.load(std::memory_order_relaxed);
    for (;;)
    {
        if (slot >= kMaxSlots)
        {
            return nullptr; // GCOVR_EXCL_LINE: 33 million tables are open
        }
        const std::uint32_t chunk = slot / kChunkSlots;
        if (chunks[chunk].load(std::memory_order_acquire) == nullptr)
        {
            AddChunk(chunk);
        }
        if (freshSlot.compare_exchange_weak(slot, slot + 1, std::memory_order_acq_rel))
        {
            return GetSlot(slot);
        }
    }
}

void TableStore::AddChunk(std::uint32_t chunk)
{
    const std::lock_guard<std::mutex> lock(chunkMutex);
    if (chunks[chunk].load(std::memory_order_relaxed) != nullptr)
    {
        return;
    }
    Table* first = static_cast<Table*>(::operator new(kChunkSlots * sizeof(Table)));
    for (std::uint32_t i = 0; i < kChunkSlots; ++i)
    {
        new (first + i) Table(chunk * kChunkSlots + i);
    }
    chunks[chunk].store(first, std::memory_order_release);
}

void TableStore::GiveBack(Table& table)
{
    std::uint64_t head = freeHead.load(std::memory_order_relaxed);
    do
    {
        table.SetLink(static_cast<std::uint32_t>(head));
    } while (!freeHead.compare_exchange_weak(head, MakeHead(head, table.slot),
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
    for (std::uint32_t i = 0; i < table.keyCount; ++i)
    {
        Entry& entry = *table.GetEntry(i);
        entry.ReleaseText();
        Key::Release(entry.GetKey());
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
    while (table.blocks != nullptr)
    {
        Table::Block* block = table.blocks;
        table.blocks = block->next;
        ::operator delete(block);
    }
    delete table.extras;
    Key::Release(table.name);
    table.extras = nullptr;
    table.name = nullptr;
    table.keyCount = 0;
    table.tags = 0;
}

} // namespace Tessel
