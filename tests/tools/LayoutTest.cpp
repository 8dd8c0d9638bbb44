// VELL: data-driven hierarchical state machines.
// tests/tools/LayoutTest.cpp: the one layout, and that it loses nothing.
#include "tools/layout/Layout.h"

#include "tests/support/SourceDir.h"
#include "tests/tools/CommandRun.h"
#include "tools/vell/DocumentFiles.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using layout::LayOut;

source::Text Read(const std::string& bytes)
{
    source::Options options;
    options.allowComments = true;
    options.allowTrailingCommas = true;
    return source::ReadText(bytes, options);
}

std::string LayOutText(const std::string& bytes)
{
    const source::Text text = Read(bytes);
    EXPECT_TRUE(text.parsed) << bytes;
    return LayOut(text);
}

/// The comments, without the blanks at the ends of their lines.
std::vector<std::string> CommentsOf(const source::Text& text)
{
    std::vector<std::string> comments;
    for (const source::Span& span : text.comments)
    {
        std::string comment;
        for (std::uint32_t i = span.begin.offset; i < span.end.offset; ++i)
        {
            const char c = text.bytes[i];
            if (c == '\n')
            {
                comment.erase(comment.find_last_not_of(" \t\r") + 1);
            }
            comment += c;
        }
        comment.erase(comment.find_last_not_of(" \t\r") + 1);
        comments.push_back(comment);
    }
    return comments;
}

/// Expects what holds for the layout of every text, and gives whether the text could be read.
bool ExpectLayoutKeeps(const std::string& bytes)
{
    const source::Text text = Read(bytes);
    if (!text.parsed)
    {
        return false;
    }
    const std::string once = LayOut(text);
    const source::Text again = Read(once);
    EXPECT_TRUE(again.parsed) << bytes;
    EXPECT_TRUE(layout::IsSame(text, again)) << bytes << "\nbecame\n" << once;
    EXPECT_EQ(CommentsOf(text), CommentsOf(again)) << bytes << "\nbecame\n" << once;
    EXPECT_EQ(LayOut(again), once) << bytes;
    return true;
}

/// Writes random texts: every kind of value, with white space, comments and trailing commas where
/// they may be.
class RandomText
{
public:
    explicit RandomText(unsigned int seed) : random(seed)
    {
    }

    std::string Write()
    {
        return Gap() + Value(0) + Gap();
    }

    unsigned int Below(unsigned int limit)
    {
        return static_cast<unsigned int>(random() % limit);
    }

private:
    std::string Pick(const std::vector<std::string>& texts)
    {
        return texts[Below(static_cast<unsigned int>(texts.size()))];
    }

    std::string Gap()
    {
        std::string gap;
        for (unsigned int count = Below(4); count > 1; --count)
        {
            gap += Pick({" ", "\n", "\n\n\n", "\t", "\r\n", "// line {\n", "/* block [ */",
                         "/* two,\n  lines   \n*/", "//  \r\n", "/**/", " "});
        }
        return gap;
    }

    std::string Value(unsigned int depth)
    {
        switch (Below(depth < 5 ? 9 : 6))
        {
        case 0:
            return Pick({"true", "false", "null"});
        case 1:
        case 2:
            return Pick({"0", "-0", "1.50", "1e5", "-2E-3", "18446744073709551616", "0.1"});
        case 3:
        case 4:
        case 5:
            return Pick({"\"\"", "\"a // b\"", "\"\\u0041\"", "\"\\/\"", "\"{\"", "\"/*\""});
        case 6:
            return List("[", "]", false, depth);
        default:
            return List("{", "}", true, depth);
        }
    }

    std::string List(const char* open, const char* close, bool isObject, unsigned int depth)
    {
        std::string list = open + Gap();
        const unsigned int count = Below(4);
        for (unsigned int i = 0; i < count; ++i)
        {
            const std::string name =
                Pick({"\"layers\"", "\"nodes\"", "\"head\"", "\"a\"", "\"a\"", "\"\\u006e\""});
            list += isObject ? name + Gap() + ":" + Gap() : "";
            list += Value(depth + 1) + Gap();
            list += i + 1 < count || Below(3) == 0 ? "," : "";
            list += Gap();
        }
        return list + close;
    }

    std::mt19937 random;
};

} // namespace

TEST(Layout, LeavesTheSamplesAsTheyAre)
{
    for (const char* name : {"samples/locomotion.json", "samples/character.json"})
    {
        const std::string bytes = tool::ReadWholeFile(std::string(SourceDir()) + "/" + name).bytes;
        ASSERT_NE(bytes, "") << name;

        EXPECT_EQ(LayOutText(bytes), bytes) << name;
    }
}

TEST(Layout, HasALinePerHeadMemberParameterAndNode)
{
    EXPECT_EQ(LayOutText(R"({"head":{"id":1,"version":3},"parameters":[{"name":"speed","default":)"
                         R"([{"VARIANT_Data":"0,0"}]}],"layers":[{"name":"Base","nodes":[{"id":10,)"
                         R"("children":[1,2]},{"id":11}]},{"name":"Empty","nodes":[]}],)"
                         R"("skeleton":{"modelFile":"a"},"global":[{"id":5}],"more":[1,2]})"),
              R"({
    "head": {
        "id": 1,
        "version": 3
    },
    "parameters": [
        {"name": "speed", "default": [{"VARIANT_Data": "0,0"}]}
    ],
    "layers": [
        {
            "name": "Base",
            "nodes": [
                {"id": 10, "children": [1, 2]},
                {"id": 11}
            ]
        },
        {
            "name": "Empty",
            "nodes": []
        }
    ],
    "skeleton": {
        "modelFile": "a"
    },
    "global": [
        {"id": 5}
    ],
    "more": [1, 2]
}
)");
}

