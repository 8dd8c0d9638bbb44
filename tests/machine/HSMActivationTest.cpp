// VELL: data-driven hierarchical state machines.
// tests/machine/HSMActivationTest.cpp: making of run-time states, and the state-switch callback.
#include <vell/ConditionDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "definitions/NodeDefTable.h"
#include "tests/support/Scene.h"
#include "tests/support/SmallDocument.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

/// Notes whether the machine is known when Init runs.
class NotingState : public SMState
{
public:
    int Init(BaseDef* newDef) override
    {
        LogRecorder::Note(GetHSM() == nullptr ? "init without machine" : "init");
        return SMState::Init(newDef);
    }
};

/// A state that cannot be initialised.
class UnfitState : public SMState
{
public:
    int Init(BaseDef*) override
    {
        LogRecorder::Note("init");
        return 0;
    }
};

SMState* MakeNothing(unsigned int, HSMAlloc*)
{
    return nullptr;
}

/// The state Start (10) and a node Own (11) of the test's own builder number.
DocumentBuilder OwnDocument()
{
    return DocumentBuilder().Start(10).Nodes({Generic("Start", 10), Node(kOwnBuilder, "Own", 11)});
}

Lines Refused(unsigned int id)
{
    return {ErrorBreak("vell::HSM::ActivateState"), NotActivated(id)};
}

TransitionDef* TransitionOf(Scene& scene, unsigned int id)
{
    return dynamic_cast<TransitionDef*>(scene.machine.nodeDefTable->Find(id));
}

void NoteCallback(HSM* machine, SMState* previous, SMState* next, float argument)
{
    SMState* current = machine->GetCurrentState();
    LogRecorder::Note(std::string("callback, current ") +
                      (current == nullptr ? "-" : current->GetDef()->GetName()));
    RecordSwitch(machine, previous, next, argument);
}

} // namespace

TEST(ActivateState, GivesTheSameObjectEachTimeAndInitialisesItOnce)
{
    Scene scene(OwnDocument(), MakeState<NotingState>);

    SMState* first = scene.machine.ActivateState(11, 0.5f);
    SMState* second = scene.machine.ActivateState(11, 0.25f);

    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->GetHSM(), &scene.machine);
    EXPECT_EQ(first->GetID(), 11u);
    EXPECT_EQ(scene.log.Take(),
              Lines{"init"} + Activated("Own", 11, "-", "0.5") + Activated("Own", 11, "-", "0.25"));
}

TEST(ActivateState, RefusesIdZeroWithOneLine)
{
    Scene scene(OwnDocument());

    EXPECT_EQ(scene.machine.ActivateState(0, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), Lines{NotActivated(0)});
}

TEST(ActivateState, FailsWithoutANodeTable)
{
    LogRecorder log;
    TestMachine machine("{");
    log.Clear();

    EXPECT_EQ(machine.ActivateState(10, 0.0f), nullptr);

    EXPECT_EQ(log.Take(), Refused(10));
}

TEST(ActivateState, FailsForAnUnknownId)
{
    Scene scene(OwnDocument());

    EXPECT_EQ(scene.machine.ActivateState(999, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), Refused(999));
    EXPECT_EQ(scene.machine.states.size(), 0u);
}

TEST(ActivateState, FailsForNodesThatDoNotRun)
{
    DocumentBuilder document;
    JsonObject condition = BoolCondition("go", true);
    condition.Set(JSON_ID, 13).Set(JSON_BuilderType, BuilderName(DURMBaseLib::BUILDER_Condition));
    document.Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Generic("Start", 10), Connector("Plug", 11, "Exit")})
        .Node(Transition("Go", 12, 10, 10, {Holds("go")}))
        .Node(condition)
        .Node(Node(DURMBaseLib::BUILDER_Base, "Plain", 14));
    Scene scene(document);

    for (const unsigned int id : {11u, 12u, 13u, 14u})
    {
        ASSERT_NE(scene.machine.nodeDefTable->Find(id), nullptr);
        EXPECT_EQ(scene.machine.ActivateState(id, 0.0f), nullptr);
        EXPECT_EQ(scene.log.Take(), Refused(id));
    }
}

TEST(ActivateState, FailsWhenTheFactoryMakesNothing)
{
    Scene scene(OwnDocument(), MakeNothing);

    EXPECT_EQ(scene.machine.ActivateState(11, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), Refused(11));
}

