// VELL: data-driven hierarchical state machines.
// tests/twin/DefinitionOperations.cpp: what a host does to definitions and their actions.
#include "tests/support/DocumentBuilder.h"
#include "tests/twin/OperationKinds.h"

namespace twin
{
namespace
{

/// Gives a definition, mostly that of a state that is ticked.
vell::BaseDef* PickTicked(Side& side, unsigned int pick)
{
    vell::SMState* state = pick % 4 == 0 ? nullptr : side.PickState(pick);
    vell::BaseDef* def = state == nullptr ? nullptr : state->GetDef();
    return def != nullptr ? def : side.PickDef(pick / 4);
}

vell::Action* ListAt(vell::BaseDef& def, unsigned int list)
{
    return list % 3 == 0   ? def.BaseDef::GetActions()
           : list % 3 == 1 ? def.GetEnterActions()
                           : def.GetExitActions();
}

void Register(Side& side, vell::BaseDef& def, unsigned int list, TwinAction* action)
{
    static const char* const names[] = {"RegisterExecute", "RegisterEnter", "RegisterExit"};
    Say(std::string("> ") + names[list % 3] + " of action " + std::to_string(action->number) +
        " on " + side.Name(&def));
    action->isOnList = true;
    list % 3 == 0   ? def.RegisterExecute(action)
    : list % 3 == 1 ? def.RegisterEnter(action)
                    : def.RegisterExit(action);
}

void RegisterAction(Side& side, const Operation& operation)
{
    if (vell::BaseDef* def = PickTicked(side, operation.picks[0]))
    {
        Register(side, *def, operation.picks[1], side.MakeAction(operation.inner));
    }
}

/// Takes an action off an execute list, after setting `prev` of all, as a host has to.
void RemoveAction(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    if (def == nullptr)
    {
        return;
    }
    std::vector<vell::Action*> list;
    for (vell::Action* action = def->BaseDef::GetActions(); action != nullptr;
         action = action->next)
    {
        action->prev = list.empty() ? nullptr : list.back();
        list.push_back(action);
    }
    if (list.empty())
    {
        return;
    }
    auto* removed = static_cast<TwinAction*>(list[operation.picks[1] % list.size()]);
    Say("> RemoveAction of " + std::to_string(removed->number) + " from " + side.Name(def));
    def->RemoveAction(removed);
}

/// Links a further action behind a list's last by hand.
void LinkAction(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    vell::Action* last = def == nullptr ? nullptr : ListAt(*def, operation.picks[1]);
    if (last == nullptr)
    {
        return;
    }
    while (last->next != nullptr)
    {
        last = last->next;
    }
    TwinAction* action = side.MakeAction(operation.inner);
    Say("> next of an action of " + side.Name(def) + " = action " + std::to_string(action->number));
    action->isOnList = true;
    action->prev = last;
    last->next = action;
}

/// Ends a list behind its first action by hand; the rest is the host's again.
void CutActions(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    vell::Action* first = def == nullptr ? nullptr : ListAt(*def, operation.picks[1]);
    if (first == nullptr || first->next == nullptr)
    {
        return;
    }
    Say("> next of an action of " + side.Name(def) + " = null");
    vell::Action* rest = first->next;
    first->next = nullptr;
    while (rest != nullptr)
    {
        vell::Action* action = rest;
        rest = rest->next;
        action->next = nullptr;
        action->prev = nullptr;
        static_cast<TwinAction*>(action)->isOnList = false;
    }
}

/// Registers an action that is on no list again.
void ReuseAction(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    for (TwinAction* action : side.actions)
    {
        if (def != nullptr && action != nullptr && !action->isOnList)
        {
            Register(side, *def, operation.picks[1], action);
            return;
        }
    }
}

void ExchangeDefinitions(Side& side, const Operation& operation)
{
    vell::BaseDef* left = PickTicked(side, operation.picks[0]);
    vell::BaseDef* right = side.PickDef(operation.picks[1]);
    if (left == nullptr || right == nullptr || left == right)
    {
        return;
    }
    Say("> *" + side.Name(left) + " = *" + side.Name(right) + " and back");
    vell::BaseDef kept(*left);
    *left = *right;
    *right = kept;
    // Else its destructor would delete the actions of the other.
    kept = vell::BaseDef();
}

/// Takes a copy, puts an action on it and assigns it back.
void EditCopy(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    if (def == nullptr)
    {
        return;
    }
    vell::BaseDef copy(*def);
    TwinAction* action = side.MakeAction(operation.inner);
    Say("> on a copy of " + side.Name(def) + ":");
    Register(side, copy, operation.picks[1], action);
    *def = copy;
    copy = vell::BaseDef();
}

void UninitDefinition(Side& side, const Operation& operation)
{
    if (vell::BaseDef* def = PickTicked(side, operation.picks[0]))
    {
        Say("> Uninit of " + side.Name(def));
        def->Uninit();
    }
}

/// Reads a state's definition again, from a text without children.
void InitDefinition(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    if (def == nullptr || def->GetType() == vell::DefTypeTransition ||
        def->GetType() == vell::DefTypeParameter || side.machine.alloc.block == nullptr)
    {
        return;
    }
    const std::string name = "again" + std::to_string(operation.picks[1] % 100);
    Say("> Init of " + side.Name(def));
    const vell::test::JsonObject node = vell::test::Node(
        def->GetBuilderType(), name, operation.picks[1] % 50 + 1, {}, operation.picks[2] % 50);
    Say("gives " + std::to_string(def->Init(side.Parse(node.Text()), &side.machine.alloc)));
}

void SetDefinitionField(Side& side, const Operation& operation)
{
    vell::BaseDef* def = PickTicked(side, operation.picks[0]);
    if (def == nullptr)
    {
        return;
    }
    const unsigned int field = operation.picks[1] % 7;
    const unsigned int value = operation.picks[2] % 40;
    Say("> field " + std::to_string(field) + " of " + side.Name(def) + " = " +
        std::to_string(value));
    switch (field)
    {
    case 0:
        def->SetName("renamed");
        break;
    case 1:
        def->SetID(value);
        break;
    case 2:
        def->SetParent(value);
        break;
    case 3:
        def->SetIndex(static_cast<int>(value));
        break;
    case 4:
        def->SetFlags(value);
        break;
    case 5:
        def->TabSetDynamic(static_cast<int>(value % 2));
        break;
    default:
        def->SetType(static_cast<vell::eHSMDefTypes>(value % 12));
        break;
    }
}

vell::Action* MakeDefaultAction(const char*)
{
    TwinAction* action = CurrentSide()->MakeAction({});
    action->isOnList = true;
    return action;
}

void AssignDefaultAction(Side& side, const Operation&)
{
    Say("> AssignDefaultAction");
    side.machine.AssignDefaultAction(MakeDefaultAction);
}

} // namespace

OperationKinds DefinitionOperations()
{
    return {{"RegisterAction", 30, Place::Everywhere, RegisterAction},
            {"RemoveAction", 10, Place::Everywhere, RemoveAction},
            {"LinkAction", 6, Place::Callbacks, LinkAction},
            {"CutActions", 4, Place::Outside, CutActions},
            {"ReuseAction", 4, Place::Outside, ReuseAction},
            {"ExchangeDefinitions", 6, Place::Outside, ExchangeDefinitions},
            {"EditCopy", 6, Place::Outside, EditCopy},
            {"UninitDefinition", 3, Place::Outside, UninitDefinition},
            {"InitDefinition", 4, Place::Outside, InitDefinition},
            {"SetDefinitionField", 5, Place::Callbacks, SetDefinitionField},
            {"AssignDefaultAction", 1, Place::Outside, AssignDefaultAction}};
}

} // namespace twin
