// VELL: data-driven hierarchical state machines.
// platform/tessel/TableStore.h: the slots of all tables of the process.
#pragma once

#include "platform/tessel/Table.h"

#include <atomic>
#include <cstdint>

namespace Tessel
{

/// The slots of all tables of the process: opens and closes tables and finds them by handle. Slots
/// are never given back, so a stale handle can always be asked about; a closed one is used again,
/// by a table with as much room for entries. No operation but the making of further slots takes a
/// lock.
///
/// Slots are of different sizes and follow one another in chunks. The number of a slot is its place
/// in bytes, as if the chunks followed one another too.
class TableStore
{
public:
    /// Opens a table, held by its creator when `holders` says so. Null when no slot is left. May
    /// throw `std::bad_alloc`.
    static Table* Open(const char* name, std::uint32_t holders);

    /// Opens a table that its creator holds.
    static Table* OpenForCreator(const char* name)
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
    static constexpr std::uint32_t kChunkBytes = 65536;
    static constexpr std::uint32_t kMaxBytes = std::uint32_t{1}
                                               << (TableHandle::kSlotBits == 32 ? 31 : 20);
    static constexpr std::uint32_t kMaxChunks = kMaxBytes / kChunkBytes;

    /// The most slots that are made at once.
    static constexpr std::uint32_t kMadeAtOnce = 8;

    static Table* GetSlot(std::uint32_t slot)
    {
        unsigned char* chunk = chunks[slot / kChunkBytes].load(std::memory_order_acquire);
        return reinterpret_cast<Table*>(chunk + slot % kChunkBytes);
    }

    /// Gives the bytes from a slot to the next one.
    static constexpr std::uint32_t GetStride(std::uint32_t room)
    {
        return static_cast<std::uint32_t>(Table::GetSize(room) + TableHandle::kSlotStep - 1) /
               TableHandle::kSlotStep * TableHandle::kSlotStep;
    }

    static Table* Take(const Key& name, const Shape& shape);
    static Table* TakeFree(std::uint32_t room);
    static Table* TakeFresh(std::uint32_t room);
    static Table* MakeFresh(std::uint32_t room);
    static bool AddChunk();
    static void GiveBack(Table& table);
    static void GiveBack(Table& first, Table& last);
    static std::uint32_t GetOpenCount(std::uint32_t first, std::uint32_t end);
    static void BeginClose(Table& table);
    static void ReleaseContent(Table& table, Table*& pending);
    static void ReleaseMore(Table& table);

    static std::atomic<unsigned char*> chunks[kMaxChunks];
    static std::uint32_t chunkCount;
    static std::uint32_t freshSlot; ///< the first one that was not made
    static std::uint32_t freshEnd;  ///< where its chunk ends

    /// A count of changes, then the first free slot; by the room for entries.
    static std::atomic<std::uint64_t> freeHeads[Table::kMaxRoom + 1];
};

} // namespace Tessel
