// VELL: data-driven hierarchical state machines.
// tests/platform/TesselTreeTest.cpp: handles, and tables that hold one another.
#include <tessel/Tessel.h>

#include "platform/tessel/TableHandle.h"
#include "platform/tessel/TableStore.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace Tessel;

/// Sees to it that each test closes what it opens.
class TableTree : public testing::Test
{
protected:
    ~TableTree() override
    {
        EXPECT_EQ(GetOpenTableCount(), openBefore);
    }

    unsigned openBefore = GetOpenTableCount();
};

using TableHandles = TableTree;

TEST_F(TableHandles, AreOnePointerWideAndNullByDefault)
{
    const KVTable table;

    EXPECT_EQ(sizeof(KVTable), sizeof(void*));
    EXPECT_TRUE(std::is_trivially_copyable<KVTable>::value);
    EXPECT_FALSE(table);
    EXPECT_EQ(table, KVTable());
}

TEST_F(TableHandles, CompareByTable)
{
    const KVTable first = CreateTable("a");
    const KVTable second = CreateTable("a");
    const KVTable copy = first;

    EXPECT_TRUE(first == copy);
    EXPECT_FALSE(first != copy);
    EXPECT_TRUE(first != second);
    EXPECT_TRUE(first != KVTable());

    CloseTable(first);
    CloseTable(second);
}

TEST_F(TableHandles, GiveTheName)
{
    const KVTable table = CreateTable("baseDef");
    const KVTable unnamed = CreateTable(nullptr);
    const KVTable child = table->AddTable("1234567890", 1);

    EXPECT_STREQ(GetTableName(table), "baseDef");
    EXPECT_STREQ(GetTableName(unnamed), "");
    EXPECT_STREQ(GetTableName(child), "1234567890");
    EXPECT_EQ(GetTableName(KVTable()), nullptr);

    CloseTable(table);
    CloseTable(unnamed);
    EXPECT_EQ(GetTableName(table), nullptr);
}

void ExpectClosed(KVTable table)
{
    const Float2 two{};
    const Float3 three{};
    const Float4 four{};
    const KVTable other = CreateTable("other");
    Float2 outTwo{};
    Float3 outThree{};
    Float4 outFour{};

    EXPECT_EQ(table->SetInt("id", 1, 1), 0);
    EXPECT_EQ(table->SetUInt("id", 1, 1), 0);
    EXPECT_EQ(table->SetFloat("id", 1.0f, 1), 0);
    EXPECT_EQ(table->SetString("id", "1", 1), 0);
    EXPECT_EQ(table->SetFloat2("id", &two, 1), 0);
    EXPECT_EQ(table->SetFloat3("id", &three, 1), 0);
    EXPECT_EQ(table->SetFloat4("id", &four, 1), 0);
    EXPECT_FALSE(table->AddTable("id", 1));
    EXPECT_EQ(table->AttachTable("id", other, 1), 0);
    EXPECT_EQ(table->PushUInt(1, 1), 0);
    EXPECT_EQ(table->RemoveAt(0, 1), 0);
    EXPECT_EQ(table->GetCount(), 0u);
    EXPECT_EQ(table->GetValueAt(0), nullptr);
    EXPECT_EQ(table->FindValue("id"), nullptr);
    EXPECT_EQ(table->GetInt("id"), 0);
    EXPECT_EQ(table->GetUInt("id"), 0u);
    EXPECT_EQ(table->GetFloat("id"), 0.0f);
    EXPECT_EQ(table->GetString("id"), nullptr);
    EXPECT_EQ(table->GetFloat2("id", &outTwo), 0);
    EXPECT_EQ(table->GetFloat3("id", &outThree), 0);
    EXPECT_EQ(table->GetFloat4("id", &outFour), 0);
    EXPECT_FALSE(table->GetTable("id"));
    EXPECT_EQ(table->GetTableListener(), nullptr);
    EXPECT_EQ(table->GetValueListener("id"), nullptr);
    table->RemoveValueListener("id", nullptr);
    EXPECT_EQ(table->NeedsLock(), 0);
    table->Lock();
    table->Unlock();
    EXPECT_EQ(table->GetKeyCount(), 0u);
    EXPECT_EQ(table->GetKeyAt(0), nullptr);
    EXPECT_EQ(table->GetTypeAt(0), 0);

    CloseTable(other);
}

