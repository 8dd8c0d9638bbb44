// VELL: data-driven hierarchical state machines.
// tests/twin/TransitionOperations.cpp: what a host does to transitions.
#include "tests/twin/OperationKinds.h"

namespace twin
{

std::string ConditionText(Side& side, const Operation& operation);

namespace
{

template <class List>
auto At(List& list, unsigned int pick)
{
    return list.begin() + static_cast<std::ptrdiff_t>(pick % list.size());
}

/// Gives one of the conditions that there are, or a new one of the host's.
vell::ConditionDef* PickAnyCondition(Side& side, unsigned int pick)
{
    if (pick % 4 != 0)
    {
        return side.PickCondition(pick / 4);
    }
    auto condition = std::make_unique<HostCondition>(static_cast<unsigned>(side.hostDefs.size()));
    vell::ConditionDef* const made = condition.get();
    side.hostDefs.push_back(std::move(condition));
    side.AddCondition(made);
    return made;
}

/// Gives a transition, mostly one of a state that is ticked.
vell::TransitionDef* PickTicked(Side& side, unsigned int pick)
{
    vell::SMState* state = side.PickState(pick);
    vell::TransitionDef* found = nullptr;
    if (pick % 5 != 0 && state != nullptr && state->GetNumTransitions() > 0)
    {
        found = state->GetTransitionAt(
            static_cast<int>(pick / 5 % static_cast<unsigned int>(state->GetNumTransitions())));
    }
    return found != nullptr ? found : side.PickTransition(pick);
}

void WriteTransitionField(Side& side, const Operation& operation)
{
    static const char* const names[] = {
        "disabled", "tag", "tagArgument", "priority", "targetID", "switchArgument", "reserved"};
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition == nullptr)
    {
        return;
    }
    const unsigned int field = operation.picks[1] % 7;
    const auto small = static_cast<int>(operation.picks[2] % 7);
    Say(std::string("> ") + names[field] + " of " + side.Name(transition));
    switch (field)
    {
    case 0:
        transition->disabled = !transition->disabled;
        break;
    case 1:
        transition->tag = small;
        break;
    case 2:
        transition->tagArgument = small;
        break;
    case 3:
        transition->priority = small;
        break;
    case 4:
        transition->targetID =
            operation.picks[2] % 9 == 0 ? 0 : side.PickStateId(operation.picks[2]);
        break;
    case 5:
        transition->switchArgument = operation.value.reals[0];
        break;
    default:
        transition->reserved = operation.picks[2];
        break;
    }
}

void PushCondition(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    vell::ConditionDef* condition = PickAnyCondition(side, operation.picks[1]);
    if (transition != nullptr && condition != nullptr)
    {
        Say("> " + side.Name(condition) + " onto conditions of " + side.Name(transition));
        transition->conditions.push_back(condition);
    }
}

void EraseCondition(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition != nullptr && !transition->conditions.empty())
    {
        Say("> erase a condition of " + side.Name(transition));
        transition->conditions.erase(At(transition->conditions, operation.picks[1]));
    }
}

void ReplaceCondition(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition != nullptr && !transition->conditions.empty())
    {
        vell::ConditionDef* condition = PickAnyCondition(side, operation.picks[2]);
        Say("> " + side.Name(condition) + " instead of a condition of " + side.Name(transition));
        *At(transition->conditions, operation.picks[1]) = condition;
    }
}

void PushTrigger(Side& side, const Operation& operation)
{
    if (vell::TransitionDef* transition = PickTicked(side, operation.picks[0]))
    {
        Say("> trigger onto triggers of " + side.Name(transition));
        transition->triggers.push_back(
            operation.picks[1] % 10 == 0 ? nullptr : TriggerAt(operation.picks[1]));
    }
}

void ChangeTriggers(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition == nullptr || transition->triggers.empty())
    {
        return;
    }
    const auto place = At(transition->triggers, operation.picks[1]);
    if (operation.picks[2] % 2 == 0)
    {
        Say("> erase a trigger of " + side.Name(transition));
        transition->triggers.erase(place);
        return;
    }
    Say("> replace a trigger of " + side.Name(transition));
    *place = TriggerAt(operation.picks[2] / 2);
}

