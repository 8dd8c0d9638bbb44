// VELL: data-driven hierarchical state machines.
// tests/machine/HSMTickTest.cpp: the order of one tick.
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/UpdateResult.h>

#include "tests/support/Scene.h"
#include "tests/support/SmallDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// The state Stand (10) with the transition 100 to Walk (11) on "go".
DocumentBuilder WalkDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Generic("Stand", 10, {100}), Generic("Walk", 11)})
        .Node(Transition("Go", 100, 10, 11, {Holds("go")}));
}

bool BoolValue(HSM& machine, const char* name)
{
    ParameterDef* parameter = machine.GetParameterTable()->FindParameter(name);
    return dynamic_cast<ParameterBoolDef*>(parameter)->GetValue();
}

int NoteParameterWrite(void*, Tessel::opResult, Tessel::KVTable table, const char*)
{
    LogRecorder::Note("reset " + std::to_string(table->GetUInt("id")));
    return 1;
}

/// A state whose Execute fails after it was noted.
class FailingState : public SMState
{
public:
    int Execute(double dt) override
    {
        LogRecorder::Note("execute " + std::to_string(static_cast<int>(dt * 10.0)));
        return 0;
    }
};

/// A state that pops `kPops` states in its update.
template <int kPops>
class PoppingState : public SMState
{
public:
    int Update(HSM* machine, float) override
    {
        for (int i = 0; i < kPops; ++i)
        {
            machine->PopState();
        }
        return 1;
    }
};

/// The states Low (10) and Mid (11), and Top (12) of the test's own builder number.
DocumentBuilder PoppingDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Generic("Low", 10), Generic("Mid", 11), Node(kOwnBuilder, "Top", 12)});
}

} // namespace

TEST(HSMTick, WithAnEmptyStackOnlyResetsParameters)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    scene.machine.PopState();
    scene.log.Clear();

    EXPECT_EQ(scene.TickWith("go"), Lines{});

    EXPECT_FALSE(BoolValue(scene.machine, "go"));
}

TEST(HSMTick, BeforeStartOnlyResetsParameters)
{
    Scene scene(WalkDocument());

    EXPECT_EQ(scene.TickWith("go"), Lines{});

    EXPECT_FALSE(BoolValue(scene.machine, "go"));
}

TEST(HSMTick, DoesNothingWhileAContextIsApplied)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    scene.machine.applyingContext = true;

    EXPECT_EQ(scene.TickWith("go"), Lines{});

    EXPECT_TRUE(BoolValue(scene.machine, "go"));
    EXPECT_EQ(scene.machine.MainStack(), "Stand");
    scene.machine.applyingContext = false;
}

TEST(HSMTick, RunsWithoutAParameterTable)
{
    LogRecorder log;
    TestMachine machine(SmallDocument().LeaveOut(DURMBaseLib::JSON_Parameters));
    ASSERT_EQ(machine.Init(), 0);
    machine.Start();

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(HSMTick, UpdatesAStateBeforeItTestsItsTransitions)
{
    Scene scene(WalkDocument());
    scene.Run(0);

    EXPECT_EQ(scene.TickWith("go"), Lines{"Stand execution 0.5"} + Fired("Stand", 100) +
                                        Left("Stand") + Activated("Walk", 11, "Stand") +
                                        Entered("Walk") + Reported(100, 10, 11));
    EXPECT_EQ(scene.Tick(), Lines{"Walk execution 0.5"});
}

TEST(HSMTick, TestsTheTransitionsOfAStateWhoseUpdateFailed)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Node(kOwnBuilder, "Lame", 10, {100}), Generic("Walk", 11)})
        .Node(Transition("Go", 100, 10, 11, {Holds("go")}));
    Scene scene(document, MakeState<FailingState>);
    scene.Run(0);

    EXPECT_EQ(scene.TickWith("go"),
              (Lines{"execute 5", "execute 5", ErrorBreak("vell::SMState::Update")}) +
                  Fired("Lame", 100) + Left("Lame") + Activated("Walk", 11, "Lame") +
                  Entered("Walk") + Reported(100, 10, 11));
}

