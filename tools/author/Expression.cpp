// VELL: data-driven hierarchical state machines.
// tools/author/Expression.cpp: reading expressions, with a hint for what people write elsewhere.
#include "tools/author/Expression.h"

#include <vell/ConditionDef.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>
#include <utility>

namespace vell::author
{
namespace
{

struct Token
{
    enum class Kind
    {
        End,
        Word,
        Number,
        Text, ///< in quotes
        Sign,
        Dots,
        Other
    };

    Kind kind = Kind::End;
    std::string text; ///< of a text: without quotes
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isClosed = true; ///< of a text: it has its closing quote
};

struct Sign
{
    const char* text;
    int evaluation;
};

constexpr Sign kSigns[] = {
    {"==", EvaluateEqual},          {"!=", EvaluateNotEqual}, {"<=", EvaluateLessOrEqual},
    {">=", EvaluateGreaterOrEqual}, {"<", EvaluateLess},      {">", EvaluateGreater},
};

/// Signs of other languages.
constexpr const char* kForeignSigns[] = {"&&", "||", "=", "!", "(", ")", "+", "*", "/", "&", "|"};

bool IsWordStart(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return std::isalpha(byte) != 0 || c == '_' || byte >= 0x80;
}

bool IsWordPart(char c)
{
    return IsWordStart(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '-';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

class Lexer
{
public:
    explicit Lexer(std::string_view newText) : text(newText)
    {
    }

    Token Next()
    {
        while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])) != 0)
        {
            ++at;
        }
        Token token;
        token.begin = at;
        if (at < text.size())
        {
            Read(token);
        }
        token.end = at;
        return token;
    }

private:
    char Peek(std::size_t ahead = 0) const
    {
        return at + ahead < text.size() ? text[at + ahead] : '\0';
    }

    void Take(Token& token, Token::Kind kind, std::size_t count)
    {
        token.kind = kind;
        token.text = text.substr(at, count);
        at += count;
    }

    void Read(Token& token)
    {
        const char c = Peek();
        if (IsWordStart(c))
        {
            ReadWord(token);
        }
        else if (IsDigit(c) || (c == '-' && (IsDigit(Peek(1)) || Peek(1) == '.')) ||
                 (c == '.' && IsDigit(Peek(1))))
        {
            ReadNumber(token);
        }
        else if (c == '\'' || c == '"')
        {
            ReadText(token, c);
        }
        else if (c == '.' && Peek(1) == '.')
        {
            Take(token, Token::Kind::Dots, Peek(2) == '.' ? 3 : 2);
        }
        else
        {
            ReadSign(token);
        }
    }

    /// A word may have single dots within.
    void ReadWord(Token& token)
    {
        std::size_t size = 1;
        while (IsWordPart(Peek(size)) || (Peek(size) == '.' && IsWordStart(Peek(size + 1))))
        {
            ++size;
        }
        Take(token, Token::Kind::Word, size);
    }

    void ReadNumber(Token& token)
    {
        std::size_t size = Peek() == '-' ? 1 : 0;
        const auto takeDigits = [this, &size]
        {
            while (IsDigit(Peek(size)))
            {
                ++size;
            }
        };
        takeDigits();
        if (Peek(size) == '.' && Peek(size + 1) != '.')
        {
            ++size;
            takeDigits();
        }
        const std::size_t sign = Peek(size + 1) == '-' || Peek(size + 1) == '+' ? 1 : 0;
        if ((Peek(size) == 'e' || Peek(size) == 'E') && IsDigit(Peek(size + 1 + sign)))
        {
            size += 1 + sign;
            takeDigits();
        }
        Take(token, Token::Kind::Number, size);
    }

    /// A quote within the text is doubled.
    void ReadText(Token& token, char quote)
    {
        token.kind = Token::Kind::Text;
        for (++at; at < text.size(); ++at)
        {
            if (text[at] == quote && Peek(1) != quote)
            {
                ++at;
                return;
            }
            at += text[at] == quote ? 1 : 0;
            token.text += text[at];
        }
        token.isClosed = false;
    }

    void ReadSign(Token& token)
    {
        for (const Sign& sign : kSigns)
        {
            if (text.substr(at, std::string_view(sign.text).size()) == sign.text)
            {
                Take(token, Token::Kind::Sign, std::string_view(sign.text).size());
                return;
            }
        }
        for (const std::string_view sign : kForeignSigns)
        {
            if (text.substr(at, sign.size()) == sign)
            {
                Take(token, Token::Kind::Other, sign.size());
                return;
            }
        }
        Take(token, Token::Kind::Other, 1);
    }

    std::string_view text;
    std::size_t at = 0;
};

class Parser
{
public:
    explicit Parser(std::string_view newText) : text(newText), lexer(newText), token(lexer.Next())
    {
    }

    Expression Read()
    {
        ReadCondition();
        if (!HasFailed() && token.kind != Token::Kind::End)
        {
            FailBehind();
        }
        return std::move(result);
    }

private:
    bool HasFailed() const
    {
        return !result.error.message.empty();
    }

