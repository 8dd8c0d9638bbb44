// VELL: data-driven hierarchical state machines.
// tests/tools/RunnerTest.cpp: what a run reports of unusual machines, and its progress.
#include "tools/vell/Runner.h"

#include <vell/Types.h>

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/LogRedirect.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// A loaded machine and what a run of it reports.
class ReportedRun
{
public:
    explicit ReportedRun(const DocumentBuilder& builder, bool showProgress = false)
    {
        EXPECT_EQ(machine.Load(folder.Write("a.json", builder.Text())), "");
        tool::RunOptions options;
        options.showProgress = showProgress;
        report = tool::MakeTextReport(out);
        runner.emplace(machine, *report, errors, options);
        runner->Start();
    }

    Folder folder;
    tool::LogRedirect quiet{""};
    tool::ObservedMachine machine;
    std::ostringstream out;
    std::ostringstream errors;
    std::unique_ptr<tool::Report> report;
    std::optional<tool::Runner> runner;
};

DocumentBuilder One()
{
    DocumentBuilder builder;
    builder.Start(10).Node(Generic("A", 10));
    return builder;
}

/// The lines of progress of `count` ticks, up to `last`.
std::string Progress(int last, int count)
{
    std::string text;
    for (int done = 100000; done <= last; done += 100000)
    {
        text += "\r" + std::to_string(done) + " of " + std::to_string(count) + " ticks";
    }
    return text + "\r\x1b[K";
}

/// A blip of a weak and of a strong hit, over Rest, that ends with "done". "lost" leads nowhere.
DocumentBuilder Fighter()
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(PulseParameter("weak"))
        .Parameter(PulseParameter("strong"))
        .Parameter(PulseParameter("done"))
        .Parameter(PulseParameter("lost"))
        .Parameter(MessageParameter("call", "now"))
        .Node(Generic("Rest", 10, {110}))
        .Node(Generic("Stagger", 11, {111}))
        .Node(Generic("Fall", 12, {112}))
        .Node(Exit("Up", 13))
        .Node(Transition("Lose", 110, 10, 99, {BoolCondition("lost", true)}))
        .Node(Transition("Stand", 111, 11, 13, {BoolCondition("done", true)}))
        .Node(Transition("Rise", 112, 12, 13, {BoolCondition("done", true)}))
        .Node(Transition("Weak", 101, 50, 11, {BoolCondition("weak", true)})
                  .Set(JSON_TransitionPriority, 2))
        .Node(Transition("Strong", 102, 50, 12, {BoolCondition("strong", true)})
                  .Set(JSON_TransitionPriority, 3))
        .GlobalNode(Global("Any", 50, {101, 102}));
    return builder;
}

} // namespace

TEST(VellRunner, ShowsProgressOfAMillionTicksAndWipesTheLastLine)
{
    ReportedRun run(One(), true);

    run.runner->Tick(999999);
    EXPECT_EQ(run.errors.str(), "");

    run.runner->Tick(1000000);
    EXPECT_EQ(run.errors.str(), Progress(1000000, 1000000));

    run.errors.str("");
    run.runner->Tick(1050001);
    EXPECT_EQ(run.errors.str(), Progress(1000000, 1050001));
}

TEST(VellRunner, ShowsProgressWhereAPersonWatches)
{
    const Folder folder;
    const std::vector<std::string> words = {"run", folder.Write("a.json", One().Text()), "--ticks",
                                            "1000000"};

    EXPECT_EQ(CallVell(words, true).errors, Progress(1000000, 1000000));
    EXPECT_EQ(CallVell(words, false).errors, "");
}

TEST(VellRunner, TellsNobodyOnceItIsGone)
{
    ReportedRun run(Fighter());
    run.runner.reset();
    const std::string before = run.out.str();

    EXPECT_EQ(run.machine.Tick(0.1f), "");
    run.machine.PushState(11u);
    run.machine.PopState();

    EXPECT_EQ(run.out.str(), before);
}

