// VELL: data-driven hierarchical state machines.
// platform/tessel/Table.h: a table of keys and values.
#pragma once

#include <tessel/Tessel.h>

#include "platform/tessel/ElementArray.h"
#include "platform/tessel/Entry.h"
#include "platform/tessel/KeyIndex.h"
#include "platform/tessel/ListenerSet.h"
#include "platform/tessel/TableHandle.h"

#include <atomic>
#include <cstdint>
#include <memory>

#if defined(__GNUC__)
#define TESSEL_NOINLINE __attribute__((noinline))
#else
#define TESSEL_NOINLINE
#endif

namespace Tessel
{

/// A table, and the slot that it is in: made once, opened and closed many times. Two entries
/// are in the table itself, so that most tables need no memory of their own; three keys take
/// 168 bytes in all. Up to eight keys are found by a tag of one byte, more by an index.
class Table final : public ITable
{
public:
    explicit Table(std::uint32_t ownSlot) : slot(ownSlot)
    {
    }

    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    KVValue* GetValueAt(unsigned index) override;
    KVTable GetTable(const char* key) override;
    int GetInt(const char* key) override;
    float GetFloat(const char* key) override;
    const char* GetString(const char* key) override;
    int GetFloat2(const char* key, Float2* out) override;
    int GetFloat3(const char* key, Float3* out) override;
    int GetFloat4(const char* key, Float4* out) override;
    unsigned GetUInt(const char* key) override;
    int SetUInt(const char* key, unsigned value, int flag) override;
    int SetFloat4(const char* key, const Float4* value, int flag) override;
    int SetFloat3(const char* key, const Float3* value, int flag) override;
    int SetFloat2(const char* key, const Float2* value, int flag) override;
    int SetString(const char* key, const char* text, int flag) override;
    int SetFloat(const char* key, float value, int flag) override;
    int SetInt(const char* key, int value, int flag) override;
    KVTable AddTable(const char* key, int flag) override;
    int AttachTable(const char* key, KVTable child, int flag) override;
    int RemoveAt(unsigned index, int flag) override;
    int PushUInt(unsigned value, int flag) override;
    unsigned GetCount() override;
    KVValue* FindValue(const char* key) override;
    KVListener* GetTableListener() override;
    KVListener* GetValueListener(const char* key) override;
    void RemoveValueListener(const char* key, const KVListener* listener) override;
    int NeedsLock() override;
    void Lock() override;
    void Unlock() override;
    unsigned GetKeyCount() override;
    const char* GetKeyAt(unsigned index) override;
    int GetTypeAt(unsigned index) override;

    /// Tells whether `handle`, which was one of this slot, is that of the open table.
    bool IsOpenAs(KVTable handle) const
    {
        return GetGeneration() == TableHandle::GetGeneration(handle);
    }

    /// Tells whether the table has a set of listeners, which it then has until it is closed.
    bool HasListeners() const
    {
        return extras != nullptr;
    }

    /// Gives the set of listeners, which must be there.
    const ListenerSet& GetListeners() const
    {
        return extras->listeners;
    }

    /// Tells whether there is anyone to call, of whatever key.
    bool IsHeard() const
    {
        return extras != nullptr && extras->listeners.IsAnyone();
    }

    /// Removes the last element of the array. False when it is empty.
    bool RemoveLast()
    {
        return extras != nullptr && extras->elements.RemoveLast();
    }

    const char* GetName() const
    {
        return name->GetText();
    }

    KVTable GetHandle() const
    {
        return TableHandle::Make(slot, GetGeneration());
    }

    /// Odd while the table is open. Other threads ask it by stale handles.
    std::uint32_t GetGeneration() const
    {
        return generation.load(std::memory_order_relaxed);
    }

private:
    friend class TableStore;

    static constexpr std::uint32_t kInlineEntries = 2;
    static constexpr std::uint32_t kTaggedEntries = 8; ///< more are found by the index

