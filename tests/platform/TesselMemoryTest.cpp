// VELL: data-driven hierarchical state machines.
// tests/platform/TesselMemoryTest.cpp: what the key/value tables allocate and give back.
#include <tessel/Tessel.h>

#include "platform/tessel/Key.h"
#include "platform/tessel/Table.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TESSEL_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TESSEL_TEST_SANITIZED 1
#endif
#endif

#if defined(TESSEL_TEST_SANITIZED)
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
#if defined(TESSEL_TEST_SANITIZED)
    return __sanitizer_get_current_allocated_bytes();
#else
    // Blocks that the allocator keeps at hand for the thread count as allocated, see kSlack.
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

/// How far the bytes may move without a leak; one block a round would come to far more.
#if defined(TESSEL_TEST_SANITIZED)
constexpr std::size_t kSlack = 0;
#else
constexpr std::size_t kSlack = 4096;
#endif

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

TEST(TableMemory, OfThreeShortKeysIsAtMost170Bytes)
{
    constexpr std::size_t kTables = 1000;
    std::vector<KVTable> tables(kTables);
    const auto makeAll = [&]
    {
        for (KVTable& table : tables)
        {
            table = CreateTable("baseDef");
            table->SetInt("id", 1, 1);
            table->SetString("type", "float", 1);
            table->SetFloat("value", 1.0f, 1);
        }
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

    const std::size_t each = (GetHeapBytes() - before) / kTables + sizeof(Table);
    EXPECT_GT(each, sizeof(Table));
    EXPECT_LE(each, 170u);
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

TEST(TableMemory, ThatIsRefusedLeavesTheParentAsItWas)
{
    const std::string name = "a key too long to be shared " + std::string(200, 'x');
    const KVTable table = CreateTable("parent");
    const unsigned openBefore = GetOpenTableCount();
    std::size_t refused = 0;
    KVTable child;

    for (std::size_t after = 0; !child; ++after)
    {
        vell::test::HeapWatch heap;
        heap.RefuseAfter(after);
        try
        {
            child = table->AddTable(name.c_str(), 1);
            break;
        }
        catch (const std::bad_alloc&)
        {
            ++refused;
        }
        heap.RefuseNothing();
        ASSERT_EQ(GetOpenTableCount(), openBefore);
        ASSERT_EQ(table->GetKeyCount(), 0u);
        ASSERT_LT(after, 20u);
    }

    EXPECT_GE(refused, 2u) << "the key of the child, and its place in the parent";
    EXPECT_STREQ(GetTableName(child), name.c_str());
    CloseTable(table);
}

} // namespace
