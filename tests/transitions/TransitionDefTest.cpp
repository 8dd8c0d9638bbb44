// VELL: data-driven hierarchical state machines.
// tests/transitions/TransitionDefTest.cpp: loading of transitions, and when they hold.
#include <vell/ConditionDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "foundation/ArenaMemory.h"
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/TestMachine.h"
#include "tests/support/VirtualOrder.h"
#include "transitions/ConditionDefBool.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using TransitionInAMachine = LogTest;

using namespace DURMBaseLib;

const std::string kCreate = "vell::TransitionDef::Create";
const std::string kInit = "vell::TransitionDef::Init";
const std::string kInitConditions = "vell::TransitionDef::InitConditions";

const std::string kConditionFailed = "3 An error occurred initilizing a condition";
const std::string kIgnored =
    "4 Conditions failed / missing for transition: Ignoring this transition";

/// A transition with conditions, or without the member for none.
JsonObject Go(const std::vector<Json>& conditions = {})
{
    return Transition("Go", 100, 10, 11, conditions);
}

/// Conditions that read bools of the test, in place of parameters.
class BoundTransition : public Built<TransitionDef>
{
public:
    explicit BoundTransition(std::vector<unsigned char> startValues)
        : Built<TransitionDef>(Go(std::vector<Json>(startValues.size(), BoolCondition("x", true)))),
          values(startValues.size())
    {
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            values[i].SetValue(startValues[i] != 0);
            def->conditions[i]->SetParameter(&values[i]);
            def->conditions[i]->ParameterBind();
        }
    }

    std::vector<ParameterBoolDef> values;
};

/// Notes its evaluation.
class WatchedCondition : public ConditionDefBool
{
public:
    WatchedCondition(bool conditionHolds, std::string& notes, char label)
        : holds(conditionHolds), lines(notes), name(label)
    {
    }
    bool Evaluate(HSM*) override
    {
        lines += name;
        return holds;
    }

private:
    bool holds;
    std::string& lines;
    char name;
};

/// What the triggers below were called with, in order.
struct Call
{
    char name;
    IHSM* machine;
    SMState* state;
};
std::vector<Call> calls;

template <char kName, bool kResult>
bool Note(IHSM* machine, SMState* state)
{
    calls.push_back({kName, machine, state});
    return kResult;
}

std::string TakeCalls()
{
    std::string names;
    for (const Call& call : calls)
    {
        names += call.name;
    }
    calls.clear();
    return names;
}

} // namespace

TEST(TransitionSurface, AddsNoVirtualOperationAndOverridesInit)
{
    static_assert(std::is_base_of_v<BaseDef, TransitionDef>);
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    EXPECT_EQ(SlotOf(&TransitionDef::Init), SlotOf(&BaseDef::Init));
}

TEST(TransitionDef, StartsWithItsDefaults)
{
    LogRecorder log;
    Arena alloc;
    ParsedJson node(Go());

    TransitionDef* def = TransitionDef::Create(*node, &alloc);

    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->GetType(), DefTypeTransition);
    EXPECT_EQ(def->GetFlags(), 0x10u);
    EXPECT_FALSE(def->disabled);
    EXPECT_EQ(def->tag, 0);
    EXPECT_EQ(def->tagArgument, 0);
    EXPECT_EQ(def->priority, 5);
    EXPECT_EQ(def->switchArgument, 0.0f);
    EXPECT_EQ(def->reserved, 0u);
    EXPECT_EQ(def->targetID, 0u);
    EXPECT_EQ(def->conditionCount, 0u);
    EXPECT_EQ(def->conditionArray, nullptr);
    EXPECT_EQ(def->GetName(), nullptr) << "not yet initialised";
    EXPECT_EQ(log.Take(), Lines());
}

