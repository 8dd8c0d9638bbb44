// VELL: data-driven hierarchical state machines.
// foundation/ValueRecord.cpp: the listener record of an object that listens to its own table.
#include <vell/ValueRecord.h>

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
    if (listened != table)
    {
        Stop();
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
        listened->RemoveValueListener(kValueKey, &content);
    }
    record = nullptr;
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
