// VELL: data-driven hierarchical state machines.
// tests/tools/ExplainTest.cpp: why transitions fire and do not fire.
#include <vell/ConditionDef.h>
#include <vell/Types.h>

#include "tests/tools/CommandRun.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// Runs one explained tick after `script` and gives its lines.
std::string ExplainTick(const DocumentBuilder& builder, const std::string& script,
                        const std::string& tick, const std::string& format = "text")
{
    const Folder folder;
    const Outcome outcome =
        CallVell({"run", folder.Write("a.json", builder.Text()), "--script",
                  folder.Write("a.script", script), "--explain=all", "--format", format});
    EXPECT_EQ(outcome.errors, "");
    const std::size_t begin = outcome.out.find("     " + tick + "  explain");
    return begin == std::string::npos ? outcome.out : outcome.out.substr(begin);
}

TEST(VellExplain, TellsOfEachTransitionOfEachStateFromTheTop)
{
    EXPECT_EQ(ExplainTick(Walker(), "tick\nset speed 2\ntick\ntick\n", "3"),
              "     3  explain  Reactions:\n"
              "     3  explain      TakeHit (150), priority 20: no condition holds: "
              "hit == true (saw false)\n"
              "     3  explain  Walk:\n"
              "     3  explain      ToNowhere (102), priority 1: disabled: speed > 0 (saw 2)\n"
              "     3  explain      ToStand (101), priority 3: no condition holds: "
              "speed < 0.5 (saw 2), halt == \"now\" (saw \"\")\n"
              "     3  explain  Locomotion: no transitions\n"
              "     3  stack    Locomotion/Walk\n");
}

TEST(VellExplain, TellsWhatFiresAndWhatIsNotReached)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(IntParameter("stance", 2))
        .Node(Generic("A", 10, {101, 102, 103, 104}))
        .Node(Generic("B", 11))
        .Node(Transition("Late", 101, 10, 11, {IntCondition("stance", EvaluateNotEqual, 1)})
                  .Set(JSON_TransitionPriority, 9))
        .Node(Transition("Bare", 102, 10, 11).Set(JSON_TransitionPriority, 1))
        .Node(Transition("Soon", 103, 10, 11,
                         {Condition(DURMBaseLib::PARAM_Integer, "stance", EvaluateInRange, "3,1")})
                  .Set(JSON_TransitionPriority, 2))
        .Node(Transition("Missing", 104, 10, 11, {IntCondition("nobody", EvaluateEqual, 1)})
                  .Set(JSON_TransitionPriority, 0));

    const std::string missing = std::to_string(ParameterId("nobody"));
    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  A:\n"
              "     1  explain      Missing (104), priority 0: no condition holds: parameter " +
                  missing +
                  " == 1 (its parameter does not exist)\n"
                  "     1  explain      Bare (102), priority 1: has no conditions, only a trigger "
                  "can fire it\n"
                  "     1  explain      Soon (103), priority 2: fires: stance in 1..3 (saw 2)\n"
                  "     1  explain      Late (101), priority 9: not reached, an earlier one holds: "
                  "stance != 1 (saw 2)\n"
                  "     1  fired    Soon (103) of A, priority 2: stance in 1..3 (saw 2)\n"
                  "     1  left     A\n"
                  "     1  entered  B\n"
                  "     1  stack    B\n");
}

TEST(VellExplain, TellsOfATransitionThatHoldsAndLeadsNowhere)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Node(Generic("A", 10, {101, 102}))
        .Node(Transition("Stuck", 101, 10, 0, {BoolCondition("go", true)}))
        .Node(Transition("Behind", 102, 10, 10, {BoolCondition("go", true)}));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  A:\n"
              "     1  explain      Stuck (101), priority 5: holds but has no target: go == true "
              "(saw true)\n"
              "     1  explain      Behind (102), priority 5: not reached, an earlier one holds: "
              "go == true (saw true)\n"
              "     1  stack    A\n");
}

TEST(VellExplain, TellsThatABlipIsTooWeak)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Node(Generic("A", 10))
        .Node(Transition("Weak", 101, 50, 10, {BoolCondition("go", true)})
                  .Set(JSON_TransitionPriority, 0))
        .GlobalNode(Global("Any", 50, {101}));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  Any:\n"
              "     1  explain      Weak (101), priority 0: refused, a blip needs at least "
              "priority 1: go == true (saw true)\n"
              "     1  refused  Weak (101) of Any, priority 0: go == true (saw true)\n"
              "     1  explain  A: no transitions\n"
              "     1  stack    A\n");
}