TEST(TransitionDef, IsMadeWithRoomAndRefusedAByteShort)
{
    LogRecorder log;
    ParsedJson node(Go());
    const auto size = static_cast<unsigned int>(sizeof(TransitionDef));
    Arena room(size);
    Arena tight(size - 1);

    EXPECT_NE(TransitionDef::Create(*node, &room), nullptr);
    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(TransitionDef::Create(*node, &tight), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
    EXPECT_TRUE(tight.tracked.empty());
}

TEST(TransitionDef, IsNotMadeOfWhatIsNoObjectOrWithoutAnArena)
{
    LogRecorder log;
    Arena alloc;
    ParsedJson number(5);
    ParsedJson node(Go());

    EXPECT_EQ(TransitionDef::Create(*number, &alloc), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
    EXPECT_EQ(TransitionDef::Create(*node, nullptr), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
}

TEST(TransitionDef, ReadsItsMembers)
{
    LogRecorder log;
    Built<TransitionDef> built(Go({BoolCondition("x", true)})
                                   .Set(JSON_ParentID, 999)
                                   .Set(JSON_TransitionUnread, "anything")
                                   .Set(JSON_TransitionTag, -3)
                                   .Set(JSON_TransitionTagArgument, 8)
                                   .Set(JSON_TransitionPriority, -2)
                                   .Set(JSON_TransitionDisabled, true)
                                   .Set(JSON_TransitionSwitchArgument, 0.1));

    EXPECT_EQ(built.result, 1);
    EXPECT_STREQ(built->GetName(), "Go");
    EXPECT_EQ(built->GetID(), 100u);
    EXPECT_EQ(built->GetParentID(), 10u) << "the source replaces the parent";
    EXPECT_EQ(built->targetID, 11u);
    EXPECT_EQ(built->tag, -3);
    EXPECT_EQ(built->tagArgument, 8);
    EXPECT_EQ(built->priority, -2);
    EXPECT_TRUE(built->disabled);
    EXPECT_EQ(built->switchArgument, 0.1f);
    EXPECT_EQ(built->conditionCount, 1u);
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("Go"), CreatedDef("on x")}));
}

TEST(TransitionDef, ReadsMissingMembersAsTheirDefaults)
{
    LogRecorder log;
    Built<TransitionDef> built(Go({BoolCondition("x", true)})
                                   .Set(JSON_ParentID, 999)
                                   .Remove(JSON_TransitionSource)
                                   .Remove(JSON_TransitionTarget));

    EXPECT_EQ(built.result, 1);
    EXPECT_EQ(built->GetParentID(), 0u) << "also a missing source replaces the parent";
    EXPECT_EQ(built->targetID, 0u);
    EXPECT_EQ(built->tag, 0);
    EXPECT_EQ(built->tagArgument, 0);
    EXPECT_EQ(built->priority, 5);
    EXPECT_FALSE(built->disabled);
    EXPECT_EQ(built->switchArgument, 0.0f);
}

TEST(TransitionDef, ReadsTheTagArgumentWithTheTagAlone)
{
    LogRecorder log;
    Built<TransitionDef> argumentOnly(Go().Set(JSON_TransitionTagArgument, 8));
    Built<TransitionDef> tagOnly(Go().Set(JSON_TransitionTag, 4));

    EXPECT_EQ(argumentOnly->tag, 0);
    EXPECT_EQ(argumentOnly->tagArgument, 0);
    EXPECT_EQ(tagOnly->tag, 4);
    EXPECT_EQ(tagOnly->tagArgument, 0);
}

TEST(TransitionDef, IsDisabledByTheLiteralTrueAlone)
{
    LogRecorder log;
    for (const Json& value : {Json(false), Json(1), Json("true"), Json::Null()})
    {
        Built<TransitionDef> built(Go().Set(JSON_TransitionDisabled, value));
        EXPECT_FALSE(built->disabled) << value.Text();
    }
    EXPECT_TRUE(Built<TransitionDef>(Go().Set(JSON_TransitionDisabled, true))->disabled);
}

TEST(TransitionDef, ReadsTheSwitchArgumentFromAnyFormOfNumber)
{
    LogRecorder log;
    const struct
    {
        Json value;
        float argument;
    } cases[] = {{7, 7.0f}, {-2.5, -2.5f}, {4294967295u, 4294967296.0f}, {"3", 0.0f}};
    for (const auto& example : cases)
    {
        Built<TransitionDef> built(Go().Set(JSON_TransitionSwitchArgument, example.value));
        EXPECT_EQ(built->switchArgument, example.argument) << example.value.Text();
    }
}

