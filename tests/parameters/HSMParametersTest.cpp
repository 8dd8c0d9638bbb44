// VELL: data-driven hierarchical state machines.
// tests/parameters/HSMParametersTest.cpp: binding, messages, attributes and resets of a machine.
#include <vell/Action.h>
#include <vell/ConditionDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestMachine.h"
#include "tests/support/WriteCounter.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

using ConditionBinding = LogTest;
using FrameReset = LogTest;
using HSMMessages = LogTest;

using namespace DURMBaseLib;

/// A machine that is in "Stand" and goes to "Walk" on one condition.
DocumentBuilder StandAndWalk(const Json& condition)
{
    return DocumentBuilder()
        .Start(10)
        .Node(Generic("Stand", 10, {100}))
        .Node(Generic("Walk", 11))
        .Node(Transition("Go", 100, 10, 11, {condition}));
}

template <class T>
T* Find(TestMachine& machine, const char* name)
{
    return dynamic_cast<T*>(machine.GetParameterTable()->FindParameter(name));
}

TransitionDef* FindTransition(TestMachine& machine, unsigned int id)
{
    return dynamic_cast<TransitionDef*>(machine.FindDef(id));
}

/// A machine with one parameter of each kind that answers to texts or does not.
class Messages : public testing::Test
{
protected:
    Messages()
        : machine(SmallDocument()
                      .Parameter(MessageParameter("jump", "now"))
                      .Parameter(Parameter(PARAM_Text, "note", "later"))
                      .Parameter(FloatParameter("speed", 1.0)))
    {
        machine.Init();
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine;
};

const char* const kWarning = "4 Parameter definition is NULL";

} // namespace

TEST_F(ConditionBinding, ReachesEachLayerAndTheGlobalNodes)
{
    TestMachine machine(DocumentBuilder()
                            .Parameter(BoolParameter("on", true))
                            .Start(10)
                            .Layer("First")
                            .Node(Generic("Stand", 10))
                            .Node(Transition("A", 100, 10, 10, {BoolCondition("on", true)}))
                            .Layer("Second")
                            .Node(Transition("B", 200, 10, 10, {BoolCondition("on", true)}))
                            .GlobalNode(Transition("C", 300, 10, 10, {BoolCondition("on", true)})));

    ASSERT_EQ(machine.Init(), 1);

    for (const unsigned int id : {100u, 200u, 300u})
    {
        ASSERT_NE(FindTransition(machine, id), nullptr) << id;
        EXPECT_EQ(FindTransition(machine, id)->HandleConditions(&machine), 1) << id;
    }
}

TEST_F(ConditionBinding, EndsAfterAsManyIdsAsThereAreNodes)
{
    const Json on = BoolCondition("on", true);
    TestMachine machine(DocumentBuilder()
                            .Parameter(BoolParameter("on", true))
                            .Start(10)
                            .Layer("First")
                            .Node(Generic("Stand", 10))
                            .Node(Transition("A", 100, 10, 10, {on}))
                            .Node(Generic("Again", 10))
                            .Layer("Second")
                            .Node(Transition("B", 200, 10, 10, {on}))
                            .GlobalNode(Transition("C", 300, 10, 10, {on})));

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(FindTransition(machine, 100)->HandleConditions(&machine), 1);
    EXPECT_EQ(FindTransition(machine, 200)->HandleConditions(&machine), 0)
        << "four ids precede it, of two nodes";
    EXPECT_EQ(FindTransition(machine, 300)->HandleConditions(&machine), 0);
}

