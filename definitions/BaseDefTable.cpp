// VELL: data-driven hierarchical state machines.
// definitions/BaseDefTable.cpp: a definition's key/value table.
#include <vell/BaseDef.h>

#include "foundation/TreeKeys.h"

namespace vell
{

int BaseDef::CreateKVTable() const
{
    tableState = TableState::Open;
    kvTable = Tessel::CreateTable("baseDef");
    if (kvTable)
    {
        kvTable->AddTable(kAttribsKey, 1);
    }
    return 1;
}

int BaseDef::DestroyKVTable()
{
    tableState = TableState::Closed;
    if (kvTable)
    {
        Tessel::CloseTable(kvTable);
    }
    return 1;
}

int BaseDef::InitKVTable()
{
    if (!kvTable)
    {
        CreateKVTable();
    }
    if (kvTable)
    {
        kvTable->SetUInt(kIdKey, id, 1);
        if (Tessel::KVTable attribTable = kvTable->GetTable(kAttribsKey))
        {
            attribTable->SetUInt(kIdKey, id, 1);
        }
    }
    return 1;
}

int BaseDef::UninitKVTable()
{
    return 1;
}

int BaseDef::TabSetName()
{
    Tessel::KVTable table = GetKVTable();
    return table ? table->SetString(kNameKey, name, 1) : 0;
}

int BaseDef::TabSetDynamic(int dynamic)
{
    if (Tessel::KVTable table = GetKVTable())
    {
        table->SetInt(kDynamicKey, dynamic, 1);
        if (dynamic != 0)
        {
            TabSetName();
        }
    }
    return 1;
}

Tessel::KVTable BaseDef::GetKVTable() const
{
    if (tableState == TableState::Due)
    {
        CreateKVTable();
    }
    return kvTable;
}

} // namespace vell
