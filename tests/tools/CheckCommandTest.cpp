// VELL: data-driven hierarchical state machines.
// tests/tools/CheckCommandTest.cpp: what `vell check` prints and how it ends.
#include <vell/Types.h>

#include "tests/support/SmallDocument.h"
#include "tests/tools/CommandRun.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

constexpr const char* kOneError = "{\"name\": 1,}\n";

/// Calls `vell check` in `folder`, and takes the folder's path out of what it says.
Outcome Check(const Folder& folder, const std::vector<std::string>& files, const Words& options)
{
    Words words{"check"};
    for (const std::string& file : files)
    {
        words.push_back(folder.PathOf(file));
    }
    words.insert(words.end(), options.begin(), options.end());
    Outcome outcome = CallVellAsIs(words);
    const std::string path = folder.PathOf("");
    for (std::string* text : {&outcome.out, &outcome.errors})
    {
        for (std::size_t at = 0; (at = text->find(path)) != std::string::npos;)
        {
            text->erase(at, path.size());
        }
    }
    return outcome;
}

std::string Wrong()
{
    return "{\n\t\"a\": \"\xc3\xa4\x1b[31m\", 'b': 1\n\n\"c\"\n";
}

} // namespace

TEST(VellCheck, ShowsThePlaceOfEachFindingAndASummary)
{
    const Folder folder;
    folder.Write("a.json", Wrong());

    const Outcome outcome = Check(folder, {"a.json"}, {});

    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out,
              "a.json:1:1: error VELL009: this '{' is never closed; add the '}'\n"
              "    {\n"
              "    ^\n"
              "a.json:2:9: error VELL012: the control character 0x1B is not allowed within a text; "
              "remove it\n"
              "     \"a\": \"\xc3\xa4\xef\xbf\xbd[31m\", 'b': 1\n"
              "            ^\n"
              "a.json:2:17: error VELL014: single quotes are not allowed; write \"b\"\n"
              "     \"a\": \"\xc3\xa4\xef\xbf\xbd[31m\", 'b': 1\n"
              "                    ^~~\n"
              "a.json:2:23: error VELL005: missing comma; add ',' behind this\n"
              "     \"a\": \"\xc3\xa4\xef\xbf\xbd[31m\", 'b': 1\n"
              "                          ^\n"
              "4 errors in 1 document\n");
}

TEST(VellCheck, ShowsASecondPlaceAndCutsLongLines)
{
    const Folder folder;
    const std::string filler(200, 'x');
    folder.Write("a.json", "{\"first\": \"" + filler + "\", \"first\": \"" + filler + "\"}");

    const Outcome outcome =
        Check(folder, {"a.json"}, {"--allow", "VELL020,VELL021", "--allow", "VELL190"});

    EXPECT_EQ(
        outcome.out,
        "a.json:1:215: warning VELL017: the member 'first' is already on line 1, and only the "
        "first counts; remove one of them\n"
        "    ..." +
            std::string(37, 'x') + "\", \"first\": \"" + std::string(50, 'x') + "...\n" +
            std::string(47, ' ') +
            "^~~~~~~\n"
            "a.json:1:2: note: the first is here\n"
            "    {\"first\": \"" +
            std::string(89, 'x') +
            "...\n"
            "     ^~~~~~~\n"
            "1 warning in 1 document\n");
}

TEST(VellCheck, MarksTheCellsOfWideCharacters)
{
    const Folder folder;
    folder.Write("a.json", "{\"\u65e5\u672c\": \"e\u0301\", '\u8a9e': 1}");

    EXPECT_EQ(Check(folder, {"a.json"}, {"--allow", "VELL020,VELL021"}).out,
              "a.json:1:14: error VELL014: single quotes are not allowed; write \"\u8a9e\"\n"
              "    {\"\u65e5\u672c\": \"e\u0301\", '\u8a9e': 1}\n"
              "                  ^~~~\n"
              "1 error in 1 document\n");
}

TEST(VellCheck, ColorsWhatItShowsWhenAsked)
{
    const Folder folder;
    folder.Write("a.json", "[1");

    EXPECT_EQ(Check(folder, {"a.json"}, {"--color", "always"}).out,
              "\x1b[1ma.json:1:1: \x1b[0m\x1b[1;31merror VELL009:\x1b[0m this '[' is never closed; "
              "add the ']'\n"
              "    [1\n"
              "    \x1b[1;32m^\x1b[0m\n"
              "1 error in 1 document\n");
    EXPECT_EQ(Check(folder, {"a.json"}, {}).out,
              Check(folder, {"a.json"}, {"--color", "never"}).out);
}