TEST_F(TableHandles, ReachTheClosedTableWhenNull)
{
    ExpectClosed(KVTable());
}

TEST_F(TableHandles, ReachTheClosedTableWhenStale)
{
    const KVTable table = CreateTable("a");
    table->SetInt("id", 1, 1);
    CloseTable(table);

    EXPECT_TRUE(table);
    EXPECT_EQ(table.operator->(), KVTable().operator->());
    ExpectClosed(table);
}

TEST_F(TableHandles, OfClosedTablesNeverReachATableMadeLater)
{
    std::vector<KVTable> stale;
    for (int i = 0; i < 1000; ++i)
    {
        stale.push_back(CreateTable("old"));
        CloseTable(stale.back());
    }
    const KVTable fresh = CreateTable("new");

    for (KVTable table : stale)
    {
        ASSERT_NE(table, fresh);
        ASSERT_EQ(table->SetInt("id", 1, 1), 0);
        CloseTable(table);
    }

    EXPECT_EQ(fresh->GetKeyCount(), 0u);
    EXPECT_EQ(fresh->SetInt("id", 2, 1), 1);
    CloseTable(fresh);
}

TEST_F(TableHandles, UseTheSlotsOfClosedTablesAgain)
{
    CloseTable(CreateTable("a")); // the first one of a name has more room than it needs
    std::set<std::uint32_t> slots;
    for (int i = 0; i < 10000; ++i)
    {
        const KVTable table = CreateTable("a");
        slots.insert(TableHandle::GetSlot(table));
        CloseTable(table);
    }

    EXPECT_EQ(slots.size(), 1u);
}

TEST_F(TableHandles, RetireTheSlotWhoseGenerationsAreUsedUp)
{
    // A table is put where one of as many keys was, and the last one of its name tells how many.
    const auto create = []
    {
        const KVTable table = CreateTable("a");
        table->SetInt("id", 1, 1);
        return table;
    };
    CloseTable(create());
    const KVTable before = create();
    const std::uint32_t slot = TableHandle::GetSlot(before);
    CloseTable(before);
    TableStore::MakeLastGeneration(slot);

    const KVTable last = create();
    ASSERT_EQ(TableHandle::GetSlot(last), slot);
    EXPECT_EQ(last->GetInt("id"), 1);
    CloseTable(last);

    for (int i = 0; i < 1000; ++i)
    {
        const KVTable table = create();
        ASSERT_NE(TableHandle::GetSlot(table), slot);
        CloseTable(table);
    }
    EXPECT_EQ(last->GetInt("id"), 0);
    EXPECT_EQ(before->SetInt("id", 1, 1), 0);
}

TEST_F(TableHandles, MayBeClosedAnyNumberOfTimes)
{
    const KVTable table = CreateTable("a");
    CloseTable(table);
    CloseTable(table);
    const KVTable other = CreateTable("b");
    CloseTable(table);
    CloseTable(KVTable());

    EXPECT_STREQ(GetTableName(other), "b");
    CloseTable(other);
}

TEST_F(TableTree, CountsOpenTables)
{
    const KVTable table = CreateTable("a");
    table->AddTable("b", 1);
    EXPECT_EQ(GetOpenTableCount(), openBefore + 2);

    CloseTable(table);
    EXPECT_EQ(GetOpenTableCount(), openBefore);
}

TEST_F(TableTree, AddedTableIsHeldByItsParentOnly)
{
    const KVTable parent = CreateTable("parent");
    const KVTable child = parent->AddTable("child", 1);
    ASSERT_TRUE(child);
    child->SetInt("id", 5, 1);

    EXPECT_EQ(parent->GetTable("child"), child);
    EXPECT_EQ(parent->GetTable("child")->GetInt("id"), 5);

    CloseTable(parent);
    EXPECT_EQ(child->GetInt("id"), 0);
}

