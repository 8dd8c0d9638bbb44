// VELL: data-driven hierarchical state machines.
// parameters/ParameterFloat4Def.cpp: values and input of four-float parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"
#include "parameters/ParameterSlot.h"

namespace vell
{

ParameterFloat4Def::ParameterFloat4Def() : ParameterDef(DURMBaseLib::PARAM_Float4)
{
}

ParameterFloat4Def::~ParameterFloat4Def() = default;

int ParameterFloat4Def::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetFloat4(kValueKey, &value, 1);
    }
    InitKVTableListener();
    return 1;
}

Tessel::Float4 ParameterFloat4Def::GetDefaultValue()
{
    return defaultValue;
}

void ParameterFloat4Def::SetDefaultValue(const Tessel::Float4& newDefault)
{
    defaultValue = newDefault;
}

Tessel::Float4 ParameterFloat4Def::GetValue()
{
    return value;
}

void ParameterFloat4Def::SetValue(const Tessel::Float4& newValue)
{
    value = newValue;
    if (!Slot::Write(*this, value))
    {
        WriteValue();
    }
}

VELL_NOINLINE void ParameterFloat4Def::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat4(kValueKey, &value, 1);
                  });
    Slot::TryBind(*this, value);
}

void* ParameterFloat4Def::GetValuePtr()
{
    return &value;
}

void ParameterFloat4Def::ResetValue()
{
    SetValue(defaultValue);
}

void ParameterFloat4Def::PullValue()
{
    Tessel::Float4 pulled{};
    if (kvTable && kvTable->GetFloat4(kValueKey, &pulled))
    {
        SetValue(pulled);
    }
}

int ParameterFloat4Def::OnBroadcastEvent(int event, const void* record)
{
    return TakeVectorEvent<Tessel::Float4>(*this, event, record, kVectorOffset);
}

} // namespace vell
