// VELL: data-driven hierarchical state machines.
// tests/transitions/ConditionEvaluateTest.cpp: when the four classes of conditions hold.
#include <vell/Parameters.h>

#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/VirtualOrder.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using WrongClassCondition = LogTest;

using namespace DURMBaseLib;

/// A condition that is bound to a parameter of any class.
template <class Class>
class Bound : public Built<Class>
{
public:
    Bound(const Json& json, ParameterDef& parameter) : Built<Class>(json)
    {
        if (this->result != 0)
        {
            this->def->SetParameter(&parameter);
            this->def->ParameterBind();
        }
    }

    bool Holds() const
    {
        return this->def->Evaluate(nullptr);
    }
};

/// A condition on a number, of any operator number.
template <class Class, class Parameter, class Value, int kType>
class NumberTest
{
public:
    NumberTest(int evaluation, Value target) : bound(Condition(kType, "x", 1, 0), parameter)
    {
        bound->evaluation = evaluation;
        bound->target = target;
    }

    bool Holds(Value value)
    {
        parameter.SetValue(value);
        return bound.Holds();
    }

private:
    LogRecorder log;
    Parameter parameter;
    Bound<Class> bound;
};

using IntegerTest = NumberTest<ConditionDefInteger, ParameterIntegerDef, int, PARAM_Integer>;
using FloatTest = NumberTest<ConditionFloatDef, ParameterFloatDef, float, PARAM_Float>;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// For which values below, at and above its target each comparing operator holds.
const struct
{
    int evaluation;
    bool below;
    bool equal;
    bool above;
} kComparisons[] = {{1, false, true, false}, {2, true, false, true},  {3, false, false, true},
                    {4, false, true, true},  {5, true, false, false}, {6, true, true, false}};

constexpr int kNoOperators[] = {7, 8, 9, 0, 11, -1, INT_MAX, INT_MIN};

} // namespace

TEST(ConditionSurface, AddsEvaluateAndParameterBindBehindTheOperationsOfDefinitions)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    EXPECT_EQ(SlotsOf(&ConditionDef::Evaluate, &ConditionDef::ParameterBind),
              SlotsFrom(SlotOf(&BaseDef::UninitKVTable) + 1, 2));
}

TEST(IntegerCondition, ComparesByItsOperator)
{
    for (const auto& comparison : kComparisons)
    {
        IntegerTest test(comparison.evaluation, 5);

        EXPECT_EQ(test.Holds(4), comparison.below) << comparison.evaluation;
        EXPECT_EQ(test.Holds(5), comparison.equal) << comparison.evaluation;
        EXPECT_EQ(test.Holds(6), comparison.above) << comparison.evaluation;
    }
}

TEST(IntegerCondition, ComparesWithSigns)
{
    for (const auto& comparison : kComparisons)
    {
        IntegerTest test(comparison.evaluation, -1);

        EXPECT_EQ(test.Holds(INT_MIN), comparison.below) << comparison.evaluation;
        EXPECT_EQ(test.Holds(INT_MAX), comparison.above) << comparison.evaluation;
    }
}

TEST(IntegerCondition, NeverHoldsByAnyOtherOperator)
{
    for (const int evaluation : kNoOperators)
    {
        IntegerTest test(evaluation, 5);

        EXPECT_FALSE(test.Holds(4)) << evaluation;
        EXPECT_FALSE(test.Holds(5)) << evaluation;
        EXPECT_FALSE(test.Holds(6)) << evaluation;
    }
}

TEST(IntegerCondition, HoldsWithinARangeWhoseBoundsBelongToIt)
{
    LogRecorder log;
    ParameterIntegerDef parameter;
    Bound<ConditionDefInteger> range(Condition(PARAM_Integer, "x", 10, "10,5"), parameter);
    EXPECT_EQ(range->target, 5);
    EXPECT_EQ(range->rangeHigh, 10);

    std::vector<int> inside;
    for (int value = 3; value <= 12; ++value)
    {
        parameter.SetValue(value);
        if (range.Holds())
        {
            inside.push_back(value);
        }
    }

    EXPECT_EQ(inside, (std::vector<int>{5, 6, 7, 8, 9, 10}));
}