TEST(HSMTick, KeepsAWalkOverStatesThatTheHostPushed)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    scene.machine.PushState(11u);
    scene.machine.PushState(11u);
    scene.log.Clear();

    EXPECT_EQ(scene.TickWith("go"),
              (Lines{"Walk execution 0.5", "Walk execution 0.5", "Stand execution 0.5"}) +
                  Fired("Stand", 100) + Left("Walk") + Left("Walk") + Left("Stand") +
                  Activated("Walk", 11, "Walk") + Entered("Walk") + Reported(100, 11, 11));
    EXPECT_EQ(scene.machine.MainStack(), "Walk");
}

TEST(HSMTick, ResetsParametersInAscendingIdAfterTheWalk)
{
    DocumentBuilder document;
    const std::vector<std::string> names = {"zeta", "alpha", "mid", "kept"};
    for (const std::string& name : names)
    {
        document.Parameter(
            FloatParameter(name, 2.0).Set(JSON_ParameterResetEachFrame, name != "kept"));
    }
    Scene scene(document.Start(10).Node(Generic("Stand", 10)));
    scene.Run(0);
    std::vector<unsigned int> ids;
    for (const std::string& name : names)
    {
        ParameterDef* parameter = scene.machine.GetParameterTable()->FindParameter(name.c_str());
        dynamic_cast<ParameterFloatDef*>(parameter)->SetValue(3.0f);
        Tessel::KVListener* listener = parameter->GetKVTable()->GetValueListener("value");
        listener->function = NoteParameterWrite;
        if (name != "kept")
        {
            ids.push_back(parameter->GetID());
        }
    }
    std::sort(ids.begin(), ids.end());

    Lines expected = {"Stand execution 0.5"};
    for (const unsigned int id : ids)
    {
        expected.push_back("reset " + std::to_string(id));
    }
    EXPECT_EQ(scene.Tick(), expected);
    ParameterDef* kept = scene.machine.GetParameterTable()->FindParameter("kept");
    EXPECT_EQ(dynamic_cast<ParameterFloatDef*>(kept)->GetValue(), 3.0f);
}

TEST(HSMTick, GoesOnBelowAStateThatPoppedItself)
{
    Scene scene(PoppingDocument(), MakeState<PoppingState<1>>);
    scene.Run(0);
    scene.machine.PushState(11u);
    scene.machine.PushState(12u);
    scene.log.Clear();

    EXPECT_EQ(scene.Tick(), Left("Top") + (Lines{"Mid execution 0.5", "Low execution 0.5"}));
}

TEST(HSMTick, LeavesByTheExceptionWhenTheStackShrinksBelowTheWalkAndResetsNothing)
{
    Scene scene(PoppingDocument(), MakeState<PoppingState<2>>);
    scene.Run(0);
    scene.machine.PushState(11u);
    scene.machine.PushState(12u);
    scene.machine.SetBool("go", true);
    scene.log.Clear();

    EXPECT_THROW(scene.machine.Update(0.5f), std::out_of_range);

    EXPECT_EQ(scene.log.Take(), Left("Top") + Left("Mid"));
    EXPECT_TRUE(BoolValue(scene.machine, "go"));
    EXPECT_EQ(scene.Tick(), Lines{"Low execution 0.5"});
}

TEST(UpdateState, RefusesANullStateAndANullRecord)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    UpdateResult result;
    SMState* state = scene.machine.GetCurrentState();

    EXPECT_EQ(scene.machine.UpdateState(nullptr, &result, 0.1f), 0);
    EXPECT_EQ(scene.machine.UpdateState(state, nullptr, 0.1f), 0);

    EXPECT_EQ(scene.log.Take(),
              (Lines{ErrorBreak("vell::HSM::UpdateState"), ErrorBreak("vell::HSM::UpdateState")}));
}

