// VELL: data-driven hierarchical state machines.
// machine/HSMActivation.cpp: making run-time states on first use.
#include <vell/ConditionDef.h>
#include <vell/HSM.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "foundation/NoInline.h"
#include "machine/HSMInternals.h"
#include "machine/StateBuilders.h"
#include "parameters/ParameterTable.h"

#include <set>

namespace vell
{
namespace
{

VELL_NOINLINE void LogActivated(const SMState& state, unsigned int id)
{
    BaseDef* def = state.GetDef();
    LogStream(LogInfo) << "Activated State: " << (def == nullptr ? nullptr : def->GetName()) << " ("
                       << id << ")" << EndLine;
}

} // namespace

SMState* HSM::ActivateState(unsigned int id, float switchArgument)
{
    do
    {
        SMState* state = FindState(id);
        if (state == nullptr)
        {
            if (id == 0)
            {
                break;
            }
            ERROR_BREAK(nodeDefTable);
            BaseDef* def = nodeDefTable->Find(id);
            ERROR_BREAK(def);
            const StateFactory factory = FindStateBuilder(def->GetBuilderType());
            // Required: a connector has no factory and is not followed. A transition to one leaves
            // the stack short.
            ERROR_BREAK(factory != nullptr);
            state = factory(id, &alloc);
            ERROR_BREAK(state);
            state->SetHSM(this);
            // Required: a failing Init runs a second time, and the space of the state in the arena
            // is lost.
            ERROR_BREAK(state->Init(def));
            ActivateTransitions(state);
            const bool inserted = states.emplace(id, state).second;
            ERROR_BREAK(inserted);
            // Required: looked up once. A state that is activated before its substate has no parent
            // for good.
            // Required: the state is in `states` by now, so a substate that names itself as its
            // parent becomes its own child.
            state->SetParent(dynamic_cast<SubstateState*>(FindState(state->GetParentID())));
            internals->idle.Follow(*state, alloc);
        }
        // Required: every activation writes this line and calls the callback, even of a state that
        // was there.
        if (IsLogged(LogInfo))
        {
            LogActivated(*state, id);
        }
        // Required: the callback comes for the global state too, with no state left.
        // Required: the state left is the last one a transition left, however long ago.
        if (stateSwitchCallback != nullptr)
        {
            stateSwitchCallback(this, previousState, state, switchArgument);
        }
        return state;
    } while (false);
    LogStream(LogError) << "Failed to activate state: Unable to find state ID: "
                        << " (" << id << ")" << EndLine;
    return nullptr;
}

int HSM::ActivateTransitions(SMState* state)
{
    const BaseDef* def = state->GetDef();
    const unsigned int count =
        def == nullptr || nodeDefTable == nullptr ? 0 : def->GetNumChildren();
    for (unsigned int i = 0; i < count; ++i)
    {
        auto* transition = dynamic_cast<TransitionDef*>(nodeDefTable->Find(def->GetChildID(i)));
        if (transition == nullptr)
        {
            continue;
        }
        for (ConditionDef* condition : transition->conditions)
        {
            ParameterDef* parameter = condition == nullptr || parameterTable == nullptr
                                          ? nullptr
                                          : parameterTable->FindParameter(condition->parameterID);
            if (parameter != nullptr)
            {
                condition->SetParameter(parameter);
            }
        }
        state->PushTransition(transition);
    }
    state->SortTransitions();
    return 1;
}

SMState* HSM::FindState(unsigned int id)
{
    const auto entry = states.find(id);
    return entry == states.end() ? nullptr : entry->second;
}

Action* HSM::ChangeState(unsigned int id)
{
    // Required: the state is left twice and its successor entered twice, and null is returned.
    if (SMState* current = GetCurrentState())
    {
        current->Exit();
        previousState = PopState();
    }
    SMState* state = ActivateState(id, 0.0f);
    // Required: the old state has been popped, so an unknown id leaves the stack one shorter.
    if (state == nullptr)
    {
        return nullptr;
    }
    state->Enter();
    PushState(state);
    Notify(ReportStateChange(previousState, state->GetID()));
    return nullptr;
}

void HSM::StartState(unsigned int id, std::vector<unsigned int>& ids)
{
    // In a document, substates may be each other's parents: stop at one that was visited before.
    std::set<const SubstateState*> climbed;
    auto* substate = dynamic_cast<SubstateState*>(ActivateState(id, 0.0f));
    while (substate != nullptr && climbed.insert(substate).second)
    {
        ids.push_back(id);
        if (substate->GetParentID() == 0)
        {
            return;
        }
        id = substate->GetParentID();
        substate = dynamic_cast<SubstateState*>(ActivateState(id, 0.0f));
    }
}

void HSM::SetStateSwitchCallback(StateSwitchCallback callback)
{
    stateSwitchCallback = callback;
}

} // namespace vell