TEST(FloatCondition, ComparesByItsOperator)
{
    for (const auto& comparison : kComparisons)
    {
        FloatTest test(comparison.evaluation, 5.0f);

        EXPECT_EQ(test.Holds(4.5f), comparison.below) << comparison.evaluation;
        EXPECT_EQ(test.Holds(5.0f), comparison.equal) << comparison.evaluation;
        EXPECT_EQ(test.Holds(5.5f), comparison.above) << comparison.evaluation;
        EXPECT_EQ(test.Holds(-kInfinity), comparison.below) << comparison.evaluation;
        EXPECT_EQ(test.Holds(kInfinity), comparison.above) << comparison.evaluation;
    }
}

TEST(FloatCondition, NeverHoldsByAnyOtherOperator)
{
    for (const int evaluation : kNoOperators)
    {
        FloatTest test(evaluation, 5.0f);

        EXPECT_FALSE(test.Holds(4.5f)) << evaluation;
        EXPECT_FALSE(test.Holds(5.0f)) << evaluation;
        EXPECT_FALSE(test.Holds(5.5f)) << evaluation;
        EXPECT_FALSE(test.Holds(kNaN)) << evaluation;
    }
}

TEST(FloatCondition, ComparesWithAToleranceByEqualAlone)
{
    const float above = std::nextafter(1.0f, 2.0f);
    const float below = std::nextafter(1.0f, 0.0f);
    const struct
    {
        const char* what;
        float value;
        int evaluation;
        float target;
        bool holds;
    } cases[] = {{"equal, a little above", 1.005f, 1, 1.0f, true},
                 {"equal, a little below", 0.995f, 1, 1.0f, true},
                 {"equal, just short of the constant", 1.01f, 1, 1.0f, true},
                 {"equal, beyond the constant", 1.02f, 1, 1.0f, false},
                 {"equal, less than the constant", std::nextafter(0.01f, 0.0f), 1, 0.0f, true},
                 {"equal, the constant itself", 0.01f, 1, 0.0f, false},
                 {"equal, the constant itself below", -0.01f, 1, 0.0f, false},
                 {"not equal, the next number", above, 2, 1.0f, true},
                 {"greater", above, 3, 1.0f, true},
                 {"greater or equal", below, 4, 1.0f, false},
                 {"less", below, 5, 1.0f, true},
                 {"less or equal", above, 6, 1.0f, false}};
    for (const auto& example : cases)
    {
        EXPECT_EQ(FloatTest(example.evaluation, example.target).Holds(example.value), example.holds)
            << example.what;
    }
}

TEST(FloatCondition, IsEqualAndNotEqualForAValueCloseToItsTarget)
{
    EXPECT_TRUE(FloatTest(1, 1.0f).Holds(1.005f));
    EXPECT_TRUE(FloatTest(2, 1.0f).Holds(1.005f));
    EXPECT_FALSE(FloatTest(2, 1.0f).Holds(1.0f));
}

TEST(FloatCondition, DoesNotFindEqualInfinitiesEqual)
{
    EXPECT_FALSE(FloatTest(1, kInfinity).Holds(kInfinity)) << "their difference is no number";
    EXPECT_FALSE(FloatTest(2, kInfinity).Holds(kInfinity));
    EXPECT_TRUE(FloatTest(4, kInfinity).Holds(kInfinity));
}

TEST(FloatCondition, HoldsForNaNByNotEqualAlone)
{
    for (const int evaluation : {1, 2, 3, 4, 5, 6, 10})
    {
        EXPECT_EQ(FloatTest(evaluation, 0.0f).Holds(kNaN), evaluation == 2) << evaluation;
        EXPECT_EQ(FloatTest(evaluation, kNaN).Holds(0.0f), evaluation == 2) << evaluation;
        EXPECT_EQ(FloatTest(evaluation, kNaN).Holds(kNaN), evaluation == 2) << evaluation;
    }
}

