// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterTableCreateTest.cpp: parameters made while the machine runs.
#include <vell/HSM.h>
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// One of the four operations, with a value of its own.
template <class Class>
struct Maker;

template <>
struct Maker<ParameterFloatDef>
{
    using Interface = IParameterFloatDef;
    static constexpr const char* kFunction = "vell::ParameterTable::CreateFloatParameter";
    static constexpr float kValue = 1.5f;
    static int Make(IParameterTable& table, const char* name, Interface** out)
    {
        return table.CreateFloatParameter(name, kValue, out);
    }
};

template <>
struct Maker<ParameterBoolDef>
{
    using Interface = IParameterBoolDef;
    static constexpr const char* kFunction = "vell::ParameterTable::CreateBoolParameter";
    static constexpr bool kValue = true;
    static int Make(IParameterTable& table, const char* name, Interface** out)
    {
        return table.CreateBoolParameter(name, kValue, out);
    }
};

template <>
struct Maker<ParameterIntegerDef>
{
    using Interface = IParameterIntDef;
    static constexpr const char* kFunction = "vell::ParameterTable::CreateIntParameter";
    static constexpr int kValue = -4;
    static int Make(IParameterTable& table, const char* name, Interface** out)
    {
        return table.CreateIntParameter(name, kValue, out);
    }
};

template <>
struct Maker<ParameterMessageDef>
{
    using Interface = IParameterMessageDef;
    static constexpr const char* kFunction = "vell::ParameterTable::CreateMessageParameter";
    static constexpr const char* kValue = "now";
    static int Make(IParameterTable& table, const char* name, Interface** out)
    {
        return table.CreateMessageParameter(name, kValue, out);
    }
};

const std::string kStand = SmallDocument().Text();

/// A loaded table with the parameter "taken", of class float and with the value 9.
template <class Class>
class RuntimeParameter : public testing::Test
{
protected:
    using Make = Maker<Class>;
    using Interface = typename Make::Interface;

    RuntimeParameter() : loaded({FloatParameter("taken", 9.0)})
    {
        log.Clear();
    }

    LogRecorder log;
    LoadedParameters loaded;
    ParameterTable& table = loaded.table;
    Interface* out = nullptr;
};

using RuntimeClasses =
    testing::Types<ParameterFloatDef, ParameterBoolDef, ParameterIntegerDef, ParameterMessageDef>;
TYPED_TEST_SUITE(RuntimeParameter, RuntimeClasses, );

} // namespace

TYPED_TEST(RuntimeParameter, StartsWithItsValueAsDefaultAndCurrentValue)
{
    ASSERT_EQ(Maker<TypeParam>::Make(this->table, "fresh", &this->out), 1);

    ASSERT_NE(this->out, nullptr);
    EXPECT_EQ(this->out->GetDefaultValue(), Maker<TypeParam>::kValue);
    EXPECT_EQ(this->out->GetValue(), Maker<TypeParam>::kValue);
    EXPECT_EQ(this->log.Take(), Lines());
}

TYPED_TEST(RuntimeParameter, HasTheCrcOfItsNameAsIdAndNoBinding)
{
    static const char name[] = "fresh";
    ASSERT_EQ(Maker<TypeParam>::Make(this->table, name, &this->out), 1);

    const unsigned int id = ParameterId("fresh");
    auto* def = dynamic_cast<TypeParam*>(this->table.FindParameter(id));
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(static_cast<typename Maker<TypeParam>::Interface*>(def), this->out);
    EXPECT_EQ(this->table.GetParameterID("fresh"), id);
    EXPECT_EQ(this->table.GetParameterName(id), name) << "not a copy";
    EXPECT_EQ(this->table.GetParameterCount(), 2);
    EXPECT_EQ(def->GetAssign(), 0);
    EXPECT_EQ(def->GetAssignClass(), 0);
    EXPECT_FALSE(def->IsResetEachFrame());
    EXPECT_EQ(def->GetParamType(), TypeParam().GetParamType());
}

TYPED_TEST(RuntimeParameter, ShowsInTheTreeAsDynamicAndWithItsName)
{
    ASSERT_EQ(Maker<TypeParam>::Make(this->table, "fresh", &this->out), 1);

    const std::string key = std::to_string(ParameterId("fresh"));
    Tessel::KVTable child = this->table.GetKVTable()->GetTable(key.c_str());
    ASSERT_TRUE(static_cast<bool>(child));
    EXPECT_EQ(child->GetUInt("id"), ParameterId("fresh"));
    EXPECT_EQ(child->GetInt("dynamic"), 1);
    EXPECT_EQ(child->FindValue("dynamic")->GetValueType(), Tessel::ValueType_Int);
    EXPECT_STREQ(child->GetString("name"), "fresh");
    EXPECT_STREQ(child->GetString("type"), ParameterTypeName(TypeParam().GetParamType()).c_str());
    EXPECT_NE(child->FindValue("value"), nullptr);
}

