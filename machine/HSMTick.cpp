// VELL: data-driven hierarchical state machines.
// machine/HSMTick.cpp: one tick, and the two stacks.
#include <vell/HSM.h>

#include "foundation/Checks.h"
#include "introspection/MachineTree.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <vell/BaseDef.h>
#include <vell/SMState.h>
#include <vell/UpdateResult.h>

#include <algorithm>
#include <iterator>

namespace vell
{
namespace
{

// What UpdateState returns.
constexpr int kTransitionFired = 3;
constexpr int kNoTransition = 2;

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

} // namespace

void HSM::Update(float timeStep)
{
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
        // Required: a blip that ends inside this walk goes on below the same index of the main
        // stack, and a main stack that is too short for it shows as std::out_of_range.
        SMState* state = currentStack->at(static_cast<std::size_t>(i));
        result.stackIndex = i;
        if (idle.MustUpdate(i, state))
        {
            state->Update(this, timeStep);
        }
        if (idle.MustTest(i, state) && UpdateState(state, &result, timeStep) == kTransitionFired)
        {
            UpdateStateStack(&result);
            idle.Disturb(i);
        }
    }
    if (parameterTable != nullptr)
    {
        parameterTable->ResetFrameParameters();
    }
    if (idle.HasMetUnknown())
    {
        idle.Learn(this, globalState, currentStack);
    }
}

/// Required: the global state is never updated; its transitions alone are tested, and one whose
/// priority is too low is dropped.
void HSM::TestGlobalState(UpdateResult* result, float timeStep)
{
    result->stackIndex = 0;
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
    LogStream(LogInfo) << "Transition satisfied: " << NameOf(*state) << EndLine;
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
    SMState* state = ActivateState(target, result->switchArgument);
    ERROR_RETURN(state, 0);
    result->Reset();
    // Required: a state that would not be entered is reported as the next one all the same.
    PushState(state);
    ReportStateChange(previous, target);
    Notify();
    return 1;
}

SMState* HSM::PushState(SMState* state)
{
    if (state == nullptr || currentStack == nullptr)
    {
        return nullptr;
    }
    // Required: a state that fails to be entered is asked twice.
    ERROR_RETURN(state->Enter(), nullptr);
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
    const auto entry = std::find(stack->rbegin(), stack->rend(), top);
    if (entry != stack->rend())
    {
        stack->erase(std::next(entry).base());
        MachineTree::RemoveLast(GetStackTable(stack));
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
