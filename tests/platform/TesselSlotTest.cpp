// VELL: data-driven hierarchical state machines.
// tests/platform/TesselSlotTest.cpp: the value of a key while its writer keeps it.
#include <tessel/Slots.h>

#include "platform/tessel/TableHandle.h"
#include "platform/tessel/TableStore.h"
#include "tests/platform/SlotOperations.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;
using vell::test::HeapWatch;
using vell::test::HearNothing;
using vell::test::Slots;

int HearOfTable(void*, opResult, KVTable, const char*)
{
    return 0;
}

/// A table with a float under "value", to which its writer listens alone, and the writer's slot.
struct Written
{
    Written()
    {
        table->SetInt("first", 1, 1);
        table->SetFloat("value", 1.0f, 1);
        *table->GetValueListener("value") = writer.ofKey;
        *table->GetTableListener() = KVListener{nullptr, HearOfTable};
    }
    ~Written()
    {
        Slots().release(&slot);
        CloseTable(table);
    }
    Written(const Written&) = delete;
    Written& operator=(const Written&) = delete;

    bool Bind(ValueType type = ValueType_Float)
    {
        const bool isBound = Slots().bind(&slot, table, "value", type, &writer) != 0;
        EXPECT_EQ(isBound, IsBound());
        return isBound;
    }

    bool IsBound() const
    {
        return slot.value != nullptr;
    }

    template <class Value>
    void Store(const Value& value)
    {
        ASSERT_TRUE(IsBound());
        std::memcpy(slot.bytes, &value, sizeof(value));
    }

    KVTable table = CreateTable("written");
    KVWriter writer{{this, HearNothing}, HearOfTable};
    KVSlot slot{};
};

/// What becomes of a slot.
enum class After
{
    StaysBound,
    MayBeBoundAgain,
    IsRefused ///< it is unbound, and not bound again
};

/// What may happen to the table of a slot. `value` is that of the key afterwards, as a float.
struct Event
{
    const char* name;
    void (*happen)(Written& written);
    After slot;
    float value = 3.0f;
};

constexpr Event kEvents[] = {
    {"nothing", [](Written&) {}, After::StaysBound},
    {"many other keys",
     [](Written& written)
     {
         for (int i = 0; i < 40; ++i)
         {
             written.table->SetInt(("key" + std::to_string(i)).c_str(), i, 1);
         }
     },
     After::StaysBound},
    {"a listener of another key",
     [](Written& written)
     {
         *written.table->GetValueListener("first") = KVListener{nullptr, HearNothing};
     },
     After::StaysBound},
    {"the table is attached elsewhere",
     [](Written& written)
     {
         const KVTable parent = CreateTable("parent");
         parent->AttachTable("child", written.table, 1);
         CloseTable(parent);
     },
     After::StaysBound},
    {"a value of the same type",
     [](Written& written)
     {
         written.table->SetFloat("value", 2.0f, 1);
     },
     After::StaysBound, 2.0f},
    {"an int",
     [](Written& written)
     {
         written.table->SetInt("value", 2, 1);
     },
     After::IsRefused, 2.0f},
    {"a short text",
     [](Written& written)
     {
         written.table->SetString("value", "2", 1);
     },
     After::IsRefused, 0.0f},
    {"a long text",
     [](Written& written)
     {
         written.table->SetString("value", "a text that does not fit into the entry", 1);
     },
     After::IsRefused, 0.0f},
    {"a table",
     [](Written& written)
     {
         written.table->AddTable("value", 1);
     },
     After::IsRefused, 0.0f},
    {"an empty record of the key",
     [](Written& written)
     {
         written.table->GetValueListener("value");
     },
     After::IsRefused},
    {"a listener of the key",
     [](Written& written)
     {
         *written.table->GetValueListener("value") = KVListener{nullptr, HearNothing};
     },
     After::IsRefused},
    {"a listener of the key that was removed",
     [](Written& written)
     {
         const KVListener other{nullptr, HearNothing};
         *written.table->GetValueListener("value") = other;
         written.table->RemoveValueListener("value", &other);
     },
     After::MayBeBoundAgain},
    {"the writer's own listener removed",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.writer.ofKey);
     },
     After::IsRefused},
    {"the writer's own listener removed and added",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.writer.ofKey);
         *written.table->GetValueListener("value") = written.writer.ofKey;
     },
     After::MayBeBoundAgain},
    {"another's listener in the place of the writer's",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.writer.ofKey);
         *written.table->GetValueListener("value") = KVListener{nullptr, HearNothing};
     },
     After::IsRefused},
    {"a function of another's with the writer as its object",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.writer.ofKey);
         *written.table->GetValueListener("value") = KVListener{&written, HearOfTable};
     },
     After::IsRefused},
    {"a listener of another key in the place of the writer's",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.writer.ofKey);
         *written.table->GetValueListener("first") = written.writer.ofKey;
     },
     After::IsRefused},
    {"the slot released",
     [](Written& written)
     {
         Slots().release(&written.slot);
     },
     After::MayBeBoundAgain},
    {"the table's own record asked for",
     [](Written& written)
     {
         written.table->GetTableListener();
     },
     After::IsRefused},
    {"another listener of the table",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{nullptr, HearNothing};
     },
     After::IsRefused},
    {"no listener of the table",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{};
     },
     After::IsRefused},
    {"another object with the writer's function",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{&written, HearOfTable};
     },
     After::IsRefused},
    {"the table closed",
     [](Written& written)
     {
         CloseTable(written.table);
     },
     After::IsRefused, 0.0f},
    {"the table closed, and another one in its slot",
     [](Written& written)
     {
         CloseTable(written.table);
         const KVTable next = CreateTable("written");
         next->SetInt("first", 1, 1);
         next->SetFloat("value", 1.0f, 1);
         *next->GetValueListener("value") = written.writer.ofKey;
         *next->GetTableListener() = KVListener{nullptr, HearOfTable};
         EXPECT_EQ(TableHandle::GetSlot(next), TableHandle::GetSlot(written.table));
         EXPECT_FALSE(written.IsBound());
         EXPECT_FALSE(written.Bind());
         CloseTable(next);
     },
     After::IsRefused, 0.0f},
};

