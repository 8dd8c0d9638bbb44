// VELL: data-driven hierarchical state machines.
// tests/callbacks/DefinitionOperations.cpp: the operations of a definition, and an action's fields.
#include "tests/callbacks/Operations.h"
#include "tests/callbacks/Scene.h"

#include <vector>

namespace vell::callbacks
{
namespace
{

/// Gives the protected members of a definition.
struct OpenDef : BaseDef
{
    using BaseDef::AddHead;
    using BaseDef::AddTail;
    using BaseDef::CreateKVTable;
    using BaseDef::DestroyActions;
    using BaseDef::DestroyKVTable;
    using BaseDef::Init_Attribs;
    using BaseDef::TabAddAttrib;
    using BaseDef::TabSetName;
    using BaseDef::Uninit_Attrib;
    using BaseDef::Uninit_Attribs;

    using BaseDef::enterActions;
    using BaseDef::executeActions;
    using BaseDef::exitActions;
    using BaseDef::numChildren;
};

HostAction* NewAction()
{
    return new HostAction("");
}

/// Removes an execute action. One that is not the head needs its `prev`, which is the host's to
/// set.
void Remove(BaseDef* def, Action& action)
{
    if (def == nullptr)
    {
        return;
    }
    for (Action* link = def->GetActions(); link != nullptr && link->next != nullptr;
         link = link->next)
    {
        link->next->prev = link;
    }
    def->RemoveAction(&action);
}

void Replace(BaseDef* def, Action& action)
{
    Remove(def, action);
    if (def != nullptr)
    {
        def->RegisterExecute(NewAction());
    }
}

void RemoveAllActions(BaseDef& def)
{
    for (int i = 0; i < 100 && def.GetActions() != nullptr; ++i)
    {
        def.RemoveAction(def.GetActions());
    }
}

void RemoveSecondAction(BaseDef& def)
{
    Action* head = def.GetActions();
    if (head != nullptr && head->next != nullptr)
    {
        Remove(&def, *head->next);
    }
}

/// Drops the actions of `def` and gives it an identity of its own. Its actions are the host's
/// again.
void AssignPlain(BaseDef& def)
{
    static BaseDef* plain = new BaseDef("plain", 900, 0);
    def = *plain;
}

/// Makes a copy that is never deleted: it shares the actions with its source.
void CopyAway(BaseDef& def)
{
    static auto* copies = new std::vector<BaseDef*>;
    copies->push_back(new BaseDef(def));
}

void AddHeads(BaseDef& def)
{
    (def.*&OpenDef::AddHead)(&(def.*&OpenDef::executeActions), NewAction());
    (def.*&OpenDef::AddHead)(&(def.*&OpenDef::enterActions), NewAction());
    (def.*&OpenDef::AddHead)(&(def.*&OpenDef::exitActions), NewAction());
}

void AddTails(BaseDef& def)
{
    (def.*&OpenDef::AddTail)(&(def.*&OpenDef::executeActions), NewAction());
    (def.*&OpenDef::AddTail)(&(def.*&OpenDef::enterActions), NewAction());
    (def.*&OpenDef::AddTail)(&(def.*&OpenDef::exitActions), NewAction());
}

void DestroyAllActions(BaseDef& def)
{
    (def.*&OpenDef::DestroyActions)(&(def.*&OpenDef::executeActions));
    (def.*&OpenDef::DestroyActions)(&(def.*&OpenDef::enterActions));
    (def.*&OpenDef::DestroyActions)(&(def.*&OpenDef::exitActions));
}

void InitAttributes(BaseDef& def, const Hand& hand)
{
    (def.*&OpenDef::Init_Attribs)(NodeValue(hand, kIdle), &hand.machine->alloc);
}

void LinkBehind(Action& action)
{
    HostAction* added = NewAction();
    added->next = action.next;
    action.next = added;
}

void LinkBack(Action& action)
{
    if (action.next != nullptr)
    {
        action.next->prev = &action;
    }
}

} // namespace

std::vector<Operation> DefinitionOperations()
{
    // clang-format off: one entry a line
    return {
        {"def: RegisterEnter(null)", VELL_ON_DEF(def.RegisterEnter(nullptr))},
        {"def: RegisterEnter", VELL_ON_DEF(def.RegisterEnter(NewAction()))},
        {"def: RegisterExecute", VELL_ON_DEF(def.RegisterExecute(NewAction()))},
        {"def: RegisterExit", VELL_ON_DEF(def.RegisterExit(NewAction()))},
        {"def: RemoveAction(null)", VELL_ON_DEF(def.RemoveAction(nullptr))},
        {"def: RemoveAction(own)", VELL_ON_ACTION(Remove(OwnDef(hand), action))},
        {"def: RemoveAction(first)", VELL_ON_DEF(def.RemoveAction(def.GetActions()))},
        {"def: RemoveAction(second)", VELL_ON_DEF(RemoveSecondAction(def))},
        {"def: RemoveAction(an enter action)",
         VELL_ON_DEF(def.RemoveAction(def.GetEnterActions()))},
        {"def: remove all", VELL_ON_DEF(RemoveAllActions(def))},
        {"def: remove the own, register a successor",
         VELL_ON_ACTION(Replace(OwnDef(hand), action))},
        {"def: SetFlags, SetType", VELL_ON_DEF(def.SetFlags(0); def.SetType(DefTypeTransition))},
        {"def: SetName(null)", VELL_ON_DEF(def.SetName(nullptr))},
        {"def: SetID", VELL_ON_DEF(def.SetID(901))},
        {"def: SetParent", VELL_ON_DEF(def.SetParent(kCombat))},
        {"def: Init(null value)", VELL_ON_DEF(def.Init(GenericValue(), &hand.machine->alloc))},
        {"def: Init(no arena)", VELL_ON_DEF(def.Init(NodeValue(hand, kIdle), nullptr)), kLeaves},
        {"def: Init again", VELL_ON_DEF(def.Init(NodeValue(hand, kIdle), &hand.machine->alloc))},
        {"def: Uninit", VELL_ON_DEF(def.Uninit())},
        {"def: InitKVTable", VELL_ON_DEF(def.InitKVTable())},
        {"def: UninitKVTable", VELL_ON_DEF(def.UninitKVTable())},
        {"def: TabSetDynamic", VELL_ON_DEF(def.TabSetDynamic(1))},
        {"def: CreateKVTable", VELL_ON_DEF((def.*&OpenDef::CreateKVTable)()), kLeaves},
        {"def: DestroyKVTable", VELL_ON_DEF((def.*&OpenDef::DestroyKVTable)())},
        {"def: TabSetName", VELL_ON_DEF((def.*&OpenDef::TabSetName)())},
        {"def: AddHead", VELL_ON_DEF(AddHeads(def))},
        {"def: AddTail", VELL_ON_DEF(AddTails(def))},
        {"def: DestroyActions", VELL_ON_DEF(DestroyAllActions(def))},
        {"def: Init_Attribs", VELL_ON_DEF(InitAttributes(def, hand))},
        {"def: Uninit_Attribs", VELL_ON_DEF((def.*&OpenDef::Uninit_Attribs)())},
        {"def: Uninit_Attrib(an attribute)",
         VELL_ON_DEF((def.*&OpenDef::Uninit_Attrib)(FindAttribute(hand, "surface")))},
        {"def: TabAddAttrib(an attribute)",
         VELL_ON_DEF((def.*&OpenDef::TabAddAttrib)(FindAttribute(hand, "surface")))},
        {"def: = a plain one", VELL_ON_DEF(AssignPlain(def)), kLeaves},
        {"def: a copy", VELL_ON_DEF(CopyAway(def))},
        {"def: numChildren = 0", VELL_ON_DEF(def.*&OpenDef::numChildren = 0)},
        {"other def: RegisterEnter", VELL_ON_OTHER_DEF(def.RegisterEnter(NewAction()))},
        {"other def: RegisterExecute", VELL_ON_OTHER_DEF(def.RegisterExecute(NewAction()))},
        {"other def: RemoveAction(first)", VELL_ON_OTHER_DEF(def.RemoveAction(def.GetActions()))},
        {"other def: remove all", VELL_ON_OTHER_DEF(RemoveAllActions(def))},
        {"other def: DestroyActions", VELL_ON_OTHER_DEF(DestroyAllActions(def))},
        {"other def: Uninit", VELL_ON_OTHER_DEF(def.Uninit())},
        {"other def: Init again",
         VELL_ON_OTHER_DEF(def.Init(NodeValue(hand, kIdle), &hand.machine->alloc))},
        {"other def: = a plain one", VELL_ON_OTHER_DEF(AssignPlain(def)), kLeaves},
    };
    // clang-format on
}

std::vector<Operation> ActionOperations()
{
    // clang-format off: one entry a line
    return {
        {"action: next = null", VELL_ON_ACTION(action.next = nullptr), kLeaves},
        {"action: next = a new one", VELL_ON_ACTION(LinkBehind(action)), kLeaves},
        {"action: prev = null", VELL_ON_ACTION(action.prev = nullptr)},
        {"action: next->prev = own", VELL_ON_ACTION(LinkBack(action))},
        {"action: id = 5", VELL_ON_ACTION(action.id = 5)},
        {"action: Perform", VELL_ON_ACTION(action.Perform(ActTypeExecution, 0.1f))},
        {"action: SetOwner(null)", VELL_ON_ACTION(action.SetOwner(nullptr))},
    };
    // clang-format on
}

} // namespace vell::callbacks
