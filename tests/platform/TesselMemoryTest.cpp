// VELL: data-driven hierarchical state machines.
// tests/platform/TesselMemoryTest.cpp: what the key/value tables allocate and give back.
#include <tessel/Tessel.h>

#include "platform/tessel/Key.h"
#include "platform/tessel/Table.h"
#include "platform/tessel/TableHandle.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#if defined(VELL_SANITIZER)
// Of the sanitizers' run-time library; not every compiler brings its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace
{

using namespace Tessel;

/// Gives the bytes that are allocated in all.
std::size_t GetHeapBytes()
{
#if defined(VELL_SANITIZER)
    return __sanitizer_get_current_allocated_bytes();
#elif defined(_WIN32)
    std::size_t bytes = 0;
    _HEAPINFO block{};
    while (_heapwalk(&block) == _HEAPOK)
    {
        bytes += block._useflag == _USEDENTRY ? block._size : 0;
    }
    return bytes;
#else
    // Blocks that the allocator keeps at hand for the thread count as allocated, see kSlack.
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

/// How far the bytes may move without a leak; one block a round would come to far more.
#if defined(VELL_SANITIZER)
constexpr std::size_t kSlack = 0;
#else
constexpr std::size_t kSlack = 4096;
#endif

KVTable CreateWithThreeKeys()
{
    const KVTable table = CreateTable("three");
    table->SetInt("id", 1, 1);
    table->SetString("type", "float", 1);
    table->SetFloat("value", 1.0f, 1);
    return table;
}

/// Makes the shapes of these tests known before another test uses up the space for shapes.
const bool areShapesKnown = []
{
    CloseTable(CreateWithThreeKeys());
    CloseTable(CreateTable("grows"));
    return true;
}();

int Ignore(void*, opResult, KVTable, const char*)
{
    return 0;
}

/// Uses every part of a table, and leaves it open.
KVTable MakeFullTable()
{
    const KVTable table = CreateTable("7 a name that is not shared by other tables");
    for (int i = 0; i < 50; ++i)
    {
        table->SetInt(std::to_string(i).c_str(), i, 1);
        *table->GetValueListener(std::to_string(i).c_str()) = KVListener{nullptr, &Ignore};
        table->PushUInt(1, 1);
    }
    table->SetString("text", "a text that does not fit into its entry", 1);
    table->SetString("text", "a longer text that does not fit into its entry either", 1);
    table->SetString("gone", "a text that does not fit into its entry", 1);
    table->SetInt("gone", 1, 1);
    table->AddTable("child", 1)->AddTable("grandchild", 1)->SetInt("12", 1, 1);
    *table->GetTableListener() = KVListener{nullptr, &Ignore};
    return table;
}

TEST(TableMemory, ComesBackWhenTheTableIsClosed)
{
    CloseTable(MakeFullTable());
    const std::size_t before = GetHeapBytes();

    for (int i = 0; i < 1000; ++i)
    {
        CloseTable(MakeFullTable());
    }

    EXPECT_LE(GetHeapBytes(), before + kSlack);
}

TEST(TableMemory, OfThreeShortKeysIsLessThan100Bytes)
{
    ASSERT_TRUE(areShapesKnown);
    constexpr std::size_t kTables = 1000;
    std::vector<KVTable> tables(kTables);
    const auto makeAll = [&]
    {
        std::generate(tables.begin(), tables.end(), CreateWithThreeKeys);
    };
    const auto closeAll = [&]
    {
        for (KVTable table : tables)
        {
            CloseTable(table);
        }
    };
    makeAll();
    closeAll();
    const std::size_t before = GetHeapBytes();

    makeAll();

    EXPECT_LE(GetHeapBytes(), before + kSlack) << "the slots are there, and all is in them";
    EXPECT_LT(Table::GetSize(3), 100u);
    closeAll();
}

TEST(TableMemory, DoesNotGrowWithRewritesPushesAndListeners)
{
    const KVTable table = MakeFullTable();
    int object = 0;
    const KVListener listener{&object, &Ignore};
    const auto churn = [&](int count)
    {
        for (int i = 0; i < count; ++i)
        {
            *table->GetValueListener("text") = listener;
            table->SetString("text", std::string(static_cast<std::size_t>(i % 40), 'x').c_str(), 1);
            table->RemoveValueListener("text", &listener);
            table->PushUInt(1, 1);
            table->RemoveAt(static_cast<unsigned>(i) % table->GetCount(), 1);
            table->AddTable("child", 1)->SetInt("id", i, 1);
            table->SetString("text", "a text that has the same length in each round", 1);
        }
    };
    churn(100);
    const std::size_t before = GetHeapBytes();

    churn(100000);

    EXPECT_LE(GetHeapBytes(), before + kSlack);
    CloseTable(table);
}

TEST(TableMemory, DoesNotGrowWithListenersOnEverNewKeys)
{
    const KVTable table = CreateTable("churn");
    const KVListener listener{nullptr, &Ignore};
    const auto churn = [&](unsigned first, unsigned last)
    {
        for (unsigned i = first; i < last; ++i)
        {
            const std::string key = std::to_string(i);
            *table->GetValueListener(key.c_str()) = listener;
            table->RemoveValueListener(key.c_str(), &listener);
        }
    };
    churn(0, 100);
    const std::size_t before = GetHeapBytes();

    churn(1000, 50000);

    EXPECT_LE(GetHeapBytes(), before + kSlack);
    CloseTable(table);
}

TEST(TableMemory, DoesNotGrowWithEverNewIdsAsKeys)
{
    const auto churn = [](unsigned first, unsigned last)
    {
        for (unsigned i = first; i < last; ++i)
        {
            const KVTable table = CreateTable(std::to_string(i).c_str());
            table->AddTable(std::to_string(i + 1).c_str(), 1);
            CloseTable(table);
        }
    };
    churn(4000000000u, 4000000100u);
    const std::size_t before = GetHeapBytes();
    const std::uint32_t shared = Key::GetSharedCount();

    churn(4100000000u, 4100200000u);

    EXPECT_LE(GetHeapBytes(), before + kSlack);
    EXPECT_EQ(Key::GetSharedCount(), shared);
}

TEST(TableKeys, AreSharedUpToABoundAndWorkBeyondIt)
{
    const KVTable table = CreateTable("names");
    const auto getName = [](unsigned i)
    {
        return "a name of many " + std::to_string(i);
    };
    constexpr unsigned kNames = 3 * Key::kMaxShared;

    for (unsigned i = 0; i < kNames; ++i)
    {
        table->SetUInt(getName(i).c_str(), i, 1);
    }

    EXPECT_LE(Key::GetSharedCount(), Key::kMaxShared);
    for (unsigned i = 0; i < kNames; ++i)
    {
        ASSERT_EQ(table->GetUInt(getName(i).c_str()), i);
    }
    CloseTable(table);
}

TEST(TableKeys, ThatAreWorthItAreTheSameForAllTables)
{
    const Key* name = Key::Acquire(KeyText("id"));
    const Key* again = Key::Acquire(KeyText("id"));
    const Key* number = Key::Acquire(KeyText("42"));
    const Key* sameNumber = Key::Acquire(KeyText("42"));

    EXPECT_EQ(name, again);
    EXPECT_TRUE(name->IsShared());
    EXPECT_NE(number, sameNumber);
    EXPECT_FALSE(number->IsShared());
    EXPECT_STREQ(name->GetText(), "id");
    EXPECT_STREQ(number->GetText(), "42");

    Key::Release(name);
    Key::Release(again);
    Key::Release(number);
    Key::Release(sameNumber);
    Key::Release(nullptr);
    EXPECT_EQ(Key::Acquire(KeyText("id")), name);
}

/// What a listener does inside its call: install others and remove them again.
struct ComingAndGoing
{
    static int Call(void* object, opResult, KVTable table, const char* key)
    {
        ComingAndGoing& self = *static_cast<ComingAndGoing*>(object);
        if (!self.isInside)
        {
            self.isInside = true;
            self.act(self, table, key);
            self.isInside = false;
        }
        return 0;
    }

    static int Leave(void* object, opResult, KVTable table, const char* key)
    {
        const KVListener own{object, &Leave};
        table->RemoveValueListener(key, &own);
        return 0;
    }

    KVListener GetListener()
    {
        return KVListener{this, &Call};
    }

    void (*act)(ComingAndGoing& self, KVTable table, const char* key);
    bool isInside = false;
    unsigned round = 0;
};

struct ComingAndGoingCase
{
    const char* name;
    void (*act)(ComingAndGoing& self, KVTable table, const char* key);
};

const ComingAndGoingCase kComingAndGoing[] = {
    {"reinstalls itself",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         const KVListener own = self.GetListener();
         table->RemoveValueListener(key, &own);
         *table->GetValueListener(key) = own;
     }},
    {"installs another, which is gone before it is called",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         const KVListener other{&self, &Ignore};
         *table->GetValueListener(key) = other;
         table->RemoveValueListener(key, &other);
     }},
    {"installs another, which leaves in the next call",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         *table->GetValueListener(key) = KVListener{&self, &ComingAndGoing::Leave};
     }},
    {"installs a hundred, which go from the last on",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         ComingAndGoing others[100] = {};
         for (ComingAndGoing& other : others)
         {
             *table->GetValueListener(key) = KVListener{&other, &Ignore};
         }
         for (std::size_t i = 100; i-- > 0;)
         {
             const KVListener other{&others[i], &Ignore};
             table->RemoveValueListener(key, &other);
         }
         ++self.round;
     }},
    {"installs one on a key that was never seen",
     [](ComingAndGoing& self, KVTable table, const char*)
     {
         char name[20];
         std::snprintf(name, sizeof(name), "%u", 1000000 + self.round++);
         const KVListener other{&self, &Ignore};
         *table->GetValueListener(name) = other;
         table->RemoveValueListener(name, &other);
     }},
    {"writes, and another leaves inside the inner call",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         *table->GetValueListener(key) = KVListener{&self, &ComingAndGoing::Leave};
         table->SetInt(key, 1, 1);
     }},
    {"gives the table a listener of its own and takes it away",
     [](ComingAndGoing& self, KVTable table, const char*)
     {
         const KVListener before = *table->GetTableListener();
         *table->GetTableListener() = KVListener{&self, &Ignore};
         *table->GetTableListener() = before;
     }},
    {"puts a table with a listener in place of the last one",
     [](ComingAndGoing& self, KVTable table, const char*)
     {
         const KVTable child = table->AddTable("child", 1);
         *child->GetValueListener("value") = KVListener{&self, &Ignore};
         *child->GetTableListener() = KVListener{&self, &Ignore};
     }},
    {"throws with one gone",
     [](ComingAndGoing& self, KVTable table, const char* key)
     {
         *table->GetValueListener(key) = KVListener{&self, &ComingAndGoing::Leave};
         const KVListener other{&self, &ComingAndGoing::Leave};
         table->RemoveValueListener(key, &other);
         self.isInside = false;
         throw 1;
     }},
};

