// VELL: data-driven hierarchical state machines.
// include/vell/UpdateResult.h: the record of one tick's transition outcome.
#pragma once

namespace vell
{

class TransitionDef;

/// Travels through one tick: the state that fires fills in what fired, the machine what is to be
/// popped. A fresh record says that nothing is to be popped, and is not for
/// HSM::UpdateStateStack; a blank one pops the whole stack and activates nothing.
struct UpdateResult
{
    TransitionDef* transition = nullptr; ///< the transition that fired, or null
    unsigned int tag = 0;                ///< the transition's tag; nobody here reads it
    unsigned int targetID = 0;           ///< the state to activate; 0 pops only
    unsigned int sourceID = 0;           ///< the node that the transition leaves
    int popLevel = -1;           ///< lowest stack index to pop; -1 when there is nothing to pop
    int stackIndex = 0;          ///< index of the state that is being updated
    int blipLevel = 0;           ///< top index of the stack when the blip started
    bool isBlip = false;         ///< this tick started a blip
    bool spareFlag = false;      ///< always false
    int priority = 0;            ///< the transition's priority
    float switchArgument = 0.0f; ///< the transition's float for the state-switch callback

    /// Makes a record that empties the stack: all zero, `popLevel` included.
    static UpdateResult Blank()
    {
        UpdateResult blank;
        blank.popLevel = 0;
        return blank;
    }

    /// Forgets what fired and what is to be popped, and keeps the rest.
    void Reset()
    {
        transition = nullptr;
        tag = 0;
        targetID = 0;
        sourceID = 0;
        popLevel = -1;
    }
};

} // namespace vell
