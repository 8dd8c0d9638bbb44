// VELL: data-driven hierarchical state machines.
// tests/transitions/ConditionLoadTest.cpp: making and reading of conditions, good and bad.
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

const std::string kCreate = "vell::ConditionDef::Create";
const std::string kBaseInit = "vell::ConditionDef::Init";

/// The four classes, each with a well-formed condition, its size and the name of its `Init`.
struct Example
{
    JsonObject json;
    std::size_t size;
    std::string init;
};

std::vector<Example> Examples()
{
    return {
        {BoolCondition("x", true), sizeof(ConditionDefBool), "vell::ConditionDefBool::Init"},
        {IntCondition("x", 1, 3), sizeof(ConditionDefInteger), "vell::ConditionDefInteger::Init"},
        {FloatCondition("x", 1, 0.5), sizeof(ConditionFloatDef), "vell::ConditionFloatDef::Init"},
        {MessageCondition("x", "go"), sizeof(ConditionDefMessage),
         "vell::ConditionDefMessage::Init"}};
}

/// The line of a condition whose common members were read.
Lines Read()
{
    return {CreatedDef("on x")};
}

Lines Twice(const Lines& lines)
{
    return lines + lines;
}

/// An operand, and the bounds that a condition reads from it; a single number is the lower one.
template <class Value>
struct Operand
{
    Json json;
    Value low;
    Value high;
};

/// Expects that a condition of the operator `evaluation` reads each operand as its bounds.
template <class Class, class Value>
void ExpectBounds(int type, int evaluation, const std::vector<Operand<Value>>& operands)
{
    LogRecorder log;
    for (const Operand<Value>& operand : operands)
    {
        SCOPED_TRACE(operand.json.Text());
        Built<Class> built(Condition(type, "x", evaluation, operand.json));

        EXPECT_EQ(built.result, 1);
        EXPECT_EQ(built->target, operand.low);
        EXPECT_EQ(built->rangeHigh, operand.high);
    }
}

/// Makes a condition and initialises it, whatever its class.
struct Attempt
{
    explicit Attempt(const Json& json, unsigned int arenaSize = 65536)
        : alloc(arenaSize), node(json), def(ConditionDef::Create(*node, &alloc))
    {
        result = def == nullptr ? -1 : def->Init(*node, &alloc);
    }

    Arena alloc;
    ParsedJson node;
    BaseDef* def;
    int result; ///< of Init; -1 when there was nothing to initialise
};

} // namespace

TEST(ConditionLoad, TakesTheClassFromTheConditionsOwnType)
{
    LogRecorder log;
    Attempt boolean(BoolCondition("x", true));
    Attempt integer(IntCondition("x", 1, 3));
    Attempt number(FloatCondition("x", 1, 0.5));
    Attempt message(MessageCondition("x", "go"));

    EXPECT_NE(dynamic_cast<ConditionDefBool*>(boolean.def), nullptr);
    EXPECT_NE(dynamic_cast<ConditionDefInteger*>(integer.def), nullptr);
    EXPECT_NE(dynamic_cast<ConditionFloatDef*>(number.def), nullptr);
    EXPECT_NE(dynamic_cast<ConditionDefMessage*>(message.def), nullptr);
    for (const Attempt* attempt : {&boolean, &integer, &number, &message})
    {
        EXPECT_EQ(attempt->result, 1);
        EXPECT_EQ(attempt->def->GetType(), DefTypeCondition);
        EXPECT_EQ(attempt->def->GetFlags(), 8u);
    }
    EXPECT_EQ(log.Take(), Twice(Twice(Read())));
}

TEST(ConditionLoad, ReadsTheCommonMembers)
{
    LogRecorder log;
    Built<ConditionDefInteger> built(
        IntCondition("x", 4, 3).Set(JSON_ID, 55).Set(JSON_ParentID, 66));

    EXPECT_STREQ(built->GetName(), "on x");
    EXPECT_EQ(built->GetID(), 55u);
    EXPECT_EQ(built->GetParentID(), 66u);
    EXPECT_EQ(built->evaluation, 4);
    EXPECT_EQ(built->parameterID, ParameterId("x"));
    EXPECT_EQ(built->target, 3);
    EXPECT_EQ(built->rangeHigh, 0);
    EXPECT_EQ(built->parameter, nullptr);
    EXPECT_EQ(built->boundValue, nullptr);
    EXPECT_EQ(built->reservedA, 0u);
    EXPECT_EQ(built->reservedB, nullptr);
}