TYPED_TEST(RuntimeParameter, IsRefusedWithoutALogLineWhenTheNameIsTaken)
{
    this->out = reinterpret_cast<typename Maker<TypeParam>::Interface*>(this);

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "taken", &this->out), 0);

    EXPECT_EQ(this->out, nullptr);
    EXPECT_EQ(this->log.Take(), Lines());
    EXPECT_EQ(this->table.GetParameterCount(), 1);
    EXPECT_EQ(this->loaded.template Find<ParameterFloatDef>("taken")->GetValue(), 9.0f);
}

TYPED_TEST(RuntimeParameter, IsRefusedASecondTime)
{
    ASSERT_EQ(Maker<TypeParam>::Make(this->table, "fresh", &this->out), 1);

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "fresh", &this->out), 0);

    EXPECT_EQ(this->out, nullptr);
    EXPECT_EQ(this->table.GetParameterCount(), 2);
}

TYPED_TEST(RuntimeParameter, IsRefusedWithANullName)
{
    this->out = reinterpret_cast<typename Maker<TypeParam>::Interface*>(this);

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, nullptr, &this->out), 0);

    EXPECT_EQ(this->out, nullptr);
    EXPECT_EQ(this->log.Take(), Lines());
}

TYPED_TEST(RuntimeParameter, IsRefusedWithANullOutPointer)
{
    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "fresh", nullptr), 0);

    EXPECT_EQ(this->log.Take(), (Lines{ErrorBreak(Maker<TypeParam>::kFunction)}));
    EXPECT_EQ(this->table.GetParameterID("fresh"), 0u);
}

TYPED_TEST(RuntimeParameter, IsRefusedWithTheEmptyNameWhoseCrcIsZero)
{
    this->out = reinterpret_cast<typename Maker<TypeParam>::Interface*>(this);
    ASSERT_EQ(ParameterId(""), 0u);

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "", &this->out), 0);

    EXPECT_EQ(this->out, nullptr);
    EXPECT_EQ(this->log.Take(), (Lines{AssertBreak("vell::ParameterTable::AddParameter")}));
    EXPECT_EQ(this->table.GetParameterCount(), 1);
}

TYPED_TEST(RuntimeParameter, IsRefusedWhenItsCrcIsTheIdOfAnother)
{
    LoadedParameters clash({FloatParameter("other", 2.0).Set(JSON_ID, ParameterId("fresh"))});
    this->log.Clear();
    this->out = reinterpret_cast<typename Maker<TypeParam>::Interface*>(this);

    EXPECT_EQ(Maker<TypeParam>::Make(clash.table, "fresh", &this->out), 0);

    EXPECT_EQ(this->out, nullptr);
    EXPECT_EQ(this->log.Take(), (Lines{AssertBreak("vell::ParameterTable::AddParameter")}));
    EXPECT_STREQ(clash.table.GetParameterName(ParameterId("fresh")), "other");
    EXPECT_EQ(clash.table.GetParameterID("fresh"), ParameterId("fresh")) << "the name stays";
    EXPECT_EQ(Maker<TypeParam>::Make(clash.table, "fresh", &this->out), 0);
    EXPECT_EQ(this->log.Take(), Lines()) << "the name is taken now";
}

TYPED_TEST(RuntimeParameter, ClosesTheTableOfARefusedOne)
{
    const unsigned int open = Tessel::GetOpenTableCount();

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "", &this->out), 0);

    EXPECT_EQ(Tessel::GetOpenTableCount(), open);
}

TYPED_TEST(RuntimeParameter, CanBeMadeInATableThatWasNeverInitialised)
{
    ParameterTable bare;

    ASSERT_EQ(Maker<TypeParam>::Make(bare, "fresh", &this->out), 1);
    EXPECT_EQ(Maker<TypeParam>::Make(bare, "", &this->out), 0);

    EXPECT_EQ(bare.GetParameterCount(), 1);
    EXPECT_NE(bare.FindParameter("fresh"), nullptr);
    bare.Uninit();
}

TYPED_TEST(RuntimeParameter, TakesWhatAToolWrites)
{
    ASSERT_EQ(Maker<TypeParam>::Make(this->table, "fresh", &this->out), 1);
    const std::string key = std::to_string(ParameterId("fresh"));
    Tessel::KVTable child = this->table.GetKVTable()->GetTable(key.c_str());

    if constexpr (std::is_same_v<TypeParam, ParameterMessageDef>)
    {
        child->SetString("value", "by a tool", 1);
        EXPECT_EQ(this->out->GetValue(), "by a tool");
    }
    else
    {
        child->SetFloat("value", 0.0f, 1);
        EXPECT_EQ(this->out->GetValue(), decltype(this->out->GetValue())());
    }
}