constexpr Float4 kFloats{1.0f, 2.0f, 3.0f, 4.0f};
constexpr Float4 kSevens{7.0f, 7.0f, 7.0f, 7.0f};

/// A type of several floats. `get` gives those of the key, in `out`, and 0 when it has others.
struct FloatsType
{
    ValueType type;
    unsigned count;
    int (*set)(KVTable table, const Float4& value);
    int (*get)(KVTable table, Float4* out);
};

constexpr FloatsType kFloatsTypes[] = {
    {ValueType_Float2, 2,
     [](KVTable table, const Float4& value)
     {
         const Float2 two{value.x, value.y};
         return table->SetFloat2("value", &two, 1);
     },
     [](KVTable table, Float4* out)
     {
         return table->GetFloat2("value", reinterpret_cast<Float2*>(out));
     }},
    {ValueType_Float3, 3,
     [](KVTable table, const Float4& value)
     {
         const Float3 three{value.x, value.y, value.z};
         return table->SetFloat3("value", &three, 1);
     },
     [](KVTable table, Float4* out)
     {
         return table->GetFloat3("value", reinterpret_cast<Float3*>(out));
     }},
    {ValueType_Float4, 4,
     [](KVTable table, const Float4& value)
     {
         return table->SetFloat4("value", &value, 1);
     },
     [](KVTable table, Float4* out)
     {
         return table->GetFloat4("value", out);
     }},
};

std::vector<float> First(const Float4& floats, unsigned count)
{
    const std::vector<float> all{floats.x, floats.y, floats.z, floats.w};
    return {all.begin(), all.begin() + count};
}

/// Gives the key's floats, which no other type of floats finds.
std::vector<float> Read(KVTable table, const FloatsType& wanted)
{
    Float4 out{};
    for (const FloatsType& type : kFloatsTypes)
    {
        Float4 read{};
        EXPECT_EQ(type.get(table, &read), type.type == wanted.type ? 1 : 0);
        out = type.type == wanted.type ? read : out;
    }
    return First(out, wanted.count);
}

} // namespace

TEST(TesselSlot, IsBoundWhileNobodyElseCouldHearOfAWrite)
{
    for (const Event& event : kEvents)
    {
        SCOPED_TRACE(event.name);
        Written written;
        ASSERT_TRUE(written.Bind());
        written.Store(3.0f);
        const KVValue* const value = written.table->FindValue("value");

        event.happen(written);

        EXPECT_EQ(written.IsBound(), event.slot == After::StaysBound);
        EXPECT_EQ(written.table->GetFloat("value"), event.value);
        EXPECT_EQ(written.Bind(), event.slot != After::IsRefused);
        EXPECT_EQ(written.table->GetFloat("value"), event.value);
        if (Tessel::GetTableName(written.table) != nullptr)
        {
            EXPECT_EQ(written.table->FindValue("value"), value);
        }
    }
}

