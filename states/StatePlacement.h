// VELL: data-driven hierarchical state machines.
// states/StatePlacement.h: how a factory places a state in the arena.
#pragma once

#include <vell/HSMAlloc.h>
#include <vell/SMState.h>

namespace vell
{

template <class T>
T* SMState::Place(unsigned int stateId, HSMAlloc* alloc)
{
    T* state = alloc->New<T>();
    if (state != nullptr)
    {
        static_cast<SMState*>(state)->id = stateId;
    }
    return state;
}

} // namespace vell