TEST(FloatCondition, HoldsWithinARangeWhoseBoundsBelongToIt)
{
    LogRecorder log;
    ParameterFloatDef parameter;
    Bound<ConditionFloatDef> range(Condition(PARAM_Float, "x", 10, "0.75,-0.5"), parameter);
    const struct
    {
        float value;
        bool inside;
    } cases[] = {{std::nextafter(-0.5f, -1.0f), false}, {-0.5f, true}, {0.0f, true}, {0.75f, true},
                 {std::nextafter(0.75f, 1.0f), false},  {kNaN, false}};

    for (const auto& example : cases)
    {
        parameter.SetValue(example.value);
        EXPECT_EQ(range.Holds(), example.inside) << example.value;
    }
}

TEST(BoolCondition, TestsEqualityWhateverItsOperator)
{
    for (const int evaluation : {1, 2, 3, 4, 5, 6, 10})
    {
        LogRecorder log;
        ParameterBoolDef parameter;
        Bound<ConditionDefBool> wantsTrue(Condition(PARAM_Bool, "x", evaluation, true), parameter);
        Bound<ConditionDefBool> wantsFalse(Condition(PARAM_Bool, "x", evaluation, false),
                                           parameter);

        EXPECT_FALSE(wantsTrue.Holds()) << evaluation;
        EXPECT_TRUE(wantsFalse.Holds()) << evaluation;
        parameter.SetValue(true);
        EXPECT_TRUE(wantsTrue.Holds()) << evaluation;
        EXPECT_FALSE(wantsFalse.Holds()) << evaluation;
    }
}

TEST(MessageCondition, ComparesTheWholeTextWithCase)
{
    LogRecorder log;
    ParameterMessageDef parameter;
    Bound<ConditionDefMessage> bound(MessageCondition("x", "Jump"), parameter);
    const struct
    {
        const char* text;
        bool holds;
    } cases[] = {{"Jump", true}, {"jump", false}, {"Jum", false}, {"Jumps", false}, {"", false}};

    for (const auto& example : cases)
    {
        parameter.SetValue(example.text);
        EXPECT_EQ(bound.Holds(), example.holds) << example.text;
    }
}

TEST(MessageCondition, ComparesUpToTheTerminatorWhateverItsOperator)
{
    LogRecorder log;
    ParameterMessageDef parameter;
    Bound<ConditionDefMessage> bound(Condition(PARAM_Message, "x", 2, "Jump"), parameter);

    parameter.SetValue(std::string("Jump\0 high", 10));

    EXPECT_TRUE(bound.Holds());
}

TEST(MessageCondition, SeesATextThatOutgrowsItsStorage)
{
    LogRecorder log;
    const std::string longText(200, 'x');
    ParameterMessageDef parameter;
    Bound<ConditionDefMessage> bound(MessageCondition("x", longText), parameter);

    EXPECT_FALSE(bound.Holds());
    parameter.SetValue(longText);
    EXPECT_TRUE(bound.Holds());
}

TEST(MessageCondition, KeepsATextOfItsOwn)
{
    LogRecorder log;
    Built<ConditionDefMessage> built(MessageCondition("x", "Jump"));
    const auto& operand = (*built.node)[GetJsonName(JSON_ConditionValue)][0];
    const char* inDocument = operand[GetJsonName(JSON_Value)].GetString();

    EXPECT_STREQ(built->target, "Jump");
    EXPECT_NE(static_cast<const char*>(built->target), inDocument);
}

TEST(Condition, IsFalseUntilItIsBound)
{
    LogRecorder log;
    Built<ConditionDefBool> boolean(BoolCondition("x", false));
    Built<ConditionDefInteger> integer(IntCondition("x", 1, 0));
    Built<ConditionFloatDef> number(FloatCondition("x", 1, 0.0));
    Built<ConditionDefMessage> message(MessageCondition("x", "y"));
    log.Clear();

    EXPECT_FALSE(boolean->Evaluate(nullptr));
    EXPECT_FALSE(integer->Evaluate(nullptr));
    EXPECT_FALSE(number->Evaluate(nullptr));
    EXPECT_FALSE(message->Evaluate(nullptr));
    EXPECT_EQ(log.Take(), Lines());
}