TEST(ActivateState, FailsWhenTheArenaIsFull)
{
    Scene scene(OwnDocument());
    const unsigned int used = scene.machine.alloc.used;
    scene.machine.alloc.used =
        scene.machine.alloc.capacity - static_cast<unsigned int>(sizeof(SMState)) + 1;

    EXPECT_EQ(scene.machine.ActivateState(10, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), Lines{ErrorBreak("vell::SMState::Create")} + Refused(10));
    scene.machine.alloc.used = used;
}

TEST(ActivateState, AsksAFailingInitTwiceAndLosesItsRoom)
{
    Scene scene(OwnDocument(), MakeState<UnfitState>);
    const unsigned int used = scene.machine.alloc.used;

    EXPECT_EQ(scene.machine.ActivateState(11, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), (Lines{"init", "init"}) + Refused(11));
    EXPECT_EQ(scene.machine.FindState(11), nullptr);
    EXPECT_EQ(scene.machine.alloc.used, used + sizeof(UnfitState));
}

TEST(ActivateState, ConnectorAsATargetLeavesTheStackShort)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("go"))
                    .Nodes({Generic("Start", 10, {100}), Connector("Plug", 11, "Exit")})
                    .Node(Transition("Go", 100, 10, 11, {Holds("go")})));
    scene.Run(0);

    EXPECT_EQ(scene.TickWith("go"), Lines{"Start execution 0.5"} + Fired("Start", 100) +
                                        Left("Start") + Refused(11) +
                                        Lines{ErrorBreak("vell::HSM::UpdateStateStack")});
    EXPECT_EQ(scene.machine.MainStack(), "-");
}

TEST(ActivateState, TakesTransitionsFromTheChildrenAndSortsThemOnce)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Generic("Start", 10, {100, 11, 101, 999, 102, 103}), Generic("Other", 11)});
    const int priorities[] = {7, 3, 7, 3};
    for (unsigned int i = 0; i < 4; ++i)
    {
        document.Node(Transition("T", 100 + i, 10, 11, {Holds("go")})
                          .Set(JSON_TransitionPriority, priorities[i]));
    }
    Scene scene(document);

    for (int activation = 0; activation < 2; ++activation)
    {
        SMState* state = scene.machine.ActivateState(10, 0.0f);

        ASSERT_EQ(state->GetNumTransitions(), 4);
        EXPECT_EQ(state->GetTransitionAt(0)->GetID(), 101u);
        EXPECT_EQ(state->GetTransitionAt(1)->GetID(), 103u);
        EXPECT_EQ(state->GetTransitionAt(2)->GetID(), 100u);
        EXPECT_EQ(state->GetTransitionAt(3)->GetID(), 102u);
    }
}

TEST(ActivateState, GivesAStateWithoutChildrenNoTransitions)
{
    Scene scene(OwnDocument());
    UpdateResult result;

    SMState* state = scene.machine.ActivateState(10, 0.0f);

    EXPECT_EQ(state->GetNumTransitions(), 0);
    EXPECT_EQ(state->ProcessTransitions(&scene.machine, &result), 0u);
    EXPECT_EQ(scene.machine.ActivateTransitions(state), 1);
}

TEST(ActivateState, GivesConditionsTheParameterThatTheyTest)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Nodes({Generic("Start", 10, {100}), Generic("Other", 11)})
                    .Node(Transition("Go", 100, 10, 11, {Holds("late"), Holds("never")})));
    TransitionDef* transition = TransitionOf(scene, 100);
    ASSERT_EQ(transition->conditions.size(), 2u);
    IParameterBoolDef* late = nullptr;
    ASSERT_EQ(scene.machine.GetParameterTable()->CreateBoolParameter("late", true, &late), 1);
    ParameterDef* lateDef = scene.machine.GetParameterTable()->FindParameter("late");
    transition->conditions[1]->parameter = lateDef;
    scene.log.Clear();

    scene.machine.ActivateState(10, 0.0f);

    EXPECT_EQ(transition->conditions[0]->parameter, lateDef);
    EXPECT_EQ(transition->conditions[1]->parameter, lateDef);
    EXPECT_EQ(scene.log.Take(), Activated("Start", 10, "-"));
}

