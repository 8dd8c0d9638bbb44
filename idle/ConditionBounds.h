// VELL: data-driven hierarchical state machines.
// idle/ConditionBounds.h: a condition as two bounds.
#pragma once

#include <cstring>
#include <string>

namespace vell
{

class ConditionDef;

/// Where a condition's value is, and between which bounds the condition may hold: a test without a
/// call. If the bounds reject the value, the condition is false. If they accept it, evaluate the
/// condition: they are slightly wide where its arithmetic rounds.
struct ConditionBounds
{
    /// Which of the tests is the right one.
    enum Kind : unsigned char
    {
        Float,   ///< a range of floats
        Integer, ///< a range of integers or of a bool's, or all patterns of bits but one
        Text,    ///< one text
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

    bool AcceptFloat() const
    {
        const auto present = Load<float>();
        return present >= operand.floats.low && present <= operand.floats.high;
    }
    bool AcceptInteger() const
    {
        return Load<unsigned int>() - operand.integers.low <= operand.integers.span;
    }
    bool AcceptText() const
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

    const void* value; ///< the parameter's value, of any alignment
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

/// Gives the bounds of a condition and tells their kind.
ConditionBounds::Kind FindBounds(const ConditionDef& condition, ConditionBounds* bounds);

} // namespace vell
