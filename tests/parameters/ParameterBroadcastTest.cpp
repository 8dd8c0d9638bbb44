// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterBroadcastTest.cpp: what each parameter class does with each event.
#include <vell/ParamBroadcast.h>
#include <vell/Parameters.h>

#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

namespace vell::test
{
namespace
{

constexpr int kBinding = 12;
constexpr int kForeign = 13;

/// A record for the binding `binding`, with other inputs than any default.
ParamBroadcast Record(int binding, int subKind = 1)
{
    ParamBroadcast record{};
    record.subKind = subKind;
    record.binding = binding;
    record.input.vector[0] = 1.0f;
    record.input.vector[1] = 2.0f;
    record.input.vector[2] = 3.0f;
    record.input.vector[3] = 4.0f;
    return record;
}

ParamBroadcast BoolRecord(int binding, int subKind, int input)
{
    ParamBroadcast record{};
    record.subKind = subKind;
    record.binding = binding;
    record.input.boolean = input;
    return record;
}

/// What the vector classes have in common, for one test of all three.
template <class Class, class Value>
struct VectorClass
{
    using Def = Class;
    using Vector = Value;
    static constexpr std::size_t kWidth = sizeof(Value) / sizeof(float);

    static Value Make(const std::vector<float>& numbers)
    {
        Value value{};
        std::memcpy(&value, numbers.data(), sizeof(value));
        return value;
    }
    static std::vector<float> Show(const Value& value)
    {
        std::vector<float> numbers(kWidth);
        std::memcpy(numbers.data(), &value, sizeof(value));
        return numbers;
    }
    static std::vector<float> Cut(std::vector<float> numbers)
    {
        numbers.resize(kWidth);
        return numbers;
    }
};

struct Analog : VectorClass<ParameterAnalogDef, Tessel::Float2>
{
    static std::vector<float> Input()
    {
        return {2.0f, 3.0f};
    }
};

struct Float3 : VectorClass<ParameterFloat3Def, Tessel::Float3>
{
    static std::vector<float> Input()
    {
        return {1.0f, 2.0f, 3.0f};
    }
};

struct Float4 : VectorClass<ParameterFloat4Def, Tessel::Float4>
{
    static std::vector<float> Input()
    {
        return {1.0f, 2.0f, 3.0f, 4.0f};
    }
};

/// A bound vector parameter with the default 7, 7, ... and the value 8, 8, ...
template <class Class>
class VectorParameterInput : public testing::Test
{
protected:
    VectorParameterInput()
    {
        def.SetAssign(kBinding);
        def.SetDefaultValue(Class::Make(std::vector<float>(4, 7.0f)));
        def.SetValue(Class::Make(std::vector<float>(4, 8.0f)));
    }

    std::vector<float> Value()
    {
        return Class::Show(def.GetValue());
    }
    static std::vector<float> Default()
    {
        return std::vector<float>(Class::kWidth, 7.0f);
    }
    static std::vector<float> Unchanged()
    {
        return std::vector<float>(Class::kWidth, 8.0f);
    }

