// VELL: data-driven hierarchical state machines.
// parameters/ParameterMessageDef.cpp: values and input of text parameters.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/TableSync.h"
#include "parameters/ParameterKeys.h"

#include <utility>

namespace vell
{

ParameterMessageDef::ParameterMessageDef() : ParameterDef(DURMBaseLib::PARAM_Message)
{
}

ParameterMessageDef::~ParameterMessageDef() = default;

int ParameterMessageDef::InitKVTable()
{
    InitTypeKey();
    if (kvTable)
    {
        kvTable->SetString(kValueKey, value.c_str(), 1);
    }
    InitKVTableListener();
    return 1;
}

std::string ParameterMessageDef::GetDefaultValue()
{
    return defaultValue;
}

void ParameterMessageDef::SetDefaultValue(std::string newDefault)
{
    defaultValue = std::move(newDefault);
}

std::string ParameterMessageDef::GetValue()
{
    return value;
}

void ParameterMessageDef::SetValue(const std::string& newValue)
{
    value = newValue;
    WriteValue();
}

void ParameterMessageDef::WriteValue()
{
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetString(kValueKey, value.c_str(), 1);
                  });
}

void* ParameterMessageDef::GetValuePtr()
{
    return &value;
}

void ParameterMessageDef::ResetValue()
{
    SetValue(defaultValue);
}

void ParameterMessageDef::PullValue()
{
    const char* text = kvTable ? kvTable->GetString(kValueKey) : nullptr;
    if (text != nullptr)
    {
        SetValue(text);
    }
}

// Required: no event gives a value; any event with the right binding sets the default.
int ParameterMessageDef::OnBroadcastEvent(int, const void* record)
{
    if (record == nullptr || ReadBinding(record) != assign)
    {
        return 0;
    }
    SetValue(defaultValue);
    return 1;
}

} // namespace vell
