// VELL: data-driven hierarchical state machines.
// tests/platform/TesselSlotTest.cpp: writes to a key that was found before.
#include <tessel/Slots.h>

#include "platform/tessel/TableHandle.h"
#include "platform/tessel/TableStore.h"
#include "tests/platform/SlotOperations.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;
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
        *table->GetValueListener("value") = own;
        *table->GetTableListener() = KVListener{nullptr, HearOfTable};
        slot.own = own;
        slot.ownOfTable = HearOfTable;
        Find();
    }
    ~Written()
    {
        CloseTable(table);
    }
    Written(const Written&) = delete;
    Written& operator=(const Written&) = delete;

    int Find()
    {
        return Slots().find(&slot, table, "value");
    }

    KVTable table = CreateTable("written");
    KVListener own{this, HearNothing};
    KVSlot slot{};
};

/// What may happen to the table of a slot, and whether the slot takes a float afterwards.
struct Event
{
    const char* name;
    void (*happen)(Written& written);
    bool isTaken;
};

constexpr Event kEvents[] = {
    {"nothing", [](Written&) {}, true},
    {"many other keys",
     [](Written& written)
     {
         for (int i = 0; i < 40; ++i)
         {
             written.table->SetInt(("key" + std::to_string(i)).c_str(), i, 1);
         }
     },
     true},
    {"a listener of another key",
     [](Written& written)
     {
         *written.table->GetValueListener("first") = KVListener{nullptr, HearNothing};
     },
     true},
    {"the table is attached elsewhere",
     [](Written& written)
     {
         const KVTable parent = CreateTable("parent");
         parent->AttachTable("child", written.table, 1);
         CloseTable(parent);
     },
     true},
    {"a value of the same type",
     [](Written& written)
     {
         written.table->SetFloat("value", 2.0f, 1);
     },
     true},
    {"an int",
     [](Written& written)
     {
         written.table->SetInt("value", 2, 1);
     },
     false},
    {"a short text",
     [](Written& written)
     {
         written.table->SetString("value", "2", 1);
     },
     false},
    {"a long text",
     [](Written& written)
     {
         written.table->SetString("value", "a text that does not fit into the entry", 1);
     },
     false},
    {"a table",
     [](Written& written)
     {
         written.table->AddTable("value", 1);
     },
     false},
    {"an empty record of the key",
     [](Written& written)
     {
         written.table->GetValueListener("value");
     },
     false},
    {"a listener of the key",
     [](Written& written)
     {
         *written.table->GetValueListener("value") = KVListener{nullptr, HearNothing};
     },
     false},
    {"a listener of the key that was removed",
     [](Written& written)
     {
         const KVListener other{nullptr, HearNothing};
         *written.table->GetValueListener("value") = other;
         written.table->RemoveValueListener("value", &other);
     },
     true},
    {"the writer's own listener removed",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.own);
     },
     false},
    {"the writer's own listener removed and added",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.own);
         *written.table->GetValueListener("value") = written.own;
     },
     true},
    {"another's listener in the place of the writer's",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.own);
         *written.table->GetValueListener("value") = KVListener{nullptr, HearNothing};
     },
     false},
    {"a function of another's with the writer as its object",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.own);
         *written.table->GetValueListener("value") = KVListener{&written, HearOfTable};
     },
     false},
    {"a listener of another key in the place of the writer's",
     [](Written& written)
     {
         written.table->RemoveValueListener("value", &written.own);
         *written.table->GetValueListener("first") = written.own;
     },
     false},
    {"another listener of the table",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{nullptr, HearNothing};
     },
     false},
    {"no listener of the table",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{};
     },
     false},
    {"another object with the writer's function",
     [](Written& written)
     {
         *written.table->GetTableListener() = KVListener{&written, HearOfTable};
     },
     true},
    {"the table closed",
     [](Written& written)
     {
         CloseTable(written.table);
     },
     false},
    {"the table closed, and another one in its slot",
     [](Written& written)
     {
         CloseTable(written.table);
         const KVTable next = CreateTable("written");
         next->SetInt("first", 1, 1);
         next->SetFloat("value", 1.0f, 1);
         *next->GetValueListener("value") = written.own;
         *next->GetTableListener() = KVListener{nullptr, HearOfTable};
         EXPECT_EQ(TableHandle::GetSlot(next), TableHandle::GetSlot(written.table));
         EXPECT_EQ(Slots().setFloat(&written.slot, 7.0f), 0);
         EXPECT_EQ(next->GetFloat("value"), 1.0f);
         CloseTable(next);
     },
     false},
};

} // namespace