TEST(VellRunner, SeesStatesOfEachClass)
{
    const std::vector<JsonObject> nodes = {Generic("X", 10),   Clip("X", 10, "x.anim"),
                                           Enter("X", 10, 11), Exit("X", 10),
                                           Global("X", 10),    Substate("X", 10, 20, 21)};
    for (const JsonObject& node : nodes)
    {
        DocumentBuilder builder;
        builder.Start(10).Node(node).Node(Generic("A", 11));
        builder.Node(Enter("In", 20, 11, 10)).Node(Exit("Out", 21, 10));

        const Folder folder;
        const Outcome outcome =
            CallVell({"run", folder.Write("a.json", builder.Text()), "--ticks", "0"});

        EXPECT_EQ(outcome.errors, "") << node.Text();
        EXPECT_EQ(outcome.out, "     0  entered  X\n"
                               "     0  stack    X\n")
            << node.Text();
    }
}

TEST(VellRunner, NamesAStateWithoutANameByItsId)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(BoolParameter("go", true))
        .Node(Generic("", 10, {100}).Remove(JSON_Name))
        .Node(Generic("B", 11))
        .Node(Transition("", 100, 10, 11, {BoolCondition("go", true)}).Remove(JSON_Name));

    EXPECT_EQ(RunScript(builder, "expect stack \"#10\"\ntick\n").out,
              "     0  entered  #10\n"
              "     0  stack    #10\n"
              "     1  fired    #100 (100) of #10, priority 5: go == true (saw true)\n"
              "     1  left     #10\n"
              "     1  entered  B\n"
              "     1  stack    B\n");
}

TEST(VellRunner, RunsAMachineOfAGlobalNodeAloneAndExitsWithOne)
{
    DocumentBuilder builder;
    builder.Start(77)
        .Parameter(PulseParameter("hit"))
        .Node(Generic("Hurt", 11))
        .Node(Transition("Hit", 101, 50, 11, {BoolCondition("hit", true)}))
        .GlobalNode(Global("Any", 50, {101}));

    const Outcome outcome = RunScript(builder, "expect stack -\nset hit true\ntick\n");

    EXPECT_EQ(outcome.errors, "a.json: only the global state runs: the start state does not exist: "
                              "no node has the id 77\n");
    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out, "     0  stack    -\n"
                           "     0  set      hit = true\n"
                           "     1  fired    Hit (101) of Any, priority 5: hit == true (saw true)\n"
                           "     1  blip     started, priority 5\n"
                           "     1  entered  Hurt\n"
                           "     1  stack    Hurt  (blip over -)\n");
}

TEST(VellRunner, ShowsALevelThatCannotStart)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Node(Substate("L", 10, 20, 21))
        .Node(Enter("In", 20, 99, 10))
        .Node(Exit("Out", 21, 10));

    EXPECT_EQ(RunScript(builder, "tick 2\n").out, "     0  entered  L\n"
                                                  "     0  stack    L\n"
                                                  "     1  failed   L could not be updated\n"
                                                  "     1  stack    L\n"
                                                  "     2  failed   L could not be updated\n"
                                                  "     2  stack    L\n");
}

TEST(VellRunner, ShowsOnceThatATargetCannotBeEntered)
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(PulseParameter("go"))
        .Node(Generic("A", 10, {100}))
        .Node(Connector("C", 12, "in"))
        .Node(Transition("Away", 100, 10, 12, {BoolCondition("go", true)}));

    EXPECT_EQ(RunScript(builder, "set go true\ntick 3\n").out,
              "     0  entered  A\n"
              "     0  stack    A\n"
              "     0  set      go = true\n"
              "     1  fired    Away (100) of A, priority 5: go == true (saw true)\n"
              "     1  left     A\n"
              "     1  failed   the target C (12) cannot be entered\n"
              "     1  stack    -\n"
              "     3  stack    -\n");
}

TEST(VellRunner, ShowsABlipThatTakesThePlaceOfOneOfTheSamePriority)
{
    const Outcome outcome =
        RunScript(Fighter(), "set weak true\ntick\nset weak true\ntick\nexpect blip no\n");

    EXPECT_EQ(outcome.errors, "a.script:5: expected no blip, but one is running\n");
    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out.substr(outcome.out.find("     2")),
              "     2  fired    Weak (101) of Any, priority 2: weak == true (saw true)\n"
              "     2  blip     displaced, priority 2\n"
              "     2  left     Stagger\n"
              "     2  entered  Stagger\n"
              "     2  stack    Stagger  (blip over Rest)\n");
}

