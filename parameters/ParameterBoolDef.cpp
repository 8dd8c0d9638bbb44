// VELL: data-driven hierarchical state machines.
// parameters/ParameterBoolDef.cpp: values and input of bool parameters.
#include <vell/Parameters.h>

#include "foundation/Checks.h"
#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"

#include <durm/DURMBaseLib.h>

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
    return defaultValue;
}

void ParameterBoolDef::SetDefaultValue(bool newDefault)
{
    defaultValue = newDefault;
}

bool ParameterBoolDef::GetValue()
{
    return *value;
}

void ParameterBoolDef::SetValue(bool newValue)
{
    if (newValue == *value)
    {
        return;
    }
    *value = newValue;
    WriteValue();
}

void ParameterBoolDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetInt(kValueKey, *value ? 1 : 0, 1);
                  });
}

void* ParameterBoolDef::GetValuePtr()
{
    return value.Place();
}

void ParameterBoolDef::ResetValue()
{
    SetValue(defaultValue);
}

void ParameterBoolDef::PullValue()
{
    SetValue(kvTable && kvTable->GetInt(kValueKey) != 0);
}

int ParameterBoolDef::OnBroadcastEvent(int event, const void* record)
{
    int result = 0;
    do
    {
        ERROR_BREAK(record);
        if (event == kEventInput)
        {
            if (ReadBinding(record) != assign)
            {
                break;
            }
            if (ReadRecord<int>(record, 0) == 1)
            {
                SetValue(ReadRecord<int>(record, kVectorOffset) != 0);
            }
            result = 1;
        }
        else if (event == kEventSwitch)
        {
            // Required: this event is taken without a look at the binding.
            SetValue(ReadRecord<int>(record, kVectorOffset) != 0);
            result = 1;
        }
    } while (false);
    return result;
}

} // namespace vell
