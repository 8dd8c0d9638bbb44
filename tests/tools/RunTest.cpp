// VELL: data-driven hierarchical state machines.
// tests/tools/RunTest.cpp: what `vell run` prints, and what it exits with.
#include <vell/ConditionDef.h>

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/Runner.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vell::test
{
namespace
{

constexpr const char* kWalkerScript = "tick\n"
                                      "expect stack Locomotion/Stand\n"
                                      "set speed 2\n"
                                      "tick\n"
                                      "set hit true\n"
                                      "tick\n"
                                      "expect blip yes\n"
                                      "expect stack Hurt\n"
                                      "set hit false\n"
                                      "tick 2\n"
                                      "expect blip no\n"
                                      "message halt\n"
                                      "expect param halt now\n"
                                      "tick\n"
                                      "expect stack Locomotion/Stand\n";

TEST(VellRun, PrintsALineForEachThingThatHappens)
{
    const Outcome outcome = RunScript(Walker(), kWalkerScript);

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out,
              "     0  entered  Locomotion\n"
              "     0  stack    Locomotion\n"
              "     1  entered  Stand\n"
              "     1  stack    Locomotion/Stand\n"
              "     1  set      speed = 2\n"
              "     2  fired    ToWalk (100) of Stand, priority 5: speed > 1.5 (saw 2)\n"
              "     2  left     Stand\n"
              "     2  entered  Walk\n"
              "     2  stack    Locomotion/Walk\n"
              "     2  set      hit = true\n"
              "     3  fired    TakeHit (150) of Reactions, priority 20: hit == true (saw true)\n"
              "     3  blip     started, priority 20\n"
              "     3  entered  Hurt\n"
              "     3  stack    Hurt  (blip over Locomotion/Walk)\n"
              "     3  set      hit = false\n"
              "     4  fired    Healed (151) of Hurt, priority 5: hit == false (saw false)\n"
              "     4  left     Hurt\n"
              "     4  entered  Done\n"
              "     4  stack    Done  (blip over Locomotion/Walk)\n"
              "     5  left     Done\n"
              "     5  blip     ended\n"
              "     5  stack    Locomotion/Walk\n"
              "     5  message  halt\n"
              "     6  fired    ToStand (101) of Walk, priority 3: halt == \"now\" (saw \"now\")\n"
              "     6  left     Walk\n"
              "     6  entered  Stand\n"
              "     6  stack    Locomotion/Stand\n");
}

// One object a line.
constexpr const char* kExpectedLines =
    R"json({"tick":0,"event":"entered","state":"Locomotion","id":10}
{"tick":0,"event":"stack","main":["Locomotion"],"isBlip":false}
{"tick":1,"event":"entered","state":"Stand","id":11}
{"tick":1,"event":"stack","main":["Locomotion","Stand"],"isBlip":false}
{"tick":1,"event":"set","name":"speed","value":"2"}
{"tick":2,"event":"fired","transition":"ToWalk","id":100,"state":"Stand","target":12,"priority":5,"held":"speed > 1.5 (saw 2)"}
{"tick":2,"event":"left","state":"Stand","id":11}
{"tick":2,"event":"entered","state":"Walk","id":12}
{"tick":2,"event":"stack","main":["Locomotion","Walk"],"isBlip":false}
{"tick":2,"event":"set","name":"hit","value":"true"}
{"tick":3,"event":"fired","transition":"TakeHit","id":150,"state":"Reactions","target":51,"priority":20,"held":"hit == true (saw true)"}
{"tick":3,"event":"blip","what":"started","priority":20}
{"tick":3,"event":"entered","state":"Hurt","id":51}
{"tick":3,"event":"stack","main":["Locomotion","Walk"],"isBlip":true,"blip":["Hurt"]}
{"tick":3,"event":"message","name":"halt"}
)json";

TEST(VellRun, PrintsAnObjectALineForPrograms)
{
    const Outcome outcome = RunScript(Walker(),
                                      "tick\nset speed 2\ntick\nset hit true\ntick\n"
                                      "message halt\n",
                                      {"--format", "jsonl"});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, kExpectedLines);
}

