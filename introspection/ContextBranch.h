// VELL: data-driven hierarchical state machines.
// introspection/ContextBranch.h: reading and writing "contextInfo" without look-ups.
#pragma once

#include <vell/Events.h>

#include "foundation/SlotOperations.h"

namespace vell
{

/// How a machine reads and writes the table "contextInfo" under its root when nobody listens to it.
/// `MachineTree` has the rule of each step: look "contextInfo" up from the root, read or write its
/// numbers by key, look up an array in it and append to it or remove its last element. A state
/// change takes six such steps, and in most programs no tool is there to have changed anything
/// between them.
///
/// *Contract.* Whether a step was done here or by the rule is not observable. "No" is always a
/// right answer, and the rule then does all the work.
///
/// *What it uses.* The table library's operations on branches (tessel/Slots.h). Where a site's own
/// library has none, the answer is always no.
///
/// *What is remembered:* the table that was found under a root, and where its five keys are. A key
/// of an open table never moves and is never removed.
///
/// *What is read at every step, and so cannot be out of date:* the root, here; whether it is open,
/// what its key holds, whether that table is open, who listens to it, the types of its values and
/// the table that an array's key holds, in the table library. So nobody has to say when a tool
/// listens, stores another type, or attaches, replaces or closes a table.
class ContextBranch
{
public:
    /// The arrays that mirror the two stacks.
    enum Stack
    {
        MainStack,
        BlipStack
    };

    // Each does a step and returns true, or does nothing and returns false.

    bool WriteTransition(Tessel::KVTable root, unsigned int transitionID) const
    {
        return Write(root, kTransition, &transitionID, 1);
    }

    bool WriteChange(Tessel::KVTable root, unsigned int previousID, unsigned int nextID,
                     StateChangeEvent* read) const
    {
        const unsigned int ids[]{previousID, nextID};
        if (!Write(root, kPreviousState, ids, 2))
        {
            return false;
        }
        // Nobody has heard of these, and the table is open: so nothing has happened since.
        *read = StateChangeEvent{numbers[kTransition]->GetUIntValue(), previousID, nextID};
        return true;
    }

    bool ClearChange(Tessel::KVTable root) const
    {
        const unsigned int ids[kNumbers]{};
        return Write(root, kPreviousState, ids, kNumbers);
    }

    bool Push(Tessel::KVTable root, Stack stack, unsigned int id) const
    {
        return root == branch.parent && slotOperations.pushUInt(&branch, stacks[stack], id) != 0;
    }

    bool RemoveLast(Tessel::KVTable root, Stack stack) const
    {
        return root == branch.parent && slotOperations.removeLast(&branch, stacks[stack]) != 0;
    }

    /// To be told by each step of the rule that `root` holds `context`, which may be null: looks
    /// for its keys when it is another one than at the last step.
    void Follow(Tessel::KVTable root, Tessel::KVTable context)
    {
        if (root != branch.parent || context != followed)
        {
            Find(root, context);
        }
    }

private:
    // Where each number is in `numbers`.
    static constexpr unsigned int kPreviousState = 0;
    static constexpr unsigned int kNextState = 1;
    static constexpr unsigned int kTransition = 2;
    static constexpr unsigned int kNumbers = 3;

    bool Write(Tessel::KVTable root, unsigned int first, const unsigned int* ids,
               unsigned int count) const
    {
        return root == branch.parent &&
               slotOperations.setUInts(&branch, numbers + first, ids, count) != 0;
    }

    void Find(Tessel::KVTable root, Tessel::KVTable context);

    Tessel::KVBranch branch{};
    Tessel::KVTable followed; ///< the table that the rule found last
    Tessel::KVValue* numbers[kNumbers]{};
    Tessel::KVValue* stacks[2]{};
};

} // namespace vell
