// VELL: data-driven hierarchical state machines.
// tests/tools/ContextTest.cpp: recording a situation and going on from it.
#include "tools/vell/Context.h"

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/TreeJson.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

constexpr const char* kRecord = "{\n"
                                "  \"stackStates\": [10, 12],\n"
                                "  \"stackBlip\": [],\n"
                                "  \"nextState\": 12,\n"
                                "  \"previousState\": 11,\n"
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
    record.replace(record.find("12"), 2, "99");

    const Outcome outcome = CallVell({"context", "restore", folder.Write("a.json", Walker().Text()),
                                      folder.Write("record.json", record)});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors, folder.PathOf("record.json") + ": the document has no state 99\n");
}

TEST(VellContext, RefusesWhatIsNoContext)
{
    const auto faultOf = [](const char* json)
    {
        std::string fault;
        EXPECT_FALSE(tool::ContextFromJson(json, &fault)) << json;
        return fault;
    };

    EXPECT_EQ(faultOf("{"), "it is no JSON: Missing a name for object member.");
    EXPECT_EQ(faultOf("[]"), "it is no object");
    EXPECT_EQ(faultOf("{}"), "\"stackStates\" is missing or no array");
    EXPECT_EQ(faultOf(R"({"stackStates":[1,-2],"stackBlip":[]})"),
              "\"stackStates\" has an element that is no id");
    EXPECT_EQ(faultOf(R"({"stackStates":[],"stackBlip":7})"),
              "\"stackBlip\" is missing or no array");
    EXPECT_EQ(faultOf(R"({"stackStates":[],"stackBlip":[],"nextState":"a"})"),
              "\"nextState\" is missing or no id");
}

} // namespace
} // namespace vell::test
