// VELL: data-driven hierarchical state machines.
// definitions/BaseDefActions.cpp: the three action lists of a definition.
#include <vell/Action.h>
#include <vell/BaseDef.h>

#include "definitions/ActionIterator.h"
#include "definitions/BaseDefInternals.h"
#include "foundation/Checks.h"

namespace vell
{

int BaseDef::RegisterEnter(Action* action)
{
    ERROR_RETURN(action, 0);
    Append(&enterActions, &numEnter, action);
    return 1;
}

int BaseDef::RegisterExit(Action* action)
{
    ERROR_RETURN(action, 0);
    Append(&exitActions, &numExit, action);
    return 1;
}

int BaseDef::RegisterExecute(Action* action)
{
    ERROR_RETURN(action, 0);
    Append(&executeActions, &numExecute, action);
    Internals::CountChange(*this);
    return 1;
}

void BaseDef::Append(Action** head, unsigned int* count, Action* action)
{
    action->SetOwner(this);
    AddTail(head, action);
    ++*count;
    ActionIterator::Reach(head, action);
}

Action* BaseDef::GetActions()
{
    return executeActions;
}

Action* BaseDef::GetEnterActions()
{
    return enterActions;
}

Action* BaseDef::GetExitActions()
{
    return exitActions;
}

int BaseDef::RemoveAction(Action* action)
{
    int result = 0;
    do
    {
        ERROR_BREAK(action);
        if (action == executeActions)
        {
            // Required: `prev` of the new head stays as the host left it.
            executeActions = action->next;
        }
        else
        {
            // Required: only execute actions are searched, so enter and exit actions cannot be
            // removed.
            Action* found = executeActions;
            while (found != nullptr && found != action)
            {
                found = found->next;
            }
            if (found == nullptr)
            {
                break;
            }
            // Required: the predecessor is reached by `prev`, which registration does not write.
            // Where the host did not set it, the predecessor keeps its link to the deleted action.
            if (action->prev != nullptr)
            {
                action->prev->next = action->next;
            }
            if (action->next != nullptr)
            {
                action->next->prev = action->prev;
            }
        }
        ActionIterator::StepOver(action);
        --numExecute;
        Internals::CountChange(*this);
        delete action;
        result = 1;
    } while (false);
    return result;
}

int BaseDef::AddTail(Action** head, Action* action)
{
    if (head == nullptr)
    {
        return 1;
    }
    Action** link = head;
    while (*link != nullptr)
    {
        link = &(*link)->next;
    }
    // Required: the `prev` of the action is not written.
    *link = action;
    return 1;
}

int BaseDef::AddHead(Action** head, Action* action)
{
    if (head == nullptr || action == nullptr)
    {
        return 1;
    }
    if (*head != nullptr)
    {
        action->next = *head;
    }
    *head = action;
    return 1;
}

int BaseDef::DestroyActions(Action** head)
{
    if (head == nullptr)
    {
        return 1;
    }
    // One at a time: the destructor of an action may remove others or register a successor.
    while (Action* action = *head)
    {
        *head = action->next;
        ActionIterator::End(action);
        delete action;
    }
    return 1;
}

} // namespace vell
