// VELL: data-driven hierarchical state machines.
// states/SMState.cpp: entering, updating and leaving a state, and its transitions.
#include <vell/SMState.h>

#include "definitions/AnimClipDef.h"
#include "foundation/Checks.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "states/StatePlacement.h"
#include "states/SubstateState.h"
#include "transitions/TransitionDef.h"

#include <vell/Action.h>
#include <vell/HSM.h>
#include <vell/UpdateResult.h>

#include <algorithm>
#include <typeinfo>

namespace vell
{
namespace
{

/// Lists up to this length are sorted by insertion.
constexpr std::size_t kInsertionLimit = 32;

bool ComesBefore(const TransitionDef* left, const TransitionDef* right)
{
    return left != nullptr && right != nullptr && left->priority < right->priority;
}

} // namespace

SMState::SMState() = default;

SMState::SMState(const SMState& other) = default;

SMState& SMState::operator=(const SMState& other)
{
    CountChange();
    def = other.def;
    id = other.id;
    transitions = other.transitions;
    entryAction = other.entryAction;
    exitAction = other.exitAction;
    parent = other.parent;
    SetHSM(other.hsm);
    return *this;
}

SMState::~SMState() = default;

SMState* SMState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    SMState* state = nullptr;
    do
    {
        ERROR_BREAK(alloc);
        state = Place<SMState>(stateId, alloc);
        ERROR_BREAK(state);
    } while (false);
    return state;
}

int SMState::Init(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        CountChange();
        def = newDef;
        result = 1;
    } while (false);
    return result;
}

int SMState::Uninit()
{
    return 1;
}

int SMState::HandleInput(HSM* machine)
{
    int result = 0;
    do
    {
        ERROR_BREAK(machine);
        ERROR_BREAK(def);
        const unsigned int connector = def->GetExitConnector();
        ERROR_BREAK(connector != 0);
        IBaseDef* connectorDef = machine->FindDef(connector);
        ERROR_BREAK(connectorDef);
        result = 1;
    } while (false);
    return result;
}

int SMState::Update(HSM*, float dt)
{
    int result = 0;
    do
    {
        // Required: a failing Execute runs a second time, actions included.
        ERROR_BREAK(Execute(static_cast<double>(dt)));
        result = 1;
    } while (false);
    return result;
}

int SMState::Enter()
{
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        PerformActions(ActTypeEntry, 0.0f, def->GetEnterActions());
        TellParent();
        LogStream(LogInfo) << "[Enter] " << def->GetName() << " - " << VELL_PLACE << EndLine;
        RequestAnimation();
        result = 1;
    } while (false);
    return result;
}

void SMState::TellParent()
{
    if (parent == nullptr)
    {
        return;
    }
    parent->previousChild = parent->currentChild;
    parent->currentChild = this;
    parent->previousChildID = parent->currentChildID;
    parent->currentChildID = GetID();
}

void SMState::RequestAnimation()
{
    if (hsm == nullptr || hsm->eventListeners.empty())
    {
        return;
    }
    const AnimClipDef* clip = dynamic_cast<AnimClipDef*>(def);
    if (clip == nullptr)
    {
        return;
    }
    const __PlayAnimEvent__ event{clip->clipName, clip->clipFlag, clip->clipScalar};
    hsm->FireEvent(HSMEventPlayAnimation, &event);
}

int SMState::Execute(double dt)
{
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        PerformActions(ActTypeExecution, static_cast<float>(dt), def->GetActions());
        result = 1;
    } while (false);
    return result;
}

int SMState::Exit()
{
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        LogStream(LogInfo) << "[Exit] " << def->GetName() << " - " << VELL_PLACE << EndLine;
        PerformActions(ActTypeExit, 0.0f, def->GetExitActions());
        result = 1;
    } while (false);
    return result;
}

SMState* SMState::GetStates()
{
    return this;
}

int SMState::PerformActions(__ActType__ type, float dt, Action* first)
{
    if (def == nullptr)
    {
        for (Action *action = first, *next = nullptr; action != nullptr; action = next)
        {
            next = action->next;
            action->Perform(type, dt);
        }
        return 1;
    }
    if (first == nullptr)
    {
        return 1;
    }
    // An action may remove itself or another and put further ones on while it performs.
    BaseDef::ActionWalk walk(*def, first);
    while (Action* action = walk.TakeNext())
    {
        action->Perform(type, dt);
    }
    return 1;
}

void SMState::TakeRole()
{
    const std::type_info& type = typeid(*this);
    if (type == typeid(SMState) || type == typeid(EnterState) || type == typeid(GlobalState))
    {
        role.value = Role::PlainState;
    }
    else if (type == typeid(SubstateState))
    {
        role.value = Role::Level;
    }
    else if (type == typeid(ExitState))
    {
        role.value = Role::ExitNode;
    }
}

unsigned int SMState::ProcessTransitions(HSM* machine, UpdateResult* result)
{
    TransitionDef* transition = FindTransition(machine);
    if (transition == nullptr || result == nullptr)
    {
        return 0;
    }
    result->transition = transition;
    result->tag = static_cast<unsigned int>(transition->tag);
    result->targetID = transition->targetID;
    result->sourceID = transition->GetParentID();
    result->priority = transition->priority;
    result->switchArgument = transition->switchArgument;
    if (machine != nullptr)
    {
        machine->ReportTransition(transition->GetID());
    }
    return transition->targetID;
}

TransitionDef* SMState::FindTransition(HSM* machine)
{
    // A trigger may push transitions: those are not looked at before the next tick.
    const int count = GetNumTransitions();
    for (int i = 0; i < count; ++i)
    {
        TransitionDef* transition = GetTransitionAt(i);
        if (transition != nullptr && !transition->disabled && transition->HandleConditions(machine))
        {
            return transition;
        }
    }
    return nullptr;
}

void SMState::PushTransition(TransitionDef* transition)
{
    transitions.push_back(transition);
    CountChange();
}

void SMState::SortTransitions()
{
    CountChange();
    if (transitions.size() > kInsertionLimit)
    {
        std::stable_sort(transitions.begin(), transitions.end(), ComesBefore);
        return;
    }
    for (std::size_t i = 1; i < transitions.size(); ++i)
    {
        TransitionDef* moving = transitions[i];
        std::size_t place = i;
        for (; place > 0 && ComesBefore(moving, transitions[place - 1]); --place)
        {
            transitions[place] = transitions[place - 1];
        }
        transitions[place] = moving;
    }
}

int SMState::GetNumTransitions() const
{
    return static_cast<int>(transitions.size());
}

TransitionDef* SMState::GetTransitionAt(int index) const
{
    TransitionDef* transition = nullptr;
    do
    {
        ERROR_BREAK(index < GetNumTransitions());
        if (index < 0)
        {
            break;
        }
        transition = transitions[static_cast<std::size_t>(index)];
    } while (false);
    return transition;
}

Tessel::KVTable SMState::ReleaseStorage()
{
    std::vector<TransitionDef*>().swap(transitions);
    return Tessel::KVTable();
}

} // namespace vell
