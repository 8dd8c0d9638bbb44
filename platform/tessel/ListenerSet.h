// VELL: data-driven hierarchical state machines.
// platform/tessel/ListenerSet.h: the listeners of a table.
#pragma once

#include "platform/tessel/Key.h"

#include <tessel/Tessel.h>

#include <cstdint>
#include <memory>

namespace Tessel
{

class Table;

/// The listeners of a table: those of its keys, in the order in which they were taken, and the
/// table's own. A record that is removed is used again for a later listener.
class ListenerSet
{
public:
    ListenerSet() = default;
    ~ListenerSet();

    ListenerSet(const ListenerSet&) = delete;
    ListenerSet& operator=(const ListenerSet&) = delete;

    /// Gives a new, empty record for `name`. May throw `std::bad_alloc`; nothing is changed then.
    KVListener* Add(const KeyText& name);

    /// Removes the first record of `name` with the object and the function of `listener`.
    void Remove(const KeyText& name, const KVListener& listener);

    /// Gives the table's own record.
    KVListener* GetTableListener()
    {
        return &tableListener;
    }

    /// Tells whether there is anyone to call, of whatever key.
    bool IsAnyone() const
    {
        return recordCount != 0 || tableListener.function != nullptr;
    }

    /// Calls the listeners of `name` that were there when the call began, then the table's own.
    /// Ends when `table` was closed by one of them: this set is gone then.
    void Call(Table& table, const KeyText& name);

private:
    struct Record
    {
        KVListener listener; ///< first, so that its address is the record's
        Record* next;
        const Key* key;       ///< null when the record is not in use
        std::uint64_t serial; ///< grows from record to record
        bool removed;         ///< waits for the end of the calls under way
    };

    class CallScope;

    Record** GetBucket(const KeyText& name)
    {
        return bucketCount == 1 ? buckets : &buckets[name.ComputeHash() & (bucketCount - 1)];
    }

    void GrowBuckets();
    void Sweep();
    void Drop(Record** link);
    static void Append(Record** bucket, Record* record);
    static void Free(Record* first);

    KVListener tableListener{};
    Record* single = nullptr;   ///< the bucket of a set that has one
    Record** buckets = &single; ///< each a list in order; owned when not `single`
    Record* spare = nullptr;    ///< records to be used again
    std::uint64_t nextSerial = 0;
    std::uint32_t bucketCount = 1; ///< a power of two
    std::uint32_t recordCount = 0; ///< records in the buckets
    std::uint32_t callDepth = 0;   ///< calls under way, one within the other
    bool mustSweep = false;        ///< there are removed records in the buckets
};

} // namespace Tessel
