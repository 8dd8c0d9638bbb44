// VELL: data-driven hierarchical state machines.
// platform/tessel/ListenerSet.cpp: the listeners of a table.
#include "platform/tessel/ListenerSet.h"

#include "platform/tessel/Table.h"

#include <utility>

namespace Tessel
{

/// Counts a call of listeners, also when one throws; the last one out drops the removed records.
class ListenerSet::CallScope
{
public:
    CallScope(ListenerSet& called, const Table& owner)
        : set(called), table(owner), generation(owner.GetGeneration())
    {
        ++set.callDepth;
    }

    ~CallScope()
    {
        if (IsTableOpen() && --set.callDepth == 0 && set.mustSweep)
        {
            set.Sweep();
        }
    }

    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    /// When this gives false, the set is gone. The table is a place that may be in use again.
    bool IsTableOpen() const
    {
        return table.GetGeneration() == generation;
    }

private:
    ListenerSet& set;
    const Table& table;
    std::uint32_t generation;
};

ListenerSet::~ListenerSet()
{
    for (std::uint32_t i = 0; i < bucketCount; ++i)
    {
        Free(buckets[i]);
    }
    Free(spare);
    if (buckets != &single)
    {
        delete[] buckets;
    }
}

KVListener* ListenerSet::Add(const KeyText& name)
{
    if (callDepth == 0 && recordCount >= 4 * bucketCount)
    {
        GrowBuckets();
    }
    if (spare == nullptr)
    {
        spare = new Record{};
    }
    const Key* key = Key::Acquire(name);
    Record* record = std::exchange(spare, spare->next);
    *record = Record{{}, nullptr, key, nextSerial, false};
    ++nextSerial;
    ++recordCount;
    Append(GetBucket(name), record);
    return &record->listener;
}

void ListenerSet::Remove(const KeyText& name, const KVListener& listener)
{
    for (Record** link = GetBucket(name); *link != nullptr; link = &(*link)->next)
    {
        Record* record = *link;
        if (record->removed || record->listener.object != listener.object ||
            record->listener.function != listener.function || !record->key->Is(name))
        {
            continue;
        }
        if (callDepth == 0)
        {
            Drop(link);
            return;
        }
        // A call under way may stand on this record: it goes when the last one has ended.
        record->removed = true;
        mustSweep = true;
        return;
    }
}

void ListenerSet::Call(Table& table, const KeyText& name)
{
    const CallScope scope(*this, table);
    const KVTable handle = table.GetHandle();
    const std::uint64_t end = nextSerial;

    for (Record* record = *GetBucket(name); record != nullptr; record = record->next)
    {
        const KVListener listener = record->listener;
        if (record->serial >= end || record->removed || listener.function == nullptr ||
            !record->key->Is(name))
        {
            continue;
        }
        listener.function(listener.object, opResult_ValueChanged, handle, name.text);
        if (!scope.IsTableOpen())
        {
            return;
        }
    }
    const KVListener own = tableListener;
    if (own.function != nullptr)
    {
        own.function(own.object, opResult_ValueChanged, handle, name.text);
    }
}

void ListenerSet::GrowBuckets()
{
    const std::uint32_t newCount = bucketCount * 8;
    Record** oldBuckets = std::exchange(
        buckets, new Record* [newCount] {});
    const std::uint32_t oldCount = std::exchange(bucketCount, newCount);
    for (std::uint32_t i = 0; i < oldCount; ++i)
    {
        Record* record = oldBuckets[i];
        while (record != nullptr)
        {
            Record* next = std::exchange(record->next, nullptr);
            Append(&buckets[record->key->GetHash() & (newCount - 1)], record);
            record = next;
        }
    }
    single = nullptr;
    if (oldBuckets != &single)
    {
        delete[] oldBuckets;
    }
}

void ListenerSet::Sweep()
{
    for (std::uint32_t i = 0; i < bucketCount; ++i)
    {
        Record** link = &buckets[i];
        while (*link != nullptr)
        {
            if ((*link)->removed)
            {
                Drop(link);
            }
            else
            {
                link = &(*link)->next;
            }
        }
    }
    mustSweep = false;
}

void ListenerSet::Drop(Record** link)
{
    Record* record = *link;
    *link = record->next;
    Key::Release(std::exchange(record->key, nullptr));
    record->next = std::exchange(spare, record);
    --recordCount;
}

void ListenerSet::Append(Record** bucket, Record* record)
{
    while (*bucket != nullptr)
    {
        bucket = &(*bucket)->next;
    }
    *bucket = record;
}

void ListenerSet::Free(Record* first)
{
    while (first != nullptr)
    {
        Record* record = std::exchange(first, first->next);
        Key::Release(record->key);
        delete record;
    }
}

} // namespace Tessel