TEST(UpdateState, GivesTwoAndLeavesTheRecordAloneWhenNothingFires)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    UpdateResult result;
    result.stackIndex = 3;

    EXPECT_EQ(scene.machine.UpdateState(scene.machine.GetCurrentState(), &result, 0.1f), 2);

    EXPECT_EQ(result.popLevel, -1);
    EXPECT_EQ(result.transition, nullptr);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST(UpdateState, GivesThreeAndTheIndexToPopToWhenATransitionFires)
{
    Scene scene(WalkDocument());
    scene.Run(0);
    scene.machine.SetBool("go", true);
    UpdateResult result;
    result.stackIndex = 3;

    EXPECT_EQ(scene.machine.UpdateState(scene.machine.GetCurrentState(), &result, 0.1f), 3);

    EXPECT_EQ(result.popLevel, 3);
    EXPECT_EQ(result.targetID, 11u);
    EXPECT_EQ(scene.log.Take(), Fired("Stand", 100));
    EXPECT_EQ(scene.machine.MainStack(), "Stand");
}

TEST(UpdateResult, KeepsTheOrderOfItsFields)
{
    constexpr std::size_t kPointer = sizeof(void*);

    EXPECT_EQ(offsetof(UpdateResult, transition), 0u);
    EXPECT_EQ(offsetof(UpdateResult, tag), kPointer);
    EXPECT_EQ(offsetof(UpdateResult, targetID), kPointer + 4);
    EXPECT_EQ(offsetof(UpdateResult, sourceID), kPointer + 8);
    EXPECT_EQ(offsetof(UpdateResult, popLevel), kPointer + 12);
    EXPECT_EQ(offsetof(UpdateResult, stackIndex), kPointer + 16);
    EXPECT_EQ(offsetof(UpdateResult, blipLevel), kPointer + 20);
    EXPECT_EQ(offsetof(UpdateResult, isBlip), kPointer + 24);
    EXPECT_EQ(offsetof(UpdateResult, spareFlag), kPointer + 25);
    EXPECT_EQ(offsetof(UpdateResult, priority), kPointer + 28);
    EXPECT_EQ(offsetof(UpdateResult, switchArgument), kPointer + 32);
}

TEST(UpdateResult, FreshOnePopsNothingAndBlankOnePopsEverything)
{
    const UpdateResult fresh;
    const UpdateResult blank = UpdateResult::Blank();

    EXPECT_EQ(fresh.popLevel, -1);
    EXPECT_EQ(blank.popLevel, 0);
    for (const UpdateResult& result : {fresh, blank})
    {
        EXPECT_EQ(result.transition, nullptr);
        EXPECT_EQ(result.tag, 0u);
        EXPECT_EQ(result.targetID, 0u);
        EXPECT_EQ(result.sourceID, 0u);
        EXPECT_EQ(result.stackIndex, 0);
        EXPECT_EQ(result.blipLevel, 0);
        EXPECT_FALSE(result.isBlip);
        EXPECT_FALSE(result.spareFlag);
        EXPECT_EQ(result.priority, 0);
        EXPECT_EQ(result.switchArgument, 0.0f);
    }
}

TEST(UpdateResult, ResetForgetsTheTransitionAndKeepsTheRest)
{
    UpdateResult result = UpdateResult::Blank();
    result.tag = 1;
    result.targetID = 2;
    result.sourceID = 3;
    result.popLevel = 4;
    result.stackIndex = 5;
    result.blipLevel = 6;
    result.isBlip = true;
    result.priority = 7;
    result.switchArgument = 8.0f;

    result.Reset();

    EXPECT_EQ(result.tag, 0u);
    EXPECT_EQ(result.targetID, 0u);
    EXPECT_EQ(result.sourceID, 0u);
    EXPECT_EQ(result.popLevel, -1);
    EXPECT_EQ(result.stackIndex, 5);
    EXPECT_EQ(result.blipLevel, 6);
    EXPECT_TRUE(result.isBlip);
    EXPECT_EQ(result.priority, 7);
    EXPECT_EQ(result.switchArgument, 8.0f);
}

} // namespace vell::test
