// VELL: data-driven hierarchical state machines.
// machine/HSMTick.cpp: one tick, and the two stacks.
#include <vell/BaseDef.h>
#include <vell/HSM.h>
#include <vell/SMState.h>
#include <vell/UpdateResult.h>

#include "foundation/Checks.h"
#include "foundation/NoInline.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

namespace vell
{
namespace
{

// What UpdateState returns.
constexpr int kTransitionFired = 3;
constexpr int kNoTransition = 2;

// Required: above 0, so a global transition of priority 0 never starts a blip while none runs.
constexpr int kRestingBlipPriority = 1;

/// Null is a stack that is not there yet.
int TopIndex(const std::vector<SMState*>* stack)
{
    return stack == nullptr ? -1 : static_cast<int>(stack->size()) - 1;
}

const char* NameOf(const SMState& state)
{
    BaseDef* def = state.GetDef();
    return def == nullptr ? nullptr : def->GetName();
}

VELL_NOINLINE void LogSatisfied(const SMState& state)
{
    LogStream(LogInfo) << "Transition satisfied: " << NameOf(state) << EndLine;
}

/// Removes the highest entry that is `state`. Returns false when there is none.
bool RemoveHighest(std::vector<SMState*>& stack, const SMState* state)
{
    for (auto entry = stack.end(); entry != stack.begin();)
    {
        if (*--entry == state)
        {
            stack.erase(entry);
            return true;
        }
    }
    return false;
}

} // namespace

void HSM::Update(float timeStep)
{
    // Required: a tick while a context is applied does nothing, not even the reset of parameters.
    if (applyingContext)
    {
        return;
    }
    UpdateResult result;
    IdleCache::Tick idle(internals->idle, &result);
    if (globalState != nullptr && currentStack != nullptr && idle.MustTest(-1, globalState))
    {
        TestGlobalState(&result, timeStep);
    }
    for (int i = TopIndex(currentStack); i >= 0; --i)
    {
        // Required: a blip that ends inside this loop continues below the same index of the main
        // stack, or ends the tick with std::out_of_range when the main stack is too short.
        // Required: a stack that becomes shorter than the index ends the tick with
        // std::out_of_range, and no parameter is reset.
        SMState* state = currentStack->at(static_cast<std::size_t>(i));
        result.stackIndex = i;
        if (idle.MustUpdate(i, state))
        {
            // Required: the result is not read. A state whose update failed has its transitions
            // tested.
            state->Update(this, timeStep);
        }
        // Required: an exit node that has just ended a blip is tested too. Its transition rewrites
        // the main stack from the index of the node.
        if (idle.MustTest(i, state) && UpdateState(state, &result, timeStep) == kTransitionFired)
        {
            // Required: the loop continues below. An outer transition may pop in the same tick what
            // this one has entered.
            UpdateStateStack(&result);
            idle.Disturb(i);
        }
    }
    if (parameterTable != nullptr)
    {
        // Required: this happens before Start too, when there is no stack.
        parameterTable->ResetFrameParameters();
    }
    if (idle.HasMetUnknown())
    {
        idle.Learn(this, globalState, currentStack);
    }
}

/// Required: the global state is never updated or entered, so it runs no action. Only its
/// transitions are tested.
void HSM::TestGlobalState(UpdateResult* result, float timeStep)
{
    result->stackIndex = 0;
    // Required: the first transition that holds is the only one. When it is too weak it is dropped,
    // and hides a stronger one behind it.
    // Required: an equal priority is enough, so an equal blip replaces the running one.
    if (UpdateState(globalState, result, timeStep) == kTransitionFired &&
        result->priority >= blipPriority)
    {
        StartBlip(result);
    }
}

void HSM::StartBlip(UpdateResult* result)
{
    LogStream(LogInfo) << "State Blip: " << NameOf(*globalState) << EndLine;
    const int top = TopIndex(currentStack);
    if (blipActive)
    {
        UpdateResult blank = UpdateResult::Blank();
        UpdateStateStack(&blank);
    }
    blipStackLevel = top;
    result->blipLevel = top;
    result->isBlip = true;
    blipActive = true;
    currentStack = &blipStack;
    blipPriority = result->priority;
    // Required: a push by id activates with 0, so the callback does not get the switch argument.
    // Required: neither the start nor the end of a blip writes a switch or tells the listeners.
    // Required: a target that cannot be activated is not rolled back. The blip stack stays empty
    // and the main stack does not run.
    // Required: a target that will not be entered is not rolled back either.
    PushState(result->targetID);
}

int HSM::UpdateState(SMState* state, UpdateResult* result, float)
{
    ERROR_RETURN(state, 0);
    ERROR_RETURN(result, 0);
    if (state->ProcessTransitions(this, result) == 0)
    {
        return kNoTransition;
    }
    if (IsLogged(LogInfo))
    {
        LogSatisfied(*state);
    }
    result->popLevel = result->stackIndex;
    return kTransitionFired;
}

int HSM::UpdateStateStack(UpdateResult* result)
{
    ERROR_RETURN(result, 0);
    SMState* previous = nullptr;
    const int lowest = currentStack == nullptr ? 0 : result->popLevel;
    for (int i = TopIndex(currentStack); i >= lowest; --i)
    {
        if (currentStack->at(static_cast<std::size_t>(i)) == nullptr)
        {
            continue;
        }
        SMState* popped = PopState();
        // Required: only the first state popped counts as the previous one.
        if (previous == nullptr)
        {
            previous = popped;
            previousState = popped;
        }
    }
    const unsigned int target = result->targetID;
    if (target == 0)
    {
        return 1;
    }
    // Required: the old states have been popped. An unknown target leaves the stack shorter and
    // tells nobody.
    // Required: after a failed activation the transition stays in the tree. The listeners hear of
    // it with the next switch that succeeds.
    SMState* state = ActivateState(target, result->switchArgument);
    ERROR_RETURN(state, 0);
    result->Reset();
    // Required: a state that would not be entered is reported as the next one all the same.
    PushState(state);
    Notify(ReportStateChange(previous, target));
    return 1;
}

SMState* HSM::PushState(SMState* state)
{
    if (state == nullptr || currentStack == nullptr)
    {
        return nullptr;
    }
    // Required: nothing is activated here, so this writes no line and calls no callback.
    // Required: the state may be on the other stack too, and is then entered a second time.
    // Required: a state that fails to be entered is asked twice.
    ERROR_RETURN(state->Enter(), nullptr);
    // Required: the state is entered before it is on the stack. Its enter actions see the stack
    // without it.
    currentStack->push_back(state);
    UpdateKVTable_OnPushState(state);
    return state;
}

SMState* HSM::PushState(unsigned int id)
{
    SMState* state = ActivateState(id, 0.0f);
    ERROR_RETURN(state, nullptr);
    SMState* pushed = PushState(state);
    if (pushed == nullptr)
    {
        LogStream(LogError) << "State failed to be pushed onto state stack: " << id << EndLine;
    }
    return pushed;
}

SMState* HSM::PopState()
{
    if (currentStack == nullptr || currentStack->empty())
    {
        return nullptr;
    }
    std::vector<SMState*>* const stack = currentStack;
    SMState* top = stack->back();
    ERROR_RETURN(top, nullptr);
    top->Exit();
    // What it did on leaving may have pushed and popped others, and ended a blip.
    if (RemoveHighest(*stack, top))
    {
        Internals::RemoveLast(*this, stack);
    }
    return top;
}

SMState* HSM::GetCurrentState()
{
    return currentStack == nullptr || currentStack->empty() ? nullptr : currentStack->back();
}

bool HSM::IsBlipState()
{
    return blipActive;
}

int HSM::RevertToPreviousState()
{
    if (!blipActive)
    {
        // Required: without a blip this pops the top state, although there is nothing to revert.
        PopState();
        return 1;
    }
    UpdateResult blank = UpdateResult::Blank();
    ERROR_RETURN(UpdateStateStack(&blank), 0);
    blipActive = false;
    blipPriority = kRestingBlipPriority;
    currentStack = &stateStack;
    return 1;
}

int HSM::RevertToStartState()
{
    if (!blipActive)
    {
        return 0;
    }
    UpdateResult blank = UpdateResult::Blank();
    UpdateStateStack(&blank);
    blipActive = false;
    currentStack = &stateStack;
    UpdateStateStack(&blank);
    // Required: nothing is pushed, and `blipPriority` stays at that of the ended blip.
    return 1;
}

} // namespace vell
