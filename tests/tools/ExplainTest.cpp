// VELL: data-driven hierarchical state machines.
// tests/tools/ExplainTest.cpp: why transitions fire and do not fire.
#include "tests/tools/CommandRun.h"

#include <vell/ConditionDef.h>
#include <vell/Types.h>

#include <gtest/gtest.h>

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
                  folder.Write("a.script", script), "--explain", "--format", format});
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
                  " == 1 (its parameter is not there)\n"
                  "     1  explain      Bare (102), priority 1: has no conditions, only a trigger "
                  "fires it\n"
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
              "     1  explain      Stuck (101), priority 5: holds and has no target, so nothing "
              "fires: go == true (saw true)\n"
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

    EXPECT_EQ(
        ExplainTick(builder, "tick\n", "1"),
        "     1  explain  Any:\n"
        "     1  explain      Weak (101), priority 0: refused, its priority is below 1, which "
        "a blip needs now: go == true (saw true)\n"
        "     1  refused  Weak (101) of Any, priority 0: go == true (saw true)\n"
        "     1  explain  A: no transitions\n"
        "     1  stack    A\n");
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
