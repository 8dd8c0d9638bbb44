// VELL: data-driven hierarchical state machines.
// parameters/ParameterDef.cpp: what all parameters share.
#include <durm/DURMBaseLib.h>
#include <vell/ParameterDef.h>

#include "definitions/BaseDefInternals.h"
#include "foundation/TableSync.h"
#include "foundation/TreeKeys.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"
#include "parameters/ParameterTable.h"

namespace vell
{
namespace
{

int Forward(void* parameter, Tessel::opResult result, Tessel::KVTable table, const char* key)
{
    return static_cast<ParameterDef*>(parameter)->OnParamValueModified(result, table, key);
}

/// The lock is held for this test alone.
bool HasValueKey(Tessel::KVTable table)
{
    TableLock lock(table);
    return table->FindValue(kValueKey) != nullptr;
}

} // namespace

ParameterDef::ParameterDef(int newType) : paramType(newType)
{
    type = DefTypeParameter;
    flags |= DefTypesParameter;
}

ParameterDef& ParameterDef::operator=(const ParameterDef& other)
{
    if (kvTable != other.GetKVTable())
    {
        listening = other.listening; // it hears of its old table no more
    }
    BaseDef::operator=(other);
    IBroadcastListener::operator=(other);
    syncState = other.syncState;
    paramType = other.paramType;
    assign = other.assign;
    assignClass = other.assignClass;
    resetEachFrame = other.resetEachFrame;
    if (slot.pointer != nullptr)
    {
        slot.pointer->NoteAssigned();
    }
    return *this;
}

ParameterDef::Slot::~Slot()
{
    slotOperations.release(&shown);
}

void ParameterDef::Slot::Follow(ParameterDef& parameter, ParameterTable& newOwner)
{
    owner = &newOwner;
    parameter.slot.pointer = this;
    Internals::Follow(parameter, &revision);
}

void ParameterDef::Slot::NoteAssigned()
{
    owner->CollectResetting();
}

void ParameterDef::Slot::Bind(ParameterDef& parameter, Tessel::ValueType type)
{
    const Tessel::KVWriter writer{{&parameter, Forward}, ParameterTable::HearOfTable};
    boundAt = revision.number;
    slotOperations.bind(&shown, parameter.kvTable, kValueKey, type, &writer);
}

void ParameterDef::Uninit()
{
    BaseDef::Uninit();
    listening.Stop();
}

int ParameterDef::UninitKVTable()
{
    UnInitKVTableListener();
    return 1;
}

int ParameterDef::GetParamType()
{
    return paramType;
}

void ParameterDef::SetParamType(int newType)
{
    paramType = newType;
}

int ParameterDef::GetAssign()
{
    return assign;
}

void ParameterDef::SetAssign(int newAssign)
{
    assign = newAssign;
}

int ParameterDef::GetAssignClass()
{
    return assignClass;
}

void ParameterDef::SetAssignClass(int newClass)
{
    assignClass = newClass;
}

int ParameterDef::GetSyncState()
{
    return syncState;
}

void ParameterDef::SetSyncState(int newState)
{
    syncState = newState;
}

bool ParameterDef::IsResetEachFrame() const
{
    return resetEachFrame;
}

void ParameterDef::InitTypeKey()
{
    BaseDef::InitKVTable();
    if (kvTable)
    {
        const auto number = static_cast<DURMBaseLib::__ePARAMTYPE__>(GetParamType());
        kvTable->SetString(kTypeKey, DURMBaseLib::GetParameterName(number), 1);
    }
}

int ParameterDef::InitKVTableListener()
{
    if (!kvTable)
    {
        return 0;
    }
    if (!HasValueKey(kvTable))
    {
        return 0;
    }
    listening.StopElsewhere(kvTable);
    TableLock lock(kvTable);
    if (Tessel::KVListener* listener = kvTable->GetValueListener(kValueKey))
    {
        listening.Fill(kvTable, listener, Tessel::KVListener{this, Forward});
    }
    return 1;
}

int ParameterDef::UnInitKVTableListener()
{
    if (kvTable && HasValueKey(kvTable))
    {
        const Tessel::KVListener listener{this, Forward};
        {
            TableLock lock(kvTable);
            kvTable->RemoveValueListener(kValueKey, &listener);
        }
        listening.StopAfter(kvTable);
    }
    return 1;
}

int ParameterDef::OnParamValueModified(Tessel::opResult result, Tessel::KVTable, const char*)
{
    if (syncState != kSyncWriting && result == Tessel::opResult_ValueChanged)
    {
        PullValue();
    }
    return 1;
}

} // namespace vell