TEST(TransitionDef, FailsWhenItsCommonMembersDoAndIsUninitialised)
{
    LogRecorder log;
    Built<TransitionDef> built(Go({BoolCondition("x", true)}).Set(JSON_Children, 5));

    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak("vell::BaseDef::Init"), FailedDef("Go"), ErrorBreak(kInit)}))
        << "nothing runs twice";
    EXPECT_EQ(Tessel::GetTableName(built->GetKVTable()), nullptr) << "closed";
    EXPECT_TRUE(built->conditions.empty());
}

TEST(TransitionDef, FailsToInitialiseFromWhatIsNoObject)
{
    LogRecorder log;
    Built<TransitionDef> built(Go());
    ParsedJson number(5);
    log.Clear();

    EXPECT_EQ(built->Init(*number, &built.alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit)}));
    EXPECT_EQ(Tessel::GetTableName(built->GetKVTable()), nullptr) << "uninitialised";
    built.result = 0;
}

TEST(TransitionDef, StaysInForceWithoutConditions)
{
    for (const Json& member : {Json::Null(), Json::Raw("[]"), Json(5), Json("x")})
    {
        LogRecorder log;
        JsonObject json = Go().Set(JSON_Conditions, member);
        if (member.Text() == "null")
        {
            json.Remove(JSON_Conditions);
        }
        Built<TransitionDef> built(json);

        EXPECT_EQ(built.result, 1) << member.Text();
        EXPECT_FALSE(built->disabled) << member.Text();
        EXPECT_EQ(built->conditionCount, 0u) << member.Text();
        EXPECT_EQ(built->HandleConditions(nullptr), 0) << member.Text();
        EXPECT_EQ(log.Take(),
                  (Lines{CreatedDef("Go"), ErrorBreak(kInitConditions), kIgnored + "Go"}))
            << member.Text();
    }
}

TEST(TransitionDef, StaysDisabledWithoutConditionsWhenTheDocumentSaysSo)
{
    LogRecorder log;
    Built<TransitionDef> built(Go().Set(JSON_TransitionDisabled, true));

    EXPECT_EQ(built.result, 1);
    EXPECT_TRUE(built->disabled);
}

TEST(TransitionDef, KeepsItsConditionsInOrder)
{
    LogRecorder log;
    Built<TransitionDef> built(
        Go({BoolCondition("a", true), IntCondition("b", 1, 2), FloatCondition("c", 1, 0.5)}));

    ASSERT_EQ(built->conditions.size(), 3u);
    EXPECT_EQ(built->conditionCount, 3u);
    const char* const names[] = {"on a", "on b", "on c"};
    for (unsigned int i = 0; i < 3; ++i)
    {
        EXPECT_STREQ(built->conditions[i]->GetName(), names[i]);
        EXPECT_EQ(LoadElement(built->conditionArray, i), built->conditions[i]);
    }
}

TEST(TransitionDef, KeepsTheConditionsBeforeABadOne)
{
    const Json good = BoolCondition("a", true);
    const struct
    {
        Json bad;
        Lines lines;
    } cases[] = {
        {Json(5), {}},
        {Condition(4, "stick", 1, "1,2"), {}},
        {MessageCondition("b", ""),
         {CreatedDef("on b"), ErrorBreak("vell::ConditionDefMessage::Init")}},
        {Condition(PARAM_Integer, "b", 10, "5"),
         {CreatedDef("on b"), ErrorBreak("vell::ConditionDefInteger::Init")}},
    };
    for (const auto& example : cases)
    {
        LogRecorder log;
        Built<TransitionDef> built(Go({good, good, example.bad, good}));

        EXPECT_EQ(built.result, 1);
        EXPECT_FALSE(built->disabled);
        EXPECT_EQ(built->conditionCount, 4u);
        ASSERT_EQ(built->conditions.size(), 2u);
        EXPECT_EQ(LoadElement(built->conditionArray, 1), built->conditions[1]);
        EXPECT_EQ(LoadElement(built->conditionArray, 2), nullptr);
        EXPECT_EQ(LoadElement(built->conditionArray, 3), nullptr);
        Lines expected{CreatedDef("Go"), CreatedDef("on a"), CreatedDef("on a")};
        expected.insert(expected.end(), example.lines.begin(), example.lines.end());
        expected.insert(expected.end(),
                        {ErrorGoto(kInitConditions), kConditionFailed, kIgnored + "Go"});
        EXPECT_EQ(log.Take(), expected) << example.bad.Text();
    }
}

