// VELL: data-driven hierarchical state machines.
// tests/states/SubstateStateTest.cpp: starting, resuming and leaving a nested level.
#include <vell/SubstateState.h>

#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/SubstateDef.h"
#include "tests/support/Scene.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

std::string In(const char* operation)
{
    return ErrorBreak(std::string("vell::SubstateState::") + operation);
}

/// The level Level (20), whose first state is Jab (23), with Hook (24) beside that.
DocumentBuilder LevelDocument()
{
    return DocumentBuilder()
        .Start(20)
        .Parameter(PulseParameter("hook"))
        .Parameter(PulseParameter("leave"))
        .Level("Level", 20, 23, {101})
        .Nodes({Generic("Jab", 23, {100}, 20), Generic("Hook", 24, {}, 20), Generic("Rest", 30)})
        .Node(Transition("ToHook", 100, 23, 24, {Holds("hook")}))
        .Node(Transition("ToRest", 101, 20, 30, {Holds("leave")}));
}

SubstateState& LevelOf(Scene& scene, unsigned int id = 20)
{
    return *dynamic_cast<SubstateState*>(scene.machine.FindState(id));
}

/// A state that is entered only while its door is open.
class DoorState : public SMState
{
public:
    int Enter() override
    {
        LogRecorder::Note("at the door");
        return isOpen ? SMState::Enter() : 0;
    }

    inline static bool isOpen = true;
};

/// What the activation of the level 20 logs when its Init logs `inner` and its own line.
Lines NotMade(const Lines& inner)
{
    const Lines once = inner + inner + Lines{In("Init")};
    return once + once + (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(20)});
}

/// A level 20 with the given enter and exit node, beside EnterNode (21), ExitNode (22), Plain (23).
DocumentBuilder GateDocument(unsigned int enter, unsigned int exit)
{
    return DocumentBuilder().Start(20).Nodes(
        {Substate("Level", 20, enter, exit), Enter("EnterNode", 21, 23, 20),
         Exit("ExitNode", 22, 20), Generic("Plain", 23, {}, 20)});
}

} // namespace

TEST(SubstateState, FindsTheGatesOfItsLevelWhenItIsActivated)
{
    Scene scene(LevelDocument());

    scene.machine.ActivateState(20, 0.0f);

    SubstateState& level = LevelOf(scene);
    EXPECT_EQ(level.enterStateID, 23u);
    EXPECT_EQ(level.enterDef, scene.machine.FindDef(21u));
    EXPECT_EQ(level.exitDef, scene.machine.FindDef(22u));
    EXPECT_EQ(level.subDef, level.GetDef());
    EXPECT_EQ(level.GetEnterID(), 21u);
    EXPECT_EQ(level.GetExitID(), 22u);
    EXPECT_EQ(level.currentChild, nullptr);
    EXPECT_EQ(level.previousChild, nullptr);
    EXPECT_EQ(scene.log.Take(), Activated("Level", 20, "-"));
}

TEST(SubstateState, IsRefusedWhenAGateIsMissingOrOfAnotherClass)
{
    const Lines missing = {"3 Failed to find node definition ID: 999", In("InitEnterExit")};
    const Lines wrong = {In("InitEnterExit")};
    const struct
    {
        const char* what;
        unsigned int enter;
        unsigned int exit;
        Lines lines;
    } cases[] = {{"no exit node", 21, 999, missing},
                 {"no enter node", 999, 22, missing},
                 {"a state for the exit node", 21, 23, wrong},
                 {"a state for the enter node", 23, 22, wrong},
                 {"the two gates exchanged", 22, 21, wrong}};
    for (const auto& gates : cases)
    {
        SCOPED_TRACE(gates.what);
        Scene scene(GateDocument(gates.enter, gates.exit));

        EXPECT_EQ(scene.machine.ActivateState(20, 0.0f), nullptr);

        EXPECT_EQ(scene.log.Take(), NotMade(gates.lines));
    }
}

TEST(SubstateState, IsRefusedWhenItsEnterNodeNamesNoState)
{
    Scene scene(GateDocument(21, 22));
    dynamic_cast<EnterDef*>(scene.machine.FindDef(21u))->targetId = 0;

    EXPECT_EQ(scene.machine.ActivateState(20, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), NotMade({In("InitEnterExit")}));
}

TEST(SubstateState, RefusesToFindGatesWithoutADefinitionOrAMachine)
{
    Scene scene(LevelDocument());
    BaseDef* def = dynamic_cast<BaseDef*>(scene.machine.FindDef(20u));
    SubstateState level;

    EXPECT_EQ(level.InitEnterExit(nullptr), 0);
    EXPECT_EQ(scene.log.Take(), Lines{In("InitEnterExit")});
    EXPECT_EQ(level.Init(def), 0);
}

TEST(SubstateState, HasNoGatesWithoutADefinition)
{
    LogRecorder log;
    SubstateState level;
    level.previousChildID = 5;

    EXPECT_EQ(level.GetEnterID(), 5u);
    EXPECT_EQ(level.GetExitID(), 0u);

    EXPECT_EQ(log.Take(), (Lines{In("GetEnterID"), In("GetExitID")}));
}

