// VELL: data-driven hierarchical state machines.
// transitions/TransitionGuard.cpp: making and walking of guards.
#include "transitions/TransitionGuard.h"

#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"
#include "transitions/TransitionDef.h"

#include <typeinfo>

namespace vell
{
namespace
{

/// Gives the kind of an operator, counted from the kind of equality; `End` for one that never
/// holds.
TransitionGuard::Kind KindOf(int evaluation, TransitionGuard::Kind equal)
{
    const bool compares = evaluation >= EvaluateEqual && evaluation <= EvaluateLessOrEqual;
    const int offset = evaluation == EvaluateInRange ? EvaluateLessOrEqual : evaluation - 1;
    return compares || evaluation == EvaluateInRange
               ? static_cast<TransitionGuard::Kind>(equal + offset)
               : TransitionGuard::End;
}

/// Fills in a guard. Returns false for a class that has no guard.
bool FillGuard(const ConditionDef& condition, TransitionGuard* guard)
{
    const std::type_info& type = typeid(condition);
    if (type == typeid(ConditionFloatDef))
    {
        const auto& typed = static_cast<const ConditionFloatDef&>(condition);
        guard->kind = KindOf(typed.evaluation, TransitionGuard::FloatEqual);
        guard->value = typed.boundValue;
        guard->target.real = typed.target;
        guard->high.real = typed.rangeHigh;
        return true;
    }
    if (type == typeid(ConditionDefInteger))
    {
        const auto& typed = static_cast<const ConditionDefInteger&>(condition);
        guard->kind = KindOf(typed.evaluation, TransitionGuard::IntEqual);
        guard->value = typed.boundValue;
        guard->target.integer = typed.target;
        guard->high.integer = typed.rangeHigh;
        return true;
    }
    if (type == typeid(ConditionDefBool))
    {
        const auto& typed = static_cast<const ConditionDefBool&>(condition);
        guard->kind = TransitionGuard::Bool;
        guard->value = typed.boundValue;
        guard->target.integer = typed.target ? 1 : 0;
        return true;
    }
    if (type == typeid(ConditionDefMessage))
    {
        const auto& typed = static_cast<const ConditionDefMessage&>(condition);
        guard->kind = TransitionGuard::Message;
        guard->value = typed.boundValue;
        guard->text = typed.target;
        return true;
    }
    return false;
}

/// Adds the guards of one transition. Returns false when it has to be asked.
bool AddGuards(const TransitionDef& transition, int index, std::vector<TransitionGuard>* guards)
{
    if (!transition.triggers.empty())
    {
        return false;
    }
    for (const ConditionDef* condition : transition.conditions)
    {
        TransitionGuard guard{};
        guard.transition = index;
        if (condition == nullptr || !FillGuard(*condition, &guard))
        {
            return false;
        }
        if (guard.kind != TransitionGuard::End && guard.value != nullptr)
        {
            guards->push_back(guard);
        }
    }
    return true;
}

} // namespace

void BuildGuards(const std::vector<TransitionDef*>& transitions,
                 std::vector<TransitionGuard>* guards)
{
    guards->clear();
    for (std::size_t i = 0; i < transitions.size(); ++i)
    {
        const int index = static_cast<int>(i);
        const std::size_t before = guards->size();
        if (transitions[i] != nullptr && !AddGuards(*transitions[i], index, guards))
        {
            guards->resize(before);
            TransitionGuard ask{};
            ask.kind = TransitionGuard::Ask;
            ask.transition = index;
            guards->push_back(ask);
        }
    }
    TransitionGuard end{};
    end.kind = TransitionGuard::End;
    guards->push_back(end);
    guards->shrink_to_fit();
}

} // namespace vell
