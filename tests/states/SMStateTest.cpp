// VELL: data-driven hierarchical state machines.
// tests/states/SMStateTest.cpp: entering, updating and leaving a state, and its identity.
#include <durm/DURMBaseLib.h>
#include <vell/Action.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>

#include "definitions/AnimClipDef.h"
#include "tests/support/Definitions.h"
#include "tests/support/Scene.h"
#include "tests/support/TestAction.h"
#include "tests/support/VirtualOrder.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// Opens the fields of a state.
struct OpenState : SMState
{
    using SMState::entryAction;
    using SMState::exitAction;
    using SMState::id;
    using SMState::PerformActions;
    using SMState::transitions;
};

/// Counts the runs of Execute and remembers the time, and fails when it is told to.
class CountingState : public SMState
{
public:
    int Execute(double dt) override
    {
        ++runs;
        time = dt;
        return outcome;
    }

    int runs = 0;
    double time = 0.0;
    int outcome = 1;
};

const char* const kSMState = "vell::SMState::";

std::string In(const char* operation)
{
    return ErrorBreak(std::string(kSMState) + operation);
}

} // namespace

TEST(SMState, BeginsWithNothing)
{
    OpenState state;

    EXPECT_EQ(state.GetDef(), nullptr);
    EXPECT_EQ(state.id, 0u);
    EXPECT_EQ(state.GetNumTransitions(), 0);
    EXPECT_EQ(state.GetEntryAction(), nullptr);
    EXPECT_EQ(state.GetExitAction(), nullptr);
    EXPECT_EQ(state.GetParent(), nullptr);
    EXPECT_EQ(state.GetHSM(), nullptr);
}

TEST(SMState, IsPlacedInAnArenaWithRoomForIt)
{
    LogRecorder log;
    Arena alloc(sizeof(SMState));

    SMState* state = SMState::Create(7, &alloc);

    ASSERT_EQ(static_cast<void*>(state), alloc.block);
    EXPECT_EQ(state->*(&OpenState::id), 7u);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(SMState, IsNotMadeInAnArenaAByteTooSmallOrWithoutOne)
{
    LogRecorder log;
    Arena alloc(sizeof(SMState) - 1);

    EXPECT_EQ(SMState::Create(7, &alloc), nullptr);
    EXPECT_EQ(log.Take(), Lines{In("Create")});
    EXPECT_EQ(SMState::Create(7, nullptr), nullptr);
    EXPECT_EQ(log.Take(), Lines{In("Create")});
}

TEST(SMState, KeepsTheOrderOfItsVirtualOperations)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    // The destructor takes two places.
    EXPECT_EQ(SlotsOf(&SMState::Init, &SMState::Uninit, &SMState::HandleInput, &SMState::Update,
                      &SMState::Enter, &SMState::Execute, &SMState::Exit, &SMState::GetStates,
                      &SMState::ProcessTransitions),
              SlotsFrom(2, 9));
}

TEST(SMState, CopySharesAllButTheListOfTransitions)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 5);
    TransitionDef transition;
    SubstateState parent;
    TestMachine machine;
    OpenState state;
    TestAction entry("entry");
    TestAction exit("exit");
    state.Init(&def);
    state.id = 10;
    state.entryAction = &entry;
    state.exitAction = &exit;
    state.SetParent(&parent);
    state.SetHSM(&machine);
    state.PushTransition(&transition);

    OpenState copy(state);
    OpenState assigned;
    assigned = state;
    state.PushTransition(nullptr);

    for (const OpenState* other : {&copy, &assigned})
    {
        EXPECT_EQ(other->GetDef(), &def);
        EXPECT_EQ(other->id, 10u);
        EXPECT_EQ(other->GetEntryAction(), &entry);
        EXPECT_EQ(other->GetExitAction(), &exit);
        EXPECT_EQ(other->GetParent(), &parent);
        EXPECT_EQ(other->GetHSM(), &machine);
        EXPECT_EQ(other->transitions, std::vector<TransitionDef*>{&transition});
    }
}

TEST(SMState, TakesADefinitionAndRefusesNull)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 5);
    SMState state;

    EXPECT_EQ(state.Init(nullptr), 0);
    EXPECT_EQ(log.Take(), Lines{In("Init")});
    EXPECT_EQ(state.Init(&def), 1);
    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(state.GetDef(), &def);
    EXPECT_EQ(state.GetID(), 10u);
    EXPECT_EQ(state.GetParentID(), 5u);
    state.SetDef(nullptr);
    EXPECT_EQ(state.GetDef(), nullptr);
}

