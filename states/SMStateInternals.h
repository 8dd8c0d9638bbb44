// VELL: data-driven hierarchical state machines.
// states/SMStateInternals.h: what the library does with a state and a host does not.
#pragma once

#include <vell/HSMAlloc.h>
#include <vell/SMState.h>

#include "foundation/Revision.h"

namespace vell
{

struct SMState::Internals
{
    /// Places a T in the arena and gives it its id; null when there is no space.
    template <class T>
    static T* Place(unsigned int stateId, HSMAlloc* alloc)
    {
        T* state = alloc->New<T>();
        if (state != nullptr)
        {
            static_cast<SMState*>(state)->id = stateId;
        }
        return state;
    }

    static const std::vector<TransitionDef*>& GetTransitions(const SMState& state)
    {
        return state.transitions;
    }

    /// Lets changes of `state` raise `revision` from now on.
    static void Follow(SMState& state, Revision* revision)
    {
        state.revision.pointer = revision;
    }
    /// Tells whether all changes of `state` raise `revision`.
    static bool IsFollowed(const SMState& state, const Revision* revision)
    {
        return state.revision.pointer == revision;
    }
    /// Raises the revision of the machine that ticks `state`, if there is one.
    static void CountChange(SMState& state)
    {
        if (state.revision.pointer != nullptr)
        {
            state.revision.pointer->Raise();
        }
    }
    /// Notes that a host gets the addresses of the transitions of `state`.
    static void HandOutTransitions(const SMState& state);
};

} // namespace vell
