// VELL: data-driven hierarchical state machines.
// parameters/ParameterAnalogDef.cpp: values and input of two-float parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

#include <cmath>

namespace vell
{

ParameterAnalogDef::ParameterAnalogDef() : ParameterDef(DURMBaseLib::PARAM_Float2)
{
}

ParameterAnalogDef::~ParameterAnalogDef() = default;

int ParameterAnalogDef::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetFloat2(kValueKey, &value, 1);
    }
    InitKVTableListener();
    return 1;
}

Tessel::Float2 ParameterAnalogDef::GetDefaultValue()
{
    return defaultValue;
}

void ParameterAnalogDef::SetDefaultValue(const Tessel::Float2& newDefault)
{
    // Required: the magnitude stays as it was.
    defaultValue = newDefault;
}

Tessel::Float2 ParameterAnalogDef::GetValue()
{
    return value;
}

void ParameterAnalogDef::SetValue(const Tessel::Float2& newValue)
{
    value = newValue;
    magnitude = std::sqrt(value.x * value.x + value.y * value.y);
    if (!Slot::Write(*this, value))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterAnalogDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat2(kValueKey, &value, 1);
                  });
    Slot::TryBind(*this, value);
}

void* ParameterAnalogDef::GetValuePtr()
{
    return &value;
}

void ParameterAnalogDef::ResetValue()
{
    SetValue(defaultValue);
}

float ParameterAnalogDef::GetMagnitude()
{
    return magnitude;
}

Tessel::Float2 ParameterAnalogDef::GetVector()
{
    return GetValue();
}

void ParameterAnalogDef::SetVector(const Tessel::Float2& newValue)
{
    SetValue(newValue);
}

void ParameterAnalogDef::PullValue()
{
    Tessel::Float2 pulled{};
    if (kvTable && kvTable->GetFloat2(kValueKey, &pulled))
    {
        SetValue(pulled);
    }
}

int ParameterAnalogDef::OnBroadcastEvent(int event, const void* record)
{
    return TakeVectorEvent<Tessel::Float2>(*this, event, record, kScalarOffset);
}

} // namespace vell
