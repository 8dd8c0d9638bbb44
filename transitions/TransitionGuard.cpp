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

TransitionGuard::Kind MakeFloatRange(float low, float high, TransitionGuard* guard)
{
    guard->operand.floats.low = low;
    guard->operand.floats.high = high;
    return TransitionGuard::Float;
}

TransitionGuard::Kind MakeIntegerRange(long long low, long long high, TransitionGuard* guard)
{
    if (high < low)
    {
        return TransitionGuard::Never;
    }
    guard->operand.integers.low = static_cast<unsigned int>(low);
    guard->operand.integers.span = static_cast<unsigned int>(high - low);
    return TransitionGuard::Integer;
}

/// All patterns of bits but one.
TransitionGuard::Kind MakeAllBut(unsigned int bits, TransitionGuard* guard)
{
    guard->operand.integers.low = bits + 1;
    guard->operand.integers.span = UINT_MAX - 1;
    return TransitionGuard::Integer;
}

/// The bounds stand outside where the condition's arithmetic rounds, and belong to the range.
TransitionGuard::Kind MakeFloatGuard(const ConditionFloatDef& condition, TransitionGuard* guard)
{
    const float target = condition.target;
    unsigned int bits = 0;
    switch (condition.evaluation)
    {
    case EvaluateEqual:
        return MakeFloatRange(std::nextafter(target - ConditionFloatDef::kTolerance, -kInfinity),
                              std::nextafter(target + ConditionFloatDef::kTolerance, kInfinity),
                              guard);
    case EvaluateNotEqual:
        std::memcpy(&bits, &target, sizeof(bits));
        if (std::isnan(target))
        {
            // Every value differs from it, one of the same bits too.
            guard->operand.integers.low = 0;
            guard->operand.integers.span = UINT_MAX;
            return TransitionGuard::Integer;
        }
        return MakeAllBut(bits, guard);
    case EvaluateGreater:
        return MakeFloatRange(std::nextafter(target, kInfinity), kInfinity, guard);
    case EvaluateGreaterOrEqual:
        return MakeFloatRange(target, kInfinity, guard);
    case EvaluateLess:
        return MakeFloatRange(-kInfinity, std::nextafter(target, -kInfinity), guard);
    case EvaluateLessOrEqual:
        return MakeFloatRange(-kInfinity, target, guard);
    case EvaluateInRange:
        return MakeFloatRange(target, condition.rangeHigh, guard);
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
        return MakeIntegerRange(target, target, guard);
    case EvaluateNotEqual:
        return MakeAllBut(static_cast<unsigned int>(condition.target), guard);
    case EvaluateGreater:
        return MakeIntegerRange(target + 1, INT_MAX, guard);
    case EvaluateGreaterOrEqual:
        return MakeIntegerRange(target, INT_MAX, guard);
    case EvaluateLess:
        return MakeIntegerRange(INT_MIN, target - 1, guard);
    case EvaluateLessOrEqual:
        return MakeIntegerRange(INT_MIN, target, guard);
    case EvaluateInRange:
        return MakeIntegerRange(target, condition.rangeHigh, guard);
    default:
        return TransitionGuard::Never;
    }
}

/// A bool parameter's byte stands in four that are zero besides; those of other parameters do not.
TransitionGuard::Kind MakeBoolGuard(const ConditionDefBool& condition, TransitionGuard* guard)
{
    ParameterDef* parameter = condition.parameter;
    if (parameter == nullptr || typeid(*parameter) != typeid(ParameterBoolDef) ||
        parameter->GetValuePtr() != condition.boundValue)
    {
        return TransitionGuard::Unknown;
    }
    unsigned int target = 0;
    std::memcpy(&target, &condition.target, sizeof(condition.target));
    return MakeIntegerRange(target, target, guard);
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
        return WithValue(typed, TransitionGuard::Message, guard);
    }
    return TransitionGuard::Unknown;
}

} // namespace vell
