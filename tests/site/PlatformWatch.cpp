// VELL: data-driven hierarchical state machines.
// tests/site/PlatformWatch.cpp: standing between the library and the platform libraries.
#include "tests/site/PlatformWatch.h"

#include <durm/DURMBaseLib.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <utility>

// The linker leads this program's calls of these functions here (--wrap).
extern "C"
{
    void __real_LogImpl(int level, const char* text);
    void __wrap_LogImpl(int level, const char* text);
}

namespace Tessel
{

ITable* RealResolveTable(KVTable table) __asm__("__real__ZN6Tessel12ResolveTableENS_7KVTableE");
ITable* WatchResolveTable(KVTable table) __asm__("__wrap__ZN6Tessel12ResolveTableENS_7KVTableE");
void RealCloseTable(KVTable table) __asm__("__real__ZN6Tessel10CloseTableENS_7KVTableE");
void WatchCloseTable(KVTable table) __asm__("__wrap__ZN6Tessel10CloseTableENS_7KVTableE");
KVTable RealCreateTable(const char* name) __asm__("__real__ZN6Tessel11CreateTableEPKc");
KVTable WatchCreateTable(const char* name) __asm__("__wrap__ZN6Tessel11CreateTableEPKc");

} // namespace Tessel

namespace DURMBaseLib
{

const char* RealGetJsonName(__JSONTYPES__ member) __asm__(
    "__real__ZN11DURMBaseLib11GetJsonNameENS_13__JSONTYPES__E");
const char* WatchGetJsonName(__JSONTYPES__ member) __asm__(
    "__wrap__ZN11DURMBaseLib11GetJsonNameENS_13__JSONTYPES__E");
const char* RealGetConnectorName(__CONNECTOR_TYPES__ type) __asm__(
    "__real__ZN11DURMBaseLib16GetConnectorNameENS_19__CONNECTOR_TYPES__E");
const char* WatchGetConnectorName(__CONNECTOR_TYPES__ type) __asm__(
    "__wrap__ZN11DURMBaseLib16GetConnectorNameENS_19__CONNECTOR_TYPES__E");

} // namespace DURMBaseLib

namespace vell::test
{
namespace
{

using namespace Tessel;

struct Call
{
    std::string table;
    std::string text; ///< operation and key
};

struct Watched
{
    bool needsLock = false;
    bool hasOneRecord = false;
    std::vector<Call> calls;
    Lines closed;
    Lines logged;
    std::vector<int> connectors;
    std::string refused; ///< name of the tables that are not created; empty for none
    int shownType = -1;  ///< of every value that is found; -1 for its own
};

Watched* watched = nullptr;

std::string NameOf(KVTable table)
{
    const char* name = GetTableName(table);
    return name != nullptr ? name : table ? "(closed)" : "(null)";
}

std::uintptr_t BitsOf(KVTable table)
{
    std::uintptr_t bits = 0;
    std::memcpy(&bits, &table, sizeof(bits));
    return bits;
}

/// A value that says that it is of another type.
class ShownValue final : public KVValue
{
public:
    ShownValue() = default;
    ShownValue(KVValue* shownValue, int shownType) : value(shownValue), type(shownType)
    {
    }

    int GetValueType() const override
    {
        return type;
    }
    int GetIntValue() const override
    {
        return value->GetIntValue();
    }
    float GetFloatValue() const override
    {
        return value->GetFloatValue();
    }
    const char* GetStringValue() const override
    {
        return value->GetStringValue();
    }
    int GetFloat2Value(Float2* out) const override
    {
        return value->GetFloat2Value(out);
    }
    int GetFloat3Value(Float3* out) const override
    {
        return value->GetFloat3Value(out);
    }
    unsigned GetUIntValue() const override
    {
        return value->GetUIntValue();
    }

private:
    KVValue* value = nullptr;
    int type = 0;
};

/// Notes each call of a table and hands it on.
class WatchedTable final : public ITable
{
public:
    explicit WatchedTable(KVTable watchedHandle) : handle(watchedHandle)
    {
    }

