// VELL: data-driven hierarchical state machines.
// foundation/ValueRecord.cpp: the listener record of an object that listens to its own table.
#include <vell/ValueRecord.h>

#include "foundation/TableSync.h"
#include "foundation/TreeKeys.h"

namespace vell
{

void ValueRecord::Fill(Tessel::KVTable table, Tessel::KVListener* given,
                       const Tessel::KVListener& own)
{
    if (record != nullptr && record != given && listened == table)
    {
        return;
    }
    listened = table;
    content = own;
    record = given;
    *given = own;
}

void ValueRecord::Stop()
{
    if (record != nullptr && listened)
    {
        const TableLock lock(listened);
        listened->RemoveValueListener(kValueKey, &content);
    }
    record = nullptr;
}

void ValueRecord::StopElsewhere(const Tessel::KVTable& table)
{
    if (listened != table)
    {
        Stop();
    }
}

void ValueRecord::StopAfter(const Tessel::KVTable& table)
{
    if (listened == table)
    {
        record = nullptr;
    }
    Stop();
}

} // namespace vell
