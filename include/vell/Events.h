// VELL: data-driven hierarchical state machines.
// include/vell/Events.h: the records that listeners receive.
#pragma once

#include <cstddef>

namespace vell
{

/// What an event listener receives with HSMEventPlayAnimation: the clip that the entered state
/// plays. The record is valid during the call only; the text belongs to the document.
struct __PlayAnimEvent__
{
    const char* clipName; ///< null when the document names no clip
    bool flag;            ///< the document's clip flag
    float scalar;         ///< 30.0, the clip's frame rate in frames per second
};

/// What a state change listener receives with HSMEventStateChange. The ids are the document's; each
/// is 0 when there was none.
struct StateChangeEvent
{
    unsigned int transitionID; ///< the transition that fired
    unsigned int previousID;   ///< the topmost state that was left
    unsigned int nextID;       ///< the state that was entered
};

static_assert(sizeof(StateChangeEvent) == 12, "three 32-bit ids, in this order");
static_assert(offsetof(StateChangeEvent, previousID) == 4, "the ids lie side by side");
static_assert(offsetof(__PlayAnimEvent__, flag) == sizeof(const char*),
              "the flag follows the name");

} // namespace vell