TEST_F(TableTree, AttachedTableOutlivesItsParentUntilItsCreatorClosesIt)
{
    const KVTable parent = CreateTable("parent");
    const KVTable child = CreateTable("child");
    EXPECT_NE(parent->AttachTable("child", child, 1), 0);
    child->SetInt("id", 5, 1);

    CloseTable(parent);
    EXPECT_EQ(child->GetInt("id"), 5);

    CloseTable(child);
    EXPECT_EQ(child->GetInt("id"), 0);
}

TEST_F(TableTree, GivesANullTableForAClosedChild)
{
    const KVTable parent = CreateTable("parent");
    const KVTable attached = CreateTable("attached");
    parent->AttachTable("attached", attached, 1);
    const KVTable added = parent->AddTable("added", 1);

    CloseTable(attached);
    CloseTable(added);
    const KVTable later = CreateTable("later");

    EXPECT_FALSE(parent->GetTable("attached"));
    EXPECT_FALSE(parent->GetTable("added"));
    EXPECT_EQ(parent->GetKeyCount(), 2u);
    CloseTable(parent);
    EXPECT_STREQ(GetTableName(later), "later");
    CloseTable(later);
}

TEST_F(TableTree, KeepsAnAddedTableThatWasAttachedElsewhereToo)
{
    const KVTable first = CreateTable("first");
    const KVTable second = CreateTable("second");
    const KVTable child = first->AddTable("child", 1);
    second->AttachTable("again", child, 1);
    second->AttachTable("and again", child, 1);

    CloseTable(first);
    EXPECT_EQ(child->SetInt("id", 3, 1), 1);
    second->SetInt("again", 0, 1);
    EXPECT_EQ(child->GetInt("id"), 3);

    CloseTable(second);
    EXPECT_EQ(child->GetInt("id"), 0);
}

TEST_F(TableTree, RefusesToAttachWhatIsNoTable)
{
    const KVTable table = CreateTable("table");
    const KVTable closed = CreateTable("closed");
    CloseTable(closed);

    EXPECT_EQ(table->AttachTable("null", KVTable(), 1), 0);
    EXPECT_EQ(table->AttachTable("closed", closed, 1), 0);

    EXPECT_EQ(table->GetKeyCount(), 0u);
    CloseTable(table);
}

TEST_F(TableTree, RefusesToStandBelowItself)
{
    const KVTable top = CreateTable("top");
    const KVTable middle = CreateTable("middle");
    const KVTable side = middle->AddTable("side", 1);
    top->AttachTable("middle", middle, 1);
    const KVTable bottom = middle->AddTable("bottom", 1);

    EXPECT_EQ(top->AttachTable("self", top, 1), 0);
    EXPECT_EQ(middle->AttachTable("up", top, 1), 0);
    EXPECT_EQ(bottom->AttachTable("up", top, 1), 0);
    EXPECT_EQ(bottom->AttachTable("up", middle, 1), 0);
    EXPECT_NE(bottom->AttachTable("side", side, 1), 0);
    EXPECT_EQ(side->AttachTable("bottom", bottom, 1), 0);

    EXPECT_EQ(side->GetKeyCount(), 0u);
    EXPECT_FALSE(bottom->GetTable("up"));
    CloseTable(top);
    CloseTable(middle);
}

TEST_F(TableTree, JoinsTwoTrees)
{
    const KVTable left = CreateTable("left");
    const KVTable leftChild = left->AddTable("child", 1);
    const KVTable right = CreateTable("right");
    const KVTable rightChild = right->AddTable("child", 1);
    rightChild->AddTable("grandchild", 1);

    EXPECT_NE(leftChild->AttachTable("right", right, 1), 0);
    EXPECT_EQ(rightChild->AttachTable("left", leftChild, 1), 0);

    EXPECT_TRUE(left->GetTable("child")->GetTable("right")->GetTable("child"));
    CloseTable(right);
    CloseTable(left);
}

