// VELL: data-driven hierarchical state machines.
// platform/tessel/ListenerSet.h: the listeners of a table.
#pragma once

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

    /// Gives the table's own record.
    KVListener* GetTableListener()
    {
        return &tableListener;
    }

    /// Tells whether there is anyone to call, of whatever key.
    bool IsAnyone() const
    {
        return groupCount != 0 || tableListener.function != nullptr;
    }

    /// Gives the key of the first group when it has one record, otherwise null.
    const Key* GetOnlyKey() const
    {
        return home.first != nullptr && home.first->next == nullptr ? home.key : nullptr;
    }

    /// Gives the value of that key: null when it is not known, `GetNoValue` when there are several
    /// records.
    const KVValue* GetOnlyValue() const
    {
        return home.onlyValue;
    }

    /// Gives what is no value.
    const KVValue* GetNoValue() const
    {
        return reinterpret_cast<const KVValue*>(this);
    }

    /// Notes the value of that key, which may be null; kept until a record comes or goes.
    void SetOnlyValue(const KVValue* value)
    {
        home.onlyValue = value;
    }

    /// Tells whether that record, which must be there, has `own`, and the table's own record has
    /// the function `ofTable`.
    bool IsOnly(const KVListener& own, decltype(KVListener::function) ofTable) const
    {
        return IsSame(home.first->listener, own) && tableListener.function == ofTable;
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
        const Key* key;           ///< null when the group is not in use
        const KVValue* onlyValue; ///< see `GetOnlyValue`
        Record* first;
        Record* last;
        RecordIndex* index; ///< owned; null until needed
        Group* next;        ///< in its bucket
    };

    Group** FindLink(const KeyText& name);
    Group& AddGroup(const KeyText& name);
    void DropGroup(Group** link);
    void GrowBuckets();
    void Drop(Group& group, Record& record);
    void ForgetValue(Group& group);
    static Record* Find(Group& group, const KVListener& listener);
    static Record* FindByIndex(Group& group, const KVListener& listener);
    static void Free(Record* first);

    KVListener tableListener{};
    Group home{};               ///< the first group; most tables have no further one
    Group* single = nullptr;    ///< the bucket of a set that has one
    Group** buckets = &single;  ///< each a list of groups; owned when not `single`
    Record* spare = nullptr;    ///< records to be used again
    CallScope* calls = nullptr; ///< those under way, the innermost first
    std::uint64_t nextSerial = 0;
    std::uint32_t bucketCount = 1; ///< a power of two
    std::uint32_t groupCount = 0;
};

} // namespace Tessel