TEST(SubstateState, FirstStartRecordsItsChildTwice)
{
    Scene scene(LevelDocument());
    scene.Run(1);
    SMState* jab = scene.machine.FindState(23);

    EXPECT_EQ(LevelOf(scene).currentChild, jab);
    EXPECT_EQ(LevelOf(scene).previousChild, jab);
    EXPECT_EQ(LevelOf(scene).currentChildID, 23u);
    EXPECT_EQ(LevelOf(scene).previousChildID, 23u);
    EXPECT_EQ(LevelOf(scene).GetEnterID(), 23u);
}

TEST(SubstateState, ChildOfAnotherParentIsRecordedOnce)
{
    DocumentBuilder document;
    Scene scene(document.Start(20).Level("Level", 20, 23).Node(Generic("Stray", 23)));
    scene.Run(1);

    EXPECT_EQ(LevelOf(scene).currentChild, scene.machine.FindState(23));
    EXPECT_EQ(LevelOf(scene).currentChildID, 23u);
    EXPECT_EQ(LevelOf(scene).previousChild, nullptr);
    EXPECT_EQ(LevelOf(scene).previousChildID, 0u);
}

TEST(SubstateState, TickThatStartsTheChildTestsTheTransitionsAndRunsNoAction)
{
    Scene scene(LevelDocument());
    scene.Run(0);

    EXPECT_EQ(scene.TickWith("leave"), Activated("Jab", 23, "-") + Entered("Jab") +
                                           Fired("Level", 101) + Left("Jab") + Left("Level") +
                                           Activated("Rest", 30, "Jab") + Entered("Rest") +
                                           Reported(101, 23, 30));
    EXPECT_EQ(LevelOf(scene).previousChild, scene.machine.FindState(23));
}

TEST(SubstateState, RunsBehindItsChildFromTheNextTickOn)
{
    Scene scene(LevelDocument());
    scene.Run(1);

    EXPECT_EQ(scene.Tick(), (Lines{"Jab execution 0.5", "Level execution 0.5"}));
}

TEST(SubstateState, ChangeInsideTheLevelMovesTheCurrentChildToThePreviousOne)
{
    Scene scene(LevelDocument());
    scene.Run(1);

    scene.TickWith("hook");

    EXPECT_EQ(LevelOf(scene).currentChild, scene.machine.FindState(24));
    EXPECT_EQ(LevelOf(scene).currentChildID, 24u);
    EXPECT_EQ(LevelOf(scene).previousChild, scene.machine.FindState(23));
    EXPECT_EQ(LevelOf(scene).previousChildID, 23u);
}

TEST(SubstateState, ExitKeepsTheChildToResumeAt)
{
    Scene scene(LevelDocument());
    scene.Run(1);
    scene.TickWith("hook");

    scene.TickWith("leave");

    EXPECT_EQ(scene.machine.MainStack(), "Rest");
    EXPECT_EQ(LevelOf(scene).currentChild, nullptr);
    EXPECT_EQ(LevelOf(scene).currentChildID, 0u);
    EXPECT_EQ(LevelOf(scene).previousChild, scene.machine.FindState(24));
    EXPECT_EQ(LevelOf(scene).previousChildID, 24u);
    EXPECT_EQ(LevelOf(scene).GetEnterID(), 24u);
}

TEST(SubstateState, ExitBeforeTheFirstUpdateLosesTheChildToResumeAt)
{
    Scene scene(LevelDocument());
    scene.Run(1);
    scene.TickWith("hook");
    scene.TickWith("leave");
    scene.machine.PushState(20u);
    scene.machine.PopState();
    EXPECT_EQ(LevelOf(scene).previousChild, nullptr);
    EXPECT_EQ(LevelOf(scene).previousChildID, 0u);
    scene.machine.PushState(20u);
    scene.log.Clear();

    scene.Tick();

    EXPECT_EQ(scene.machine.MainStack(), "Rest/Level/Jab");
}

TEST(SubstateState, ExitBeforeAnyStartLeavesItUnstarted)
{
    Scene scene(LevelDocument());
    scene.Run(0);

    scene.machine.PopState();

    EXPECT_EQ(LevelOf(scene).currentChild, nullptr);
    EXPECT_EQ(LevelOf(scene).previousChild, nullptr);
    EXPECT_EQ(LevelOf(scene).currentChildID, 0u);
    EXPECT_EQ(LevelOf(scene).previousChildID, 0u);
}

TEST(SubstateState, TriesAgainEachTickWhenItsFirstStateIsUnknown)
{
    Scene scene(DocumentBuilder()
                    .Start(20)
                    .Parameter(PulseParameter("leave"))
                    .Level("Level", 20, 999, {101})
                    .Node(Generic("Rest", 30))
                    .Node(Transition("ToRest", 101, 20, 30, {Holds("leave")})));
    scene.Run(0);
    const Lines fails = {ErrorBreak("vell::HSM::ActivateState"), NotActivated(999),
                         ErrorBreak("vell::HSM::PushState"), In("Update")};

    EXPECT_EQ(scene.Tick(), fails);
    EXPECT_EQ(scene.Tick(), fails);
    EXPECT_EQ(LevelOf(scene).currentChild, nullptr);
    EXPECT_EQ(LevelOf(scene).previousChild, nullptr);
    EXPECT_EQ(scene.TickWith("leave"), fails + Fired("Level", 101) + Left("Level") +
                                           Activated("Rest", 30, "Level") + Entered("Rest") +
                                           Reported(101, 20, 30));
}

