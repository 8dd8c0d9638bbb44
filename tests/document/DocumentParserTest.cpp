// VELL: data-driven hierarchical state machines.
// tests/document/DocumentParserTest.cpp: which texts are documents, and how others are reported.
#include "document/DocumentParser.h"

#include <durm/DURMBaseLib.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TempFile.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

struct Fault
{
    const char* text;
    int code; ///< of the parser
};

/// A text for each code that the parser has for a fault of the text.
const std::vector<Fault> kFaults = {
    {"", 1},
    {" \t\r\n", 1},
    {"{} {}", 2},
    {"{},", 2},
    {"{\"a\":nul}", 3},
    {"[1,]", 3},
    {"]", 3},
    {"NaN", 3},
    {"// a comment\n{}", 3},
    {"\xef\xbb\xbf{}", 3},
    {"\v{}", 3},
    {"{1:2}", 4},
    {"{\"a\":1,}", 4},
    {"{\"a\" 1}", 5},
    {"{\"a\":1 \"b\":2}", 6},
    {"[1 2]", 7},
    {"[\"\\u12g4\"]", 8},
    {"[\"\\ud800x\"]", 9},
    {"[\"\\q\"]", 10},
    {"[\"open", 11},
    {"[1e999]", 13},
    {"[1.]", 14},
    {"[1e]", 15},
};

int CodeOfText(const std::string& text)
{
    GenericDocument document;
    ParseText(text.c_str(), document);
    return static_cast<int>(document.GetParseError());
}

int CodeOfFile(const std::string& text)
{
    const TempFile file(text);
    GenericDocument document;
    ParseText(ReadWholeFile(file.Path()).c_str(), document);
    return static_cast<int>(document.GetParseError());
}

std::string Repeated(const std::string& piece, int count)
{
    std::string text;
    text.reserve(piece.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
    {
        text += piece;
    }
    return text;
}

std::string Nested(int depth)
{
    return Repeated("[", depth) + Repeated("]", depth);
}

constexpr int kMillion = 1000000;

} // namespace

TEST(DocumentParser, ReportsTheParsersCodeForEveryFault)
{
    for (const Fault& fault : kFaults)
    {
        EXPECT_EQ(CodeOfText(fault.text), fault.code) << fault.text;
        EXPECT_EQ(CodeOfFile(fault.text), fault.code) << fault.text;
    }
}

TEST(DocumentParser, TakesAFileThatCannotBeReadForAnEmptyOne)
{
    GenericDocument document;
    ParseText(ReadWholeFile("/no/such/file.json").c_str(), document);
    EXPECT_EQ(document.GetParseError(), rapidjson::kParseErrorDocumentEmpty);

    ParseText(ReadWholeFile("/").c_str(), document);
    EXPECT_EQ(document.GetParseError(), rapidjson::kParseErrorDocumentEmpty);
}

TEST(DocumentParser, TakesBlankTabLineFeedAndCarriageReturnForWhitespace)
{
    EXPECT_EQ(CodeOfText(" \t\r\n{ \"a\"\t:\r1\n} \t\r\n"), 0);
}

TEST(DocumentParser, KeepsBytesThatAreNoUtf8)
{
    GenericDocument document;

    ParseText("[\"a\xff\xc0z\"]", document);

    ASSERT_FALSE(document.HasParseError());
    EXPECT_STREQ(document[0].GetString(), "a\xff\xc0z");
}

TEST(DocumentParser, LeavesTheTextAsItIs)
{
    const std::string before = "{\"name\":\"with \\u0041 and \\n\"}";
    std::string text = before;
    GenericDocument document;

    ParseText(text.c_str(), document);

    ASSERT_FALSE(document.HasParseError());
    EXPECT_EQ(text, before);
}

TEST(DocumentParser, ReadsAFileLongerThanItsFirstBuffer)
{
    const std::string name(200000, 'n');
    const TempFile file(JsonObject().Set(JSON_Name, name).Text());
    GenericDocument document;

    ParseText(ReadWholeFile(file.Path()).c_str(), document);

    ASSERT_FALSE(document.HasParseError());
    EXPECT_EQ(document[DURMBaseLib::GetJsonName(JSON_Name)].GetStringLength(), 200000u);
}

TEST(DocumentParser, ReadsAFileWhateverAlphabetItsNameIsIn)
{
    for (const char* name : {"plain", "two words", "caf\u00e9",
                             "\u03ba\u03cc\u03c3\u03bc\u03bf\u03c2", "\u4e16\u754c", "\U0001f3ae"})
    {
        const TempFile file("[1]", name);
        for (const std::string& path : SpellingsOf(file.Path()))
        {
            GenericDocument document;

            ParseText(ReadWholeFile(path.c_str()).c_str(), document);

            EXPECT_FALSE(document.HasParseError()) << path;
        }
    }
}