TEST(SMState, UninitDoesNothing)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 5);
    SMState state;
    state.Init(&def);

    EXPECT_EQ(state.Uninit(), 1);

    EXPECT_EQ(state.GetDef(), &def);
    EXPECT_EQ(state.GetStates(), &state);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(SMState, HasNoIdentityWithoutADefinition)
{
    LogRecorder log;
    SMState state;

    EXPECT_EQ(state.GetID(), 0u);
    EXPECT_EQ(state.GetParentID(), 0u);
    EXPECT_EQ(log.Take(), (Lines{In("GetID"), In("GetParentID")}));
    EXPECT_EQ(state.GetExitConnector(), 0u);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(SMState, FailsToEnterExecuteAndExitWithoutADefinition)
{
    LogRecorder log;
    SMState state;

    EXPECT_EQ(state.Enter(), 0);
    EXPECT_EQ(state.Execute(0.5), 0);
    EXPECT_EQ(state.Exit(), 0);

    EXPECT_EQ(log.Take(), (Lines{In("Enter"), In("Execute"), In("Exit")}));
}

TEST(SMState, UpdateWithoutADefinitionExecutesTwiceAndLogsThreeLines)
{
    LogRecorder log;
    SMState state;

    EXPECT_EQ(state.Update(nullptr, 0.5f), 0);

    EXPECT_EQ(log.Take(), (Lines{In("Execute"), In("Execute"), In("Update")}));
}

TEST(SMState, UpdateRunsAGoodExecuteOnceAndAFailingOneTwice)
{
    LogRecorder log;
    CountingState state;

    EXPECT_EQ(state.Update(nullptr, 0.1f), 1);
    EXPECT_EQ(state.runs, 1);
    EXPECT_EQ(state.time, static_cast<double>(0.1f));
    EXPECT_EQ(log.Take(), Lines{});

    state.outcome = 0;
    EXPECT_EQ(state.Update(nullptr, 0.2f), 0);
    EXPECT_EQ(state.runs, 3);
    EXPECT_EQ(state.time, static_cast<double>(0.2f));
    EXPECT_EQ(log.Take(), Lines{In("Update")});
}

TEST(SMState, ActionsReceiveTheVeryFloatOfTheTick)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    SMState state;
    float time = 0.0f;
    state.Init(&def);
    def.RegisterExecute(new TestAction(
        [&time](float timeStep)
        {
            time = timeStep;
            return 0;
        }));

    EXPECT_EQ(state.Update(nullptr, 0.1f), 1);

    EXPECT_EQ(time, 0.1f);
}

TEST(SMState, RunsEachChainInItsOrder)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    SMState state;
    state.Init(&def);
    def.RegisterEnter(new TestAction("first"));
    def.RegisterEnter(new TestAction("second"));
    def.RegisterExecute(new TestAction("third"));
    def.RegisterExecute(new TestAction("fourth"));
    def.RegisterExit(new TestAction("fifth"));
    def.RegisterExit(new TestAction("sixth"));

    EXPECT_EQ(state.Enter(), 1);
    EXPECT_EQ(state.Execute(0.25), 1);
    EXPECT_EQ(state.Exit(), 1);

    EXPECT_EQ(log.Take(),
              (Lines{"first entry 0", "second entry 0", "6 [Enter] Stand - SMState.cpp : #",
                     "third execution 0.25", "fourth execution 0.25",
                     "6 [Exit] Stand - SMState.cpp : #", "fifth exit 0", "sixth exit 0"}));
}

TEST(SMState, PerformsAChainThatItIsGivenWithAndWithoutADefinition)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    TestAction first("first");
    TestAction second("second");
    first.next = &second;
    for (BaseDef* given : {&def, static_cast<BaseDef*>(nullptr)})
    {
        OpenState state;
        state.SetDef(given);

        EXPECT_EQ(state.PerformActions(ActTypeExecution, 0.5f, &first), 1);
        EXPECT_EQ(state.PerformActions(ActTypeExecution, 0.5f, nullptr), 1);

        EXPECT_EQ(log.Take(), (Lines{"first execution 0.5", "second execution 0.5"}));
    }
}

TEST(SMState, HasNoEntryAndExitActionOfItsOwnWhateverTheDefinitionHas)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    SMState state;
    state.Init(&def);
    def.RegisterEnter(new TestAction("enter"));
    def.RegisterExit(new TestAction("exit"));

    state.Enter();

    EXPECT_EQ(state.GetEntryAction(), nullptr);
    EXPECT_EQ(state.GetExitAction(), nullptr);
}

TEST(SMState, TellsItsParentAfterItsEnterActions)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    BaseDef otherDef("Walk", 11, 0);
    SubstateState parent;
    SMState state;
    SMState other;
    state.Init(&def);
    other.Init(&otherDef);
    state.SetParent(&parent);
    other.SetParent(&parent);
    otherDef.RegisterEnter(new TestAction(
        [&parent](float)
        {
            LogRecorder::Note("child " + std::to_string(parent.currentChildID));
            return 1;
        }));

    state.Enter();
    EXPECT_EQ(parent.currentChild, &state);
    EXPECT_EQ(parent.currentChildID, 10u);
    EXPECT_EQ(parent.previousChild, nullptr);
    EXPECT_EQ(parent.previousChildID, 0u);
    log.Clear();

    other.Enter();
    EXPECT_EQ(parent.currentChild, &other);
    EXPECT_EQ(parent.currentChildID, 11u);
    EXPECT_EQ(parent.previousChild, &state);
    EXPECT_EQ(parent.previousChildID, 10u);
    EXPECT_EQ(log.Take(), (Lines{"child 10", "6 [Enter] Walk - SMState.cpp : #"}));
}

