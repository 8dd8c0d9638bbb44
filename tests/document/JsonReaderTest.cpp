// VELL: data-driven hierarchical state machines.
// tests/document/JsonReaderTest.cpp: the rules by which a document's members are read.
#include "document/JsonReader.h"

#include "tests/support/Json.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// One value, parsed.
class Parsed
{
public:
    explicit Parsed(const Json& json)
    {
        document.Parse(json.Text().c_str());
        EXPECT_FALSE(document.HasParseError());
    }
    explicit Parsed(const char* text) : Parsed(Json::Raw(text))
    {
    }
    const GenericValue& operator*() const
    {
        return document;
    }

private:
    GenericDocument document;
};

/// A value of each type other than a number.
const std::vector<std::string> kNoNumbers = {"null", "true", "false", "\"7\"", "[7]", "{\"a\":7}"};

unsigned int LowBits(double number)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    return static_cast<unsigned int>(bits);
}

} // namespace

TEST(JsonReader, FindsAMemberByItsNumberAndByItsText)
{
    const Parsed object(JsonObject().Set(JSON_ID, 5).Set("other", 6));

    ASSERT_NE(FindMember(*object, JSON_ID), nullptr);
    ASSERT_NE(FindMember(*object, "other"), nullptr);
    EXPECT_EQ(FindMember(*object, JSON_ID)->GetInt(), 5);
    EXPECT_EQ(FindMember(*object, "other")->GetInt(), 6);
}

TEST(JsonReader, FindsTheFirstOfSeveralMembersOfOneName)
{
    const Parsed object(JsonObject().Add("twice", 1).Add("twice", 2));

    EXPECT_EQ(GetMember(*object, "twice").GetInt(), 1);
}

TEST(JsonReader, TellsLongNamesApart)
{
    const Parsed object(
        JsonObject().Set("a name of many letters", 1).Set("a name of many metters", 2));

    EXPECT_EQ(GetMember(*object, "a name of many letters").GetInt(), 1);
    EXPECT_EQ(GetMember(*object, "a name of many metters").GetInt(), 2);
    EXPECT_EQ(FindMember(*object, "a name of many lettern"), nullptr);
}

TEST(JsonReader, TakesNoMemberForAnotherWhoseNameItBegins)
{
    const Parsed object(JsonObject().Set("names", 1).Set("nam", 2));

    EXPECT_EQ(FindMember(*object, "name"), nullptr);
}

TEST(JsonReader, FindsInOneWalkWhatItFindsByName)
{
    JsonObject many;
    for (int i = 0; i < 253; ++i)
    {
        many.Add("filler" + std::to_string(i), i);
    }
    many.Add(GetJsonName(JSON_ID), 1).Add(GetJsonName(JSON_ID), 2).Add(GetJsonName(JSON_Name), 3);
    const Parsed large(many);
    const Parsed small(
        JsonObject().Add("nam", 1).Set(JSON_Name, 2).Add("", 3).Add(GetJsonName(JSON_Name), 4));
    const Parsed empty("{}");
    const Parsed text("\"name\"");

    for (const Parsed* object : {&large, &small, &empty, &text})
    {
        const Members members(**object);
        for (int number = 0; number < kVocabularySize; ++number)
        {
            const auto member = static_cast<__JSONTYPES__>(number);
            EXPECT_EQ(members.Find(member), FindMember(**object, member)) << number;
            EXPECT_EQ(&members.Get(member), &GetMember(**object, member)) << number;
        }
    }
}

TEST(JsonReader, FindsNothingInWhatIsNoObject)
{
    for (const char* text : {"null", "true", "7", "\"text\"", "[{\"a\":1}]"})
    {
        const Parsed value(text);
        EXPECT_EQ(FindMember(*value, JSON_ID), nullptr) << text;
        EXPECT_EQ(FindMember(*value, "a"), nullptr) << text;
        EXPECT_TRUE(GetMember(*value, JSON_ID).IsNull()) << text;
    }
}

TEST(JsonReader, FindsNothingForANumberOrATextThatNamesNoMember)
{
    const Parsed object(JsonObject().Set("", 1));
    const char* null = nullptr;

    EXPECT_EQ(FindMember(*object, static_cast<__JSONTYPES__>(0x7fff)), nullptr);
    EXPECT_EQ(FindMember(*object, static_cast<__JSONTYPES__>(-1)), nullptr);
    EXPECT_EQ(FindMember(*object, static_cast<__JSONTYPES__>(0xff)), nullptr);
    EXPECT_EQ(FindMember(*object, null), nullptr);
}

TEST(JsonReader, GivesOneSharedNullValueForEveryMissingMember)
{
    const Parsed object(JsonObject().Set(JSON_Name, "x"));

    EXPECT_TRUE(GetMember(*object, JSON_ID).IsNull());
    EXPECT_EQ(&GetMember(*object, JSON_ID), &GetMember(*object, "absent"));
}

