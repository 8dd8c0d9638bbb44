// VELL: data-driven hierarchical state machines.
// parameters/ParameterFloatDef.cpp: values and input of float parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/Checks.h"
#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

namespace vell
{

ParameterFloatDef::ParameterFloatDef() : ParameterDef(DURMBaseLib::PARAM_Float)
{
}

ParameterFloatDef::~ParameterFloatDef() = default;

int ParameterFloatDef::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetFloat(kValueKey, *value, 1);
    }
    InitKVTableListener();
    return 1;
}

float ParameterFloatDef::GetDefaultValue()
{
    return defaultValue;
}

void ParameterFloatDef::SetDefaultValue(float newDefault)
{
    defaultValue = newDefault;
}

float ParameterFloatDef::GetValue()
{
    return *value;
}

void ParameterFloatDef::SetValue(float newValue)
{
    *value = newValue;
    if (!Slot::Write(*this, *value))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterFloatDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat(kValueKey, *value, 1);
                  });
    Slot::TryBind(*this, *value);
}

void* ParameterFloatDef::GetValuePtr()
{
    return value.Place();
}

void ParameterFloatDef::ResetValue()
{
    SetValue(defaultValue);
}

void ParameterFloatDef::PullValue()
{
    // Required: a text that a tool writes reads as 0, and the parameter takes that.
    SetValue(kvTable ? kvTable->GetFloat(kValueKey) : 0.0f);
}

int ParameterFloatDef::OnBroadcastEvent(int event, const void* record)
{
    ERROR_RETURN(record, 0);
    // Required: a float takes input of any binding.
    if (event == kEventInput)
    {
        SetValue(ReadRecord<float>(record, kScalarOffset));
    }
    else if (event == kEventValue)
    {
        SetValue(ReadRecord<float>(record, 0));
    }
    else if (event == kEventReset)
    {
        ResetValue();
    }
    // Required: 1 is returned even for an event that does nothing.
    return 1;
}

} // namespace vell