TEST(TransitionDef, NeedsRoomForTheArrayOfItsConditions)
{
    LogRecorder log;
    const auto size = static_cast<unsigned int>(sizeof(TransitionDef) + 2 * sizeof(void*));
    Built<TransitionDef> built(Go({BoolCondition("a", true), BoolCondition("b", true)}), size - 1);

    EXPECT_EQ(built.result, 1);
    EXPECT_FALSE(built->disabled);
    EXPECT_EQ(built->conditionCount, 2u);
    EXPECT_EQ(built->conditionArray, nullptr);
    EXPECT_TRUE(built->conditions.empty());
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("Go"), ErrorBreak(kInitConditions), kIgnored + "Go"}));
}

TEST(TransitionDef, NeedsRoomForEachCondition)
{
    LogRecorder log;
    const auto size = static_cast<unsigned int>(sizeof(TransitionDef) + 2 * sizeof(void*) +
                                                2 * sizeof(ConditionDefBool));
    const std::vector<Json> conditions = {BoolCondition("a", true), BoolCondition("b", true)};
    Built<TransitionDef> fitting(Go(conditions), size);
    log.Clear();
    Built<TransitionDef> tight(Go(conditions), size - 1);

    EXPECT_EQ(fitting->conditions.size(), 2u);
    EXPECT_EQ(tight->conditions.size(), 1u);
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("Go"), CreatedDef("on a"), ErrorGoto(kInitConditions),
                                 kConditionFailed, kIgnored + "Go"}));
}

TEST(TransitionDef, ReportsAMissingArenaForItsConditions)
{
    LogRecorder log;
    Built<TransitionDef> built(Go());
    ParsedJson conditions(Json::Array({Json(BoolCondition("a", true))}));
    log.Clear();

    EXPECT_EQ(built->InitConditions(*conditions, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInitConditions)}));
}

TEST(TransitionDef, LosesTheRoomOfAConditionThatFailed)
{
    LogRecorder log;
    Built<TransitionDef> built(Go({BoolCondition("a", true).Remove(JSON_ConditionValue)}));

    EXPECT_TRUE(built->conditions.empty());
    EXPECT_EQ(built.alloc.used, sizeof(TransitionDef) + sizeof(void*) + sizeof(ConditionDefBool));
}

TEST(TransitionDef, KeepsItsConditionsAndTriggersWhenUninitialised)
{
    LogRecorder log;
    BoundTransition transition({1});
    transition->RegisterCondition(Note<'a', false>);

    transition->Uninit();

    EXPECT_EQ(transition->HandleConditions(nullptr), 1);
    EXPECT_EQ(TakeCalls(), "a");
    EXPECT_EQ(transition->targetID, 11u);
    EXPECT_NE(Tessel::GetTableName(transition->conditions[0]->GetKVTable()), nullptr)
        << "conditions are not torn down";
    transition.result = 0;
}

TEST(TransitionDef, HoldsWhenAnyOfItsConditionsHolds)
{
    LogRecorder log;

    EXPECT_EQ(BoundTransition({0, 0})->HandleConditions(nullptr), 0);
    EXPECT_EQ(BoundTransition({0, 1})->HandleConditions(nullptr), 1);
    EXPECT_EQ(BoundTransition({1, 0})->HandleConditions(nullptr), 1);
    EXPECT_EQ(BoundTransition({1, 1})->HandleConditions(nullptr), 1);
}

