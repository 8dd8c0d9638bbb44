// VELL: data-driven hierarchical state machines.
// idle/IdleCache.cpp: learning what a state would do in a tick.
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
#include "foundation/Prefetch.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"

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

/// Allocates space for `count` elements when there is less, without keeping the old ones. Returns
/// whether it did; when memory is short the old space stays.
template <class T, std::size_t Own>
bool IdleCache::SmallBuffer<T, Own>::Grow(std::size_t count)
{
    if (count <= capacity)
    {
        return false;
    }
    const std::size_t wanted = std::max(count, 2 * capacity);
    try
    {
        std::vector<T, SlabAllocator<T>>(wanted).swap(more);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    begin = more.data();
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
    entriesNeeded = 1;
    boundsNeeded = 0;
    settled = nullptr;
}

void IdleCache::Prefetch() const
{
    constexpr std::size_t kUsualStates = 4;
    const std::ptrdiff_t head =
        reinterpret_cast<const char*>(&entries.own) - reinterpret_cast<const char*>(this);
    vell::Prefetch(this, static_cast<std::size_t>(head));
    vell::Prefetch(entries.begin, kUsualStates * sizeof(Entry));
}

void IdleCache::PrefetchStates() const
{
    if (madeAt != revision.number || entryCount == 0)
    {
        return;
    }
    const ConditionBounds* const end = entries.begin[entryCount].textEnd;
    vell::Prefetch(bounds.begin, static_cast<std::size_t>(end - bounds.begin) * sizeof(*end));
    for (std::size_t i = 1; i <= entryCount; ++i)
    {
        if (entries.begin[i].isSubstate)
        {
            const auto* substate = static_cast<const SubstateState*>(entries.begin[i].state);
            vell::Prefetch(&substate->currentChild, 1);
        }
    }
}

void IdleCache::HandOutRecord(const UpdateResult& result)
{
    if (result.transition != nullptr)
    {
        BaseDef::Internals::HandOut(*result.transition);
    }
    record = 0;
}

/// Makes space for one more entry with `conditionCount` conditions.
void IdleCache::Reserve(std::size_t conditionCount)
{
    ++entriesNeeded;
    boundsNeeded += conditionCount;
    const bool areEntriesNew = entries.Grow(entriesNeeded + 1);
    const bool areBoundsNew = bounds.Grow(boundsNeeded);
    if (areEntriesNew || areBoundsNew)
    {
        entryCount = 0;
    }
}

void IdleCache::Learn(const HSM* machine, const SMState* globalState,
                      const std::vector<SMState*>& stack, std::size_t quietStates)
{
    const std::size_t count = std::min(quietStates, stack.size());
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
        entryCount = 0;
        madeAt = revision.number;
    }
    entries.begin->textEnd = bounds.begin;
    for (std::size_t i = 0; i <= count; ++i)
    {
        const SMState* state = i == kGlobalEntry ? globalState : stack[i - 1];
        if (i < entryCount && entries.begin[i + 1].state == state)
        {
            continue;
        }
        entryCount = std::min(entryCount, static_cast<unsigned int>(i));
        if (!Add(machine, state))
        {
            return;
        }
    }
}

/// Returns false when there is no space left.
bool IdleCache::Add(const HSM* machine, const SMState* state)
{
    if (entryCount + 2 > entries.capacity)
    {
        return false;
    }
    ConditionBounds* const first = entries.begin[entryCount].textEnd;
    Entry entry{state, first, first, first, false, state != nullptr, true};
    if (state != nullptr && IsKnown(machine, *state))
    {
        const std::type_info& type = typeid(*state);
        entry.isSubstate = type == typeid(SubstateState);
        entry.acts = type == typeid(ExitState) || state->GetDef()->GetActions() != nullptr;
        entry.asks = false;
        for (const TransitionDef* transition : SMState::Internals::GetTransitions(*state))
        {
            if (transition != nullptr && !AddTransition(*transition, &entry))
            {
                return false;
            }
        }
    }
    entries.begin[++entryCount] = entry;
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

/// Returns false when there is no space left.
bool IdleCache::AddTransition(const TransitionDef& transition, Entry* entry)
{
    if (!transition.triggers.empty() || !BaseDef::Internals::IsFollowed(transition, &revision))
    {
        entry->asks = true;
        return true;
    }
    for (const ConditionDef* condition : transition.conditions)
    {
        ConditionBounds found;
        const ConditionBounds::Kind kind =
            condition == nullptr ? ConditionBounds::Never : FindBounds(*condition, &found);
        if (!AddBounds(kind, found, entry))
        {
            return false;
        }
    }
    return true;
}

/// Puts bounds behind those of their kind. Returns false when there is no space left.
bool IdleCache::AddBounds(ConditionBounds::Kind kind, const ConditionBounds& found, Entry* entry)
{
    if (kind == ConditionBounds::Never || kind == ConditionBounds::Unknown)
    {
        entry->asks = entry->asks || kind == ConditionBounds::Unknown;
        return true;
    }
    if (entry->textEnd == bounds.begin + bounds.capacity)
    {
        return false;
    }
    // The first of each later kind moves to the end of its kind.
    ConditionBounds* place = entry->textEnd++;
    if (kind != ConditionBounds::Text)
    {
        *place = *entry->integerEnd;
        place = entry->integerEnd++;
    }
    if (kind == ConditionBounds::Float)
    {
        *place = *entry->floatEnd;
        place = entry->floatEnd++;
    }
    *place = found;
    return true;
}

} // namespace vell