TEST(SMState, ExitDoesNotTellItsParent)
{
    LogRecorder log;
    BaseDef def("Stand", 10, 0);
    SubstateState parent;
    SMState state;
    state.Init(&def);
    state.SetParent(&parent);
    state.Enter();

    state.Exit();

    EXPECT_EQ(parent.currentChild, &state);
}

TEST(SMState, ClipAsksForItsAnimationAfterTheLogLine)
{
    Scene scene(
        DocumentBuilder().Start(10).Nodes({Clip("Wave", 10, "wave.clip"), Generic("Stand", 11)}));
    TestListener second("second");
    scene.machine.SubscribeEvents(&second);

    scene.machine.Start();
    scene.machine.PushState(11u);

    EXPECT_EQ(scene.log.Take(),
              Lines{NotActivated(0)} + Activated("Wave", 10, "-") + Entered("Wave") +
                  (Lines{"events: play wave.clip 0 30", "second: play wave.clip 0 30"}) +
                  Activated("Stand", 11, "-") + Entered("Stand"));
}

TEST(SMState, ClipWithoutAMachineAsksNobody)
{
    LogRecorder log;
    AnimClipDef def;
    def.SetName("Wave");
    SMState state;
    state.Init(&def);

    EXPECT_EQ(state.Enter(), 1);

    EXPECT_EQ(log.Take(), Lines{"6 [Enter] Wave - SMState.cpp : #"});
}

TEST(SMState, HandleInputTestsTheExitConnector)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Node(Generic("Good", 10).Set(JSON_ExitConnector, 11))
                    .Node(Connector("Plug", 11, "Exit"))
                    .Node(Generic("Bare", 12))
                    .Node(Generic("Lost", 13).Set(JSON_ExitConnector, 999)));
    SMState* good = scene.machine.ActivateState(10, 0.0f);
    SMState* bare = scene.machine.ActivateState(12, 0.0f);
    SMState* lost = scene.machine.ActivateState(13, 0.0f);
    SMState empty;
    scene.log.Clear();

    EXPECT_EQ(good->GetExitConnector(), 11u);
    EXPECT_EQ(good->HandleInput(&scene.machine), 1);
    EXPECT_EQ(scene.log.Take(), Lines{});
    EXPECT_EQ(good->HandleInput(nullptr), 0);
    EXPECT_EQ(scene.log.Take(), Lines{In("HandleInput")});
    EXPECT_EQ(empty.HandleInput(&scene.machine), 0);
    EXPECT_EQ(scene.log.Take(), Lines{In("HandleInput")});
    EXPECT_EQ(bare->HandleInput(&scene.machine), 0);
    EXPECT_EQ(scene.log.Take(), Lines{In("HandleInput")});
    EXPECT_EQ(lost->HandleInput(&scene.machine), 0);
    EXPECT_EQ(scene.log.Take(),
              (Lines{"3 Failed to find node definition ID: 999", In("HandleInput")}));
}

namespace
{

SMState* robbedState = nullptr;

/// A log callback that takes the definition away on the first line.
void RobOnALine(int, const char*)
{
    if (robbedState != nullptr)
    {
        std::exchange(robbedState, nullptr)->SetDef(nullptr);
    }
}

} // namespace

TEST(SMState, MayLoseItsDefinitionInItsOwnActions)
{
    for (const bool isAssigned : {false, true})
    {
        LogRecorder log;
        OpenDef def{"Walk", 1, 0};
        SMState state;
        const auto lose = [&state, isAssigned](float)
        {
            isAssigned ? void(state = SMState()) : state.SetDef(nullptr);
            return 1;
        };
        def.RegisterEnter(new TestAction(lose));
        def.RegisterExecute(new TestAction(lose));
        def.RegisterExit(new TestAction(lose));

        state.Init(&def);
        EXPECT_EQ(state.Enter(), 1);
        EXPECT_EQ(state.GetDef(), nullptr);
        state.Init(&def);
        EXPECT_EQ(state.Execute(0.5), 1);
        state.Init(&def);
        EXPECT_EQ(state.Exit(), 1);
        EXPECT_EQ(log.Take(),
                  (Lines{"6 [Enter] Walk - SMState.cpp : #", "6 [Exit] Walk - SMState.cpp : #"}));
    }
}

TEST(SMState, MayLoseItsDefinitionOnItsOwnLogLine)
{
    LogRecorder log;
    Lines lines;
    OpenDef def{"Walk", 1, 0};
    def.RegisterExit(new TestAction("A", lines));
    SMState state;
    SetLogCallBackBase(RobOnALine);

    state.Init(&def);
    robbedState = &state;
    EXPECT_EQ(state.Enter(), 1);
    EXPECT_EQ(state.GetDef(), nullptr);
    state.Init(&def);
    robbedState = &state;
    EXPECT_EQ(state.Exit(), 1);

    EXPECT_EQ(lines, (Lines{"owner A", "A exit 0"}));
}

} // namespace vell::test
