// VELL: data-driven hierarchical state machines.
// tests/callbacks/TransitionOperations.cpp: the operations and fields of a transition, of its
// conditions, and of a level.
#include "tests/callbacks/Operations.h"
#include "tests/callbacks/Scene.h"

namespace vell::callbacks
{
namespace
{

bool AlwaysFalse(IHSM*, SMState*)
{
    return false;
}

/// Each Init adds conditions to those that are there: so many that the list is moved.
void InitAgain(TransitionDef& def, const Hand& hand)
{
    for (int i = 0; i < 10; ++i)
    {
        def.Init(NodeValue(hand, kGo), &hand.machine->alloc);
    }
}

void DropConditions(TransitionDef& def)
{
    def.conditions.clear();
    def.conditions.shrink_to_fit();
}

void DropTriggers(TransitionDef& def)
{
    def.triggers.clear();
    def.triggers.shrink_to_fit();
}

void AddTriggers(TransitionDef& def)
{
    for (int i = 0; i < 100; ++i)
    {
        def.RegisterCondition(&AlwaysFalse);
    }
}

/// Drops the transition's own part and leaves the lists.
void AssignBlank(TransitionDef& def)
{
    static TransitionDef blank;
    def = blank;
}

} // namespace

std::vector<Operation> TransitionOperations()
{
    // clang-format off: one entry a line
    return {
        {"transition: Init again", VELL_ON_TRANSITION(InitAgain(def, hand))},
        {"transition: Init(null value)",
         VELL_ON_TRANSITION(def.Init(GenericValue(), &hand.machine->alloc))},
        {"transition: Uninit", VELL_ON_TRANSITION(def.Uninit())},
        {"transition: SetID", VELL_ON_TRANSITION(def.SetID(902))},
        {"transition: = a blank one", VELL_ON_TRANSITION(AssignBlank(def)), kLeaves},
        {"transition: HandleConditions", VELL_ON_TRANSITION(def.HandleConditions(hand.machine))},
        {"transition: InitConditions(null value)",
         VELL_ON_TRANSITION(def.InitConditions(GenericValue(), &hand.machine->alloc))},
        {"transition: RegisterCondition", VELL_ON_TRANSITION(AddTriggers(def))},
        {"transition: conditions.clear()", VELL_ON_TRANSITION(DropConditions(def))},
        {"transition: conditions.push_back(null)",
         VELL_ON_TRANSITION(def.conditions.insert(def.conditions.begin(), 100, nullptr))},
        {"transition: triggers.clear()", VELL_ON_TRANSITION(DropTriggers(def))},
        {"transition: triggers.push_back(null)",
         VELL_ON_TRANSITION(def.triggers.push_back(nullptr))},
        {"transition: disabled = true", VELL_ON_TRANSITION(def.disabled = true)},
        {"transition: targetID = 0", VELL_ON_TRANSITION(def.targetID = 0)},
        {"transition: priority = -1", VELL_ON_TRANSITION(def.priority = -1)},
        {"transition without a parameter: Init again",
         VELL_ON(TransitionDef, def, FindTransition(hand, "Lost"), InitAgain(def, hand))},
        {"condition: Evaluate", VELL_ON_CONDITION(condition.Evaluate(hand.machine))},
        {"condition: SetParameter(null), ParameterBind",
         VELL_ON_CONDITION(condition.SetParameter(nullptr); condition.ParameterBind())},
        {"condition: SetParameter(own), ParameterBind",
         VELL_ON_CONDITION(condition.SetParameter(OwnParameter(hand)); condition.ParameterBind())},
        {"condition: parameter = null", VELL_ON_CONDITION(condition.parameter = nullptr)},
        {"condition: evaluation = 2", VELL_ON_CONDITION(condition.evaluation = 2)},
        {"condition: Uninit", VELL_ON_CONDITION(condition.Uninit())},
        {"condition: Init(null value)",
         VELL_ON_CONDITION(condition.Init(GenericValue(), &hand.machine->alloc))},
        {"level: currentChild = null", VELL_ON_LEVEL(level.currentChild = nullptr)},
        {"level: currentChild = own", VELL_ON_LEVEL(level.currentChild = OwnState(hand))},
        {"level: previousChild = null", VELL_ON_LEVEL(level.previousChild = nullptr)},
        {"level: previousChild = other", VELL_ON_LEVEL(level.previousChild = OtherState(hand))},
        {"level: subDef = null", VELL_ON_LEVEL(level.subDef = nullptr)},
        {"level: InitEnterExit(null)", VELL_ON_LEVEL(level.InitEnterExit(nullptr))},
        {"level: InitEnterExit", VELL_ON_LEVEL(level.InitEnterExit(level.GetDef()))},
        {"level: GetEnterID", VELL_ON_LEVEL(level.GetEnterID())},
    };
    // clang-format on
}

} // namespace vell::callbacks
