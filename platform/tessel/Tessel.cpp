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

int FindSlot(KVSlot* slot, KVTable table, const char* key)
{
    Table* found = TableStore::Find(table);
    const bool isHeard = found != nullptr && found->HasListeners();
    slot->table = table;
    slot->place = found;
    slot->value = isHeard ? found->FindValue(key) : nullptr;
    return slot->value != nullptr ? 1 : 0;
}

/// The memory of a table is never freed, so a closed one can be asked. What `FindSlot` saw of an
/// open one is still there: the entry and the set of listeners.
template <class Value>
int SetAt(const KVSlot& slot, Entry::Kind kind, const Value& value)
{
    if (slot.value == nullptr)
    {
        return 0;
    }
    const Table& table = *static_cast<const Table*>(slot.place);
    if (!table.IsOpenAs(slot.table))
    {
        return 0;
    }
    Entry& entry = *static_cast<Entry*>(slot.value);
    const ListenerSet& listeners = table.GetListeners();
    if (!entry.Is(listeners.GetFirstKey(), kind) || !listeners.IsOnly(slot.own, slot.ownOfTable))
    {
        return 0;
    }
    entry.Overwrite(value);
    return 1;
}

int SetIntAt(const KVSlot* slot, int value)
{
    return SetAt(*slot, Entry::KindInt, value);
}

int SetFloatAt(const KVSlot* slot, float value)
{
    return SetAt(*slot, Entry::KindFloat, value);
}

int SetFloat2At(const KVSlot* slot, const Float2* value)
{
    return SetAt(*slot, Entry::KindFloat2, *value);
}

int SetFloat3At(const KVSlot* slot, const Float3* value)
{
    return SetAt(*slot, Entry::KindFloat3, *value);
}

int SetFloat4At(const KVSlot* slot, const Float4* value)
{
    return SetAt(*slot, Entry::KindFloat4, *value);
}

constexpr SlotOperations kSlotOperations{FindSlot,    SetIntAt,    SetFloatAt,
                                         SetFloat2At, SetFloat3At, SetFloat4At};

} // namespace

ITable* ResolveTable(KVTable table)
{
    Table* found = TableStore::Find(table);
    return found == nullptr ? GetClosedTable() : found;
}

KVTable CreateTable(const char* name)
{
    const Table* table = TableStore::OpenForCreator(KeyText(name == nullptr ? "" : name));
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
