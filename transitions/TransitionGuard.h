// VELL: data-driven hierarchical state machines.
// transitions/TransitionGuard.h: a condition as flat data.
#pragma once

#include <cstring>
#include <string>

namespace vell
{

class ConditionDef;

/// One condition, ready to be tested without a call: where the value is, and the values at which
/// the condition may hold. Conditions have no side effects, so nobody sees whether a guard or the
/// condition itself was asked. A guard that does not hold settles the matter; behind one that holds
/// stands the condition, which may still say no beside a bound.
struct TransitionGuard
{
    /// Tells which test is the guard's own.
    enum Kind : unsigned char
    {
        Float,   ///< a range of floats
        Integer, ///< a range of integers or of a bool's, or all but one pattern of bits
        Message, ///< a text
        Never,   ///< none: the condition never holds
        Unknown  ///< none: only the condition itself can tell
    };

    union Operand
    {
        struct
        {
            float low;
            float high;
        } floats;
        struct
        {
            unsigned int low;
            unsigned int span; ///< how far the range goes above `low`, past the largest number too
        } integers;
        const char* text;
    };

    bool IsInFloatRange() const
    {
        const auto present = Load<float>();
        return present >= operand.floats.low && present <= operand.floats.high;
    }
    bool IsInIntegerRange() const
    {
        return Load<unsigned int>() - operand.integers.low <= operand.integers.span;
    }
    bool HasText() const
    {
        const char* present = static_cast<const std::string*>(value)->c_str();
        const char* wanted = operand.text;
        while (*present == *wanted && *present != '\0')
        {
            ++present;
            ++wanted;
        }
        return *present == *wanted;
    }

    const void* value; ///< the parameter's value, of whatever alignment
    Operand operand;

private:
    template <class T>
    T Load() const
    {
        T loaded;
        std::memcpy(&loaded, value, sizeof(loaded));
        return loaded;
    }
};

/// Makes the guard of a condition and tells its kind.
TransitionGuard::Kind MakeGuard(const ConditionDef& condition, TransitionGuard* guard);

} // namespace vell