TEST(DocumentParser, TakesATextOnBothSidesOfTheDepthAtWhichItChangesItsWay)
{
    for (const int depth : {999, 1000, 1001, 1002})
    {
        EXPECT_EQ(CodeOfText(Nested(depth)), 0) << depth;
        EXPECT_EQ(CodeOfText(Nested(depth) + "]"), 2) << depth;
        EXPECT_EQ(CodeOfText("[" + Nested(depth)), 7) << depth;
    }
}

TEST(DocumentParser, BearsAMillionLevels)
{
    EXPECT_EQ(CodeOfText(Nested(kMillion)), 0);
    EXPECT_EQ(CodeOfText(Repeated("{\"a\":", kMillion) + "1" + Repeated("}", kMillion)), 0);
}

TEST(DocumentParser, ReportsAMillionOpenBracketsFromTextAndFromFile)
{
    const std::string arrays = Repeated("[", kMillion);
    const std::string objects = Repeated("{\"a\":", kMillion);

    EXPECT_EQ(CodeOfText(arrays), 3);
    EXPECT_EQ(CodeOfFile(arrays), 3);
    EXPECT_EQ(CodeOfText(objects), 3);
    EXPECT_EQ(CodeOfText(Repeated("]", kMillion)), 3);
}

TEST(DocumentParser, CountsNoBracketsInTexts)
{
    const std::string brackets = Repeated("[", 5000);

    EXPECT_EQ(CodeOfText("[\"" + brackets + "\"]"), 0);
    EXPECT_EQ(CodeOfText("[\"\\\"" + brackets + "\"]"), 0);
    EXPECT_EQ(CodeOfText("[\"\\\\\"," + Nested(5000) + "]"), 0);
    EXPECT_EQ(CodeOfText("[\"" + brackets), 11);
    EXPECT_EQ(CodeOfText("[\"" + brackets + "\\"), 10);
}

// Only a text that is malformed is looked at for its depth; one that is taken for shallow although
// it is deep exhausts the stack.
TEST(DocumentParser, SeesTheDepthOfAMalformedTextBehindEscapesInTexts)
{
    const std::string deep = Repeated("[", kMillion);
    const std::string deepObjects = Repeated("{\"a\":", kMillion);

    for (const char* text :
         {"", "\\\"", "\\\\", "\\\\\\\"", "\\\\\\\\", "a\\\"b\\\"c", "\\u0022", "]]]}}}", "\\\"]"})
    {
        const std::string start = "[\"" + std::string(text) + "\",";
        EXPECT_EQ(CodeOfText(start + deep), 3) << text;
        EXPECT_EQ(CodeOfText(start + deepObjects), 3) << text;
        EXPECT_EQ(CodeOfFile(start + deep), 3) << text;
        EXPECT_EQ(CodeOfText("{\"" + std::string(text) + "\":" + deep), 3) << text;
    }
}

// The way without recursion would call this error by another code.
TEST(DocumentParser, ReportsAMalformedTextThatIsWideAndNotDeepByTheUsualCode)
{
    EXPECT_EQ(CodeOfText("]\"" + Repeated("[", 5000) + "\""), 3);
    EXPECT_EQ(CodeOfText("]\"" + Repeated("{", 5000)), 3);
    EXPECT_EQ(CodeOfText("]\"\\\"" + Repeated("[", 5000) + "\""), 3);
    EXPECT_EQ(CodeOfText("]" + Repeated("[]", 5000)), 3);
    EXPECT_EQ(CodeOfText("]" + Repeated("{}", 5000)), 3);
    EXPECT_EQ(CodeOfText("]" + Repeated("]", 5000) + Nested(1000)), 3);
}

TEST(DocumentParser, LoadsADocumentWithADeepMemberThatNobodyReads)
{
    LogRecorder log;
    DocumentBuilder document;
    document.Start(10).Node(Generic("Stand", 10).Set("notes", Json::Raw(Nested(100000))));
    document.Root().Set("deep", Json::Raw(Repeated("{\"a\":", 5000) + "1" + Repeated("}", 5000)));

    TestMachine machine(document);

    EXPECT_EQ(machine.Init(), 1);
    machine.Start();
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(DocumentParser, ReadsWholeNumbersOf64Bits)
{
    GenericDocument document;

    ParseText("[9000000000, -9000000000, 18446744073709551615]", document);

    ASSERT_TRUE(document.IsArray());
    ASSERT_EQ(document.Size(), 3u);
    EXPECT_EQ(document[0].GetInt64(), 9000000000);
    EXPECT_EQ(document[1].GetInt64(), -9000000000);
    EXPECT_EQ(document[2].GetUint64(), 18446744073709551615u);
}

} // namespace vell::test