TEST_F(ConditionBinding, WarnsAndFailsForAMissingParameterButNotForAFloat)
{
    const struct
    {
        Json condition;
        Lines lines;
    } cases[] = {
        {BoolCondition("none", false),
         {kWarning, ErrorBreak("vell::ConditionDefBool::ParameterBind")}},
        {IntCondition("none", 1, 0),
         {kWarning, ErrorBreak("vell::ConditionDefInteger::ParameterBind")}},
        {FloatCondition("none", 1, 0.0), {kWarning}},
        {MessageCondition("none", "x"),
         {kWarning, ErrorBreak("vell::ConditionDefMessage::ParameterBind")}},
    };
    for (const auto& example : cases)
    {
        log.Clear();
        TestMachine machine(StandAndWalk(example.condition));

        EXPECT_EQ(machine.Init(), 1);

        EXPECT_EQ(log.Take({3, 4}), example.lines) << example.condition.Text();
    }
}

TEST_F(ConditionBinding, LeavesAConditionWithoutItsParameterFalse)
{
    for (const Json& condition :
         {Json(BoolCondition("none", false)), Json(IntCondition("none", 1, 0)),
          Json(FloatCondition("none", 1, 0.0)), Json(MessageCondition("none", "x"))})
    {
        log.Clear();
        StartedMachine machine(StandAndWalk(condition));

        machine.Update(0.1f);

        EXPECT_EQ(machine.MainStack(), "Stand");
    }
}

TEST_F(ConditionBinding, GoesOnBehindAMissingParameter)
{
    TestMachine machine(
        DocumentBuilder()
            .Parameter(BoolParameter("on", true))
            .Start(10)
            .Node(Generic("Stand", 10))
            .Node(Transition("A", 100, 10, 10,
                             {BoolCondition("none", true), BoolCondition("on", true)})));

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(FindTransition(machine, 100)->HandleConditions(&machine), 1);
}

