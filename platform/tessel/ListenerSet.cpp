// VELL: data-driven hierarchical state machines.
// platform/tessel/ListenerSet.cpp: the listeners of a table.
#include "platform/tessel/ListenerSet.h"

#include "platform/tessel/Table.h"

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

namespace Tessel
{

namespace
{

/// As many records of a key are looked at one by one for the one to remove.
constexpr std::uint32_t kMostWithoutIndex = 32;

} // namespace

/// A call of listeners under way. It holds the record that comes next, and moves on when that one
/// is removed.
class ListenerSet::CallScope
{
public:
    CallScope(ListenerSet& called, const Table& owner, Record* first)
        : next(first),
          outer(called.calls),
          set(called),
          table(owner),
          generation(owner.GetGeneration())
    {
        set.calls = this;
    }

    ~CallScope()
    {
        if (IsTableOpen())
        {
            set.calls = outer;
        }
    }

    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    /// When this gives false, the set is gone. The table is a place that may be in use again.
    bool IsTableOpen() const
    {
        return table.GetGeneration() == generation;
    }

    Record* next;
    CallScope* const outer;

private:
    ListenerSet& set;
    const Table& table;
    std::uint32_t generation;
};

/// Finds the records of a key by what they hold. The host fills records in and tells nobody: each
/// is entered when it is first seen filled, and what is found is compared with what it holds now.
class ListenerSet::RecordIndex
{
public:
    /// Notes that `record` was appended.
    void NoteAppended(Record& record)
    {
        if (unseen == nullptr)
        {
            unseen = &record;
        }
    }

    /// Enters the records that were appended or filled in since. May throw `std::bad_alloc`; the
    /// index is of no use then.
    void Update()
    {
        std::vector<Record*> looked;
        looked.swap(unfilled);
        for (Record* record : looked)
        {
            Enter(*record);
        }
        for (; unseen != nullptr; unseen = unseen->next)
        {
            Enter(*unseen);
        }
    }

    /// Takes the first record that was entered with `listener`, and still holds it, out of the
    /// index. Null when there is none. May throw `std::bad_alloc`, as `Update`.
    Record* Take(const KVListener& listener)
    {
        for (;;)
        {
            const auto found = entries.lower_bound(Place{listener.object, listener.function, 0});
            if (found == entries.end() || std::get<0>(found->first) != listener.object ||
                std::get<1>(found->first) != listener.function)
            {
                return nullptr;
            }
            Record* record = found->second;
            entries.erase(found);
            if (IsSame(record->listener, listener))
            {
                return record;
            }
            Enter(*record);
        }
    }

private:
    using Function = decltype(KVListener::function);
    using Place = std::tuple<void*, Function, std::uint64_t>;

    /// Pointers into different objects have an order by `std::less` only.
    struct ComesBefore
    {
        bool operator()(const Place& left, const Place& right) const
        {
            if (std::get<0>(left) != std::get<0>(right))
            {
                return std::less<>()(std::get<0>(left), std::get<0>(right));
            }
            if (std::get<1>(left) != std::get<1>(right))
            {
                return std::less<>()(std::get<1>(left), std::get<1>(right));
            }
            return std::get<2>(left) < std::get<2>(right);
        }
    };

    void Enter(Record& record)
    {
        if (record.listener.function == nullptr)
        {
            unfilled.push_back(&record);
            return;
        }
        entries.emplace(Place{record.listener.object, record.listener.function, record.serial},
                        &record);
    }