/// Writes a value of another kind each time.
void WriteEachKind(KVTable table, unsigned round)
{
    const Float2 two{1, 2};
    const Float3 three{1, 2, 3};
    const Float4 four{1, 2, 3, 4};
    switch (round % 8)
    {
    case 0:
        table->SetInt("value", 1, 1);
        break;
    case 1:
        table->SetUInt("value", 1, 1);
        break;
    case 2:
        table->SetFloat("value", 1, 1);
        break;
    case 3:
        table->SetFloat2("value", &two, 1);
        break;
    case 4:
        table->SetFloat3("value", &three, 1);
        break;
    case 5:
        table->SetFloat4("value", &four, 1);
        break;
    case 6:
        table->SetString("value", "short", 1);
        break;
    default:
        table->SetString("value", "a text that does not fit into its entry", 1);
        break;
    }
}

TEST(TableMemory, IsFlatWhileListenersComeAndGoInsideCalls)
{
    for (const ComingAndGoingCase& each : kComingAndGoing)
    {
        for (const bool isOfTable : {false, true})
        {
            SCOPED_TRACE(std::string(isOfTable ? "the table's: " : "a key's: ") + each.name);
            const KVTable table = CreateTable("churn");
            ComingAndGoing listener{each.act};
            *(isOfTable ? table->GetTableListener() : table->GetValueListener("value")) =
                listener.GetListener();
            const auto write = [&](unsigned count)
            {
                for (unsigned i = 0; i < count; ++i)
                {
                    try
                    {
                        WriteEachKind(table, i);
                    }
                    catch (int)
                    {
                    }
                }
            };
            write(80);

            std::ptrdiff_t kept = 0;
            std::size_t most = 0;
            {
                const vell::test::HeapWatch heap;
                write(1000);
                kept = heap.BlocksKept();
                most = heap.MostBytes();
            }

            EXPECT_EQ(kept, 0);
            EXPECT_LT(most, 32768u) << "the largest of them is the index of a hundred";
            CloseTable(table);
        }
    }
}

