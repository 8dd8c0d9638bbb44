// VELL: data-driven hierarchical state machines.
// definitions/AttribDefs.cpp: values of attributes and their way into the table.
#include "definitions/AttribDefs.h"

#include <durm/DURMBaseLib.h>

#include "foundation/TableSync.h"
#include "foundation/TreeKeys.h"

#include <cstring>

namespace vell
{

AttribDefBool::AttribDefBool() : AttribBase(DURMBaseLib::PARAM_Bool)
{
}

void AttribDefBool::SetValue(bool newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetInt(kValueKey, value ? 1 : 0, 1);
                  });
}

AttribDefInteger::AttribDefInteger() : AttribBase(DURMBaseLib::PARAM_Integer)
{
}

void AttribDefInteger::SetValue(int newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetInt(kValueKey, value, 1);
                  });
}

int AttribDefInteger::GetValue(int* out)
{
    if (out == nullptr)
    {
        return 0;
    }
    *out = value;
    return 1;
}

AttribDefFloat::AttribDefFloat() : AttribBase(DURMBaseLib::PARAM_Float)
{
}

void AttribDefFloat::SetValue(float newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat(kValueKey, value, 1);
                  });
}

int AttribDefFloat::GetValue(float* out)
{
    if (out == nullptr)
    {
        return 0;
    }
    *out = value;
    return 1;
}

AttribDefFloat2::AttribDefFloat2() : AttribBase(DURMBaseLib::PARAM_Float2)
{
}

void AttribDefFloat2::SetValue(const Tessel::Float2& newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat2(kValueKey, &value, 1);
                  });
}

int AttribDefFloat2::GetValue(Tessel::Float2* out)
{
    if (out == nullptr)
    {
        return 0;
    }
    *out = value;
    return 1;
}

AttribDefFloat3::AttribDefFloat3() : AttribBase(DURMBaseLib::PARAM_Float3)
{
}

void AttribDefFloat3::SetValue(const Tessel::Float3& newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat3(kValueKey, &value, 1);
                  });
}

int AttribDefFloat3::GetValue(Tessel::Float3* out)
{
    if (out == nullptr)
    {
        return 0;
    }
    *out = value;
    return 1;
}

AttribDefFloat4::AttribDefFloat4() : AttribBase(DURMBaseLib::PARAM_Float4)
{
}

void AttribDefFloat4::SetValue(const Tessel::Float4& newValue)
{
    value = newValue;
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetFloat4(kValueKey, &value, 1);
                  });
}

int AttribDefFloat4::GetValue(Tessel::Float4* out)
{
    if (out == nullptr)
    {
        return 0;
    }
    *out = value;
    return 1;
}

AttribDefString::AttribDefString() : AttribBase(DURMBaseLib::PARAM_Message)
{
}

void AttribDefString::SetValue(const char* newValue)
{
    if (newValue == nullptr)
    {
        return;
    }
    const std::size_t length = strnlen(newValue, kCapacity);
    // Required: a text that is too long leaves no value in the tree. The listener still waits for
    // one, so a tool can write it.
    if (length == kCapacity)
    {
        return;
    }
    char text[kCapacity] = {}; // the new value may be in the buffer itself
    std::memcpy(text, newValue, length);
    std::memcpy(buffer, text, kCapacity);
    WriteOwnTable(syncState, kvTable,
                  [this](Tessel::KVTable table)
                  {
                      table->SetString(kValueKey, buffer, 1);
                  });
}

} // namespace vell