TEST(Condition, StoresANullParameterWithAWarning)
{
    LogRecorder log;
    ParameterBoolDef parameter;
    Built<ConditionDefBool> built(BoolCondition("x", true));
    log.Clear();

    built->SetParameter(&parameter);
    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(built->parameter, &parameter);
    built->SetParameter(nullptr);

    EXPECT_EQ(log.Take(), (Lines{"4 Parameter definition is NULL"}));
    EXPECT_EQ(built->parameter, nullptr);
}

namespace
{

/// Binds, takes the parameter away and binds again; gives the lines of the second binding.
template <class Class>
Lines BindWithoutParameter(const Json& json, ParameterDef& parameter)
{
    LogRecorder log;
    Bound<Class> bound(json, parameter);
    const auto* before = bound->boundValue;
    bound->SetParameter(nullptr);
    log.Clear();

    EXPECT_TRUE(bound->ParameterBind());
    EXPECT_EQ(bound->boundValue, before) << "stays as it was";
    EXPECT_NE(bound->boundValue, nullptr);
    return log.Take();
}

} // namespace

TEST(Condition, KeepsItsBindingWhenThereIsNoParameterAndReportsItExceptForAFloat)
{
    ParameterBoolDef boolean;
    ParameterIntegerDef integer;
    ParameterFloatDef number;
    ParameterMessageDef message;

    EXPECT_EQ(BindWithoutParameter<ConditionDefBool>(BoolCondition("x", true), boolean),
              (Lines{ErrorBreak("vell::ConditionDefBool::ParameterBind")}));
    EXPECT_EQ(BindWithoutParameter<ConditionDefInteger>(IntCondition("x", 1, 0), integer),
              (Lines{ErrorBreak("vell::ConditionDefInteger::ParameterBind")}));
    EXPECT_EQ(BindWithoutParameter<ConditionFloatDef>(FloatCondition("x", 1, 0.0), number),
              Lines());
    EXPECT_EQ(BindWithoutParameter<ConditionDefMessage>(MessageCondition("x", "y"), message),
              (Lines{ErrorBreak("vell::ConditionDefMessage::ParameterBind")}));
}

TEST(Condition, BindsToTheValueOfItsParameter)
{
    LogRecorder log;
    ParameterBoolDef boolean;
    ParameterMessageDef message;
    Bound<ConditionDefBool> onBool(BoolCondition("x", true), boolean);
    Bound<ConditionDefMessage> onMessage(MessageCondition("x", "y"), message);

    EXPECT_EQ(onBool->boundValue, boolean.GetValuePtr());
    EXPECT_EQ(onMessage->boundValue, message.GetValuePtr());
}

TEST(Condition, UninitClearsTheBindingOfAllButMessagesAndNothingElse)
{
    LogRecorder log;
    ParameterBoolDef boolean;
    ParameterIntegerDef integer;
    ParameterFloatDef number;
    ParameterMessageDef message;
    Bound<ConditionDefBool> onBool(BoolCondition("x", true), boolean);
    Bound<ConditionDefInteger> onInteger(IntCondition("x", 1, 0), integer);
    Bound<ConditionFloatDef> onFloat(FloatCondition("x", 1, 0.0), number);
    Bound<ConditionDefMessage> onMessage(MessageCondition("x", "y"), message);

    for (ConditionDef* condition :
         std::vector<ConditionDef*>{onBool.def, onInteger.def, onFloat.def, onMessage.def})
    {
        condition->Uninit();
        EXPECT_NE(Tessel::GetTableName(condition->GetKVTable()), nullptr) << "not closed";
        EXPECT_NE(condition->parameter, nullptr);
    }

    EXPECT_EQ(onBool->boundValue, nullptr);
    EXPECT_EQ(onInteger->boundValue, nullptr);
    EXPECT_EQ(onFloat->boundValue, nullptr);
    EXPECT_EQ(onMessage->boundValue, message.GetValuePtr());
}