const std::string kLongKey = "a key too long to be shared " + std::string(200, 'x');

struct RefusedCase
{
    const char* name;
    void (*make)(KVTable table, KVTable other);
    std::size_t leastRefused;
};

const RefusedCase kRefused[] = {
    {"CreateTable",
     [](KVTable, KVTable)
     {
         CloseTable(CreateTable(kLongKey.c_str()));
     },
     1},
    {"AddTable",
     [](KVTable t, KVTable)
     {
         t->AddTable(kLongKey.c_str(), 1);
     },
     3},
    {"AddTable, key there",
     [](KVTable t, KVTable)
     {
         t->AddTable(kLongKey.c_str() + 1, 1);
     },
     1},
    {"AttachTable",
     [](KVTable t, KVTable o)
     {
         t->AttachTable(kLongKey.c_str(), o, 1);
     },
     2},
    {"SetInt",
     [](KVTable t, KVTable)
     {
         t->SetInt(kLongKey.c_str(), 1, 1);
     },
     2},
    {"SetUInt",
     [](KVTable t, KVTable)
     {
         t->SetUInt(kLongKey.c_str(), 1, 1);
     },
     2},
    {"SetFloat",
     [](KVTable t, KVTable)
     {
         t->SetFloat(kLongKey.c_str(), 1, 1);
     },
     2},
    {"SetFloat2",
     [](KVTable t, KVTable)
     {
         const Float2 two{1, 2};
         t->SetFloat2(kLongKey.c_str(), &two, 1);
     },
     2},
    {"SetFloat3",
     [](KVTable t, KVTable)
     {
         const Float3 three{1, 2, 3};
         t->SetFloat3(kLongKey.c_str(), &three, 1);
     },
     2},
    {"SetFloat4",
     [](KVTable t, KVTable)
     {
         const Float4 four{1, 2, 3, 4};
         t->SetFloat4(kLongKey.c_str(), &four, 1);
     },
     2},
    {"SetString",
     [](KVTable t, KVTable)
     {
         t->SetString(kLongKey.c_str(), "short", 1);
     },
     2},
    {"SetString, a long text",
     [](KVTable t, KVTable)
     {
         t->SetString(kLongKey.c_str(), kLongKey.c_str(), 1);
     },
     3},
    {"SetString over a table",
     [](KVTable t, KVTable)
     {
         t->SetString("child", kLongKey.c_str(), 1);
     },
     1},
    {"SetString over a text",
     [](KVTable t, KVTable)
     {
         t->SetString("text", kLongKey.c_str(), 1);
     },
     1},
    {"PushUInt",
     [](KVTable t, KVTable)
     {
         t->PushUInt(5, 1);
     },
     2},
    {"GetValueListener",
     [](KVTable t, KVTable)
     {
         t->GetValueListener(kLongKey.c_str());
     },
     2},
    {"GetTableListener",
     [](KVTable, KVTable o)
     {
         o->GetTableListener();
     },
     1},
};

