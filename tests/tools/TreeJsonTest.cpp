// VELL: data-driven hierarchical state machines.
// tests/tools/TreeJsonTest.cpp: trees of tables as text.
#include "tools/vell/TreeJson.h"

#include "foundation/TreeKeys.h"
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <limits>

namespace vell::test
{
namespace
{

/// A table with a value of every type, an array, and a text that needs escaping.
Tessel::KVTable MakeTable()
{
    const Tessel::Float2 two{0.3f, 0.8f};
    const Tessel::Float3 three{1.0f, 2.0f, 3.5f};
    const Tessel::Float4 four{0.0f, 0.0f, 0.1f, 1.0f};
    Tessel::KVTable table = Tessel::CreateTable("root");
    table->SetString("text", "a \"b\"\n\\", 1);
    table->SetInt("int", -3, 1);
    table->SetUInt("uint", 4000000000u, 1);
    table->SetFloat("float", 0.1f, 1);
    table->SetFloat("endless", std::numeric_limits<float>::infinity(), 1);
    table->SetFloat2("two", &two, 1);
    table->SetFloat3("three", &three, 1);
    table->SetFloat4("four", &four, 1);
    table->AddTable("empty", 1);
    table->AddTable(kMainStackKey, 1);
    Tessel::KVTable array = table->AddTable("array", 1);
    array->PushUInt(7, 1);
    array->PushUInt(8, 1);
    Tessel::KVTable both = table->AddTable("both", 1);
    both->SetInt("key", 1, 1);
    both->PushUInt(9, 1);
    return table;
}

TEST(TreeJson, WritesEveryTypeOfValue)
{
    const Tessel::KVTable table = MakeTable();

    EXPECT_EQ(tool::TreeToJson(table), "{\n"
                                       "  \"array\": [7, 8],\n"
                                       "  \"both\": {\n"
                                       "    \"key\": 1,\n"
                                       "    \"[]\": [9]\n"
                                       "  },\n"
                                       "  \"empty\": {},\n"
                                       "  \"endless\": null,\n"
                                       "  \"float\": 0.1,\n"
                                       "  \"four\": [0, 0, 0.1, 1],\n"
                                       "  \"int\": -3,\n"
                                       "  \"stackStates\": [],\n"
                                       "  \"text\": \"a \\\"b\\\"\\n\\\\\",\n"
                                       "  \"three\": [1, 2, 3.5],\n"
                                       "  \"two\": [0.3, 0.8],\n"
                                       "  \"uint\": 4000000000\n"
                                       "}\n");
    Tessel::CloseTable(table);
}

TEST(TreeJson, WritesALineForEachValueAsText)
{
    const Tessel::KVTable table = MakeTable();

    EXPECT_EQ(tool::TreeToText(table), "array = [7,8]\n"
                                       "both/key = 1\n"
                                       "both/[] = [9]\n"
                                       "endless = null\n"
                                       "float = 0.1\n"
                                       "four = [0,0,0.1,1]\n"
                                       "int = -3\n"
                                       "stackStates = []\n"
                                       "text = \"a \\\"b\\\"\\n\\\\\"\n"
                                       "three = [1,2,3.5]\n"
                                       "two = [0.3,0.8]\n"
                                       "uint = 4000000000\n");
    Tessel::CloseTable(table);
}

TEST(TreeJson, NamesTheWholePathOfAValue)
{
    const Tessel::KVTable table = Tessel::CreateTable("root");
    Tessel::KVTable inner = table->AddTable("outer", 1)->AddTable("inner", 1);
    inner->SetInt("value", 1, 1);
    inner->AddTable(kBlipStackKey, 1);
    inner->AddTable(kMainStackKey, 1)->PushUInt(7, 1);
    inner->AddTable("deep", 1)->SetInt("value", 2, 1);

    EXPECT_EQ(tool::TreeToText(table), "outer/inner/deep/value = 2\n"
                                       "outer/inner/stackBlip = []\n"
                                       "outer/inner/stackStates = [7]\n"
                                       "outer/inner/value = 1\n");
    EXPECT_EQ(tool::TreeToJson(table), "{\n"
                                       "  \"outer\": {\n"
                                       "    \"inner\": {\n"
                                       "      \"deep\": {\n"
                                       "        \"value\": 2\n"
                                       "      },\n"
                                       "      \"stackBlip\": [],\n"
                                       "      \"stackStates\": [7],\n"
                                       "      \"value\": 1\n"
                                       "    }\n"
                                       "  }\n"
                                       "}\n");
    Tessel::CloseTable(table);
}

TEST(TreeJson, WritesWhatJsonHasNoWordForAsNull)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const Tessel::Float2 two{none, 1.0f};
    const Tessel::Float4 four{infinity, -infinity, none, 0.0f};
    const Tessel::KVTable table = Tessel::CreateTable("root");
    table->SetFloat("high", infinity, 1);
    table->SetFloat("low", -infinity, 1);
    table->SetFloat("none", none, 1);
    table->SetFloat2("two", &two, 1);
    table->SetFloat4("four", &four, 1);

