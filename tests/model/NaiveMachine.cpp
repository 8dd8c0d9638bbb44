// VELL: data-driven hierarchical state machines.
// tests/model/NaiveMachine.cpp: the tick, the stacks and the states of the second machine.

#include "tests/model/NaiveMachine.h"

#include <algorithm>
#include <stdexcept>

namespace model
{

// One tick: the global state's transitions, the walk from the top down, the resets.
void NaiveMachine::Tick(float time)
{
    if (globalState != nullptr)
    {
        TestGlobal();
    }
    for (int index = static_cast<int>(currentStack->size()) - 1; index >= 0; --index)
    {
        State* state = currentStack->at(static_cast<std::size_t>(index));
        UpdateState(*state, time);
        Outcome outcome;
        if (TestTransitions(*state, &outcome))
        {
            Replace(index, outcome);
        }
    }
    if (fault != Fault::ForgetsTheResets)
    {
        ResetParameters();
    }
}

void NaiveMachine::TestGlobal()
{
    Outcome outcome;
    if (!TestTransitions(*globalState, &outcome))
    {
        return;
    }
    const bool isRefused =
        fault == Fault::RefusesAnEqualBlip && blipActive && outcome.priority == blipPriority;
    if (outcome.priority < blipPriority || isRefused)
    {
        return;
    }
    Info("State Blip: " + globalState->node->Name());
    const int top = static_cast<int>(currentStack->size()) - 1;
    if (blipActive)
    {
        EmptyCurrentStack();
    }
    blipLevel = top;
    blipActive = true;
    currentStack = &blip;
    blipPriority = outcome.priority;
    PushById(outcome.targetId);
}

// The first transition that holds decides, also one without a target, which then does not fire.
bool NaiveMachine::TestTransitions(State& state, Outcome* outcome)
{
    for (Transition* transition : state.transitions)
    {
        if (transition->node->disabled || !Holds(*transition))
        {
            continue;
        }
        treeTransition = transition->node->id;
        *outcome = {transition->node->targetId, transition->node->priority,
                    transition->node->switchArgument};
        if (outcome->targetId == 0)
        {
            return false;
        }
        Info("Transition satisfied: " + state.node->Name());
        return true;
    }
    return false;
}

// Any condition is enough; the triggers are asked all the same, until one of them says yes.
bool NaiveMachine::Holds(Transition& transition)
{
    const auto holds = [](const LoadedCondition& condition)
    {
        return Holds(condition);
    };
    const std::vector<LoadedCondition>& conditions = transition.conditions;
    bool result = std::any_of(conditions.begin(), conditions.end(), holds);
    if (fault == Fault::NeedsAllConditions && !conditions.empty())
    {
        result = std::all_of(conditions.begin(), conditions.end(), holds);
    }
    for (const int trigger : transition.triggers)
    {
        Say(TriggerLine(trigger));
        if (TriggerHolds(trigger, ++triggerCalls[static_cast<std::size_t>(trigger)]))
        {
            return true;
        }
    }
    return result;
}

void NaiveMachine::Replace(int popLevel, const Outcome& outcome)
{
    State* previous = nullptr;
    while (static_cast<int>(currentStack->size()) > popLevel)
    {
        State* popped = Pop();
        if (previous == nullptr)
        {
            previous = popped;
            previousState = popped;
        }
    }
    State* next = Activate(outcome.targetId, outcome.switchArgument);
    if (next == nullptr)
    {
        Break("HSM::UpdateStateStack");
        return;
    }
    Push(next);
    treePrevious = previous != nullptr ? previous->node->id : 0;
    treeNext = outcome.targetId;
    Notify();
}

void NaiveMachine::EmptyCurrentStack()
{
    if (!currentStack->empty())
    {
        previousState = currentStack->back();
    }
    while (!currentStack->empty())
    {
        Pop();
    }
}

void NaiveMachine::ResetParameters()
{
    for (auto& entry : parameters)
    {
        if (entry.second.def.hasReset)
        {
            SetValue(&entry.second, entry.second.def.initial);
        }
    }
}

NaiveMachine::State* NaiveMachine::Activate(unsigned int id, float argument)
{
    const auto found = states.find(id);
    State* state = found != states.end() ? found->second : MakeState(id);
    if (state == nullptr)
    {
        Error("Failed to activate state: Unable to find state ID:  (" + std::to_string(id) + ")");
        return nullptr;
    }
    Info("Activated State: " + state->node->Name() + " (" + std::to_string(id) + ")");
    if (hasCallback)
    {
        Say(CallbackLine(previousState != nullptr ? previousState->node->id : 0, id, argument));
    }
    return state;
}

bool NaiveMachine::Runs(int builder)
{
    return builder == vell::__DURM_BUILDERS__::BUILDER_Generic ||
           builder == vell::__DURM_BUILDERS__::BUILDER_AnimClip ||
           builder == vell::__DURM_BUILDERS__::BUILDER_Enter ||
           builder == vell::__DURM_BUILDERS__::BUILDER_Exit ||
           builder == vell::__DURM_BUILDERS__::BUILDER_Global ||
           builder == vell::__DURM_BUILDERS__::BUILDER_Substate;
}

NaiveMachine::State* NaiveMachine::MakeState(unsigned int id)
{
    if (id == 0)
    {
        return nullptr;
    }
    const auto found = nodes.find(id);
    if (found == nodes.end() || !Runs(found->second->builder))
    {
        Break("HSM::ActivateState");
        return nullptr;
    }
    State state;
    state.node = found->second;
    if (!InitSubstate(&state))
    {
        InitSubstate(&state); // a failed one is asked again
        Break("HSM::ActivateState");
        return nullptr;
    }
    ListTransitions(&state);
    storage.push_back(state);
    State* made = &storage.back();
    states[id] = made;
    const auto parent = states.find(made->node->parentId);
    if (parent != states.end() &&
        parent->second->node->builder == vell::__DURM_BUILDERS__::BUILDER_Substate)
    {
        made->parent = parent->second;
    }
    return made;
}

bool NaiveMachine::InitSubstate(State* state)
{
    if (state->node->builder != vell::__DURM_BUILDERS__::BUILDER_Substate)
    {
        return true;
    }
    if (!FindLevel(state))
    {
        FindLevel(state);
        Break("SubstateState::Init");
        return false;
    }
    return true;
}

bool NaiveMachine::FindLevel(State* state)
{
    if (FindLevelNode(state->node->exitId, vell::__DURM_BUILDERS__::BUILDER_Exit) == nullptr)
    {
        return false;
    }
    const Node* enter = FindLevelNode(state->node->enterId, vell::__DURM_BUILDERS__::BUILDER_Enter);
    if (enter == nullptr)
    {
        return false;
    }
    state->enterStateId = enter->entryTarget;
    return true;
}

const Node* NaiveMachine::FindLevelNode(unsigned int id, int builder)
{
    const auto found = nodes.find(id);
    if (found == nodes.end())
    {
        Error("Failed to find node definition ID: " + std::to_string(id));
    }
    if (found == nodes.end() || found->second->builder != builder)
    {
        Break("SubstateState::InitEnterExit");
        return nullptr;
    }
    return found->second;
}

void NaiveMachine::ListTransitions(State* state)
{
    for (const unsigned int child : state->node->children)
    {
        const auto found = transitions.find(child);
        if (found != transitions.end())
        {
            state->transitions.push_back(&found->second);
        }
    }
    std::vector<Transition*>& list = state->transitions;
    if (fault == Fault::TestsEqualPrioritiesBackwards)
    {
        std::reverse(list.begin(), list.end());
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const Transition* left, const Transition* right)
                     {
                         return left->node->priority < right->node->priority;
                     });
}

