// VELL: data-driven hierarchical state machines.
// definitions/ActionIterator.cpp: performing a list of actions that may change meanwhile.
#include "definitions/ActionIterator.h"

#include <vell/Action.h>

#include "definitions/BaseDefInternals.h"

namespace vell
{
namespace
{

thread_local ActionIterator* innermostOfThread = nullptr;

} // namespace

ActionIterator::ActionIterator(BaseDef* def, Action* first)
    : next(first), innermost(innermostOfThread), outer(innermost)
{
    if (def != nullptr && first != nullptr)
    {
        head = BaseDef::Internals::FindList(*def, first);
    }
    innermost = this;
}

ActionIterator::~ActionIterator()
{
    innermost = outer;
}

Action* ActionIterator::TakeNext()
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

void ActionIterator::StepOver(const Action* removedAction)
{
    for (ActionIterator* other = innermostOfThread; other != nullptr; other = other->outer)
    {
        if (other->current == removedAction)
        {
            other->current = nullptr;
            other->next = removedAction->next;
        }
        else if (other->current != nullptr && other->current->next == removedAction)
        {
            other->removed = removedAction;
            other->next = removedAction->next;
        }
        else if (other->next == removedAction)
        {
            other->next = removedAction->next;
        }
    }
}

void ActionIterator::End(const Action* destroyed)
{
    for (ActionIterator* other = innermostOfThread; other != nullptr; other = other->outer)
    {
        if (other->current == destroyed || other->next == destroyed)
        {
            other->head = nullptr;
            other->current = nullptr;
            other->next = nullptr;
        }
    }
}

void ActionIterator::Reach(Action** list, Action* added)
{
    for (ActionIterator* other = innermostOfThread; other != nullptr; other = other->outer)
    {
        if (other->head == list && other->current == nullptr && other->next == nullptr)
        {
            other->next = added;
        }
    }
}

} // namespace vell