TEST(VellExplain, TellsOfTransitionsThatLeadNowhereBySiblings)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Parameter(BoolParameter("stop", false))
        .Node(Generic("A", 10, {101, 102, 103}))
        .Node(Transition("Quiet", 101, 10, 0, {BoolCondition("stop", true)})
                  .Set(JSON_TransitionPriority, 1))
        .Node(Transition("Off", 102, 10, 0, {BoolCondition("go", true)})
                  .Set(JSON_TransitionPriority, 2)
                  .Set(JSON_TransitionDisabled, true))
        .Node(
            Transition("Half", 103, 10, 0, {BoolCondition("stop", true), BoolCondition("go", true)})
                .Set(JSON_TransitionPriority, 3));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  A:\n"
              "     1  explain      Quiet (101), priority 1: no condition holds: stop == true (saw "
              "false)\n"
              "     1  explain      Off (102), priority 2: disabled: go == true (saw true)\n"
              "     1  explain      Half (103), priority 3: holds but has no target: stop == true "
              "(saw false), go == true (saw true)\n"
              "     1  stack    A\n");
}

TEST(VellExplain, ShowsTheFirstConditionThatHoldsAsTheOneThatFired)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(IntParameter("a", 1))
        .Parameter(IntParameter("b", 2))
        .Parameter(IntParameter("c", 3))
        .Node(Generic("A", 10, {101}))
        .Node(Generic("B", 11))
        .Node(Transition("Go", 101, 10, 11,
                         {IntCondition("a", EvaluateEqual, 9), IntCondition("b", EvaluateEqual, 2),
                          IntCondition("c", EvaluateEqual, 3)}));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  A:\n"
              "     1  explain      Go (101), priority 5: fires: a == 9 (saw 1), b == 2 (saw 2), "
              "c == 3 (saw 3)\n"
              "     1  fired    Go (101) of A, priority 5: b == 2 (saw 2)\n"
              "     1  left     A\n"
              "     1  entered  B\n"
              "     1  stack    B\n");
}

TEST(VellExplain, TellsThatNothingBehindARefusedTransitionIsTested)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Node(Generic("A", 10))
        .Node(Transition("Weak", 101, 50, 10, {BoolCondition("go", true)})
                  .Set(JSON_TransitionPriority, -1))
        .Node(Transition("Strong", 102, 50, 10, {BoolCondition("go", true)}))
        .GlobalNode(Global("Any", 50, {101, 102}));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "1"),
              "     1  explain  Any:\n"
              "     1  explain      Weak (101), priority -1: refused, a blip needs at least "
              "priority 1: go == true (saw true)\n"
              "     1  explain      Strong (102), priority 5: not reached, an earlier one holds: "
              "go == true (saw true)\n"
              "     1  refused  Weak (101) of Any, priority -1: go == true (saw true)\n"
              "     1  explain  A: no transitions\n"
              "     1  stack    A\n");
}

/// Gives the words of one condition on a machine with a parameter of each class.
std::string WordsOf(const Json& condition)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("flag", true))
        .Parameter(IntParameter("count", 7))
        .Parameter(FloatParameter("speed", 1.5))
        .Parameter(MessageParameter("stance", "low"))
        .Node(Generic("A", 10, {101}))
        .Node(Transition("Go", 101, 10, 0, {condition}));
    const std::string lines = ExplainTick(builder, "tick\n", "1");
    const std::string start = "Go (101), priority 5: ";
    std::size_t begin = lines.find(start) + start.size();
    begin = lines.find(": ", begin) + 2;
    return lines.substr(begin, lines.find('\n', begin) - begin);
}