    KVValue* GetValueAt(unsigned index) override
    {
        return Noted("GetValueAt")->GetValueAt(index);
    }
    KVTable GetTable(const char* key) override
    {
        return Noted("GetTable", key)->GetTable(key);
    }
    int GetInt(const char* key) override
    {
        return Noted("GetInt", key)->GetInt(key);
    }
    float GetFloat(const char* key) override
    {
        return Noted("GetFloat", key)->GetFloat(key);
    }
    const char* GetString(const char* key) override
    {
        return Noted("GetString", key)->GetString(key);
    }
    int GetFloat2(const char* key, Float2* out) override
    {
        return Noted("GetFloat2", key)->GetFloat2(key, out);
    }
    int GetFloat3(const char* key, Float3* out) override
    {
        return Noted("GetFloat3", key)->GetFloat3(key, out);
    }
    int GetFloat4(const char* key, Float4* out) override
    {
        return Noted("GetFloat4", key)->GetFloat4(key, out);
    }
    unsigned GetUInt(const char* key) override
    {
        return Noted("GetUInt", key)->GetUInt(key);
    }
    int SetUInt(const char* key, unsigned value, int flag) override
    {
        return Noted(flag == 0 ? "SetUInt without flag" : "SetUInt", key)
            ->SetUInt(key, value, flag);
    }
    int SetFloat4(const char* key, const Float4* value, int flag) override
    {
        return Noted("SetFloat4", key)->SetFloat4(key, value, flag);
    }
    int SetFloat3(const char* key, const Float3* value, int flag) override
    {
        return Noted("SetFloat3", key)->SetFloat3(key, value, flag);
    }
    int SetFloat2(const char* key, const Float2* value, int flag) override
    {
        return Noted("SetFloat2", key)->SetFloat2(key, value, flag);
    }
    int SetString(const char* key, const char* text, int flag) override
    {
        return Noted("SetString", key)->SetString(key, text, flag);
    }
    int SetFloat(const char* key, float value, int flag) override
    {
        return Noted("SetFloat", key)->SetFloat(key, value, flag);
    }
    int SetInt(const char* key, int value, int flag) override
    {
        return Noted("SetInt", key)->SetInt(key, value, flag);
    }
    KVTable AddTable(const char* key, int flag) override
    {
        return Noted("AddTable", key)->AddTable(key, flag);
    }
    int AttachTable(const char* key, KVTable child, int flag) override
    {
        return Noted("AttachTable", key)->AttachTable(key, child, flag);
    }
    int RemoveAt(unsigned index, int flag) override
    {
        return Noted("RemoveAt")->RemoveAt(index, flag);
    }
    int PushUInt(unsigned value, int flag) override
    {
        return Noted("PushUInt")->PushUInt(value, flag);
    }
    unsigned GetCount() override
    {
        return Noted("GetCount")->GetCount();
    }
    KVValue* FindValue(const char* key) override
    {
        KVValue* value = Noted("FindValue", key)->FindValue(key);
        if (value == nullptr || watched == nullptr || watched->shownType < 0)
        {
            return value;
        }
        shown = ShownValue(value, watched->shownType);
        return &shown;
    }
    KVListener* GetTableListener() override
    {
        return Noted("GetTableListener")->GetTableListener();
    }
    KVListener* GetValueListener(const char* key) override
    {
        ITable* table = Noted("GetValueListener", key);
        if (watched == nullptr || !watched->hasOneRecord)
        {
            return table->GetValueListener(key);
        }
        KVListener*& record = records[key];
        return record = record != nullptr ? record : table->GetValueListener(key);
    }
    void RemoveValueListener(const char* key, const KVListener* listener) override
    {
        records.erase(key);
        Noted("RemoveValueListener", key)->RemoveValueListener(key, listener);
    }
    int NeedsLock() override
    {
        const int needsLock = Noted("NeedsLock")->NeedsLock();
        return watched != nullptr && watched->needsLock ? 1 : needsLock;
    }
    void Lock() override
    {
        Noted("Lock")->Lock();
    }
    void Unlock() override
    {
        Noted("Unlock")->Unlock();
    }
    unsigned GetKeyCount() override
    {
        return RealResolveTable(handle)->GetKeyCount();
    }
    const char* GetKeyAt(unsigned index) override
    {
        return RealResolveTable(handle)->GetKeyAt(index);
    }
    int GetTypeAt(unsigned index) override
    {
        return RealResolveTable(handle)->GetTypeAt(index);
    }

private:
    ITable* Noted(const char* operation, const char* key = nullptr)
    {
        if (watched != nullptr)
        {
            const std::string text = key == nullptr ? "" : std::string(" ") + key;
            watched->calls.push_back(Call{NameOf(handle), operation + text});
        }
        return RealResolveTable(handle);
    }