TEST(TransitionDef, HasNoMemory)
{
    LogRecorder log;
    BoundTransition transition({0});

    transition.values[0].SetValue(true);
    EXPECT_EQ(transition->HandleConditions(nullptr), 1);
    EXPECT_EQ(transition->HandleConditions(nullptr), 1);
    transition.values[0].SetValue(false);
    EXPECT_EQ(transition->HandleConditions(nullptr), 0);
}

TEST(TransitionDef, DoesNotAskTheConditionsBehindTheFirstThatHolds)
{
    std::string asked;
    WatchedCondition a(false, asked, 'a');
    WatchedCondition b(true, asked, 'b');
    WatchedCondition c(true, asked, 'c');
    TransitionDef transition;
    transition.conditions = {&a, &b, &c};

    EXPECT_EQ(transition.HandleConditions(nullptr), 1);
    EXPECT_EQ(asked, "ab");
}

TEST(TransitionDef, RefusesANullTrigger)
{
    LogRecorder log;
    TransitionDef transition;

    EXPECT_EQ(transition.RegisterCondition(nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::TransitionDef::RegisterCondition")}));
    EXPECT_TRUE(transition.triggers.empty());
}

TEST(TransitionDef, HoldsByATriggerWithoutConditions)
{
    TransitionDef transition;
    EXPECT_EQ(transition.HandleConditions(nullptr), 0);

    EXPECT_EQ(transition.RegisterCondition(Note<'a', true>), 1);

    EXPECT_EQ(transition.HandleConditions(nullptr), 1);
    EXPECT_EQ(TakeCalls(), "a");
}

TEST(TransitionDef, CallsTriggersWithTheMachineAndANullState)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder{});
    TransitionDef transition;
    transition.RegisterCondition(Note<'a', false>);

    EXPECT_EQ(transition.HandleConditions(&machine), 0);

    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].machine, &machine);
    EXPECT_EQ(calls[0].state, nullptr);
    TakeCalls();
}

TEST(TransitionDef, CallsTriggersAlsoWhenAConditionHolds)
{
    LogRecorder log;
    BoundTransition transition({1});
    transition->RegisterCondition(Note<'a', false>);
    transition->RegisterCondition(Note<'b', false>);

    EXPECT_EQ(transition->HandleConditions(nullptr), 1) << "whatever the triggers return";

    EXPECT_EQ(TakeCalls(), "ab");
}

TEST(TransitionDef, StopsAtTheFirstTriggerThatReturnsTrue)
{
    TransitionDef transition;
    transition.RegisterCondition(Note<'a', false>);
    transition.RegisterCondition(Note<'b', true>);
    transition.RegisterCondition(Note<'c', true>);

    EXPECT_EQ(transition.HandleConditions(nullptr), 1);

    EXPECT_EQ(TakeCalls(), "ab");
}

TEST(TransitionDef, CallsATriggerTwiceThatWasRegisteredTwice)
{
    TransitionDef transition;
    transition.RegisterCondition(Note<'a', false>);
    transition.RegisterCondition(Note<'a', false>);

    EXPECT_EQ(transition.HandleConditions(nullptr), 0);

    EXPECT_EQ(TakeCalls(), "aa");
}

TEST(TransitionDef, EndsAtANullTriggerWithTheResultSoFar)
{
    LogRecorder log;
    BoundTransition transition({1});
    transition->triggers = {Note<'a', false>, nullptr, Note<'b', true>};
    log.Clear();

    EXPECT_EQ(transition->HandleConditions(nullptr), 1);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::TransitionDef::HandleConditions")}));
    transition.values[0].SetValue(false);
    EXPECT_EQ(transition->HandleConditions(nullptr), 0);

    EXPECT_EQ(TakeCalls(), "aa");
}

TEST(TransitionDef, MayGainATriggerFromATrigger)
{
    static TransitionDef* extended = nullptr;
    TransitionDef transition;
    extended = &transition;
    transition.RegisterCondition(
        [](IHSM*, SMState*)
        {
            if (extended->triggers.size() < 20)
            {
                extended->RegisterCondition(Note<'x', false>);
            }
            return false;
        });

    transition.HandleConditions(nullptr);

    EXPECT_EQ(TakeCalls(), "x");
}

