// VELL: data-driven hierarchical state machines.
// tests/platform/TesselInternTest.cpp: keys that the table library keeps a copy of.
#include "platform/tessel/Key.h"

#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace Tessel;

/// A key that another test may have left no room for is as good as any here.
std::string ManyKey(unsigned i)
{
    return "interned" + std::to_string(i);
}

int Count(void* counter, opResult, KVTable, const char*)
{
    return ++*static_cast<int*>(counter);
}

class InternedKey : public testing::Test
{
protected:
    ~InternedKey() override
    {
        CloseTable(table);
    }

    KVTable table = CreateTable("interned");
};

} // namespace

TEST_F(InternedKey, HasTheTextThatWasAskedFor)
{
    const std::string text = "previousState";

    EXPECT_STREQ(InternKey(text.c_str()), "previousState");
    EXPECT_EQ(InternKey(text.c_str()), InternKey("previousState"));
    EXPECT_EQ(InternKey(InternKey("previousState")), InternKey("previousState"));
    EXPECT_STREQ(InternKey(""), "");
}

TEST_F(InternedKey, IsTheCallersOwnWhenNoneIsKept)
{
    const std::string longest(Key::kMaxSharedLength, 'k');
    const std::string tooLong(Key::kMaxSharedLength + 1, 'k');
    const char* number = "42";

    EXPECT_EQ(InternKey(nullptr), nullptr);
    EXPECT_EQ(InternKey(number), number);
    EXPECT_EQ(InternKey(tooLong.c_str()), tooLong.c_str());
    EXPECT_EQ(std::string(InternKey(longest.c_str())), longest);
}

TEST_F(InternedKey, IsTheSameKeyAsItsTextFromAnotherAddress)
{
    const std::string text = "nextState";
    const char* interned = InternKey("nextState");

    table->SetUInt(interned, 1, 1);
    EXPECT_EQ(table->GetUInt(text.c_str()), 1u);
    table->SetUInt(text.c_str(), 2, 1);
    EXPECT_EQ(table->GetUInt(interned), 2u);
    table->SetString(interned, "three", 1);
    EXPECT_STREQ(table->GetString(text.c_str()), "three");
    EXPECT_TRUE(table->AddTable(interned, 1));
    EXPECT_TRUE(table->GetTable(text.c_str()));
    EXPECT_STREQ(GetTableName(table->GetTable(interned)), "nextState");
    EXPECT_EQ(table->GetKeyCount(), 1u);
}

TEST_F(InternedKey, IsFoundInATableOfAnySize)
{
    constexpr unsigned kKeys = 40;
    for (unsigned i = 0; i < kKeys; ++i)
    {
        const std::string key = ManyKey(i);
        ASSERT_EQ(table->GetUInt(InternKey(key.c_str())), 0u);
        table->SetUInt(i % 2 == 0 ? key.c_str() : InternKey(key.c_str()), 100 + i, 1);
        for (unsigned j = 0; j <= i; ++j)
        {
            ASSERT_EQ(table->GetUInt(InternKey(ManyKey(j).c_str())), 100 + j) << i;
            ASSERT_EQ(table->GetUInt(ManyKey(j).c_str()), 100 + j) << i;
        }
    }
    EXPECT_EQ(table->GetKeyCount(), kKeys);
    EXPECT_EQ(table->FindValue(InternKey("another")), nullptr);
}

TEST_F(InternedKey, IsNotMetInWhatAClosedTableLeftBehind)
{
    const char* interned = InternKey("left behind");
    table->SetUInt(interned, 1, 1);
    CloseTable(table);

    table = CreateTable("next");

    EXPECT_EQ(table->FindValue(interned), nullptr);
    table->SetUInt("other", 2, 1);
    EXPECT_EQ(table->FindValue(interned), nullptr);
}

TEST_F(InternedKey, HasEndsThatAreKeysOfTheirOwn)
{
    const char* interned = InternKey("transition");
    table->SetUInt(interned, 1, 1);

    for (const char* end = interned + 1; *end != '\0'; ++end)
    {
        EXPECT_EQ(table->FindValue(end), nullptr) << end;
    }
    table->SetUInt(interned + 5, 2, 1);
    EXPECT_STREQ(table->GetKeyAt(1), "ition");
    EXPECT_EQ(table->GetUInt("ition"), 2u);
    EXPECT_EQ(table->GetUInt(interned), 1u);
}

TEST_F(InternedKey, IsHeardByTheListenersOfItsText)
{
    int calls = 0;
    KVListener* listener = table->GetValueListener("heard");
    listener->object = &calls;
    listener->function = Count;

    table->SetUInt(InternKey("heard"), 1, 1);
    table->SetUInt("heard", 2, 1);

    EXPECT_EQ(calls, 2);
}
