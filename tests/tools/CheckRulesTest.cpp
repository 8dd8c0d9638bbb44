// VELL: data-driven hierarchical state machines.
// tests/tools/CheckRulesTest.cpp: what the check finds in what a document means, and what it
// leaves alone.
#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "tests/support/DocumentBuilder.h"
#include "tools/check/Check.h"
#include "tools/check/LibraryLoad.h"
#include "tools/check/ValueSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;
using Codes = std::vector<std::string>;

/// Gives the codes that are found, each with the offset's piece of text: "VELL120 'Walk'".
Codes FindingsOf(const std::string& text)
{
    const check::Findings findings = check::CheckDocument(source::ReadText(text));
    Codes codes;
    for (const check::Finding& finding : findings.list)
    {
        // The builder's arena is small, but most of these documents are smaller.
        if (finding.code != check::Code::MemoryTooLarge)
        {
            const std::uint32_t begin = finding.where.begin.offset;
            codes.push_back(check::NameOf(finding.code) + " " +
                            text.substr(begin, finding.where.end.offset - begin));
        }
    }
    return codes;
}

JsonObject Holding(const JsonObject& transition, int priority)
{
    return JsonObject(transition).Set(JSON_TransitionPriority, Json(priority));
}

/// Stand, 10, and Walk, 11, with a transition each: 100 from Stand and 101 from Walk.
DocumentBuilder TwoStates(const std::vector<Json>& toWalk, const std::vector<Json>& toStand)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(BoolParameter("armed", false))
        .Parameter(PulseParameter("attack"))
        .Node(Generic("Stand", 10, {100}))
        .Node(Generic("Walk", 11, {101}))
        .Node(Transition("ToWalk", 100, 10, 11, toWalk))
        .Node(Transition("ToStand", 101, 11, 10, toStand));
    return document;
}

/// One state, Stand, that two transitions leave, 100 to Walk and 101 to Run.
DocumentBuilder TwoWays(const JsonObject& first, const JsonObject& second)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(IntParameter("stance", 0))
        .Parameter(BoolParameter("armed", false))
        .Parameter(MessageParameter("jump", "now"))
        .Node(Generic("Stand", 10, {100, 101}))
        .Node(Generic("Walk", 11))
        .Node(Generic("Run", 12))
        .Node(first)
        .Node(second);
    return document;
}

JsonObject First(const std::vector<Json>& conditions)
{
    return Transition("ToWalk", 100, 10, 11, conditions);
}

JsonObject Second(const std::vector<Json>& conditions)
{
    return Transition("ToRun", 101, 10, 12, conditions);
}

/// Gives the transitions that are never taken.
Codes ShadowsOf(const DocumentBuilder& document)
{
    Codes shadows;
    for (const std::string& code : FindingsOf(document.Text()))
    {
        if (code.find("VELL125") == 0)
        {
            shadows.push_back(code);
        }
    }
    return shadows;
}

const Codes kRunIsShadowed = {"VELL125 \"ToRun\""};

Json Range(int type, const std::string& parameter, const std::string& text)
{
    return Condition(type, parameter, EvaluateInRange, Json(text));
}

bool Has(const Codes& codes, const std::string& code)
{
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

} // namespace

TEST(CheckShadows, FindATransitionBehindOneThatHoldsWheneverItDoes)
{
    const std::vector<std::pair<Json, Json>> cases = {
        {FloatCondition("speed", EvaluateGreater, 0.1),
         FloatCondition("speed", EvaluateGreater, 3)},
        {FloatCondition("speed", EvaluateGreater, 0.1),
         FloatCondition("speed", EvaluateGreaterOrEqual, 0.2)},
        {FloatCondition("speed", EvaluateLess, 1.0), FloatCondition("speed", EvaluateEqual, 0.5)},
        {FloatCondition("speed", EvaluateNotEqual, 1.0),
         FloatCondition("speed", EvaluateLess, 1.0)},
        {Range(PARAM_Float, "speed", "0,2"), Range(PARAM_Float, "speed", "1.5,0.5")},
        {IntCondition("stance", EvaluateGreater, 1), IntCondition("stance", EvaluateEqual, 2)},
        {Range(PARAM_Integer, "stance", "0,4"), IntCondition("stance", EvaluateEqual, 4)},
        {BoolCondition("armed", true), BoolCondition("armed", true)},
        {MessageCondition("jump", "now"), MessageCondition("jump", "now")},
    };
    for (const auto& [wide, narrow] : cases)
    {
        EXPECT_EQ(ShadowsOf(TwoWays(First({wide}), Second({narrow}))), kRunIsShadowed)
            << narrow.Text();
    }
}

