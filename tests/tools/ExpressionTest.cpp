// VELL: data-driven hierarchical state machines.
// tests/tools/ExpressionTest.cpp: the grammar of `when`.
#include "tools/author/Expression.h"

#include <vell/ConditionDef.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using author::Expression;
using author::Literal;
using author::ReadExpression;

/// An expression in short: `not? NAME #OPERATOR VALUE[..HIGH]`.
std::string Shown(const std::string& text)
{
    const Expression expression = ReadExpression(text);
    if (!expression.error.message.empty())
    {
        return expression.error.message;
    }
    std::string shown = expression.isNegated ? "not " : "";
    shown += expression.parameter;
    shown += expression.evaluation == 0 ? "" : " #" + std::to_string(expression.evaluation);
    const Literal& value = expression.value;
    shown += value.kind == Literal::Kind::None   ? ""
             : value.kind == Literal::Kind::Text ? " '" + value.text + "'"
             : value.kind == Literal::Kind::Flag ? (value.flag ? " yes" : " no")
                                                 : " " + value.text;
    return shown + (expression.high.kind == Literal::Kind::None ? "" : ".." + expression.high.text);
}

struct Case
{
    const char* text;
    const char* expected;
};

} // namespace

TEST(Expression, ReadsEachForm)
{
    const std::vector<Case> cases = {
        {"sees", "sees"},
        {"not sees", "not sees"},
        {"  sees ", "sees"},
        {"sees == true", "sees #1 yes"},
        {"sees != false", "sees #2 no"},
        {"distance < 30", "distance #5 30"},
        {"distance<=30.5", "distance #6 30.5"},
        {"distance > -3", "distance #3 -3"},
        {"distance >= 1e-3", "distance #4 1e-3"},
        {"combo == 2", "combo #1 2"},
        {"combo in 3..9", "combo #10 3..9"},
        {"distance in -1.5..2.5", "distance #10 -1.5..2.5"},
        {"distance in 1 .. 2", "distance #10 1..2"},
        {"distance not in 5..10", "not distance #10 5..10"},
        {"use == 'door'", "use #1 'door'"},
        {"use == \"door\"", "use #1 'door'"},
        {"use == 'it''s'", "use #1 'it's'"},
        {"'my speed' > 3", "my speed #3 3"},
        {"hero.health < 1", "hero.health #5 1"},
        {"left-hand", "left-hand"},
        {"after == 1", "after #1 1"},
        {"notable", "notable"},
        {"\xc3\xa4rger", "\xc3\xa4rger"},
    };

    for (const Case& each : cases)
    {
        EXPECT_EQ(Shown(each.text), each.expected) << each.text;
    }
}

TEST(Expression, SaysWhatIsWrongAndWhatToWrite)
{
    struct Wrong
    {
        const char* text;
        const char* message;
        const char* hint;
    };
    const std::vector<Wrong> cases = {
        {"", "a parameter's name is missing", ""},
        {"not", "a parameter's name is missing", ""},
        {"!sees", "'!' is not known here", "write 'not sees'"},
        {"sees = true", "'=' is not known here", "write '=='"},
        {"sees or near", "a condition has no 'or'",
         "write a list, any one of which is enough: [\"sees\", \"near\"]"},
        {"0.2 < x", "a condition begins with the parameter, not with a number", "write 'x > 0.2'"},
        {"0.2 < x < 3", "a condition begins with the parameter, not with a number",
         "write 'x in 0.2..3'"},
        {"x > 1 < 3", "one comparison is all that a condition has", "write a range: 'x in 5..10'"},
        {"x <", "a value is missing behind '<'", ""},
        {"x in 5", "'..' is expected between the bounds of a range", "write 'x in 5..10'"},
        {"x in 'a'..'b'", "a range has two numbers, such as 5..10", ""},
        {"x not 5", "'in' is expected behind 'not'", "write 'not x', or 'x not in 5..10'"},
        {"not x < 3", "'not' is for a name alone",
         "turn the operator round, such as '<' into '>='"},
        {"x < .5", "'.5' is not written as a number is",
         "write a digit on both sides of the point"},
        {"x < 05", "'05' is not written as a number is", "leave the zeros at its front out"},
        {"use == 'door", "this text has no closing quote", ""},
        {"x == y",
         "'y' is no value: a condition compares a parameter with a number, true, false or a text",
         "write a text in quotes: 'y'"},
        {"x near 3", "'near' is no operator",
         "the operators are ==, !=, <, <=, >, >=, in and not in"},
        {"x < 3 y", "nothing is expected behind this condition, but there is 'y'", ""},
        {"after 3s", "a machine has no timers",
         "let the host count, or use a parameter; see 'After a time' in docs/recipes.md"},
    };

    for (const Wrong& each : cases)
    {
        const Expression expression = ReadExpression(each.text);

        EXPECT_EQ(expression.error.message, each.message) << each.text;
        EXPECT_EQ(expression.error.hint, each.hint) << each.text;
    }
}

TEST(Expression, RefusesAConjunctionAndNamesARecipe)
{
    for (const std::string text : {"sees and near", "sees && near", "x < 3 & y > 2"})
    {
        const Expression expression = ReadExpression(text);

        EXPECT_NE(expression.error.message.find("any one of which is enough"), std::string::npos)
            << text;
        EXPECT_NE(expression.error.hint.find("docs/recipes.md"), std::string::npos) << text;
    }
}

TEST(Expression, KeepsThePlacesOfItsParts)
{
    const Expression expression = ReadExpression("distance not in 5..10");

    EXPECT_EQ(expression.parameterBegin, 0u);
    EXPECT_EQ(expression.parameterEnd, 8u);
    EXPECT_EQ(expression.operatorBegin, 9u);
    EXPECT_EQ(expression.operatorEnd, 15u);
    EXPECT_EQ(expression.value.begin, 16u);
    EXPECT_EQ(expression.high.end, 21u);
}

TEST(Expression, QuotesANameThatIsNoPlainWord)
{
    for (const Case& each : std::vector<Case>{{"speed", "speed"},
                                              {"my speed", "'my speed'"},
                                              {"not", "'not'"},
                                              {"a..b", "'a..b'"},
                                              {"3rd", "'3rd'"},
                                              {"", "''"},
                                              {"it's", "'it''s'"}})
    {
        EXPECT_EQ(author::NameInExpression(each.text), each.expected);
        if (*each.text != '\0')
        {
            EXPECT_EQ(ReadExpression(author::NameInExpression(each.text)).parameter, each.text);
        }
    }
}

} // namespace vell::test
