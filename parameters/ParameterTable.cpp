// VELL: data-driven hierarchical state machines.
// parameters/ParameterTable.cpp: finding, filing and releasing of parameters.
#include "parameters/ParameterTable.h"

#include <durm/DURMBaseLib.h>
#include <vell/HSMAlloc.h>
#include <vell/Parameters.h>

#include "definitions/BaseDefInternals.h"
#include "foundation/Checks.h"
#include "foundation/NoInline.h"
#include "foundation/TableSync.h"
#include "foundation/TreeKeys.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <typeinfo>

namespace vell
{

ParameterTable::ParameterTable() = default;

ParameterTable::~ParameterTable() = default;

int ParameterTable::GetParameterCount()
{
    return static_cast<int>(idToParam.size());
}

const char* ParameterTable::GetParameterName(unsigned int id)
{
    ParameterDef* def = FindParameter(id);
    return def == nullptr ? nullptr : def->GetName();
}

unsigned int ParameterTable::GetParameterID(const char* name)
{
    const auto entry = nameToId.find(name);
    return name == nullptr || entry == nameToId.end() ? 0 : entry->second;
}

unsigned int ParameterTable::GetParameterIDByIndex(unsigned int index)
{
    if (index >= idToParam.size())
    {
        return 0;
    }
    return std::next(idToParam.begin(), static_cast<std::ptrdiff_t>(index))->first;
}

ParameterDef* ParameterTable::FindParameter(const char* name)
{
    const unsigned int id = GetParameterID(name);
    ERROR_RETURN(id != 0, nullptr);
    return FindParameter(id);
}

ParameterDef* ParameterTable::FindParameter(unsigned int id)
{
    const auto entry = idToParam.find(id);
    return entry == idToParam.end() ? nullptr : entry->second;
}

int ParameterTable::GetParameterAssign(unsigned int id)
{
    ParameterDef* def = FindParameter(id);
    return def == nullptr ? 0 : def->GetAssign();
}

int ParameterTable::GetParameterAssignClass(unsigned int id)
{
    ParameterDef* def = FindParameter(id);
    return def == nullptr ? 0 : def->GetAssignClass();
}

IBroadcastListener* ParameterTable::GetBroadcastListener(unsigned int id)
{
    return FindParameter(id);
}

// Required: this listener reads and does nothing else.
int ParameterTable::HearOfTable(void*, Tessel::opResult result, Tessel::KVTable table,
                                const char* key)
{
    if (result == Tessel::opResult_ValueChanged && table)
    {
        table->GetUInt(kIdKey);
        table->GetString(key);
    }
    return 1;
}

int ParameterTable::CreateKVTable()
{
    ERROR_RETURN(!table, 0);
    table = Tessel::CreateTable("parameterTable");
    isTableClosed = false;
    ERROR_RETURN(static_cast<bool>(table), 0);
    return 1;
}

int ParameterTable::AddParameter(ParameterDef* def)
{
    int result = 0;
    do
    {
        ASSERT_BREAK(def != nullptr);
        const unsigned int id = def->GetID();
        ASSERT_BREAK(id != 0);
        const bool newName = nameToId.emplace(def->GetName(), id).second;
        ASSERT_BREAK(newName);
        // Required: a refused id leaves the name behind, which then answers with the other
        // parameter's id.
        const bool newId = idToParam.emplace(id, def).second;
        ASSERT_BREAK(newId);
        CreateSlot().Follow(*def, *this);
        if (def->resetEachFrame)
        {
            Collect(id, *def);
        }

        char key[16] = {};
        std::to_chars(key, key + sizeof(key) - 1, id);
        Tessel::KVTable defTable = def->GetKVTable();
        if (table)
        {
            table->AttachTable(key, defTable, 1);
        }
        if (defTable)
        {
            TableLock lock(defTable);
            if (Tessel::KVListener* listener = defTable->GetTableListener())
            {
                listener->object = this;
                listener->function = HearOfTable;
            }
        }
        result = 1;
    } while (false);
    return result;
}

void ParameterTable::Uninit()
{
    unsigned int before = timesForgotten;
    ParameterMap::iterator position = idToParam.begin();
    try
    {
        while (position != idToParam.end())
        {
            if (position->second != nullptr)
            {
                position->second->Uninit();
            }
            // The destructor of an action on it may have done all this already, or up to one that
            // threw. It may also have created parameters behind this one.
            const bool isChanged = timesForgotten != before;
            if (isChanged && idToParam.empty())
            {
                return;
            }
            position = isChanged ? idToParam.begin() : std::next(position);
            before = timesForgotten;
        }
    }
    catch (...)
    {
        // A parameter threw: the next call goes on behind it.
        if (timesForgotten == before)
        {
            ForgetUpTo(std::next(position));
        }
        throw;
    }
    // Required: parameters are forgotten here, their names are not.
    ForgetUpTo(idToParam.end());
    if (table)
    {
        // Required: a second Uninit closes the table again, as a load that failed does.
        Tessel::CloseTable(table);
        isTableClosed = true;
    }
}

void ParameterTable::CollectResetting()
{
    resetting.clear();
    for (const auto& entry : idToParam)
    {
        if (entry.second->resetEachFrame)
        {
            Collect(entry.first, *entry.second);
        }
    }
}

void ParameterTable::Collect(unsigned int id, ParameterDef& def)
{
    const auto isBelow = [](const Resetting& entry, unsigned int newId)
    {
        return entry.id < newId;
    };
    static const bool different[] = {false, true};
    Resetting added{id, &def, &different[0], &different[1]};
    if (typeid(def) == typeid(ParameterBoolDef))
    {
        const auto& parameter = static_cast<const ParameterBoolDef&>(def);
        added.value = parameter.value.Place();
        added.defaultValue = parameter.defaultValue.Place();
    }
    resetting.insert(std::lower_bound(resetting.begin(), resetting.end(), id, isBelow), added);
}

/// A run-time parameter may outlive the table.
void ParameterTable::ForgetUpTo(ParameterMap::iterator end)
{
    ++timesForgotten;
    for (auto entry = idToParam.begin(); entry != end; ++entry)
    {
        if (entry->second != nullptr)
        {
            entry->second->slot.pointer = nullptr;
            BaseDef::Internals::Follow(*entry->second, nullptr);
        }
    }
    idToParam.erase(idToParam.begin(), end);
    if (idToParam.empty())
    {
        slots.clear();
        slotCount = 0;
    }
    CollectResetting();
}

ParameterDef::Slot& ParameterTable::CreateSlot()
{
    const std::size_t place = slotCount % std::tuple_size<SlotGroup>();
    if (place == 0)
    {
        slots.emplace_front();
    }
    ++slotCount;
    return slots.front()[place];
}

void ParameterTable::ResetAll()
{
    // There is at least one.
    const Resetting* next = resetting.data();
    do
    {
        next = next->IsDue() ? ResetOne(next) : next + 1;
    } while (next != resetting.data() + resetting.size());
}

/// Resets a parameter and gives the entry behind it. A listener that hears of the reset may assign
/// a parameter or uninitialise the machine, which changes the list.
VELL_NOINLINE const ParameterTable::Resetting* ParameterTable::ResetOne(const Resetting* entry)
{
    const std::ptrdiff_t index = entry - resetting.data();
    const unsigned int id = entry->id;
    entry->def->ResetValue();
    const Resetting* const first = resetting.data();
    const Resetting* const end = first + resetting.size();
    if (index < end - first && first[index].id == id)
    {
        return first + index + 1;
    }
    const auto isAbove = [](unsigned int least, const Resetting& other)
    {
        return least < other.id;
    };
    return std::upper_bound(first, end, id, isAbove);
}

void ParameterTable::PlaceValue(ParameterDef& def, int type)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        values.TakeIn(static_cast<ParameterBoolDef&>(def).value);
        return values.TakeIn(static_cast<ParameterBoolDef&>(def).defaultValue);
    case DURMBaseLib::PARAM_Integer:
        return values.TakeIn(static_cast<ParameterIntegerDef&>(def).value);
    case DURMBaseLib::PARAM_Float:
        return values.TakeIn(static_cast<ParameterFloatDef&>(def).value);
    default:
        return;
    }
}

Tessel::KVTable ParameterTable::GetKVTable() const
{
    return table;
}

/// A run-time parameter stays; its table closes with the machine.
void ParameterTable::CloseRuntimeTables()
{
    for (const auto& entry : idToParam)
    {
        if (entry.second != nullptr && arena != nullptr && !arena->Holds(entry.second))
        {
            entry.second->DestroyKVTable();
        }
    }
}

Tessel::KVTable ReleaseStorage(ParameterTable& params, ArenaLink::AtEnd)
{
    params.CloseRuntimeTables();
    params.ForgetUpTo(params.idToParam.end());
    ParameterTable::NameMap().swap(params.nameToId);
    ParameterTable::ParameterMap().swap(params.idToParam);
    ParameterTable::ResettingList().swap(params.resetting);
    return params.isTableClosed ? Tessel::KVTable() : params.table;
}

} // namespace vell
