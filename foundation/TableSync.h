// VELL: data-driven hierarchical state machines.
// foundation/TableSync.h: how a value and its key in a table are kept from echoing each other.
#pragma once

#include <tessel/Tessel.h>

namespace vell
{

constexpr int kSyncIdle = 0;
constexpr int kSyncWriting = 2;

/// Marks an object as writing its own table for as long as it lives.
class SyncGuard
{
public:
    explicit SyncGuard(int& objectState) : state(objectState)
    {
        state = kSyncWriting;
    }
    ~SyncGuard()
    {
        state = kSyncIdle;
    }
    SyncGuard(const SyncGuard&) = delete;
    SyncGuard& operator=(const SyncGuard&) = delete;

private:
    int& state;
};

/// Calls `write(table)` unless the object is writing already, which is when the write comes back
/// through its own listener.
template <class Write>
void WriteOwnTable(int& state, Tessel::KVTable table, Write write)
{
    if (state != kSyncIdle)
    {
        return;
    }
    SyncGuard guard(state);
    if (table)
    {
        write(table);
    }
}

/// Holds the lock of a table that asks for one.
class TableLock
{
public:
    explicit TableLock(Tessel::KVTable lockedTable) : table(lockedTable)
    {
        if (table->NeedsLock())
        {
            table->Lock();
        }
    }
    ~TableLock()
    {
        if (table->NeedsLock())
        {
            table->Unlock();
        }
    }
    TableLock(const TableLock&) = delete;
    TableLock& operator=(const TableLock&) = delete;

private:
    Tessel::KVTable table;
};

} // namespace vell
