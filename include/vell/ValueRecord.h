// VELL: data-driven hierarchical state machines.
// include/vell/ValueRecord.h: the listener record of an object that listens to its own table.
#pragma once

#include <tessel/Tessel.h>
#include <vell/Export.h>

namespace vell
{

/// Remembers by which record an object listens to the key "value" of its table, so that it listens
/// once however often it is told to, and never when it is gone. A copy of the object does not
/// listen, and an object that is assigned stops.
class VELL_API ValueRecord
{
public:
    ValueRecord() = default;
    ValueRecord(const ValueRecord&)
    {
    }
    ValueRecord& operator=(const ValueRecord&)
    {
        Stop();
        return *this;
    }

    /// Fills `given`, the record that `table` gave for the key, under the lock of the table. Leaves
    /// it empty when the object listens to `table` by another record already. It listens to no
    /// other table, see `StopElsewhere`.
    void Fill(Tessel::KVTable table, Tessel::KVListener* given, const Tessel::KVListener& own);

    /// Removes the record from the table, if the object listens. This and the next two take the
    /// lock of the table: to be called while no other is held.
    void Stop();

    /// As `Stop`, unless the object listens to `table`.
    VELL_LOCAL void StopElsewhere(const Tessel::KVTable& table);

    /// As `Stop`, when the record is removed from `table` already.
    void StopAfter(const Tessel::KVTable& table);

private:
    Tessel::KVTable listened;
    Tessel::KVListener content{};
    const Tessel::KVListener* record = nullptr; ///< null while the object does not listen
};

} // namespace vell
