// VELL: data-driven hierarchical state machines.
// platform/tessel/Tessel.cpp: the exported functions of the key/value table library.
#include <tessel/Tessel.h>

#include "platform/tessel/ClosedTable.h"
#include "platform/tessel/TableStore.h"

namespace Tessel
{

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