    typename Class::Def def;
    LogRecorder log;
};

using VectorClasses = testing::Types<Analog, Float3, Float4>;
TYPED_TEST_SUITE(VectorParameterInput, VectorClasses, );

constexpr std::array<int, 6> kOtherEvents = {0, 2, 3, 5, 8, -1};

} // namespace

TYPED_TEST(VectorParameterInput, TakesEvent1OfItsBindingFromItsOwnPlaceInTheRecord)
{
    const ParamBroadcast record = Record(kBinding, 99);

    EXPECT_EQ(this->def.OnBroadcastEvent(1, &record), 1);
    EXPECT_EQ(this->Value(), TypeParam::Input());
}

TYPED_TEST(VectorParameterInput, RefusesEvent1OfAnotherBinding)
{
    const ParamBroadcast record = Record(kForeign);

    EXPECT_EQ(this->def.OnBroadcastEvent(1, &record), 0);
    EXPECT_EQ(this->Value(), this->Unchanged());
}

TYPED_TEST(VectorParameterInput, DoesNothingOnEvent4)
{
    const ParamBroadcast record = Record(kBinding);

    EXPECT_EQ(this->def.OnBroadcastEvent(4, &record), 0);
    EXPECT_EQ(this->Value(), this->Unchanged());
}

TYPED_TEST(VectorParameterInput, TakesTheBareValueOfEvent6AndReturns0)
{
    const std::vector<float> bare = {0.5f, 1.5f, 2.5f, 3.5f};

    EXPECT_EQ(this->def.OnBroadcastEvent(6, bare.data()), 0);
    EXPECT_EQ(this->Value(), TypeParam::Cut(bare));
}

TYPED_TEST(VectorParameterInput, ResetsOnEvent7AndReturns0)
{
    const ParamBroadcast record = Record(kForeign);

    EXPECT_EQ(this->def.OnBroadcastEvent(7, &record), 0);
    EXPECT_EQ(this->Value(), this->Default());
}

TYPED_TEST(VectorParameterInput, DoesNothingOnOtherEvents)
{
    const ParamBroadcast record = Record(kBinding);

    for (const int event : kOtherEvents)
    {
        EXPECT_EQ(this->def.OnBroadcastEvent(event, &record), 0) << event;
        EXPECT_EQ(this->Value(), this->Unchanged()) << event;
    }
}

TYPED_TEST(VectorParameterInput, DoesNothingWithANullRecordThatItWouldRead)
{
    EXPECT_EQ(this->def.OnBroadcastEvent(1, nullptr), 0);
    EXPECT_EQ(this->def.OnBroadcastEvent(4, nullptr), 0);
    EXPECT_EQ(this->def.OnBroadcastEvent(6, nullptr), 0);

    EXPECT_EQ(this->Value(), this->Unchanged());
    EXPECT_EQ(this->log.Take(), Lines());
}

TYPED_TEST(VectorParameterInput, ResetsWithoutARecord)
{
    EXPECT_EQ(this->def.OnBroadcastEvent(7, nullptr), 0);

    EXPECT_EQ(this->Value(), this->Default());
    EXPECT_EQ(this->log.Take(), Lines());
}

TEST(ParameterAnalogDef, RecomputesItsMagnitudeOnInput)
{
    ParameterAnalogDef stick;
    const Tessel::Float2 bare = {3.0f, 4.0f};

    stick.OnBroadcastEvent(6, &bare);

    EXPECT_EQ(stick.GetMagnitude(), 5.0f);
}

TEST(ParameterAnalogDef, ReadsARecordOfAnyAlignment)
{
    ParameterAnalogDef stick;
    stick.SetAssign(kBinding);
    const ParamBroadcast record = Record(kBinding);
    std::array<unsigned char, sizeof(record) + 1> bytes{};
    std::memcpy(bytes.data() + 1, &record, sizeof(record));

    EXPECT_EQ(stick.OnBroadcastEvent(1, bytes.data() + 1), 1);
    EXPECT_EQ(stick.GetValue().x, 2.0f);
    EXPECT_EQ(stick.GetValue().y, 3.0f);
}

namespace
{

class FloatParameterInput : public testing::Test
{
protected:
    FloatParameterInput()
    {
        def.SetAssign(kBinding);
        def.SetDefaultValue(7.0f);
        def.SetValue(8.0f);
    }

    ParameterFloatDef def;
    LogRecorder log;
};

class BoolParameterInput : public testing::Test
{
protected:
    BoolParameterInput()
    {
        def.SetAssign(kBinding);
        def.SetDefaultValue(true);
    }

    ParameterBoolDef def; ///< false
    LogRecorder log;
};

class IntegerParameterInput : public testing::Test
{
protected:
    IntegerParameterInput()
    {
        def.SetAssign(kBinding);
        def.SetDefaultValue(7);
        def.SetValue(8);
    }

    ParameterIntegerDef def;
    LogRecorder log;
};

class MessageParameterInput : public testing::Test
{
protected:
    MessageParameterInput()
    {
        def.SetAssign(kBinding);
        def.SetDefaultValue("default");
        def.SetValue("value");
    }

    ParameterMessageDef def;
    LogRecorder log;
};

constexpr std::array<int, 10> kAllEvents = {1, 4, 6, 7, 0, 2, 3, 5, 8, -1};

} // namespace

TEST_F(FloatParameterInput, TakesEvent1OfAnyBinding)
{
    const ParamBroadcast own = Record(kBinding);
    ParamBroadcast foreign = Record(kForeign, 5);
    foreign.input.vector[1] = -6.0f;

    EXPECT_EQ(def.OnBroadcastEvent(1, &own), 1);
    EXPECT_EQ(def.GetValue(), 2.0f);
    EXPECT_EQ(def.OnBroadcastEvent(1, &foreign), 1);
    EXPECT_EQ(def.GetValue(), -6.0f);
}

TEST_F(FloatParameterInput, DoesNothingOnEvent4AndReturns1)
{
    const ParamBroadcast record = Record(kBinding);

    EXPECT_EQ(def.OnBroadcastEvent(4, &record), 1);
    EXPECT_EQ(def.GetValue(), 8.0f);
}

TEST_F(FloatParameterInput, TakesTheBareValueOfEvent6)
{
    const float bare = 0.25f;

    EXPECT_EQ(def.OnBroadcastEvent(6, &bare), 1);
    EXPECT_EQ(def.GetValue(), 0.25f);
}

TEST_F(FloatParameterInput, ResetsOnEvent7)
{
    const ParamBroadcast record = Record(kForeign);

    EXPECT_EQ(def.OnBroadcastEvent(7, &record), 1);
    EXPECT_EQ(def.GetValue(), 7.0f);
}

TEST_F(FloatParameterInput, DoesNothingOnOtherEventsAndReturns1)
{
    const ParamBroadcast record = Record(kBinding);

    for (const int event : kOtherEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 1) << event;
        EXPECT_EQ(def.GetValue(), 8.0f) << event;
    }
}

