// VELL: data-driven hierarchical state machines.
// transitions/TransitionGuard.cpp: making of guards.
#include "transitions/TransitionGuard.h"

#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <vell/Parameters.h>

#include <climits>
#include <cmath>
#include <limits>
#include <typeinfo>

namespace vell
{
namespace
{

constexpr float kInfinity = std::numeric_limits<float>::infinity();

TransitionGuard::Kind MakeRealRange(float low, float high, TransitionGuard* guard)
{
    guard->operand.real.low = low;
    guard->operand.real.high = high;
    return TransitionGuard::Real;
}

TransitionGuard::Kind MakeNumberRange(long long low, long long high, TransitionGuard* guard)
{
    if (high < low)
    {
        return TransitionGuard::Never;
    }
    guard->operand.number.low = static_cast<unsigned int>(low);
    guard->operand.number.span = static_cast<unsigned int>(high - low);
    return TransitionGuard::Number;
}

/// All patterns of bits but one.
TransitionGuard::Kind MakeAllBut(unsigned int bits, TransitionGuard* guard)
{
    guard->operand.number.low = bits + 1;
    guard->operand.number.span = UINT_MAX - 1;
    return TransitionGuard::Number;
}

/// The bounds stand outside where the condition's arithmetic rounds, and belong to the range.
TransitionGuard::Kind MakeFloatGuard(const ConditionFloatDef& condition, TransitionGuard* guard)
{
    const float target = condition.target;
    unsigned int bits = 0;
    switch (condition.evaluation)
    {
    case EvaluateEqual:
        return MakeRealRange(std::nextafter(target - ConditionFloatDef::kTolerance, -kInfinity),
                             std::nextafter(target + ConditionFloatDef::kTolerance, kInfinity),
                             guard);
    case EvaluateNotEqual:
        std::memcpy(&bits, &target, sizeof(bits));
        if (std::isnan(target))
        {
            // Every value differs from it, one of the same bits too.
            guard->operand.number.low = 0;
            guard->operand.number.span = UINT_MAX;
            return TransitionGuard::Number;
        }
        return MakeAllBut(bits, guard);
    case EvaluateGreater:
        return MakeRealRange(std::nextafter(target, kInfinity), kInfinity, guard);
    case EvaluateGreaterOrEqual:
        return MakeRealRange(target, kInfinity, guard);
    case EvaluateLess:
        return MakeRealRange(-kInfinity, std::nextafter(target, -kInfinity), guard);
    case EvaluateLessOrEqual:
        return MakeRealRange(-kInfinity, target, guard);
    case EvaluateInRange:
        return MakeRealRange(target, condition.rangeHigh, guard);
    default:
        return TransitionGuard::Never;
    }
}

TransitionGuard::Kind MakeIntegerGuard(const ConditionDefInteger& condition, TransitionGuard* guard)
{
    const long long target = condition.target;
    switch (condition.evaluation)
    {
    case EvaluateEqual:
        return MakeNumberRange(target, target, guard);
    case EvaluateNotEqual:
        return MakeAllBut(static_cast<unsigned int>(condition.target), guard);
    case EvaluateGreater:
        return MakeNumberRange(target + 1, INT_MAX, guard);
    case EvaluateGreaterOrEqual:
        return MakeNumberRange(target, INT_MAX, guard);
    case EvaluateLess:
        return MakeNumberRange(INT_MIN, target - 1, guard);
    case EvaluateLessOrEqual:
        return MakeNumberRange(INT_MIN, target, guard);
    case EvaluateInRange:
        return MakeNumberRange(target, condition.rangeHigh, guard);
    default:
        return TransitionGuard::Never;
    }
}

/// A bool parameter's byte stands in four that are zero besides; those of other parameters do not.
TransitionGuard::Kind MakeBoolGuard(const ConditionDefBool& condition, TransitionGuard* guard)
{
    auto* parameter = dynamic_cast<ParameterBoolDef*>(condition.parameter);
    if (parameter == nullptr || parameter->GetValuePtr() != condition.boundValue)
    {
        return TransitionGuard::Unknown;
    }
    const int target = condition.target ? 1 : 0;
    return MakeNumberRange(target, target, guard);
}

/// Gives the kind unless the condition is unbound, which never holds.
template <class T>
TransitionGuard::Kind WithValue(const T& condition, TransitionGuard::Kind kind,
                                TransitionGuard* guard)
{
    guard->value = condition.boundValue;
    return condition.boundValue == nullptr ? TransitionGuard::Never : kind;
}

} // namespace

TransitionGuard::Kind MakeGuard(const ConditionDef& condition, TransitionGuard* guard)
{
    const std::type_info& type = typeid(condition);
    if (type == typeid(ConditionFloatDef))
    {
        const auto& typed = static_cast<const ConditionFloatDef&>(condition);
        return WithValue(typed, MakeFloatGuard(typed, guard), guard);
    }
    if (type == typeid(ConditionDefInteger))
    {
        const auto& typed = static_cast<const ConditionDefInteger&>(condition);
        return WithValue(typed, MakeIntegerGuard(typed, guard), guard);
    }
    if (type == typeid(ConditionDefBool))
    {
        const auto& typed = static_cast<const ConditionDefBool&>(condition);
        return WithValue(typed, MakeBoolGuard(typed, guard), guard);
    }
    if (type == typeid(ConditionDefMessage))
    {
        const auto& typed = static_cast<const ConditionDefMessage&>(condition);
        guard->operand.text = typed.target;
        return WithValue(typed, TransitionGuard::Text, guard);
    }
    return TransitionGuard::Unknown;
}

} // namespace vell
