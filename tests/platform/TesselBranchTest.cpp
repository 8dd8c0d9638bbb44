// VELL: data-driven hierarchical state machines.
// tests/platform/TesselBranchTest.cpp: writes below a table that was found before.
#include <tessel/Slots.h>

#include "platform/tessel/TableHandle.h"
#include "tests/platform/SlotOperations.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace Tessel;
using vell::test::HearNothing;
using vell::test::Slots;

/// A table "child" under a key of another one, with two numbers and an array with one element under
/// a key, and the writer's branch.
struct Written
{
    Written()
    {
        root->SetInt("first", 1, 1);
        child = root->AddTable("child", 1);
        child->SetUInt("left", 1, 1);
        child->SetUInt("right", 2, 1);
        array = child->AddTable("array", 1);
        array->PushUInt(5, 1);
        Find();
        numbers[0] = child->FindValue("left");
        numbers[1] = child->FindValue("right");
        elements = child->FindValue("array");
    }
    ~Written()
    {
        CloseTable(root);
    }
    Written(const Written&) = delete;
    Written& operator=(const Written&) = delete;

    int Find()
    {
        return Slots().findBranch(&branch, root, "child");
    }

    std::vector<unsigned> Numbers() const
    {
        return {child->GetUInt("left"), child->GetUInt("right")};
    }

    KVTable root = CreateTable("root");
    KVTable child;
    KVTable array;
    KVBranch branch{};
    KVValue* numbers[2]{};
    KVValue* elements = nullptr;
};

/// What may happen to the tables of a branch, and which operations do their work afterwards.
struct Event
{
    const char* name;
    void (*happen)(Written& written);
    bool isThere;   ///< the table is where it was found
    bool isWritten; ///< by `setUInts`
    bool isArray;   ///< the array that `pushUInt` and `removeLast` change is `Written::array`
};

constexpr Event kEvents[] = {
    {"nothing", [](Written&) {}, true, true, true},
    {"many other keys of both tables",
     [](Written& written)
     {
         for (int i = 0; i < 40; ++i)
         {
             written.root->SetInt(("key" + std::to_string(i)).c_str(), i, 1);
             written.child->SetInt(("key" + std::to_string(i)).c_str(), i, 1);
         }
     },
     true, true, true},
    {"a listener of the parent and of a key there",
     [](Written& written)
     {
         *written.root->GetTableListener() = KVListener{nullptr, HearNothing};
         *written.root->GetValueListener("child") = KVListener{nullptr, HearNothing};
     },
     true, true, true},
    {"a listener of the array",
     [](Written& written)
     {
         *written.array->GetTableListener() = KVListener{nullptr, HearNothing};
     },
     true, true, true},
    {"the tables attached elsewhere too",
     [](Written& written)
     {
         const KVTable other = CreateTable("other");
         other->AttachTable("child", written.child, 1);
         other->AttachTable("array", written.array, 1);
         CloseTable(other);
     },
     true, true, true},
    {"the table attached once more under its key",
     [](Written& written)
     {
         written.root->AttachTable("child", written.child, 1);
     },
     true, true, true},
    {"numbers of the same type",
     [](Written& written)
     {
         written.child->SetUInt("left", 3, 1);
     },
     true, true, true},
    {"a number of another type",
     [](Written& written)
     {
         written.child->SetInt("right", 2, 1);
     },
     true, false, true},
    {"a float",
     [](Written& written)
     {
         written.child->SetFloat("left", 1.0f, 1);
     },
     true, false, true},
    {"a text",
     [](Written& written)
     {
         written.child->SetString("left", "a text that does not fit into the entry", 1);
     },
     true, false, true},
    {"a table in place of a number",
     [](Written& written)
     {
         written.child->AddTable("left", 1);
     },
     true, false, true},
    {"an empty record of a number",
     [](Written& written)
     {
         written.child->GetValueListener("left");
     },
     true, false, true},
    {"a listener of a number",
     [](Written& written)
     {
         *written.child->GetValueListener("right") = KVListener{nullptr, HearNothing};
     },
     true, false, true},
    {"a listener of a number that was removed",
     [](Written& written)
     {
         const KVListener other{nullptr, HearNothing};
         *written.child->GetValueListener("right") = other;
         written.child->RemoveValueListener("right", &other);
     },
     true, true, true},
    {"a listener of the table",
     [](Written& written)
     {
         *written.child->GetTableListener() = KVListener{nullptr, HearNothing};
     },
     true, false, true},
    {"the table's own record, empty",
     [](Written& written)
     {
         written.child->GetTableListener();
     },
     true, true, true},
    {"the array replaced",
     [](Written& written)
     {
         written.child->AddTable("array", 1)->PushUInt(8, 1);
     },
     true, true, false},
    {"a number in place of the array",
     [](Written& written)
     {
         written.child->SetUInt("array", 8, 1);
     },
     true, true, false},
    {"the array closed",
     [](Written& written)
     {
         CloseTable(written.array);
     },
     true, true, false},
    {"the table replaced",
     [](Written& written)
     {
         written.root->AddTable("child", 1);
     },
     false, false, false},
    {"the table replaced, and kept elsewhere",
     [](Written& written)
     {
         written.root->AttachTable("elsewhere", written.child, 1);
         written.root->AddTable("child", 1);
     },
     false, false, false},
    {"the table replaced and put back",
     [](Written& written)
     {
         written.root->AttachTable("elsewhere", written.child, 1);
         written.root->AddTable("child", 1);
         written.root->AttachTable("child", written.child, 1);
     },
     true, true, true},
    {"a number in place of the table",
     [](Written& written)
     {
         written.root->AttachTable("elsewhere", written.child, 1);
         written.root->SetUInt("child", 1, 1);
     },
     false, false, false},
    {"the table closed",
     [](Written& written)
     {
         CloseTable(written.child);
     },
     false, false, false},
    {"the table closed, and another one in its slot",
     [](Written& written)
     {
         CloseTable(written.array);
         CloseTable(written.child);
         const KVTable next = written.root->AddTable("child", 1);
         next->SetUInt("left", 1, 1);
         next->SetUInt("right", 2, 1);
         EXPECT_EQ(TableHandle::GetSlot(next), TableHandle::GetSlot(written.child));
     },
     false, false, false},
    {"the parent closed",
     [](Written& written)
     {
         CloseTable(written.root);
     },
     false, false, false},
    {"the parent closed, and the table kept elsewhere",
     [](Written& written)
     {
         const KVTable other = CreateTable("other");
         other->AttachTable("child", written.child, 1);
         CloseTable(written.root);
         written.root = other;
     },
     false, false, false},
    {"the parent closed, and another one in its slot with the table",
     [](Written& written)
     {
         const KVTable other = CreateTable("other");
         other->AttachTable("child", written.child, 1);
         const KVTable before = written.root;
         CloseTable(written.root);
         written.root = CreateTable("root");
         written.root->SetInt("first", 1, 1);
         written.root->AttachTable("child", written.child, 1);
         CloseTable(other);
         EXPECT_EQ(TableHandle::GetSlot(written.root), TableHandle::GetSlot(before));
     },
     false, false, false},
};

