// VELL: data-driven hierarchical state machines.
// tests/callbacks/StateOperations.cpp: the operations of a state.
#include "tests/callbacks/Operations.h"
#include "tests/callbacks/Scene.h"

#include <array>
#include <vector>

namespace vell::callbacks
{
namespace
{

const char* const kLongText = "a text of more than twenty letters";

/// Gives the protected members of a state.
struct OpenState : SMState
{
    using SMState::PerformActions;
    using SMState::transitions;
};

void Assign(SMState& state, const SMState* other)
{
    if (other != nullptr)
    {
        state = *other;
    }
}

/// The copy is never deleted: its parent may remember it as its child.
void UseCopy(const SMState& state)
{
    SMState copy(state);
    copy.SetParent(nullptr); // it would keep the address of its child
    copy.Enter();
    copy.Exit();
}

SubstateState* GuardsParent(HostMachine& machine)
{
    const SMState* guard = machine.FindState(kGuard);
    return guard == nullptr ? nullptr : guard->GetParent();
}

/// So many that the list is moved.
void PushManyTransitions(SMState& state)
{
    for (int i = 0; i < 100; ++i)
    {
        state.PushTransition(nullptr);
    }
}

void PerformActionsOf(SMState& state, BaseDef* def)
{
    if (def != nullptr)
    {
        (state.*&OpenState::PerformActions)(ActTypeExecution, 0.1f, def->GetActions());
        (state.*&OpenState::PerformActions)(ActTypeEntry, 0.0f, def->GetEnterActions());
    }
}

void SetAttributes(SMState& state)
{
    state.SetAttrib("steps", 7);
    state.SetAttrib("length", 7.5f);
    state.SetAttrib("loud", false);
    state.SetAttrib("offset", Tessel::Float2{1, 2});
    state.SetAttrib("pivot", Tessel::Float3{1, 2, 3});
    state.SetAttrib("tint", Tessel::Float4{1, 2, 3, 4});
}

void ReadAttributes(const SMState& state)
{
    std::array<float, 4> room = {};
    const char* text = nullptr;
    state.GetAttribBase("steps");
    state.GetAttrib("steps", static_cast<void*>(room.data()));
    state.GetAttrib("surface", &text);
}

} // namespace

std::vector<Operation> StateOperations()
{
    // clang-format off: one entry a line
    return {
        {"state: Init(null)", VELL_ON_STATE(state.Init(nullptr))},
        {"state: Init(own def)", VELL_ON_STATE(state.Init(OwnDef(hand)))},
        {"state: Init(other def)", VELL_ON_STATE(state.Init(OtherDef(hand)))},
        {"state: Uninit", VELL_ON_STATE(state.Uninit())},
        {"state: HandleInput(null)", VELL_ON_STATE(state.HandleInput(nullptr))},
        {"state: HandleInput", VELL_ON_STATE(state.HandleInput(hand.machine))},
        {"state: Update", VELL_ON_STATE(state.Update(hand.machine, 0.1f))},
        {"state: Enter", VELL_ON_STATE(state.Enter())},
        {"state: Execute", VELL_ON_STATE(state.Execute(0.1))},
        {"state: Exit", VELL_ON_STATE(state.Exit())},
        {"state: GetStates", VELL_ON_STATE(state.GetStates())},
        {"state: ProcessTransitions",
         VELL_ON_STATE(UpdateResult result; state.ProcessTransitions(hand.machine, &result))},
        {"state: ProcessTransitions(null)",
         VELL_ON_STATE(state.ProcessTransitions(hand.machine, nullptr))},
        {"state: SetDef(null)", VELL_ON_STATE(state.SetDef(nullptr))},
        {"state: SetDef(other)", VELL_ON_STATE(state.SetDef(OtherDef(hand)))},
        {"state: SetParent(null)", VELL_ON_STATE(state.SetParent(nullptr))},
        {"state: SetParent(a child's)",
         VELL_ON_STATE(state.SetParent(GuardsParent(*hand.machine)))},
        {"state: SetHSM(null)", VELL_ON_STATE(state.SetHSM(nullptr))},
        {"state: = other", VELL_ON_STATE(Assign(state, OtherState(hand)))},
        {"state: = a blank one", VELL_ON_STATE(state = SMState())},
        {"state: a copy", VELL_ON_STATE(UseCopy(state))},
        {"state: GetID, GetParentID", VELL_ON_STATE(state.GetID(); state.GetParentID())},
        {"state: push 100 transitions", VELL_ON_STATE(PushManyTransitions(state))},
        {"state: SortTransitions", VELL_ON_STATE(state.SortTransitions())},
        {"state: transitions.clear()", VELL_ON_STATE((state.*&OpenState::transitions).clear())},
        {"state: GetTransitionAt(past the end)", VELL_ON_STATE(state.GetTransitionAt(1000))},
        {"state: PerformActions(own)", VELL_ON_STATE(PerformActionsOf(state, OwnDef(hand)))},
        {"state: PerformActions(other)", VELL_ON_STATE(PerformActionsOf(state, OtherDef(hand)))},
        {"state: SetAttrib(text)", VELL_ON_STATE(state.SetAttrib("surface", kLongText))},
        {"state: SetAttrib(each type)", VELL_ON_STATE(SetAttributes(state))},
        {"state: GetAttrib", VELL_ON_STATE(ReadAttributes(state))},
        {"other state: Enter", VELL_ON_OTHER_STATE(state.Enter())},
        {"other state: Exit", VELL_ON_OTHER_STATE(state.Exit())},
        {"other state: Update", VELL_ON_OTHER_STATE(state.Update(hand.machine, 0.1f))},
        {"other state: SetDef(null)", VELL_ON_OTHER_STATE(state.SetDef(nullptr))},
        {"other state: SetHSM(null)", VELL_ON_OTHER_STATE(state.SetHSM(nullptr))},
        {"other state: = own", VELL_ON_OTHER_STATE(Assign(state, OwnState(hand)))},
    };
    // clang-format on
}

} // namespace vell::callbacks