TEST(CheckShadows, LeaveATransitionAloneThatHoldsForMore)
{
    const std::vector<std::pair<Json, Json>> cases = {
        {FloatCondition("speed", EvaluateGreater, 3.0),
         FloatCondition("speed", EvaluateGreater, 1)},
        {FloatCondition("speed", EvaluateGreater, 1.0),
         FloatCondition("speed", EvaluateGreaterOrEqual, 1.0)},
        {FloatCondition("speed", EvaluateLess, 1.0), FloatCondition("speed", EvaluateEqual, 1.0)},
        {FloatCondition("speed", EvaluateEqual, 1.0), Range(PARAM_Float, "speed", "0.98,1")},
        {Range(PARAM_Integer, "stance", "1,4"), IntCondition("stance", EvaluateLess, 4)},
        {IntCondition("stance", EvaluateEqual, 1), BoolCondition("armed", true)},
        {BoolCondition("armed", true), BoolCondition("armed", false)},
        {MessageCondition("jump", "now"), MessageCondition("jump", "Now")},
    };
    for (const auto& [first, second] : cases)
    {
        EXPECT_EQ(ShadowsOf(TwoWays(First({first}), Second({second}))), Codes()) << second.Text();
    }
}

TEST(CheckShadows, AreFoundInTheOrderOfPriorities)
{
    const Json wide = FloatCondition("speed", EvaluateGreater, 0.1);
    const Json narrow = FloatCondition("speed", EvaluateGreater, 3.0);

    EXPECT_EQ(ShadowsOf(TwoWays(Holding(First({narrow}), 2), Holding(Second({wide}), 1))),
              Codes{"VELL125 \"ToWalk\""});
    EXPECT_EQ(ShadowsOf(TwoWays(First({wide}), Holding(Second({narrow}), 4))), Codes());
}

TEST(CheckShadows, AreCastBySeveralConditionsTogether)
{
    const Json low = IntCondition("stance", EvaluateLess, 3);
    const Json high = IntCondition("stance", EvaluateGreater, 3);
    const Json all = IntCondition("stance", EvaluateNotEqual, 3);

    EXPECT_EQ(ShadowsOf(TwoWays(First({low, high}), Second({all}))), kRunIsShadowed);
    EXPECT_EQ(ShadowsOf(TwoWays(First({low}), Second({low, high}))), Codes());
}

TEST(CheckShadows, AreNotCastByATransitionThatIsDisabled)
{
    const Json condition = BoolCondition("armed", true);
    const JsonObject disabled = First({condition}).Set(JSON_TransitionDisabled, Json(true));

    EXPECT_EQ(ShadowsOf(TwoWays(disabled, Second({condition}))), Codes());
}

TEST(CheckReturns, FindStatesThatThrowTheMachineBackAndForth)
{
    const Json fast = FloatCondition("speed", EvaluateGreater, 0.1);
    const Json slow = FloatCondition("speed", EvaluateLess, 0.5);
    const Json still = FloatCondition("speed", EvaluateLessOrEqual, 0.1);

    EXPECT_TRUE(Has(FindingsOf(TwoStates({fast}, {slow}).Text()), "VELL126 \"ToWalk\""));
    EXPECT_FALSE(Has(FindingsOf(TwoStates({fast}, {still}).Text()), "VELL126 \"ToWalk\""));
}

TEST(CheckReturns, AllowAPulseThatGoesThereAndBack)
{
    const Json pulse = BoolCondition("attack", true);
    const Json rest = BoolCondition("attack", false);

    EXPECT_FALSE(Has(FindingsOf(TwoStates({pulse}, {pulse}).Text()), "VELL126 \"ToWalk\""));
    EXPECT_TRUE(Has(FindingsOf(TwoStates({rest}, {rest}).Text()), "VELL126 \"ToWalk\""));
}

TEST(CheckReturns, AllowConditionsOnDifferentParameters)
{
    const Json fast = FloatCondition("speed", EvaluateGreater, 0.1);
    const Json armed = BoolCondition("armed", true);

    EXPECT_FALSE(Has(FindingsOf(TwoStates({fast}, {armed}).Text()), "VELL126 \"ToWalk\""));
}

TEST(CheckLevels, FindAStateThatForgetsItsParent)
{
    DocumentBuilder document;
    document.Start(20)
        .Parameter(BoolParameter("armed", false))
        .Level("Fight", 20, 30)
        .Node(Generic("Jab", 30, {300}, 20))
        .Node(Generic("Hook", 31, {301}))
        .Node(Transition("ToHook", 300, 30, 31, {BoolCondition("armed", true)}))
        .Node(Transition("ToJab", 301, 31, 30, {BoolCondition("armed", false)}));

    EXPECT_EQ(FindingsOf(document.Text()), Codes{"VELL080 0"});
}

TEST(CheckLevels, FindATransitionThatLeavesItsLevelAndNothingBehindIt)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(BoolParameter("armed", false))
        .Parameter(BoolParameter("hit", false))
        .Node(Generic("Stand", 10, {100}))
        .Node(Transition("Draw", 100, 10, 20, {BoolCondition("armed", true)}))
        .Level("Fight", 20, 30)
        .Node(Generic("Jab", 30, {300}, 20))
        .Node(Transition("JabToStand", 300, 30, 10, {BoolCondition("hit", true)}));

    EXPECT_EQ(FindingsOf(document.Text()), Codes{"VELL081 10"});
}