TYPED_TEST(RuntimeParameter, StaysUsableAfterTheMachineIsGone)
{
    for (const bool uninit : {false, true})
    {
        auto machine = std::make_unique<HSM>(kStand.c_str());
        ASSERT_EQ(machine->Init(), 1);
        ASSERT_EQ(Maker<TypeParam>::Make(*machine->GetParameterTable(), "fresh", &this->out), 1);
        auto* def = dynamic_cast<ParameterDef*>(this->out);
        const Tessel::KVTable child = def->GetKVTable();
        const void* address = this->out->GetValuePtr();

        if (uninit)
        {
            machine->Uninit();
            machine->Destroy();
        }
        machine.reset();
        this->out->SetValue({});
        EXPECT_EQ(this->out->GetValue(), decltype(this->out->GetValue())());
        this->out->ResetValue();

        EXPECT_EQ(this->out->GetValue(), Maker<TypeParam>::kValue);
        EXPECT_EQ(this->out->GetValuePtr(), address);
        EXPECT_STREQ(def->GetName(), "fresh");
        EXPECT_EQ(Tessel::GetTableName(child), nullptr) << "the table closes with the machine";
    }
}

TYPED_TEST(RuntimeParameter, IsDeletedWhenItIsRefused)
{
    const HeapWatch heap;

    EXPECT_EQ(Maker<TypeParam>::Make(this->table, "", &this->out), 0);
    this->log.Clear();
    const std::ptrdiff_t kept = heap.BlocksKept();
    for (int i = 0; i < 100; ++i)
    {
        EXPECT_EQ(Maker<TypeParam>::Make(this->table, "", &this->out), 0);
        this->log.Clear();
    }

    EXPECT_EQ(heap.BlocksKept(), kept);
}

TYPED_TEST(RuntimeParameter, IsEitherThereOrGoneWhenMemoryRunsOut)
{
    bool isMade = false;
    std::size_t refusals = 0;
    for (; !isMade; ++refusals)
    {
        ASSERT_LT(refusals, 100u);
        LoadedParameters fresh{std::vector<Json>()};
        typename TestFixture::Interface* made = nullptr;
        const unsigned int open = Tessel::GetOpenTableCount();
        try
        {
            HeapWatch heap;
            heap.RefuseAfter(refusals);
            isMade = Maker<TypeParam>::Make(fresh.table, "fresh", &made) != 0;
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_EQ(made, nullptr) << refusals;
        }

        ParameterDef* def = fresh.table.FindParameter(ParameterId("fresh"));
        EXPECT_EQ(Tessel::GetOpenTableCount(), open + (def == nullptr ? 0 : 2)) << refusals;
        EXPECT_EQ(fresh.table.GetParameterCount(), def == nullptr ? 0 : 1) << refusals;
    }
    EXPECT_GT(refusals, 4u);
}

TEST(RuntimeMessage, HasAnEmptyTextForANullOne)
{
    LogRecorder log;
    LoadedParameters loaded{std::vector<Json>()};
    IParameterMessageDef* out = nullptr;

    EXPECT_EQ(loaded.table.CreateMessageParameter("fresh", nullptr, &out), 1);

    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetDefaultValue(), "");
    EXPECT_EQ(out->GetValue(), "");
}

TEST(RuntimeMessage, IsNotMadeWithoutMemoryForIt)
{
    LogRecorder log;
    LoadedParameters loaded{std::vector<Json>()};
    IParameterMessageDef* out = nullptr;
    log.Clear();
    int result = 1;
    {
        HeapWatch heap;
        heap.RefuseAfter(0);
        result = loaded.table.CreateMessageParameter("fresh", "text", &out);
        EXPECT_EQ(heap.Refused(), 1u);
    }

    EXPECT_EQ(result, 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(log.Take(), Lines{ErrorBreak("vell::ParameterTable::CreateMessageParameter")});
    EXPECT_EQ(loaded.table.CreateMessageParameter("fresh", "text", &out), 1);
}

TEST(RuntimeMessage, CopiesItsText)
{
    LogRecorder log;
    LoadedParameters loaded{std::vector<Json>()};
    IParameterMessageDef* out = nullptr;
    std::string text = "first";

    loaded.table.CreateMessageParameter("fresh", text.c_str(), &out);
    text = "other";

    EXPECT_EQ(out->GetValue(), "first");
    EXPECT_EQ(out->GetDefaultValue(), "first");
}

} // namespace vell::test
