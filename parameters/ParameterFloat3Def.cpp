// VELL: data-driven hierarchical state machines.
// parameters/ParameterFloat3Def.cpp: values and input of three-float parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

#include <cmath>

namespace vell
{

ParameterFloat3Def::ParameterFloat3Def() : ParameterDef(DURMBaseLib::PARAM_Float3)
{
}

ParameterFloat3Def::~ParameterFloat3Def() = default;

int ParameterFloat3Def::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetFloat3(kValueKey, &value, 1);
    }
    InitKVTableListener();
    return 1;
}

Tessel::Float3 ParameterFloat3Def::GetDefaultValue()
{
    return defaultValue;
}

void ParameterFloat3Def::SetDefaultValue(const Tessel::Float3& newDefault)
{
    defaultValue = newDefault;
}

Tessel::Float3 ParameterFloat3Def::GetValue()
{
    return value;
}

void ParameterFloat3Def::SetValue(const Tessel::Float3& newValue)
{
    value = newValue;
    magnitude = std::sqrt(value.x * value.x + value.y * value.y + value.z * value.z);
    if (!Slot::Write(*this, value))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterFloat3Def::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat3(kValueKey, &value, 1);
                  });
    Slot::TryBind(*this, value);
}

void* ParameterFloat3Def::GetValuePtr()
{
    return &value;
}

void ParameterFloat3Def::ResetValue()
{
    SetValue(defaultValue);
}

float ParameterFloat3Def::GetMagnitude()
{
    return magnitude;
}

Tessel::Float3 ParameterFloat3Def::GetVector()
{
    return GetValue();
}

void ParameterFloat3Def::SetVector(const Tessel::Float3& newValue)
{
    SetValue(newValue);
}

void ParameterFloat3Def::PullValue()
{
    Tessel::Float3 pulled{};
    if (kvTable && kvTable->GetFloat3(kValueKey, &pulled))
    {
        SetValue(pulled);
    }
}

int ParameterFloat3Def::OnBroadcastEvent(int event, const void* record)
{
    return TakeVectorEvent<Tessel::Float3>(*this, event, record, kVectorOffset);
}

} // namespace vell
