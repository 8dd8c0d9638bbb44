// VELL: data-driven hierarchical state machines.
// transitions/Comparison.h: what the operators of conditions mean.
#pragma once

#include <vell/ConditionDef.h>

#include <cmath>

namespace vell
{

/// Required: floats this close count as equal. The tolerance belongs to equality alone, so a value
/// close to the target and not equal to it is both equal and not equal.
constexpr float kFloatTolerance = 0.01f;

inline bool IsEqual(float value, float target)
{
    // Required: the difference of equal infinities is not a number, so they are not equal.
    return std::fabs(target - value) < kFloatTolerance;
}

inline bool IsEqual(int value, int target)
{
    return value == target;
}

/// Tells whether `value` meets `target` by the operator `evaluation`; `high` is the upper bound of
/// a range. An unknown operator is never met.
template <class T>
bool Compare(int evaluation, T value, T target, T high)
{
    switch (evaluation)
    {
    case EvaluateEqual:
        return IsEqual(value, target);
    case EvaluateNotEqual:
        return value != target;
    case EvaluateGreater:
        return value > target;
    case EvaluateGreaterOrEqual:
        return value >= target;
    case EvaluateLess:
        return value < target;
    case EvaluateLessOrEqual:
        return value <= target;
    case EvaluateInRange:
        return value >= target && value <= high;
    default:
        return false;
    }
}

} // namespace vell