TEST(CheckReach, LeavesTheWorkOfABlipAlone)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(BoolParameter("hit", false))
        .Parameter(BoolParameter("settled", false))
        .Node(Generic("Stand", 10))
        .Node(Generic("Hurt", 50, {500}))
        .Node(Transition("Settles", 500, 50, 51, {BoolCondition("settled", true)}))
        .Node(Exit("Done", 51))
        .GlobalNode(Global("Hits", 5, {501}))
        .GlobalNode(Transition("TakeHit", 501, 5, 50, {BoolCondition("hit", true)}));

    EXPECT_EQ(FindingsOf(document.Text()), Codes{"VELL122 \"Stand\""});
}

TEST(CheckMessages, MayBeEmptyWhereTheHostSetsOneOfSeveralTexts)
{
    const auto document = [](const std::string& fired, const std::string& other)
    {
        DocumentBuilder builder;
        builder.Start(10)
            .Parameter(MessageParameter("jump", fired))
            .Node(Generic("Stand", 10, {100}))
            .Node(Generic("Walk", 11, {101}))
            .Node(Transition("ToWalk", 100, 10, 11, {MessageCondition("jump", "now")}))
            .Node(Transition("ToStand", 101, 11, 10, {MessageCondition("jump", other)}));
        return FindingsOf(builder.Text());
    };

    EXPECT_TRUE(Has(document("", "now"), "VELL134 \"\""));
    EXPECT_EQ(document("", "later"), Codes());
    EXPECT_EQ(document("now", "later"), Codes());
}

TEST(CheckReach, FindsAnExitNodeOnTheMainStackThatNothingLeaves)
{
    const auto document = [](const std::vector<unsigned int>& levelTransitions)
    {
        DocumentBuilder builder;
        builder.Start(20)
            .Parameter(BoolParameter("armed", false))
            .Node(Substate("Fight", 20, 21, 22, levelTransitions))
            .Node(Enter("In", 21, 30, 20))
            .Node(Exit("Out", 22, 20))
            .Node(Generic("Jab", 30, {300}, 20))
            .Node(Transition("End", 300, 30, 22, {BoolCondition("armed", true)}))
            .Node(Generic("Stand", 10, {100}))
            .Node(Transition("Draw", 100, 10, 20, {BoolCondition("armed", true)}));
        if (!levelTransitions.empty())
        {
            builder.Node(Transition("Leave", 200, 20, 10, {BoolCondition("armed", false)}));
        }
        return FindingsOf(builder.Text());
    };

    EXPECT_TRUE(Has(document({}), "VELL135 \"Out\""));
    EXPECT_EQ(document({200}), Codes());
}

TEST(CheckMemory, AsksForJustWhatTheDocumentAndItsStatesNeed)
{
    const std::string text =
        TwoStates({BoolCondition("armed", true)}, {FloatCondition("speed", EvaluateLess, 0.5)})
            .Text();
    const source::Text read = source::ReadText(text);
    const check::DocumentModel model(read.root);
    const check::Loading loading = check::LoadDocument(model, text);
    const std::uint64_t bytes = loading.used + check::CountStateBytes(model);
    const auto needed = static_cast<int>((bytes + 99) / 100);
    const std::string member = "\"memory\":";
    const std::size_t begin = text.find(member) + member.size();
    const auto with = [&](int figure)
    {
        const std::size_t end = text.find_first_of(",}", begin);
        return FindingsOf(text.substr(0, begin) + std::to_string(figure) + text.substr(end));
    };

    EXPECT_TRUE(loading.isLoaded);
    EXPECT_TRUE(Has(with(needed - 1), "VELL150 " + std::to_string(needed - 1)));
    EXPECT_FALSE(Has(with(needed), "VELL150 " + std::to_string(needed)));
    EXPECT_TRUE(Has(with(0), "VELL150 0"));
}

TEST(ValueSet, CountsTheFloatsAsEqualThatAConditionCountsAsEqual)
{
    const std::string text = TwoWays(First({FloatCondition("speed", EvaluateEqual, 1.0)}),
                                     Second({FloatCondition("speed", EvaluateEqual, 0.01)}))
                                 .Text();
    const source::Text read = source::ReadText(text);
    const check::DocumentModel model(read.root);
    check::ValueSets sets;

    const check::HoldingSet one = sets.Find(model.nodes[3].conditions[0]);
    const check::HoldingSet small = sets.Find(model.nodes[4].conditions[0]);

    // From 0.99 to 1.01 as floats and, beside 0.01, from the first float above 0.
    ASSERT_EQ(one.values.size(), 1u);
    EXPECT_EQ(one.values[0].low, 0x3f7d70a4);
    EXPECT_EQ(one.values[0].high, 0x3f8147ae);
    ASSERT_EQ(small.values.size(), 1u);
    EXPECT_GT(small.values[0].low, 0);
}

} // namespace vell::test
