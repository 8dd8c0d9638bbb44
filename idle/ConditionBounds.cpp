// VELL: data-driven hierarchical state machines.
// idle/ConditionBounds.cpp: the bounds of each kind of condition.
#include "idle/ConditionBounds.h"

#include <vell/Parameters.h>

#include "transitions/Comparison.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

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

template <class T>
struct Range
{
    T low;
    T high;
};

/// The numbers next to a number, and those at the ends.
struct FloatSteps
{
    static constexpr float kLowest = -kInfinity;
    static constexpr float kHighest = kInfinity;
    static float Above(float number)
    {
        return std::nextafter(number, kInfinity);
    }
    static float Below(float number)
    {
        return std::nextafter(number, -kInfinity);
    }
};

struct IntegerSteps
{
    static constexpr long long kLowest = INT_MIN;
    static constexpr long long kHighest = INT_MAX;
    static long long Above(long long number)
    {
        return number + 1;
    }
    static long long Below(long long number)
    {
        return number - 1;
    }
};

/// Gives the range in which an operator other than not-equal holds; both bounds belong to it. False
/// for an operator that never does.
template <class Steps, class T>
bool FindRange(int evaluation, Range<T> target, Range<T>* range)
{
    switch (evaluation)
    {
    case EvaluateEqual:
        *range = {target.low, target.low};
        return true;
    case EvaluateGreater:
        *range = {Steps::Above(target.low), Steps::kHighest};
        return true;
    case EvaluateGreaterOrEqual:
        *range = {target.low, Steps::kHighest};
        return true;
    case EvaluateLess:
        *range = {Steps::kLowest, Steps::Below(target.low)};
        return true;
    case EvaluateLessOrEqual:
        *range = {Steps::kLowest, target.low};
        return true;
    case EvaluateInRange:
        *range = target;
        return true;
    default:
        return false;
    }
}

ConditionBounds::Kind FindFloatBounds(const ConditionFloatDef& condition, ConditionBounds* bounds)
{
    const float target = condition.target;
    if (condition.evaluation == EvaluateEqual)
    {
        // Just outside the tolerance, where the condition's arithmetic rounds.
        return SetFloats(FloatSteps::Below(target - kFloatTolerance),
                         FloatSteps::Above(target + kFloatTolerance), bounds);
    }
    if (condition.evaluation == EvaluateNotEqual)
    {
        unsigned int bits = 0;
        std::memcpy(&bits, &target, sizeof(bits));
        // Every value differs from a NaN, one of the same bits too.
        return std::isnan(target) ? SetIntegers(0, UINT_MAX, bounds) : SetAllBut(bits, bounds);
    }
    Range<float> range{};
    return FindRange<FloatSteps>(condition.evaluation, Range<float>{target, condition.rangeHigh},
                                 &range)
               ? SetFloats(range.low, range.high, bounds)
               : ConditionBounds::Never;
}

ConditionBounds::Kind FindIntegerBounds(const ConditionDefInteger& condition,
                                        ConditionBounds* bounds)
{
    if (condition.evaluation == EvaluateNotEqual)
    {
        return SetAllBut(static_cast<unsigned int>(condition.target), bounds);
    }
    Range<long long> range{};
    return FindRange<IntegerSteps>(condition.evaluation,
                                   Range<long long>{condition.target, condition.rangeHigh}, &range)
               ? SetIntegers(range.low, range.high, bounds)
               : ConditionBounds::Never;
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
