// VELL: data-driven hierarchical state machines.
// tests/tools/ContextTest.cpp: recording a situation and going on from it.
#include "tools/vell/Context.h"

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/TreeJson.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

constexpr const char* kRecord = "{\n"
                                "  \"nextState\": 12,\n"
                                "  \"previousState\": 11,\n"
                                "  \"stackBlip\": [],\n"
                                "  \"stackStates\": [10, 12],\n"
                                "  \"transitionTriggered\": 100\n"
                                "}\n";

TEST(VellContext, SavesBothStacksAndTheLastChange)
{
    const Folder folder;

    const Outcome outcome =
        CallVell({"context", "save", folder.Write("a.json", Walker().Text()), "--after",
                  folder.Write("a.script", "tick\nset speed 2\ntick\n"), "-o",
                  folder.PathOf("record.json")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.Read("record.json"), kRecord);
}

TEST(VellContext, RestoresWhatWasSavedAndGoesOn)
{
    const Folder folder;

    // The level does not know of its restored child and starts its first state above it.
    const Outcome outcome =
        CallVell({"context", "restore", folder.Write("a.json", Walker().Text()),
                  folder.Write("record.json", kRecord), "--script",
                  folder.Write("a.script", "expect stack Locomotion/Walk\nset speed 2\ntick\n")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out, "     0  stack    Locomotion/Walk\n"
                           "     0  set      speed = 2\n"
                           "     1  entered  Stand\n"
                           "     1  stack    Locomotion/Walk/Stand\n");
}

TEST(VellContext, ReadsTheSameTableThatItWrote)
{
    std::string fault;

    const Tessel::KVTable context = tool::ContextFromJson(kRecord, &fault);

    ASSERT_TRUE(context);
    EXPECT_EQ(fault, "");
    EXPECT_EQ(tool::TreeToJson(context), kRecord);
    Tessel::CloseTable(context);
}

TEST(VellContext, NamesTheStateThatADocumentDoesNotHave)
{
    const Folder folder;
    std::string record = kRecord;
    record.replace(record.rfind("12"), 2, "99");

    const Outcome outcome = CallVell({"context", "restore", folder.Write("a.json", Walker().Text()),
                                      folder.Write("record.json", record)});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors, folder.PathOf("record.json") + ": the document has no state 99\n");
}

TEST(VellContext, NamesTheFirstStateThatDidNotGetOntoEitherStack)
{
    struct Case
    {
        const char* main;
        const char* blip;
        const char* missing; ///< null when all got there
    };
    const std::vector<Case> cases = {
        {"[]", "[]", nullptr},        {"[10, 12]", "[51]", nullptr},
        {"[99]", "[]", "99"},         {"[10, 98, 99]", "[]", "98"},
        {"[10, 12]", "[99]", "99"},   {"[10, 12]", "[51, 98]", "98"},
        {"[98]", "[99]", "98"},       {"[10, 100]", "[]", "100"},
        {"[10, 0, 12]", "[51]", "0"}, {"[]", "[51, 52, 4000000000]", "4000000000"},
    };
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    for (const Case& one : cases)
    {
        const std::string record =
            folder.Write("record.json", std::string("{\"stackStates\": ") + one.main +
                                            ", \"stackBlip\": " + one.blip +
                                            ", \"nextState\": 0, \"previousState\": 0, "
                                            "\"transitionTriggered\": 0}");

        const Outcome outcome = CallVell({"context", "restore", document, record});

        EXPECT_EQ(outcome.code, one.missing == nullptr ? tool::ExitWell : tool::ExitFailed);
        EXPECT_EQ(outcome.errors, one.missing == nullptr ? ""
                                                         : record + ": the document has no state " +
                                                               one.missing + "\n");
        EXPECT_EQ(outcome.out.empty(), one.missing != nullptr) << outcome.out;
    }
}

TEST(VellContext, LeavesNoTableOpen)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    std::string spoiled = kRecord;
    spoiled.replace(spoiled.find("12"), 2, "99");
    const unsigned open = Tessel::GetOpenTableCount();

    for (const std::string& text : {std::string(kRecord), spoiled, std::string("{}")})
    {
        CallVell(
            {"context", "restore", document, folder.Write("record.json", text), "--ticks", "3"});
        EXPECT_EQ(Tessel::GetOpenTableCount(), open) << text;
    }
    CallVell({"context", "save", document, "--after", folder.Write("a.script", "tick\n")});
    EXPECT_EQ(Tessel::GetOpenTableCount(), open);
}