TEST(ConditionLoad, GivesNothingForTypesThatCannotBeTested)
{
    for (const int type : {4, 5, 6, 7})
    {
        LogRecorder log;
        Attempt attempt(Condition(type, "x", 1, "1,2"));

        EXPECT_EQ(attempt.def, nullptr) << type;
        EXPECT_EQ(log.Take(), Lines()) << type;
    }
}

TEST(ConditionLoad, GivesNothingForAnUnknownOrMissingType)
{
    LogRecorder log;
    Attempt unknown(BoolCondition("x", true).Set(JSON_ConditionType, "Bool"));
    Attempt missing(BoolCondition("x", true).Remove(JSON_ConditionType));

    EXPECT_EQ(unknown.def, nullptr);
    EXPECT_EQ(missing.def, nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

TEST(ConditionLoad, MakesEachClassWithRoomAndGivesNothingAByteShort)
{
    for (const Example& example : Examples())
    {
        LogRecorder log;
        ParsedJson node(example.json);
        const auto size = static_cast<unsigned int>(example.size);
        Arena room(size);
        Arena tight(size - 1);

        EXPECT_NE(ConditionDef::Create(*node, &room), nullptr) << example.init;
        EXPECT_EQ(ConditionDef::Create(*node, &tight), nullptr) << example.init;
        EXPECT_EQ(log.Take(), Lines()) << example.init;
    }
}

TEST(ConditionLoad, ReportsWhatIsNoObjectAndAMissingArenaWhenMaking)
{
    LogRecorder log;
    Arena alloc;
    ParsedJson good(BoolCondition("x", true));
    ParsedJson number(5);

    EXPECT_EQ(ConditionDef::Create(*number, &alloc), nullptr);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreate)}));
    EXPECT_EQ(ConditionDef::Create(*good, nullptr), nullptr);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreate)}));
}

TEST(ConditionLoad, ReportsWhatIsNoObjectAndAMissingArenaWhenInitialising)
{
    for (const Example& example : Examples())
    {
        LogRecorder log;
        Arena alloc;
        ParsedJson node(example.json);
        ParsedJson number(5);
        BaseDef* def = ConditionDef::Create(*node, &alloc);
        const bool isMessage = dynamic_cast<ConditionDefMessage*>(def) != nullptr;
        const Lines expected =
            isMessage ? Lines{ErrorBreak(example.init)}
                      : Twice({AssertBreak(kBaseInit)}) + Lines{ErrorBreak(example.init)};

        EXPECT_EQ(def->Init(*number, &alloc), 0);
        EXPECT_EQ(log.Take(), expected) << example.init;
        EXPECT_EQ(def->Init(*node, nullptr), 0);
        EXPECT_EQ(log.Take(), expected) << example.init;
    }
}

TEST(ConditionLoad, RunsFailingCommonMembersFourTimes)
{
    for (Example& example : Examples())
    {
        LogRecorder log;
        Attempt attempt(example.json.Set(JSON_Children, 5));

        EXPECT_EQ(attempt.result, 0);
        const Lines run{ErrorBreak("vell::BaseDef::Init"), FailedDef("on x")};
        EXPECT_EQ(log.Take(), Twice(Twice(run) + Lines{ErrorBreak(kBaseInit)}) +
                                  Lines{ErrorBreak(example.init)})
            << example.init;
    }
}

TEST(ConditionLoad, FailsWithoutAnOperatorAParameterOrAnArrayThatBeginsWithAnObject)
{
    using Member = DURMBaseLib::__JSONTYPES__;
    const struct
    {
        const char* what;
        Member member;
        Json value; ///< null leaves the member out
        Lines line; ///< of the common members, which are then read twice
    } cases[] = {
        {"no operator", JSON_ConditionEvaluation, Json::Null(), {ErrorBreak(kBaseInit, "")}},
        {"an operator that is a number", JSON_ConditionEvaluation, 3, {ErrorBreak(kBaseInit, "")}},
        {"no parameter", JSON_ConditionParameter, Json::Null(), {ErrorBreak(kBaseInit)}},
        {"the parameter 0", JSON_ConditionParameter, 0, {ErrorBreak(kBaseInit)}},
        {"no value", JSON_ConditionValue, Json::Null(), {}},
        {"a value that is a number", JSON_ConditionValue, 3, {}},
        {"a value of no elements", JSON_ConditionValue, Json::Raw("[]"), {}},
        {"a value of a number", JSON_ConditionValue, Json::Raw("[3]"), {}}};
    for (const auto& bad : cases)
    {
        for (const Example& example : Examples())
        {
            SCOPED_TRACE(bad.what + (" for " + example.init));
            LogRecorder log;
            JsonObject json = example.json;
            bad.value.Text() == "null" ? json.Remove(bad.member) : json.Set(bad.member, bad.value);
            Attempt attempt(json);

            EXPECT_EQ(attempt.result, 0);
            EXPECT_EQ(log.Take(), (bad.line.empty() ? Read() : Twice(Read() + bad.line)) +
                                      Lines{ErrorBreak(example.init)});
        }
    }
}

