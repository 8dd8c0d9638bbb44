// VELL: data-driven hierarchical state machines.
// tests/machine/CheckLinesTest.cpp: checks that fail with the same words name different lines.
#include <vell/TransitionDef.h>

#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// Gives the first line that a check wrote while `act` ran, with its number.
template <class Act>
std::string FirstFailure(Act act)
{
    LogRecorder log;
    act();
    for (const LogLine& line : log.TakeRaw())
    {
        if (line.text.find("ERROR_BREAK") != std::string::npos)
        {
            return line.text;
        }
    }
    return "no line";
}

/// Expects a line of both, and that a reader can tell them apart.
void ExpectApart(const std::string& first, const std::string& second)
{
    EXPECT_NE(first, "no line");
    EXPECT_NE(second, "no line");
    EXPECT_NE(first, second);
}

template <class Condition>
void ExpectOperandsApart(const JsonObject& condition)
{
    const auto failureOf = [&](const char* value)
    {
        return FirstFailure(
            [&]
            {
                Built<Condition> built(
                    JsonObject(condition).Set(JSON_ConditionValue, Json::Raw(value)));
                EXPECT_EQ(built.result, 0);
            });
    };
    ExpectApart(failureOf("3"), failureOf("[3]"));
}

} // namespace

TEST(CheckLines, TellAConditionsValueThatIsNoArrayFromAnElementThatIsNoObject)
{
    ExpectOperandsApart<ConditionDefBool>(BoolCondition("x", true));
    ExpectOperandsApart<ConditionDefInteger>(IntCondition("x", 1, 3));
    ExpectOperandsApart<ConditionFloatDef>(FloatCondition("x", 1, 0.5));
    ExpectOperandsApart<ConditionDefMessage>(MessageCondition("x", "go"));
}

TEST(CheckLines, TellNoConditionsFromNoArena)
{
    const auto failureOf = [](const char* array)
    {
        return FirstFailure(
            [&]
            {
                TransitionDef transition;
                ParsedJson conditions{Json::Raw(array)};
                EXPECT_EQ(transition.InitConditions(*conditions, nullptr), 0);
            });
    };

    ExpectApart(failureOf("[]"), failureOf("[3]"));
}

TEST(CheckLines, TellAParametersDefaultThatIsNoArrayFromOneWithoutNumbers)
{
    const auto failureOf = [](const char* value)
    {
        return FirstFailure(
            [&]
            {
                const LoadedParameters loaded(
                    {VectorParameter(DURMBaseLib::PARAM_Float3, "x", "1,2,3")
                         .Set(JSON_ParameterDefault, Json::Raw(value))});
                EXPECT_EQ(loaded.result, 0);
            });
    };

    ExpectApart(failureOf("3"), failureOf("[3]"));
}

TEST(CheckLines, TellAnAttributesDataThatIsNoArrayFromAnElementThatIsNoObject)
{
    const auto failureOf = [](const char* element)
    {
        return FirstFailure(
            [&]
            {
                Arena alloc;
                OpenDef def;
                ParsedJson parsed{Json::Raw(element)};
                EXPECT_EQ(def.Init_Attrib(*parsed, &alloc), 0);
            });
    };

    ExpectApart(failureOf("{\"ATTRIB_Data\": 3}"), failureOf("{\"ATTRIB_Data\": [3]}"));
}

TEST(CheckLines, TellABrokenDocumentFromOneWithoutAHead)
{
    const auto failureOf = [](const char* text)
    {
        return FirstFailure(
            [&]
            {
                TestMachine machine;
                EXPECT_EQ(machine.Load(text), 0);
            });
    };

    ExpectApart(failureOf("{"), failureOf("{}"));
}

} // namespace vell::test