// A condition reads the value of a parameter of another class as if it were of its own.

TEST_F(WrongClassCondition, BoolComparesOneByteThatMayBeNeitherZeroNorOne)
{
    ParameterIntegerDef integer;
    Bound<ConditionDefBool> wantsTrue(BoolCondition("x", true), integer);
    Bound<ConditionDefBool> wantsFalse(BoolCondition("x", false), integer);

    for (const int number : {0, 1, 2, 255})
    {
        const auto byte = static_cast<unsigned char>(number);
        int value = 0x01010101;
        std::memcpy(&value, &byte, 1);
        integer.SetValue(value);
        EXPECT_EQ(wantsTrue.Holds(), number == 1) << number;
        EXPECT_EQ(wantsFalse.Holds(), number == 0) << number;
    }
}

TEST_F(WrongClassCondition, IntegerReadsABoolWithoutFaulting)
{
    ParameterBoolDef flag;
    Bound<ConditionDefInteger> isZero(IntCondition("x", 1, 0), flag);

    EXPECT_TRUE(isZero.Holds());
    flag.SetValue(true);
    EXPECT_FALSE(isZero.Holds());
    flag.SetValue(false);
    EXPECT_TRUE(isZero.Holds());
}

TEST_F(WrongClassCondition, IntegerReadsTheBitsOfAFloat)
{
    ParameterFloatDef number;
    Bound<ConditionDefInteger> isBits(IntCondition("x", 1, 0x3f800000), number);

    number.SetValue(1.0f);

    EXPECT_TRUE(isBits.Holds());
}

TEST_F(WrongClassCondition, FloatReadsTheBitsOfAnIntegerAndTheFirstOfAVector)
{
    ParameterIntegerDef integer;
    ParameterFloat3Def vector;
    Bound<ConditionFloatDef> onInteger(FloatCondition("x", 1, 1.0), integer);
    Bound<ConditionFloatDef> onVector(FloatCondition("x", 1, 7.0), vector);

    integer.SetValue(0x3f800000);
    vector.SetValue({7.0f, 1.0f, 2.0f});

    EXPECT_TRUE(onInteger.Holds());
    EXPECT_TRUE(onVector.Holds());
}

TEST_F(WrongClassCondition, FloatReadsABoolAsATinyNumber)
{
    ParameterBoolDef flag;
    Bound<ConditionFloatDef> isZero(FloatCondition("x", 1, 0.0), flag);

    flag.SetValue(true);

    EXPECT_TRUE(isZero.Holds());
}

TEST_F(WrongClassCondition, AllButMessagesReadTheBytesOfAText)
{
    ParameterMessageDef text;
    text.SetValue("some text");
    Bound<ConditionDefBool> boolean(BoolCondition("x", true), text);
    Bound<ConditionDefInteger> integer(IntCondition("x", 1, 0), text);
    Bound<ConditionFloatDef> number(FloatCondition("x", 3, 0.0), text);
    int asInt = 0;
    float asFloat = 0.0f;
    unsigned char asByte = 0;
    std::memcpy(&asInt, text.GetValuePtr(), sizeof(asInt));
    std::memcpy(&asFloat, text.GetValuePtr(), sizeof(asFloat));
    std::memcpy(&asByte, text.GetValuePtr(), sizeof(asByte));

    EXPECT_EQ(boolean.Holds(), asByte == 1);
    EXPECT_EQ(integer.Holds(), asInt == 0);
    EXPECT_EQ(number.Holds(), asFloat > 0.0f);
}

TEST_F(WrongClassCondition, MessageOnWhatIsNoMessageIsFalse)
{
    ParameterFloatDef number;
    Bound<ConditionDefMessage> bound(MessageCondition("x", "y"), number);

    EXPECT_FALSE(bound.Holds());
    EXPECT_EQ(bound->boundValue, nullptr);
}

} // namespace vell::test