    KVTable handle;
    std::map<std::string, KVListener*> records; ///< used where each key has one
    ShownValue shown;                           ///< the last that was found, where types are shown
};

/// The watched tables by handle. They stay, since callers keep them for the length of a call.
std::map<std::uintptr_t, std::unique_ptr<WatchedTable>>& Tables()
{
    static auto* tables = new std::map<std::uintptr_t, std::unique_ptr<WatchedTable>>;
    return *tables;
}

std::set<int>& Members()
{
    static auto* members = new std::set<int>;
    return *members;
}

} // namespace

PlatformWatch::PlatformWatch()
{
    watched = new Watched;
}

PlatformWatch::~PlatformWatch()
{
    delete std::exchange(watched, nullptr);
}

void PlatformWatch::NeedLocks()
{
    watched->needsLock = true;
}

void PlatformWatch::KeepOneRecordForEachKey()
{
    watched->hasOneRecord = true;
}

void PlatformWatch::RefuseTables(const std::string& name)
{
    watched->refused = name;
}

void PlatformWatch::ShowValuesAs(int type)
{
    watched->shownType = type;
}

Lines PlatformWatch::Take()
{
    Lines lines;
    for (const Call& call : watched->calls)
    {
        lines.push_back(call.table + " " + call.text);
    }
    watched->calls.clear();
    return lines;
}

Lines PlatformWatch::TakeOf(const std::string& table)
{
    Lines lines;
    for (const Call& call : watched->calls)
    {
        if (call.table == table)
        {
            lines.push_back(call.text);
        }
    }
    watched->calls.clear();
    return lines;
}

Lines PlatformWatch::TakeClosed()
{
    return std::exchange(watched->closed, Lines());
}

Lines PlatformWatch::TakeLogged()
{
    return std::exchange(watched->logged, Lines());
}

std::vector<int> PlatformWatch::TakeConnectors()
{
    return std::exchange(watched->connectors, std::vector<int>());
}

std::set<int> PlatformWatch::MembersAskedFor()
{
    return Members();
}

std::set<int> PlatformWatch::MembersListed()
{
    std::set<int> listed;
    for (int number = 0; number < 256; ++number)
    {
        const auto member = static_cast<DURMBaseLib::__JSONTYPES__>(number);
        if (DURMBaseLib::RealGetJsonName(member) != nullptr)
        {
            listed.insert(number);
        }
    }
    return listed;
}

} // namespace vell::test

Tessel::ITable* Tessel::WatchResolveTable(KVTable table)
{
    using namespace vell::test;
    if (watched == nullptr)
    {
        return RealResolveTable(table);
    }
    std::unique_ptr<WatchedTable>& entry = Tables()[BitsOf(table)];
    if (entry == nullptr)
    {
        entry = std::make_unique<WatchedTable>(table);
    }
    return entry.get();
}

void Tessel::WatchCloseTable(KVTable table)
{
    using namespace vell::test;
    if (watched != nullptr)
    {
        watched->closed.push_back(NameOf(table));
    }
    RealCloseTable(table);
}

Tessel::KVTable Tessel::WatchCreateTable(const char* name)
{
    using namespace vell::test;
    const bool isRefused = watched != nullptr && name != nullptr && watched->refused == name;
    return isRefused ? KVTable() : RealCreateTable(name);
}

const char* DURMBaseLib::WatchGetConnectorName(__CONNECTOR_TYPES__ type)
{
    using namespace vell::test;
    if (watched != nullptr)
    {
        watched->connectors.push_back(type);
    }
    return RealGetConnectorName(type);
}

const char* DURMBaseLib::WatchGetJsonName(__JSONTYPES__ member)
{
    vell::test::Members().insert(member);
    return RealGetJsonName(member);
}

void __wrap_LogImpl(int level, const char* text)
{
    using namespace vell::test;
    if (watched != nullptr)
    {
        watched->logged.push_back(std::to_string(level) + " " + text);
    }
    __real_LogImpl(level, text);
}
