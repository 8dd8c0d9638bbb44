// VELL: data-driven hierarchical state machines.
// tests/platform/TesselValueTest.cpp: the keys and the values of a key/value table.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;

class TableValue : public testing::Test
{
protected:
    ~TableValue() override
    {
        CloseTable(table);
    }

    std::vector<std::string> GetKeys()
    {
        std::vector<std::string> keys;
        for (unsigned i = 0; i < table->GetKeyCount(); ++i)
        {
            keys.emplace_back(table->GetKeyAt(i));
        }
        return keys;
    }

    KVTable table = CreateTable("values");
};

TEST_F(TableValue, IsReadBackAsItWasWritten)
{
    const Float2 two{1.5f, -2.5f};
    const Float3 three{1.0f, 2.0f, 3.0f};
    const Float4 four{1.0f, 2.0f, 3.0f, 4.0f};

    EXPECT_NE(table->SetInt("int", -7, 1), 0);
    EXPECT_NE(table->SetUInt("uint", 4000000000u, 1), 0);
    EXPECT_NE(table->SetFloat("float", 0.25f, 1), 0);
    EXPECT_NE(table->SetString("text", "walk", 1), 0);
    EXPECT_NE(table->SetFloat2("two", &two, 1), 0);
    EXPECT_NE(table->SetFloat3("three", &three, 1), 0);
    EXPECT_NE(table->SetFloat4("four", &four, 1), 0);

    Float2 readTwo{};
    Float3 readThree{};
    Float4 readFour{};
    EXPECT_EQ(table->GetInt("int"), -7);
    EXPECT_EQ(table->GetUInt("uint"), 4000000000u);
    EXPECT_EQ(table->GetFloat("float"), 0.25f);
    EXPECT_STREQ(table->GetString("text"), "walk");
    EXPECT_NE(table->GetFloat2("two", &readTwo), 0);
    EXPECT_NE(table->GetFloat3("three", &readThree), 0);
    EXPECT_NE(table->GetFloat4("four", &readFour), 0);
    EXPECT_EQ(readTwo.x, 1.5f);
    EXPECT_EQ(readTwo.y, -2.5f);
    EXPECT_EQ(readThree.x, 1.0f);
    EXPECT_EQ(readThree.y, 2.0f);
    EXPECT_EQ(readThree.z, 3.0f);
    EXPECT_EQ(readFour.x, 1.0f);
    EXPECT_EQ(readFour.y, 2.0f);
    EXPECT_EQ(readFour.z, 3.0f);
    EXPECT_EQ(readFour.w, 4.0f);
}

TEST_F(TableValue, HasTheTypeNumberOfItsLastWrite)
{
    const Float2 two{};
    const Float3 three{};
    const Float4 four{};
    const std::string longText(40, 'x');
    std::vector<int> types;
    const auto note = [&]
    {
        types.push_back(table->FindValue("value")->GetValueType());
    };

    table->SetString("value", "short", 1);
    note();
    table->SetString("value", longText.c_str(), 1);
    note();
    table->SetFloat2("value", &two, 1);
    note();
    table->SetFloat3("value", &three, 1);
    note();
    table->SetFloat4("value", &four, 1);
    note();
    table->AddTable("value", 1);
    note();
    table->SetInt("value", 1, 1);
    note();
    table->SetFloat("value", 1.0f, 1);
    note();
    table->SetUInt("value", 1, 1);
    note();

    EXPECT_EQ(types, (std::vector<int>{1, 1, 6, 7, 8, 9, 12, 13, 14}));
    EXPECT_EQ(table->GetTypeAt(0), 14);
    EXPECT_EQ(table->GetKeyCount(), 1u);
}

TEST_F(TableValue, SharesIts32BitsBetweenIntAndUnsigned)
{
    table->SetInt("int", -1, 1);
    table->SetUInt("uint", 0x80000000u, 1);

    EXPECT_EQ(table->GetUInt("int"), 0xffffffffu);
    EXPECT_EQ(table->GetInt("uint"), INT_MIN);
    EXPECT_EQ(table->FindValue("int")->GetUIntValue(), 0xffffffffu);
    EXPECT_EQ(table->FindValue("uint")->GetIntValue(), INT_MIN);
}

TEST_F(TableValue, ConvertsBetweenIntegersAndFloat)
{
    table->SetInt("int", -3, 1);
    table->SetUInt("uint", 3000000000u, 1);
    table->SetFloat("up", 2.75f, 1);
    table->SetFloat("down", -2.75f, 1);

    EXPECT_EQ(table->GetFloat("int"), -3.0f);
    EXPECT_EQ(table->GetFloat("uint"), 3000000000.0f);
    EXPECT_EQ(table->GetInt("up"), 2);
    EXPECT_EQ(table->GetInt("down"), -2);
    EXPECT_EQ(table->GetUInt("up"), 2u);
    EXPECT_EQ(table->GetUInt("down"), 0xfffffffeu);
}

