// VELL: data-driven hierarchical state machines.
// tests/machine/HSMReloadTest.cpp: a machine that is created a second time.
#include <vell/SMState.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// Stand and Walk on the ground, and two hits of different strength.
DocumentBuilder Fighter()
{
    return DocumentBuilder()
        .Start(20)
        .Parameter(PulseParameter("go"))
        .Parameter(PulseParameter("push"))
        .Parameter(PulseParameter("hit"))
        .Level("Ground", 20, 10)
        .Nodes({Generic("Stand", 10, {100}, 20), Generic("Walk", 11, {}, 20)})
        .Nodes({Generic("Stagger", 60), Generic("Fall", 61)})
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Push", 400, 50, 60, {BoolCondition("push", true)})
                  .Set(JSON_TransitionPriority, 5))
        .Node(Transition("Hit", 401, 50, 61, {BoolCondition("hit", true)})
                  .Set(JSON_TransitionPriority, 9))
        .GlobalNode(Global("Anywhere", 50, {400, 401}));
}

/// Starts an initialised machine, plays a scene, and gives all that it tells of it: the log, the
/// calls of the switch callback, and the stacks after each tick.
Lines Play(TestMachine& machine, LogRecorder& log)
{
    machine.SetStateSwitchCallback(RecordSwitch);
    log.Clear();
    const auto show = [&machine]
    {
        LogRecorder::Note(machine.MainStack() + " " + machine.BlipStack() + " priority " +
                          std::to_string(machine.blipPriority));
    };
    machine.Start();
    show();
    for (const char* parameter : {"go", "go", "push", "hit", "push"})
    {
        machine.TickWith(parameter);
        show();
    }
    machine.RevertToPreviousState();
    show();
    machine.TickWith("push");
    show();
    return log.Take();
}

/// A way to leave a first life behind.
struct Past
{
    const char* what;
    std::function<void(TestMachine&)> live;
};

const std::vector<Past> kPasts = {
    {"initialised only", [](TestMachine&) {}},
    {"started",
     [](TestMachine& machine)
     {
         machine.Start();
     }},
    {"in a level",
     [](TestMachine& machine)
     {
         machine.Start();
         machine.Update(0.1f);
     }},
    {"after a transition",
     [](TestMachine& machine)
     {
         machine.Start();
         machine.Update(0.1f);
         machine.TickWith("go");
     }},
    {"in a blip",
     [](TestMachine& machine)
     {
         machine.Start();
         machine.TickWith("push");
     }},
    {"in a blip that displaced another",
     [](TestMachine& machine)
     {
         machine.Start();
         machine.TickWith("push");
         machine.TickWith("hit");
     }},
    {"after a blip that went on to the start",
     [](TestMachine& machine)
     {
         machine.Start();
         machine.TickWith("hit");
         machine.RevertToStartState();
     }},
};

Lines FirstLife()
{
    LogRecorder log;
    InitialisedMachine machine(Fighter());
    return Play(machine, log);
}

} // namespace

TEST(HSMReload, ForgetsAllThatLayInTheArena)
{
    for (const Past& past : kPasts)
    {
        LogRecorder log;
        InitialisedMachine machine(Fighter());
        past.live(machine);

        EXPECT_EQ(machine.Create(), 1);

        EXPECT_EQ(machine.globalState, nullptr) << past.what;
        EXPECT_EQ(machine.previousState, nullptr) << past.what;
        EXPECT_EQ(machine.currentStack, nullptr) << past.what;
        EXPECT_EQ(machine.parameterTable, nullptr) << past.what;
        EXPECT_EQ(machine.MainStack() + " " + machine.BlipStack(), "- -") << past.what;
        EXPECT_TRUE(machine.states.empty()) << past.what;
        EXPECT_FALSE(machine.IsBlipState()) << past.what;
        EXPECT_EQ(machine.blipPriority, 1) << past.what;
    }
}

// The machine still has the tree of its first life, or the handle of it after Uninit, so the last
// step of Init is refused. All others are done, and the machine runs.
TEST(HSMReload, LivesASecondLifeLikeTheFirst)
{
    const Lines first = FirstLife();
    ASSERT_GT(first.size(), 30u);
    for (const bool isUninitialised : {false, true})
    {
        for (const Past& past : kPasts)
        {
            LogRecorder log;
            InitialisedMachine machine(Fighter());
            past.live(machine);
            if (isUninitialised)
            {
                machine.HSM::Uninit();
            }

            ASSERT_EQ(machine.Create(), 1);
            EXPECT_EQ(machine.Init(), 0);

            EXPECT_EQ(Play(machine, log), first) << past.what << isUninitialised;
        }
    }
}

TEST(HSMReload, LeavesNothingBehindWhenItFailsWithItsNewArena)
{
    DocumentBuilder nameless = Fighter();
    nameless.Head().Remove(JSON_HeadMachineType);
    DocumentBuilder narrow = Fighter();
    narrow.Head().Set(JSON_HeadMemory, 0);
    for (const DocumentBuilder& second : {nameless, narrow})
    {
        for (const Past& past : kPasts)
        {
            LogRecorder log;
            InitialisedMachine machine(Fighter());
            past.live(machine);

            EXPECT_EQ(machine.Load(second.Text()), 0) << past.what;

            EXPECT_EQ(machine.nodeDefTable, nullptr) << past.what;
            EXPECT_EQ(machine.parameterTable, nullptr) << past.what;
            EXPECT_EQ(machine.FindDef(10u), nullptr) << past.what;
            machine.Start();
            machine.Update(0.1f);
            EXPECT_EQ(machine.GetCurrentState(), nullptr) << past.what;
            EXPECT_EQ(machine.Init(), 0) << past.what;
        }
    }
}

TEST(HSMReload, TicksAndStartsBeforeASecondInit)
{
    for (const Past& past : kPasts)
    {
        LogRecorder log;
        InitialisedMachine machine(Fighter());
        past.live(machine);
        machine.SetStateSwitchCallback(RecordSwitch);
        ASSERT_EQ(machine.Create(), 1);
        log.Clear();

        machine.Update(0.1f);
        EXPECT_EQ(machine.RevertToStartState(), 0) << past.what;
        machine.RevertToPreviousState();
        machine.Start();
        machine.Update(0.1f);

        EXPECT_EQ(log.Take(), (Lines{NotActivated(0), ErrorBreak("vell::HSM::ActivateState"),
                                     NotActivated(20), ErrorBreak("vell::HSM::PushState")}))
            << past.what;
    }
}

} // namespace vell::test
