// VELL: data-driven hierarchical state machines.
// tests/support/ListedTables.cpp: a table library as a site may have its own: what Tessel.h lists,
// as plain as can be, and nothing else.
#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <limits>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Tessel
{

class ListedTable;

/// A handle is the number of a table, which is never used again, plus one.
struct TableHandle
{
    static KVTable Make(std::size_t number)
    {
        KVTable table;
        table.bits = number + 1;
        return table;
    }
    static std::size_t GetNumber(KVTable table)
    {
        return static_cast<std::size_t>(table.bits) - 1;
    }
};

namespace
{

ListedTable* Find(KVTable handle);

template <class Integer>
Integer Clamp(float value)
{
    const auto exact = static_cast<double>(value);
    if (exact != exact)
    {
        return 0;
    }
    const auto low = static_cast<double>(std::numeric_limits<Integer>::min());
    const auto high = static_cast<double>(std::numeric_limits<Integer>::max());
    return static_cast<Integer>(std::min(std::max(exact, low), high));
}

/// A value of any type.
class Value final : public KVValue
{
public:
    int GetValueType() const override
    {
        return type;
    }
    int GetIntValue() const override
    {
        return type == ValueType_Float ? Clamp<int>(floats[0]) : static_cast<int>(word);
    }
    float GetFloatValue() const override
    {
        switch (type)
        {
        case ValueType_Float:
            return floats[0];
        case ValueType_Int:
            return static_cast<float>(static_cast<int>(word));
        case ValueType_UInt:
            return static_cast<float>(word);
        default:
            return 0.0f;
        }
    }
    const char* GetStringValue() const override
    {
        return type == ValueType_Text ? text.c_str() : nullptr;
    }
    int GetFloat2Value(Float2* out) const override
    {
        return Copy(ValueType_Float2, out);
    }
    int GetFloat3Value(Float3* out) const override
    {
        return Copy(ValueType_Float3, out);
    }
    unsigned GetUIntValue() const override
    {
        if (type != ValueType_Float)
        {
            return word;
        }
        return floats[0] < 0.0f ? static_cast<unsigned>(Clamp<int>(floats[0]))
                                : Clamp<unsigned>(floats[0]);
    }

    template <class Vector>
    int Copy(int wanted, Vector* out) const
    {
        if (type != wanted || out == nullptr)
        {
            return 0;
        }
        std::memcpy(out, floats, sizeof(*out));
        return 1;
    }

    std::string key;
    int type = ValueType_None;
    unsigned word = 0; ///< an int or an unsigned by its bits, else 0
    float floats[4] = {};
    std::string text;
    KVTable table;
};

/// What a write stores.
Value OfWord(int type, unsigned word)
{
    Value value;
    value.type = type;
    value.word = word;
    return value;
}

template <class Floats>
Value OfFloats(int type, const Floats& floats)
{
    Value value;
    value.type = type;
    std::memcpy(value.floats, &floats, sizeof(floats));
    return value;
}

struct Record
{
    KVListener listener; ///< first, so that its address is the record's
    std::string key;
    unsigned long long number;
};

} // namespace

class ListedTable final : public ITable
{
public:
    ListedTable(KVTable ownHandle, const char* ownName, bool creatorHolds)
        : handle(ownHandle), name(ownName), isHeld(creatorHolds)
    {
    }

    KVValue* GetValueAt(unsigned index) override
    {
        return index < array.size() ? array[index].get() : nullptr;
    }
    KVTable GetTable(const char* key) override
    {
        const Value* value = Look(key);
        return value != nullptr && Tessel::Find(value->table) != nullptr ? value->table : KVTable();
    }
    int GetInt(const char* key) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0 : value->GetIntValue();
    }
    float GetFloat(const char* key) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0.0f : value->GetFloatValue();
    }
    const char* GetString(const char* key) override
    {
        const Value* value = Look(key);
        return value == nullptr ? nullptr : value->GetStringValue();
    }
    int GetFloat2(const char* key, Float2* out) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0 : value->Copy(ValueType_Float2, out);
    }
    int GetFloat3(const char* key, Float3* out) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0 : value->Copy(ValueType_Float3, out);
    }
    int GetFloat4(const char* key, Float4* out) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0 : value->Copy(ValueType_Float4, out);
    }
    unsigned GetUInt(const char* key) override
    {
        const Value* value = Look(key);
        return value == nullptr ? 0 : value->GetUIntValue();
    }
    int SetUInt(const char* key, unsigned value, int) override
    {
        return Write(key, OfWord(ValueType_UInt, value));
    }
    int SetFloat4(const char* key, const Float4* value, int) override
    {
        return value == nullptr ? 0 : Write(key, OfFloats(ValueType_Float4, *value));
    }
    int SetFloat3(const char* key, const Float3* value, int) override
    {
        return value == nullptr ? 0 : Write(key, OfFloats(ValueType_Float3, *value));
    }
    int SetFloat2(const char* key, const Float2* value, int) override
    {
        return value == nullptr ? 0 : Write(key, OfFloats(ValueType_Float2, *value));
    }
    int SetString(const char* key, const char* text, int) override
    {
        Value value;
        value.type = ValueType_Text;
        value.text = text == nullptr ? "" : text;
        return text == nullptr ? 0 : Write(key, value);
    }
    int SetFloat(const char* key, float value, int) override
    {
        return Write(key, OfFloats(ValueType_Float, value));
    }
    int SetInt(const char* key, int value, int) override
    {
        return Write(key, OfWord(ValueType_Int, static_cast<unsigned>(value)));
    }
    KVTable AddTable(const char* key, int flag) override;
    int AttachTable(const char* key, KVTable child, int) override;
    int RemoveAt(unsigned index, int) override
    {
        if (index >= array.size())
        {
            return 0;
        }
        array.erase(array.begin() + static_cast<std::ptrdiff_t>(index));
        return 1;
    }
    int PushUInt(unsigned value, int) override
    {
        array.push_back(std::make_unique<Value>(OfWord(ValueType_UInt, value)));
        return 1;
    }
    unsigned GetCount() override
    {
        return static_cast<unsigned>(array.size());
    }
    KVValue* FindValue(const char* key) override
    {
        return Look(key);
    }
    KVListener* GetTableListener() override
    {
        return &tableListener;
    }
    KVListener* GetValueListener(const char* key) override
    {
        if (key == nullptr)
        {
            return nullptr;
        }
        records.push_back(Record{{}, key, ++lastNumber});
        return &records.back().listener;
    }
    void RemoveValueListener(const char* key, const KVListener* listener) override
    {
        const auto isMeant = [&](const Record& record)
        {
            return record.key == key && record.listener.object == listener->object &&
                   record.listener.function == listener->function;
        };
        if (key != nullptr && listener != nullptr && listener->function != nullptr)
        {
            const auto record = std::find_if(records.begin(), records.end(), isMeant);
            if (record != records.end())
            {
                records.erase(record);
            }
        }
    }
    int NeedsLock() override
    {
        return 0;
    }
    void Lock() override
    {
    }
    void Unlock() override
    {
    }
    unsigned GetKeyCount() override
    {
        return static_cast<unsigned>(values.size());
    }
    const char* GetKeyAt(unsigned index) override
    {
        return index < values.size() ? values[index].key.c_str() : nullptr;
    }
    int GetTypeAt(unsigned index) override
    {
        return index < values.size() ? values[index].type : static_cast<int>(ValueType_None);
    }

    const std::string& GetName() const
    {
        return name;
    }
    bool Reaches(const ListedTable* wanted) const;
    void Empty();
    static void Drop(KVTable child);

