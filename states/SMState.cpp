// VELL: data-driven hierarchical state machines.
// states/SMState.cpp: entering, updating and leaving a state, and its transitions.
#include <vell/Action.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "definitions/ActionIterator.h"
#include "definitions/AnimClipDef.h"
#include "definitions/BaseDefInternals.h"
#include "foundation/Checks.h"
#include "foundation/NoInline.h"
#include "states/MachineServices.h"
#include "states/SMStateInternals.h"

#include <algorithm>
#include <iterator>

namespace vell
{
namespace
{

VELL_NOINLINE void PerformList(BaseDef* def, __ActType__ type, float dt, Action* first)
{
    ActionIterator actions(def, first);
    while (Action* action = actions.TakeNext())
    {
        action->Perform(type, dt);
    }
}

VELL_NOINLINE void LogEntered(BaseDef& def)
{
    LogStream(LogInfo) << "[Enter] " << def.GetName() << " - " << VELL_PLACE << EndLine;
}

VELL_NOINLINE void LogLeft(BaseDef& def)
{
    LogStream(LogInfo) << "[Exit] " << def.GetName() << " - " << VELL_PLACE << EndLine;
}

/// Gives the first of the state's `transitions` that holds, or null.
TransitionDef* FindTransition(const SMState& state, const std::vector<TransitionDef*>& transitions,
                              HSM* machine)
{
    // A trigger may push transitions: those are not looked at before the next tick. It may also
    // give the state fewer: the line of GetTransitionAt shows that.
    const int count = state.GetNumTransitions();
    for (int i = 0; i < count; ++i)
    {
        const auto index = static_cast<std::size_t>(i);
        TransitionDef* transition =
            index < transitions.size() ? transitions[index] : state.GetTransitionAt(i);
        if (transition != nullptr && !transition->disabled && transition->HandleConditions(machine))
        {
            // Required: a transition without a target ends the search too, and blocks all behind
            // it.
            return transition;
        }
    }
    return nullptr;
}

bool ComesBefore(const TransitionDef* left, const TransitionDef* right)
{
    return left->priority < right->priority;
}

} // namespace

SMState::SMState() = default;

SMState::SMState(const SMState& other)
    : def(other.def),
      id(other.id),
      transitions(other.transitions),
      entryAction(other.entryAction),
      exitAction(other.exitAction),
      parent(other.parent),
      hsm(other.hsm)
{
    // The copy may be of a class that shows its transitions.
    Internals::HandOutTransitions(other);
}

SMState& SMState::operator=(const SMState& other)
{
    Internals::HandOutTransitions(other);
    Internals::CountChange(*this);
    def = other.def;
    id = other.id;
    transitions = other.transitions;
    entryAction = other.entryAction;
    exitAction = other.exitAction;
    parent = other.parent;
    SetHSM(other.hsm);
    return *this;
}

SMState::~SMState()
{
    Internals::CountChange(*this);
}

SMState* SMState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, nullptr);
    SMState* state = Internals::Place<SMState>(stateId, alloc);
    ERROR_RETURN(state, nullptr);
    return state;
}

int SMState::Init(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    Internals::CountChange(*this);
    def = newDef;
    return 1;
}

int SMState::Uninit()
{
    return 1;
}

int SMState::HandleInput(HSM* machine)
{
    ERROR_RETURN(machine, 0);
    ERROR_RETURN(def, 0);
    const unsigned int connector = def->GetExitConnector();
    ERROR_RETURN(connector != 0, 0);
    IBaseDef* connectorDef = MachineServices::FindDef(*machine, connector);
    ERROR_RETURN(connectorDef, 0);
    return 1;
}

int SMState::Update(HSM*, float dt)
{
    // Required: a failing Execute runs a second time, actions included.
    ERROR_RETURN(Execute(static_cast<double>(dt)), 0);
    return 1;
}

int SMState::Enter()
{
    ERROR_RETURN(def, 0);
    // An action or the log's callback may give the state another definition, or none.
    BaseDef* const entered = def;
    PerformActions(ActTypeEntry, 0.0f, entered->GetEnterActions());
    TellParent();
    if (IsLogged(LogInfo))
    {
        LogEntered(*entered);
    }
    RequestAnimation(entered);
    return 1;
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

void SMState::RequestAnimation(BaseDef* entered)
{
    if (hsm == nullptr || !MachineServices::HasEventListeners(*hsm))
    {
        return;
    }
    const AnimClipDef* clip = dynamic_cast<AnimClipDef*>(entered);
    if (clip == nullptr)
    {
        return;
    }
    const __PlayAnimEvent__ event{clip->clipName, clip->clipFlag, clip->clipScalar};
    MachineServices::SendAnimation(*hsm, event);
}

int SMState::Execute(double dt)
{
    ERROR_RETURN(def, 0);
    PerformActions(ActTypeExecution, static_cast<float>(dt), def->GetActions());
    return 1;
}

int SMState::Exit()
{
    ERROR_RETURN(def, 0);
    BaseDef* const left = def;
    if (IsLogged(LogInfo))
    {
        LogLeft(*left);
    }
    PerformActions(ActTypeExit, 0.0f, left->GetExitActions());
    return 1;
}

SMState* SMState::GetStates()
{
    return this;
}

int SMState::PerformActions(__ActType__ type, float dt, Action* first)
{
    if (first != nullptr)
    {
        PerformList(def, type, dt, first);
    }
    return 1;
}

unsigned int SMState::ProcessTransitions(HSM* machine, UpdateResult* result)
{
    TransitionDef* transition = FindTransition(*this, transitions, machine);
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
    if (machine == nullptr)
    {
        BaseDef::Internals::HandOut(*transition);
    }
    else
    {
        MachineServices::ReportTransition(*machine, *transition, result);
    }
    // Required: a transition without a target has filled the record and written the tree, and
    // counts as none.
    return transition->targetID;
}

void SMState::PushTransition(TransitionDef* transition)
{
    transitions.push_back(transition);
    Internals::CountChange(*this);
}

void SMState::SortTransitions()
{
    Internals::CountChange(*this);
    // Required: a null entry compares with none, so it stays where it is and nothing passes it.
    const auto end = transitions.end();
    for (auto begin = transitions.begin(); begin != end;)
    {
        const auto null = std::find(begin, end, nullptr);
        std::stable_sort(begin, null, ComesBefore);
        begin = null == end ? end : std::next(null);
    }
}

int SMState::GetNumTransitions() const
{
    return static_cast<int>(transitions.size());
}

TransitionDef* SMState::GetTransitionAt(int index) const
{
    ERROR_RETURN(index < GetNumTransitions(), nullptr);
    if (index < 0)
    {
        return nullptr;
    }
    TransitionDef* transition = transitions[static_cast<std::size_t>(index)];
    if (transition != nullptr)
    {
        BaseDef::Internals::HandOut(*transition);
    }
    return transition;
}

void SMState::Internals::HandOutTransitions(const SMState& state)
{
    for (TransitionDef* transition : state.transitions)
    {
        if (transition != nullptr)
        {
            BaseDef::Internals::HandOut(*transition);
        }
    }
}

} // namespace vell