TEST_F(FloatParameterInput, ReportsANullRecordOfAnyEvent)
{
    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, nullptr), 0) << event;
        EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterFloatDef::OnBroadcastEvent")}));
        EXPECT_EQ(def.GetValue(), 8.0f) << event;
    }
}

TEST_F(BoolParameterInput, TakesEvent1OfItsBindingWithSubKind1)
{
    const ParamBroadcast on = BoolRecord(kBinding, 1, 256);
    const ParamBroadcast off = BoolRecord(kBinding, 1, 0);

    EXPECT_EQ(def.OnBroadcastEvent(1, &on), 1);
    EXPECT_TRUE(def.GetValue());
    EXPECT_EQ(def.OnBroadcastEvent(1, &off), 1);
    EXPECT_FALSE(def.GetValue());
}

TEST_F(BoolParameterInput, AcceptsEvent1OfAnotherSubKindWithoutTakingIt)
{
    const ParamBroadcast record = BoolRecord(kBinding, 2, 1);

    EXPECT_EQ(def.OnBroadcastEvent(1, &record), 1);
    EXPECT_FALSE(def.GetValue());
}

TEST_F(BoolParameterInput, RefusesEvent1OfAnotherBinding)
{
    const ParamBroadcast record = BoolRecord(kForeign, 1, 1);

    EXPECT_EQ(def.OnBroadcastEvent(1, &record), 0);
    EXPECT_FALSE(def.GetValue());
}

TEST_F(BoolParameterInput, TakesEvent4OfAnyBindingAndSubKind)
{
    const ParamBroadcast on = BoolRecord(kForeign, 9, -1);
    const ParamBroadcast off = BoolRecord(kForeign, 9, 0);

    EXPECT_EQ(def.OnBroadcastEvent(4, &on), 1);
    EXPECT_TRUE(def.GetValue());
    EXPECT_EQ(def.OnBroadcastEvent(4, &off), 1);
    EXPECT_FALSE(def.GetValue());
}

TEST_F(BoolParameterInput, DoesNothingOnEvents6And7AndOthers)
{
    const ParamBroadcast record = BoolRecord(kBinding, 1, 1);

    for (const int event : {6, 7, 0, 2, 3, 5, 8, -1})
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 0) << event;
        EXPECT_FALSE(def.GetValue()) << event;
    }
}

TEST_F(BoolParameterInput, ReportsANullRecordOfAnyEvent)
{
    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, nullptr), 0) << event;
        EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterBoolDef::OnBroadcastEvent")}));
        EXPECT_FALSE(def.GetValue()) << event;
    }
}

TEST_F(IntegerParameterInput, TakesItsDefaultOnAnyEventOfItsBinding)
{
    const ParamBroadcast record = Record(kBinding);

    for (const int event : kAllEvents)
    {
        def.SetValue(8);
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 1) << event;
        EXPECT_EQ(def.GetValue(), 7) << event;
    }
}

TEST_F(IntegerParameterInput, RefusesAnyEventOfAnotherBinding)
{
    const ParamBroadcast record = Record(kForeign);

    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 0) << event;
        EXPECT_EQ(def.GetValue(), 8) << event;
    }
}

TEST_F(IntegerParameterInput, DoesNothingWithANullRecord)
{
    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, nullptr), 0) << event;
    }

    EXPECT_EQ(def.GetValue(), 8);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(MessageParameterInput, TakesItsDefaultOnAnyEventOfItsBinding)
{
    const ParamBroadcast record = Record(kBinding);

    for (const int event : kAllEvents)
    {
        def.SetValue("value");
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 1) << event;
        EXPECT_EQ(def.GetValue(), "default") << event;
    }
}

TEST_F(MessageParameterInput, RefusesAnyEventOfAnotherBinding)
{
    const ParamBroadcast record = Record(kForeign);

    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, &record), 0) << event;
        EXPECT_EQ(def.GetValue(), "value") << event;
    }
}

TEST_F(MessageParameterInput, DoesNothingWithANullRecord)
{
    for (const int event : kAllEvents)
    {
        EXPECT_EQ(def.OnBroadcastEvent(event, nullptr), 0) << event;
    }

    EXPECT_EQ(def.GetValue(), "value");
    EXPECT_EQ(log.Take(), Lines());
}

} // namespace vell::test
