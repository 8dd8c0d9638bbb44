// VELL: data-driven hierarchical state machines.
// machine/TickWalk.h: what an idle tick has to look at, side by side.
#pragma once

#include "parameters/ValueRoom.h"
#include "transitions/TransitionGuard.h"

#include <memory>

namespace vell
{

class HSM;
class ParameterTable;
class SMState;
class TransitionDef;

/// What is known of one state that a machine ticks.
struct TickLevel
{
    const SMState* state; ///< null when no state is stood for
    unsigned short
        floatEnd; ///< end of its guards of floats, which begin where the level before ends
    unsigned short integerEnd; ///< end of those of integers
    unsigned short messageEnd; ///< end of those of texts
    bool acts;                 ///< the state is to be updated
    bool asks;                 ///< the state is to be updated and asked, whatever its guards say
};

/// The guards of the states that a machine ticks: those of the global state, then those of each
/// level of the stack. A level in which no guard holds, and whose state does nothing by itself, has
/// nothing to do in a tick; a machine passes over it. All else is done as if there were no walk.
///
/// A level stands for the state that it was made of. What changes that state, its definition, its
/// transitions or their conditions adds to the machine's count of changes, and no level of an older
/// count is of use.
class TickWalk
{
public:
    TickWalk() = default;
    TickWalk(const TickWalk&) = delete;
    TickWalk& operator=(const TickWalk&) = delete;

    /// Gives the level at `index`, 0 being the global state's, when it stands for `state` as of the
    /// count `changes`; else null.
    const TickLevel* Find(std::size_t index, const SMState* state, unsigned int changes) const
    {
        const bool isKnown = index < levelCount && madeAt == changes;
        const TickLevel* level = levels.begin + 1 + index;
        return isKnown && level->state == state ? level : nullptr;
    }

    /// Tells whether a guard of the level holds.
    bool Holds(const TickLevel& level) const
    {
        // Its guards begin where those of the level before it end; an empty one stands in front.
        const TransitionGuard* guard = guards.begin + (&level)[-1].messageEnd;
        for (const auto* end = guards.begin + level.floatEnd; guard != end; ++guard)
        {
            if (guard->IsInFloatRange())
            {
                return true;
            }
        }
        for (const auto* end = guards.begin + level.integerEnd; guard != end; ++guard)
        {
            if (guard->IsInIntegerRange())
            {
                return true;
            }
        }
        for (const auto* end = guards.begin + level.messageEnd; guard != end; ++guard)
        {
            if (guard->HasText())
            {
                return true;
            }
        }
        return false;
    }

    /// Makes the levels anew that do not stand for the global state of `machine` and the lowest
    /// `count` entries of its stack. Where there is no memory the walk ends.
    void Follow(const HSM& machine, std::size_t count);

    /// Tells whether the parameters of `table` were seen to need no reset, as of `changes`.
    bool NeedsNoReset(const ParameterTable* table, unsigned int changes) const
    {
        return table == steady && madeAt == changes;
    }

    ValueRoom values; ///< beside what compares them

private:
    /// Room for `Own` elements beside the walk's other data, and for more on the heap.
    template <class T, std::size_t Own>
    struct Room
    {
        bool Grow(std::size_t count);

        T* begin = own;
        std::size_t capacity = Own;
        std::unique_ptr<T[]> more;
        T own[Own] = {};
    };

    static bool IsKnown(const HSM& machine, const SMState& state);
    static bool IsChildDue(const SMState& state);
    bool Add(const HSM& machine, const SMState* state);
    bool AddTransition(const HSM& machine, const TransitionDef& transition, TickLevel* level);
    bool AddGuard(TransitionGuard::Kind kind, const TransitionGuard& guard, TickLevel* level);

    const ParameterTable* steady = nullptr; ///< where it was made, if nothing there is ever reset
    const SMState* settled = nullptr; ///< the highest state when the walk was last out of date
    unsigned int madeAt = 0;          ///< the machine's count of changes that the levels are of
    unsigned int levelCount = 0;      ///< levels that are made
    Room<TickLevel, 8> levels;        ///< behind an empty one
    Room<TransitionGuard, 24> guards;
};

} // namespace vell
