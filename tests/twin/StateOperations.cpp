// VELL: data-driven hierarchical state machines.
// tests/twin/StateOperations.cpp: what a host does to states.
#include "tests/twin/OperationKinds.h"

#include <algorithm>

namespace twin
{
namespace
{

/// Lists stay short of the length at which sorting with a null among them is another matter.
constexpr int kMaxTransitions = 24;

bool HasNullTransition(const vell::SMState& state)
{
    for (int i = 0; i < state.GetNumTransitions(); ++i)
    {
        if (state.GetTransitionAt(i) == nullptr)
        {
            return true;
        }
    }
    return false;
}

void SetDef(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    vell::BaseDef* def = operation.picks[2] % 3 == 0 ? side.PickDef(operation.picks[1])
                                                     : side.PickStateDef(operation.picks[1]);
    if (state != nullptr)
    {
        Say("> SetDef of " + side.Name(state) + " to " + side.Name(def));
        state->SetDef(def);
    }
}

void SetDefNull(Side& side, const Operation& operation)
{
    if (vell::SMState* state = side.PickState(operation.picks[0]))
    {
        Say("> SetDef of " + side.Name(state) + " to null");
        state->SetDef(nullptr);
    }
}

/// Gives a state a definition of the host's own making, with an execute action.
void SetHostDef(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    if (state == nullptr)
    {
        return;
    }
    auto def = std::make_unique<vell::BaseDef>("host", 90000u + operation.picks[1], 0u);
    Say("> SetDef of " + side.Name(state) + " to the host's");
    state->SetDef(def.get());
    if (operation.picks[2] % 3 != 0)
    {
        TwinAction* action = side.MakeAction(operation.inner);
        action->isOnList = true;
        def->RegisterExecute(action);
    }
    side.hostDefs.push_back(std::move(def));
}

void InitState(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    vell::BaseDef* def =
        operation.picks[2] % 9 == 0 ? nullptr : side.PickStateDef(operation.picks[1]);
    if (state != nullptr)
    {
        Say("> Init of " + side.Name(state) + " with " + side.Name(def));
        Say("gives " + std::to_string(state->Init(def)));
    }
}

void PushTransition(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    vell::TransitionDef* transition =
        operation.picks[2] % 8 == 0 ? nullptr : side.PickTransition(operation.picks[1]);
    if (state != nullptr && state->GetNumTransitions() < kMaxTransitions)
    {
        Say("> PushTransition of " + side.Name(transition) + " onto " + side.Name(state));
        state->PushTransition(transition);
    }
}

void SortTransitions(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    if (state != nullptr &&
        (state->GetNumTransitions() <= kMaxTransitions || !HasNullTransition(*state)))
    {
        Say("> SortTransitions of " + side.Name(state));
        state->SortTransitions();
    }
}

void AssignState(Side& side, const Operation& operation)
{
    vell::SMState* target = side.PickState(operation.picks[0]);
    vell::SMState* source = side.PickState(operation.picks[1]);
    if (target != nullptr && source != nullptr)
    {
        Say("> *" + side.Name(target) + " = *" + side.Name(source));
        *target = *source;
    }
}

void AssignSubstate(Side& side, const Operation& operation)
{
    vell::SubstateState* target = side.PickSubstate(operation.picks[0]);
    vell::SubstateState* source = side.PickSubstate(operation.picks[1]);
    if (target != nullptr && source != nullptr)
    {
        Say("> *" + side.Name(target) + " = *" + side.Name(source) + ", as substates");
        *target = *source;
    }
}

void CopyState(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    if (state == nullptr || side.hostStates.size() > 8)
    {
        return;
    }
    side.hostStates.push_back(std::make_unique<vell::SMState>(*state));
    Say("> a copy of " + side.Name(state) + " is " + side.Name(side.hostStates.back().get()));
    if (operation.picks[1] % 2 == 0 && side.machine.stateStack.size() < 20)
    {
        side.machine.PushState(side.hostStates.back().get());
    }
}

void SetHSM(Side& side, const Operation& operation)
{
    if (vell::SMState* state = side.PickState(operation.picks[0]))
    {
        const bool isNull = operation.picks[1] % 2 == 0;
        Say("> SetHSM of " + side.Name(state) + (isNull ? " to null" : " to the machine"));
        state->SetHSM(isNull ? nullptr : &side.machine);
    }
}

void SetParent(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    vell::SubstateState* parent =
        operation.picks[2] % 4 == 0 ? nullptr : side.PickSubstate(operation.picks[1]);
    if (state != nullptr)
    {
        Say("> SetParent of " + side.Name(state) + " to " + side.Name(parent));
        state->SetParent(parent);
    }
}

/// Calls an operation of a state as the machine would.
void CallState(Side& side, const Operation& operation)
{
    static const char* const names[] = {"Enter", "Exit", "Execute", "Update", "ProcessTransitions"};
    vell::SMState* state = side.PickState(operation.picks[0]);
    if (state == nullptr || side.machine.stateStack.size() > 20)
    {
        return;
    }
    const unsigned int call = operation.picks[1] % 5;
    vell::UpdateResult result;
    Say(std::string("> ") + names[call] + " of " + side.Name(state));
    const long long gives =
        call == 0   ? state->Enter()
        : call == 1 ? state->Exit()
        : call == 2 ? state->Execute(static_cast<double>(operation.time))
        : call == 3 ? state->Update(&side.machine, operation.time)
                    : static_cast<long long>(state->ProcessTransitions(&side.machine, &result));
    Say("gives " + std::to_string(gives));
}

void WriteSubstate(Side& side, const Operation& operation)
{
    static const char* const names[] = {"currentChild",    "currentChild",   "previousChild",
                                        "previousChildID", "currentChildID", "enterStateID"};
    vell::SubstateState* substate = side.PickSubstate(operation.picks[0]);
    if (substate == nullptr)
    {
        return;
    }
    const unsigned int field = operation.picks[1] % 6;
    vell::SMState* child =
        operation.picks[2] % 2 == 0 ? nullptr : side.PickState(operation.picks[3]);
    const unsigned int id = operation.picks[2] % 3 == 0 ? 0 : side.PickStateId(operation.picks[3]);
    Say(std::string("> ") + names[field] + " of " + side.Name(substate) + " = " +
        (field < 3 ? side.Name(child) : std::to_string(id)));
    switch (field)
    {
    case 2:
        substate->previousChild = child;
        break;
    case 3:
        substate->previousChildID = id;
        break;
    case 4:
        substate->currentChildID = id;
        break;
    case 5:
        substate->enterStateID = id;
        break;
    default:
        substate->currentChild = child;
        break;
    }
}

void WriteHostState(Side& side, const Operation& operation)
{
    for (vell::SMState* state : side.States())
    {
        if (auto* own = dynamic_cast<HostState*>(state))
        {
            Say("> target of the host's " + side.Name(state));
            own->changedTarget =
                operation.picks[0] % 3 == 0 ? 0 : side.PickStateId(operation.picks[0]);
        }
    }
}

} // namespace

OperationKinds StateOperations()
{
    return {{"SetDef", 5, Place::Callbacks, SetDef},
            {"SetDefNull", 2, Place::Outside, SetDefNull},
            {"SetHostDef", 4, Place::Callbacks, SetHostDef},
            {"InitState", 4, Place::Callbacks, InitState},
            {"PushTransition", 8, Place::Everywhere, PushTransition},
            {"SortTransitions", 5, Place::Outside, SortTransitions},
            {"AssignState", 5, Place::Outside, AssignState},
            {"AssignSubstate", 4, Place::Outside, AssignSubstate},
            {"CopyState", 5, Place::Outside, CopyState},
            {"SetHSM", 4, Place::Callbacks, SetHSM},
            {"SetParent", 5, Place::Callbacks, SetParent},
            {"CallState", 8, Place::Outside, CallState},
            {"WriteSubstate", 12, Place::Callbacks, WriteSubstate},
            {"WriteHostState", 3, Place::Everywhere, WriteHostState}};
}

} // namespace twin