void NaiveMachine::Enter(State& state)
{
    if (state.node->builder == vell::__DURM_BUILDERS__::BUILDER_Exit)
    {
        Info(state.node->Name() + "@");
    }
    Perform(state, vell::ActTypeEntry, 0.0f);
    if (state.parent != nullptr)
    {
        State& parent = *state.parent;
        parent.previousChild = parent.currentChild;
        parent.currentChild = &state;
        parent.previousChildId = parent.currentChildId;
        parent.currentChildId = state.node->id;
    }
    Info("[Enter] " + state.node->Name() + " - @");
    if (state.node->builder == vell::__DURM_BUILDERS__::BUILDER_AnimClip)
    {
        SendEvent(vell::HSMEventPlayAnimation,
                  state.node->clipName.empty() ? nullptr : state.node->clipName.c_str(),
                  state.node->clipFlag, 30.0f);
    }
}

void NaiveMachine::Exit(State& state)
{
    if (state.node->builder == vell::__DURM_BUILDERS__::BUILDER_Exit)
    {
        Info(state.node->Name() + "@");
        if (fault == Fault::RunsExitActionsOfExitNodes)
        {
            Perform(state, vell::ActTypeExit, 0.0f);
        }
        return;
    }
    if (state.node->builder == vell::__DURM_BUILDERS__::BUILDER_Substate)
    {
        state.previousChild = state.currentChild;
        state.currentChild = nullptr;
        state.previousChildId = state.currentChildId;
        state.currentChildId = 0;
    }
    Info("[Exit] " + state.node->Name() + " - @");
    Perform(state, vell::ActTypeExit, 0.0f);
}

void NaiveMachine::UpdateState(State& state, float time)
{
    switch (state.node->builder)
    {
    case vell::__DURM_BUILDERS__::BUILDER_Exit:
        Info(state.node->Name() + "@");
        if (blipActive)
        {
            Info("Revert to Previous State");
            RevertToPrevious();
        }
        break;
    case vell::__DURM_BUILDERS__::BUILDER_Substate:
        UpdateSubstate(state, time);
        break;
    default:
        Perform(state, vell::ActTypeExecution, time);
        break;
    }
}