// One object a line.
constexpr const char* kEachEvent =
    R"json({"tick":0,"event":"entered","state":"Rest","id":10}
{"tick":0,"event":"stack","main":["Rest"],"isBlip":false}
{"tick":0,"event":"set","name":"weak","value":"true"}
{"tick":1,"event":"fired","transition":"Weak","id":101,"state":"Any","target":11,"priority":2,"held":"weak == true (saw true)"}
{"tick":1,"event":"blip","what":"started","priority":2}
{"tick":1,"event":"entered","state":"Stagger","id":11}
{"tick":1,"event":"stack","main":["Rest"],"isBlip":true,"blip":["Stagger"]}
{"tick":1,"event":"set","name":"strong","value":"true"}
{"tick":2,"event":"fired","transition":"Strong","id":102,"state":"Any","target":12,"priority":3,"held":"strong == true (saw true)"}
{"tick":2,"event":"blip","what":"displaced","priority":3}
{"tick":2,"event":"left","state":"Stagger","id":11}
{"tick":2,"event":"entered","state":"Fall","id":12}
{"tick":2,"event":"stack","main":["Rest"],"isBlip":true,"blip":["Fall"]}
{"tick":2,"event":"set","name":"weak","value":"true"}
{"tick":3,"event":"refused","transition":"Weak","id":101,"state":"Any","target":11,"priority":2,"held":"weak == true (saw true)"}
{"tick":3,"event":"stack","main":["Rest"],"isBlip":true,"blip":["Fall"]}
{"tick":3,"event":"set","name":"done","value":"true"}
{"tick":4,"event":"fired","transition":"Rise","id":112,"state":"Fall","target":13,"priority":5,"held":"done == true (saw true)"}
{"tick":4,"event":"left","state":"Fall","id":12}
{"tick":4,"event":"entered","state":"Up","id":13}
{"tick":4,"event":"stack","main":["Rest"],"isBlip":true,"blip":["Up"]}
{"tick":5,"event":"left","state":"Up","id":13}
{"tick":5,"event":"blip","what":"ended"}
{"tick":5,"event":"stack","main":["Rest"],"isBlip":false}
{"tick":5,"event":"message","name":"call"}
{"tick":5,"event":"set","name":"lost","value":"true"}
{"tick":6,"event":"fired","transition":"Lose","id":110,"state":"Rest","target":99,"priority":5,"held":"lost == true (saw true)"}
{"tick":6,"event":"left","state":"Rest","id":10}
{"tick":6,"event":"failed","what":"the target does not exist: no node has the id 99"}
{"tick":6,"event":"stack","main":[],"isBlip":false}
)json";

TEST(VellRunner, HasALineForProgramsForEachEvent)
{
    const Outcome outcome =
        RunScript(Fighter(),
                  "set weak true\ntick\nset strong true\ntick\nset weak true\ntick\n"
                  "set done true\ntick 2\nmessage call\nset lost true\ntick\n",
                  {"--format", "jsonl"});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, kEachEvent);
}

TEST(VellRunner, EndsTicksBehindTheScriptToo)
{
    // The exit node is third on the blip's stack, over a main stack of one.
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(PulseParameter("hit"))
        .Node(Generic("Rest", 10))
        .Level("Outer", 20, 30)
        .Level("Inner", 30, 40, {}, 20)
        .Level("Core", 40, 42, {}, 30)
        .Node(Transition("Hit", 100, 50, 20, {BoolCondition("hit", true)}))
        .GlobalNode(Global("Any", 50, {100}));

    const Outcome outcome = RunScript(builder, "set hit true\ntick\n", {"--ticks", "9"});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              "tick 4: the tick was aborted: a blip ended at an exit node whose "
              "index on the blip stack is greater than the size of the main stack\n");
    EXPECT_EQ(outcome.out.substr(outcome.out.rfind('\n', outcome.out.size() - 2) + 1),
              "     4  stack    Rest\n");
}

} // namespace vell::test
