// VELL: data-driven hierarchical state machines.
// tests/tools/SourceReaderTest.cpp: values with their places, and what is wrong with a text.
#include "document/DocumentParser.h"
#include "tests/support/SourceDir.h"
#include "tools/source/Reader.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using source::Kind;
using source::Options;
using source::Place;
using source::Problem;
using source::ReadText;
using source::Span;
using source::Text;
using source::Value;

using Lines = std::vector<std::string>;

std::string ToText(const Place& place)
{
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

std::string ToText(const Span& span)
{
    return ToText(span.begin) + "-" + ToText(span.end);
}

Lines ProblemsOf(const Text& text)
{
    Lines lines;
    for (const Problem& problem : text.problems)
    {
        std::string line = ToText(problem.where.begin) + " " + problem.message;
        line += problem.hint.empty() ? "" : "; " + problem.hint;
        line += problem.hasOther ? " @" + ToText(problem.other.begin) : "";
        lines.push_back(line);
    }
    return lines;
}

struct Case
{
    std::string text;
    Lines problems;
    bool isWhole; ///< the rest is read all the same
};

const std::vector<Case> kCases = {
    {"", {"1:1 the document is empty"}, false},
    {" \n ", {"1:1 the document is empty"}, false},
    {"\xef\xbb\xbf{}",
     {"1:1 a byte order mark before the document is not allowed; save the file as UTF-8 without a "
      "byte order mark"},
     true},
    {std::string("\xff\xfe{\0}\0", 6), {"1:1 the document is UTF-16; save it as UTF-8"}, false},
    {std::string("{\0}\0", 4), {"1:1 the document is UTF-16; save it as UTF-8"}, false},
    {"{} // end\n", {"1:4 a comment is not allowed; remove it"}, true},
    {"/* a\nb */{}", {"1:1 a comment is not allowed; remove it"}, true},
    {"# a\n{}", {"1:1 a comment is not allowed; remove it"}, true},
    {"{} /* a", {"1:4 this comment is never closed; add '*/' at its end"}, false},
    {"{\"a\": 1,\n}", {"1:8 trailing comma is not allowed; remove it"}, true},
    {"[1,\n 2 ,\n]", {"2:4 trailing comma is not allowed; remove it"}, true},
    {"{\"a\": 1\n \"b\": 2}", {"1:8 missing comma; add ',' behind this"}, true},
    {"[1\n 2]", {"1:3 missing comma; add ',' behind this"}, true},
    {"[1; 2]", {"1:3 ';' is not allowed here; write ','"}, true},
    {"{\"a\" 1}", {"1:5 missing ':' behind the name"}, true},
    {"{\"a\" = 1}", {"1:6 '=' is not allowed here; write ':'"}, true},
    {"{\"a\"}", {"1:5 the member 'a' has no value; add ':' and a value"}, false},
    {"{\"a\":}", {"1:6 a value is missing before this '}'"}, false},
    {"[,1]", {"1:2 a value is missing before this comma"}, false},
    {"[1,,2]", {"1:4 a value is missing before this comma"}, false},
    {"{\"a\":1,,}", {"1:8 one comma too many"}, false},
    {"{a: 1}", {"1:2 the name 'a' is not in quotes; write \"a\""}, true},
    {"{1: 2}", {"1:2 the name '1' is not in quotes; write \"1\""}, true},
    {"{{}}", {"1:2 a member's name is expected here, not '{'"}, false},
    {"{?}", {"1:2 a member's name is expected here; write it in double quotes"}, false},
    {"{'a': 'b'}",
     {"1:2 single quotes are not allowed; write \"a\"",
      "1:7 single quotes are not allowed; write \"b\""},
     true},
    {"[\"a\": 1]", {"1:5 ',' or a closing bracket is expected here, not ':' @1:1"}, false},
    {"[:1]",
     {"1:2 a value is expected here, not ':'; members belong in an object: {\"name\": value} "
      "@1:1"},
     false},
    {"{\"a\": [1}",
     {"1:9 ']' is expected here, not '}'; the '[' of line 1 is still open @1:7"},
     false},
    {"{\n\"a\": {\"b\": 1", {"2:6 this '{' is never closed; add the '}'"}, false},
    {"{\"a\": \"open\n}",
     {"1:7 this text has no closing quote before the line's end; add the quote; a new line within "
      "a text is written \\n"},
     false},
    {"[\"\\q\"]", {"1:3 '\\q' is not an escape; a backslash is written \\\\"}, true},
    {"[\"\\u12g4\"]", {"1:3 '\\u' needs four hexadecimal digits behind it"}, true},
    {"[\"\\ud800x\"]",
     {"1:3 this is the first half of a character, and the second half is missing"},
     true},
    {"[\"a\tb\"]", {"1:4 a tab is not allowed within a text; write \\t"}, true},
    {"[\"a\x01\"]",
     {"1:4 the control character 0x01 is not allowed within a text; remove it"},
     true},
    {"[+1]", {"1:2 a number may not begin with '+': +1; write 1"}, true},
    {"[.5]", {"1:2 a digit is missing at the front of this number: .5; write 0.5"}, true},
    {"[1.]", {"1:2 a digit is missing behind the decimal point: 1.; write 1.0"}, true},
    {"[1e]", {"1:2 a digit is missing in the exponent: 1e"}, true},
    {"[01]", {"1:2 a number may not begin with a 0 before other digits: 01; write 1"}, true},
    {"[0x10]", {"1:2 this is not a number: 0x10; write 16"}, true},
    {"[-0X1f]", {"1:2 this is not a number: -0X1f; write -31"}, true},
    {"[0x1g]", {"1:2 this is not a number: 0x1g"}, true},
    {"{\"a\": 3,05}", {"1:7 a decimal point is written '.'; write 3.05"}, true},
    {"{\"a\": 3, 0}",
     {"1:10 the name '0' is not in quotes; write \"0\"",
      "1:11 the member '0' has no value; add ':' and a value"},
     false},
    {"{\u201ca\u201d: \u201eb c\u201f, \u00abd\u00bb: \u2018it\u201cs\u2019}",
     {"1:2 typographic quotes are not allowed; write \"a\"",
      "1:7 typographic quotes are not allowed; write \"b c\"",
      "1:14 typographic quotes are not allowed; write \"d\"",
      "1:19 typographic quotes are not allowed; write \"it\u201cs\""},
     true},
    {"[\u201ca]",
     {"1:2 typographic quotes are not allowed; write \" at both ends of the text"},
     false},
    {"{\u00a0\"a\":\u00a0"
     "1\u00a0,\n\u3000\"b\": 2}",
     {"1:2 a no-break space (U+00A0) is not allowed here; write a plain space",
      "2:1 an ideographic space (U+3000) is not allowed here; write a plain space"},
     true},
    {"[1e999]", {"1:2 this number is too large: 1e999"}, true},
    {"[True, NULL]",
     {"1:2 unknown word 'True'; write true", "1:8 unknown word 'NULL'; write null"},
     true},
    {"[walk]", {"1:2 the text 'walk' is not in quotes; write \"walk\""}, true},
    {"[NaN]", {"1:2 'NaN' is not a JSON value; write a number"}, false},
    {"[?]", {"1:2 a value is expected here, not '?'"}, false},
    {"{} {}",
     {"1:4 nothing is allowed behind the document's end; remove it, or a closing bracket too many "
      "before it"},
     false},
    {"{\"a\": 1,\n \"b\": 2,\n \"a\": 3}",
     {"3:2 the member 'a' is already on line 1, and only the first counts; remove one of them "
      "@1:2"},
     true},
    {"[\"a\xe4\xe4\"]", {"1:4 the byte 0xE4 is not UTF-8; save the file as UTF-8"}, true},
    {"[\"a\\u0000b\"]", {"1:4 a NUL character ends this text for the library; remove it"}, true},
    {std::string("[\"abc\"]\0x", 9),
     {"1:8 the library reads nothing behind this NUL character; remove it"},
     true},
};

std::string Nested(std::size_t depth)
{
    return std::string(depth, '[') + std::string(depth, ']');
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool IsParsedByTheLibrary(const std::string& text)
{
    GenericDocument document;
    ParseText(text.c_str(), document);
    return !document.HasParseError();
}

/// Changes a few bytes of `text` at random.
void Mutate(std::string& text, std::mt19937& random)
{
    const std::string bytes = "{}[]\",:01.eE+-\\/ \n\ttrue#nul'u\x80\xff";
    for (std::uint_fast32_t changes = 1 + random() % 3; changes != 0 && !text.empty(); --changes)
    {
        const std::size_t at = random() % text.size();
        switch (random() % 4)
        {
        case 0:
            text.erase(at, 1 + random() % 3);
            break;
        case 1:
            text.insert(at, 1, bytes[random() % bytes.size()]);
            break;
        case 2:
            text[at] = bytes[random() % bytes.size()];
            break;
        default:
            text.insert(at, text.substr(random() % text.size(), random() % 10));
        }
    }
}

} // namespace

TEST(SourceReader, NamesEveryMistakeOfATextAtItsPlace)
{
    for (const Case& entry : kCases)
    {
        const Text text = ReadText(entry.text);

        EXPECT_EQ(ProblemsOf(text), entry.problems) << entry.text;
        EXPECT_EQ(text.isWhole, entry.isWhole) << entry.text;
        EXPECT_EQ(text.parsed, IsParsedByTheLibrary(entry.text)) << entry.text;
    }
}

TEST(SourceReader, GivesEachValueItsPlaceAndMeaning)
{
    const Text text =
        ReadText("{\n  \"a\u00e4\": [1, -2,\t3.5, 18446744073709551616],\n"
                 "  \"t\\u0065xt\": \"\\ud83d\\ude00\\n\", \"n\": null, \"b\": true\n}\n");

    ASSERT_TRUE(text.parsed);
    ASSERT_EQ(text.root.members.size(), 4u);
    EXPECT_EQ(ToText(text.root.span), "1:1-4:2");
    const source::Member& list = text.root.members[0];
    EXPECT_EQ(list.name, "a\u00e4");
    EXPECT_EQ(ToText(list.nameSpan), "2:3-2:7");
    EXPECT_EQ(ToText(list.value.span), "2:9-2:43");
    ASSERT_EQ(list.value.elements.size(), 4u);
    EXPECT_EQ(list.value.elements[0].kind, Kind::UInt);
    EXPECT_EQ(list.value.elements[1].kind, Kind::Int);
    EXPECT_EQ(list.value.elements[1].ReadUInt(), 0xfffffffeu);
    EXPECT_EQ(ToText(list.value.elements[2].span), "2:17-2:20");
    EXPECT_EQ(list.value.elements[2].number, 3.5);
    EXPECT_EQ(list.value.elements[3].kind, Kind::Double);
    EXPECT_EQ(list.value.elements[3].text, "18446744073709551616");
    EXPECT_EQ(text.root.Find("text")->text, "\U0001F600\n");
    EXPECT_EQ(text.root.Find("n")->kind, Kind::Null);
    EXPECT_TRUE(text.root.Find("b")->boolean);
    EXPECT_EQ(text.root.Find("c"), nullptr);
}

TEST(SourceReader, FindsTheFirstOfTwoMembersOfOneName)
{
    const Text text = ReadText("{\"a\": 1, \"a\": 2}");

    EXPECT_EQ(text.root.Find("a")->bits, 1u);
}

TEST(SourceReader, AllowsCommentsAndTrailingCommasWhenAsked)
{
    const Text text = ReadText("// a\n{\"a\": [1, /* b */ 2,],}\n", {true, true});

    EXPECT_EQ(ProblemsOf(text), Lines{});
    EXPECT_TRUE(text.parsed);
    ASSERT_EQ(text.comments.size(), 2u);
    EXPECT_EQ(ToText(text.comments[1]), "2:11-2:18");
}

TEST(SourceReader, LeavesOutWhatIsNestedTooDeep)
{
    EXPECT_TRUE(ReadText(Nested(1000)).isWhole);
    const Text text = ReadText(Nested(1001));
    EXPECT_EQ(ProblemsOf(text), Lines{"1:1001 nested more than 1000 deep"});
    EXPECT_TRUE(text.parsed);
    EXPECT_FALSE(text.isWhole);
    EXPECT_TRUE(ReadText(Nested(100000)).parsed);
    EXPECT_FALSE(ReadText(std::string(100000, '[')).parsed);
}

TEST(SourceReader, GivesTheLineOfAPlace)
{
    const std::string bytes = "one\r\ntwo\n\nthree";

    EXPECT_EQ(source::GetLine(bytes, {1, 3, 2}), "one");
    EXPECT_EQ(source::GetLine(bytes, {2, 4, 8}), "two");
    EXPECT_EQ(source::GetLine(bytes, {3, 1, 9}), "");
    EXPECT_EQ(source::GetLine(bytes, {4, 6, 15}), "three");
    EXPECT_EQ(source::GetLine("", {1, 1, 0}), "");
}

TEST(SourceReader, AcceptsExactlyWhatTheLibraryAccepts)
{
    const std::string sample = ReadFile(std::string(SourceDir()) + "/samples/locomotion.json");
    ASSERT_TRUE(ReadText(sample).parsed);
    std::mt19937 random(1);
    int accepted = 0;
    for (int i = 0; i < 3000; ++i)
    {
        std::string text = sample.substr(0, 700) + "\"\"}]}";
        text = random() % 2 == 0 ? text : "[1.5e3, -0, 0.1, \"a\\u00e4\\n\", {\"a\": true}, null]";
        Mutate(text, random);
        const bool isAccepted = IsParsedByTheLibrary(text);
        accepted += isAccepted ? 1 : 0;

        const Text read = ReadText(text);

        EXPECT_EQ(read.parsed, isAccepted) << text;
        EXPECT_TRUE(read.parsed || !read.problems.empty()) << text;
    }
    EXPECT_GT(accepted, 100);
}

} // namespace vell::test
