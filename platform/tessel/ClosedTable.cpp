// VELL: data-driven hierarchical state machines.
// platform/tessel/ClosedTable.cpp: the table behind null and stale handles.
#include "platform/tessel/ClosedTable.h"

namespace Tessel
{

namespace
{

class ClosedTable final : public ITable
{
public:
    constexpr ClosedTable() = default;

    KVValue* GetValueAt(unsigned) override
    {
        return nullptr;
    }

    KVTable GetTable(const char*) override
    {
        return KVTable();
    }

    int GetInt(const char*) override
    {
        return 0;
    }

    float GetFloat(const char*) override
    {
        return 0.0f;
    }

    const char* GetString(const char*) override
    {
        return nullptr;
    }

    int GetFloat2(const char*, Float2*) override
    {
        return 0;
    }

    int GetFloat3(const char*, Float3*) override
    {
        return 0;
    }

    int GetFloat4(const char*, Float4*) override
    {
        return 0;
    }

    unsigned GetUInt(const char*) override
    {
        return 0;
    }

    int SetUInt(const char*, unsigned, int) override
    {
        return 0;
    }

    int SetFloat4(const char*, const Float4*, int) override
    {
        return 0;
    }

    int SetFloat3(const char*, const Float3*, int) override
    {
        return 0;
    }

    int SetFloat2(const char*, const Float2*, int) override
    {
        return 0;
    }

    int SetString(const char*, const char*, int) override
    {
        return 0;
    }

    int SetFloat(const char*, float, int) override
    {
        return 0;
    }

    int SetInt(const char*, int, int) override
    {
        return 0;
    }

    KVTable AddTable(const char*, int) override
    {
        return KVTable();
    }

    int AttachTable(const char*, KVTable, int) override
    {
        return 0;
    }

    int RemoveAt(unsigned, int) override
    {
        return 0;
    }

    int PushUInt(unsigned, int) override
    {
        return 0;
    }

    unsigned GetCount() override
    {
        return 0;
    }

    KVValue* FindValue(const char*) override
    {
        return nullptr;
    }

    KVListener* GetTableListener() override
    {
        return nullptr;
    }

    KVListener* GetValueListener(const char*) override
    {
        return nullptr;
    }

    void RemoveValueListener(const char*, const KVListener*) override
    {
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
        return 0;
    }

    const char* GetKeyAt(unsigned) override
    {
        return nullptr;
    }

    int GetTypeAt(unsigned) override
    {
        return ValueType_None;
    }
};

ClosedTable closedTable;

} // namespace

ITable* GetClosedTable()
{
    return &closedTable;
}

} // namespace Tessel
