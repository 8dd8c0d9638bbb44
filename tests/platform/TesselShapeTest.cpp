// VELL: data-driven hierarchical state machines.
// tests/platform/TesselShapeTest.cpp: tables that share their keys, and tables that do not.
#include <tessel/Tessel.h>

#include "platform/tessel/Shape.h"
#include "platform/tessel/Table.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;
using vell::test::Lines;

KVTable CreateWith(const char* name, const Lines& keys)
{
    const KVTable table = CreateTable(name);
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        table->SetUInt(keys[i].c_str(), static_cast<unsigned>(i), 1);
    }
    return table;
}

/// Makes the names of these tests known before another test uses up the space for shared keys.
bool ShareNames()
{
    Lines names = {"shape", "other", "left",
                   "room",  "ids",   "places",
                   "many",  "owner", "one",
                   "two",   "three", "four",
                   "five",  "six",   "seven",
                   "eight", "nine",  "id",
                   "a1",    "b2",    "c3",
                   "d4",    "e5",    "f6",
                   "g7",    "h8",    "a name that comes too late for a shape"};
    for (int i = 0; i < 200; ++i)
    {
        names.push_back("place " + std::to_string(i));
        names.push_back("room" + std::to_string(i));
    }
    CloseTable(CreateWith("names", names));
    return true;
}

const bool areNamesShared = ShareNames();

/// Gives "KEY VALUE" for each key, looked up by a copy of its text.
Lines GetContent(KVTable table)
{
    Lines content;
    for (unsigned i = 0; i < table->GetKeyCount(); ++i)
    {
        const std::string key = table->GetKeyAt(i);
        content.push_back(key + " " + std::to_string(table->GetUInt(key.c_str())));
    }
    return content;
}

Lines Numbered(const Lines& keys)
{
    Lines numbered;
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        numbered.push_back(keys[i] + " " + std::to_string(i));
    }
    return numbered;
}

TEST(TableShapes, AreSharedByTheTablesThatWereMadeTheSameWay)
{
    ASSERT_TRUE(areNamesShared);
    const KVTable first = CreateWith("shape", {"one", "two", "three"});
    const std::uint32_t count = Shape::GetCount();

    const KVTable second = CreateWith("shape", {"one", "two", "three"});

    EXPECT_EQ(Shape::GetCount(), count);
    for (unsigned i = 0; i < 3; ++i)
    {
        EXPECT_EQ(first->GetKeyAt(i), second->GetKeyAt(i));
    }
    second->SetUInt("two", 7, 1);
    EXPECT_EQ(GetContent(first), (Lines{"one 0", "two 1", "three 2"}));
    EXPECT_EQ(GetContent(second), (Lines{"one 0", "two 7", "three 2"}));
    CloseTable(first);
    CloseTable(second);
}

TEST(TableShapes, DifferByTheOrderOfTheKeysAndByTheName)
{
    const Lines orders[] = {{"one", "two"}, {"two", "one"}, {"two"}, {"one", "two", "three"}, {}};
    std::vector<KVTable> tables;
    for (const char* name : {"shape", "other", "12"})
    {
        for (const Lines& order : orders)
        {
            tables.push_back(CreateWith(name, order));
        }
    }

    for (std::size_t i = 0; i < tables.size(); ++i)
    {
        EXPECT_EQ(GetContent(tables[i]), Numbered(orders[i % 5])) << i;
        EXPECT_STREQ(GetTableName(tables[i]), i < 5 ? "shape" : i < 10 ? "other" : "12");
        EXPECT_EQ(tables[i]->FindValue("three") != nullptr, i % 5 == 3);
        CloseTable(tables[i]);
    }
}

TEST(TableShapes, FindEachOfEightKeysWhateverTheirPlaces)
{
    // Names that were never seen get their places one after another, so that some fall together.
    for (int round = 0; round < 40; ++round)
    {
        Lines keys;
        for (int i = 0; i < 8; ++i)
        {
            keys.push_back("place " + std::to_string(round * 3 + i * (1 + round % 5)));
        }
        const KVTable table = CreateWith("places", keys);

        EXPECT_EQ(GetContent(table), Numbered(keys));
        for (const std::string& key : keys)
        {
            EXPECT_NE(table->FindValue(key.c_str()), nullptr);
            EXPECT_EQ(table->FindValue((key + "!").c_str()), nullptr);
        }
        EXPECT_EQ(table->FindValue("id"), nullptr);
        CloseTable(table);
    }
}