TEST(VellRun, ShowsAStateThatIsEnteredAndLeftWithinOneTick)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", false))
        .Node(Substate("Level", 10, 20, 21, {102}))
        .Node(Enter("In", 20, 11, 10))
        .Node(Exit("Out", 21, 10))
        .Node(Generic("A", 11, {101}, 10))
        .Node(Generic("B", 12, {}, 10))
        .Node(Generic("C", 13))
        .Node(Transition("Inner", 101, 11, 12, {BoolCondition("go", true)}))
        .Node(Transition("Outer", 102, 10, 13, {BoolCondition("go", true)}));

    const Outcome outcome = RunScript(builder, "tick\nset go true\ntick\nexpect stack C\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out.substr(outcome.out.find("     2")),
              "     2  fired    Inner (101) of A, priority 5: go == true (saw true)\n"
              "     2  left     A\n"
              "     2  entered  B\n"
              "     2  fired    Outer (102) of Level, priority 5: go == true (saw true)\n"
              "     2  left     B\n"
              "     2  left     Level\n"
              "     2  entered  C\n"
              "     2  stack    C\n");
}

TEST(VellRun, ShowsABlipThatIsDisplacedAndOneThatIsRefused)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("weak", false))
        .Parameter(BoolParameter("strong", false))
        .Node(Generic("Rest", 10))
        .Node(Generic("Weak", 11))
        .Node(Generic("Strong", 12))
        .Node(Transition("ToWeak", 101, 50, 11, {BoolCondition("weak", true)})
                  .Set(JSON_TransitionPriority, 2))
        .Node(Transition("ToStrong", 102, 50, 12, {BoolCondition("strong", true)})
                  .Set(JSON_TransitionPriority, 3))
        .GlobalNode(Global("Any", 50, {101, 102}));

    const Outcome outcome = RunScript(
        builder,
        "set weak true\ntick\nset weak false\nset strong true\ntick\nset weak true\ntick\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out,
              "     0  entered  Rest\n"
              "     0  stack    Rest\n"
              "     0  set      weak = true\n"
              "     1  fired    ToWeak (101) of Any, priority 2: weak == true (saw true)\n"
              "     1  blip     started, priority 2\n"
              "     1  entered  Weak\n"
              "     1  stack    Weak  (blip over Rest)\n"
              "     1  set      weak = false\n"
              "     1  set      strong = true\n"
              "     2  fired    ToStrong (102) of Any, priority 3: strong == true (saw true)\n"
              "     2  blip     displaced, priority 3\n"
              "     2  left     Weak\n"
              "     2  entered  Strong\n"
              "     2  stack    Strong  (blip over Rest)\n"
              "     2  set      weak = true\n"
              "     3  refused  ToWeak (101) of Any, priority 2: weak == true (saw true)\n"
              "     3  stack    Strong  (blip over Rest)\n");
}

TEST(VellRun, ShowsATargetThatIsNotThere)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Node(Generic("A", 10, {100}))
        .Node(Transition("Away", 100, 10, 99, {BoolCondition("go", true)}));

    const Outcome outcome = RunScript(builder, "tick\nexpect stack -\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, "     0  entered  A\n"
                           "     0  stack    A\n"
                           "     1  fired    Away (100) of A, priority 5: go == true (saw true)\n"
                           "     1  left     A\n"
                           "     1  failed   the target does not exist: no node has the id 99\n"
                           "     1  stack    -\n");
}

