// VELL: data-driven hierarchical state machines.
// tools/author/Expression.h: the small grammar of `when`.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::author
{

/// What is wrong with an expression, and where: bytes `begin` to `end` of its text.
struct ExpressionError
{
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string message; ///< empty when nothing is wrong
    std::string hint;
};

/// A literal, with its place in the text.
struct Literal
{
    enum class Kind
    {
        None,
        Flag,
        Number,
        Text
    };

    Kind kind = Kind::None;
    std::string text; ///< of a number: as written; of a text: without quotes
    bool flag = false;
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// An expression that was read. The forms are
///     NAME   not NAME   NAME OPERATOR VALUE   NAME in LOW..HIGH   NAME not in LOW..HIGH
struct Expression
{
    std::string parameter;
    std::size_t parameterBegin = 0;
    std::size_t parameterEnd = 0;
    int evaluation = 0;     ///< number of the operator; 0 for a name alone
    bool isNegated = false; ///< by `not`
    Literal value;          ///< of a range: its lower bound
    Literal high;
    std::size_t operatorBegin = 0;
    std::size_t operatorEnd = 0;
    ExpressionError error;
};

/// Reads an expression. What is wrong with it is in its `error`.
Expression ReadExpression(std::string_view text);

/// Gives a name as an expression has it: in single quotes unless it is a plain word.
std::string NameInExpression(std::string_view name);
/// Gives a text in single quotes.
std::string TextInExpression(std::string_view text);
/// Gives `<` for the number of an operator other than `range`; null for one without a sign.
const char* SignOf(int evaluation);

} // namespace vell::author