    // `link` of an open table: who holds it, and whether it may hold others.
    static constexpr std::uint32_t kHeldByCreator = 1;
    static constexpr std::uint32_t kMayHaveChildren = 2;
    static constexpr std::uint32_t kOneParent = 4; ///< the count of parents is above the bits
    static constexpr std::uint32_t kHolders = ~kMayHaveChildren;

    /// Two entries are in the table itself, and the rest in blocks of 1, 3, 6, 12, 24 ...
    /// entries, so that after them 3, 6, 12, 24 ... fit: gives where the run of entries ends that
    /// begins at `first`.
    static constexpr std::uint32_t GetNextRunEnd(std::uint32_t first)
    {
        return first == kInlineEntries ? first + 1 : first * 2;
    }

    /// A run of entries outside of the table; they follow it in memory.
    struct Block
    {
        Block* next;

        Entry* GetEntries()
        {
            return reinterpret_cast<Entry*>(this + 1);
        }
    };

    /// What few tables need.
    struct Extras
    {
        KeyIndex index; ///< filled when there are more than `kTaggedEntries` keys
        KeyPool keys;   ///< the pool of the other ones
        ElementArray elements;
        ListenerSet listeners;
    };

    Entry* Find(const char* key);
    Entry* FindShared(const Key& key);
    Entry* FindText(const char* text);
    // In line, each look-up in a short table would pay for it.
    TESSEL_NOINLINE Entry* FindIndexed(KeyText key);
    Entry* Add(const char* text);
    Entry* MakeRoom(std::uint32_t index);
    Entry* GetEntry(std::uint32_t index);
    Entry* GetBlockEntry(std::uint32_t index);
    Extras& NeedExtras();

    class HeldKey;
    class OldValue;

    template <class Value>
    int Write(const char* key, Entry::Kind kind, Value value);
    // In line, each write without listeners would pay for the space that the key is held in.
    template <class Value>
    TESSEL_NOINLINE int WriteValueHeard(const char* key, Entry::Kind kind, Value value);
    template <class PutAt>
    int WriteHeard(const char* key, const PutAt& putAt);
    template <class Value>
    int Put(Entry* found, const char* key, Entry::Kind kind, Value value);
    // Apart, so that a write over a plain value pays a test for it.
    template <class Value>
    TESSEL_NOINLINE void PutOver(Entry& entry, Entry::Kind kind, Value value);
    void PutText(Entry* found, const char* key, const char* text, std::size_t length);
    void StoreChild(Entry& entry, Table& child);
    bool IsBelow(Table& top);

    std::uint32_t GetLink() const
    {
        return link.load(std::memory_order_relaxed);
    }

    void SetLink(std::uint32_t value)
    {
        link.store(value, std::memory_order_relaxed);
    }

    std::atomic<std::uint32_t> generation{0};
    std::atomic<std::uint32_t> link{0}; ///< holders; while closing and when free, the next slot
    const std::uint32_t slot;
    std::uint32_t keyCount = 0;
    std::uint64_t tags = 0; ///< those of the first eight keys, a byte each
    Block* blocks = nullptr;
    Extras* extras = nullptr;  ///< null until needed
    const Key* name = nullptr; ///< null when closed
    alignas(Entry) unsigned char inlineEntries[kInlineEntries * sizeof(Entry)];
};

// In line: it is on the way of every read and write.
inline Entry* Table::GetEntry(std::uint32_t index)
{
    if (index < kInlineEntries)
    {
        return reinterpret_cast<Entry*>(inlineEntries) + index;
    }
    return GetBlockEntry(index);
}

inline Entry* Table::GetBlockEntry(std::uint32_t index)
{
    Block* block = blocks;
    std::uint32_t first = kInlineEntries;
    std::uint32_t end = GetNextRunEnd(first);
    while (index >= end)
    {
        block = block->next;
        first = end;
        end = GetNextRunEnd(end);
    }
    return block->GetEntries() + (index - first);
}

} // namespace Tessel
