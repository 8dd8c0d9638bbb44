// VELL: data-driven hierarchical state machines.
// tests/transitions/TransitionGuardTest.cpp: guards beside the conditions that they stand for.
#include "transitions/TransitionGuard.h"

#include "transitions/ConditionDef.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <vell/Parameters.h>

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

bool Holds(TransitionGuard::Kind kind, const TransitionGuard& guard)
{
    switch (kind)
    {
    case TransitionGuard::Float:
        return guard.IsInFloatRange();
    case TransitionGuard::Integer:
        return guard.IsInIntegerRange();
    case TransitionGuard::Message:
        return guard.HasText();
    default:
        return kind == TransitionGuard::Unknown;
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

/// What a condition and its guard say of one value.
struct Answers
{
    bool condition;
    bool guard;
};

template <class Condition, class Value>
Answers Ask(int evaluation, Value target, Value high, const Value& value)
{
    Condition condition;
    condition.evaluation = evaluation;
    condition.target = target;
    condition.rangeHigh = high;
    condition.boundValue = &value;
    TransitionGuard guard;
    const auto kind = MakeGuard(condition, &guard);
    return {condition.Evaluate(nullptr), Holds(kind, guard)};
}

} // namespace

TEST(TransitionGuard, OfAFloatHoldsWhereverTheConditionDoes)
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
                    ASSERT_TRUE(answers.guard || !answers.condition)
                        << evaluation << ' ' << target << ' ' << high << ' ' << value;
                    holding += answers.condition ? 1 : 0;
                    beside += answers.guard && !answers.condition ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(holding, 10000);
    EXPECT_LT(beside, holding / 20) << "only beside a bound";
}

TEST(TransitionGuard, OfAnIntegerHoldsExactlyWhereTheConditionDoes)
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
                    ASSERT_EQ(answers.guard, answers.condition)
                        << evaluation << ' ' << target << ' ' << high << ' ' << value;
                }
            }
        }
    }
}

TEST(TransitionGuard, OfABoolStandsForABoolParameterOnly)
{
    ParameterBoolDef flag;
    ParameterIntegerDef number;
    ConditionDefBool condition;
    condition.target = true;
    TransitionGuard guard;
    EXPECT_EQ(MakeGuard(condition, &guard), TransitionGuard::Never) << "unbound";

    condition.SetParameter(&flag);
    condition.ParameterBind();
    ASSERT_EQ(MakeGuard(condition, &guard), TransitionGuard::Integer);
    EXPECT_FALSE(guard.IsInIntegerRange());
    flag.SetValue(true);
    EXPECT_TRUE(guard.IsInIntegerRange());

    condition.SetParameter(&number);
    EXPECT_EQ(MakeGuard(condition, &guard), TransitionGuard::Unknown) << "not bound to it yet";
    condition.ParameterBind();
    EXPECT_EQ(MakeGuard(condition, &guard), TransitionGuard::Unknown);
}

TEST(TransitionGuard, OfATextComparesAllOfIt)
{
    char wanted[] = "jump";
    const std::string texts[] = {"jump", "jum", "jumps", "", "Jump"};
    for (const std::string& text : texts)
    {
        ConditionDefMessage condition;
        condition.target = wanted;
        condition.boundValue = &text;
        TransitionGuard guard;
        ASSERT_EQ(MakeGuard(condition, &guard), TransitionGuard::Message);
        EXPECT_EQ(guard.HasText(), condition.Evaluate(nullptr)) << text;
    }
}

TEST(TransitionGuard, OfAClassThatTheLibraryDoesNotKnowIsUnknown)
{
    const float value = 0.0f;
    OtherCondition condition;
    condition.evaluation = EvaluateEqual;
    condition.boundValue = &value;
    TransitionGuard guard;

    EXPECT_EQ(MakeGuard(condition, &guard), TransitionGuard::Unknown);
}

} // namespace vell::test
