// VELL: data-driven hierarchical state machines.
// idle/IdleCache.cpp: learning what a level would do.
#include "idle/IdleCache.h"

#include <vell/ConditionDef.h>
#include <vell/HSMAlloc.h>
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "definitions/AnimClipDef.h"
#include "definitions/BaseDefInternals.h"
#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/GenericDef.h"
#include "definitions/GlobalDef.h"
#include "definitions/SubstateDef.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "states/SMStateInternals.h"

#include <algorithm>
#include <new>
#include <typeinfo>

namespace vell
{
namespace
{

/// Tells whether the state does in a tick what the library's own classes do.
bool IsOwnClass(const SMState& state)
{
    const std::type_info& type = typeid(state);
    return type == typeid(SMState) || type == typeid(SubstateState) || type == typeid(ExitState) ||
           type == typeid(EnterState) || type == typeid(GlobalState);
}

/// Tells whether the definition has no other actions than those of its lists.
bool HasOwnActions(const BaseDef& def)
{
    const std::type_info& type = typeid(def);
    return type == typeid(GenericDef) || type == typeid(AnimClipDef) ||
           type == typeid(SubstateDef) || type == typeid(EnterDef) || type == typeid(ExitDef) ||
           type == typeid(GlobalDef);
}

} // namespace

/// Takes new room, without what was in the old, when there is not room for `count`. Returns whether
/// it did; where there is no memory the room stays as it was.
template <class T, std::size_t Own>
bool IdleCache::Room<T, Own>::Grow(std::size_t count)
{
    if (count <= capacity)
    {
        return false;
    }
    const std::size_t wanted = std::max(count, 2 * capacity);
    std::unique_ptr<T[]> larger(new (std::nothrow) T[wanted]());
    if (larger == nullptr)
    {
        return false;
    }
    more = std::move(larger);
    begin = more.get();
    capacity = wanted;
    return true;
}

void IdleCache::Follow(SMState& state, const HSMAlloc& arena)
{
    // What is not in the machine's arena may outlive its revision.
    if (arena.Holds(&state) && IsOwnClass(state))
    {
        SMState::Internals::Follow(state, &revision);
    }
    else
    {
        SMState::Internals::HandOutTransitions(state);
    }
    BaseDef* def = state.GetDef();
    if (def != nullptr && arena.Holds(def) && HasOwnActions(*def))
    {
        BaseDef::Internals::Follow(*def, &revision);
    }
    std::size_t conditionCount = 0;
    for (TransitionDef* transition : SMState::Internals::GetTransitions(state))
    {
        if (transition != nullptr && arena.Holds(transition) &&
            typeid(*transition) == typeid(TransitionDef))
        {
            BaseDef::Internals::Follow(*transition, &revision);
            conditionCount += transition->conditions.size();
        }
    }
    Reserve(conditionCount);
}

void IdleCache::Forget()
{
    revision.Raise();
    levelsNeeded = 1;
    boundsNeeded = 0;
    settled = nullptr;
}

/// Notes that `state` is about to get the record of the tick. One of a host's class may keep it,
/// and reads the transition that fired before it.
void IdleCache::ShowRecord(const UpdateResult& result, const SMState* state)
{
    if (record == 0 || state == nullptr || SMState::Internals::IsFollowed(*state, &revision))
    {
        return;
    }
    if (result.transition != nullptr)
    {
        BaseDef::Internals::HandOut(*result.transition);
    }
    record = 0;
}

/// Makes room for one more level with `conditionCount` conditions.
void IdleCache::Reserve(std::size_t conditionCount)
{
    ++levelsNeeded;
    boundsNeeded += conditionCount;
    const bool areLevelsNew = levels.Grow(levelsNeeded + 1);
    const bool areBoundsNew = bounds.Grow(boundsNeeded);
    if (areLevelsNew || areBoundsNew)
    {
        levelCount = 0;
    }
}

void IdleCache::Learn(const HSM* machine, const SMState* globalState,
                      const std::vector<SMState*>& stack, std::size_t quietLevels)
{
    const std::size_t count = std::min(quietLevels, stack.size());
    const SMState* highest = count == 0 ? globalState : stack[count - 1];
    if (settled != highest)
    {
        // Not before the same state is found twice: a machine that changes at every tick learns
        // nothing.
        settled = highest;
        return;
    }
    if (madeAt != revision.number)
    {
        levelCount = 0;
        madeAt = revision.number;
    }
    levels.begin->textEnd = bounds.begin;
    for (std::size_t i = 0; i <= count; ++i)
    {
        const SMState* state = i == kGlobalLevel ? globalState : stack[i - 1];
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
bool IdleCache::Add(const HSM* machine, const SMState* state)
{
    if (levelCount + 2 > levels.capacity)
    {
        return false;
    }
    ConditionBounds* const first = levels.begin[levelCount].textEnd;
    Level level{state, nullptr, first, first, first, state != nullptr, true};
    if (state != nullptr && IsKnown(machine, *state))
    {
        const std::type_info& type = typeid(*state);
        level.substate =
            type == typeid(SubstateState) ? static_cast<const SubstateState*>(state) : nullptr;
        level.acts = type == typeid(ExitState) || state->GetDef()->GetActions() != nullptr;
        level.asks = false;
        for (const TransitionDef* transition : SMState::Internals::GetTransitions(*state))
        {
            if (transition != nullptr && !AddTransition(*transition, &level))
            {
                return false;
            }
        }
    }
    levels.begin[++levelCount] = level;
    return true;
}

/// Tells whether whatever changes what the state does in a tick is read or raises the revision.
bool IdleCache::IsKnown(const HSM* machine, const SMState& state) const
{
    const BaseDef* def = state.GetDef();
    return IsOwnClass(state) && SMState::Internals::IsFollowed(state, &revision) &&
           state.GetHSM() == machine && def != nullptr &&
           BaseDef::Internals::IsFollowed(*def, &revision);
}

/// Returns false when there is no room for more.
bool IdleCache::AddTransition(const TransitionDef& transition, Level* level)
{
    if (!transition.triggers.empty() || !BaseDef::Internals::IsFollowed(transition, &revision))
    {
        level->asks = true;
        return true;
    }
    for (const ConditionDef* condition : transition.conditions)
    {
        ConditionBounds found;
        const ConditionBounds::Kind kind =
            condition == nullptr ? ConditionBounds::Never : FindBounds(*condition, &found);
        if (!AddBounds(kind, found, level))
        {
            return false;
        }
    }
    return true;
}

/// Puts bounds behind those of their kind. Returns false when there is no room for more.
bool IdleCache::AddBounds(ConditionBounds::Kind kind, const ConditionBounds& found, Level* level)
{
    if (kind == ConditionBounds::Never || kind == ConditionBounds::Unknown)
    {
        level->asks = level->asks || kind == ConditionBounds::Unknown;
        return true;
    }
    if (level->textEnd == bounds.begin + bounds.capacity)
    {
        return false;
    }
    // The first of each later kind moves to the end of its kind.
    ConditionBounds* place = level->textEnd++;
    if (kind != ConditionBounds::Text)
    {
        *place = *level->integerEnd;
        place = level->integerEnd++;
    }
    if (kind == ConditionBounds::Float)
    {
        *place = *level->floatEnd;
        place = level->floatEnd++;
    }
    *place = found;
    return true;
}

} // namespace vell
