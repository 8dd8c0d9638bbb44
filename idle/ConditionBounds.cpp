// VELL: data-driven hierarchical state machines.
// idle/ConditionBounds.cpp: the bounds of each kind of condition.
#include "idle/ConditionBounds.h"

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

ConditionBounds::Kind SetFloats(float low, float high, ConditionBounds* bounds)
{
    bounds->operand.floats.low = low;
    bounds->operand.floats.high = high;
    return ConditionBounds::Float;
}

ConditionBounds::Kind SetIntegers(long long low, long long high, ConditionBounds* bounds)
{
    if (high < low)
    {
        return ConditionBounds::Never;
    }
    bounds->operand.integers.low = static_cast<unsigned int>(low);
    bounds->operand.integers.span = static_cast<unsigned int>(high - low);
    return ConditionBounds::Integer;
}

/// All patterns of bits but one.
ConditionBounds::Kind SetAllBut(unsigned int bits, ConditionBounds* bounds)
{
    bounds->operand.integers.low = bits + 1;
    bounds->operand.integers.span = UINT_MAX - 1;
    return ConditionBounds::Integer;
}

/// The bounds are part of the range, and just outside it where the condition's arithmetic rounds.
ConditionBounds::Kind FindFloatBounds(const ConditionFloatDef& condition, ConditionBounds* bounds)
{
    const float target = condition.target;
    unsigned int bits = 0;
    switch (condition.evaluation)
    {
    case EvaluateEqual:
        return SetFloats(std::nextafter(target - ConditionFloatDef::kTolerance, -kInfinity),
                         std::nextafter(target + ConditionFloatDef::kTolerance, kInfinity), bounds);
    case EvaluateNotEqual:
        std::memcpy(&bits, &target, sizeof(bits));
        if (std::isnan(target))
        {
            // Every value differs from it, one of the same bits too.
            bounds->operand.integers.low = 0;
            bounds->operand.integers.span = UINT_MAX;
            return ConditionBounds::Integer;
        }
        return SetAllBut(bits, bounds);
    case EvaluateGreater:
        return SetFloats(std::nextafter(target, kInfinity), kInfinity, bounds);
    case EvaluateGreaterOrEqual:
        return SetFloats(target, kInfinity, bounds);
    case EvaluateLess:
        return SetFloats(-kInfinity, std::nextafter(target, -kInfinity), bounds);
    case EvaluateLessOrEqual:
        return SetFloats(-kInfinity, target, bounds);
    case EvaluateInRange:
        return SetFloats(target, condition.rangeHigh, bounds);
    default:
        return ConditionBounds::Never;
    }
}

ConditionBounds::Kind FindIntegerBounds(const ConditionDefInteger& condition,
                                        ConditionBounds* bounds)
{
    const long long target = condition.target;
    switch (condition.evaluation)
    {
    case EvaluateEqual:
        return SetIntegers(target, target, bounds);
    case EvaluateNotEqual:
        return SetAllBut(static_cast<unsigned int>(condition.target), bounds);
    case EvaluateGreater:
        return SetIntegers(target + 1, INT_MAX, bounds);
    case EvaluateGreaterOrEqual:
        return SetIntegers(target, INT_MAX, bounds);
    case EvaluateLess:
        return SetIntegers(INT_MIN, target - 1, bounds);
    case EvaluateLessOrEqual:
        return SetIntegers(INT_MIN, target, bounds);
    case EvaluateInRange:
        return SetIntegers(target, condition.rangeHigh, bounds);
    default:
        return ConditionBounds::Never;
    }
}

/// A bool parameter keeps its byte in four, of which the others are zero; other parameters do not.
ConditionBounds::Kind FindBoolBounds(const ConditionDefBool& condition, ConditionBounds* bounds)
{
    ParameterDef* parameter = condition.parameter;
    if (parameter == nullptr || typeid(*parameter) != typeid(ParameterBoolDef) ||
        parameter->GetValuePtr() != condition.boundValue)
    {
        return ConditionBounds::Unknown;
    }
    unsigned int target = 0;
    std::memcpy(&target, &condition.target, sizeof(condition.target));
    return SetIntegers(target, target, bounds);
}

/// Gives the kind unless the condition is unbound, which never holds.
template <class T>
ConditionBounds::Kind WithValue(const T& condition, ConditionBounds::Kind kind,
                                ConditionBounds* bounds)
{
    bounds->value = condition.boundValue;
    return condition.boundValue == nullptr ? ConditionBounds::Never : kind;
}

} // namespace

ConditionBounds::Kind FindBounds(const ConditionDef& condition, ConditionBounds* bounds)
{
    const std::type_info& type = typeid(condition);
    if (type == typeid(ConditionFloatDef))
    {
        const auto& typed = static_cast<const ConditionFloatDef&>(condition);
        return WithValue(typed, FindFloatBounds(typed, bounds), bounds);
    }
    if (type == typeid(ConditionDefInteger))
    {
        const auto& typed = static_cast<const ConditionDefInteger&>(condition);
        return WithValue(typed, FindIntegerBounds(typed, bounds), bounds);
    }
    if (type == typeid(ConditionDefBool))
    {
        const auto& typed = static_cast<const ConditionDefBool&>(condition);
        return WithValue(typed, FindBoolBounds(typed, bounds), bounds);
    }
    if (type == typeid(ConditionDefMessage))
    {
        const auto& typed = static_cast<const ConditionDefMessage&>(condition);
        bounds->operand.text = typed.target;
        const bool hasText = typed.target != nullptr;
        return WithValue(typed, hasText ? ConditionBounds::Text : ConditionBounds::Never, bounds);
    }
    return ConditionBounds::Unknown;
}

} // namespace vell
