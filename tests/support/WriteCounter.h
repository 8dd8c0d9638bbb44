// VELL: data-driven hierarchical state machines.
// tests/support/WriteCounter.h: how often a key of a table is written.
#pragma once

#include <tessel/Tessel.h>

#include <string>
#include <utility>

namespace vell::test
{

/// Counts the writes of one key for as long as it lives.
class WriteCounter
{
public:
    WriteCounter(Tessel::KVTable watched, std::string watchedKey)
        : table(watched), key(std::move(watchedKey))
    {
        *table->GetValueListener(key.c_str()) = Record();
    }
    ~WriteCounter()
    {
        const Tessel::KVListener record = Record();
        table->RemoveValueListener(key.c_str(), &record);
    }
    WriteCounter(const WriteCounter&) = delete;
    WriteCounter& operator=(const WriteCounter&) = delete;

    /// Gives the number of writes since the last call.
    int Take()
    {
        const int taken = count;
        count = 0;
        return taken;
    }

private:
    Tessel::KVListener Record()
    {
        return {this, [](void* counter, Tessel::opResult, Tessel::KVTable, const char*)
                {
                    return ++static_cast<WriteCounter*>(counter)->count;
                }};
    }

    Tessel::KVTable table;
    std::string key;
    int count = 0;
};

} // namespace vell::test