TEST(ActivateState, FindsItsParentAmongActivatedLevelsOnly)
{
    Scene scene(DocumentBuilder()
                    .Start(13)
                    .Level("Level", 10, 13)
                    .Nodes({Generic("Inside", 13, {}, 10), Generic("Alone", 14, {}, 999),
                            Generic("BelowPlain", 15, {}, 13)}));
    scene.machine.ActivateState(10, 0.0f);

    SMState* inside = scene.machine.ActivateState(13, 0.0f);

    EXPECT_EQ(inside->GetParent(), scene.machine.FindState(10));
    EXPECT_EQ(scene.machine.ActivateState(14, 0.0f)->GetParent(), nullptr);
    EXPECT_EQ(scene.machine.ActivateState(15, 0.0f)->GetParent(), nullptr);
}

TEST(ActivateState, StateThatComesBeforeItsLevelHasNoParentForGood)
{
    Scene scene(
        DocumentBuilder().Start(13).Level("Level", 10, 13).Node(Generic("Inside", 13, {}, 10)));
    SMState* inside = scene.machine.ActivateState(13, 0.0f);
    scene.machine.ActivateState(10, 0.0f);

    scene.machine.ActivateState(13, 0.0f);

    EXPECT_EQ(inside->GetParent(), nullptr);
}

TEST(ActivateState, LevelThatNamesItselfAsItsParentIsItsOwnChild)
{
    Scene scene(DocumentBuilder()
                    .Start(20)
                    .Level("Level", 20, 23, {}, 20)
                    .Node(Generic("Inside", 23, {}, 20)));
    scene.Run(0);

    auto* level = dynamic_cast<SubstateState*>(scene.machine.FindState(20));
    EXPECT_EQ(level->GetParent(), level);
    EXPECT_EQ(level->currentChild, level);
    EXPECT_EQ(scene.Tick(), Lines{"Level execution 0.5"});
    EXPECT_EQ(scene.machine.MainStack(), "Level");
}

TEST(ActivateState, DoesNotEnter)
{
    Scene scene(OwnDocument());

    scene.machine.ActivateState(10, 0.0f);

    EXPECT_EQ(scene.log.Take(), Activated("Start", 10, "-"));
    EXPECT_EQ(scene.machine.MainStack(), "-");
}

TEST(FindState, NeitherActivatesNorLogs)
{
    Scene scene(OwnDocument());

    EXPECT_EQ(scene.machine.FindState(10), nullptr);

    EXPECT_EQ(scene.log.Take(), Lines{});
    EXPECT_EQ(scene.machine.states.size(), 0u);
}

TEST(StateSwitchCallback, HearsOfTheGlobalStateAndOfTheStartStateWithNothingLeft)
{
    DocumentBuilder document = OwnDocument();
    Scene scene(document.GlobalNode(Global("Global", 50)));
    scene.machine.SetStateSwitchCallback(NoteCallback);

    scene.machine.Start();

    EXPECT_EQ(scene.log.Take({0}),
              (Lines{"callback, current -", "switch - -> Global 0", "callback, current -",
                     "switch - -> Start 0", "Start entry 0"}));
}

TEST(StateSwitchCallback, RunsWithTheOldStatesPoppedAndTheNewOneNotYetPushed)
{
    Scene scene(DocumentBuilder()
                    .Start(10)
                    .Parameter(PulseParameter("go"))
                    .Nodes({Generic("Low", 10), Generic("Mid", 11, {100}), Generic("High", 12)})
                    .Node(Transition("Go", 100, 11, 12, {Holds("go")})));
    scene.Run(0);
    scene.machine.PushState(11u);
    scene.machine.SetStateSwitchCallback(NoteCallback);
    scene.log.Clear();

    EXPECT_EQ(scene.TickWith("go"), Lines{"Mid execution 0.5"} + Fired("Mid", 100) + Left("Mid") +
                                        (Lines{"6 Activated State: High (12)",
                                               "callback, current Low", "switch Mid -> High 0"}) +
                                        Entered("High") + Reported(100, 11, 12) +
                                        Lines{"Low execution 0.5"});
}

TEST(StateSwitchCallback, StillShowsAStateLeftLongAgoOnALaterPush)
{
    Scene scene(OwnDocument());
    scene.Run(0);
    scene.machine.ChangeState(10);
    scene.log.Clear();

    scene.machine.PushState(10u);

    EXPECT_EQ(scene.log.Take(), Activated("Start", 10, "Start") + Entered("Start"));
}