    void FailAt(std::size_t begin, std::size_t end, std::string message, std::string hint = {})
    {
        if (!HasFailed())
        {
            result.error = {begin, end, std::move(message), std::move(hint)};
        }
    }

    void Fail(std::string message, std::string hint = {})
    {
        FailAt(token.begin, token.end, std::move(message), std::move(hint));
    }

    void Advance()
    {
        token = lexer.Next();
    }

    bool IsWord(const char* word) const
    {
        return token.kind == Token::Kind::Word && token.text == word;
    }

    bool IsOther(const char* sign) const
    {
        return token.kind == Token::Kind::Other && token.text == sign;
    }

    static std::string Trimmed(std::string_view piece)
    {
        const std::size_t begin = piece.find_first_not_of(' ');
        const std::size_t end = piece.find_last_not_of(' ') + 1;
        return begin == std::string_view::npos ? "" : std::string(piece.substr(begin, end - begin));
    }

    void ReadCondition()
    {
        if (IsWord("not"))
        {
            result.isNegated = true;
            Advance();
            ReadName();
            if (!HasFailed() && token.kind == Token::Kind::Sign)
            {
                FailAt(0, token.end, "'not' is for a name alone",
                       "turn the operator round, such as '<' into '>='");
            }
            return;
        }
        ReadName();
        if (HasFailed() || token.kind == Token::Kind::End)
        {
            return;
        }
        result.operatorBegin = token.begin;
        if (IsWord("not"))
        {
            result.isNegated = true;
            Advance();
            if (!IsWord("in"))
            {
                Fail("'in' is expected behind 'not'",
                     "write 'not " + NameInExpression(result.parameter) + "', or '" +
                         NameInExpression(result.parameter) + " not in 5..10'");
                return;
            }
        }
        if (IsWord("in"))
        {
            ReadRange();
        }
        else if (token.kind == Token::Kind::Sign)
        {
            ReadComparison();
        }
    }

    void ReadName()
    {
        if (token.kind == Token::Kind::Word || (token.kind == Token::Kind::Text && token.isClosed))
        {
            result.parameter = token.text;
            result.parameterBegin = token.begin;
            result.parameterEnd = token.end;
            if (token.text.empty())
            {
                Fail("a parameter's name is expected here, not an empty text");
            }
            Advance();
        }
        else if (IsOther("!"))
        {
            Fail("'!' is not known here", "write 'not " + Trimmed(text.substr(token.end)) + "'");
        }
        else if (token.kind == Token::Kind::Number)
        {
            FailNumberFirst();
        }
        else if (token.kind == Token::Kind::End)
        {
            Fail("a parameter's name is missing");
        }
        else
        {
            Fail("a parameter's name is expected here, not '" + token.text + "'");
        }
    }

    /// `0.2 < x < 3` is a range, and `0.2 < x` a comparison the other way round.
    void FailNumberFirst()
    {
        const Token number = token;
        Lexer ahead = lexer;
        const Token sign = ahead.Next();
        const Token name = ahead.Next();
        const Token second = ahead.Next();
        const Token high = ahead.Next();
        std::string hint = "write it the other way round, such as 'distance < 30'";
        if (sign.kind == Token::Kind::Sign && name.kind == Token::Kind::Word)
        {
            const std::string turned = sign.text[0] == '<'   ? ">" + sign.text.substr(1)
                                       : sign.text[0] == '>' ? "<" + sign.text.substr(1)
                                                             : sign.text;
            hint = "write '" + name.text + " " + turned + " " + number.text + "'";
            if (second.kind == Token::Kind::Sign && high.kind == Token::Kind::Number)
            {
                hint = "write '" + name.text + " in " + number.text + ".." + high.text + "'";
            }
        }
        Fail("a condition begins with the parameter, not with a number", hint);
    }

    void ReadComparison()
    {
        for (const Sign& sign : kSigns)
        {
            result.evaluation = token.text == sign.text ? sign.evaluation : result.evaluation;
        }
        result.operatorEnd = token.end;
        const std::string sign = token.text;
        Advance();
        result.value = ReadLiteral("behind '" + sign + "'");
        if (!HasFailed() && token.kind == Token::Kind::Sign)
        {
            FailAt(result.operatorBegin, token.end, "one comparison is all that a condition has",
                   "write a range: '" + NameInExpression(result.parameter) + " in 5..10'");
        }
    }

    void ReadRange()
    {
        result.evaluation = EvaluateInRange;
        result.operatorEnd = token.end;
        Advance();
        result.value = ReadBound("behind 'in'");
        if (HasFailed())
        {
            return;
        }
        if (token.kind != Token::Kind::Dots || token.text.size() != 2)
        {
            Fail("'..' is expected between the bounds of a range",
                 "write '" + NameInExpression(result.parameter) + " in " + result.value.text +
                     "..10'");
            return;
        }
        Advance();
        result.high = ReadBound("behind '..'");
    }