TEST_F(TableValue, HoldsAtTheLimitsWhenAFloatLiesBeyondThem)
{
    const float infinity = std::numeric_limits<float>::infinity();
    table->SetFloat("huge", 1.0e20f, 1);
    table->SetFloat("deep", -1.0e20f, 1);
    table->SetFloat("infinite", infinity, 1);
    table->SetFloat("negative", -infinity, 1);
    table->SetFloat("none", std::numeric_limits<float>::quiet_NaN(), 1);
    table->SetFloat("edge", 2147483648.0f, 1);

    EXPECT_EQ(table->GetInt("huge"), INT_MAX);
    EXPECT_EQ(table->GetInt("deep"), INT_MIN);
    EXPECT_EQ(table->GetInt("infinite"), INT_MAX);
    EXPECT_EQ(table->GetInt("negative"), INT_MIN);
    EXPECT_EQ(table->GetInt("none"), 0);
    EXPECT_EQ(table->GetInt("edge"), INT_MAX);
    EXPECT_EQ(table->GetUInt("huge"), UINT_MAX);
    EXPECT_EQ(table->GetUInt("deep"), 0x80000000u);
    EXPECT_EQ(table->GetUInt("none"), 0u);
    EXPECT_EQ(table->GetUInt("edge"), 2147483648u);
}

TEST_F(TableValue, DoesNotConvertText)
{
    table->SetString("text", "12", 1);
    table->SetInt("int", 12, 1);

    EXPECT_EQ(table->GetInt("text"), 0);
    EXPECT_EQ(table->GetUInt("text"), 0u);
    EXPECT_EQ(table->GetFloat("text"), 0.0f);
    EXPECT_EQ(table->GetString("int"), nullptr);
    EXPECT_EQ(table->FindValue("int")->GetStringValue(), nullptr);
}

TEST_F(TableValue, LeavesTheTargetUntouchedForAnotherVectorType)
{
    const Float3 three{1.0f, 2.0f, 3.0f};
    table->SetFloat3("three", &three, 1);
    Float2 two{8.0f, 9.0f};
    Float4 four{8.0f, 9.0f, 10.0f, 11.0f};

    EXPECT_EQ(table->GetFloat2("three", &two), 0);
    EXPECT_EQ(table->GetFloat4("three", &four), 0);
    EXPECT_EQ(table->FindValue("three")->GetFloat2Value(&two), 0);

    EXPECT_EQ(two.x, 8.0f);
    EXPECT_EQ(four.w, 11.0f);
}

TEST_F(TableValue, GivesZeroOrNullForAMissingKey)
{
    Float2 two{};
    Float3 three{};
    Float4 four{};
    table->SetInt("other", 1, 1);

    EXPECT_EQ(table->GetInt("missing"), 0);
    EXPECT_EQ(table->GetUInt("missing"), 0u);
    EXPECT_EQ(table->GetFloat("missing"), 0.0f);
    EXPECT_EQ(table->GetString("missing"), nullptr);
    EXPECT_EQ(table->GetFloat2("missing", &two), 0);
    EXPECT_EQ(table->GetFloat3("missing", &three), 0);
    EXPECT_EQ(table->GetFloat4("missing", &four), 0);
    EXPECT_FALSE(table->GetTable("missing"));
    EXPECT_EQ(table->FindValue("missing"), nullptr);
    EXPECT_EQ(table->GetKeyCount(), 1u);
}