TEST(StateSwitchCallback, OneSlotTakesTheLastSetterAndNull)
{
    Scene scene(OwnDocument());

    scene.machine.SetStateSwitchCallback(NoteCallback);
    scene.machine.ActivateState(10, 0.0f);
    EXPECT_EQ(scene.log.Take(), (Lines{"6 Activated State: Start (10)", "callback, current -",
                                       "switch - -> Start 0"}));

    scene.machine.SetStateSwitchCallback(nullptr);
    scene.machine.ActivateState(10, 0.0f);
    EXPECT_EQ(scene.log.Take(), Lines{"6 Activated State: Start (10)"});
}

TEST(ChangeState, OnAnEmptyStackExitsNothingAndEntersTwice)
{
    Scene scene(OwnDocument());
    scene.Run(0);
    scene.machine.PopState();
    scene.log.Clear();

    EXPECT_EQ(scene.machine.ChangeState(10), nullptr);

    EXPECT_EQ(scene.log.Take(), Activated("Start", 10, "-") + Entered("Start") + Entered("Start") +
                                    Reported(0, 0, 10));
    EXPECT_EQ(scene.machine.MainStack(), "Start");
}

TEST(ChangeState, ToAnUnknownStateLeavesTheStackOneShorter)
{
    Scene scene(OwnDocument());
    scene.Run(0);

    EXPECT_EQ(scene.machine.ChangeState(999), nullptr);

    EXPECT_EQ(scene.log.Take(), Left("Start") + Left("Start") + Refused(999));
    EXPECT_EQ(scene.machine.MainStack(), "-");
    EXPECT_EQ(scene.machine.previousState, scene.machine.FindState(10));
}

TEST(ChangeState, ToAStateThatWillNotBeEnteredReportsTheChangeAllTheSame)
{
    Scene scene(OwnDocument(), MakeState<ShutState>);
    scene.Run(0);

    EXPECT_EQ(scene.machine.ChangeState(11), nullptr);

    EXPECT_EQ(scene.log.Take(), Left("Start") + Left("Start") + Activated("Own", 11, "Start") +
                                    (Lines{"asked to enter", "asked to enter", "asked to enter",
                                           ErrorBreak("vell::HSM::PushState")}) +
                                    Reported(0, 10, 11));
    EXPECT_EQ(scene.machine.MainStack(), "-");
}

TEST(ChangeState, AsksTheVirtualOperationForTheCurrentState)
{
    class Blind : public TestMachine
    {
    public:
        using TestMachine::TestMachine;
        SMState* GetCurrentState() override
        {
            return nullptr;
        }
    };
    LogRecorder log;
    DocumentBuilder document;
    Blind machine(document.Start(10).Node(Generic("Start", 10)));
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    log.Clear();

    machine.ChangeState(10);

    EXPECT_EQ(machine.MainStack(), "Start/Start");
    EXPECT_EQ(log.Take(),
              (Lines{"6 Activated State: Start (10)", "6 [Enter] Start - SMState.cpp : #",
                     "6 [Enter] Start - SMState.cpp : #"}));
}

namespace
{

/// A state that activates itself while it is initialised.
class EagerState : public SMState
{
public:
    int Init(BaseDef* newDef) override
    {
        if (!nested)
        {
            nested = true;
            inner = machine->ActivateState(newDef->GetID(), 0.0f);
        }
        return SMState::Init(newDef);
    }

    static TestMachine* machine;
    static SMState* inner;
    static bool nested;
};

TestMachine* EagerState::machine = nullptr;
SMState* EagerState::inner = nullptr;
bool EagerState::nested = false;

} // namespace

TEST(ActivateState, RefusesTheOuterOfTwoActivationsOfOneState)
{
    DocumentBuilder document = SmallDocument();
    document.Node(Node(kOwnBuilder, "Own", 11));
    Scene scene(document, MakeState<EagerState>);
    scene.Run(0);
    EagerState::machine = &scene.machine;
    EagerState::nested = false;

    EXPECT_EQ(scene.machine.ActivateState(11, 0.0f), nullptr);

    EXPECT_EQ(scene.machine.FindState(11), EagerState::inner);
    EXPECT_EQ(scene.log.Take(),
              Activated("Own", 11, "-") +
                  (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(11)}));
}

} // namespace vell::test
