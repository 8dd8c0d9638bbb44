// VELL: data-driven hierarchical state machines.
// include/vell/IHSM.h: a machine as a host holds it.
#pragma once

#include <tessel/Tessel.h>
#include <vell/Callbacks.h>
#include <vell/Export.h>
#include <vell/Types.h>

namespace vell
{

class IBaseDef;
class IBroadcastListener;
class IParameterTable;

/// A machine. Call its functions in this order: a factory (CreateHSM, CreateHSMJson);
/// `RegisterNodeDef`; `Init`, whose result is the only one that reports a failed load;
/// registrations and subscriptions; `Start`, once; `Update`, once per frame; `Uninit`; `Destroy`;
/// delete. A machine belongs to one thread at a time, and machines are created and deleted by one
/// thread at a time.
///
/// A callback is any code of the host that a machine calls: an action, a listener, a trigger, a
/// factory, the state-switch or log callback, a virtual function of a state or definition class. No
/// callback may end, load or tick its own machine (`Uninit`, `Create`, `Init`, `Start`, `Update`,
/// delete): the caller would continue with deleted data. Set a flag, and act on it after `Update`
/// has returned. docs/host-guide.md has a table of what each kind of callback may call.
class VELL_API IHSM
{
public:
    // The order of these is part of the interface.

    /// Not from a callback.
    virtual ~IHSM() = default;
    /// Loads parameters and nodes from the document, binds conditions and builds the tree. Returns
    /// 1, or 0 with log lines.
    virtual int Init() = 0;
    /// Releases the definitions and the arena and closes the tree. After it only `Destroy` and
    /// deletion are allowed. Not from a callback. Returns 1.
    virtual int Uninit() = 0;
    /// Restores both stacks and the last state change from `context`, a table like another
    /// machine's "contextInfo". Returns 1 even when an id names no state; only the log shows that.
    /// States are neither left nor entered.
    virtual int SetContextInfo(const Tessel::KVTable& context) = 0;
    /// Reads the document. The constructors call it; a subclass built without a document calls it
    /// itself. Not from a callback. Returns 1, or 0 with log lines.
    virtual int Create() = 0;
    /// Empties the registry of state factories of the process. Returns 1.
    virtual int Destroy() = 0;
    /// One tick; `timeStep` in the host's unit of time. Not from a callback. Throws
    /// std::out_of_range when a blip ends and the index of the loop is above the main stack.
    virtual void Update(float timeStep) = 0;
    /// Activates the global state and enters the start state. Failures go to the log.
    virtual void Start() = 0;
    /// Gives the parameters, or null before `Init`.
    virtual IParameterTable* GetParameterTable() = 0;
    /// Gives a parameter's id, or 0, without a log line.
    virtual unsigned int FindParameterByName(const char* name) = 0;
    /// Gives the root of the tree that mirrors the machine, or a null handle.
    virtual Tessel::KVTable GetKVTable() const = 0;
    /// Gives the innermost active state, or null.
    virtual SMState* GetCurrentState() = 0;
    /// Gives the model's file name, or null, but never an empty text.
    virtual const char* GetMDLAsset() = 0;
    /// Gives the skeleton's file name, or null.
    virtual const char* GetSkelAsset() = 0;
    /// Gives the document's GUID, empty when it has none. Null with a log line when there is no
    /// node table.
    virtual const char* GetGUID() = 0;
    /// Gives the machine type that the document names.
    virtual __STATE_MACHINE_TYPES__ GetHSMType() const = 0;
    /// Starts an iteration over the definitions that have a flag of `mask`, or over all for
    /// DefTypesAll, in ascending id. Null at the end. There is only one iteration at a time.
    virtual IBaseDef* BeginDef(unsigned int mask) = 0;
    /// Continues the iteration.
    virtual IBaseDef* NextDef(unsigned int mask) = 0;
    /// Gives the definition with this name and the lowest id, or null with a log line.
    virtual IBaseDef* FindDef(const char* name) = 0;
    /// Gives the definition, or null with a log line.
    virtual IBaseDef* FindDef(unsigned int id) = 0;
    /// The listener lists. Each Subscribe returns 1, or 0 when `listener` is on the list already;
    /// each Unsubscribe returns 1, or 0 when it is not. Transition change listeners are never
    /// called: the record of a state change names the transition.
    virtual int SubscribeTransitionChange(IBroadcastListener* listener) = 0;
    virtual int UnsubscribeTransitionChange(IBroadcastListener* listener) = 0;
    virtual int SubscribeStateChange(IBroadcastListener* listener) = 0;
    virtual int UnsubscribeStateChange(IBroadcastListener* listener) = 0;
    virtual int SubscribeEvents(IBroadcastListener* listener) = 0;
    virtual int UnsubscribeEvents(IBroadcastListener* listener) = 0;
    /// Makes `action` available to `FindAction` by its id. Returns 0 even on success; call
    /// `FindAction` to check. The host keeps owning the action.
    virtual int RegisterAction(Action* action) = 0;
    /// Gives the registered action, or null.
    virtual Action* FindAction(unsigned int id) = 0;
    /// Registers `factory` for the nodes of a builder number, for every machine of the process that
    /// is not yet initialised. Returns 1, or 0 with a log line.
    virtual int RegisterNodeDef(__DURM_BUILDERS__ builder, NodeDefFactory factory) = 0;

protected:
    /// Registers `factory` for the states of a builder number, for every machine of the process.
    virtual int RegisterState(__DURM_BUILDERS__ builder, StateFactory factory) = 0;

public:
    /// Sets the state-switch callback; null for none.
    virtual void SetStateSwitchCallback(StateSwitchCallback callback) = 0;
};

} // namespace vell
