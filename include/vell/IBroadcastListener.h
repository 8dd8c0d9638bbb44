// VELL: data-driven hierarchical state machines.
// include/vell/IBroadcastListener.h: the interface of whoever is told of events.
#pragma once

#include <vell/Export.h>

namespace vell
{

/// Receives events. Listeners belong to the host: the machine keeps plain pointers and never
/// deletes one, so unsubscribe a listener before deleting it. The destructor is not virtual: delete
/// a listener as what it is.
class VELL_API IBroadcastListener
{
public:
    /// Called with an event and its `record`, which is valid during the call only and may be null.
    /// The machine ignores the result.
    virtual int OnBroadcastEvent(int event, const void* record) = 0;

protected:
    ~IBroadcastListener() = default;
};

} // namespace vell
