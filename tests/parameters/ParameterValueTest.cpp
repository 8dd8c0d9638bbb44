// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterValueTest.cpp: values of parameters and their mirror in the tree.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "tests/support/TreeValues.h"
#include "tests/support/WriteCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace vell::test
{
namespace
{

/// What a parameter class stores, and how its value is kept in the tree.
template <class InterfaceType, class ValueType, int kTypeNumber, int kTreeTypeNumber>
struct KindOf
{
    using Interface = InterfaceType;
    using Value = ValueType;
    static constexpr int kType = kTypeNumber;
    static constexpr int kTreeType = kTreeTypeNumber;
};

template <class Class>
struct Kind;
template <>
struct Kind<ParameterBoolDef> : KindOf<IParameterBoolDef, bool, 1, Tessel::ValueType_Int>
{
    static constexpr Value kFirst = true;
    static constexpr Value kSecond = false;
};
template <>
struct Kind<ParameterIntegerDef> : KindOf<IParameterIntDef, int, 2, Tessel::ValueType_Int>
{
    static constexpr Value kFirst = -5;
    static constexpr Value kSecond = 1 << 30;
};
template <>
struct Kind<ParameterFloatDef> : KindOf<IParameterFloatDef, float, 3, Tessel::ValueType_Float>
{
    static constexpr Value kFirst = -0.5f;
    static constexpr Value kSecond = 1e30f;
};
template <>
struct Kind<ParameterAnalogDef>
    : KindOf<IParameterAnalogDef, Tessel::Float2, 4, Tessel::ValueType_Float2>
{
    static constexpr Value kFirst = {3.0f, 4.0f};
    static constexpr Value kSecond = {-1.0f, 0.5f};
};
template <>
struct Kind<ParameterFloat3Def>
    : KindOf<IParameterFloat3Def, Tessel::Float3, 5, Tessel::ValueType_Float3>
{
    static constexpr Value kFirst = {2.0f, 3.0f, 6.0f};
    static constexpr Value kSecond = {-1.0f, 0.5f, 9.0f};
};
template <>
struct Kind<ParameterFloat4Def>
    : KindOf<IParameterFloat4Def, Tessel::Float4, 6, Tessel::ValueType_Float4>
{
    static constexpr Value kFirst = {1.0f, 2.0f, 3.0f, 4.0f};
    static constexpr Value kSecond = {-1.0f, 0.5f, 9.0f, 0.25f};
};
template <>
struct Kind<ParameterMessageDef>
    : KindOf<IParameterMessageDef, std::string, 8, Tessel::ValueType_Text>
{
    static inline const Value kFirst = "jump";
    static inline const Value kSecond = "a text that is too long for a string's own buffer";
};

template <class Class>
class ParameterValue : public testing::Test
{
protected:
    using Value = typename Kind<Class>::Value;

    typename Kind<Class>::Interface& Interface()
    {
        return def;
    }
    bool HasValue(const Value& expected)
    {
        return AreEqual<Value>(def.GetValue(), expected);
    }
    bool HasDefault(const Value& expected)
    {
        return AreEqual<Value>(def.GetDefaultValue(), expected);
    }
    bool TreeHas(const Value& expected)
    {
        return AreEqual<Value>(InTree<Value>(def.GetKVTable()), expected);
    }

    Class def;
};

using ParameterClasses =
    testing::Types<ParameterBoolDef, ParameterIntegerDef, ParameterFloatDef, ParameterAnalogDef,
                   ParameterFloat3Def, ParameterFloat4Def, ParameterMessageDef>;
TYPED_TEST_SUITE(ParameterValue, ParameterClasses, );

} // namespace

TYPED_TEST(ParameterValue, StartsAtZeroWithTheNumberOfItsType)
{
    EXPECT_EQ(this->def.GetParamType(), Kind<TypeParam>::kType);
    EXPECT_EQ(this->def.GetType(), DefTypeParameter);
    EXPECT_EQ(this->def.GetFlags(), 4u);
    EXPECT_EQ(this->def.GetAssign(), 0);
    EXPECT_EQ(this->def.GetAssignClass(), 0);
    EXPECT_EQ(this->def.GetSyncState(), 0);
    EXPECT_FALSE(this->def.IsResetEachFrame());
    EXPECT_FALSE(static_cast<bool>(this->def.GetKVTable()));
    EXPECT_TRUE(this->HasValue({}));
    EXPECT_TRUE(this->HasDefault({}));
}

TYPED_TEST(ParameterValue, StoresTypeBindingAndGuardAsGiven)
{
    this->def.SetParamType(55);
    this->def.SetAssign(-3);
    this->def.SetAssignClass(9);
    this->def.SetSyncState(7);

    EXPECT_EQ(this->def.GetParamType(), 55);
    EXPECT_EQ(this->def.GetAssign(), -3);
    EXPECT_EQ(this->def.GetAssignClass(), 9);
    EXPECT_EQ(this->def.GetSyncState(), 7);
}

TYPED_TEST(ParameterValue, SetDefaultValueTouchesNeitherTheValueNorTheTree)
{
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");

    this->def.SetDefaultValue(Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasDefault(Kind<TypeParam>::kFirst));
    EXPECT_TRUE(this->HasValue({}));
    EXPECT_EQ(writes.Take(), 0);
}

TYPED_TEST(ParameterValue, SetValueStoresWithoutATable)
{
    this->Interface().SetValue(Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
    EXPECT_TRUE(this->HasDefault({}));
    EXPECT_FALSE(static_cast<bool>(this->def.GetKVTable()));
    EXPECT_EQ(this->def.GetSyncState(), 0);
}

TYPED_TEST(ParameterValue, SetValueWritesTheTreeOnceAndIsIdleAfterwards)
{
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");

    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_EQ(writes.Take(), 1);
    EXPECT_TRUE(this->TreeHas(Kind<TypeParam>::kFirst));
    EXPECT_EQ(this->def.GetSyncState(), 0);
}

TYPED_TEST(ParameterValue, SetValueOfAnEqualValueWritesAgainExceptByBool)
{
    this->def.SetValue(Kind<TypeParam>::kFirst);
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");

    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_EQ(writes.Take(), Kind<TypeParam>::kType == 1 ? 0 : 1);
}

TYPED_TEST(ParameterValue, KeepsTheAddressOfItsValue)
{
    using Type = typename Kind<TypeParam>::Value;
    const void* address = this->def.GetValuePtr();

    this->def.SetValue(Kind<TypeParam>::kSecond);
    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_EQ(this->def.GetValuePtr(), address);
    EXPECT_EQ(this->Interface().GetValuePtr(), address);
    EXPECT_TRUE(AreEqual<Type>(*static_cast<const Type*>(address), Kind<TypeParam>::kFirst));
}

TYPED_TEST(ParameterValue, ResetValueTakesTheDefaultAndWritesIt)
{
    this->def.InitKVTable();
    this->def.SetDefaultValue(Kind<TypeParam>::kFirst);
    WriteCounter writes(this->def.GetKVTable(), "value");

    this->Interface().ResetValue();

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
    EXPECT_TRUE(this->TreeHas(Kind<TypeParam>::kFirst));
    EXPECT_EQ(writes.Take(), 1);
}

TYPED_TEST(ParameterValue, ResetValueAtTheDefaultWritesAgainExceptByBool)
{
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");

    this->def.ResetValue();

    EXPECT_EQ(writes.Take(), Kind<TypeParam>::kType == 1 ? 0 : 1);
}

TYPED_TEST(ParameterValue, InitKVTableWritesIdTypeNameAndValue)
{
    this->def.SetID(4242);
    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_EQ(this->def.InitKVTable(), 1);

    Tessel::KVTable table = this->def.GetKVTable();
    ASSERT_TRUE(static_cast<bool>(table));
    EXPECT_STREQ(Tessel::GetTableName(table), "baseDef");
    EXPECT_EQ(table->GetUInt("id"), 4242u);
    const auto number = static_cast<DURMBaseLib::__ePARAMTYPE__>(Kind<TypeParam>::kType);
    EXPECT_STREQ(table->GetString("type"), DURMBaseLib::GetParameterName(number));
    EXPECT_EQ(table->FindValue("value")->GetValueType(), Kind<TypeParam>::kTreeType);
    EXPECT_TRUE(this->TreeHas(Kind<TypeParam>::kFirst));
}

TYPED_TEST(ParameterValue, WritesTheNameOfTheTypeItWasGiven)
{
    this->def.SetParamType(7);

    this->def.InitKVTable();

    EXPECT_STREQ(this->def.GetKVTable()->GetString("type"),
                 DURMBaseLib::GetParameterName(DURMBaseLib::PARAM_Text));
}

TYPED_TEST(ParameterValue, TakesWhatAToolWritesAndWritesItBackOnce)
{
    this->def.SetValue(Kind<TypeParam>::kSecond);
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");

    WriteByTool(this->def.GetKVTable(), Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
    EXPECT_TRUE(this->TreeHas(Kind<TypeParam>::kFirst));
    EXPECT_EQ(writes.Take(), 2) << "the tool's write and the parameter's, without an echo";
    EXPECT_EQ(this->def.GetSyncState(), 0);
}

TYPED_TEST(ParameterValue, DoesNotPullWhatItWritesItself)
{
    struct Counting : TypeParam
    {
        void PullValue() override
        {
            ++pulls;
            TypeParam::PullValue();
        }
        int pulls = 0;
    } counting;
    counting.InitKVTable();

    counting.SetValue(Kind<TypeParam>::kFirst);
    counting.ResetValue();
    EXPECT_EQ(counting.pulls, 0);

    WriteByTool(counting.GetKVTable(), Kind<TypeParam>::kFirst);
    EXPECT_EQ(counting.pulls, 1);
}

TYPED_TEST(ParameterValue, DoesNotHearTheTreeAfterUninitKVTable)
{
    this->def.InitKVTable();

    EXPECT_EQ(this->def.UninitKVTable(), 1);
    WriteByTool(this->def.GetKVTable(), Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue({}));
}

TYPED_TEST(ParameterValue, HearsTheTreeAgainAfterInitKVTableListener)
{
    this->def.InitKVTable();
    this->def.UnInitKVTableListener();

    EXPECT_EQ(this->def.InitKVTableListener(), 1);
    WriteByTool(this->def.GetKVTable(), Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
}

TYPED_TEST(ParameterValue, HearsTheTreeOnceHoweverOftenItIsAskedTo)
{
    this->def.InitKVTable();
    this->def.InitKVTable();
    EXPECT_EQ(this->def.InitKVTableListener(), 1);

    this->def.UnInitKVTableListener();
    WriteByTool(this->def.GetKVTable(), Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue({}));
}

TYPED_TEST(ParameterValue, CannotListenWithoutATableOrAValueInIt)
{
    EXPECT_EQ(this->def.InitKVTableListener(), 0) << "no table";
    this->def.UnInitKVTableListener();

    this->def.BaseDef::InitKVTable();

    EXPECT_EQ(this->def.InitKVTableListener(), 0) << "no value in the table";
    this->def.UnInitKVTableListener();
}

TYPED_TEST(ParameterValue, PullsOnlyOnAChangeThatIsNotItsOwn)
{
    this->def.InitKVTable();
    Tessel::KVTable table = this->def.GetKVTable();
    this->def.UnInitKVTableListener();
    WriteByTool(table, Kind<TypeParam>::kFirst);

    EXPECT_EQ(this->def.OnParamValueModified(Tessel::opResult_None, table, "value"), 1);
    EXPECT_TRUE(this->HasValue({})) << "not a change";
    this->def.SetSyncState(2);
    EXPECT_EQ(this->def.OnParamValueModified(Tessel::opResult_ValueChanged, table, "value"), 1);
    EXPECT_TRUE(this->HasValue({})) << "its own write";
    this->def.SetSyncState(0);
    EXPECT_EQ(this->def.OnParamValueModified(Tessel::opResult_ValueChanged, table, "value"), 1);
    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
}

TYPED_TEST(ParameterValue, StoresWithoutWritingWhileTheGuardIsUp)
{
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");
    this->def.SetSyncState(1);

    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
    EXPECT_EQ(writes.Take(), 0);
    EXPECT_EQ(this->def.GetSyncState(), 1);
}

TYPED_TEST(ParameterValue, PullsWithTheGuardUpAndThenDoesNotWriteBack)
{
    this->def.InitKVTable();
    WriteCounter writes(this->def.GetKVTable(), "value");
    this->def.SetSyncState(1);

    WriteByTool(this->def.GetKVTable(), Kind<TypeParam>::kFirst);

    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
    EXPECT_EQ(writes.Take(), 1);
}

TYPED_TEST(ParameterValue, UninitClosesItsTableAndTheValueStaysUsable)
{
    this->def.InitKVTable();

    this->def.Uninit();
    this->def.SetValue(Kind<TypeParam>::kFirst);

    EXPECT_EQ(Tessel::GetTableName(this->def.GetKVTable()), nullptr);
    EXPECT_TRUE(this->HasValue(Kind<TypeParam>::kFirst));
}

TEST(ParameterPullValue, WithoutATableGivesZeroToTheScalarsAndLeavesTheOthers)
{
    ParameterBoolDef boolean;
    ParameterIntegerDef integer;
    ParameterFloatDef number;
    ParameterAnalogDef analog;
    ParameterMessageDef message;
    boolean.SetValue(true);
    integer.SetValue(3);
    number.SetValue(1.5f);
    analog.SetValue({1.0f, 2.0f});
    message.SetValue("kept");

    boolean.PullValue();
    integer.PullValue();
    number.PullValue();
    analog.PullValue();
    message.PullValue();

    EXPECT_FALSE(boolean.GetValue());
    EXPECT_EQ(integer.GetValue(), 0);
    EXPECT_EQ(number.GetValue(), 0.0f);
    EXPECT_EQ(analog.GetValue().y, 2.0f);
    EXPECT_EQ(message.GetValue(), "kept");
}

TEST(ParameterPullValue, LeavesAVectorOrAMessageWhoseKeyIsOfAnotherType)
{
    ParameterAnalogDef analog;
    ParameterFloat3Def float3;
    ParameterFloat4Def float4;
    ParameterMessageDef message;
    analog.SetValue({1.0f, 2.0f});
    float3.SetValue({1.0f, 2.0f, 3.0f});
    float4.SetValue({1.0f, 2.0f, 3.0f, 4.0f});
    message.SetValue("kept");
    for (ParameterDef* def : std::vector<ParameterDef*>{&analog, &float3, &float4, &message})
    {
        def->InitKVTable();
        def->GetKVTable()->SetInt("value", 9, 1);
    }

    EXPECT_EQ(analog.GetValue().y, 2.0f);
    EXPECT_EQ(float3.GetValue().z, 3.0f);
    EXPECT_EQ(float4.GetValue().w, 4.0f);
    EXPECT_EQ(message.GetValue(), "kept");
}

TEST(ParameterPullValue, GivesZeroToAScalarWhoseKeyIsAText)
{
    ParameterIntegerDef integer;
    integer.SetValue(3);
    integer.InitKVTable();

    integer.GetKVTable()->SetString("value", "5", 1);

    EXPECT_EQ(integer.GetValue(), 0);
}

TEST(ParameterAnalogDef, ComputesItsMagnitudeBeforeTheTreeHears)
{
    ParameterAnalogDef stick;
    stick.InitKVTable();
    struct Seen
    {
        ParameterAnalogDef* def;
        float magnitude;
    } seen{&stick, 0.0f};
    *stick.GetKVTable()->GetValueListener("value") = {
        &seen, [](void* object, Tessel::opResult, Tessel::KVTable, const char*)
        {
            auto* record = static_cast<Seen*>(object);
            record->magnitude = record->def->GetMagnitude();
            return 1;
        }};

    stick.SetValue({3.0f, 4.0f});

    EXPECT_EQ(seen.magnitude, 5.0f);
}

TEST(ParameterAnalogDef, KeepsItsMagnitudeWhenOnlyTheDefaultChanges)
{
    IParameterAnalogDef&& stick = ParameterAnalogDef();
    stick.SetValue({3.0f, 4.0f});

    stick.SetDefaultValue({6.0f, 8.0f});

    EXPECT_EQ(stick.GetMagnitude(), 5.0f);
    stick.ResetValue();
    EXPECT_EQ(stick.GetMagnitude(), 10.0f);
}

TEST(ParameterAnalogDef, GivesAndTakesItsValueAsAVectorToo)
{
    IParameterAnalogDef&& stick = ParameterAnalogDef();

    stick.SetVector({3.0f, -4.0f});

    EXPECT_EQ(stick.GetVector().y, -4.0f);
    EXPECT_EQ(stick.GetValue().x, 3.0f);
    EXPECT_EQ(stick.GetMagnitude(), 5.0f);
}

TEST(ParameterAnalogDef, RecomputesItsMagnitudeWhenAToolWrites)
{
    ParameterAnalogDef stick;
    stick.InitKVTable();
    const Tessel::Float2 written = {0.0f, -2.0f};

    stick.GetKVTable()->SetFloat2("value", &written, 1);

    EXPECT_EQ(stick.GetMagnitude(), 2.0f);
}

TEST(ParameterFloat3Def, ComputesItsMagnitudeOfAllThree)
{
    IParameterFloat3Def&& position = ParameterFloat3Def();
    EXPECT_EQ(position.GetMagnitude(), 0.0f);

    position.SetVector({2.0f, -3.0f, 6.0f});

    EXPECT_EQ(position.GetMagnitude(), 7.0f);
    EXPECT_EQ(position.GetVector().z, 6.0f);
    position.SetDefaultValue({1.0f, 0.0f, 0.0f});
    EXPECT_EQ(position.GetMagnitude(), 7.0f);
}

TEST(ParameterFloat3Def, ComputesItsMagnitudeInSinglePrecision)
{
    ParameterFloat3Def position;
    const float x = 1e-3f;
    const float y = 1.1f;
    const float z = -70.3f;

    position.SetValue({x, y, z});

    EXPECT_EQ(position.GetMagnitude(), std::sqrt(x * x + y * y + z * z));
    position.SetValue({1e30f, 0.0f, 0.0f});
    EXPECT_EQ(position.GetMagnitude(), std::numeric_limits<float>::infinity())
        << "the square does not fit a float";
}

namespace
{

template <class T, class = void>
constexpr bool kHasMagnitude = false;
template <class T>
constexpr bool kHasMagnitude<T, std::void_t<decltype(&T::GetMagnitude)>> = true;

} // namespace

TEST(ParameterFloat4Def, HasNoMagnitudeAndSixOperations)
{
    EXPECT_TRUE(kHasMagnitude<IParameterFloat3Def>);
    EXPECT_FALSE(kHasMagnitude<IParameterFloat4Def>);
    EXPECT_FALSE(kHasMagnitude<ParameterFloat4Def>);
    struct SixOperations : IParameterFloat4Def
    {
        Tessel::Float4 GetDefaultValue() override
        {
            return {};
        }
        void SetDefaultValue(const Tessel::Float4&) override
        {
        }
        Tessel::Float4 GetValue() override
        {
            return {};
        }
        void SetValue(const Tessel::Float4&) override
        {
        }
        void* GetValuePtr() override
        {
            return nullptr;
        }
        void ResetValue() override
        {
        }
    };
    EXPECT_FALSE(std::is_abstract_v<SixOperations>) << "there is a seventh operation";
}

TEST(ParameterBoolDef, TreatsAnyOtherNumberOfAToolAsTrue)
{
    ParameterBoolDef flag;
    flag.InitKVTable();

    flag.GetKVTable()->SetInt("value", -8, 1);

    EXPECT_TRUE(flag.GetValue());
    EXPECT_EQ(flag.GetKVTable()->GetInt("value"), 1);
}

TEST(ParameterBoolDef, WritesNothingBackWhenAToolWritesTheSameTruth)
{
    ParameterBoolDef flag;
    flag.SetValue(true);
    flag.InitKVTable();

    flag.GetKVTable()->SetInt("value", 5, 1);

    EXPECT_TRUE(flag.GetValue());
    EXPECT_EQ(flag.GetKVTable()->GetInt("value"), 5);
}

TEST(ParameterFloatDef, StoresAnyNumberAsGiven)
{
    ParameterFloatDef number;

    number.SetValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(std::isnan(number.GetValue()));
    number.SetValue(-std::numeric_limits<float>::infinity());
    EXPECT_EQ(number.GetValue(), -std::numeric_limits<float>::infinity());
}

} // namespace vell::test
