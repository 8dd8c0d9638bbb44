// VELL: data-driven hierarchical state machines.
// platform/tessel/TableStore.h: the slots of all tables of the process.
#pragma once

#include "platform/tessel/Table.h"

#include <atomic>
#include <cstdint>

namespace Tessel
{

/// The slots of all tables of the process: opens and closes tables and finds them by handle. Slots
/// are never given back, so a stale handle can always be asked about; a closed one is used again.
/// No operation but the making of further slots takes a lock.
class TableStore
{
public:
    /// Opens a table, held by its creator when `holders` says so. Null when no slot is left. May
    /// throw `std::bad_alloc`.
    static Table* Open(const KeyText& name, std::uint32_t holders);

    /// Opens a table that its creator holds.
    static Table* OpenForCreator(const KeyText& name)
    {
        return Open(name, Table::kHeldByCreator);
    }

    /// Closes an open table and those below it that nothing else holds. Does not recurse.
    static void Close(Table& table);

    /// Ends one parent's hold on a table; closes it when that was the last one. Nothing for a stale
    /// handle.
    static void ReleaseChild(KVTable handle);

    /// Gives the open table of `handle`, or null.
    static Table* Find(KVTable handle)
    {
        const std::uint32_t slot = TableHandle::GetSlot(handle);
        if (slot == 0)
        {
            return nullptr;
        }
        Table* table = GetSlot(slot);
        return table->GetGeneration() == TableHandle::GetGeneration(handle) ? table : nullptr;
    }

    /// Tells whether `handle` is that of an open table.
    static bool IsOpen(KVTable handle)
    {
        const std::uint32_t slot = TableHandle::GetSlot(handle);
        return slot != 0 && GetSlot(slot)->GetGeneration() == TableHandle::GetGeneration(handle);
    }

    /// Gives the number of open tables. Looks at each slot.
    static std::uint32_t GetOpenCount();

    /// Lets the next table that is opened be the last one of its slot, for tests of the end of a
    /// slot's generations, which no test could reach otherwise. The slot must be closed.
    static void MakeLastGeneration(std::uint32_t slot);

private:
    static constexpr std::uint32_t kChunkSlots = 512;
    static constexpr std::uint32_t kMaxSlots = std::uint32_t{1}
                                               << (TableHandle::kSlotBits == 32 ? 25 : 20);
    static constexpr std::uint32_t kMaxChunks = kMaxSlots / kChunkSlots;

    static Table* GetSlot(std::uint32_t slot)
    {
        Table* chunk = chunks[slot / kChunkSlots].load(std::memory_order_acquire);
        return chunk + slot % kChunkSlots;
    }

    static Table* TakeFree();
    static Table* TakeFresh();
    static void AddChunk(std::uint32_t chunk);
    static void GiveBack(Table& table);
    static void BeginClose(Table& table);
    static void ReleaseContent(Table& table, Table*& pending);

    static std::atomic<Table*> chunks[kMaxChunks];
    static std::atomic<std::uint32_t> freshSlot; ///< the first slot that was never used
    static std::atomic<std::uint64_t> freeHead;  ///< a count of changes, then the first free slot
};

} // namespace Tessel