TEST(ConditionLoad, TakesAnUnknownOperatorThatThenNeverHolds)
{
    LogRecorder log;
    const float value = 0.5f;
    Built<ConditionFloatDef> built(
        FloatCondition("x", 1, 0.5).Set(JSON_ConditionEvaluation, "approximately"));
    ASSERT_EQ(built.result, 1);
    built->boundValue = &value;

    EXPECT_EQ(built->evaluation, GetEvaluationEnum("approximately"));
    EXPECT_FALSE(built->Evaluate(nullptr));
    EXPECT_EQ(log.Take(), Read());
}

TEST(ConditionLoad, ReadsTheFirstElementAlone)
{
    LogRecorder log;
    JsonObject first;
    first.Set(JSON_Value, 4);
    JsonObject second;
    second.Set(JSON_Value, 9);
    Built<ConditionDefInteger> built(IntCondition("x", 1, 0).Set(
        JSON_ConditionValue, Json::Array({Json(first), Json(second), Json("rubbish")})));

    EXPECT_EQ(built.result, 1);
    EXPECT_EQ(built->target, 4);
}

TEST(ConditionLoad, CreatesATableOnlyWhenItIsAskedForOne)
{
    LogRecorder log;
    for (const Example& example : Examples())
    {
        const unsigned int open = Tessel::GetOpenTableCount();
        Attempt attempt(example.json);
        ASSERT_EQ(attempt.result, 1) << example.init;
        EXPECT_EQ(Tessel::GetOpenTableCount(), open) << example.init;
        ASSERT_EQ(attempt.def->Init(*attempt.node, &attempt.alloc), 1) << example.init;
        EXPECT_EQ(Tessel::GetOpenTableCount(), open) << example.init;

        const Tessel::KVTable table = attempt.def->GetKVTable();

        EXPECT_STREQ(Tessel::GetTableName(table), "baseDef") << example.init;
        EXPECT_TRUE(static_cast<bool>(table->GetTable("attribs"))) << example.init;
        EXPECT_EQ(attempt.def->GetKVTable(), table) << example.init;
        EXPECT_EQ(Tessel::GetOpenTableCount(), open + 2) << example.init;
    }
}

TEST(BoolConditionLoad, WantsTrueForTheLiteralAlone)
{
    LogRecorder log;
    for (const Json& value : {Json(false), Json(1), Json("true"), Json::Null()})
    {
        Built<ConditionDefBool> built(Condition(PARAM_Bool, "x", 1, value));
        EXPECT_EQ(built.result, 1) << value.Text();
        EXPECT_FALSE(built->target) << value.Text();
    }
    Built<ConditionDefBool> missing(
        BoolCondition("x", true).Set(JSON_ConditionValue, Json::Raw("[{}]")));
    Built<ConditionDefBool> literal(BoolCondition("x", true));

    EXPECT_EQ(missing.result, 1);
    EXPECT_FALSE(missing->target);
    EXPECT_TRUE(literal->target);
}

TEST(IntegerConditionLoad, ReadsA32BitNumberWithoutATypeTest)
{
    ExpectBounds<ConditionDefInteger, int>(
        PARAM_Integer, 3,
        {{-5, -5, 0}, {4294967295u, -1, 0}, {"5", 0, 0}, {true, 0, 0}, {Json::Null(), 0, 0}});
}

TEST(IntegerConditionLoad, TruncatesTheBoundsOfARange)
{
    ExpectBounds<ConditionDefInteger, int>(PARAM_Integer, 10,
                                           {{"1.9,4.9", 1, 4},
                                            {"4.9,1.9", 1, 4},
                                            {"-1.9,-4.9", -4, -1},
                                            {"-0.5,0.5", 0, 0},
                                            {"1e20,-1e20", INT_MIN, INT_MAX},
                                            {"2147483647.9,16777217", 16777217, INT_MAX},
                                            {"3,3", 3, 3},
                                            {"up,2", 0, 2},
                                            {"2,down", 0, 2},
                                            {"-2,down", -2, 0},
                                            {"up,down", 0, 0},
                                            {"3metres,2", 2, 3}});
}

