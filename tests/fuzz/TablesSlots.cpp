// VELL: data-driven hierarchical state machines.
// tests/fuzz/TablesSlots.cpp: what is done to the tables by slots and branches.
#include "tests/fuzz/TablesPair.h"

#include <algorithm>
#include <cstring>

namespace vell::fuzz
{

using namespace Tessel;

namespace
{

/// Gives the bytes of a value that a slot can have, 0 for other types.
std::size_t SizeOf(ValueType type)
{
    switch (type)
    {
    case ValueType_Int:
        return sizeof(int);
    case ValueType_Float:
        return sizeof(float);
    case ValueType_Float2:
        return sizeof(Float2);
    case ValueType_Float3:
        return sizeof(Float3);
    case ValueType_Float4:
        return sizeof(Float4);
    default:
        return 0;
    }
}

} // namespace

Pair::~Pair()
{
    for (ModelSlot& slot : slots)
    {
        TesselGetSlotOperations()->release(&slot.slot);
    }
}

/// Tells whether `slot` may be bound for values of `type`.
bool Pair::MayBind(const ModelSlot& slot, int type)
{
    const ModelTable& model = tables[static_cast<std::size_t>(slot.table)];
    const ModelValue* there = Find(slot.table, slot.key);
    const int mostGiven = slot.writer.ofTable == nullptr ? 0 : 1;
    if (!model.open || there == nullptr || there->type != type || model.ownGiven > mostGiven)
    {
        return false;
    }
    const bool isTableHeard = model.own != 0;
    const auto listensToKey = [&](const ModelListener& listener)
    {
        return listener.key == slot.key;
    };
    const auto isWriters = [&](const ModelListener& listener)
    {
        return listener.key == slot.key && listener.id == slot.id;
    };
    const auto& listeners = model.listeners;
    return isTableHeard == (slot.writer.ofTable != nullptr) &&
           std::count_if(listeners.begin(), listeners.end(), listensToKey) == 1 &&
           std::any_of(listeners.begin(), listeners.end(), isWriters);
}

/// Tells whether another slot is bound to the key of `slot`.
bool Pair::IsBoundByAnother(const ModelSlot& slot) const
{
    return std::any_of(slots.begin(), slots.end(),
                       [&](const ModelSlot& other)
                       {
                           return &other != &slot && other.table == slot.table &&
                                  other.key == slot.key && other.slot.value != nullptr;
                       });
}

/// Stores the value in each slot of the key that is or can be bound, which calls nobody, and tells
/// whether there was one.
bool Pair::SetBySlot(int table, const Words& key, const ModelValue& value)
{
    const int type = value.type;
    const bool fits = SizeOf(static_cast<ValueType>(type)) != 0;
    bool isTaken = false;
    for (ModelSlot& slot : slots)
    {
        if (slot.table != table || slot.key != key.copy)
        {
            continue;
        }
        if (slot.slot.value == nullptr)
        {
            slot.type = static_cast<ValueType>(type);
            const int bound = TesselGetSlotOperations()->bind(
                &slot.slot, tables[static_cast<std::size_t>(table)].handle, slot.key.c_str(),
                slot.type, &slot.writer);
            Require((bound != 0) == (fits && MayBind(slot, type) && !IsBoundByAnother(slot)),
                    "a slot is bound when nobody else hears");
        }
        if (slot.slot.value == nullptr || slot.type != type)
        {
            continue;
        }
        std::memcpy(slot.slot.bytes,
                    type == ValueType_Int ? static_cast<const void*>(&value.word)
                                          : value.floats.data(),
                    SizeOf(slot.type));
        isTaken = true;
    }
    if (isTaken)
    {
        Put(table, key.copy, value);
    }
    return isTaken;
}

/// Requires that each bound slot may be bound, and is the only one of its key.
void Pair::CheckSlots()
{
    for (const ModelSlot& slot : slots)
    {
        const bool isBound = slot.slot.value != nullptr;
        Require(!isBound || MayBind(slot, slot.type), "a slot is bound only while it may be");
        Require(!isBound || !IsBoundByAnother(slot), "only one slot is bound to a key");
    }
}

void Pair::FindBranch(int parent, const std::string& key, int table)
{
    if (branches.size() >= kMostSlots)
    {
        return;
    }
    branches.push_back(ModelBranch{parent, key, table, {}, {}});
    const int found = TesselGetSlotOperations()->findBranch(
        &branches.back().branch, tables[static_cast<std::size_t>(parent)].handle, key.c_str());
    Require(found != 0, "a table that was put there is found");
}

/// Takes the values that the branch's table has, before it is closed.
void Pair::FindValues(ModelBranch& branch)
{
    const ModelTable& model = tables[static_cast<std::size_t>(branch.table)];
    for (std::size_t i = branch.values.size(); model.open && i < model.keys.size(); ++i)
    {
        const std::string& key = model.keys[i].key;
        branch.values.emplace_back(key, branch.branch.table->FindValue(key.c_str()));
    }
}

/// Tells whether the branch's table is where it was found.
bool Pair::IsThere(const ModelBranch& branch)
{
    const ModelValue* value = Find(branch.parent, branch.key);
    return tables[static_cast<std::size_t>(branch.parent)].open &&
           tables[static_cast<std::size_t>(branch.table)].open && value != nullptr &&
           value->table == branch.table;
}

/// Tells whether an unsigned may be written to a key of the branch without a call of a listener.
bool Pair::MayTake(const ModelBranch& branch, const std::string& key)
{
    const ModelTable& model = tables[static_cast<std::size_t>(branch.table)];
    const ModelValue* value = Find(branch.table, key);
    return IsThere(branch) && model.listeners.empty() && model.own == 0 && value != nullptr &&
           value->type == ValueType_UInt;
}

/// As `SetBySlot`, by each branch of the table.
bool Pair::SetByBranch(int table, const Words& key, const ModelValue& value)
{
    bool isTaken = false;
    for (ModelBranch& branch : branches)
    {
        FindValues(branch);
        for (const auto& found : branch.values)
        {
            if (branch.table == table && found.first == key.copy)
            {
                const bool done = TesselGetSlotOperations()->setUInts(&branch.branch, &found.second,
                                                                      &value.word, 1) != 0;
                Require(done == MayTake(branch, key.copy), "a branch takes what nobody hears");
                isTaken = isTaken || done;
            }
        }
    }
    if (isTaken)
    {
        Put(table, key.copy, value);
    }
    return isTaken;
}

/// Appends `pushed`, or removes the last element when it is null, by a branch that has the table
/// under a key. Tells whether that was done.
bool Pair::ChangeArrayByBranch(int table, const unsigned int* pushed)
{
    const SlotOperations& operations = *TesselGetSlotOperations();
    ModelTable& model = tables[static_cast<std::size_t>(table)];
    for (ModelBranch& branch : branches)
    {
        FindValues(branch);
        for (const auto& found : branch.values)
        {
            const ModelValue* value = Find(branch.table, found.first);
            if (value == nullptr || value->table != table)
            {
                continue;
            }
            const bool done = pushed != nullptr
                                  ? operations.pushUInt(&branch.branch, found.second, *pushed) != 0
                                  : operations.removeLast(&branch.branch, found.second) != 0;
            const bool hasSomething = pushed != nullptr || !model.array.empty();
            Require(done == (IsThere(branch) && model.open && hasSomething),
                    "a branch changes the array that its key holds");
            if (done && pushed != nullptr)
            {
                model.array.push_back(*pushed);
            }
            else if (done)
            {
                model.array.pop_back();
            }
            if (done)
            {
                return true;
            }
        }
    }
    return false;
}

} // namespace vell::fuzz