/// Counts its calls.
int CountCall(void* object, opResult, KVTable, const char*)
{
    ++*static_cast<int*>(object);
    return 0;
}

/// Gives the slot that the next table gets.
std::uint32_t GetNextSlot()
{
    CloseTable(CreateTable("a")); // the first one of a name has more room than it needs
    const KVTable next = CreateTable("a");
    const std::uint32_t slot = TableHandle::GetSlot(next);
    CloseTable(next);
    return slot;
}

/// The table that a case runs on.
struct RefusedTable
{
    bool isHeard;
    bool hasOwnKeys; ///< before the case, otherwise they are shared
};

/// Runs `each` on a new table with its block of memory after the next `after` refused. False when
/// it came through.
bool IsRefused(const RefusedCase& each, std::size_t after, const RefusedTable& kind)
{
    // The next table of the name has room for as many keys, and needs a block for one more.
    const KVTable last = CreateTable("parent");
    for (const char* key : {"one", "two", "three"})
    {
        last->SetInt(key, 1, 1);
    }
    CloseTable(last);
    const KVTable table = CreateTable("parent");
    const KVTable other = CreateTable("other");
    int calls = 0;
    table->SetString(kind.hasOwnKeys ? kLongKey.substr(1).c_str() : "shared", "short", 1);
    table->AddTable("child", 1)->SetInt("id", 1, 1);
    table->SetString("text", "a text that does not fit", 1);
    for (unsigned i = 1; i <= 4; ++i)
    {
        table->PushUInt(i, 1);
    }
    if (kind.isHeard)
    {
        *table->GetTableListener() = KVListener{&calls, &CountCall};
    }
    const vell::test::Lines before = vell::test::TreeLines(table);
    const std::uint32_t slot = GetNextSlot();
    const unsigned open = GetOpenTableCount();
    bool isRefused = false;
    {
        vell::test::HeapWatch heap;
        heap.RefuseAfter(after);
        try
        {
            each.make(table, other);
        }
        catch (const std::bad_alloc&)
        {
            isRefused = true;
        }
    }
    if (isRefused)
    {
        EXPECT_EQ(vell::test::TreeLines(table), before);
        EXPECT_EQ(GetNextSlot(), slot);
        EXPECT_EQ(GetOpenTableCount(), open);
        EXPECT_EQ(calls, 0);
        each.make(table, other);
    }
    CloseTable(table);
    EXPECT_EQ(other->SetInt("id", 1, 1), 1);
    CloseTable(other);
    return isRefused;
}

