// VELL: data-driven hierarchical state machines.
// idle/IdleCache.h: what a tick in which nothing happens need not do.
#pragma once

#include <vell/SubstateState.h>

#include "foundation/Revision.h"
#include "foundation/SlabMemory.h"
#include "idle/ConditionBounds.h"
#include "states/SMStateInternals.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vell
{

class HSMAlloc;
class TransitionDef;
struct UpdateResult;

/// The shortcut of the tick. This folder is all of it.
///
/// *Contract.* Skipping is never observable: no host, log or tree can tell a machine with the cache
/// from one without. A tick (machine/HSMTick.cpp) asks two questions about each state of the stack,
/// `MustUpdate` and `MustTest`. "No" means that the state would do nothing: no action performs, no
/// trigger is called, no condition holds. "Yes" is always a right answer.
///
/// *What is known of a state.* Whether it has anything to do by itself, and the bounds of
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
/// *Memory.* A tick allocates nothing: `Follow` reserves space when a state is activated. Where
/// memory is short, states stay unknown.
class IdleCache
{
    struct Entry;

public:
    class Tick;

    IdleCache() = default;
    IdleCache(const IdleCache&) = delete;
    IdleCache& operator=(const IdleCache&) = delete;

    /// Takes in a state that was activated: lets it, its definition and its transitions raise the
    /// revision, as far as they are the library's own and in `arena`, and reserves space for its
    /// entry.
    void Follow(SMState& state, const HSMAlloc& arena);

    /// Forgets the states that were taken in: the machine's arena goes.
    void Forget();

    /// Fetches what a tick of a machine whose states are known reads here.
    void Prefetch() const;
    /// Fetches what such a tick reads of the states, when `Prefetch` is done.
    void PrefetchStates() const;

    /// Tells whether `result` is the record of a tick that is under way and that no host has seen.
    bool IsTickRecord(const UpdateResult* result) const
    {
        return reinterpret_cast<std::uintptr_t>(result) == record;
    }

    Revision revision; ///< raised by whatever may give a tick more to do

private:
    /// The global state's entry comes first, then those of the stack from the bottom.
    static constexpr std::size_t kGlobalEntry = 0;

    struct Entry
    {
        bool IsChildDue() const
        {
            return isSubstate && static_cast<const SubstateState*>(state)->currentChild == nullptr;
        }

        const SMState* state;        ///< null when nothing is known
        ConditionBounds* floatEnd;   ///< end of its bounds of floats; they follow the entry before
        ConditionBounds* integerEnd; ///< end of those of integers
        ConditionBounds* textEnd;    ///< end of those of texts
        bool isSubstate;             ///< `state` is a SubstateState, not of a host's class
        bool acts;                   ///< the state is to be updated
        bool asks;                   ///< its transitions are to be tested, whatever the bounds say
    };

    /// Space for `Own` elements beside the cache's other data, and for more in slabs.
    template <class T, std::size_t Own>
    struct SmallBuffer
    {
        bool Grow(std::size_t count);

        T* begin = own;
        std::size_t capacity = Own;
        std::vector<T, SlabAllocator<T>> more;
        T own[Own] = {};
    };

    const Entry* Find(std::size_t index, const SMState* state) const
    {
        const Entry* entry = entries.begin + 1 + index;
        const bool isKnown = index < entryCount && madeAt == revision.number;
        return isKnown && entry->state == state ? entry : nullptr;
    }
    static bool Accepts(const Entry& entry);

    void Reserve(std::size_t conditionCount);
    /// Notes that `state` is about to get the record of the tick. One of a host's class may keep
    /// it, and reads the transition that fired before it.
    void ShowRecord(const UpdateResult& result, const SMState* state)
    {
        if (record != 0 && state != nullptr && !SMState::Internals::IsFollowed(*state, &revision))
        {
            HandOutRecord(result);
        }
    }
    void HandOutRecord(const UpdateResult& result);
    void Learn(const HSM* machine, const SMState* globalState, const std::vector<SMState*>& stack,
               std::size_t quietStates);
    bool IsKnown(const HSM* machine, const SMState& state) const;
    bool Add(const HSM* machine, const SMState* state);
    bool AddTransition(const TransitionDef& transition, Entry* entry);
    bool AddBounds(ConditionBounds::Kind kind, const ConditionBounds& bounds, Entry* entry);

    std::uintptr_t record =
        0; ///< address of the record of the tick that is under way, 0 once a host saw it
    const SMState* settled = nullptr; ///< the highest quiet state when last out of date
    unsigned int madeAt = 0;          ///< the revision that the entries were found at
    unsigned int entryCount = 0;      ///< entries that are known
    std::size_t entriesNeeded = 1;    ///< entries to have space for
    std::size_t boundsNeeded = 0;     ///< bounds to have space for
    SmallBuffer<Entry, 8> entries;    ///< behind an empty one
    SmallBuffer<ConditionBounds, 24> bounds;
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
        const Entry* entry = Find(index, state);
        return entry == nullptr ? state != nullptr : entry->acts || entry->IsChildDue();
    }

    /// Tells whether the transitions of `state` have to be tested.
    bool MustTest(int index, const SMState* state)
    {
        const Entry* entry = Find(index, state);
        if (entry != nullptr && !entry->asks)
        {
            return cache.Accepts(*entry);
        }
        isUnknownMet = isUnknownMet || entry == nullptr;
        isGlobalUnknown = isGlobalUnknown || (entry == nullptr && index < 0);
        cache.ShowRecord(*result, state);
        return true;
    }

    /// Notes that the state at `index` has fired: what was above it is gone.
    void Disturb(int index)
    {
        quietStates = static_cast<std::size_t>(index);
        isUnknownMet = isGlobalUnknown;
    }

    /// Tells whether a state stayed quiet that was unknown.
    bool HasMetUnknown() const
    {
        return isUnknownMet;
    }

    /// Learns the states that stayed quiet: to be called at the end of the tick.
    void Learn(const HSM* machine, const SMState* globalState, const std::vector<SMState*>* stack)
    {
        if (stack != nullptr)
        {
            cache.Learn(machine, globalState, *stack, quietStates);
        }
    }

private:
    const Entry* Find(int index, const SMState* state) const
    {
        return cache.Find(static_cast<std::size_t>(index) + 1, state);
    }

    IdleCache& cache;
    const UpdateResult* result;                             ///< the tick's own record
    std::size_t quietStates = static_cast<std::size_t>(-1); ///< lowest states that did not fire
    bool isUnknownMet = false;
    bool isGlobalUnknown = false;
};

inline bool IdleCache::Accepts(const Entry& entry)
{
    // Its bounds begin where those of the entry before it end; an empty entry comes first.
    const ConditionBounds* next = (&entry)[-1].textEnd;
    for (; next != entry.floatEnd; ++next)
    {
        if (next->AcceptFloat())
        {
            return true;
        }
    }
    for (; next != entry.integerEnd; ++next)
    {
        if (next->AcceptInteger())
        {
            return true;
        }
    }
    for (; next != entry.textEnd; ++next)
    {
        if (next->AcceptText())
        {
            return true;
        }
    }
    return false;
}

} // namespace vell
