// VELL: data-driven hierarchical state machines.
// parameters/ParameterBoolDef.cpp: values and input of bool parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/Checks.h"
#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

namespace vell
{

ParameterBoolDef::ParameterBoolDef() : ParameterDef(DURMBaseLib::PARAM_Bool)
{
}

ParameterBoolDef::~ParameterBoolDef() = default;

int ParameterBoolDef::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetInt(kValueKey, *value ? 1 : 0, 1);
    }
    InitKVTableListener();
    return 1;
}

bool ParameterBoolDef::GetDefaultValue()
{
    return *defaultValue;
}

void ParameterBoolDef::SetDefaultValue(bool newDefault)
{
    *defaultValue = newDefault;
}

bool ParameterBoolDef::GetValue()
{
    return *value;
}

void ParameterBoolDef::SetValue(bool newValue)
{
    // Required: the other classes write an equal value to the tree again. This one does not.
    if (newValue == *value)
    {
        return;
    }
    *value = newValue;
    if (!Slot::Write(*this, *value ? 1 : 0))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterBoolDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetInt(kValueKey, *value ? 1 : 0, 1);
                  });
    Slot::TryBind(*this, *value ? 1 : 0);
}

void* ParameterBoolDef::GetValuePtr()
{
    return value.Place();
}

void ParameterBoolDef::ResetValue()
{
    SetValue(*defaultValue);
}

void ParameterBoolDef::PullValue()
{
    SetValue(kvTable && kvTable->GetInt(kValueKey) != 0);
}

int ParameterBoolDef::OnBroadcastEvent(int event, const void* record)
{
    ERROR_RETURN(record, 0);
    // Required: the switch event is taken whatever its binding.
    const bool isInput = event == kEventInput && ReadBinding(record) == assign;
    const bool isSwitch = event == kEventSwitch;
    if (isSwitch || (isInput && ReadRecord<int>(record, 0) == 1))
    {
        SetValue(ReadRecord<int>(record, kVectorOffset) != 0);
    }
    // Required: input of another sub-kind is accepted, although it was not taken.
    return isInput || isSwitch ? 1 : 0;
}

} // namespace vell
