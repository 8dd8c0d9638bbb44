// VELL: data-driven hierarchical state machines.
// definitions/ActionIterator.h: performing a list of actions that may change meanwhile.
#pragma once

namespace vell
{

class Action;
class BaseDef;

/// Goes through a chain of actions, one `TakeNext` for each. The link to the next action is read
/// after the present one has performed, so an action that it links or registers behind itself is
/// reached. An action may remove itself or any other, and may destroy the whole list.
///
/// The iterations of a thread that are under way are known here: whoever deletes an action says so
/// first, and none reads it afterwards.
class ActionIterator
{
public:
    /// Begins at `first`, which may be null. `def` may be null; it tells whose list the chain is.
    ActionIterator(BaseDef* def, Action* first);
    ~ActionIterator();
    ActionIterator(const ActionIterator&) = delete;
    ActionIterator& operator=(const ActionIterator&) = delete;

    /// Gives the action to perform, or null at the end.
    Action* TakeNext();

    /// Lets iterations continue behind `removed`, which is off its list and about to be deleted.
    static void StepOver(const Action* removed);
    /// Ends the iterations that are at `destroyed`, which is about to be deleted with its list.
    static void End(const Action* destroyed);
    /// Lets iterations that have run out of actions continue with `added`, the last of the list
    /// `head`.
    static void Reach(Action** head, Action* added);

private:
    Action** head = nullptr;         ///< the list; null when the chain is not a definition's list
    Action* current = nullptr;       ///< the one that performs; null when it was removed
    Action* next;                    ///< what follows when `current` does not tell
    const Action* removed = nullptr; ///< deleted, and `current` may still link to it
    ActionIterator*& innermost;      ///< of the thread; to find it takes a call
    ActionIterator* outer;           ///< the iteration that this one interrupts
};

} // namespace vell