TEST(TesselSlot, TakesAValueWhileNobodyElseCouldHearOfIt)
{
    for (const Event& event : kEvents)
    {
        for (const bool isWrittenBefore : {false, true})
        {
            SCOPED_TRACE(event.name);
            Written written;
            if (isWrittenBefore)
            {
                EXPECT_EQ(Slots().setFloat(&written.slot, 3.0f), 1);
            }
            event.happen(written);
            const int typeBefore = written.table->GetTypeAt(1);
            const float before = written.table->GetFloat("value");

            const int result = Slots().setFloat(&written.slot, 7.0f);

            EXPECT_EQ(result, event.isTaken ? 1 : 0);
            EXPECT_EQ(written.table->GetFloat("value"), event.isTaken ? 7.0f : before);
            EXPECT_EQ(written.table->GetTypeAt(1), typeBefore);
        }
    }
}

TEST(TesselSlot, TakesEachTypeInPlaceOfTheSameType)
{
    Written written;
    const Float2 two{1.0f, 2.0f};
    const Float3 three{1.0f, 2.0f, 3.0f};
    const Float4 four{1.0f, 2.0f, 3.0f, 4.0f};

    written.table->SetInt("value", 1, 1);
    EXPECT_EQ(Slots().setInt(&written.slot, -5), 1);
    EXPECT_EQ(written.table->GetInt("value"), -5);
    EXPECT_EQ(Slots().setFloat2(&written.slot, &two), 0);

    written.table->SetFloat2("value", &two, 1);
    const Float2 newTwo{5.0f, 6.0f};
    Float2 readTwo{};
    EXPECT_EQ(Slots().setFloat2(&written.slot, &newTwo), 1);
    EXPECT_EQ(written.table->GetFloat2("value", &readTwo), 1);
    EXPECT_EQ(std::memcmp(&readTwo, &newTwo, sizeof(newTwo)), 0);
    EXPECT_EQ(Slots().setFloat3(&written.slot, &three), 0);

    written.table->SetFloat3("value", &three, 1);
    const Float3 newThree{5.0f, 6.0f, 7.0f};
    Float3 readThree{};
    EXPECT_EQ(Slots().setFloat3(&written.slot, &newThree), 1);
    EXPECT_EQ(written.table->GetFloat3("value", &readThree), 1);
    EXPECT_EQ(std::memcmp(&readThree, &newThree, sizeof(newThree)), 0);
    EXPECT_EQ(Slots().setFloat4(&written.slot, &four), 0);

    written.table->SetFloat4("value", &four, 1);
    const Float4 newFour{5.0f, 6.0f, 7.0f, 8.0f};
    Float4 readFour{};
    EXPECT_EQ(Slots().setFloat4(&written.slot, &newFour), 1);
    EXPECT_EQ(written.table->GetFloat4("value", &readFour), 1);
    EXPECT_EQ(std::memcmp(&readFour, &newFour, sizeof(newFour)), 0);
    EXPECT_EQ(Slots().setInt(&written.slot, 1), 0);
}

TEST(TesselSlot, IsNotFoundWithoutAKeyThatIsListenedTo)
{
    Written written;
    KVSlot slot = written.slot;

    EXPECT_EQ(Slots().find(&slot, written.table, "other"), 0);
    EXPECT_EQ(slot.value, nullptr);
    EXPECT_EQ(slot.table, written.table);
    EXPECT_EQ(Slots().setFloat(&slot, 7.0f), 0);

    EXPECT_EQ(Slots().find(&slot, written.table, nullptr), 0);
    EXPECT_EQ(Slots().find(&slot, KVTable(), "value"), 0);
    EXPECT_EQ(Slots().setFloat(&slot, 7.0f), 0);

    const KVTable unheard = CreateTable("unheard");
    unheard->SetFloat("value", 1.0f, 1);
    EXPECT_EQ(Slots().find(&slot, unheard, "value"), 0);
    CloseTable(unheard);
    EXPECT_EQ(Slots().find(&slot, unheard, "value"), 0);
}

TEST(TesselSlot, ThatWasNeverLookedForTakesNothing)
{
    const KVSlot slot{};

    EXPECT_EQ(Slots().setInt(&slot, 1), 0);
    EXPECT_EQ(Slots().setFloat(&slot, 1.0f), 0);
}