TEST(FloatConditionLoad, ReadsAnyFormOfNumber)
{
    ExpectBounds<ConditionFloatDef, float>(PARAM_Float, 3,
                                           {{0.1, 0.1f, 0},
                                            {-3, -3.0f, 0},
                                            {4294967295u, 4294967296.0f, 0},
                                            {Json::Raw("18000000000000000000"), 18e18f, 0},
                                            {Json::Raw("-9000000000000000000"), -9e18f, 0},
                                            {"0.5", 0, 0},
                                            {Json::Null(), 0, 0}});
}

TEST(FloatConditionLoad, ReadsTheBoundsOfARangeInEitherOrder)
{
    ExpectBounds<ConditionFloatDef, float>(PARAM_Float, 10,
                                           {{"0.1,0.9", 0.1f, 0.9f},
                                            {"0.9,0.1", 0.1f, 0.9f},
                                            {"-1,1,5,7", -1, 1},
                                            {"up,2", 0, 2},
                                            {" 2 ,,-3 ", -3, 2},
                                            {",1,2", 1, 2},
                                            {"2,down", 0, 2},
                                            {"-2,down", -2, 0},
                                            {"up,down", 0, 0},
                                            {"0.5m,-1", -1, 0.5f}});
}

TEST(RangeCondition, FailsForATextThatIsNoRange)
{
    const std::string tooLong = "1," + std::string(126, '2');
    ASSERT_EQ(tooLong.size(), 128u);
    for (const Json& value :
         {Json("5"), Json(""), Json("5,"), Json(",5"), Json(tooLong), Json(5), Json::Null()})
    {
        LogRecorder log;
        Attempt integer(Condition(PARAM_Integer, "x", 10, value));
        Attempt number(Condition(PARAM_Float, "x", 10, value));

        EXPECT_EQ(integer.result, 0) << value.Text();
        EXPECT_EQ(number.result, 0) << value.Text();
        EXPECT_EQ(log.Take(), (Read() + Lines{ErrorBreak("vell::ConditionDefInteger::Init")} +
                               Read() + Lines{ErrorBreak("vell::ConditionFloatDef::Init")}))
            << value.Text();
    }
}

TEST(RangeCondition, TakesATextOf127Characters)
{
    LogRecorder log;
    const std::string text = "1," + std::string(124, '0') + "2";
    ASSERT_EQ(text.size(), 127u);

    Built<ConditionDefInteger> built(Condition(PARAM_Integer, "x", 10, text));

    EXPECT_EQ(built.result, 1);
    EXPECT_EQ(built->rangeHigh, 2);
}

TEST(MessageConditionLoad, FailsForWhatIsNoTextAndForAnEmptyText)
{
    LogRecorder log;
    Attempt number(Condition(PARAM_Message, "x", 1, 5));
    Attempt missing(MessageCondition("x", "go").Set(JSON_ConditionValue, Json::Raw("[{}]")));
    Attempt empty(MessageCondition("x", ""));

    EXPECT_EQ(number.result, 0);
    EXPECT_EQ(missing.result, 0);
    EXPECT_EQ(empty.result, 0);
    const std::string init = "vell::ConditionDefMessage::Init";
    EXPECT_EQ(log.Take(),
              (Twice(Read() + Lines{ErrorBreak(init, "")}) + Read() + Lines{ErrorBreak(init)}));
}

TEST(MessageConditionLoad, NeedsTwoBytesMoreThanItsText)
{
    LogRecorder log;
    const auto size = static_cast<unsigned int>(sizeof(ConditionDefMessage)) + 5 + 2;
    Attempt room(MessageCondition("x", "abcde"), size);
    Attempt tight(MessageCondition("x", "abcde"), size - 1);

    EXPECT_EQ(room.result, 1);
    EXPECT_EQ(room.alloc.used, size);
    EXPECT_EQ(tight.result, 0);
    EXPECT_EQ(log.Take(),
              (Read() + Read() + Lines{ErrorBreak("vell::ConditionDefMessage::Init", "")}));
}

} // namespace vell::test