TEST_F(TableValue, BearsNullKeysAndNullTargets)
{
    const Float2 two{};
    const Float3 three{};
    const Float4 four{};
    table->SetFloat2("two", &two, 1);
    table->SetFloat3("three", &three, 1);
    table->SetFloat4("four", &four, 1);
    Float2 target{};

    EXPECT_EQ(table->SetInt(nullptr, 1, 1), 0);
    EXPECT_EQ(table->SetUInt(nullptr, 1, 1), 0);
    EXPECT_EQ(table->SetFloat(nullptr, 1.0f, 1), 0);
    EXPECT_EQ(table->SetString(nullptr, "text", 1), 0);
    EXPECT_EQ(table->SetString("text", nullptr, 1), 0);
    EXPECT_EQ(table->SetFloat2("none", nullptr, 1), 0);
    EXPECT_EQ(table->SetFloat3("none", nullptr, 1), 0);
    EXPECT_EQ(table->SetFloat4("none", nullptr, 1), 0);
    EXPECT_EQ(table->SetFloat2(nullptr, &two, 1), 0);
    EXPECT_FALSE(table->AddTable(nullptr, 1));
    EXPECT_EQ(table->AttachTable(nullptr, table, 1), 0);
    EXPECT_EQ(table->GetInt(nullptr), 0);
    EXPECT_EQ(table->GetUInt(nullptr), 0u);
    EXPECT_EQ(table->GetFloat(nullptr), 0.0f);
    EXPECT_EQ(table->GetString(nullptr), nullptr);
    EXPECT_EQ(table->GetFloat2(nullptr, &target), 0);
    EXPECT_EQ(table->GetFloat2("two", nullptr), 0);
    EXPECT_EQ(table->GetFloat3("three", nullptr), 0);
    EXPECT_EQ(table->GetFloat4("four", nullptr), 0);
    EXPECT_FALSE(table->GetTable(nullptr));
    EXPECT_EQ(table->FindValue(nullptr), nullptr);
    EXPECT_EQ(table->GetValueListener(nullptr), nullptr);
    EXPECT_EQ(table->FindValue("two")->GetFloat2Value(nullptr), 0);
    EXPECT_EQ(table->FindValue("three")->GetFloat3Value(nullptr), 0);
    EXPECT_EQ(GetKeys(), (std::vector<std::string>{"two", "three", "four"}));
}

TEST_F(TableValue, IsACopyOfTheText)
{
    char text[] = "abc";
    table->SetString("text", text, 1);

    text[0] = 'x';

    EXPECT_STREQ(table->GetString("text"), "abc");
}

TEST_F(TableValue, KeepsTextsOfEachLengthAcrossRewrites)
{
    for (std::size_t length : {0u, 1u, 14u, 15u, 16u, 17u, 100u, 5000u, 99u, 16u, 15u, 0u, 16u})
    {
        const std::string text(length, static_cast<char>('a' + length % 26));

        EXPECT_NE(table->SetString("text", text.c_str(), 1), 0);

        EXPECT_EQ(table->GetString("text"), text);
        EXPECT_EQ(table->FindValue("text")->GetStringValue(), text);
    }
}

TEST_F(TableValue, MayBeWrittenWithAPartOfItsOwnText)
{
    table->SetString("long", "0123456789abcdefghijklmnop", 1);
    table->SetString("long", table->GetString("long") + 5, 1);
    EXPECT_STREQ(table->GetString("long"), "56789abcdefghijklmnop");

    table->SetString("long", table->GetString("long") + 12, 1);
    EXPECT_STREQ(table->GetString("long"), "hijklmnop");

    table->SetString("long", table->GetString("long") + 3, 1);
    EXPECT_STREQ(table->GetString("long"), "klmnop");
}

TEST_F(TableValue, StaysWhereItIsWhileTheTableGrows)
{
    std::vector<KVValue*> values;
    for (int i = 0; i < 1000; ++i)
    {
        const std::string key = "key" + std::to_string(i);
        table->SetInt(key.c_str(), i, 1);
        values.push_back(table->FindValue(key.c_str()));
    }

    for (int i = 0; i < 1000; ++i)
    {
        const std::string key = "key" + std::to_string(i);
        ASSERT_EQ(table->FindValue(key.c_str()), values[static_cast<std::size_t>(i)]);
        ASSERT_EQ(values[static_cast<std::size_t>(i)]->GetIntValue(), i);
    }
}

TEST_F(TableValue, KeepsItsTextWhereItIsUntilItIsRewritten)
{
    table->SetString("short", "abc", 1);
    table->SetString("long", "a text that is longer than sixteen", 1);
    const char* shortText = table->GetString("short");
    const char* longText = table->GetString("long");

    for (int i = 0; i < 100; ++i)
    {
        table->SetInt(std::to_string(i).c_str(), i, 1);
    }

    EXPECT_EQ(table->GetString("short"), shortText);
    EXPECT_EQ(table->GetString("long"), longText);
    EXPECT_STREQ(shortText, "abc");
}

TEST_F(TableValue, IsWalkedInTheOrderInWhichTheKeysWereMade)
{
    table->SetInt("zebra", 1, 1);
    table->SetString("ape", "x", 1);
    table->AddTable("10", 1);
    table->SetInt("zebra", 2, 1);

    EXPECT_EQ(GetKeys(), (std::vector<std::string>{"zebra", "ape", "10"}));
    EXPECT_EQ(table->GetTypeAt(0), 12);
    EXPECT_EQ(table->GetTypeAt(1), 1);
    EXPECT_EQ(table->GetTypeAt(2), 9);
    EXPECT_EQ(table->GetKeyAt(3), nullptr);
    EXPECT_EQ(table->GetTypeAt(3), 0);
}