TEST(TesselSlot, IsReadAndWrittenByTheOperationsOfTheTable)
{
    Written written;
    ASSERT_TRUE(written.Bind());
    written.Store(-2.5f);
    const KVValue* value = written.table->FindValue("value");

    EXPECT_EQ(value, written.slot.value);
    EXPECT_EQ(value->GetValueType(), ValueType_Float);
    EXPECT_EQ(written.table->GetTypeAt(1), ValueType_Float);
    EXPECT_EQ(value->GetFloatValue(), -2.5f);
    EXPECT_EQ(value->GetIntValue(), -2);
    EXPECT_EQ(value->GetUIntValue(), static_cast<unsigned>(-2));
    EXPECT_EQ(value->GetStringValue(), nullptr);
    Float2 two{};
    EXPECT_EQ(value->GetFloat2Value(&two), 0);
    EXPECT_FALSE(written.table->GetTable("value"));

    EXPECT_EQ(written.table->SetFloat("value", 9.5f, 1), 1);
    float stored = 0.0f;
    std::memcpy(&stored, written.slot.bytes, sizeof(stored));
    EXPECT_EQ(stored, 9.5f);
}

TEST(TesselSlot, OfAnIntIsReadAsEveryNumber)
{
    Written written;
    written.table->SetInt("value", 1, 1);
    EXPECT_FALSE(written.Bind(ValueType_Float));
    ASSERT_TRUE(written.Bind(ValueType_Int));

    written.Store(-5);

    EXPECT_EQ(written.table->GetInt("value"), -5);
    EXPECT_EQ(written.table->GetUInt("value"), static_cast<unsigned>(-5));
    EXPECT_EQ(written.table->GetFloat("value"), -5.0f);
    EXPECT_EQ(written.table->GetTypeAt(1), ValueType_Int);
    EXPECT_EQ(written.table->SetInt("value", 6, 1), 1);
    EXPECT_TRUE(written.IsBound());
    EXPECT_EQ(written.table->GetInt("value"), 6);
}

TEST(TesselSlot, HasTwoToFourFloats)
{
    for (const FloatsType& floats : kFloatsTypes)
    {
        SCOPED_TRACE(floats.count);
        Written written;
        ASSERT_EQ(floats.set(written.table, kSevens), 1);
        ASSERT_TRUE(written.Bind(floats.type));
        EXPECT_EQ(written.table->GetInt("value"), 0);
        EXPECT_EQ(written.table->GetUInt("value"), 0u);
        EXPECT_EQ(written.table->GetFloat("value"), 0.0f);

        written.Store(kFloats);

        EXPECT_EQ(Read(written.table, floats), First(kFloats, floats.count));
        Slots().release(&written.slot);
        EXPECT_EQ(Read(written.table, floats), First(kFloats, floats.count));
    }
}

TEST(TesselSlot, TakesWritesOfAsManyFloatsAndIsUnboundByOthers)
{
    for (const FloatsType& floats : kFloatsTypes)
    {
        SCOPED_TRACE(floats.count);
        Written written;
        ASSERT_EQ(floats.set(written.table, kFloats), 1);
        ASSERT_TRUE(written.Bind(floats.type));

        EXPECT_EQ(floats.set(written.table, kSevens), 1);
        EXPECT_TRUE(written.IsBound());
        EXPECT_EQ(Read(written.table, floats), First(kSevens, floats.count));

        const FloatsType& other = kFloatsTypes[floats.count == 2 ? 1 : 0];
        EXPECT_EQ(other.set(written.table, kFloats), 1);
        EXPECT_FALSE(written.IsBound());
        EXPECT_EQ(Read(written.table, other), First(kFloats, other.count));
    }
}

TEST(TesselSlot, TakesNoMemoryForFloatsInPlaceOfOthers)
{
    Written written;
    const Float2 two{1.0f, 2.0f};
    const Float3 three{4.0f, 5.0f, 6.0f};
    written.table->SetFloat2("value", &two, 1);
    ASSERT_TRUE(written.Bind(ValueType_Float2));
    int result = 0;

    const HeapWatch heap;
    result = written.table->SetFloat3("value", &three, 1);

    EXPECT_EQ(heap.News() + heap.Mallocs(), 0u);
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(written.IsBound());
    Float3 out{};
    EXPECT_EQ(written.table->GetFloat3("value", &out), 1);
    EXPECT_EQ(out.z, 6.0f);
}

