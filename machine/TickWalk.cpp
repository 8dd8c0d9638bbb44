// VELL: data-driven hierarchical state machines.
// machine/TickWalk.cpp: making of the walk.
#include "machine/TickWalk.h"

#include "parameters/ParameterTable.h"
#include "states/SubstateState.h"
#include "transitions/ConditionDef.h"
#include "transitions/TransitionDef.h"

#include <vell/BaseDef.h>
#include <vell/HSM.h>
#include <vell/SMState.h>

#include <algorithm>
#include <climits>
#include <new>

namespace vell
{

template <class T, std::size_t Own>
bool TickWalk::Room<T, Own>::Grow(std::size_t count)
{
    if (count <= capacity)
    {
        return true;
    }
    const std::size_t wanted = std::max(count, 2 * capacity);
    std::unique_ptr<T[]> larger(new (std::nothrow) T[wanted]());
    if (larger == nullptr)
    {
        return false;
    }
    std::copy(begin, begin + capacity, larger.get());
    more = std::move(larger);
    begin = more.get();
    capacity = wanted;
    return true;
}

void TickWalk::Follow(const HSM& machine, std::size_t count)
{
    const std::vector<SMState*>& stack = *machine.currentStack;
    const std::size_t end = std::min(count, stack.size());
    const SMState* highest = end == 0 ? machine.globalState : stack[end - 1];
    if (settled != highest)
    {
        // Made only when the same state is on top twice: a machine that changes at every tick makes
        // nothing.
        settled = highest;
        return;
    }
    if (madeAt != machine.changes)
    {
        levelCount = 0;
        madeAt = machine.changes;
        const ParameterTable* table = machine.parameterTable;
        steady = table == nullptr || table->ResetsAny() ? nullptr : table;
    }
    for (std::size_t i = 0; i <= end; ++i)
    {
        const SMState* state = i == 0 ? machine.globalState : stack[i - 1];
        if (i < levelCount && levels.begin[i + 1].state == state)
        {
            continue;
        }
        levelCount = std::min(levelCount, static_cast<unsigned int>(i));
        if (!Add(machine, state))
        {
            return;
        }
    }
}

/// Returns false when there is no room for more.
bool TickWalk::Add(const HSM& machine, const SMState* state)
{
    if (!levels.Grow(levelCount + 2))
    {
        return false;
    }
    const unsigned short first = levels.begin[levelCount].messageEnd;
    TickLevel level{state, first, first, first, true, true};
    if (state != nullptr && IsKnown(machine, *state))
    {
        level.asks = false;
        level.acts =
            state->role.value == SMState::Role::ExitNode || state->def->executeActions != nullptr;
        for (const TransitionDef* transition : state->transitions)
        {
            if (transition != nullptr && !AddTransition(machine, *transition, &level))
            {
                return false;
            }
        }
        if (IsChildDue(*state))
        {
            // It gets one without a change that counts: the level is made anew until it has.
            level.state = nullptr;
            level.asks = true;
        }
        level.acts = level.acts || level.asks;
    }
    levels.begin[++levelCount] = level;
    return true;
}

/// Tells whether all that the state does in a tick is to be seen in its fields.
bool TickWalk::IsKnown(const HSM& machine, const SMState& state)
{
    return state.role.value != SMState::Role::UnknownState && state.hsm == &machine &&
           state.def != nullptr && state.def->links.changes == &machine.changes;
}

bool TickWalk::IsChildDue(const SMState& state)
{
    return state.role.value == SMState::Role::Level &&
           static_cast<const SubstateState&>(state).currentChild == nullptr;
}

/// Returns false when there is no room for more.
bool TickWalk::AddTransition(const HSM& machine, const TransitionDef& transition, TickLevel* level)
{
    level->asks =
        level->asks || !transition.triggers.empty() || transition.links.changes != &machine.changes;
    for (const ConditionDef* condition : transition.conditions)
    {
        TransitionGuard guard;
        const bool isKnown = condition != nullptr && condition->links.changes == &machine.changes;
        const TransitionGuard::Kind kind =
            isKnown ? MakeGuard(*condition, &guard) : TransitionGuard::Unknown;
        if (!AddGuard(kind, guard, level))
        {
            return false;
        }
    }
    return true;
}

/// Puts a guard behind those of its kind. Returns false when there is no room for more.
bool TickWalk::AddGuard(TransitionGuard::Kind kind, const TransitionGuard& guard, TickLevel* level)
{
    if (kind == TransitionGuard::Never || kind == TransitionGuard::Unknown)
    {
        level->asks = level->asks || kind == TransitionGuard::Unknown;
        return true;
    }
    if (level->messageEnd == USHRT_MAX || !guards.Grow(level->messageEnd + std::size_t{1}))
    {
        return false;
    }
    TransitionGuard* place = guards.begin + level->messageEnd++;
    if (kind != TransitionGuard::Message)
    {
        *place = guards.begin[level->integerEnd];
        place = guards.begin + level->integerEnd++;
    }
    if (kind == TransitionGuard::Float)
    {
        *place = guards.begin[level->floatEnd];
        place = guards.begin + level->floatEnd++;
    }
    *place = guard;
    return true;
}

} // namespace vell
