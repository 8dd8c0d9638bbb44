// VELL: data-driven hierarchical state machines.
// machine/HSMTick.cpp: one tick, and the two stacks.
#include <vell/HSM.h>

#include "foundation/Checks.h"
#include "machine/TickWalk.h"
#include "parameters/ParameterTable.h"

#include <vell/BaseDef.h>
#include <vell/SMState.h>
#include <vell/UpdateResult.h>

namespace vell
{
namespace
{

// What UpdateState returns.
constexpr int kTransitionFired = 3;
constexpr int kNoTransition = 2;

constexpr int kRestingBlipPriority = 1;

int TopIndex(const std::vector<SMState*>& stack)
{
    return static_cast<int>(stack.size()) - 1;
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
    bool isGlobalUnknown = false;
    if (globalState != nullptr && currentStack != nullptr)
    {
        const TickLevel* known = FindInWalk(0, globalState);
        isGlobalUnknown = known == nullptr;
        if (known == nullptr || known->asks || walk->Holds(*known))
        {
            TickGlobalState(&result, timeStep);
        }
    }
    // The lowest levels, in which nothing fired, and whether the walk lacks one of them.
    std::size_t quietLevels = currentStack == nullptr ? 0 : currentStack->size();
    bool isUnknown = isGlobalUnknown;
    for (int i = currentStack == nullptr ? -1 : TopIndex(*currentStack); i >= 0; --i)
    {
        // Required: a blip that ends inside this walk goes on below the same index of the main
        // stack, and a main stack that is too short for it shows as std::out_of_range.
        SMState* state = currentStack->at(static_cast<std::size_t>(i));
        const TickLevel* known = FindInWalk(static_cast<std::size_t>(i) + 1, state);
        if (known == nullptr || known->acts)
        {
            const bool asks = known == nullptr || known->asks;
            isUnknown = isUnknown || known == nullptr;
            if (state != nullptr)
            {
                state->Update(this, timeStep);
            }
            // What the update did may have changed what there is to know.
            known = asks ? nullptr : FindInWalk(static_cast<std::size_t>(i) + 1, state);
        }
        if (known != nullptr && !walk->Holds(*known))
        {
            continue;
        }
        result.stackIndex = i;
        if (UpdateState(state, &result, timeStep) == kTransitionFired)
        {
            UpdateStateStack(&result);
            quietLevels = static_cast<std::size_t>(i);
            isUnknown = isGlobalUnknown;
        }
    }
    if (parameterTable != nullptr && !walk->NeedsNoReset(parameterTable, changes))
    {
        parameterTable->ResetFrameParameters();
    }
    if (isUnknown && currentStack != nullptr)
    {
        walk->Follow(*this, quietLevels);
    }
}

void HSM::TickGlobalState(UpdateResult* result, float timeStep)
{
    result->stackIndex = 0;
    if (UpdateState(globalState, result, timeStep) == kTransitionFired &&
        result->priority >= blipPriority)
    {
        StartBlip(result);
    }
}

const TickLevel* HSM::FindInWalk(std::size_t index, const SMState* state) const
{
    return walk->Find(index, state, changes);
}

void HSM::StartBlip(UpdateResult* result)
{
    LogStream(LogInfo) << "State Blip: " << NameOf(*globalState) << EndLine;
    const int top = TopIndex(*currentStack);
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
    int outcome = 0;
    do
    {
        ERROR_BREAK(state);
        ERROR_BREAK(result);
        outcome = kNoTransition;
        if (state->ProcessTransitions(this, result) != 0)
        {
            FinishTransition(*state, result);
            outcome = kTransitionFired;
        }
    } while (false);
    return outcome;
}

void HSM::FinishTransition(const SMState& state, UpdateResult* result)
{
    LogStream(LogInfo) << "Transition satisfied: " << NameOf(state) << EndLine;
    result->popLevel = result->stackIndex;
}

int HSM::UpdateStateStack(UpdateResult* result)
{
    int outcome = 0;
    do
    {
        ERROR_BREAK(result);
        SMState* previous = nullptr;
        const int lowest = currentStack == nullptr ? 0 : result->popLevel;
        for (int i = currentStack == nullptr ? -1 : TopIndex(*currentStack); i >= lowest; --i)
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
            outcome = 1;
            break;
        }
        SMState* state = ActivateState(target, result->switchArgument);
        ERROR_BREAK(state);
        result->Reset();
        // Required: a state that would not be entered is reported as the next one all the same.
        PushState(state);
        ReportStateChange(previous, target);
        Notify();
        outcome = 1;
    } while (false);
    return outcome;
}

SMState* HSM::PushState(SMState* state)
{
    if (state == nullptr || currentStack == nullptr)
    {
        return nullptr;
    }
    SMState* pushed = nullptr;
    do
    {
        // Required: a state that fails to be entered is asked twice.
        ERROR_BREAK(state->Enter());
        currentStack->push_back(state);
        UpdateKVTable_OnPushState(state);
        pushed = state;
    } while (false);
    return pushed;
}

SMState* HSM::PushState(unsigned int id)
{
    SMState* pushed = nullptr;
    do
    {
        SMState* state = ActivateState(id, 0.0f);
        ERROR_BREAK(state);
        pushed = PushState(state);
        if (pushed == nullptr)
        {
            LogStream(LogError) << "State failed to be pushed onto state stack: " << id << EndLine;
        }
    } while (false);
    return pushed;
}

SMState* HSM::PopState()
{
    if (currentStack == nullptr || currentStack->empty())
    {
        return nullptr;
    }
    SMState* popped = nullptr;
    do
    {
        SMState* top = currentStack->back();
        ERROR_BREAK(top);
        top->Exit();
        currentStack->pop_back();
        UpdateKVTable_OnPopState();
        popped = top;
    } while (false);
    return popped;
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
    int result = 0;
    do
    {
        UpdateResult blank = UpdateResult::Blank();
        ERROR_BREAK(UpdateStateStack(&blank));
        blipActive = false;
        blipPriority = kRestingBlipPriority;
        currentStack = &stateStack;
        result = 1;
    } while (false);
    return result;
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
