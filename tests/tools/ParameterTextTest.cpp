// VELL: data-driven hierarchical state machines.
// tests/tools/ParameterTextTest.cpp: values that a script sets and expects.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// A machine with a parameter of each class.
DocumentBuilder EachClass()
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("flag", false))
        .Parameter(IntParameter("count", 0))
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(VectorParameter(DURMBaseLib::PARAM_Float2, "stick", "0,0"))
        .Parameter(VectorParameter(DURMBaseLib::PARAM_Float3, "place", "0,0,0"))
        .Parameter(VectorParameter(DURMBaseLib::PARAM_Float4, "turn", "0,0,0,0"))
        .Parameter(MessageParameter("stance", ""))
        .Node(Generic("A", 10));
    return builder;
}

struct Value
{
    std::string name;
    std::string text;
    std::vector<std::string> others; ///< each differs in one place
};

const std::vector<Value> kValues = {
    {"flag", "true", {"false"}},
    {"flag", "false", {"true"}},
    {"count", "-3", {"3", "-2", "0"}},
    {"speed", "1.5", {"1.25", "-1.5", "0"}},
    {"stick", "1,2", {"9,2", "1,9", "2,1"}},
    {"place", "1,2,3", {"9,2,3", "1,9,3", "1,2,9", "1,3,2"}},
    {"turn", "1,2,3,4", {"9,2,3,4", "1,9,3,4", "1,2,9,4", "1,2,3,9", "1,2,4,3"}},
    {"stance", "low", {"Low", "lo", "lower", "\"\""}},
};

TEST(VellValues, AreExpectedInEachComponent)
{
    for (const Value& value : kValues)
    {
        const std::string set = "set " + value.name + " " + value.text + "\n";
        const Outcome good =
            RunScript(EachClass(), set + "expect param " + value.name + " " + value.text + "\n");
        EXPECT_EQ(good.errors, "");
        EXPECT_EQ(good.code, tool::ExitWell) << set;

        for (const std::string& other : value.others)
        {
            const Outcome bad =
                RunScript(EachClass(), set + "expect param " + value.name + " " + other + "\n");
            EXPECT_EQ(bad.errors, "a.script:2: expected param " + value.name + " " +
                                      (other == "\"\"" ? "" : other) + ", but it is " + value.text +
                                      "\n");
            EXPECT_EQ(bad.code, tool::ExitFailed) << set << other;
        }
    }
}

TEST(VellValues, AreWrittenInOtherFormsToo)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"flag 1", "true"},
        {"flag 0", "false"},
        {"count  7 ", "7"},
        {"count \" 7 \"", "7"},
        {"speed 2", "2"},
        {"speed -.5", "-0.5"},
        {"speed 1e3", "1000"},
        {"stick 1 , 2", "1,2"},
        {"stick \" 1,2 \"", "1,2"},
        {"place 1 ,2 , 3", "1,2,3"},
        {"turn 1, 2,3 ,4", "1,2,3,4"},
    };
    for (const auto& [words, shown] : cases)
    {
        const std::string name = words.substr(0, words.find(' '));

        const Outcome outcome =
            RunScript(EachClass(), "set " + words + "\nexpect param " + words + "\n");

        EXPECT_EQ(outcome.errors, "") << words;
        EXPECT_EQ(outcome.out, "     0  entered  A\n"
                               "     0  stack    A\n"
                               "     0  set      " +
                                   name + " = " + shown + "\n");
    }
}

TEST(VellValues, AreRefusedWithTheFormThatTheParameterTakes)
{
    struct Case
    {
        std::string name;
        std::string form;
        std::vector<std::string> texts;
    };
    const std::vector<Case> cases = {
        {"flag", "a bool: expected true or false", {"True", "yes", "2", "true false", "-1"}},
        {"count",
         "an integer: expected a whole number",
         {"x", "5x", "1.5", "5 6", "2147483648", "-2147483649", "1e3"}},
        {"speed",
         "a float: expected a number such as 1.5",
         {"nan", "inf", "-infinity", "x", "1.5x", "1,2", "1 2", "1e99", "0.5f"}},
        {"stick",
         "a float2: expected two numbers such as 0.3,0.8",
         {"nan,0", "1", "1,", ",1", "1,2,3", "1,2x", "1;2", "1,2,"}},
        {"place",
         "a float3: expected three numbers such as 1,0,0",
         {"1", "1,2", "1,2,3,4", "1,,3", "1,2,3x"}},
        {"turn",
         "a float4: expected four numbers such as 1,0,0,1",
         {"1", "1,2,3", "1,2,3,4,5", "1,2,3,", "x,2,3,4"}},
    };
    for (const Case& one : cases)
    {
        for (const std::string& text : one.texts)
        {
            for (const char* verb : {"set ", "expect param "})
            {
                const Outcome outcome = RunScript(EachClass(), verb + one.name + " " + text + "\n");

                EXPECT_EQ(outcome.code, tool::ExitUsage) << one.name << " " << text;
                EXPECT_EQ(outcome.errors, "a.script:1: '" + one.name + "' is " + one.form +
                                              ", got '" + text + "'\n");
                EXPECT_EQ(outcome.out, "     0  entered  A\n"
                                       "     0  stack    A\n");
            }
        }
    }
}

TEST(VellValues, HaveNamesThatTheDocumentKnows)
{
    DocumentBuilder none;
    none.Start(10).Node(Generic("A", 10));
    DocumentBuilder two;
    two.Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(BoolParameter("hit", false))
        .Node(Generic("A", 10));
    for (const char* line : {"set sped 1", "expect param sped 0"})
    {
        const Outcome empty = RunScript(none, std::string(line) + "\n");
        EXPECT_EQ(empty.code, tool::ExitUsage) << line;
        EXPECT_EQ(empty.errors, "a.script:1: the document has no parameter 'sped'; it has none\n");

        const Outcome some = RunScript(two, std::string(line) + "\n");
        EXPECT_EQ(some.code, tool::ExitUsage) << line;
        EXPECT_EQ(some.errors,
                  "a.script:1: the document has no parameter 'sped'; did you mean 'speed'?\n");
        EXPECT_EQ(some.out, "     0  entered  A\n"
                            "     0  stack    A\n");
    }
    two.Parameter(MessageParameter("jump", "now"));
    EXPECT_EQ(RunScript(none, "message sped\n").errors,
              "a.script:1: the document has no message 'sped'; it has none\n");
    EXPECT_EQ(RunScript(two, "message sped\n").errors,
              "a.script:1: the document has no message 'sped'; expected jump\n");
    EXPECT_EQ(RunScript(two, "message jmp\n").errors,
              "a.script:1: the document has no message 'jmp'; did you mean 'jump'?\n");
    EXPECT_EQ(RunScript(two, "message sped\n").code, tool::ExitUsage);
    const std::string names =
        ParameterId("speed") < ParameterId("hit") ? "speed or hit" : "hit or speed";
    DocumentBuilder other;
    other.Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(BoolParameter("hit", false))
        .Node(Generic("A", 10));
    EXPECT_EQ(RunScript(other, "set health 1\n").errors,
              "a.script:1: the document has no parameter 'health'; expected " + names + "\n");
}

} // namespace
} // namespace vell::test