    std::map<Place, Record*, ComesBefore> entries;
    std::vector<Record*> unfilled; ///< when they were last looked at
    Record* unseen = nullptr;      ///< this one and those behind it were never looked at
};

ListenerSet::~ListenerSet()
{
    Group** const all = GetBuckets();
    for (std::uint32_t i = 0; i < bucketCount; ++i)
    {
        while (all[i] != nullptr)
        {
            Free(std::exchange(all[i]->first, nullptr));
            DropGroup(&all[i]);
        }
    }
    Free(spare);
    if (bucketCount != 1)
    {
        delete[] buckets;
    }
}

KVListener* ListenerSet::Add(const KeyText& name)
{
    if (spare == nullptr)
    {
        spare = new Record{};
    }
    Group* found = *FindLink(name);
    Group& group = found != nullptr ? *found : AddGroup(name);
    Record* record = std::exchange(spare, spare->next);
    *record = Record{{}, nullptr, group.last, nextSerial};
    ++nextSerial;
    (group.last == nullptr ? group.first : group.last->next) = record;
    group.last = record;
    if (group.index != nullptr)
    {
        group.index->NoteAppended(*record);
    }
    return &record->listener;
}

void ListenerSet::Remove(const KeyText& name, const KVListener& listener)
{
    Group** link = FindLink(name);
    if (*link == nullptr)
    {
        return;
    }
    Group& group = **link;
    Record* record = Find(group, listener);
    if (record == nullptr)
    {
        return;
    }
    Drop(group, *record);
    if (group.first == nullptr)
    {
        DropGroup(link);
    }
}

bool ListenerSet::IsOnly(const char* name, const KVWriter& writer)
{
    // A quick no: while a tool listens, the writer asks after every write, and mostly its key is
    // the only one with listeners. A set with one group that is not `home` takes the way below.
    const bool hasOtherRecord = groupCount == 1 && home.first != home.last;
    const bool isTableHeard =
        writer.ofTable == nullptr ? isTableListenerGiven : isTableListenerShared;
    if (hasOtherRecord || isTableHeard || tableListener.function != writer.ofTable)
    {
        return false;
    }
    const Group* group = *FindLink(KeyText(name));
    return group != nullptr && group->first == group->last &&
           IsSame(group->first->listener, writer.ofKey);
}

void ListenerSet::Call(Table& table, const KeyText& name)
{
    const Group* group = *FindLink(name);
    CallScope scope(*this, table, group == nullptr ? nullptr : group->first);
    const KVTable handle = table.GetHandle();
    const std::uint64_t end = nextSerial;

    while (scope.next != nullptr && scope.next->serial < end)
    {
        const KVListener listener = scope.next->listener;
        scope.next = scope.next->next;
        if (listener.function == nullptr)
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

/// Gives the link to the group of `name`; it leads to null when there is none.
ListenerSet::Group** ListenerSet::FindLink(const KeyText& name)
{
    Group** link = bucketCount == 1 ? &single : &buckets[name.ComputeHash() & (bucketCount - 1)];
    while (*link != nullptr && (*link)->key->GetText() != name.text && !(*link)->key->Is(name))
    {
        link = &(*link)->next;
    }
    return link;
}

/// Adds the group of `name`, which is not there yet. May throw `std::bad_alloc`; nothing is lost
/// then.
ListenerSet::Group& ListenerSet::AddGroup(const KeyText& name)
{
    if (groupCount >= 4 * bucketCount)
    {
        GrowBuckets();
    }
    std::unique_ptr<Group> further;
    if (home.key != nullptr)
    {
        further.reset(new Group{});
    }
    const Key* key = Key::Acquire(name);
    Group* group = further != nullptr ? further.release() : &home;
    group->key = key;
    *FindLink(name) = group;
    ++groupCount;
    return *group;
}

/// Drops an empty group.
void ListenerSet::DropGroup(Group** link)
{
    Group* group = *link;
    *link = group->next;
    Key::Release(group->key);
    delete group->index;
    --groupCount;
    if (group == &home)
    {
        home = Group{};
    }
    else
    {
        delete group;
    }
}

void ListenerSet::GrowBuckets()
{
    const std::uint32_t newCount = bucketCount * 8;
    auto** const newBuckets = new Group* [newCount] {};
    Group** const oldBuckets = GetBuckets();
    for (std::uint32_t i = 0; i < bucketCount; ++i)
    {
        Group* group = oldBuckets[i];
        while (group != nullptr)
        {
            Group** bucket = &newBuckets[group->key->GetHash() & (newCount - 1)];
            Group* next = std::exchange(group->next, *bucket);
            *bucket = group;
            group = next;
        }
    }
    if (bucketCount != 1)
    {
        delete[] oldBuckets;
    }
    buckets = newBuckets;
    bucketCount = newCount;
}

/// Takes `record`, which is not in the index, out of `group`. Calls under way go on behind it.
void ListenerSet::Drop(Group& group, Record& record)
{
    for (CallScope* call = calls; call != nullptr; call = call->outer)
    {
        if (call->next == &record)
        {
            call->next = record.next;
        }
    }
    (record.previous == nullptr ? group.first : record.previous->next) = record.next;
    (record.next == nullptr ? group.last : record.next->previous) = record.previous;
    record.next = std::exchange(spare, &record);
}

/// Gives the first record of `group` with `listener`, which the index does not have any more.
ListenerSet::Record* ListenerSet::Find(Group& group, const KVListener& listener)
{
    if (group.index != nullptr)
    {
        return FindByIndex(group, listener);
    }
    std::uint32_t looked = 0;
    for (Record* record = group.first; record != nullptr; record = record->next)
    {
        if (IsSame(record->listener, listener))
        {
            return record;
        }
        if (++looked == kMostWithoutIndex)
        {
            return FindByIndex(group, listener);
        }
    }
    return nullptr;
}

ListenerSet::Record* ListenerSet::FindByIndex(Group& group, const KVListener& listener)
{
    try
    {
        if (group.index == nullptr)
        {
            group.index = new RecordIndex;
            group.index->NoteAppended(*group.first);
        }
        group.index->Update();
        if (Record* record = group.index->Take(listener))
        {
            return record;
        }
    }
    catch (const std::bad_alloc&)
    {
        delete std::exchange(group.index, nullptr);
    }
    // A record that was refilled, or no memory for the index.
    for (Record* record = group.first; record != nullptr; record = record->next)
    {
        if (IsSame(record->listener, listener))
        {
            delete std::exchange(group.index, nullptr);
            return record;
        }
    }
    return nullptr;
}

void ListenerSet::Free(Record* first)
{
    while (first != nullptr)
    {
        delete std::exchange(first, first->next);
    }
}

} // namespace Tessel
