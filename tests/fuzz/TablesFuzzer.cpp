// VELL: data-driven hierarchical state machines.
// tests/fuzz/TablesFuzzer.cpp: the key/value tables beside a plain model of them.
#include "tests/fuzz/TablesPair.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vell::fuzz
{
namespace
{

using namespace Tessel;

const std::array<const char*, 9> kKeys = {
    "a",
    "b",
    "value",
    "",
    "7",
    "1234567",
    "a key that is too long for any small buffer",
    "x y",
    "a key that is too long for the row of those that all tables share, so that one table owns it"};
constexpr unsigned int kMostTables = 60;
constexpr int kDeepest = 3;

Pair* playing = nullptr;

KVListener Record(int id)
{
    return KVListener{reinterpret_cast<void*>(static_cast<std::uintptr_t>(id)), &Hear};
}

} // namespace

int Hear(void* object, opResult result, KVTable table, const char* key)
{
    Require(result == opResult_ValueChanged, "a listener hears of a write");
    playing->Heard(static_cast<int>(reinterpret_cast<std::uintptr_t>(object)), table, key);
    return 0;
}

const char* Pair::PickKey()
{
    return kKeys[bytes.Below(static_cast<unsigned int>(kKeys.size()))];
}

/// Gives a text that is in the table's own memory, or null.
const char* Pair::Borrow(int table)
{
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    switch (bytes.Below(4))
    {
    case 0:
        return handle->GetKeyAt(bytes.Below(16));
    case 1:
        return GetTableName(handle);
    default:
        return handle->GetString(PickKey());
    }
}

Words Pair::PickWords()
{
    const char* key = PickKey();
    if (tables.empty() || bytes.Below(3) == 0)
    {
        return Words(key);
    }
    const char* borrowed = Borrow(PickTable());
    return Words(borrowed == nullptr ? key : borrowed);
}

ModelValue* Pair::Find(int table, const std::string& key)
{
    for (ModelKey& entry : tables[static_cast<std::size_t>(table)].keys)
    {
        if (entry.key == key)
        {
            return &entry.value;
        }
    }
    return nullptr;
}

void Pair::Close(int table)
{
    ModelTable& model = tables[static_cast<std::size_t>(table)];
    if (!model.open)
    {
        return;
    }
    model.open = false;
    model.listeners.clear();
    model.own = 0;
    std::vector<ModelKey> keys;
    keys.swap(model.keys);
    for (const ModelKey& entry : keys)
    {
        Release(entry.value.table);
    }
}

void Pair::Release(int table)
{
    if (table == kNoTable || !tables[static_cast<std::size_t>(table)].open)
    {
        return;
    }
    if (--tables[static_cast<std::size_t>(table)].holds == 0)
    {
        Close(table);
    }
}

bool Pair::Reaches(int from, int to) const
{
    const ModelTable& model = tables[static_cast<std::size_t>(from)];
    return from == to || (model.open && std::any_of(model.keys.begin(), model.keys.end(),
                                                    [&](const ModelKey& entry)
                                                    {
                                                        return entry.value.table != kNoTable &&
                                                               Reaches(entry.value.table, to);
                                                    }));
}

void Pair::Put(int table, const std::string& key, const ModelValue& value)
{
    ModelValue* there = Find(table, key);
    if (there == nullptr)
    {
        tables[static_cast<std::size_t>(table)].keys.push_back(ModelKey{key, value});
        return;
    }
    const int before = there->table;
    *there = value;
    Release(before);
}

void Pair::BeginWrite(int table, const std::string& key)
{
    Write write{table, key, {}, false};
    for (const ModelListener& listener : tables[static_cast<std::size_t>(table)].listeners)
    {
        if (listener.key == key)
        {
            write.waiting.push_back(listener.id);
        }
    }
    writes.push_back(write);
}

void Pair::Heard(int id, KVTable table, const char* key)
{
    const std::size_t depth = writes.size();
    Require(depth != 0, "nobody is called without a write");
    Write& write = writes.back();
    const ModelTable& model = tables[static_cast<std::size_t>(write.table)];
    Require(model.open && model.handle == table && write.key == key, "the write that was made");
    int expected = 0;
    while (expected == 0 && !write.waiting.empty())
    {
        const int waiting = write.waiting.front();
        write.waiting.erase(write.waiting.begin());
        const bool there = std::any_of(model.listeners.begin(), model.listeners.end(),
                                       [&](const ModelListener& listener)
                                       {
                                           return listener.id == waiting;
                                       });
        expected = there ? waiting : 0;
    }
    if (expected == 0)
    {
        Require(!write.ownCalled, "the table's own listener is called once");
        write.ownCalled = true;
        expected = model.own;
    }
    Require(expected == id, "listeners are called in their order");
    if (depth <= kDeepest && !bytes.Empty())
    {
        const std::string before = key;
        Step();
        Require(before == key, "the key of a write lives until the listener has returned");
    }
}

void Pair::EndWrite()
{
    const Write write = writes.back();
    writes.pop_back();
    const ModelTable& model = tables[static_cast<std::size_t>(write.table)];
    if (!model.open)
    {
        return;
    }
    for (const int waiting : write.waiting)
    {
        for (const ModelListener& listener : model.listeners)
        {
            Require(listener.id != waiting, "every listener is called");
        }
    }
    Require(model.own == 0 || write.ownCalled, "the table's own listener is called");
}

void Pair::MakeTable()
{
    if (tables.size() >= kMostTables)
    {
        return;
    }
    const Words name = PickWords();
    ModelTable model;
    model.handle = CreateTable(name.address);
    Require(static_cast<bool>(model.handle), "a table is made");
    model.name = name.copy;
    model.holds = 1;
    tables.push_back(model);
}

void Pair::SetNumber(int table, const Words& key)
{
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    const bool open = tables[static_cast<std::size_t>(table)].open;
    ModelValue value;
    value.word = bytes.Word();
    value.type = bytes.Below(2) == 0 ? ValueType_Int : ValueType_UInt;
    if (value.word % 2 == 0 && SetBySlot(table, key, value))
    {
        return;
    }
    if (value.word % 2 != 0 && value.type == ValueType_UInt && SetByBranch(table, key, value))
    {
        return;
    }
    if (open)
    {
        Put(table, key.copy, value);
        BeginWrite(table, key.copy);
    }
    const int done = value.type == ValueType_Int
                         ? handle->SetInt(key.address, static_cast<int>(value.word), 1)
                         : handle->SetUInt(key.address, value.word, 0);
    Require((done != 0) == open, "a number is written to an open table");
    if (open)
    {
        EndWrite();
    }
}

void Pair::SetFloats(int table, const Words& key)
{
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    const bool open = tables[static_cast<std::size_t>(table)].open;
    ModelValue value;
    const unsigned int count = bytes.Below(4) + 1;
    const std::array<int, 4> types = {ValueType_Float, ValueType_Float2, ValueType_Float3,
                                      ValueType_Float4};
    value.type = types[count - 1];
    for (unsigned int i = 0; i < count; ++i)
    {
        value.floats[i] = bytes.Float();
    }
    if (!std::signbit(value.floats[0]) && SetBySlot(table, key, value))
    {
        return;
    }
    if (open)
    {
        Put(table, key.copy, value);
        BeginWrite(table, key.copy);
    }
    const Float2 two{value.floats[0], value.floats[1]};
    const Float3 three{value.floats[0], value.floats[1], value.floats[2]};
    const Float4 four{value.floats[0], value.floats[1], value.floats[2], value.floats[3]};
    const int done = count == 1   ? handle->SetFloat(key.address, value.floats[0], 1)
                     : count == 2 ? handle->SetFloat2(key.address, &two, 1)
                     : count == 3 ? handle->SetFloat3(key.address, &three, 1)
                                  : handle->SetFloat4(key.address, &four, 1);
    Require((done != 0) == open, "floats are written to an open table");
    if (open)
    {
        EndWrite();
    }
}

void Pair::SetText(int table, const Words& key)
{
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    const bool open = tables[static_cast<std::size_t>(table)].open;
    const std::string fresh = bytes.Text(80);
    const Words text = bytes.Below(2) == 0 ? PickWords() : Words(fresh.c_str());
    ModelValue value;
    value.type = ValueType_Text;
    value.text = text.copy;
    if (open)
    {
        Put(table, key.copy, value);
        BeginWrite(table, key.copy);
    }
    const int done = handle->SetString(key.address, text.address, 1);
    Require((done != 0) == open, "a text is written to an open table");
    if (open)
    {
        EndWrite();
    }
}

void Pair::AddTable(int table, const Words& key)
{
    if (tables.size() >= kMostTables)
    {
        return;
    }
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    const bool open = tables[static_cast<std::size_t>(table)].open;
    const KVTable added = handle->AddTable(key.address, 1);
    Require(static_cast<bool>(added) == open, "a table is added to an open one");
    if (!open)
    {
        return;
    }
    ModelTable model;
    model.handle = added;
    model.name = key.copy;
    model.holds = 1;
    tables.push_back(model);
    ModelValue value;
    value.type = ValueType_Table;
    value.table = static_cast<int>(tables.size()) - 1;
    Put(table, key.copy, value);
    FindBranch(table, key.copy, value.table);
}

void Pair::Attach(int table, const Words& key)
{
    const int child = PickTable();
    const KVTable handle = tables[static_cast<std::size_t>(table)].handle;
    const bool good = tables[static_cast<std::size_t>(table)].open &&
                      tables[static_cast<std::size_t>(child)].open && !Reaches(child, table);
    const int done =
        handle->AttachTable(key.address, tables[static_cast<std::size_t>(child)].handle, 0);
    Require((done != 0) == good, "an open table is attached where it makes no circle");
    if (good)
    {
        ++tables[static_cast<std::size_t>(child)].holds;
        ModelValue value;
        value.type = ValueType_Table;
        value.table = child;
        Put(table, key.copy, value);
        FindBranch(table, key.copy, child);
    }
}

void Pair::ChangeArray(int table)
{
    ModelTable& model = tables[static_cast<std::size_t>(table)];
    if (bytes.Below(3) != 0)
    {
        const unsigned int value = bytes.Word();
        if (value % 2 != 0 && ChangeArrayByBranch(table, &value))
        {
            return;
        }
        Require((model.handle->PushUInt(value, 1) != 0) == model.open, "an element is appended");
        if (model.open)
        {
            model.array.push_back(value);
        }
        return;
    }
    const unsigned int index = bytes.Below(6);
    if (index == 5 && ChangeArrayByBranch(table, nullptr))
    {
        return;
    }
    const bool good = model.open && index < model.array.size();
    Require((model.handle->RemoveAt(index, 1) != 0) == good, "an element is removed");
    if (good)
    {
        model.array.erase(model.array.begin() + static_cast<std::ptrdiff_t>(index));
    }
}

void Pair::Listen(int table, const Words& key)
{
    ModelTable& model = tables[static_cast<std::size_t>(table)];
    const bool own = bytes.Below(4) == 0;
    if (!model.open)
    {
        return;
    }
    const int id = nextListener++;
    KVListener* record =
        own ? model.handle->GetTableListener() : model.handle->GetValueListener(key.address);
    Require(record != nullptr, "an open table gives a record");
    *record = Record(id);
    if (own)
    {
        model.own = id;
        ++model.ownGiven;
    }
    else
    {
        model.listeners.push_back(ModelListener{key.copy, id, record});
        if (slots.size() < kMostSlots)
        {
            slots.push_back(
                ModelSlot{table, key.copy, id, {Record(id), model.own == 0 ? nullptr : &Hear}});
        }
    }
}

void Pair::Unlisten(int table, const Words& key)
{
    ModelTable& model = tables[static_cast<std::size_t>(table)];
    if (model.own != 0 && bytes.Below(4) == 0)
    {
        *model.handle->GetTableListener() = KVListener{nullptr, nullptr};
        model.own = 0;
        ++model.ownGiven;
        return;
    }
    const int id = nextListener <= 1 ? 1 : 1 + static_cast<int>(bytes.Byte()) % nextListener;
    const auto found = std::find_if(model.listeners.begin(), model.listeners.end(),
                                    [&](const ModelListener& listener)
                                    {
                                        return listener.id == id;
                                    });
    const bool known = found != model.listeners.end();
    // It may be told by its own record too, which goes.
    const KVListener copy = Record(id);
    model.handle->RemoveValueListener(key.address,
                                      known && bytes.Below(2) == 0 ? found->record : &copy);
    if (known && found->key == key.copy)
    {
        model.listeners.erase(found);
    }
}

void Pair::Step()
{
    if (tables.empty())
    {
        MakeTable();
        return;
    }
    const unsigned int choice = bytes.Below(12);
    const int table = PickTable();
    const Words key = PickWords();
    switch (choice)
    {
    case 0:
        MakeTable();
        break;
    case 1:
    case 2:
        SetNumber(table, key);
        break;
    case 3:
        SetFloats(table, key);
        break;
    case 4:
        SetText(table, key);
        break;
    case 5:
        AddTable(table, key);
        break;
    case 6:
        Attach(table, key);
        break;
    case 7:
        ChangeArray(table);
        break;
    case 8:
    case 9:
        Listen(table, key);
        break;
    case 10:
        Unlisten(table, key);
        break;
    default:
        CloseTable(tables[static_cast<std::size_t>(table)].handle);
        Close(table);
        break;
    }
}

void Pair::CompareValue(const ModelTable& model, const ModelKey& key) const
{
    const KVTable handle = model.handle;
    const ModelValue& value = key.value;
    const char* text = handle->GetString(key.key.c_str());
    Require((text != nullptr) == (value.type == ValueType_Text), "only a text is a text");
    Require(text == nullptr || value.text == text, "the text that was written");
    if (value.type == ValueType_Int || value.type == ValueType_UInt)
    {
        Require(handle->GetUInt(key.key.c_str()) == value.word, "the number that was written");
        Require(handle->GetInt(key.key.c_str()) == static_cast<int>(value.word), "as an int too");
    }
    std::array<float, 4> floats = {};
    std::size_t count = 0;
    if (value.type == ValueType_Float)
    {
        floats[0] = handle->GetFloat(key.key.c_str());
        count = 1;
    }
    Float2 two{};
    Float3 three{};
    Float4 four{};
    Require((handle->GetFloat2(key.key.c_str(), &two) != 0) == (value.type == ValueType_Float2),
            "only two floats are two");
    Require((handle->GetFloat3(key.key.c_str(), &three) != 0) == (value.type == ValueType_Float3),
            "only three floats are three");
    Require((handle->GetFloat4(key.key.c_str(), &four) != 0) == (value.type == ValueType_Float4),
            "only four floats are four");
    if (value.type == ValueType_Float2)
    {
        floats = {two.x, two.y, 0, 0};
        count = 2;
    }
    else if (value.type == ValueType_Float3)
    {
        floats = {three.x, three.y, three.z, 0};
        count = 3;
    }
    else if (value.type == ValueType_Float4)
    {
        floats = {four.x, four.y, four.z, four.w};
        count = 4;
    }
    Require(std::memcmp(floats.data(), value.floats.data(), count * sizeof(float)) == 0,
            "the floats that were written");
    const KVTable below = handle->GetTable(key.key.c_str());
    const bool open = value.table != kNoTable && tables[static_cast<std::size_t>(value.table)].open;
    Require(static_cast<bool>(below) == open, "an open table below is found");
    Require(!open || below == tables[static_cast<std::size_t>(value.table)].handle,
            "the table that was put there");
}

void Pair::CompareTable(const ModelTable& model) const
{
    const char* name = GetTableName(model.handle);
    Require((name != nullptr) == model.open, "an open table has a name");
    Require(name == nullptr || model.name == name, "the name that was given");
    const std::size_t count = model.open ? model.keys.size() : 0;
    Require(model.handle->GetKeyCount() == count, "as many keys as were written");
    for (std::size_t i = 0; i < count; ++i)
    {
        const auto index = static_cast<unsigned int>(i);
        const char* key = model.handle->GetKeyAt(index);
        Require(key != nullptr && model.keys[i].key == key, "keys stand in their order");
        Require(model.handle->GetTypeAt(index) == model.keys[i].value.type, "of their type");
        CompareValue(model, model.keys[i]);
    }
    const std::size_t elements = model.open ? model.array.size() : 0;
    Require(model.handle->GetCount() == elements, "as many elements as were pushed");
    for (std::size_t i = 0; i < elements; ++i)
    {
        KVValue* element = model.handle->GetValueAt(static_cast<unsigned int>(i));
        Require(element != nullptr && element->GetUIntValue() == model.array[i], "in order");
    }
}

void Pair::CompareAll()
{
    unsigned int open = 0;
    for (const ModelTable& model : tables)
    {
        CompareTable(model);
        open += model.open ? 1 : 0;
    }
    CheckSlots();
    Require(GetOpenTableCount() == open, "as many tables are open");
}

void Pair::Play()
{
    playing = this;
    while (!bytes.Empty())
    {
        Step();
    }
    CompareAll();
    for (std::size_t i = 0; i < tables.size(); ++i)
    {
        CloseTable(tables[i].handle);
        Close(static_cast<int>(i));
        if (i % 8 == 0)
        {
            CompareAll();
        }
    }
    playing = nullptr;
}

} // namespace vell::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vell::fuzz::Bytes bytes(data, size);
    vell::fuzz::Pair(bytes).Play();
    vell::fuzz::Require(Tessel::GetOpenTableCount() == 0, "closed tables are gone");
    return 0;
}