TEST(TesselSlot, GivesBackTheMemoryOfItsKey)
{
    const Float2 two{1.0f, 2.0f};
    using Write = void (*)(KVTable table);
    const Write writes[] = {[](KVTable table)
                            {
                                table->SetInt("value", 1, 1);
                            },
                            [](KVTable table)
                            {
                                table->SetString("value", "short", 1);
                            },
                            [](KVTable table)
                            {
                                table->SetString("value", "longer than six", 1);
                            },
                            [](KVTable table)
                            {
                                table->AddTable("value", 1);
                            },
                            [](KVTable table)
                            {
                                CloseTable(table);
                            }};
    for (const Write& write : writes)
    {
        { // Whatever a first table leaves for later ones.
            Written written;
            write(written.table);
        }
        const HeapWatch heap;
        {
            Written written;
            written.table->SetFloat2("value", &two, 1);
            ASSERT_TRUE(written.Bind(ValueType_Float2));
            write(written.table);
            EXPECT_FALSE(written.IsBound());
        }
        EXPECT_EQ(heap.BlocksKept(), 0) << (&write - writes);
    }
}

TEST(TesselSlot, IsBoundToOneKeyAndAKeyToOneSlot)
{
    Written written;
    Written other;
    ASSERT_TRUE(written.Bind());
    written.Store(3.0f);
    KVSlot second{};

    EXPECT_EQ(Slots().bind(&second, written.table, "value", ValueType_Float, &written.writer), 0);
    EXPECT_EQ(second.value, nullptr);
    EXPECT_TRUE(written.IsBound());

    EXPECT_EQ(Slots().bind(&written.slot, other.table, "value", ValueType_Float, &other.writer), 1);
    written.Store(5.0f);
    EXPECT_EQ(written.table->GetFloat("value"), 3.0f);
    EXPECT_EQ(other.table->GetFloat("value"), 5.0f);
    Slots().release(&written.slot);
    Slots().release(&written.slot);
    EXPECT_EQ(other.table->GetFloat("value"), 5.0f);
}

TEST(TesselSlot, IsNotBoundWithoutAValueThatIsListenedTo)
{
    Written written;
    KVSlot slot{};
    const auto bind = [&](KVTable table, const char* key, ValueType type)
    {
        return Slots().bind(&slot, table, key, type, &written.writer);
    };
    *written.table->GetValueListener("later") = written.writer.ofKey;
    *written.table->GetValueListener("unsigned") = written.writer.ofKey;
    *written.table->GetValueListener("text") = written.writer.ofKey;
    written.table->SetUInt("unsigned", 1, 1);
    written.table->SetString("text", "words", 1);
    const KVTable unheard = CreateTable("unheard");
    unheard->SetFloat("value", 1.0f, 1);

    EXPECT_EQ(bind(written.table, "later", ValueType_Float), 0);
    EXPECT_EQ(bind(written.table, "first", ValueType_Int), 0);
    EXPECT_EQ(bind(written.table, "unsigned", ValueType_UInt), 0);
    EXPECT_EQ(bind(written.table, "text", ValueType_Text), 0);
    EXPECT_EQ(bind(written.table, "value", ValueType_Int), 0);
    EXPECT_EQ(bind(written.table, nullptr, ValueType_Float), 0);
    EXPECT_EQ(bind(KVTable(), "value", ValueType_Float), 0);
    EXPECT_EQ(bind(unheard, "value", ValueType_Float), 0);
    CloseTable(unheard);
    EXPECT_EQ(bind(unheard, "value", ValueType_Float), 0);
    EXPECT_EQ(slot.value, nullptr);
    EXPECT_EQ(bind(written.table, "value", ValueType_Float), 1);
    Slots().release(&slot);
}

TEST(TesselSlot, OfAWriterThatDoesNotListenToTheTableIsRefusedOnceTheTablesRecordIsGiven)
{
    for (const bool isGiven : {false, true})
    {
        const KVTable table = CreateTable("table");
        const KVWriter writer{{nullptr, HearNothing}, nullptr};
        table->SetInt("value", 1, 1);
        *table->GetValueListener("value") = writer.ofKey;
        if (isGiven)
        {
            table->GetTableListener();
        }
        KVSlot slot{};

        EXPECT_EQ(Slots().bind(&slot, table, "value", ValueType_Int, &writer), isGiven ? 0 : 1);

        CloseTable(table);
        EXPECT_EQ(slot.value, nullptr);
    }
}

TEST(TesselSlot, IsUnboundWithAllOthersOfItsTableWhenTheTablesRecordIsAskedFor)
{
    Written written;
    written.table->SetInt("second", 4, 1);
    *written.table->GetValueListener("second") = written.writer.ofKey;
    KVSlot second{};
    ASSERT_TRUE(written.Bind());
    ASSERT_EQ(Slots().bind(&second, written.table, "second", ValueType_Int, &written.writer), 1);

    written.table->GetTableListener();

    EXPECT_FALSE(written.IsBound());
    EXPECT_EQ(second.value, nullptr);
    EXPECT_EQ(written.table->GetInt("second"), 4);
}