std::vector<unsigned> Elements(KVTable table)
{
    std::vector<unsigned> elements;
    for (unsigned i = 0; i < table->GetCount(); ++i)
    {
        elements.push_back(table->GetValueAt(i)->GetUIntValue());
    }
    return elements;
}

} // namespace

TEST(TesselBranch, TakesNumbersWhileNobodyCouldHearOfThem)
{
    for (const Event& event : kEvents)
    {
        SCOPED_TRACE(event.name);
        Written written;
        event.happen(written);
        const std::vector<unsigned> before = written.Numbers();
        const int typeBefore = written.child->GetTypeAt(0);

        const unsigned numbers[] = {7, 9};
        const int result = Slots().setUInts(&written.branch, written.numbers, numbers, 2);

        EXPECT_EQ(result, event.isWritten ? 1 : 0);
        EXPECT_EQ(written.Numbers(), event.isWritten ? (std::vector<unsigned>{7, 9}) : before);
        EXPECT_EQ(written.child->GetTypeAt(0), typeBefore);
    }
}

TEST(TesselBranch, ChangesTheArrayThatItsKeyHoldsNow)
{
    for (const Event& event : kEvents)
    {
        SCOPED_TRACE(event.name);
        Written written;
        event.happen(written);
        const std::vector<unsigned> before = Elements(written.array);
        const KVTable now = event.isThere ? written.child->GetTable("array") : KVTable();

        EXPECT_EQ(Slots().pushUInt(&written.branch, written.elements, 6), now ? 1 : 0);
        EXPECT_EQ(Elements(written.array), event.isArray ? (std::vector<unsigned>{5, 6}) : before);
        EXPECT_EQ(Slots().removeLast(&written.branch, written.elements), now ? 1 : 0);
        EXPECT_EQ(Slots().removeLast(&written.branch, written.elements), now ? 1 : 0);
        EXPECT_EQ(Slots().removeLast(&written.branch, written.elements), 0);
        EXPECT_EQ(Elements(written.array), event.isArray ? std::vector<unsigned>() : before);
    }
}

TEST(TesselBranch, IsNotFoundWhereNoTableIs)
{
    Written written;
    KVBranch branch = written.branch;

    for (const char* key : {"other", "first", static_cast<const char*>(nullptr)})
    {
        EXPECT_EQ(Slots().findBranch(&branch, written.root, key), 0);
        EXPECT_EQ(branch.parent, written.root);
        EXPECT_FALSE(static_cast<bool>(branch.table));
        EXPECT_EQ(Slots().pushUInt(&branch, written.elements, 1), 0);
    }
    CloseTable(written.child);
    EXPECT_EQ(Slots().findBranch(&branch, written.root, "child"), 0);
    CloseTable(written.root);
    EXPECT_EQ(Slots().findBranch(&branch, written.root, "child"), 0);
    EXPECT_EQ(Slots().findBranch(&branch, KVTable(), "child"), 0);
}

TEST(TesselBranch, ThatWasNeverLookedForDoesNothing)
{
    const KVBranch branch{};
    const unsigned number = 7;

    EXPECT_EQ(Slots().setUInts(&branch, nullptr, &number, 1), 0);
    EXPECT_EQ(Slots().pushUInt(&branch, nullptr, 1), 0);
    EXPECT_EQ(Slots().removeLast(&branch, nullptr), 0);
}

TEST(TesselBranch, OfAnArrayThatIsEmptyGivesNothingToRemove)
{
    Written written;
    const KVTable empty = written.child->AddTable("array", 1);

    EXPECT_EQ(Slots().removeLast(&written.branch, written.elements), 0);
    EXPECT_EQ(Slots().pushUInt(&written.branch, written.elements, 1), 1);
    EXPECT_EQ(Elements(empty), (std::vector<unsigned>{1}));
}