namespace
{

/// A machine in "Stand" with two transitions in this order, both on the bool "on".
DocumentBuilder TwoWays(const JsonObject& first, const JsonObject& second)
{
    return DocumentBuilder()
        .Parameter(BoolParameter("on", true))
        .Start(10)
        .Node(Generic("Stand", 10, {100, 101}))
        .Node(Generic("Walk", 11))
        .Node(Generic("Run", 12))
        .Node(first)
        .Node(second);
}

const std::vector<Json>& WhenOn()
{
    static const std::vector<Json> conditions = {BoolCondition("on", true)};
    return conditions;
}

} // namespace

TEST_F(TransitionInAMachine, WithTheSmallerPriorityFires)
{
    StartedMachine machine(
        TwoWays(Transition("Later", 100, 10, 11, WhenOn()),
                Transition("Sooner", 101, 10, 12, WhenOn()).Set(JSON_TransitionPriority, 4)));

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Run");
}

TEST_F(TransitionInAMachine, WithTheTargetZeroBlocksThoseBehindItWhileItHolds)
{
    StartedMachine machine(
        TwoWays(Transition("Nowhere", 100, 10, 0, WhenOn()), Transition("Go", 101, 10, 12)));
    machine.AssignTrigger("Go", Note<'g', true>);
    calls.clear();

    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Stand");
    EXPECT_EQ(TakeCalls(), "") << "not asked";
    dynamic_cast<ParameterBoolDef*>(machine.GetParameterTable()->FindParameter("on"))
        ->SetValue(false);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Run");
    TakeCalls();
}

TEST_F(TransitionInAMachine, SeesWhatATriggerBeforeItBound)
{
    StartedMachine machine(TwoWays(Transition("Binds", 100, 10, 11),
                                   Transition("Late", 101, 10, 12, {BoolCondition("late", true)})));
    machine.Update(0.1f);
    ASSERT_EQ(machine.MainStack(), "Stand");
    machine.AssignTrigger("Binds",
                          [](IHSM* triggered, SMState*)
                          {
                              IParameterBoolDef* late = nullptr;
                              triggered->GetParameterTable()->CreateBoolParameter("late", true,
                                                                                  &late);
                              dynamic_cast<HSM*>(triggered)->BindParamCond();
                              return false;
                          });

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Run") << "in the same tick";
}

TEST_F(TransitionInAMachine, IsNotAskedWhenDisabled)
{
    StartedMachine machine(
        TwoWays(Transition("Off", 100, 10, 11, WhenOn()).Set(JSON_TransitionDisabled, true),
                Transition("None", 101, 10, 12)));
    machine.AssignTrigger("Off", Note<'o', true>);

    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Stand");
    EXPECT_EQ(TakeCalls(), "");
}

TEST_F(TransitionInAMachine, DoesNotOwnAConditionThatStandsAmongTheNodes)
{
    JsonObject node = BoolCondition("on", true);
    node.Set(JSON_ID, 300).Set(JSON_BuilderType, BuilderName(BUILDER_Condition));
    StartedMachine machine(
        TwoWays(Transition("None", 100, 10, 11), Transition("Nor", 101, 10, 12)).Node(node));

    machine.Update(0.1f);

    auto* condition = dynamic_cast<ConditionDefBool*>(machine.nodeDefTable->Find(300));
    ASSERT_NE(condition, nullptr);
    EXPECT_EQ(condition->parameter, nullptr) << "not bound";
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST_F(TransitionInAMachine, WithBadConditionsFiresByATrigger)
{
    StartedMachine machine(TwoWays(Transition("Broken", 100, 10, 11).Set(JSON_Conditions, 5),
                                   Transition("None", 101, 10, 12)));
    machine.Update(0.1f);
    ASSERT_EQ(machine.MainStack(), "Stand");

    ASSERT_EQ(machine.AssignTrigger("Broken", Note<'t', true>), 1);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(TakeCalls(), "t");
}

} // namespace vell::test