    Literal ReadBound(const std::string& place)
    {
        Literal bound = ReadLiteral(place);
        if (!HasFailed() && bound.kind != Literal::Kind::Number)
        {
            FailAt(bound.begin, bound.end, "a range has two numbers, such as 5..10");
        }
        return bound;
    }

    Literal ReadLiteral(const std::string& place)
    {
        Literal literal;
        literal.begin = token.begin;
        literal.end = token.end;
        literal.text = token.text;
        if (token.kind == Token::Kind::Number)
        {
            literal.kind = Literal::Kind::Number;
            CheckNumber();
        }
        else if (token.kind == Token::Kind::Text)
        {
            literal.kind = Literal::Kind::Text;
            if (!token.isClosed)
            {
                Fail("this text has no closing quote");
            }
        }
        else if (IsWord("true") || IsWord("false"))
        {
            literal.kind = Literal::Kind::Flag;
            literal.flag = token.text == "true";
        }
        else
        {
            FailNoLiteral(place);
        }
        Advance();
        return literal;
    }

    void FailNoLiteral(const std::string& place)
    {
        if (token.kind == Token::Kind::Word)
        {
            Fail("'" + token.text + "' is no value: a condition compares a parameter with a " +
                     "number, true, false or a text",
                 "write a text in quotes: '" + token.text + "'");
        }
        else if (token.kind == Token::Kind::End)
        {
            FailAt(result.operatorBegin, token.end, "a value is missing " + place);
        }
        else
        {
            Fail("a value is expected " + place + ", not '" + token.text + "'");
        }
    }

    /// A number is written as in JSON.
    void CheckNumber()
    {
        const std::string digits = token.text.substr(token.text[0] == '-' ? 1 : 0);
        const bool isZeroLed = digits.size() > 1 && digits[0] == '0' && IsDigit(digits[1]);
        const std::size_t point = digits.find('.');
        const bool isBare =
            point == 0 || (point != std::string::npos &&
                           (point + 1 == digits.size() || !IsDigit(digits[point + 1])));
        if (isZeroLed || isBare)
        {
            Fail("'" + token.text + "' is not written as a number is",
                 isZeroLed ? "leave the zeros at its front out"
                           : "write a digit on both sides of the point");
        }
    }

    void FailBehind()
    {
        if (IsWord("and") || IsOther("&&") || IsOther("&"))
        {
            Fail("a condition has no '" + token.text +
                     "': the conditions of a transition are alternatives, any one of which is "
                     "enough",
                 "let the host set one parameter from both; see 'Several conditions at once' in "
                 "docs/recipes.md");
        }
        else if (IsWord("or") || IsOther("||") || IsOther("|"))
        {
            Fail("a condition has no '" + token.text + "'",
                 "write a list, any one of which is enough: [\"" +
                     Trimmed(text.substr(0, token.begin)) + "\", \"" +
                     Trimmed(text.substr(token.end)) + "\"]");
        }
        else if (IsOther("="))
        {
            Fail("'=' is not known here", "write '=='");
        }
        else if (result.parameter == "after")
        {
            FailAt(0, text.size(), "a machine has no timers",
                   "let the host count, or use a parameter; see 'After a time' in docs/recipes.md");
        }
        else
        {
            FailUnknown();
        }
    }

    void FailUnknown()
    {
        const bool isWhole = result.evaluation != 0 || result.isNegated;
        Fail(isWhole
                 ? "nothing is expected behind this condition, but there is '" + token.text + "'"
                 : "'" + token.text + "' is no operator",
             isWhole ? "" : "the operators are ==, !=, <, <=, >, >=, in and not in");
    }

    std::string_view text;
    Lexer lexer;
    Token token;
    Expression result;
};

bool IsKeyword(std::string_view word)
{
    static constexpr std::string_view kKeywords[] = {"not",  "in",    "and",  "or",
                                                     "true", "false", "after"};
    return std::find(std::begin(kKeywords), std::end(kKeywords), word) != std::end(kKeywords);
}

} // namespace

Expression ReadExpression(std::string_view text)
{
    return Parser(text).Read();
}

std::string NameInExpression(std::string_view name)
{
    const Token token = Lexer(name).Next();
    const bool isPlain =
        token.kind == Token::Kind::Word && token.end == name.size() && token.begin == 0;
    return isPlain && !IsKeyword(name) ? std::string(name) : TextInExpression(name);
}

std::string TextInExpression(std::string_view text)
{
    std::string quoted = "'";
    for (const char c : text)
    {
        quoted += c == '\'' ? "''" : std::string(1, c);
    }
    return quoted + "'";
}

const char* SignOf(int evaluation)
{
    for (const Sign& sign : kSigns)
    {
        if (sign.evaluation == evaluation)
        {
            return sign.text;
        }
    }
    return nullptr;
}

} // namespace vell::author
