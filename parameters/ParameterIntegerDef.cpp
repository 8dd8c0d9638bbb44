// VELL: data-driven hierarchical state machines.
// parameters/ParameterIntegerDef.cpp: values and input of integer parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

namespace vell
{

ParameterIntegerDef::ParameterIntegerDef() : ParameterDef(DURMBaseLib::PARAM_Integer)
{
}

ParameterIntegerDef::~ParameterIntegerDef() = default;

int ParameterIntegerDef::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetInt(kValueKey, *value, 1);
    }
    InitKVTableListener();
    return 1;
}

int ParameterIntegerDef::GetDefaultValue()
{
    return defaultValue;
}

void ParameterIntegerDef::SetDefaultValue(int newDefault)
{
    defaultValue = newDefault;
}

int ParameterIntegerDef::GetValue()
{
    return *value;
}

void ParameterIntegerDef::SetValue(int newValue)
{
    *value = newValue;
    if (!Slot::Write(*this, *value))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterIntegerDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetInt(kValueKey, *value, 1);
                  });
    Slot::TryBind(*this, *value);
}

void* ParameterIntegerDef::GetValuePtr()
{
    return value.Place();
}

void ParameterIntegerDef::ResetValue()
{
    SetValue(defaultValue);
}

void ParameterIntegerDef::PullValue()
{
    // Required: a text that a tool writes reads as 0, and the parameter takes that.
    SetValue(kvTable ? kvTable->GetInt(kValueKey) : 0);
}

// Required: no event gives a value; any event with the right binding sets the default.
int ParameterIntegerDef::OnBroadcastEvent(int, const void* record)
{
    if (record == nullptr || ReadBinding(record) != assign)
    {
        return 0;
    }
    SetValue(defaultValue);
    return 1;
}

} // namespace vell