TEST_F(TableValue, TellsKeysApartByEachByte)
{
    // Each length takes another way through the comparison.
    std::vector<std::string> keys{""};
    for (std::size_t length = 1; length <= 40; ++length)
    {
        for (std::size_t at = 0; at < length; ++at)
        {
            std::string key(length, 'a');
            key[at] = 'b';
            keys.push_back(key);
        }
        keys.emplace_back(length, 'a');
    }

    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        table->SetUInt(keys[i].c_str(), static_cast<unsigned>(i), 1);
    }

    ASSERT_EQ(table->GetKeyCount(), keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        ASSERT_EQ(table->GetUInt(keys[i].c_str()), i) << keys[i];
    }
}

TEST_F(TableValue, IsFoundAtEachNumberOfKeys)
{
    for (unsigned count = 1; count <= 40; ++count)
    {
        table->SetUInt(("k" + std::to_string(count)).c_str(), count, 1);

        ASSERT_EQ(table->GetKeyCount(), count);
        for (unsigned i = 1; i <= count; ++i)
        {
            ASSERT_EQ(table->GetUInt(("k" + std::to_string(i)).c_str()), i);
        }
        ASSERT_EQ(table->FindValue(("k" + std::to_string(count + 1)).c_str()), nullptr);
    }
}

TEST_F(TableValue, IsFoundByTheTextThatItsKeyHasNowWhateverStoodAtTheAddressBefore)
{
    char key[16] = "first";
    table->SetUInt(key, 1, 1);
    EXPECT_EQ(table->GetUInt(key), 1u);

    std::strcpy(key, "second");
    EXPECT_EQ(table->FindValue(key), nullptr);
    table->SetUInt(key, 2, 1);
    EXPECT_EQ(table->GetUInt(key), 2u);
    EXPECT_EQ(table->GetUInt("first"), 1u);

    std::strcpy(key, "sec");
    EXPECT_EQ(table->FindValue(key), nullptr);
    std::strcpy(key, "first");
    EXPECT_EQ(table->GetUInt(key), 1u);
    EXPECT_EQ(GetKeys(), (std::vector<std::string>{"first", "second"}));
}

TEST_F(TableValue, IsFoundByItsKeyFromAnyAddressInATableOfAnySize)
{
    constexpr unsigned kKeys = 40;
    std::vector<std::string> keys;
    for (unsigned i = 0; i < kKeys; ++i)
    {
        keys.push_back("key " + std::to_string(i));
        EXPECT_EQ(table->FindValue(keys[i].c_str()), nullptr);
        table->SetUInt(keys[i].c_str(), 100 + i, 1);
        for (unsigned j = 0; j <= i; ++j)
        {
            const std::string elsewhere = keys[j];
            ASSERT_EQ(table->GetUInt(keys[j].c_str()), 100 + j) << i;
            ASSERT_EQ(table->GetUInt(elsewhere.c_str()), 100 + j) << i;
            ASSERT_EQ(table->GetUInt(table->GetKeyAt(j)), 100 + j) << i;
        }
    }
}

TEST_F(TableValue, IsNotFoundInWhatAnEarlierTableLeftInItsPlace)
{
    const char* key = "left behind";
    table->SetUInt(key, 1, 1);
    CloseTable(table);

    table = CreateTable("next");

    EXPECT_EQ(table->FindValue(key), nullptr);
    table->SetUInt("other", 2, 1);
    EXPECT_EQ(table->FindValue(key), nullptr);
}

TEST_F(TableValue, HasAKeyOfItsOwnForTheEndOfAnother)
{
    const char* key = "transition";
    table->SetUInt(key, 1, 1);

    for (const char* end = key + 1; *end != '\0'; ++end)
    {
        EXPECT_EQ(table->FindValue(end), nullptr) << end;
    }
    table->SetUInt(key + 5, 2, 1);
    EXPECT_STREQ(table->GetKeyAt(1), "ition");
    EXPECT_EQ(table->GetUInt("ition"), 2u);
    EXPECT_EQ(table->GetUInt(key), 1u);
}

TEST_F(TableValue, IsFoundAmongAHundredThousandKeys)
{
    for (unsigned i = 0; i < 100000; ++i)
    {
        table->SetUInt(std::to_string(i * 7919u).c_str(), i, 1);
    }

    ASSERT_EQ(table->GetKeyCount(), 100000u);
    for (unsigned i = 0; i < 100000; ++i)
    {
        ASSERT_EQ(table->GetUInt(std::to_string(i * 7919u).c_str()), i);
        ASSERT_EQ(table->GetKeyAt(i), std::to_string(i * 7919u));
    }
    EXPECT_EQ(table->FindValue("1"), nullptr);
}

} // namespace