TEST(VellRun, SetsEveryClassOfParameterFromText)
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

    const Outcome outcome = RunScript(builder, "set flag true\n"
                                               "set count -3\n"
                                               "set speed 1.5\n"
                                               "set stick 0.3,0.8\n"
                                               "set place 1, 2, 3\n"
                                               "set turn 0,0,0.1,1\n"
                                               "set stance crouched low\n"
                                               "expect param flag true\n"
                                               "expect param count -3\n"
                                               "expect param speed 1.5\n"
                                               "expect param stick 0.3,0.8\n"
                                               "expect param place 1,2,3\n"
                                               "expect param turn 0,0,0.1,1\n"
                                               "expect param stance crouched low\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, "     0  entered  A\n"
                           "     0  stack    A\n"
                           "     0  set      flag = true\n"
                           "     0  set      count = -3\n"
                           "     0  set      speed = 1.5\n"
                           "     0  set      stick = 0.3,0.8\n"
                           "     0  set      place = 1,2,3\n"
                           "     0  set      turn = 0,0,0.1,1\n"
                           "     0  set      stance = crouched low\n");
}

TEST(VellRun, SaysFileAndLineOfWhatDoesNotHoldAndGoesOn)
{
    const Outcome outcome = RunScript(Walker(), "tick\n"
                                                "expect stack Locomotion/Walk\n"
                                                "expect stack -\n"
                                                "expect blip yes\n"
                                                "expect param speed 3\n"
                                                "expect param speed fast\n"
                                                "set speed 1,2\n"
                                                "set hit maybe\n"
                                                "message speed\n"
                                                "expect stack Locomotion/Stand\n");

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors,
              "a.script:2: expected stack Locomotion/Walk, but it is Locomotion/Stand\n"
              "a.script:3: expected stack -, but it is Locomotion/Stand\n"
              "a.script:4: expected a blip, but none is running\n"
              "a.script:5: expected param speed 3, but it is 0\n"
              "a.script:6: 'speed' is a float: expected a number such as 1.5, got 'fast'\n"
              "a.script:7: 'speed' is a float: expected a number such as 1.5, got '1,2'\n"
              "a.script:8: 'hit' is a bool: expected true or false, got 'maybe'\n"
              "a.script:9: 'speed' is not a message; use: set speed VALUE\n");
}

TEST(VellRun, NamesTheParametersWhenOneIsUnknown)
{
    DocumentBuilder builder;
    builder.Start(10).Parameter(FloatParameter("speed", 0.0)).Node(Generic("A", 10));

    const Outcome outcome = RunScript(builder, "set sped 1\n");

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors,
              "a.script:1: the document has no parameter 'sped'; did you mean 'speed'?\n");
}

TEST(VellRun, TicksTenTimesWithoutAScript)
{
    const Folder folder;

    const Outcome outcome = CallVell({"run", folder.Write("a.json", Walker().Text())});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out, "     0  entered  Locomotion\n"
                           "     0  stack    Locomotion\n"
                           "     1  entered  Stand\n"
                           "     1  stack    Locomotion/Stand\n"
                           "    10  stack    Locomotion/Stand\n");
}

TEST(VellRun, TicksOnAfterTheScript)
{
    const Outcome outcome = RunScript(Walker(), "tick 2\n", {"--ticks", "3"});

    EXPECT_EQ(outcome.out.substr(outcome.out.rfind("     5")),
              "     5  stack    Locomotion/Stand\n");
}

TEST(VellRun, SaysWhereADocumentDoesNotParse)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", "{\n  \"a\": 1,\n  \"b\" 2\n}\n");

    const Outcome outcome = CallVell({"run", path});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              path + ":3:7: invalid JSON: Missing a colon after a name of object member.\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellRun, ShowsTheIdOfAStateWithoutAName)
{
    DocumentBuilder builder;
    builder.Start(10).Node(Generic("", 10));

    EXPECT_EQ(RunScript(builder, "tick\n").out, "     0  entered  #10\n"
                                                "     0  stack    #10\n"
                                                "     1  stack    #10\n");
}