void NaiveMachine::UpdateSubstate(State& state, float time)
{
    if (state.currentChild != nullptr)
    {
        Perform(state, vell::ActTypeExecution, time);
        return;
    }
    const bool isFirst = state.previousChild == nullptr || fault == Fault::ResumesAtTheEntry;
    State* child = isFirst ? PushById(state.enterStateId) : Push(state.previousChild);
    if (child == nullptr)
    {
        Break("SubstateState::Update");
        return;
    }
    state.previousChild = state.currentChild;
    state.currentChild = child;
    state.previousChildId = state.currentChildId;
    state.currentChildId = child->node->id;
}

void NaiveMachine::Perform(const State& state, vell::__ActType__ list, float time)
{
    for (std::size_t index = 0; index < actionPlans.size(); ++index)
    {
        const ActionPlan& plan = actionPlans[index];
        if (plan.nodeId != state.node->id || plan.list != list)
        {
            continue;
        }
        Say(ActionLine(plan, index, list, time));
        LoadedParameter* parameter = FindParameter(plan.parameterId);
        if (parameter != nullptr && parameter->def.type == DURMBaseLib::PARAM_Integer)
        {
            Value value;
            value.whole = plan.value;
            SetValue(parameter, value);
        }
    }
}

// A state is entered before it is on the stack.
NaiveMachine::State* NaiveMachine::Push(State* state)
{
    Enter(*state);
    currentStack->push_back(state);
    (currentStack == &blip ? treeBlip : treeStack).push_back(state->node->id);
    return state;
}

NaiveMachine::State* NaiveMachine::PushById(unsigned int id)
{
    State* state = Activate(id, 0.0f);
    if (state == nullptr)
    {
        Break("HSM::PushState");
        return nullptr;
    }
    return Push(state);
}

NaiveMachine::State* NaiveMachine::Pop()
{
    if (currentStack->empty())
    {
        return nullptr;
    }
    State* state = currentStack->back();
    Exit(*state);
    currentStack->pop_back();
    Ids& mirror = currentStack == &blip ? treeBlip : treeStack;
    if (!mirror.empty())
    {
        mirror.pop_back();
    }
    return state;
}

NaiveMachine::State* NaiveMachine::Current() const
{
    return currentStack == nullptr || currentStack->empty() ? nullptr : currentStack->back();
}

long NaiveMachine::RevertToPrevious()
{
    if (!blipActive)
    {
        Pop();
        return 1;
    }
    EmptyCurrentStack();
    blipActive = false;
    blipPriority = 1;
    currentStack = &stack;
    return 1;
}

long NaiveMachine::RevertToStart()
{
    if (!blipActive)
    {
        return 0;
    }
    EmptyCurrentStack();
    blipActive = false;
    currentStack = &stack;
    EmptyCurrentStack();
    return 1;
}

// Leaves twice and enters twice.
void NaiveMachine::ChangeState(unsigned int id)
{
    if (Current() != nullptr)
    {
        Exit(*Current());
        previousState = Pop();
    }
    State* state = Activate(id, 0.0f);
    if (state == nullptr)
    {
        return;
    }
    Enter(*state);
    Push(state);
    treePrevious = previousState != nullptr ? previousState->node->id : 0;
    treeNext = id;
    Notify();
}

void NaiveMachine::Start()
{
    currentStack = &stack;
    if (globalState == nullptr)
    {
        globalState = Activate(globalId, 0.0f);
    }
    PushById(document.startId);
}

void NaiveMachine::Notify()
{
    for (std::size_t index = 0; index < stateListeners.size(); ++index)
    {
        Say(ChangeLine(stateListeners[index], treeTransition, treePrevious, treeNext));
        RemoveDuringCall(&stateListeners, stateListeners[index]);
    }
    if (!stateListeners.empty())
    {
        treeNext = 0;
        treePrevious = 0;
        treeTransition = 0;
    }
}

// Gives how many were called: the walk goes by position, so one that is removed before the position
// makes it step over the next.
long NaiveMachine::SendEvent(int event, const char* clipName, bool flag, float scalar)
{
    long count = 0;
    for (std::size_t index = 0; index < eventListeners.size(); ++index)
    {
        Say(ClipLine(eventListeners[index], event, clipName, flag, scalar));
        RemoveDuringCall(&eventListeners, eventListeners[index]);
        ++count;
    }
    return count;
}

void NaiveMachine::RemoveDuringCall(std::vector<int>* list, int called)
{
    if (called == kRemovingListener)
    {
        list->erase(std::remove(list->begin(), list->end(), 0), list->end());
    }
}

void NaiveMachine::SetContext(const Input& input)
{
    RestoreStack(&stack, input.stack, "HSM::SetContextInfo_StackStates");
    RestoreStack(&blip, input.blip, "HSM::SetContextInfo_StackBlip");
    treeNext = input.change[0];
    treePrevious = input.change[1];
    treeTransition = input.change[2];
    Notify();
}

void NaiveMachine::RestoreStack(std::vector<State*>* target, const Ids& ids, const char* function)
{
    target->clear();
    for (const unsigned int id : ids)
    {
        State* state = Activate(id, 0.0f);
        if (state == nullptr)
        {
            Break(function);
            return;
        }
        target->push_back(state);
    }
}

} // namespace model
