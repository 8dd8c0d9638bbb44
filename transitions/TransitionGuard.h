// VELL: data-driven hierarchical state machines.
// transitions/TransitionGuard.h: the conditions of a state's transitions as flat data.
#pragma once

#include "transitions/ConditionFloatDef.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace vell
{

class TransitionDef;

/// One condition, ready to be evaluated without a call: what to compare, where the value is, and
/// with what. A state keeps the guards of all its transitions side by side, in the order of
/// evaluation, so that an idle tick walks one array. Conditions have no side effects, so nobody
/// sees the difference.
struct TransitionGuard
{
    enum Kind : unsigned char
    {
        Bool,
        Message,
        IntEqual,
        IntNotEqual,
        IntGreater,
        IntGreaterOrEqual,
        IntLess,
        IntLessOrEqual,
        IntInRange,
        FloatEqual,
        FloatNotEqual,
        FloatGreater,
        FloatGreaterOrEqual,
        FloatLess,
        FloatLessOrEqual,
        FloatInRange,
        Ask, ///< a transition that flat data cannot stand for: one with triggers
        End  ///< ends the array
    };

    union Operand
    {
        int integer;
        float real;
    };

    /// Reads the value, of whatever alignment.
    template <class T>
    T Load() const
    {
        T loaded;
        std::memcpy(&loaded, value, sizeof(loaded));
        return loaded;
    }
    bool HasText() const
    {
        const char* present = static_cast<const std::string*>(value)->c_str();
        const char* wanted = text;
        while (*present == *wanted && *present != '\0')
        {
            ++present;
            ++wanted;
        }
        return *present == *wanted;
    }

    const void* value; ///< the parameter's value
    const char* text;  ///< the text that a message is compared with
    Operand target;    ///< also the lower bound of a range
    Operand high;      ///< the upper bound of a range
    int transition;    ///< index in the state's transitions
    Kind kind;
};

/// Makes the guards of `transitions`. A transition that never holds has none.
void BuildGuards(const std::vector<TransitionDef*>& transitions,
                 std::vector<TransitionGuard>* guards);

/// Gives the first guard from `guard` on that holds or asks, or the end.
inline const TransitionGuard* FindGuard(const TransitionGuard* guard)
{
    for (;; ++guard)
    {
        switch (guard->kind)
        {
        case TransitionGuard::Bool:
            if (guard->Load<unsigned char>() == guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::Message:
            if (guard->HasText())
            {
                return guard;
            }
            break;
        case TransitionGuard::IntEqual:
            if (guard->Load<int>() == guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntNotEqual:
            if (guard->Load<int>() != guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntGreater:
            if (guard->Load<int>() > guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntGreaterOrEqual:
            if (guard->Load<int>() >= guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntLess:
            if (guard->Load<int>() < guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntLessOrEqual:
            if (guard->Load<int>() <= guard->target.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::IntInRange:
            if (guard->Load<int>() >= guard->target.integer &&
                guard->Load<int>() <= guard->high.integer)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatEqual:
            if (std::fabs(guard->target.real - guard->Load<float>()) <
                ConditionFloatDef::kTolerance)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatNotEqual:
            if (guard->Load<float>() != guard->target.real)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatGreater:
            if (guard->Load<float>() > guard->target.real)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatGreaterOrEqual:
            if (guard->Load<float>() >= guard->target.real)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatLess:
            if (guard->Load<float>() < guard->target.real)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatLessOrEqual:
            if (guard->Load<float>() <= guard->target.real)
            {
                return guard;
            }
            break;
        case TransitionGuard::FloatInRange:
            if (guard->Load<float>() >= guard->target.real &&
                guard->Load<float>() <= guard->high.real)
            {
                return guard;
            }
            break;
        default:
            return guard;
        }
    }
}

} // namespace vell