private:
    Value* Look(const char* key)
    {
        for (Value& value : values)
        {
            if (key != nullptr && value.key == key)
            {
                return &value;
            }
        }
        return nullptr;
    }
    void Put(const char* key, Value value);
    int Write(const char* key, const Value& value);
    void CallListeners(const std::string& key);

    KVTable handle;
    std::string name;
    bool isHeld; ///< by who created it
    int parents = 0;
    std::deque<Value> values;
    std::vector<std::unique_ptr<Value>> array;
    std::list<Record> records;
    KVListener tableListener{};
    unsigned long long lastNumber = 0;
};

namespace
{

std::vector<std::unique_ptr<ListedTable>>& Tables()
{
    static auto* tables = new std::vector<std::unique_ptr<ListedTable>>;
    return *tables;
}

ListedTable* Find(KVTable handle)
{
    return handle ? Tables()[TableHandle::GetNumber(handle)].get() : nullptr;
}

ListedTable& Open(const char* name, bool creatorHolds)
{
    const KVTable handle = TableHandle::Make(Tables().size());
    Tables().push_back(std::make_unique<ListedTable>(handle, name, creatorHolds));
    return *Tables().back();
}

} // namespace

void ListedTable::Put(const char* key, Value value)
{
    Value* there = Look(key);
    const KVTable before = there == nullptr ? KVTable() : there->table;
    value.key = key;
    if (there == nullptr)
    {
        values.push_back(std::move(value));
    }
    else
    {
        *there = std::move(value);
    }
    Drop(before);
}

int ListedTable::Write(const char* key, const Value& value)
{
    if (key == nullptr)
    {
        return 0;
    }
    const std::string copy = key;
    Put(copy.c_str(), value);
    CallListeners(copy);
    return 1;
}

void ListedTable::CallListeners(const std::string& key)
{
    std::vector<unsigned long long> numbers;
    for (const Record& record : records)
    {
        if (record.key == key)
        {
            numbers.push_back(record.number);
        }
    }
    const KVTable own = handle;
    for (const unsigned long long number : numbers)
    {
        const auto isMeant = [number](const Record& record)
        {
            return record.number == number;
        };
        const auto record = std::find_if(records.begin(), records.end(), isMeant);
        if (record == records.end() || record->listener.function == nullptr)
        {
            continue;
        }
        const KVListener listener = record->listener;
        listener.function(listener.object, opResult_ValueChanged, own, key.c_str());
        if (Tessel::Find(own) == nullptr)
        {
            return;
        }
    }
    const KVListener listener = tableListener;
    if (listener.function != nullptr)
    {
        listener.function(listener.object, opResult_ValueChanged, own, key.c_str());
    }
}