TEST(JsonReader, ReadsMissingMembersAsNullZeroAndFalse)
{
    const Parsed object("{}");
    const GenericValue& missing = GetMember(*object, JSON_ID);

    EXPECT_EQ(ReadText(missing), nullptr);
    EXPECT_EQ(ReadUInt(missing), 0u);
    EXPECT_EQ(ReadInt(missing), 0);
    EXPECT_FALSE(ReadBool(missing));
    EXPECT_EQ(ReadFloat(missing), 0.0f);
    EXPECT_EQ(ReadText(*object, JSON_Name), nullptr);
    EXPECT_EQ(ReadUInt(*object, JSON_ID), 0u);
}

TEST(JsonReader, ReadsATextInPlace)
{
    const Parsed object(JsonObject().Set(JSON_Name, "a longer name than fits in place"));
    const GenericValue& value = GetMember(*object, JSON_Name);

    EXPECT_STREQ(ReadText(value), "a longer name than fits in place");
    EXPECT_EQ(ReadText(value), value.GetString());
    EXPECT_EQ(ReadText(*object, JSON_Name), value.GetString());
}

TEST(JsonReader, ReadsAnyOtherTypeAsANullText)
{
    for (const char* text : {"null", "true", "7", "1.5", "[\"a\"]", "{\"a\":\"b\"}"})
    {
        EXPECT_EQ(ReadText(*Parsed(text)), nullptr) << text;
    }
}

TEST(JsonReader, ReadsTheLow32BitsOfAnInteger)
{
    EXPECT_EQ(ReadUInt(*Parsed("7")), 7u);
    EXPECT_EQ(ReadUInt(*Parsed("4294967295")), 0xffffffffu);
    EXPECT_EQ(ReadUInt(*Parsed("4294967303")), 7u);
    EXPECT_EQ(ReadUInt(*Parsed("18446744073709551615")), 0xffffffffu);
    EXPECT_EQ(ReadUInt(*Parsed("-1")), 0xffffffffu);
    EXPECT_EQ(ReadUInt(*Parsed("-4294967297")), 0xffffffffu);
    EXPECT_EQ(ReadInt(*Parsed("-7")), -7);
    EXPECT_EQ(ReadInt(*Parsed("4294967295")), -1);
    EXPECT_EQ(ReadInt(*Parsed("2147483648")), -2147483647 - 1);
}

TEST(JsonReader, ReadsAnIntegerFromTheLow32BitsOfARealNumbersDouble)
{
    EXPECT_EQ(ReadUInt(*Parsed("7.0")), 0u);
    EXPECT_EQ(ReadUInt(*Parsed("0.1")), LowBits(0.1));
    EXPECT_NE(LowBits(0.1), 0u);
    EXPECT_EQ(ReadInt(*Parsed("0.1")), static_cast<int>(LowBits(0.1)));
    EXPECT_EQ(ReadUInt(*Parsed("36893488147419103232")), LowBits(36893488147419103232.0));
}

TEST(JsonReader, ReadsWhatIsNoNumberAsZero)
{
    for (const std::string& text : kNoNumbers)
    {
        EXPECT_EQ(ReadUInt(*Parsed(text.c_str())), 0u) << text;
        EXPECT_EQ(ReadInt(*Parsed(text.c_str())), 0) << text;
        EXPECT_EQ(ReadDouble(*Parsed(text.c_str())), 0.0) << text;
        EXPECT_EQ(ReadFloat(*Parsed(text.c_str())), 0.0f) << text;
    }
}

TEST(JsonReader, ReadsTheLiteralTrueAloneAsTrue)
{
    EXPECT_TRUE(ReadBool(*Parsed("true")));
    for (const char* text : {"false", "null", "1", "\"true\"", "[true]", "{}"})
    {
        EXPECT_FALSE(ReadBool(*Parsed(text))) << text;
    }
}

TEST(JsonReader, ReadsAFloatFromEveryFormOfNumber)
{
    EXPECT_EQ(ReadFloat(*Parsed("0.25")), 0.25f);
    EXPECT_EQ(ReadFloat(*Parsed("-3")), -3.0f);
    EXPECT_EQ(ReadFloat(*Parsed("4294967295")), 4294967296.0f);
    EXPECT_EQ(ReadFloat(*Parsed("-9223372036854775808")), -9223372036854775808.0f);
    EXPECT_EQ(ReadFloat(*Parsed("18446744073709551615")), 18446744073709551616.0f);
    EXPECT_EQ(ReadFloat(*Parsed("1e2")), 100.0f);
}

TEST(JsonReader, ReadsAFloatThroughADouble)
{
    EXPECT_EQ(ReadFloat(*Parsed("0.1")), static_cast<float>(0.1));
    EXPECT_EQ(ReadDouble(*Parsed("0.1")), 0.1);
    EXPECT_EQ(ReadDouble(*Parsed("16777217")), 16777217.0);
    EXPECT_EQ(ReadFloat(*Parsed("16777217")), 16777216.0f);
}

TEST(JsonReader, GivesTheFirstElementOfAnArray)
{
    const Parsed array("[7,8]");

    EXPECT_EQ(GetFirstElement(*array).GetInt(), 7);
}

TEST(JsonReader, GivesTheNullValueForTheFirstElementOfWhatHasNone)
{
    for (const char* text : {"[]", "null", "7", "\"text\"", "{\"a\":1}"})
    {
        EXPECT_TRUE(GetFirstElement(*Parsed(text)).IsNull()) << text;
    }
}

} // namespace vell::test