void RegisterCondition(Side& side, const Operation& operation)
{
    if (vell::TransitionDef* transition = PickTicked(side, operation.picks[0]))
    {
        Say("> RegisterCondition of " + side.Name(transition));
        transition->RegisterCondition(TriggerAt(operation.picks[1]));
    }
}

void AssignTrigger(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition != nullptr && transition->GetName() != nullptr)
    {
        Say("> AssignTrigger to " + side.Name(transition));
        side.machine.AssignTrigger(transition->GetName(), TriggerAt(operation.picks[1]));
    }
}

void ExchangeTransitions(Side& side, const Operation& operation)
{
    vell::TransitionDef* left = PickTicked(side, operation.picks[0]);
    vell::TransitionDef* right = side.PickTransition(operation.picks[1]);
    if (left == nullptr || right == nullptr || left == right)
    {
        return;
    }
    Say("> *" + side.Name(left) + " = *" + side.Name(right) + " and back");
    vell::TransitionDef kept(*left);
    *left = *right;
    *right = kept;
    // Else its destructor would close the table of the other.
    kept = vell::TransitionDef();
}

void InitConditions(Side& side, const Operation& operation)
{
    vell::TransitionDef* transition = PickTicked(side, operation.picks[0]);
    if (transition == nullptr || side.document.parameters.empty())
    {
        return;
    }
    const std::size_t before = transition->conditions.size();
    Say("> InitConditions of " + side.Name(transition));
    transition->InitConditions(side.Parse("[" + ConditionText(side, operation) + "]"),
                               &side.machine.alloc);
    for (std::size_t i = before; i < transition->conditions.size(); ++i)
    {
        vell::ConditionDef* condition = transition->conditions[i];
        side.AddCondition(condition);
        condition->SetParameter(
            side.machine.GetParameterTable() == nullptr
                ? nullptr
                : side.machine.GetParameterTable()->FindParameter(condition->parameterID));
        if (operation.picks[3] % 4 != 0)
        {
            condition->ParameterBind();
        }
    }
}

void HandleConditions(Side& side, const Operation& operation)
{
    if (vell::TransitionDef* transition = PickTicked(side, operation.picks[0]))
    {
        Say("> HandleConditions of " + side.Name(transition));
        Say("gives " + std::to_string(transition->HandleConditions(&side.machine)));
    }
}

/// Gives a transition of its own to a state.
void PushHostTransition(Side& side, const Operation& operation)
{
    vell::SMState* state = side.PickState(operation.picks[0]);
    vell::ConditionDef* condition = PickAnyCondition(side, operation.picks[1]);
    if (state == nullptr || condition == nullptr)
    {
        return;
    }
    auto transition = std::make_unique<vell::TransitionDef>();
    transition->targetID = side.PickStateId(operation.picks[2]);
    transition->conditions.push_back(condition);
    Say("> a host's transition onto " + side.Name(state) + " with " + side.Name(condition));
    state->PushTransition(transition.get());
    side.hostDefs.push_back(std::move(transition));
}

} // namespace

OperationKinds TransitionOperations()
{
    return {{"WriteTransitionField", 20, Place::Everywhere, WriteTransitionField},
            {"PushCondition", 10, Place::Callbacks, PushCondition},
            {"EraseCondition", 5, Place::Callbacks, EraseCondition},
            {"ReplaceCondition", 10, Place::Callbacks, ReplaceCondition},
            {"PushTrigger", 5, Place::Callbacks, PushTrigger},
            {"ChangeTriggers", 5, Place::Outside, ChangeTriggers},
            {"RegisterCondition", 3, Place::Callbacks, RegisterCondition},
            {"AssignTrigger", 3, Place::Callbacks, AssignTrigger},
            {"ExchangeTransitions", 5, Place::Outside, ExchangeTransitions},
            {"InitConditions", 6, Place::Outside, InitConditions},
            {"HandleConditions", 3, Place::Outside, HandleConditions},
            {"PushHostTransition", 4, Place::Callbacks, PushHostTransition}};
}

} // namespace twin