TEST(VellRun, SaysWhyADocumentDoesNotLoad)
{
    const Folder folder;

    const Outcome missing = CallVell({"run", folder.PathOf("none.json")});
    EXPECT_EQ(missing.code, tool::ExitUsage);
    EXPECT_EQ(missing.errors,
              "cannot read " + folder.PathOf("none.json") + ": No such file or directory\n");

    const std::string path = folder.Write("a.json", DocumentBuilder().LeaveOut(JSON_Head).Text());
    const Outcome headless = CallVell({"run", path});
    EXPECT_EQ(headless.code, tool::ExitFailed);
    EXPECT_EQ(headless.errors.substr(0, headless.errors.find('\n')),
              path + ": not a machine document: it has no object \"head\"");

    DocumentBuilder noGlobal;
    noGlobal.Start(77).Node(Generic("A", 10));
    const std::string dead = folder.Write("c.json", noGlobal.Text());
    const Outcome lifeless = CallVell({"run", dead});
    EXPECT_EQ(lifeless.code, tool::ExitFailed);
    EXPECT_EQ(lifeless.errors.substr(0, lifeless.errors.find('\n')),
              dead + ": nothing to run: the start state does not exist: no node has the id 77");
}

TEST(VellRun, ExitsWithAUsageErrorForWhatItDoesNotUnderstand)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());

    EXPECT_EQ(CallVell({}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"walk"}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run"}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", path, "--ticks", "many"}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", path, "--format", "xml"}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", path, "--log", folder.PathOf("none/log")}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", path, "--script", folder.PathOf("none")}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", path, "--script", folder.Write("a.script", "tock\n")}).code,
              tool::ExitUsage);
    EXPECT_EQ(CallVell({"run", "--help"}).code, tool::ExitWell);
    EXPECT_EQ(CallVell({"--version"}).code, tool::ExitWell);
}

TEST(VellRun, PutsTheLibrarysLogIntoAFile)
{
    const Folder folder;

    CallVell({"run", folder.Write("a.json", Walker().Text()), "--log", folder.PathOf("log")});

    EXPECT_NE(folder.Read("log").find("[INFO]\t: Activated State: Locomotion (10)\n"),
              std::string::npos);
}

TEST(VellRun, SaysThatATriggerMadeATransitionHold)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Node(Generic("A", 10, {100}))
        .Node(Generic("B", 11))
        .Node(Transition("Pulled", 100, 10, 11));
    const Folder folder;
    const tool::LogRedirect quiet("");
    tool::ObservedMachine machine;
    ASSERT_EQ(machine.Load(folder.Write("a.json", builder.Text())), "");
    ASSERT_EQ(machine.AssignTrigger("Pulled",
                                    [](IHSM*, SMState*)
                                    {
                                        return true;
                                    }),
              1);
    std::ostringstream out;
    const auto report = tool::MakeTextReport(out);
    tool::Runner runner(machine, *report, out, {});

    runner.Start();
    runner.Tick(1);

    EXPECT_EQ(out.str(), "     0  entered  A\n"
                         "     0  stack    A\n"
                         "     1  fired    Pulled (100) of A, priority 5: a trigger\n"
                         "     1  left     A\n"
                         "     1  entered  B\n"
                         "     1  stack    B\n");
}

TEST(VellRun, EndsWithAnErrorWhenATickBreaksOff)
{
    // The exit node is third on the blip's stack, over a main stack of one.
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("hit", true))
        .Node(Generic("Rest", 10))
        .Node(Substate("Outer", 20, 21, 22))
        .Node(Enter("OuterIn", 21, 30, 20))
        .Node(Exit("OuterOut", 22, 20))
        .Node(Substate("Inner", 30, 31, 32, {}, 20))
        .Node(Enter("InnerIn", 31, 40, 30))
        .Node(Exit("InnerOut", 32, 30))
        .Node(Substate("Core", 40, 41, 42, {}, 30))
        .Node(Enter("CoreIn", 41, 42, 40))
        .Node(Exit("CoreOut", 42, 40))
        .Node(Transition("Hit", 100, 50, 20, {BoolCondition("hit", true)}))
        .GlobalNode(Global("Any", 50, {100}));

    const Outcome outcome = RunScript(builder, "tick\nset hit false\ntick 4\nexpect stack X\n");

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              "a.script:3: tick 4: the tick was aborted: a blip ended at an exit node whose "
              "index on the blip stack is greater than the size of the main stack\n");
}

} // namespace
} // namespace vell::test