TEST(VellCheck, ChecksFoldersAndLeavesOutWhatHasNoMachine)
{
    const Folder folder;
    std::filesystem::create_directories(folder.PathOf("in/.hidden"));
    folder.Write("in/b.json", "[1");
    folder.Write("in/a.json", SmallDocument().Text());
    folder.Write("in/package.json", "{\"name\": \"other\"}");
    folder.Write("in/list.json", "[]");
    folder.Write("in/note.txt", "{");
    folder.Write("in/.hidden/c.json", "{");

    const Outcome outcome = Check(folder, {"in"}, {"--allow", "VELL009,VELL151"});

    EXPECT_EQ(outcome.out,
              "in/list.json: note: left out, it has no member of a machine document\n"
              "in/package.json: note: left out, it has no member of a machine document\n"
              "nothing found in 2 documents\n");
    EXPECT_EQ(outcome.code, 0);
}

TEST(VellCheck, ChecksADocumentOfAFolderWhoseMembersAreMisspelt)
{
    const Folder folder;
    std::filesystem::create_directories(folder.PathOf("in"));
    folder.Write("in/a.json", "{\"heads\": {}, \"layer\": []}");
    folder.Write("in/b.json", "{\"Head\": {}}");

    const Outcome outcome = Check(folder, {"in"}, {});

    EXPECT_NE(outcome.out.find("in/a.json:1:2: error VELL021"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("in/b.json:1:2: error VELL021"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.code, 1);
}

TEST(VellCheck, SaysThatAFolderHasNoDocuments)
{
    const Folder folder;
    std::filesystem::create_directories(folder.PathOf("in"));

    const Outcome outcome = Check(folder, {"in"}, {});

    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors, "in: no *.json in this folder\n");
    EXPECT_EQ(outcome.code, 2);
}

TEST(VellCheck, ChecksAFileOnceThoughItIsNamedTwice)
{
    const Folder folder;
    std::filesystem::create_directories(folder.PathOf("in"));
    folder.Write("in/a.json", SmallDocument().Text());

    EXPECT_EQ(Check(folder, {"in", "in/a.json", "in/../in/a.json"}, {"--allow", "VELL151"}).out,
              "nothing found in 1 document\n");
}

TEST(VellCheck, EndsByWhatItFound)
{
    const Folder folder;
    folder.Write("good.json", SmallDocument().Text());
    folder.Write("warned.json", WithHead(SmallDocument(), JSON_HeadMemory, 1000000).Text());
    folder.Write("wrong.json", kOneError);
    struct Case
    {
        Words files;
        Words options;
        int code;
    };
    const std::vector<Case> cases = {
        {{"good.json"}, {}, 0},
        {{"warned.json"}, {}, 0},
        {{"warned.json"}, {"--strict"}, 1},
        {{"warned.json"}, {"--strict", "--allow", "vell151"}, 0},
        {{"good.json", "wrong.json"}, {}, 1},
        {{"good.json", "none.json"}, {}, 2},
        {{}, {}, 2},
        {{"good.json"}, {"--allow", "VELL999"}, 2},
        {{"good.json"}, {"--format", "xml"}, 2},
        {{}, {"--explain", "VELL009"}, 0},
        {{}, {"--explain", "9"}, 2},
    };

    for (const Case& entry : cases)
    {
        const Outcome outcome = Check(folder, entry.files, entry.options);
        EXPECT_EQ(outcome.code, entry.code) << outcome.out << outcome.errors;
    }
    EXPECT_EQ(Check(folder, {"none.json"}, {}).errors,
              "cannot read none.json: No such file or directory\n");
    EXPECT_EQ(Check(folder, {}, {"--explain", "9"}).errors, "--explain: unknown code '9'\n");
}

TEST(VellCheck, WritesFindingsForPrograms)
{
    const Folder folder;
    folder.Write("a.json", "[1 2");

    rapidjson::Document json;
    json.Parse(Check(folder, {"a.json"}, {"--format", "json"}).out.c_str());

    ASSERT_FALSE(json.HasParseError());
    EXPECT_EQ(json["errors"].GetInt(), 2);
    const auto& finding = json["documents"][0]["findings"][1];
    EXPECT_STREQ(finding["code"].GetString(), "VELL005");
    EXPECT_STREQ(finding["severity"].GetString(), "error");
    EXPECT_EQ(finding["line"].GetInt(), 1);
    EXPECT_EQ(finding["column"].GetInt(), 3);
    EXPECT_STREQ(finding["message"].GetString(), "missing comma");
    EXPECT_STREQ(finding["hint"].GetString(), "add ',' behind this");
}

} // namespace vell::test