TEST(SubstateState, TriesAgainEachTickWhenItsChildWillNotBeResumed)
{
    DocumentBuilder document;
    document.Start(20).Level("Level", 20, 23).Node(Node(kOwnBuilder, "Door", 23, {}, 20));
    DoorState::isOpen = true;
    Scene scene(document, MakeState<DoorState>);
    scene.Run(1);
    scene.machine.PopState();
    scene.machine.PopState();
    scene.machine.PushState(20u);
    scene.log.Clear();
    SMState* door = scene.machine.FindState(23);

    DoorState::isOpen = false;
    EXPECT_EQ(scene.Tick(), (Lines{"at the door", "at the door", ErrorBreak("vell::HSM::PushState"),
                                   In("Update")}));
    EXPECT_EQ(LevelOf(scene).currentChild, nullptr);
    EXPECT_EQ(LevelOf(scene).previousChild, door);

    DoorState::isOpen = true;
    EXPECT_EQ(scene.Tick(), Lines{"at the door"} + Entered("Door"));
    EXPECT_EQ(LevelOf(scene).currentChild, door);
}

TEST(SubstateState, RefusesToUpdateWithoutAMachineAndToTestWithoutARecord)
{
    Scene scene(LevelDocument());
    scene.Run(0);

    EXPECT_EQ(LevelOf(scene).Update(nullptr, 0.5f), 0);
    EXPECT_EQ(LevelOf(scene).ProcessTransitions(&scene.machine, nullptr), 0u);

    EXPECT_EQ(scene.log.Take(), (Lines{In("Update"), In("ProcessTransitions")}));
}

TEST(SubstateState, UpdateOfARunningLevelSucceedsWhateverItsOwnExecuteSays)
{
    Scene scene(LevelDocument());
    SMState child;
    SubstateState level;
    level.currentChild = &child;

    EXPECT_EQ(level.Update(&scene.machine, 0.5f), 1);

    EXPECT_EQ(scene.log.Take(),
              (Lines{ErrorBreak("vell::SMState::Execute"), ErrorBreak("vell::SMState::Execute"),
                     ErrorBreak("vell::SMState::Update")}));
}

TEST(SubstateState, EntersTwiceWithoutADefinition)
{
    LogRecorder log;
    SubstateState level;

    EXPECT_EQ(level.Enter(), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::SMState::Enter"),
                                 ErrorBreak("vell::SMState::Enter"), In("Enter")}));
}

TEST(SubstateState, RecordsItsChildOnceEvenWhenItsExitFails)
{
    LogRecorder log;
    SMState child;
    SubstateState level;
    level.currentChild = &child;
    level.currentChildID = 23;

    EXPECT_EQ(level.Exit(), 0);

    EXPECT_EQ(level.previousChild, &child);
    EXPECT_EQ(level.previousChildID, 23u);
    EXPECT_EQ(level.currentChild, nullptr);
    EXPECT_EQ(level.currentChildID, 0u);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::SMState::Exit"),
                                 ErrorBreak("vell::SMState::Exit"), In("Exit")}));
}

TEST(SubstateState, NestedLevelResumesItsOwnChild)
{
    Scene scene(DocumentBuilder()
                    .Start(20)
                    .Parameter(PulseParameter("leave"))
                    .Parameter(PulseParameter("back"))
                    .Level("Outer", 20, 40, {101})
                    .Level("Inner", 40, 43, {}, 20)
                    .Nodes({Generic("Leaf", 43, {}, 40), Generic("Rest", 30, {102})})
                    .Node(Transition("ToRest", 101, 20, 30, {Holds("leave")}))
                    .Node(Transition("Back", 102, 30, 20, {Holds("back")})));
    scene.Run(2);
    ASSERT_EQ(scene.machine.MainStack(), "Outer/Inner/Leaf");
    scene.TickWith("leave");
    scene.TickWith("back");

    EXPECT_EQ(scene.Tick(), Entered("Inner"));
    EXPECT_EQ(scene.Tick(), Entered("Leaf") + Lines{"Outer execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Outer/Inner/Leaf");
}

TEST(SubstateState, FindsNoGatesForANullDefinition)
{
    Scene scene(GateDocument(21, 22));
    auto* state = dynamic_cast<SubstateState*>(scene.machine.ActivateState(20, 0.0f));
    ASSERT_NE(state, nullptr);
    scene.log.Clear();

    EXPECT_EQ(state->InitEnterExit(nullptr), 0);

    EXPECT_EQ(scene.log.Take(), (Lines{In("InitEnterExit")}));
}

} // namespace vell::test
