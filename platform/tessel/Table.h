// VELL: data-driven hierarchical state machines.
// platform/tessel/Table.h: a table of keys and values.
#pragma once

#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include "platform/tessel/ElementArray.h"
#include "platform/tessel/Entry.h"
#include "platform/tessel/ListenerSet.h"
#include "platform/tessel/OwnKeys.h"
#include "platform/tessel/Shape.h"
#include "platform/tessel/TableHandle.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#if defined(__GNUC__)
#define TESSEL_NOINLINE __attribute__((noinline))
#else
#define TESSEL_NOINLINE
#endif

namespace Tessel
{

/// A table, and the slot that it is in: made once, opened and closed many times. Its name and keys
/// are in its shape, which it shares with the tables that were made the same way; in the table are
/// the values only. Behind the table follow as many entries as `room` says, which is how many the
/// last table of the name got: so most tables need no memory of their own, and three keys take 80
/// bytes in all.
class Table final : public ITable
{
public:
    /// The most entries that follow a table.
    static constexpr std::uint32_t kMaxRoom = Shape::kMaxKeys;

    Table(std::uint32_t ownSlot, std::uint32_t ownRoom)
        : slot(ownSlot), room(static_cast<std::uint8_t>(ownRoom))
    {
    }

    /// Gives the bytes of a table with the entries that follow it.
    static constexpr std::size_t GetSize(std::uint32_t room)
    {
        return sizeof(Table) + room * sizeof(Entry);
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
        return more != nullptr && more->listeners != nullptr;
    }

    /// Tells whether there is anyone to call, of whatever key.
    bool IsHeard() const
    {
        return HasListeners() && more->listeners->IsAnyone();
    }

    /// Removes the last element of the array. False when it is empty.
    bool RemoveLast()
    {
        return HasElements() && more->elements->RemoveLast();
    }

    /// Binds `target` to `key`, or returns false; see `SlotOperations`.
    bool Bind(KVSlot& target, const char* key, ValueType type, const KVWriter& writer);

    const char* GetName() const
    {
        const Key* shared = Shape::Get(shape).GetName();
        return shared != nullptr ? shared->GetText() : more->name->GetText();
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

    // `link` of an open table: who holds it, and whether it may hold others.
    static constexpr std::uint32_t kHeldByCreator = 1;
    static constexpr std::uint32_t kMayHaveChildren = 2;
    static constexpr std::uint32_t kOneParent = 4; ///< the count of parents is above the bits
    static constexpr std::uint32_t kHolders = ~kMayHaveChildren;

    /// The entries that do not follow the table are in blocks of 1, 2 and 4 entries: gives where
    /// the run of entries ends that begins at `first`.
    std::uint32_t GetNextRunEnd(std::uint32_t first) const
    {
        return std::min(2 * first - room + 1, kMaxRoom);
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
    struct More
    {
        Block* blocks = nullptr;
        std::unique_ptr<OwnKeys> keys; ///< where the table has no shape
        std::unique_ptr<ElementArray> elements;
        std::unique_ptr<ListenerSet> listeners;
        const Key* name = nullptr; ///< where the shape has none
    };

    /// What was found of a key.
    struct Found
    {
        Entry* entry;      ///< null when it is not there
        const Key* shared; ///< null when it is not known, or the key is not shared
    };

    Found Look(const char* key);
    Entry* Find(const char* key);
    Entry* FindShared(const Key& key);
    Entry* FindText(const char* text);
    // In line, each look-up in a table with a shape would pay for it.
    template <class AnyKey>
    TESSEL_NOINLINE Entry* FindOwn(const AnyKey& key);
    Entry& NeedEntry(const Found& found, const char* text);
    Entry* Add(const Found& found, const char* text);
    Entry* AddOwn(const KeyText& name);
    void LeaveShape();
    Entry* MakeRoom(std::uint32_t index);
    Entry* MakeBlockRoom(std::uint32_t index);
    Entry* GetEntry(std::uint32_t index);
    TESSEL_NOINLINE Entry* GetFurtherEntry(std::uint32_t index);
    std::uint32_t CountKeys() const;
    More& NeedMore();
    TESSEL_NOINLINE ElementArray& AddElements();
    ListenerSet& NeedListeners();

    class HeldKey;

    template <class Value>
    int Write(const char* key, Entry::Kind kind, Value value);
    // In line, each write without listeners would pay for the space that the key is held in.
    template <class Value>
    TESSEL_NOINLINE int WriteValueHeard(const char* key, Entry::Kind kind, Value value);
    template <class PutAt>
    int WriteHeard(const char* key, const PutAt& putAt);
    template <class Value>
    int Put(const Found& found, const char* key, Entry::Kind kind, Value value);
    // Out of line, so that a write over a plain value pays only for the test.
    template <class Value>
    TESSEL_NOINLINE void PutOver(Entry& entry, Entry::Kind kind, Value value);
    template <class Floats>
    int PutFloats(const Found& found, const char* key, Entry::Kind kind, const Floats& floats);
    void PutText(const Found& found, const char* key, const char* text, std::size_t length);
    void StoreChild(Entry& entry, Table& child);

    bool HasElements() const
    {
        return more != nullptr && more->elements != nullptr;
    }

    bool MayHaveBoundKeys() const
    {
        return HasListeners() && more->listeners->WasBound();
    }

    void Unbind(const char* key);
    void UnbindAll();
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
    std::uint16_t shape = Shape::kUnnamed; ///< `kNone`: the keys are in `more`
    const std::uint8_t room;               ///< the entries that follow the table
    More* more = nullptr;                  ///< null until needed
};

// In line: it is on the way of every read and write.
inline Entry* Table::GetEntry(std::uint32_t index)
{
    return index < room ? reinterpret_cast<Entry*>(this + 1) + index : GetFurtherEntry(index);
}

inline std::uint32_t Table::CountKeys() const
{
    return shape != Shape::kNone ? Shape::Get(shape).GetKeyCount() : more->keys->GetKeyCount();
}

} // namespace Tessel