TEST(VellContext, ShowsWhereARecordIsNotJson)
{
    const Folder folder;
    const std::string record = folder.Write("b.json", "{\n  \"stackStates\": [1,]\n}\n");

    const Outcome outcome =
        CallVell({"context", "restore", folder.Write("a.json", Walker().Text()), record});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors, record + ":2:20: error: trailing comma is not allowed; remove it\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellContext, SaysWhyARecordCannotBeRead)
{
    const Folder folder;

    const Outcome outcome = CallVell({"context", "restore", folder.Write("a.json", Walker().Text()),
                                      folder.PathOf("none.json")});

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors,
              "cannot read " + folder.PathOf("none.json") + ": No such file or directory\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellContext, SavesNothingAfterAnExpectationThatDoesNotHold)
{
    const Folder folder;

    const Outcome outcome =
        CallVell({"context", "save", folder.Write("a.json", Walker().Text()), "--after",
                  folder.Write("a.script", "expect blip yes\n"), "-o", folder.PathOf("record")});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              folder.PathOf("a.script") + ":1: expected a blip, but none is running\n");
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("record")));
}

TEST(VellContext, NeedsEachMemberOfARecordAndItsType)
{
    const std::vector<std::string> arrays = {"stackStates", "stackBlip"};
    const std::vector<std::string> ids = {"nextState", "previousState", "transitionTriggered"};
    const auto faultWith = [](const std::string& key, const std::string& value)
    {
        std::string record = kRecord;
        const std::size_t begin = record.find("  \"" + key);
        const std::size_t end = record.find('\n', begin);
        record.replace(begin, end - begin,
                       value.empty() ? "\"other\": 1," : "\"" + key + "\": " + value + ",");
        const std::size_t last = record.rfind(",\n}");
        if (last != std::string::npos)
        {
            record.erase(last, 1);
        }
        std::string fault;
        const Tessel::KVTable table = tool::ContextFromJson(record, &fault);
        EXPECT_FALSE(table) << record;
        return fault;
    };

    for (const std::string& key : arrays)
    {
        for (const char* value : {"", "7", "{}", "null", "\"a\""})
        {
            EXPECT_EQ(faultWith(key, value), "\"" + key + "\" is missing or not an array") << value;
        }
        for (const char* value : {"[-1]", "[10, 1.5]", "[\"10\"]", "[4294967296]", "[null]"})
        {
            EXPECT_EQ(faultWith(key, value), "\"" + key + "\" has an element that is not an id")
                << value;
        }
    }
    for (const std::string& key : ids)
    {
        for (const char* value : {"", "-1", "1.5", "\"10\"", "4294967296", "null", "[]"})
        {
            EXPECT_EQ(faultWith(key, value), "\"" + key + "\" is missing or not an id") << value;
        }
    }
}

TEST(VellContext, RefusesWhatIsNoContext)
{
    const auto faultOf = [](const char* json)
    {
        std::string fault;
        EXPECT_FALSE(tool::ContextFromJson(json, &fault)) << json;
        return fault;
    };

    EXPECT_EQ(faultOf("{"), "invalid JSON: Missing a name for object member.");
    EXPECT_EQ(faultOf("[]"), "not a JSON object");
    EXPECT_EQ(faultOf("{}"), "\"stackStates\" is missing or not an array");
    EXPECT_EQ(faultOf(R"({"stackStates":[1,-2],"stackBlip":[]})"),
              "\"stackStates\" has an element that is not an id");
    EXPECT_EQ(faultOf(R"({"stackStates":[],"stackBlip":7})"),
              "\"stackBlip\" is missing or not an array");
    EXPECT_EQ(faultOf(R"({"stackStates":[],"stackBlip":[],"nextState":"a"})"),
              "\"nextState\" is missing or not an id");
}

} // namespace
} // namespace vell::test