TEST(TableShapes, AreLeftWithTheValuesWhereTheyAre)
{
    const Lines further[] = {
        {"7"},
        {"a key that is too long for the row of those that all tables share, so that one owns it"},
        {"four", "five", "six", "seven", "eight", "nine"},
        {"four", "five", "six", "seven", "eight", "9"}};
    for (const Lines& more : further)
    {
        Lines keys{"one", "two", "three"};
        const KVTable table = CreateWith("left", keys);
        int calls = 0;
        *table->GetValueListener("two") =
            KVListener{&calls, [](void* object, opResult, KVTable, const char*)
                       {
                           return ++*static_cast<int*>(object);
                       }};
        const KVValue* value = table->FindValue("two");
        const char* text = table->GetKeyAt(1);

        for (const std::string& key : more)
        {
            table->SetUInt(key.c_str(), static_cast<unsigned>(keys.size()), 1);
            keys.push_back(key);
        }
        table->SetUInt("two", 1, 1);

        EXPECT_EQ(GetContent(table), Numbered(keys));
        EXPECT_EQ(table->FindValue("two"), value);
        EXPECT_EQ(table->GetKeyAt(1), text);
        EXPECT_STREQ(GetTableName(table), "left");
        EXPECT_EQ(calls, 1);
        CloseTable(table);
    }
}

TEST(TableShapes, HaveRoomForAnyNumberOfKeysWhateverTheLastTableHad)
{
    for (const unsigned count : {0u, 8u, 1u, 40u, 2u, 9u, 0u, 3u, 7u, 1u, 8u, 5u, 1u, 6u, 4u, 0u})
    {
        Lines keys;
        for (unsigned i = 0; i < count; ++i)
        {
            keys.push_back("room" + std::to_string(i));
        }
        const KVTable table = CreateTable("room");
        std::vector<const KVValue*> values;
        for (unsigned i = 0; i < count; ++i)
        {
            table->SetUInt(keys[i].c_str(), i, 1);
            values.push_back(table->FindValue(keys[i].c_str()));
        }

        EXPECT_EQ(GetContent(table), Numbered(keys));
        for (unsigned i = 0; i < count; ++i)
        {
            EXPECT_EQ(table->FindValue(keys[i].c_str()), values[i]);
        }
        CloseTable(table);
    }
}

TEST(TableShapes, AreNotMadeForEverNewIds)
{
    CloseTable(CreateWith("ids", {"id"}));
    const std::uint32_t count = Shape::GetCount();

    for (unsigned i = 0; i < 10000; ++i)
    {
        const KVTable table = CreateWith("ids", {"id", std::to_string(i)});
        table->AddTable(std::to_string(i).c_str(), 1);
        CloseTable(table);
    }

    EXPECT_LE(Shape::GetCount(), count + 1) << "one without a name may have been made";
}

TEST(TableKeys, ThatOneTableOwnsAreTexts)
{
    const Lines keys = {"0",        "1",        "1234567",  "12345678",   "01",       "7 a",
                        "9",        "99",       "999",      "9999",       "99999",    "999999",
                        "10000000", "90000000", "98765432", "4294967295", "1234567x", "2"};
    for (std::size_t count = 1; count <= keys.size(); ++count)
    {
        const Lines some(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(count));
        const KVTable table = CreateWith("owner", some);

        EXPECT_EQ(GetContent(table), Numbered(some));
        for (const char* missing : {"", "00", "123456", "12345679", "3", "one"})
        {
            EXPECT_EQ(table->FindValue(missing), nullptr) << missing;
        }
        CloseTable(table);
    }
}

/// Fills what there is: the tests of this program that come after it have tables of either kind.
TEST(TableShapes, AreKeptUpToABoundAndTablesWorkBeyondIt)
{
    Lines keys{"a1", "b2", "c3", "d4", "e5", "f6", "g7", "h8"};
    std::vector<KVTable> tables;
    std::vector<Lines> wanted;

    for (int i = 0; i < 6000; ++i)
    {
        std::next_permutation(keys.begin(), keys.end());
        const Lines some(keys.begin(), keys.end() - i % 3);
        tables.push_back(CreateWith("many", some));
        wanted.push_back(some);
    }

    EXPECT_EQ(Shape::GetCount(), Shape::kMaxShapes);
    for (std::size_t i = 0; i < tables.size(); ++i)
    {
        ASSERT_EQ(GetContent(tables[i]), Numbered(wanted[i]));
        ASSERT_STREQ(GetTableName(tables[i]), "many");
        CloseTable(tables[i]);
    }
    const KVTable late = CreateWith("a name that comes too late for a shape", {"g7", "a1"});
    EXPECT_STREQ(GetTableName(late), "a name that comes too late for a shape");
    EXPECT_EQ(GetContent(late), (Lines{"g7 0", "a1 1"}));
    CloseTable(late);
}

} // namespace