KVTable ListedTable::AddTable(const char* key, int)
{
    if (key == nullptr)
    {
        return KVTable();
    }
    const std::string copy = key;
    Value value;
    value.type = ValueType_Table;
    ListedTable& child = Open(key, false);
    ++child.parents;
    value.table = child.handle;
    Put(copy.c_str(), value);
    return value.table;
}

int ListedTable::AttachTable(const char* key, KVTable child, int)
{
    ListedTable* found = Tessel::Find(child);
    if (key == nullptr || found == nullptr || found->Reaches(this))
    {
        return 0;
    }
    const std::string copy = key;
    Value value;
    value.type = ValueType_Table;
    value.table = child;
    ++found->parents;
    Put(copy.c_str(), value);
    return 1;
}

bool ListedTable::Reaches(const ListedTable* wanted) const
{
    return this == wanted || std::any_of(values.begin(), values.end(),
                                         [wanted](const Value& value)
                                         {
                                             const ListedTable* child = Tessel::Find(value.table);
                                             return child != nullptr && child->Reaches(wanted);
                                         });
}

/// Closes the table. It is gone when this returns.
void ListedTable::Empty()
{
    const std::unique_ptr<ListedTable> closed = std::move(Tables()[TableHandle::GetNumber(handle)]);
    for (const Value& value : closed->values)
    {
        Drop(value.table);
    }
}

/// Ends one parent's hold on `child`.
void ListedTable::Drop(KVTable child)
{
    ListedTable* found = Tessel::Find(child);
    if (found != nullptr && --found->parents == 0 && !found->isHeld)
    {
        found->Empty();
    }
}

namespace
{

/// What null handles and handles of closed tables lead to.
class ClosedTable final : public ITable
{
public:
    // clang-format off
    KVValue* GetValueAt(unsigned) override { return nullptr; }
    KVTable GetTable(const char*) override { return KVTable(); }
    int GetInt(const char*) override { return 0; }
    float GetFloat(const char*) override { return 0.0f; }
    const char* GetString(const char*) override { return nullptr; }
    int GetFloat2(const char*, Float2*) override { return 0; }
    int GetFloat3(const char*, Float3*) override { return 0; }
    int GetFloat4(const char*, Float4*) override { return 0; }
    unsigned GetUInt(const char*) override { return 0; }
    int SetUInt(const char*, unsigned, int) override { return 0; }
    int SetFloat4(const char*, const Float4*, int) override { return 0; }
    int SetFloat3(const char*, const Float3*, int) override { return 0; }
    int SetFloat2(const char*, const Float2*, int) override { return 0; }
    int SetString(const char*, const char*, int) override { return 0; }
    int SetFloat(const char*, float, int) override { return 0; }
    int SetInt(const char*, int, int) override { return 0; }
    KVTable AddTable(const char*, int) override { return KVTable(); }
    int AttachTable(const char*, KVTable, int) override { return 0; }
    int RemoveAt(unsigned, int) override { return 0; }
    int PushUInt(unsigned, int) override { return 0; }
    unsigned GetCount() override { return 0; }
    KVValue* FindValue(const char*) override { return nullptr; }
    KVListener* GetTableListener() override { return nullptr; }
    KVListener* GetValueListener(const char*) override { return nullptr; }
    void RemoveValueListener(const char*, const KVListener*) override {}
    int NeedsLock() override { return 0; }
    void Lock() override {}
    void Unlock() override {}
    unsigned GetKeyCount() override { return 0; }
    const char* GetKeyAt(unsigned) override { return nullptr; }
    int GetTypeAt(unsigned) override { return 0; }
    // clang-format on
};

ClosedTable closedTable;

} // namespace

ITable* ResolveTable(KVTable table)
{
    if (ListedTable* found = Find(table))
    {
        return found;
    }
    return &closedTable;
}

KVTable CreateTable(const char* name)
{
    const std::size_t number = Tables().size();
    Open(name == nullptr ? "" : name, true);
    return TableHandle::Make(number);
}

void CloseTable(KVTable table)
{
    if (ListedTable* found = Find(table))
    {
        found->Empty();
    }
}

const char* GetTableName(KVTable table)
{
    const ListedTable* found = Find(table);
    return found == nullptr ? nullptr : found->GetName().c_str();
}

unsigned GetOpenTableCount()
{
    return static_cast<unsigned>(std::count_if(Tables().begin(), Tables().end(),
                                               [](const std::unique_ptr<ListedTable>& table)
                                               {
                                                   return table != nullptr;
                                               }));
}

} // namespace Tessel

#if defined(_WIN32)
// A program that is linked statically has no symbol that is missing.
const Tessel::SlotOperations* TesselGetSlotOperations()
{
    return nullptr;
}
#endif
