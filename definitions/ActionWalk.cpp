// VELL: data-driven hierarchical state machines.
// definitions/ActionWalk.cpp: performing a list of actions that may change meanwhile.
#include "definitions/ActionWalk.h"

#include <vell/Action.h>

#include "definitions/BaseDefInternals.h"

namespace vell
{
namespace
{

thread_local ActionWalk* innermost = nullptr;

} // namespace

ActionWalk::ActionWalk(BaseDef* def, Action* first) : next(first), outer(innermost)
{
    if (def != nullptr && first != nullptr)
    {
        head = BaseDef::Internals::FindList(*def, first);
    }
    innermost = this;
}

ActionWalk::~ActionWalk()
{
    innermost = outer;
}

Action* ActionWalk::TakeNext()
{
    if (current != nullptr && (removed == nullptr || current->next != removed))
    {
        next = current->next;
    }
    current = next;
    next = nullptr;
    removed = nullptr;
    return current;
}

void ActionWalk::StepOver(const Action* removedAction)
{
    for (ActionWalk* walk = innermost; walk != nullptr; walk = walk->outer)
    {
        if (walk->current == removedAction)
        {
            walk->current = nullptr;
            walk->next = removedAction->next;
        }
        else if (walk->current != nullptr && walk->current->next == removedAction)
        {
            walk->removed = removedAction;
            walk->next = removedAction->next;
        }
        else if (walk->next == removedAction)
        {
            walk->next = removedAction->next;
        }
    }
}

void ActionWalk::End(const Action* destroyed)
{
    for (ActionWalk* walk = innermost; walk != nullptr; walk = walk->outer)
    {
        if (walk->current == destroyed || walk->next == destroyed)
        {
            walk->head = nullptr;
            walk->current = nullptr;
            walk->next = nullptr;
        }
    }
}

void ActionWalk::Reach(Action** list, Action* added)
{
    for (ActionWalk* walk = innermost; walk != nullptr; walk = walk->outer)
    {
        if (walk->head == list && walk->current == nullptr && walk->next == nullptr)
        {
            walk->next = added;
        }
    }
}

} // namespace vell
