// VELL: data-driven hierarchical state machines.
// definitions/AttribBase.cpp: the table of an attribute and what a tool writes into it.
#include <durm/DURMBaseLib.h>
#include <vell/AttribBase.h>

#include "foundation/Checks.h"
#include "foundation/TableSync.h"
#include "foundation/TreeKeys.h"

namespace vell
{
namespace
{

// Value types of the table library, as a tool's write shows them.
constexpr int kText = 1;
constexpr int kFloat2 = 6;
constexpr int kFloat3 = 7;
constexpr int kInt = 12;
constexpr int kFloat = 13;
constexpr int kUInt = 14;
constexpr int kOtherInt = 15;
constexpr int kLastInt = 16;

int Forward(void* attrib, Tessel::opResult op, Tessel::KVTable table, const char* key)
{
    static_cast<AttribBase*>(attrib)->OnAttribValueModified(op, table, key);
    return 1;
}

} // namespace

AttribBase::AttribBase()
{
    CreateKVTable();
}

AttribBase::AttribBase(int type) : AttribBase()
{
    defaultType = type;
    if (kvTable)
    {
        const auto number = static_cast<DURMBaseLib::__ePARAMTYPE__>(type);
        kvTable->SetString(kTypeKey, DURMBaseLib::GetParameterName(number), 1);
    }
}

AttribBase::~AttribBase()
{
    DestroyKVTable();
}

const char* AttribBase::GetName() const
{
    return name;
}

int AttribBase::GetDefaultType() const
{
    return defaultType;
}

void AttribBase::SetValue(const char*)
{
}

void AttribBase::SetValue(int)
{
}

void AttribBase::SetValue(float)
{
}

void AttribBase::SetValue(bool)
{
}

void AttribBase::SetValue(const Tessel::Float4&)
{
}

void AttribBase::SetValue(const Tessel::Float3&)
{
}

void AttribBase::SetValue(const Tessel::Float2&)
{
}

int AttribBase::GetValue(const char*)
{
    return 0;
}

int AttribBase::GetValue(int*)
{
    return 0;
}

int AttribBase::GetValue(float*)
{
    return 0;
}

int AttribBase::GetValue(bool*)
{
    return 0;
}

int AttribBase::GetValue(Tessel::Float4*)
{
    return 0;
}

int AttribBase::GetValue(Tessel::Float3*)
{
    return 0;
}

int AttribBase::GetValue(Tessel::Float2*)
{
    return 0;
}

AttribBase& AttribBase::operator=(const AttribBase& other)
{
    if (kvTable != other.kvTable)
    {
        listening = other.listening;
        arenaLink.CloseLater(kvTable);
    }
    kvTable = other.kvTable;
    syncState = other.syncState;
    name = other.name;
    defaultType = other.defaultType;
    return *this;
}

void AttribBase::SetName(const char* newName)
{
    name = newName;
    if (kvTable)
    {
        kvTable->SetString(kNameKey, name, 1);
    }
}

Tessel::KVTable AttribBase::GetKVTable() const
{
    return kvTable;
}

int AttribBase::CreateKVTable()
{
    listening.Stop();
    arenaLink.CloseLater(kvTable);
    kvTable = Tessel::CreateTable("attribBase");
    return 1;
}

int AttribBase::DestroyKVTable()
{
    if (kvTable)
    {
        Tessel::CloseTable(kvTable);
    }
    return 1;
}

int AttribBase::InitKVTableListener()
{
    ERROR_RETURN(static_cast<bool>(kvTable), 0);
    ERROR_RETURN(ListenToValue(), 0);
    return 1;
}

int AttribBase::UnInitKVTableListener()
{
    ERROR_RETURN(static_cast<bool>(kvTable), 0);
    ERROR_RETURN(StopListeningToValue(), 0);
    return 1;
}

int AttribBase::ListenToValue()
{
    listening.StopElsewhere(kvTable);
    TableLock lock(kvTable);
    Tessel::KVListener* listener = kvTable->GetValueListener(kValueKey);
    if (listener == nullptr)
    {
        return 0;
    }
    listening.Fill(kvTable, listener, Tessel::KVListener{this, Forward});
    return 1;
}

int AttribBase::StopListeningToValue()
{
    {
        TableLock lock(kvTable);
        const Tessel::KVListener listener{this, Forward};
        // Required: this succeeds for any handle, even of a closed table.
        kvTable->RemoveValueListener(kValueKey, &listener);
    }
    listening.StopAfter(kvTable);
    return 1;
}

void AttribBase::OnAttribValueModified(Tessel::opResult op, Tessel::KVTable table, const char* key)
{
    if (syncState == kSyncWriting || op != Tessel::opResult_ValueChanged || !table)
    {
        return;
    }
    Tessel::KVValue* value = table->FindValue(key);
    if (value == nullptr)
    {
        return;
    }
    // Required: each SetValue below writes the value back once, so other listeners hear of a tool's
    // write twice.
    switch (value->GetValueType())
    {
    case kText:
        SetValue(value->GetStringValue());
        break;
    case kFloat2:
    {
        Tessel::Float2 vector{};
        if (value->GetFloat2Value(&vector))
        {
            SetValue(vector);
        }
        break;
    }
    case kFloat3:
    {
        Tessel::Float3 vector{};
        if (value->GetFloat3Value(&vector))
        {
            SetValue(vector);
        }
        break;
    }
    case kInt:
        if (defaultType == DURMBaseLib::PARAM_Bool)
        {
            SetValue(value->GetIntValue() != 0);
        }
        else
        {
            SetValue(value->GetIntValue());
        }
        break;
    case kFloat:
        SetValue(value->GetFloatValue());
        break;
    // Required: these reach a bool as an integer, which it ignores.
    case kUInt:
    case kOtherInt:
    case kLastInt:
        SetValue(value->GetIntValue());
        break;
    default:
        // Required: four floats have no case, so a tool's write of a four-float attribute changes
        // the table only.
        break;
    }
}

} // namespace vell
