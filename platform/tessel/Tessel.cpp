// VELL: data-driven hierarchical state machines.
// platform/tessel/Tessel.cpp: the exported functions of the key/value table library.
#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include "platform/tessel/ClosedTable.h"
#include "platform/tessel/TableStore.h"

namespace Tessel
{
namespace
{

void ReleaseSlot(KVSlot* slot)
{
    if (slot->value != nullptr)
    {
        static_cast<Entry*>(slot->value)->MoveFromSlot();
    }
}

int BindSlot(KVSlot* slot, KVTable table, const char* key, ValueType type, const KVWriter* writer)
{
    ReleaseSlot(slot);
    Table* found = TableStore::Find(table);
    return found != nullptr && found->Bind(*slot, key, type, *writer) ? 1 : 0;
}

// What a branch was found by: the parent, the entry of its key, and the table.
enum BranchPlace
{
    PlaceOfParent,
    PlaceOfEntry,
    PlaceOfTable
};

int FindBranch(KVBranch* branch, KVTable parent, const char* key)
{
    Table* found = TableStore::Find(parent);
    Entry* entry = found == nullptr ? nullptr : static_cast<Entry*>(found->FindValue(key));
    Table* table = entry == nullptr ? nullptr : TableStore::Find(entry->GetStoredTable());
    branch->parent = parent;
    branch->table = table == nullptr ? KVTable() : table->GetHandle();
    branch->places[PlaceOfParent] = found;
    branch->places[PlaceOfEntry] = entry;
    branch->places[PlaceOfTable] = table;
    return table == nullptr ? 0 : 1;
}

/// Tells whether the table of `branch` is what the parent's key holds now. The memory of a table is
/// never freed, so a closed one can be asked too.
bool IsThere(const KVBranch& branch)
{
    if (!branch.table)
    {
        return false;
    }
    const Table& parent = *static_cast<const Table*>(branch.places[PlaceOfParent]);
    const Entry& entry = *static_cast<const Entry*>(branch.places[PlaceOfEntry]);
    const Table& table = *static_cast<const Table*>(branch.places[PlaceOfTable]);
    return parent.IsOpenAs(branch.parent) && entry.IsTable(branch.table) &&
           table.IsOpenAs(branch.table);
}

/// Gives the open table that the key of `value`, one of the branch's table, holds now, or null.
Table* GetTableBelow(const KVBranch& branch, const KVValue* value)
{
    return IsThere(branch) ? TableStore::Find(static_cast<const Entry*>(value)->GetStoredTable())
                           : nullptr;
}

int SetUIntsAt(const KVBranch* branch, KVValue* const* values, const unsigned* numbers,
               unsigned count)
{
    if (!IsThere(*branch) || static_cast<const Table*>(branch->places[PlaceOfTable])->IsHeard())
    {
        return 0;
    }
    for (unsigned i = 0; i < count; ++i)
    {
        if (!static_cast<const Entry*>(values[i])->HasUInt())
        {
            return 0;
        }
    }
    for (unsigned i = 0; i < count; ++i)
    {
        static_cast<Entry*>(values[i])->ReplaceUInt(numbers[i]);
    }
    return 1;
}

int PushUIntAt(const KVBranch* branch, const KVValue* value, unsigned number)
{
    Table* table = GetTableBelow(*branch, value);
    return table == nullptr ? 0 : table->PushUInt(number, 1);
}

int RemoveLastAt(const KVBranch* branch, const KVValue* value)
{
    Table* table = GetTableBelow(*branch, value);
    return table != nullptr && table->RemoveLast() ? 1 : 0;
}

constexpr SlotOperations kSlotOperations{BindSlot,   ReleaseSlot, FindBranch,
                                         SetUIntsAt, PushUIntAt,  RemoveLastAt};

} // namespace

ITable* ResolveTable(KVTable table)
{
    Table* found = TableStore::Find(table);
    return found == nullptr ? GetClosedTable() : found;
}

KVTable CreateTable(const char* name)
{
    const Table* table = TableStore::OpenForCreator(name == nullptr ? "" : name);
    return table == nullptr ? KVTable() : table->GetHandle();
}

void CloseTable(KVTable table)
{
    if (Table* found = TableStore::Find(table))
    {
        TableStore::Close(*found);
    }
}

const char* GetTableName(KVTable table)
{
    const Table* found = TableStore::Find(table);
    return found == nullptr ? nullptr : found->GetName();
}

unsigned GetOpenTableCount()
{
    return TableStore::GetOpenCount();
}

} // namespace Tessel

// Here, beside functions that every program needs: the linker would not take an object out of a
// static library for the sake of a weak symbol.
const Tessel::SlotOperations* TesselGetSlotOperations()
{
    return &Tessel::kSlotOperations;
}
