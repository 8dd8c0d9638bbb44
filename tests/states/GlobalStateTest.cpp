// VELL: data-driven hierarchical state machines.
// tests/states/GlobalStateTest.cpp: the state that is on no stack.
#include "states/GlobalState.h"

#include <vell/UpdateResult.h>

#include "definitions/GenericDef.h"
#include "definitions/GlobalDef.h"
#include "states/EnterState.h"
#include "tests/support/Scene.h"
#include "tests/support/SmallDocument.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

DocumentBuilder GlobalDocument()
{
    return SmallDocument().GlobalNode(Global("Global", 50));
}

/// Creates a definition that calls itself a global node and is of another class.
BaseDef* CreateFalseGlobal(const GenericValue& node, HSMAlloc* alloc)
{
    BaseDef* def = GenericDef::Create(node, alloc);
    def->SetType(DefTypeGlobal);
    return def;
}

} // namespace

TEST(GlobalState, UninitForgetsTheTypedDefinition)
{
    LogRecorder log;
    GlobalDef def;
    GlobalState state;
    state.Init(&def);

    EXPECT_EQ(state.Uninit(), 1);

    EXPECT_EQ(state.typedDef, nullptr);
    EXPECT_EQ(state.GetDef(), &def);
}

TEST(GlobalState, IsActivatedByTheFirstStartAndNeitherEnteredNorPushed)
{
    Scene scene(GlobalDocument());

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take(),
              Activated("Global", 50, "-") + Activated("Stand", 10, "-") + Entered("Stand"));
    EXPECT_EQ(scene.machine.globalState, scene.machine.FindState(50));
    EXPECT_EQ(scene.machine.MainStack(), "Stand");

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take(), Activated("Stand", 10, "-") + Entered("Stand"));
}

TEST(GlobalState, WithoutTransitionsNeverStartsABlipAndRunsNoAction)
{
    Scene scene(GlobalDocument());
    scene.Run(0);
    UpdateResult result;

    EXPECT_EQ(scene.machine.UpdateState(scene.machine.globalState, &result, 0.5f), 2);
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});

    EXPECT_FALSE(scene.machine.IsBlipState());
}

TEST(GlobalState, RefusesADefinitionOfAnotherClassAndTheMachineRunsOnWithoutIt)
{
    LogRecorder log;
    TestMachine machine(GlobalDocument());
    machine.RegisterNodeDef(DURMBaseLib::BUILDER_Global, CreateFalseGlobal);
    ASSERT_EQ(machine.Init(), 1);
    log.Clear();

    machine.Start();

    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak("vell::GlobalState::Init"), ErrorBreak("vell::GlobalState::Init"),
                     ErrorBreak("vell::HSM::ActivateState"), NotActivated(50),
                     "6 Activated State: Stand (10)", "6 [Enter] Stand - SMState.cpp : #"}));
    EXPECT_EQ(machine.globalState, nullptr);
    machine.Update(0.5f);
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(GlobalState, MissesWhenItsClassRefusesTheDefinitionAndTheMachineRunsOn)
{
    Scene scene(GlobalDocument());
    scene.machine.RegisterState(DURMBaseLib::BUILDER_Global, EnterState::Create);

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take(),
              (Lines{ErrorBreak("vell::EnterState::Init"), ErrorBreak("vell::EnterState::Init"),
                     ErrorBreak("vell::HSM::ActivateState"), NotActivated(50)}) +
                  Activated("Stand", 10, "-") + Entered("Stand"));
    EXPECT_EQ(scene.machine.globalState, nullptr);
    EXPECT_EQ(scene.Tick(), Lines{"Stand execution 0.5"});
}

TEST(GlobalState, IsTestedOnAnEmptyMainStack)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("hit"))
                    .Nodes({Generic("Stand", 10), Generic("Hurt", 11)})
                    .Node(Transition("ToHurt", 100, 50, 11, {Holds("hit")}))
                    .GlobalNode(Global("Global", 50, {100})));
    scene.Run(0);
    scene.machine.PopState();
    scene.log.Clear();

    EXPECT_EQ(scene.TickWith("hit"), Fired("Global", 100) + Lines{"6 State Blip: Global"} +
                                         Activated("Hurt", 11, "-") + Entered("Hurt") +
                                         Lines{"Hurt execution 0.5"});
    EXPECT_EQ(scene.machine.blipStackLevel, -1);
}

} // namespace vell::test