TEST_F(ConditionBinding, SkipsAConditionWhoseParameterIdIsZero)
{
    InitialisedMachine machine(StandAndWalk(BoolCondition("none", true)));
    FindTransition(machine, 100)->conditions[0]->parameterID = 0;
    log.Clear();

    machine.BindParamCond();

    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(ConditionBinding, DoesNotSeeARuntimeParameterUntilItBindsAgain)
{
    StartedMachine machine(StandAndWalk(BoolCondition("late", true)));
    IParameterBoolDef* late = nullptr;
    ASSERT_EQ(machine.GetParameterTable()->CreateBoolParameter("late", true, &late), 1);

    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Stand");
    log.Clear();
    machine.BindParamCond();
    EXPECT_EQ(log.Take(), Lines());
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST_F(ConditionBinding, ByHandCountsInTheNextTickOfAMachineThatHasSettled)
{
    const Json conditions[] = {BoolCondition("bool", true), IntCondition("int", 1, 7),
                               FloatCondition("float", 3, 0.5), MessageCondition("text", "now")};
    const char* const others[] = {"other bool", "other int", "other float", "other text"};
    for (std::size_t i = 0; i < 4; ++i)
    {
        log.Clear();
        InitialisedMachine machine(StandAndWalk(conditions[i])
                                       .Parameter(BoolParameter("bool", false))
                                       .Parameter(IntParameter("int", 0))
                                       .Parameter(FloatParameter("float", 0.0))
                                       .Parameter(MessageParameter("text", "later"))
                                       .Parameter(BoolParameter("other bool", true))
                                       .Parameter(IntParameter("other int", 7))
                                       .Parameter(FloatParameter("other float", 1.0))
                                       .Parameter(MessageParameter("other text", "now")));
        machine.BroadcastMessage("other text");
        machine.Start();
        machine.Tick(6);
        ASSERT_EQ(machine.MainStack(), "Stand") << others[i];

        ConditionDef& condition = *FindTransition(machine, 100)->conditions.front();
        condition.SetParameter(machine.GetParameterTable()->FindParameter(others[i]));
        machine.Update(0.1f);
        EXPECT_EQ(machine.MainStack(), "Stand") << others[i] << " is not bound yet";
        condition.ParameterBind();
        machine.Update(0.1f);

        EXPECT_EQ(machine.MainStack(), "Walk") << others[i];
    }
}

TEST_F(ConditionBinding, NeedsNeitherTables)
{
    TestMachine empty;
    TestMachine noParameters(StandAndWalk(BoolCondition("on", true)).LeaveOut(JSON_Parameters));

    empty.BindParamCond();
    noParameters.BindParamCond();

    EXPECT_EQ(log.Take({3, 4}), Lines());
}

TEST_F(Messages, BroadcastSetsTheDefaultText)
{
    auto* jump = Find<ParameterMessageDef>(machine, "jump");
    ASSERT_EQ(jump->GetValue(), "");

    machine.BroadcastMessage("jump");

    EXPECT_EQ(jump->GetValue(), "now");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(Messages, BroadcastTwiceWritesTheTreeTwice)
{
    auto* jump = Find<ParameterMessageDef>(machine, "jump");
    WriteCounter writes(jump->GetKVTable(), "value");

    machine.BroadcastMessage("jump");
    machine.BroadcastMessage("jump");

    EXPECT_EQ(writes.Take(), 2);
    EXPECT_STREQ(jump->GetKVTable()->GetString("value"), "now");
}

TEST_F(Messages, BroadcastReachesTheTextTypeToo)
{
    machine.BroadcastMessage("note");

    EXPECT_EQ(Find<ParameterMessageDef>(machine, "note")->GetValue(), "later");
}

TEST_F(Messages, BroadcastOfAnotherNameDoesNothing)
{
    auto* speed = Find<ParameterFloatDef>(machine, "speed");
    speed->SetValue(5.0f);

    machine.BroadcastMessage("speed");
    machine.BroadcastMessage("unknown");
    machine.BroadcastMessage(nullptr);

    EXPECT_EQ(speed->GetValue(), 5.0f);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(Messages, GivesTheParametersOwnText)
{
    const char* text = nullptr;
    machine.BroadcastMessage("jump");

    EXPECT_EQ(machine.GetParameterMessage(ParameterId("jump"), &text), 1);

    EXPECT_STREQ(text, "now");
    auto* jump = Find<ParameterMessageDef>(machine, "jump");
    EXPECT_EQ(text, static_cast<const std::string*>(jump->GetValuePtr())->c_str());
}

TEST_F(Messages, GivesNoTextOfOtherTypesAndIds)
{
    const char* text = "untouched";

    EXPECT_EQ(machine.GetParameterMessage(ParameterId("speed"), &text), 0);
    EXPECT_EQ(machine.GetParameterMessage(ParameterId("note"), &text), 0) << "of the text type";
    EXPECT_EQ(machine.GetParameterMessage(12345, &text), 0);
    EXPECT_EQ(machine.GetParameterMessage(0, &text), 0);
    EXPECT_EQ(machine.GetParameterMessage(ParameterId("jump"), nullptr), 0);

    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(Messages, SetsAnyTextAndWritesTheTree)
{
    auto* jump = Find<ParameterMessageDef>(machine, "jump");
    WriteCounter writes(jump->GetKVTable(), "value");

    EXPECT_EQ(machine.SetParameterMessage(ParameterId("jump"), "high"), 1);
    EXPECT_EQ(jump->GetValue(), "high");
    EXPECT_STREQ(jump->GetKVTable()->GetString("value"), "high");
    EXPECT_EQ(machine.SetParameterMessage(ParameterId("jump"), ""), 1);
    EXPECT_EQ(jump->GetValue(), "");
    EXPECT_EQ(machine.SetParameterMessage(ParameterId("jump"), nullptr), 1);
    EXPECT_EQ(jump->GetValue(), "");

    EXPECT_EQ(writes.Take(), 3);
    EXPECT_EQ(jump->GetDefaultValue(), "now");
}

TEST_F(Messages, SetsNoTextOfOtherTypesAndIds)
{
    EXPECT_EQ(machine.SetParameterMessage(ParameterId("speed"), "2"), 0);
    EXPECT_EQ(machine.SetParameterMessage(ParameterId("note"), "2"), 0);
    EXPECT_EQ(machine.SetParameterMessage(12345, "2"), 0);

    EXPECT_EQ(Find<ParameterFloatDef>(machine, "speed")->GetValue(), 1.0f);
    EXPECT_EQ(Find<ParameterMessageDef>(machine, "note")->GetValue(), "");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(Messages, FindsAParameterByItsNameWithoutALogLine)
{
    EXPECT_EQ(machine.FindParameterByName("speed"), ParameterId("speed"));
    EXPECT_EQ(machine.FindParameterByName("Speed"), 0u);
    EXPECT_EQ(machine.FindParameterByName(nullptr), 0u);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMMessages, DoNothingWithoutAParameterTable)
{
    TestMachine machine;
    const char* text = nullptr;

    machine.BroadcastMessage("jump");

    EXPECT_EQ(machine.FindParameterByName("jump"), 0u);
    EXPECT_EQ(machine.GetParameterMessage(1, &text), 0);
    EXPECT_EQ(machine.SetParameterMessage(1, "x"), 0);
    EXPECT_EQ(machine.GetAttributeValue("x", &text), 0);
    EXPECT_EQ(machine.SetAttribValue("x", "y"), 0);
    EXPECT_EQ(machine.SetAttribValue("x", static_cast<void*>(&machine)), 0);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(HSMMessages, ABroadcastMessageFiresUntilItsTextIsSetAgain)
{
    DocumentBuilder document = StandAndWalk(MessageCondition("jump", "now"));
    document.Parameter(MessageParameter("jump", "now"));
    StartedMachine machine(document);
    machine.Update(0.1f);
    ASSERT_EQ(machine.MainStack(), "Stand");

    machine.BroadcastMessage("jump");
    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(FindTransition(machine, 100)->HandleConditions(&machine), 1) << "not cleared";
    machine.SetParameterMessage(ParameterId("jump"), "");

    EXPECT_EQ(FindTransition(machine, 100)->HandleConditions(&machine), 0);
}

namespace
{

/// A machine whose state "Stand" has a text and an integer attribute; "Walk" has none.
class CurrentAttributes : public testing::Test
{
protected:
    CurrentAttributes()
        : machine(
              DocumentBuilder()
                  .Start(10)
                  .Node(Generic("Stand", 10)
                            .Set(JSON_Attributes, Json::Array({Attribute("clip", "QString", "idle"),
                                                               Attribute("loops", "int", 3)})))
                  .Node(Generic("Walk", 11)))
    {
        machine.Init();
        log.Clear();
    }

    LogRecorder log;
    TestMachine machine;
    const char* text = "untouched";
};

} // namespace

TEST_F(CurrentAttributes, GiveNothingWhileTheStackIsEmpty)
{
    EXPECT_EQ(machine.GetAttributeValue("clip", &text), 0);
    EXPECT_EQ(machine.SetAttribValue("clip", "x"), 0);
    EXPECT_EQ(machine.SetAttribValue("clip", static_cast<void*>(nullptr)), 0);

    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(CurrentAttributes, GiveTheTextOfATextAttribute)
{
    machine.Start();
    log.Clear();

    EXPECT_EQ(machine.GetAttributeValue("clip", &text), 1);
    EXPECT_STREQ(text, "idle");
    EXPECT_EQ(machine.SetAttribValue("clip", "run"), 1);
    EXPECT_STREQ(text, "run") << "the text is the attribute's own";
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(CurrentAttributes, GiveNothingForOtherTypesAndNames)
{
    machine.Start();
    log.Clear();

    EXPECT_EQ(machine.GetAttributeValue("loops", &text), 0);
    EXPECT_EQ(machine.GetAttributeValue("unknown", &text), 0);
    EXPECT_EQ(machine.SetAttribValue("unknown", "x"), 0);

    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(CurrentAttributes, TakeATextForAnotherTypeWithoutEffectAndReturn1)
{
    machine.Start();

    EXPECT_EQ(machine.SetAttribValue("loops", "7"), 1);

    int loops = 0;
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("loops", static_cast<void*>(&loops)), 1);
    EXPECT_EQ(loops, 3);
}

TEST_F(CurrentAttributes, LogThePointerFormAndSetNothing)
{
    machine.Start();
    log.Clear();
    int number = 9;

    EXPECT_EQ(machine.SetAttribValue("loops", static_cast<void*>(&number)), 0);
    EXPECT_EQ(log.Take(), (Lines{"3 Attribute name: loops of type 2 not defined"}));
    EXPECT_EQ(machine.SetAttribValue("clip", static_cast<void*>(&number)), 0);
    EXPECT_EQ(log.Take(), (Lines{"3 Attribute name: clip of type 8 not defined"}));
    EXPECT_EQ(machine.SetAttribValue("unknown", static_cast<void*>(&number)), 0);
}

TEST_F(CurrentAttributes, BelongToTheTopState)
{
    machine.Start();
    machine.PushState(11);

    EXPECT_EQ(machine.GetAttributeValue("clip", &text), 0);
}

namespace
{

JsonObject Resetting(JsonObject parameter)
{
    return parameter.Set(JSON_ParameterResetEachFrame, true);
}

} // namespace

TEST_F(FrameReset, ComesAfterAllStatesHaveUpdated)
{
    StartedMachine machine(SmallDocument()
                               .Node(Generic("Walk", 11))
                               .Parameter(Resetting(FloatParameter("push", 0.25))));
    machine.PushState(11);
    auto* push = Find<ParameterFloatDef>(machine, "push");
    std::vector<float> seen;
    const auto read = [&](float)
    {
        seen.push_back(push->GetValue());
        return 1;
    };
    machine.FindDef(10)->RegisterExecute(new TestAction(read));
    machine.FindDef(11)->RegisterExecute(new TestAction(read));

    push->SetValue(4.0f);
    machine.Update(0.1f);

    EXPECT_EQ(seen, (std::vector<float>{4.0f, 4.0f}));
    EXPECT_EQ(push->GetValue(), 0.25f);
}

TEST_F(FrameReset, MakesATriggerThatIsTrueForOneTick)
{
    DocumentBuilder document = StandAndWalk(BoolCondition("go", true));
    document.Parameter(Resetting(BoolParameter("go", false)));
    StartedMachine machine(document);
    auto* go = Find<ParameterBoolDef>(machine, "go");

    go->SetValue(true);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_FALSE(go->GetValue());
}

TEST_F(FrameReset, TakesParametersInAscendingIdOrderAndNoOthers)
{
    InitialisedMachine machine(
        SmallDocument()
            .Parameter(Resetting(IntParameter("c", 0)).Set(JSON_ID, 4000000000u))
            .Parameter(Resetting(FloatParameter("a", 0.0)).Set(JSON_ID, 1))
            .Parameter(FloatParameter("kept", 0.0).Set(JSON_ID, 2))
            .Parameter(Resetting(MessageParameter("b", "text")).Set(JSON_ID, 50))
            .Parameter(Resetting(BoolParameter("resting", true)).Set(JSON_ID, 60)));
    Lines writes;
    for (const char* name : {"a", "b", "c", "kept", "resting"})
    {
        Tessel::KVTable table = machine.GetParameterTable()->FindParameter(name)->GetKVTable();
        *table->GetValueListener("value") = {
            &writes, [](void* object, Tessel::opResult, Tessel::KVTable written, const char*)
            {
                static_cast<Lines*>(object)->push_back(std::to_string(written->GetUInt("id")));
                return 1;
            }};
    }
    machine.Start();

    machine.Update(0.1f);

    EXPECT_EQ(writes, (Lines{"1", "50", "4000000000"})) << "a bool at its default writes nothing";
    EXPECT_EQ(Find<ParameterMessageDef>(machine, "b")->GetValue(), "text");
}

TEST_F(FrameReset, TakesADefaultThatTheHostHasChanged)
{
    InitialisedMachine machine(
        SmallDocument().Parameter(Resetting(VectorParameter(4, "stick", "3,4"))));
    auto* stick = Find<ParameterAnalogDef>(machine, "stick");
    stick->SetValue({1.0f, 1.0f});
    stick->SetDefaultValue({6.0f, 8.0f});

    machine.Update(0.1f);

    EXPECT_EQ(stick->GetValue().x, 6.0f);
    EXPECT_EQ(stick->GetMagnitude(), 10.0f);
}

TEST_F(FrameReset, EndsWithUninitParameterTable)
{
    InitialisedMachine machine(SmallDocument()
                                   .Parameter(Resetting(FloatParameter("push", 0.0)))
                                   .Parameter(Resetting(BoolParameter("hit", false))));
    auto* push = Find<ParameterFloatDef>(machine, "push");
    auto* hit = Find<ParameterBoolDef>(machine, "hit");
    machine.Start();

    machine.UninitParameterTable(&machine.alloc);
    push->SetValue(1.0f);
    hit->SetValue(true);
    machine.Update(0.1f);

    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 0);
    EXPECT_EQ(push->GetValue(), 1.0f);
    EXPECT_TRUE(hit->GetValue());
}

TEST_F(FrameReset, HappensBeforeStartTooButNotWhileAContextIsApplied)
{
    InitialisedMachine machine(SmallDocument().Parameter(Resetting(FloatParameter("push", 0.0))));
    auto* push = Find<ParameterFloatDef>(machine, "push");
    push->SetValue(1.0f);

    machine.applyingContext = true;
    machine.Update(0.1f);
    EXPECT_EQ(push->GetValue(), 1.0f);
    machine.applyingContext = false;
    machine.Update(0.1f);

    EXPECT_EQ(push->GetValue(), 0.0f);
}

TEST(ToolWrite, OfAParametersValueMakesATransitionFire)
{
    LogRecorder log;
    DocumentBuilder document = StandAndWalk(FloatCondition("speed", 3, 0.5));
    document.Parameter(FloatParameter("speed", 0.0));
    StartedMachine machine(document);
    const std::string key = std::to_string(ParameterId("speed"));

    machine.GetKVTable()
        ->GetTable("parameterTable")
        ->GetTable(key.c_str())
        ->SetFloat("value", 1.0f, 1);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST(ParameterCopy, HoldsAValueOfItsOwn)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument().Parameter(FloatParameter("speed", 1.5)));
    auto* speed =
        dynamic_cast<ParameterFloatDef*>(machine.GetParameterTable()->FindParameter("speed"));

    ParameterFloatDef copy(*speed);
    EXPECT_EQ(copy.GetValue(), 1.5f);
    EXPECT_NE(copy.GetValuePtr(), speed->GetValuePtr());
    *static_cast<float*>(copy.GetValuePtr()) = 4.0f;
    EXPECT_EQ(speed->GetValue(), 1.5f);

    *static_cast<float*>(speed->GetValuePtr()) = 2.0f;
    copy = *speed;
    EXPECT_EQ(copy.GetValue(), 2.0f);
    EXPECT_NE(copy.GetValuePtr(), speed->GetValuePtr());
}

TEST(ParameterRoom, GoesWithTheMachineAndComesWithASecondCreate)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument().Parameter(BoolParameter("on", true)));
    machine.Uninit();
    machine.kvTable = Tessel::KVTable();

    ASSERT_EQ(machine.Create(), 1);
    ASSERT_EQ(machine.Init(), 1);

    ParameterDef* on = machine.GetParameterTable()->FindParameter("on");
    ASSERT_NE(on, nullptr);
    EXPECT_TRUE(dynamic_cast<ParameterBoolDef*>(on)->GetValue());
}

} // namespace vell::test
