// VELL: data-driven hierarchical state machines.
// tests/idle/ConditionBoundsTest.cpp: bounds beside their conditions.
#include "idle/ConditionBounds.h"

#include <vell/ConditionDef.h>
#include <vell/Parameters.h>

#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

constexpr float kInfinity = std::numeric_limits<float>::infinity();

bool Holds(ConditionBounds::Kind kind, const ConditionBounds& bounds)
{
    switch (kind)
    {
    case ConditionBounds::Float:
        return bounds.AcceptFloat();
    case ConditionBounds::Integer:
        return bounds.AcceptInteger();
    case ConditionBounds::Text:
        return bounds.AcceptText();
    default:
        return kind == ConditionBounds::Unknown;
    }
}

std::vector<float> Floats()
{
    std::vector<float> all = {std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::denorm_min(),
                              std::numeric_limits<float>::max()};
    for (const float center : {0.0f, 0.01f, 1.0f, 1.005f, 0.99f, 1.01f, 5.0f, 3.0e7f, kInfinity})
    {
        for (const float sign : {-1.0f, 1.0f})
        {
            const float value = sign * center;
            all.insert(all.end(), {value, std::nextafter(value, kInfinity),
                                   std::nextafter(value, -kInfinity)});
        }
    }
    return all;
}

/// A condition of a class that the library does not know.
class OtherCondition : public ConditionFloatDef
{
};

/// What a condition and its bounds say of one value.
struct Answers
{
    bool condition;
    bool bounds;
};

template <class Condition, class Value>
Answers Ask(int evaluation, Value target, Value high, const Value& value)
{
    Condition condition;
    condition.evaluation = evaluation;
    condition.target = target;
    condition.rangeHigh = high;
    condition.boundValue = &value;
    ConditionBounds bounds;
    const auto kind = FindBounds(condition, &bounds);
    return {condition.Evaluate(nullptr), Holds(kind, bounds)};
}

} // namespace

TEST(ConditionBounds, OfAFloatHoldsWhereverTheConditionDoes)
{
    int holding = 0;
    int beside = 0;
    for (int evaluation = 0; evaluation <= 11; ++evaluation)
    {
        for (const float target : Floats())
        {
            for (const float high : {target, target + 4.0f, target - 1.0f})
            {
                for (const float value : Floats())
                {
                    const Answers answers = Ask<ConditionFloatDef>(evaluation, target, high, value);
                    ASSERT_TRUE(answers.bounds || !answers.condition)
                        << evaluation << ' ' << target << ' ' << high << ' ' << value;
                    holding += answers.condition ? 1 : 0;
                    beside += answers.bounds && !answers.condition ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(holding, 10000);
    EXPECT_LT(beside, holding / 20) << "only beside a bound";
}

TEST(ConditionBounds, OfAnIntegerHoldsExactlyWhereTheConditionDoes)
{
    const int numbers[] = {INT_MIN, INT_MIN + 1, -7, -1, 0, 1, 5, INT_MAX - 1, INT_MAX};
    for (int evaluation = 0; evaluation <= 11; ++evaluation)
    {
        for (const int target : numbers)
        {
            for (const int high : numbers)
            {
                for (const int value : numbers)
                {
                    const Answers answers =
                        Ask<ConditionDefInteger>(evaluation, target, high, value);
                    ASSERT_EQ(answers.bounds, answers.condition)
                        << evaluation << ' ' << target << ' ' << high << ' ' << value;
                }
            }
        }
    }
}

TEST(ConditionBounds, OfABoolStandsForABoolParameterOnly)
{
    ParameterBoolDef flag;
    ParameterIntegerDef number;
    ConditionDefBool condition;
    condition.target = true;
    ConditionBounds bounds;
    EXPECT_EQ(FindBounds(condition, &bounds), ConditionBounds::Never) << "unbound";

    condition.SetParameter(&flag);
    condition.ParameterBind();
    ASSERT_EQ(FindBounds(condition, &bounds), ConditionBounds::Integer);
    EXPECT_FALSE(bounds.AcceptInteger());
    flag.SetValue(true);
    EXPECT_TRUE(bounds.AcceptInteger());

    condition.SetParameter(&number);
    EXPECT_EQ(FindBounds(condition, &bounds), ConditionBounds::Unknown) << "not bound to it yet";
    condition.ParameterBind();
    EXPECT_EQ(FindBounds(condition, &bounds), ConditionBounds::Unknown);
}

TEST(ConditionBounds, OfATextComparesAllOfIt)
{
    char wanted[] = "jump";
    const std::string texts[] = {"jump", "jum", "jumps", "", "Jump"};
    for (const std::string& text : texts)
    {
        ConditionDefMessage condition;
        condition.target = wanted;
        condition.boundValue = &text;
        ConditionBounds bounds;
        ASSERT_EQ(FindBounds(condition, &bounds), ConditionBounds::Text);
        EXPECT_EQ(bounds.AcceptText(), condition.Evaluate(nullptr)) << text;
    }
}

TEST(ConditionBounds, OfAClassThatTheLibraryDoesNotKnowIsUnknown)
{
    const float value = 0.0f;
    OtherCondition condition;
    condition.evaluation = EvaluateEqual;
    condition.boundValue = &value;
    ConditionBounds bounds;

    EXPECT_EQ(FindBounds(condition, &bounds), ConditionBounds::Unknown);
}

} // namespace vell::test