TEST(Layout, ChangesWhiteSpaceAndTrailingCommasOnly)
{
    struct Case
    {
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"{}", "{}\n"},
        {" [ ] ", "[]\n"},
        {"1.50", "1.50\n"},
        {"{\"a\":1,}", "{\n    \"a\": 1\n}\n"},
        {"{\"b\":1,\"a\":2,\"b\":3}", "{\n    \"b\": 1,\n    \"a\": 2,\n    \"b\": 3\n}\n"},
        {"{\"\\u0061\":\"\\/\\u00e9\"}", "{\n    \"\\u0061\": \"\\/\\u00e9\"\n}\n"},
        {"{\"a\":[1,\r\n2 , 3e+0]}\r\n", "{\n    \"a\": [1, 2, 3e+0]\n}\n"},
        {"{\"head\":{}, \"layers\":[]}", "{\n    \"head\": {},\n    \"layers\": []\n}\n"},
        {"{\"layers\":[1,[{}]]}", "{\n    \"layers\": [\n        1,\n        [{}]\n    ]\n}\n"}};
    for (const Case& one : cases)
    {
        EXPECT_EQ(LayOutText(one.text), one.expected);
    }
}

TEST(Layout, KeepsOneBlankLineBetweenLines)
{
    EXPECT_EQ(LayOutText("{\n\n\"a\": 1,\n\n\n\n\"b\": [\n\n{},\n\n{}\n\n]\n\n}\n\n"),
              "{\n    \"a\": 1,\n\n    \"b\": [\n        {},\n\n        {}\n    ]\n}\n");
}

TEST(Layout, KeepsEachCommentWithWhatItIsAbout)
{
    struct Case
    {
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"// first\n{\"a\": 1} // last\n// end", "// first\n{\n    \"a\": 1\n} // last\n// end\n"},
        {"{\"a\": 1, // one\n \"b\": 2 // two\n}",
         "{\n    \"a\": 1, // one\n    \"b\": 2 // two\n}\n"},
        {"{\"a\": 1 // one\n, \"b\": 2}", "{\n    \"a\": 1, // one\n    \"b\": 2\n}\n"},
        {"{\"a\": 1 /* one */, /* two */ \"b\": 2}",
         "{\n    \"a\": 1, /* one */\n    /* two */\n    \"b\": 2\n}\n"},
        {"{\"a\": 1,\n\n// about b\n\"b\": 2}",
         "{\n    \"a\": 1,\n\n    // about b\n    \"b\": 2\n}\n"},
        {"{\"a\": // why\n 1}", "{\n    // why\n    \"a\": 1\n}\n"},
        {"{ // the root\n\"a\": 1}", "{ // the root\n    \"a\": 1\n}\n"},
        {"{ /* about a */ \"a\": 1}", "{\n    /* about a */\n    \"a\": 1\n}\n"},
        {"{\"a\": [\n// nothing yet\n]}", "{\n    \"a\": [\n        // nothing yet\n    ]\n}\n"},
        {"{\"a\": [1, // one\n2]}", "{\n    \"a\": [\n        1, // one\n        2\n    ]\n}\n"},
        {"{\"a\": [{\"b\": 1, \"c\": [2, 3]}, {\"b\": /* x */ 1, \"c\": [2, 3]}]}",
         "{\n    \"a\": [\n        {\"b\": 1, \"c\": [2, 3]},\n        {\n            /* x */\n"
         "            \"b\": 1,\n            \"c\": [2, 3]\n        }\n    ]\n}\n"},
        {"{\"a\": 1, /* two  \n   lines */ // more \n\"b\": 2}",
         "{\n    \"a\": 1, /* two\n   lines */ // more\n    \"b\": 2\n}\n"}};
    for (const Case& one : cases)
    {
        EXPECT_EQ(LayOutText(one.text), one.expected);
        EXPECT_TRUE(ExpectLayoutKeeps(one.text));
    }
}

TEST(Layout, IsItsOwnLayoutAndKeepsEveryValueAndCommentOfRandomTexts)
{
    for (unsigned int seed = 0; seed < 4000; ++seed)
    {
        ASSERT_TRUE(ExpectLayoutKeeps(RandomText(seed).Write())) << "seed " << seed;
        ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
    }
}

TEST(Layout, IsItsOwnLayoutAndKeepsEveryValueOfMutatedDocuments)
{
    const std::string original = LayOutText(Walker().Text());
    const std::vector<std::string> pieces = {"\n", "  ", "/* c */", "// c\n", "{", "}", "[",
                                             "]",  ",",  "\"",      "1",      ":", "\\"};
    int readable = 0;
    for (unsigned int seed = 0; seed < 3000; ++seed)
    {
        RandomText random(seed);
        std::string bytes = original;
        for (unsigned int count = random.Below(3) + 1; count != 0; --count)
        {
            const unsigned int at = random.Below(static_cast<unsigned int>(bytes.size()));
            bytes.replace(at, random.Below(2),
                          pieces[random.Below(static_cast<unsigned int>(pieces.size()))]);
        }
        readable += ExpectLayoutKeeps(bytes) ? 1 : 0;
        ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
    }
    EXPECT_GT(readable, 300);
}

} // namespace vell::test
