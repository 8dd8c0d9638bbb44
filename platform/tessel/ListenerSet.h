// VELL: data-driven hierarchical state machines.
// platform/tessel/ListenerSet.h: the listeners of a table.
#pragma once

#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include "platform/tessel/Key.h"

#include <cstdint>

namespace Tessel
{

class Table;

/// The listeners of a table: those of its keys, in the order in which they were taken, and the
/// table's own. A record that is removed is used again for a later listener.
///
/// Adding and calling cost the same however many listeners there are. So does removing one that is
/// there: behind a number of records, a key gets an index. Only one that is not there makes the set
/// look at all records of the key, because hosts may refill a record without a word.
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

    /// Gives the table's own record, and notes that it was asked for.
    KVListener* GetTableListener()
    {
        isTableListenerShared = isTableListenerGiven;
        isTableListenerGiven = true;
        return &tableListener;
    }

    /// Tells whether there is anyone to call, of whatever key.
    bool IsAnyone() const
    {
        return groupCount != 0 || tableListener.function != nullptr;
    }

    /// Tells whether nobody but `writer` listens to `name` and to the table, and nobody else has a
    /// record to fill in.
    bool IsOnly(const char* name, const KVWriter& writer);

    /// Notes that a slot is bound to a key of the table. It is noted here because only a table with
    /// listeners has bound slots.
    void NoteBound()
    {
        wasBound = true;
    }

    /// Tells whether a slot was ever bound to a key of the table.
    bool WasBound() const
    {
        return wasBound;
    }

    /// Calls the listeners of `name` that were there when the call began, then the table's own.
    /// Ends when `table` was closed by one of them: this set is gone then.
    void Call(Table& table, const KeyText& name);

private:
    static bool IsSame(const KVListener& left, const KVListener& right)
    {
        return left.object == right.object && left.function == right.function;
    }

    class CallScope;
    class RecordIndex;

    struct Record
    {
        KVListener listener; ///< first, so that its address is the record's
        Record* next;
        Record* previous;
        std::uint64_t serial; ///< grows from record to record
    };

    /// The records of one key, in their order; never empty but while it is made.
    struct Group
    {
        const Key* key; ///< null when the group is not in use
        Record* first;
        Record* last;
        RecordIndex* index; ///< owned; null until needed
        Group* next;        ///< in its bucket
    };

    Group** GetBuckets()
    {
        return bucketCount == 1 ? &single : buckets;
    }
    Group** FindLink(const KeyText& name);
    Group& AddGroup(const KeyText& name);
    void DropGroup(Group** link);
    void GrowBuckets();
    void Drop(Group& group, Record& record);
    static Record* Find(Group& group, const KVListener& listener);
    static Record* FindByIndex(Group& group, const KVListener& listener);
    static void Free(Record* first);

    KVListener tableListener{};
    Group home{}; ///< the first group; most tables have no further one
    /// Each is a list of groups.
    union
    {
        Group* single = nullptr; ///< the bucket of a set that has one
        Group** buckets;         ///< those of a set that has several; owned
    };
    Record* spare = nullptr;    ///< records to be used again
    CallScope* calls = nullptr; ///< those under way, the innermost first
    std::uint64_t nextSerial = 0;
    std::uint32_t bucketCount = 1; ///< a power of two
    std::uint32_t groupCount = 0;
    bool wasBound = false; ///< a slot was bound to a key
    bool isTableListenerGiven = false;
    bool isTableListenerShared = false; ///< it was given more than once
};

} // namespace Tessel