TEST(VellExplain, HasWordsForEachConditionAndOperator)
{
    const auto number = [](int type, const char* name, int operation, const char* range)
    {
        return Condition(type, name, operation, range);
    };
    const std::vector<std::pair<Json, std::string>> cases = {
        {BoolCondition("flag", true), "flag == true (saw true)"},
        {BoolCondition("flag", false), "flag == false (saw true)"},
        {IntCondition("count", EvaluateEqual, -3), "count == -3 (saw 7)"},
        {IntCondition("count", EvaluateNotEqual, 3), "count != 3 (saw 7)"},
        {IntCondition("count", EvaluateGreater, 3), "count > 3 (saw 7)"},
        {IntCondition("count", EvaluateGreaterOrEqual, 3), "count >= 3 (saw 7)"},
        {IntCondition("count", EvaluateLess, 3), "count < 3 (saw 7)"},
        {IntCondition("count", EvaluateLessOrEqual, 3), "count <= 3 (saw 7)"},
        {number(DURMBaseLib::PARAM_Integer, "count", EvaluateInRange, "9,-2"),
         "count in -2..9 (saw 7)"},
        {FloatCondition("speed", EvaluateEqual, 0.5), "speed == 0.5 (saw 1.5)"},
        {FloatCondition("speed", EvaluateNotEqual, 0.5), "speed != 0.5 (saw 1.5)"},
        {FloatCondition("speed", EvaluateGreater, 0.5), "speed > 0.5 (saw 1.5)"},
        {FloatCondition("speed", EvaluateGreaterOrEqual, 0.5), "speed >= 0.5 (saw 1.5)"},
        {FloatCondition("speed", EvaluateLess, 0.5), "speed < 0.5 (saw 1.5)"},
        {FloatCondition("speed", EvaluateLessOrEqual, 0.5), "speed <= 0.5 (saw 1.5)"},
        {number(DURMBaseLib::PARAM_Float, "speed", EvaluateInRange, "2.5,-0.5"),
         "speed in -0.5..2.5 (saw 1.5)"},
        {MessageCondition("stance", "high"), "stance == \"high\" (saw \"\")"},
        // A condition sees the bytes of a parameter of another class.
        {BoolCondition("count", true), "count == true (saw 7)"},
    };
    for (const auto& [condition, words] : cases)
    {
        EXPECT_EQ(WordsOf(condition), words);
    }
}

TEST(VellExplain, HasWordsForConditionsWithoutAParameter)
{
    const std::string missing = "parameter " + std::to_string(ParameterId("nobody"));
    const std::string unseen = " (its parameter does not exist)";
    const std::vector<std::pair<Json, std::string>> cases = {
        {BoolCondition("nobody", true), missing + " == true" + unseen},
        {IntCondition("nobody", EvaluateLess, 3), missing + " < 3" + unseen},
        {FloatCondition("nobody", EvaluateLess, 0.5), missing + " < 0.5" + unseen},
        {MessageCondition("nobody", "now"), missing + " == \"now\"" + unseen},
    };
    for (const auto& [condition, words] : cases)
    {
        EXPECT_EQ(WordsOf(condition), words);
    }
}

TEST(VellExplain, HasWordsForAnOperatorThatNobodyKnows)
{
    for (const Json& condition : {Json(IntCondition("count", EvaluateEqual, 3)),
                                  Json(FloatCondition("count", EvaluateEqual, 3.0))})
    {
        std::string text = condition.Text();
        const std::string known = OperatorName(EvaluateEqual);
        const std::size_t at = text.find("\"" + known + "\"");
        ASSERT_NE(at, std::string::npos) << text;
        text.replace(at + 1, known.size(), "around");

        EXPECT_EQ(WordsOf(Json::Raw(text)).substr(0, 40),
                  "count (unknown operator, never holds) 3 ");
    }
}

// One object a line.
constexpr const char* kExpectedLines = R"json({"tick":0,"event":"entered","state":"A","id":10}
{"tick":0,"event":"stack","main":["A"],"isBlip":false}
{"tick":1,"event":"explain","state":"A","transitions":[{"transition":"Go","id":100,"priority":5,"verdict":"no condition holds","conditions":[{"condition":"speed > 1.5","saw":"1","holds":false}]}]}
{"tick":1,"event":"stack","main":["A"],"isBlip":false}
)json";

TEST(VellExplain, WritesReadingsAsObjects)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(FloatParameter("speed", 1.0))
        .Node(Generic("A", 10, {100}))
        .Node(Transition("Go", 100, 10, 10, {FloatCondition("speed", EvaluateGreater, 1.5)}));

    EXPECT_EQ(ExplainTick(builder, "tick\n", "none", "jsonl"), kExpectedLines);
}

} // namespace
} // namespace vell::test
