// VELL: data-driven hierarchical state machines.
// include/vell/ValueRecord.h: the listener record of an object that listens to its own table.
#pragma once

#include <tessel/Tessel.h>

namespace vell
{

/// Remembers by which record an object listens to the key "value" of its table, so that it listens
/// once however often it is told to. A copy of the object does not listen.
class ValueRecord
{
public:
    ValueRecord() = default;
    ValueRecord(const ValueRecord&)
    {
    }
    ValueRecord& operator=(const ValueRecord&)
    {
        return *this;
    }

    /// Fills `given`, the record that `table` gave for the key. Leaves it empty when the object
    /// listens to `table` by another record already.
    void Fill(Tessel::KVTable table, Tessel::KVListener* given, const Tessel::KVListener& own)
    {
        if (record != nullptr && record != given && listened == table)
        {
            return;
        }
        listened = table;
        record = given;
        *given = own;
    }

    /// The object listens no more, or its table is gone.
    void Clear()
    {
        record = nullptr;
    }

private:
    Tessel::KVTable listened;
    const Tessel::KVListener* record = nullptr; ///< null while the object does not listen
};

} // namespace vell