    EXPECT_EQ(tool::TreeToText(table), "four = [null,null,null,0]\n"
                                       "high = null\n"
                                       "low = null\n"
                                       "none = null\n"
                                       "two = [null,1]\n");
    Tessel::CloseTable(table);
}

TEST(VellTree, PrintsTheTreeAfterAScript)
{
    const Folder folder;

    const Outcome outcome = CallVell({"tree", folder.Write("a.json", Walker().Text()), "--after",
                                      folder.Write("a.script", "tick\nset speed 2\ntick\n")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    rapidjson::Document tree;
    tree.Parse(outcome.out.c_str());
    ASSERT_FALSE(tree.HasParseError());
    EXPECT_STREQ(tree["filename"].GetString(), folder.PathOf("a.json").c_str());
    const rapidjson::Value& stack = tree[kContextKey][kMainStackKey];
    ASSERT_EQ(stack.Size(), 2u);
    EXPECT_EQ(stack[0].GetUint(), 10u);
    EXPECT_EQ(stack[1].GetUint(), 12u);
    EXPECT_EQ(tree[kContextKey][kBlipStackKey].Size(), 0u);
    EXPECT_EQ(tree[kContextKey][kTransitionKey].GetUint(), 100u);
    const std::string speed = std::to_string(ParameterId("speed"));
    EXPECT_EQ(tree[kParametersKey][speed.c_str()]["value"].GetDouble(), 2.0);
    EXPECT_EQ(tree[kNodesKey]["11"]["id"].GetUint(), 11u);
}

TEST(VellTree, PrintsTheTreeOfAMachineThatIsNotStarted)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());

    const Outcome outcome = CallVell({"tree", path, "--format", "text"});

    EXPECT_EQ(outcome.errors, "");
    const std::string head = "contextInfo/nextState = 0\n"
                             "contextInfo/previousState = 0\n"
                             "contextInfo/stackBlip = []\n"
                             "contextInfo/stackStates = []\n"
                             "contextInfo/transitionTriggered = 0\n"
                             "filename = \"" +
                             path + "\"\n";
    EXPECT_EQ(outcome.out.substr(0, head.size()), head);
}

TEST(TreeJson, SortsKeysThatAreNumbersByTheirValueBehindWords)
{
    const Tessel::KVTable table = Tessel::CreateTable("root");
    for (const char* key : {"100", "9", "b", "11", "a", "9a", "4294967296"})
    {
        table->SetInt(key, 1, 1);
    }
    table->AddTable("10", 1)->SetInt("x", 1, 1);

    EXPECT_EQ(tool::TreeToText(table), "4294967296 = 1\n"
                                       "9a = 1\n"
                                       "a = 1\n"
                                       "b = 1\n"
                                       "9 = 1\n"
                                       "10/x = 1\n"
                                       "11 = 1\n"
                                       "100 = 1\n");
    Tessel::CloseTable(table);
}

TEST(VellTree, ShowsNamesBesideIds)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("a.script", "tick\nset speed 2\ntick\n");
    const std::string speed = std::to_string(ParameterId("speed"));

    const std::string text = CallVell({"tree", path, "--after", script, "--format", "text"}).out;
    for (const std::string& line : {std::string("contextInfo/nextState = 12  # Walk"),
                                    std::string("contextInfo/stackBlip = []"),
                                    std::string("contextInfo/stackStates = [10,12]  # "
                                                "Locomotion/Walk"),
                                    std::string("contextInfo/transitionTriggered = 100  # ToWalk"),
                                    std::string("nodeDefTable/11/attribs/id = 11  # Stand"),
                                    "parameterTable/" + speed + "/value = 2  # speed"})
    {
        EXPECT_NE(("\n" + text).find("\n" + line + "\n"), std::string::npos) << line << "\n"
                                                                             << text;
    }

    rapidjson::Document tree;
    tree.Parse(CallVell({"tree", path, "--after", script}).out.c_str());
    ASSERT_FALSE(tree.HasParseError());
    EXPECT_STREQ(tree[kContextKey]["nextState#"].GetString(), "Walk");
    EXPECT_STREQ(tree[kContextKey]["stackStates#"][0].GetString(), "Locomotion");
    EXPECT_STREQ(tree[kContextKey]["stackStates#"][1].GetString(), "Walk");
    EXPECT_FALSE(tree[kContextKey].HasMember("stackBlip#"));
    EXPECT_STREQ(tree[kParametersKey][speed.c_str()]["#"].GetString(), "speed");
    EXPECT_STREQ(tree[kNodesKey]["11"]["#"].GetString(), "Stand");
    EXPECT_FALSE(tree[kNodesKey].HasMember("#"));
}

TEST(VellTree, FailsWhenItsScriptDoes)
{
    const Folder folder;

    const Outcome outcome = CallVell({"tree", folder.Write("a.json", Walker().Text()), "--after",
                                      folder.Write("a.script", "expect stack X\n")});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              folder.PathOf("a.script") + ":1: expected stack X, but it is Locomotion\n");
    EXPECT_EQ(outcome.out, "");
}

} // namespace
} // namespace vell::test