constexpr RefusedTable kRefusedTables[] = {
    {false, true}, {true, true}, {false, false}, {true, false}};

TEST(TableMemory, ThatIsRefusedLeavesTheTableAsItWasAndItsSlotInUse)
{
    for (const RefusedCase& each : kRefused)
    {
        for (const RefusedTable& kind : kRefusedTables)
        {
            std::size_t refused = 0;
            for (std::size_t after = 0; after < 20; ++after)
            {
                SCOPED_TRACE(std::string(each.name) + ", block " + std::to_string(after));
                refused += IsRefused(each, after, kind) ? 1 : 0;
            }
            EXPECT_GE(refused, each.leastRefused) << each.name;
            EXPECT_LT(refused, 20u) << each.name;
        }
    }
}

TEST(TableMemory, ThatIsRefusedWhileATableGrowsIsNotLost)
{
    const auto grow = [](KVTable table)
    {
        for (unsigned i = 0; i < 60; ++i)
        {
            table->SetUInt(std::to_string(1000000000u + i).c_str(), i, 1);
        }
    };
    std::size_t refused = 0;
    for (std::size_t after = 0; after < 40; ++after)
    {
        const KVTable table = CreateTable("grows");
        vell::test::HeapWatch heap;
        heap.RefuseAfter(after);
        try
        {
            grow(table);
        }
        catch (const std::bad_alloc&)
        {
            ++refused;
        }
        CloseTable(table);
        ASSERT_EQ(heap.BlocksKept(), 0) << after;
    }

    EXPECT_GE(refused, 10u);
    EXPECT_LT(refused, 40u);
}

TEST(TableMemory, ThatIsRefusedForTheKeyThatListenersGetLeavesTheValue)
{
    const KVTable table = CreateTable("heard");
    int calls = 0;
    table->SetInt(kLongKey.c_str(), 7, 1);
    *table->GetValueListener(kLongKey.c_str()) = KVListener{&calls, &CountCall};
    std::size_t refused = 0;
    {
        vell::test::HeapWatch heap;
        heap.RefuseAfter(0);
        EXPECT_THROW(table->SetInt(kLongKey.c_str(), 8, 1), std::bad_alloc);
        refused = heap.Refused();
    }

    EXPECT_EQ(refused, 1u);
    EXPECT_EQ(table->GetInt(kLongKey.c_str()), 7);
    EXPECT_EQ(calls, 0);
    CloseTable(table);
}

TEST(TableMemory, ThatIsRefusedForAnIndexOfListenersLetsThemBeRemoved)
{
    for (std::size_t after = 0; after < 110; ++after)
    {
        const KVTable table = CreateTable("heard");
        int calls[100] = {};
        for (int& call : calls)
        {
            *table->GetValueListener("value") = KVListener{&call, &CountCall};
        }
        {
            vell::test::HeapWatch heap;
            heap.RefuseAfter(after);
            for (const unsigned i : {99u, 50u, 98u})
            {
                const KVListener listener{&calls[i], &CountCall};
                table->RemoveValueListener("value", &listener);
            }
        }

        table->SetInt("value", 1, 1);

        for (std::size_t i = 0; i < 100; ++i)
        {
            ASSERT_EQ(calls[i], i == 50 || i >= 98 ? 0 : 1) << i;
        }
        CloseTable(table);
    }
}

} // namespace
