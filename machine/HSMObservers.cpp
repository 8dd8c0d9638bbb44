// VELL: data-driven hierarchical state machines.
// machine/HSMObservers.cpp: listeners, actions, triggers, assets, iterating definitions.
#include <vell/Action.h>
#include <vell/HSM.h>
#include <vell/IBroadcastListener.h>
#include <vell/TransitionDef.h>

#include "definitions/BaseDefInternals.h"
#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "introspection/MachineTree.h"
#include "machine/HSMInternals.h"

#include <algorithm>

namespace vell
{
namespace
{

/// Gives a definition to the host, which may write to the public fields that a transition has.
BaseDef* HandOut(BaseDef* def)
{
    if (dynamic_cast<TransitionDef*>(def) != nullptr)
    {
        BaseDef::Internals::HandOut(*def);
    }
    return def;
}

} // namespace

int HSM::SubscribeTransitionChange(IBroadcastListener* listener)
{
    // Required: nothing ever calls the listeners of this list.
    return Subscribe(transitionChangeListeners, listener);
}

int HSM::UnsubscribeTransitionChange(IBroadcastListener* listener)
{
    return Unsubscribe(transitionChangeListeners, listener);
}

int HSM::SubscribeStateChange(IBroadcastListener* listener)
{
    return Subscribe(stateChangeListeners, listener);
}

int HSM::UnsubscribeStateChange(IBroadcastListener* listener)
{
    return Unsubscribe(stateChangeListeners, listener);
}

int HSM::SubscribeEvents(IBroadcastListener* listener)
{
    return Subscribe(eventListeners, listener);
}

int HSM::UnsubscribeEvents(IBroadcastListener* listener)
{
    return Unsubscribe(eventListeners, listener);
}

int HSM::Subscribe(ListenerList& list, IBroadcastListener* listener)
{
    if (std::find(list.begin(), list.end(), listener) != list.end())
    {
        return 0;
    }
    list.push_back(listener);
    return 1;
}

int HSM::Unsubscribe(ListenerList& list, IBroadcastListener* listener)
{
    const auto entry = std::find(list.begin(), list.end(), listener);
    if (entry == list.end())
    {
        return 0;
    }
    list.erase(entry);
    return 1;
}

int HSM::Notify(StateChangeEvent change)
{
    if (stateChangeListeners.empty())
    {
        return 0;
    }
    int called = 0;
    // Required: a listener that unsubscribes during its call causes the next one to be skipped.
    for (std::size_t i = 0; i < stateChangeListeners.size(); ++i)
    {
        // Each listener gets a record of its own: one may write into it.
        StateChangeEvent record = change;
        // Required: a null listener is skipped, and the keys are cleared anyway.
        if (stateChangeListeners[i] != nullptr)
        {
            stateChangeListeners[i]->OnBroadcastEvent(HSMEventStateChange, &record);
            ++called;
        }
    }
    // Required: the keys of the last switch read 0 after the listeners were told. Without listeners
    // they keep their values.
    MachineTree(kvTable, internals->context).ClearChange();
    return called;
}

int HSM::FireEvent(__HSMEventType__ type, const __PlayAnimEvent__* event)
{
    int called = 0;
    for (std::size_t i = 0; i < eventListeners.size(); ++i)
    {
        if (eventListeners[i] != nullptr)
        {
            eventListeners[i]->OnBroadcastEvent(type, event);
            ++called;
        }
    }
    return called;
}

int HSM::RegisterAction(Action* action)
{
    do
    {
        ERROR_BREAK(action);
        const bool isNew = actions.emplace(action->id, action).second;
        ERROR_BREAK(isNew);
    } while (false);
    // Required: 0 also on success. FindAction tells.
    return 0;
}

Action* HSM::FindAction(unsigned int id)
{
    const auto entry = actions.find(id);
    return entry == actions.end() ? nullptr : entry->second;
}

int HSM::AssignTrigger(const char* name, Trigger trigger)
{
    ERROR_RETURN(nodeDefTable, 0);
    auto* transition = dynamic_cast<TransitionDef*>(nodeDefTable->FindByName(name));
    ERROR_RETURN(transition, 0);
    // Required: a null trigger is offered twice, which the log shows.
    ERROR_RETURN(transition->RegisterCondition(trigger), 0);
    return 1;
}

int HSM::AssignDefaultAction(ActionFactory factory)
{
    if (factory == nullptr || nodeDefTable == nullptr)
    {
        return 0;
    }
    int count = 0;
    for (BaseDef* def = nodeDefTable->FindFirst(DefTypesState); def != nullptr;
         def = nodeDefTable->FindNext(DefTypesState))
    {
        // Required: an action that is null is passed on and counted.
        def->RegisterExecute(factory(def->GetScriptName()));
        ++count;
    }
    if (count != 0)
    {
        LogStream(LogInfo) << "Assigned a Default Action to " << count
                           << " states of eHSMDefTypes::DefTypesState type" << EndLine;
    }
    return count;
}

const char* HSM::GetMDLAsset()
{
    ERROR_RETURN(nodeDefTable, nullptr);
    const char* file = nodeDefTable->modelFileName;
    // Required: an empty text gives null here, while GetSkelAsset gives the empty text.
    return file == nullptr || *file == '\0' ? nullptr : file;
}

const char* HSM::GetSkelAsset()
{
    ERROR_RETURN(nodeDefTable, nullptr);
    return nodeDefTable->skeletonFileName;
}

const char* HSM::GetGUID()
{
    ERROR_RETURN(nodeDefTable, nullptr);
    return nodeDefTable->guid;
}

IBaseDef* HSM::BeginDef(unsigned int mask)
{
    ERROR_RETURN(nodeDefTable, nullptr);
    return HandOut(nodeDefTable->FindFirst(mask));
}

IBaseDef* HSM::NextDef(unsigned int mask)
{
    ERROR_RETURN(nodeDefTable, nullptr);
    return HandOut(nodeDefTable->FindNext(mask));
}

IBaseDef* HSM::FindDef(const char* name)
{
    ERROR_RETURN(nodeDefTable, nullptr);
    IBaseDef* def = HandOut(nodeDefTable->FindByName(name));
    if (def == nullptr)
    {
        LogStream(LogError) << "Failed to find node definition named: " << name << EndLine;
    }
    return def;
}

IBaseDef* HSM::FindDef(unsigned int id)
{
    ERROR_RETURN(nodeDefTable, nullptr);
    IBaseDef* def = HandOut(nodeDefTable->Find(id));
    if (def == nullptr)
    {
        LogStream(LogError) << "Failed to find node definition ID: " << id << EndLine;
    }
    return def;
}

} // namespace vell
