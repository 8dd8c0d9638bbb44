// VELL: data-driven hierarchical state machines.
// definitions/BaseDefActions.cpp: the three action lists of a definition.
#include <vell/BaseDef.h>

#include "foundation/Checks.h"

#include <vell/Action.h>

namespace vell
{

int BaseDef::RegisterEnter(Action* action)
{
    int result = 0;
    do
    {
        ERROR_BREAK(action);
        Append(&enterActions, &numEnter, action);
        result = 1;
    } while (false);
    return result;
}

int BaseDef::RegisterExit(Action* action)
{
    int result = 0;
    do
    {
        ERROR_BREAK(action);
        Append(&exitActions, &numExit, action);
        result = 1;
    } while (false);
    return result;
}

int BaseDef::RegisterExecute(Action* action)
{
    int result = 0;
    do
    {
        ERROR_BREAK(action);
        Append(&executeActions, &numExecute, action);
        CountChange();
        result = 1;
    } while (false);
    return result;
}

void BaseDef::Append(Action** head, unsigned int* count, Action* action)
{
    action->SetOwner(this);
    AddTail(head, action);
    ++*count;
    for (ActionWalk* walk = links.innermost; walk != nullptr; walk = walk->outer)
    {
        if (walk->next == nullptr && walk->head == head)
        {
            walk->next = action;
        }
    }
}

void BaseDef::CountChange()
{
    if (links.changes != nullptr)
    {
        ++*links.changes;
    }
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
        StepOver(action);
        delete action;
        --numExecute;
        CountChange();
        result = 1;
    } while (false);
    return result;
}

void BaseDef::StepOver(const Action* removed)
{
    for (ActionWalk* walk = links.innermost; walk != nullptr; walk = walk->outer)
    {
        if (walk->next == removed)
        {
            walk->next = removed->next;
        }
    }
}

BaseDef::ActionWalk::ActionWalk(BaseDef& walkedDef, Action* first)
    : def(walkedDef), head(nullptr), next(first), outer(walkedDef.links.innermost)
{
    for (Action** list : {&def.executeActions, &def.enterActions, &def.exitActions})
    {
        if (first != nullptr && *list == first)
        {
            head = list;
        }
    }
    def.links.innermost = this;
}

BaseDef::ActionWalk::~ActionWalk()
{
    def.links.innermost = outer;
}

Action* BaseDef::ActionWalk::TakeNext()
{
    Action* action = next;
    if (action != nullptr)
    {
        next = action->next;
    }
    return action;
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
    Action* action = *head;
    while (action != nullptr)
    {
        Action* following = action->next;
        delete action;
        action = following;
    }
    *head = nullptr;
    return 1;
}

} // namespace vell
