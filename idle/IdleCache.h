// VELL: data-driven hierarchical state machines.
// idle/IdleCache.h: what a tick in which nothing happens need not do.
#pragma once

#include <vell/SubstateState.h>

#include "foundation/Revision.h"
#include "idle/ConditionBounds.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vell
{

class HSMAlloc;
class TransitionDef;
struct UpdateResult;

/// The shortcut of the tick. This folder is all of it.
///
/// *Contract.* Skipping is never observable: no host, log or tree can tell a machine with the cache
/// from one without. A tick (machine/HSMTick.cpp) asks two questions about each level of the stack,
/// `MustUpdate` and `MustTest`. "No" means that the level would do nothing: no action performs, no
/// trigger is called, no condition holds. "Yes" is always a right answer.
///
/// *What is known of a level.* Whether its state has anything to do by itself, and the bounds of
/// all conditions of its transitions, side by side (ConditionBounds). Only states of the library's
/// own classes are known, of definitions of its own classes, with transitions that have no trigger.
/// All others are updated and tested in full at every tick.
///
/// *What is read at every tick, and so cannot be out of date:* the machine's fields, the entries of
/// the stack, the values of parameters, and whether a substate has a child.
///
/// *What invalidates.* The machine's `Revision`: what is known was found at one number and is void
/// at any other. These raise it, and nothing else needs to:
///   - BaseDef: actions registered or removed, `Init`, assignment;
///   - TransitionDef: a trigger added;
///   - SMState: another definition, another machine, a transition added, sorting, assignment;
///   - the destructor of a state or definition that a host runs by hand;
///   - HSM: conditions bound, parameters initialised, `Create`, `Uninit`;
///   - a transition that a host is given for the first time.
/// The last one is the rule for public fields. A host can write to a TransitionDef or ConditionDef
/// only when it has its address, and no write to a field can be heard. So whatever gives a host
/// such an address (GetTransitionAt, FindDef, BeginDef, NextDef, an UpdateResult that is a host's
/// or that a state of a host's class gets from the tick, a copied state, a state or definition of a
/// host's factory) calls `HandOut`, and a transition that was handed out is never known again.
/// Excluded: a host that takes addresses out of protected members of the library's own objects, or
/// out of HSMAlloc::tracked, and writes there.
///
/// *When you add a field that a tick reads:* read it at every tick here, or raise the revision
/// where it is written.
///
/// *Memory.* A tick allocates nothing: `Follow` makes room when a state is activated. Where there
/// is none, levels stay unknown.
class IdleCache
{
    struct Level;

public:
    class Tick;

    IdleCache() = default;
    IdleCache(const IdleCache&) = delete;
    IdleCache& operator=(const IdleCache&) = delete;

    /// Takes in a state that was activated: lets it, its definition and its transitions raise the
    /// revision, as far as they are the library's own and in `arena`, and makes room for its level.
    void Follow(SMState& state, const HSMAlloc& arena);

    /// Forgets the states that were taken in: the machine's arena goes.
    void Forget();

    /// Tells whether `result` is the record of a tick that is under way and that no host has seen.
    bool IsTickRecord(const UpdateResult* result) const
    {
        return reinterpret_cast<std::uintptr_t>(result) == record;
    }

    Revision revision; ///< raised by whatever may give a tick more to do

private:
    /// The global state's level comes first, then those of the stack from the bottom.
    static constexpr std::size_t kGlobalLevel = 0;

    struct Level
    {
        bool IsChildDue() const
        {
            return substate != nullptr && substate->currentChild == nullptr;
        }

        const SMState* state;          ///< null when nothing is known
        const SubstateState* substate; ///< `state` as a substate, or null
        ConditionBounds* floatEnd;   ///< end of its bounds of floats; they follow the level before
        ConditionBounds* integerEnd; ///< end of those of integers
        ConditionBounds* textEnd;    ///< end of those of texts
        bool acts;                   ///< the state is to be updated
        bool asks;                   ///< its transitions are to be tested, whatever the bounds say
    };

    /// Room for `Own` elements beside the cache's other data, and for more on the heap.
    template <class T, std::size_t Own>
    struct Room
    {
        bool Grow(std::size_t count);

        T* begin = own;
        std::size_t capacity = Own;
        std::unique_ptr<T[]> more;
        T own[Own] = {};
    };

    const Level* Find(std::size_t index, const SMState* state) const
    {
        const Level* level = levels.begin + 1 + index;
        const bool isKnown = index < levelCount && madeAt == revision.number;
        return isKnown && level->state == state ? level : nullptr;
    }
    static bool Accepts(const Level& level);

    void Reserve(std::size_t conditionCount);
    void ShowRecord(const UpdateResult& result, const SMState* state);
    void Learn(const HSM* machine, const SMState* globalState, const std::vector<SMState*>& stack,
               std::size_t quietLevels);
    bool IsKnown(const HSM* machine, const SMState& state) const;
    bool Add(const HSM* machine, const SMState* state);
    bool AddTransition(const TransitionDef& transition, Level* level);
    bool AddBounds(ConditionBounds::Kind kind, const ConditionBounds& bounds, Level* level);

    std::uintptr_t record =
        0; ///< address of the record of the tick that is under way, 0 once a host saw it
    const SMState* settled = nullptr; ///< the highest quiet state when last out of date
    unsigned int madeAt = 0;          ///< the number that the levels were found at
    unsigned int levelCount = 0;      ///< levels that are known
    std::size_t levelsNeeded = 1;     ///< levels to have room for
    std::size_t boundsNeeded = 0;     ///< bounds to have room for
    Room<Level, 8> levels;            ///< behind an empty one
    Room<ConditionBounds, 24> bounds;
};

/// The questions of one tick. Index -1 is the global state, the others are those of the stack.
class IdleCache::Tick
{
public:
    /// `result` is the tick's own record.
    Tick(IdleCache& machineCache, const UpdateResult* tickRecord)
        : cache(machineCache), result(tickRecord)
    {
        cache.record = reinterpret_cast<std::uintptr_t>(tickRecord);
    }
    ~Tick()
    {
        cache.record = 0;
    }
    Tick(const Tick&) = delete;
    Tick& operator=(const Tick&) = delete;

    /// Tells whether `state` has to be updated. A null entry has nothing to update.
    bool MustUpdate(int index, const SMState* state)
    {
        const Level* level = Find(index, state);
        return level == nullptr ? state != nullptr : level->acts || level->IsChildDue();
    }

    /// Tells whether the transitions of `state` have to be tested.
    bool MustTest(int index, const SMState* state)
    {
        const Level* level = Find(index, state);
        if (level != nullptr && !level->asks)
        {
            return cache.Accepts(*level);
        }
        isUnknownMet = isUnknownMet || level == nullptr;
        isGlobalUnknown = isGlobalUnknown || (level == nullptr && index < 0);
        cache.ShowRecord(*result, state);
        return true;
    }

    /// Notes that the level at `index` has fired: what was above it is gone.
    void Disturb(int index)
    {
        quietLevels = static_cast<std::size_t>(index);
        isUnknownMet = isGlobalUnknown;
    }

    /// Tells whether a level stayed quiet that was unknown.
    bool HasMetUnknown() const
    {
        return isUnknownMet;
    }

    /// Learns the levels that stayed quiet: to be called at the end of the tick.
    void Learn(const HSM* machine, const SMState* globalState, const std::vector<SMState*>* stack)
    {
        if (stack != nullptr)
        {
            cache.Learn(machine, globalState, *stack, quietLevels);
        }
    }

private:
    const Level* Find(int index, const SMState* state) const
    {
        return cache.Find(static_cast<std::size_t>(index) + 1, state);
    }

    IdleCache& cache;
    const UpdateResult* result;                             ///< the tick's own record
    std::size_t quietLevels = static_cast<std::size_t>(-1); ///< lowest levels that did not fire
    bool isUnknownMet = false;
    bool isGlobalUnknown = false;
};

inline bool IdleCache::Accepts(const Level& level)
{
    // Its bounds begin where those of the level before it end; an empty level comes first.
    const ConditionBounds* next = (&level)[-1].textEnd;
    for (; next != level.floatEnd; ++next)
    {
        if (next->AcceptFloat())
        {
            return true;
        }
    }
    for (; next != level.integerEnd; ++next)
    {
        if (next->AcceptInteger())
        {
            return true;
        }
    }
    for (; next != level.textEnd; ++next)
    {
        if (next->AcceptText())
        {
            return true;
        }
    }
    return false;
}

} // namespace vell