TEST_F(TableTree, ReplacesWhatTheKeyHeld)
{
    const KVTable parent = CreateTable("parent");
    const KVTable other = CreateTable("other");
    const KVTable first = parent->AddTable("key", 1);
    const KVTable second = parent->AddTable("key", 1);

    EXPECT_NE(first, second);
    EXPECT_EQ(parent->GetTable("key"), second);
    EXPECT_EQ(GetTableName(first), nullptr);

    EXPECT_NE(parent->AttachTable("key", other, 1), 0);
    EXPECT_EQ(parent->GetTable("key"), other);
    EXPECT_EQ(GetTableName(second), nullptr);

    parent->SetString("text", "a text that does not fit into its entry", 1);
    EXPECT_NE(parent->AttachTable("text", other, 1), 0);
    EXPECT_EQ(parent->GetTable("text"), other);
    EXPECT_EQ(parent->GetString("text"), nullptr);
    EXPECT_EQ(parent->GetKeyCount(), 2u);
    CloseTable(other);
    CloseTable(parent);
}

TEST_F(TableTree, AttachesTheSameTableUnderTheSameKeyAgain)
{
    const KVTable parent = CreateTable("parent");
    const KVTable child = parent->AddTable("child", 1);

    EXPECT_NE(parent->AttachTable("child", child, 1), 0);
    EXPECT_NE(parent->AttachTable("child", child, 1), 0);

    EXPECT_EQ(parent->GetTable("child"), child);
    parent->SetInt("child", 0, 1);
    EXPECT_EQ(GetTableName(child), nullptr);
    CloseTable(parent);
}

TEST_F(TableTree, EveryScalarWriteEndsTheHoldOfAKey)
{
    const KVTable parent = CreateTable("parent");
    const Float2 two{};
    const Float3 three{};
    const Float4 four{};
    std::vector<KVTable> children;
    const auto add = [&]
    {
        children.push_back(parent->AddTable("key", 1));
    };

    add();
    parent->SetInt("key", 1, 1);
    add();
    parent->SetUInt("key", 1, 1);
    add();
    parent->SetFloat("key", 1.0f, 1);
    add();
    parent->SetString("key", "short", 1);
    add();
    parent->SetString("key", "a text that does not fit into its entry", 1);
    add();
    parent->SetFloat2("key", &two, 1);
    add();
    parent->SetFloat3("key", &three, 1);
    add();
    parent->SetFloat4("key", &four, 1);

    ASSERT_EQ(children.size(), 8u);
    for (KVTable child : children)
    {
        EXPECT_EQ(GetTableName(child), nullptr);
    }
    EXPECT_FALSE(parent->GetTable("key"));
    CloseTable(parent);
}

TEST_F(TableTree, ReplacesATableByOneThatItHolds)
{
    const KVTable parent = CreateTable("parent");
    const KVTable child = parent->AddTable("key", 1);
    const KVTable grandchild = child->AddTable("below", 1);
    grandchild->SetInt("id", 9, 1);

    EXPECT_NE(parent->AttachTable("key", grandchild, 1), 0);

    EXPECT_EQ(GetTableName(child), nullptr);
    EXPECT_EQ(parent->GetTable("key")->GetInt("id"), 9);
    CloseTable(parent);
}

TEST_F(TableTree, ClosesAChainOfAMillionTables)
{
    const KVTable root = CreateTable("root");
    KVTable last = root;
    for (int i = 0; i < 1000000; ++i)
    {
        last = last->AddTable("next", 1);
    }
    ASSERT_EQ(GetOpenTableCount(), openBefore + 1000001);
    EXPECT_EQ(last->AttachTable("root", root, 1), 0);

    CloseTable(root);

    EXPECT_EQ(GetTableName(last), nullptr);
}

TEST_F(TableTree, ClosesTablesThatAreReachedByManyWays)
{
    // Each level holds the next one twice: the ways to the lowest double with each level.
    const KVTable root = CreateTable("root");
    KVTable level = root;
    for (int i = 0; i < 64; ++i)
    {
        const KVTable next = level->AddTable("left", 1);
        level->AttachTable("right", next, 1);
        level = next;
    }
    EXPECT_EQ(level->AttachTable("root", root, 1), 0);

    CloseTable(root);

    EXPECT_EQ(GetTableName(level), nullptr);
}

} // namespace
