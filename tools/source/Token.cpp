// VELL: data-driven hierarchical state machines.
// tools/source/Token.cpp: how texts, numbers and words are read, and what is wrong with them.
#include "tools/source/Token.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace vell::source
{
namespace
{

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsWordCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

struct ForeignBlank
{
    std::string_view bytes;
    const char* name;
};

constexpr ForeignBlank kForeignBlanks[] = {
    {"\xc2\xa0", "a no-break space (U+00A0)"},
    {"\xe2\x80\xaf", "a narrow no-break space (U+202F)"},
    {"\xe2\x80\x8b", "a zero-width space (U+200B)"},
    {"\xe2\x80\x83", "an em space (U+2003)"},
    {"\xe2\x80\x82", "an en space (U+2002)"},
    {"\xe2\x80\xa8", "a line separator (U+2028)"},
    {"\xe3\x80\x80", "an ideographic space (U+3000)"},
    {"\xef\xbb\xbf", "a byte order mark (U+FEFF)"},
};

/// Finds the blank at the front of `text`, or null.
const ForeignBlank* FindForeignBlank(std::string_view text)
{
    if (text.empty() || static_cast<unsigned char>(text[0]) < 0x80)
    {
        return nullptr;
    }
    for (const ForeignBlank& blank : kForeignBlanks)
    {
        if (text.substr(0, blank.bytes.size()) == blank.bytes)
        {
            return &blank;
        }
    }
    return nullptr;
}

enum class Quote
{
    None,
    Single,   ///< U+2018 to U+201B
    Double,   ///< U+201C to U+201F
    Guillemet ///< U+00AB and U+00BB
};

/// Gives the kind of the typographic quote at the front of `text`.
Quote FindTypographicQuote(std::string_view text)
{
    const auto byte = [text](std::size_t i)
    {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    if (byte(0) == 0xe2 && byte(1) == 0x80 && byte(2) >= 0x98 && byte(2) <= 0x9f)
    {
        return byte(2) < 0x9c ? Quote::Single : Quote::Double;
    }
    const bool isGuillemet = byte(0) == 0xc2 && (byte(1) == 0xab || byte(1) == 0xbb);
    return isGuillemet ? Quote::Guillemet : Quote::None;
}

std::string Hexadecimal(unsigned char byte)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    return {'0', 'x', kDigits[byte >> 4u], kDigits[byte & 15u]};
}

void AppendUtf8(std::string& text, unsigned int code)
{
    const auto byte = [&text](unsigned int value)
    {
        text += static_cast<char>(static_cast<unsigned char>(value));
    };
    if (code < 0x80)
    {
        byte(code);
    }
    else if (code < 0x800)
    {
        byte(0xc0u | (code >> 6u));
        byte(0x80u | (code & 0x3fu));
    }
    else if (code < 0x10000)
    {
        byte(0xe0u | (code >> 12u));
        byte(0x80u | ((code >> 6u) & 0x3fu));
        byte(0x80u | (code & 0x3fu));
    }
    else
    {
        byte(0xf0u | (code >> 18u));
        byte(0x80u | ((code >> 12u) & 0x3fu));
        byte(0x80u | ((code >> 6u) & 0x3fu));
        byte(0x80u | (code & 0x3fu));
    }
}

/// Gives what is wrong with the digits of a number, or null when nothing is.
const char* FindNumberMistake(std::string_view text)
{
    std::size_t at = 0;
    const auto skipDigits = [text, &at]
    {
        const std::size_t begin = at;
        while (at < text.size() && IsDigit(text[at]))
        {
            ++at;
        }
        return at - begin;
    };
    if (text[0] == '+')
    {
        return "a number may not begin with '+'";
    }
    at += text[0] == '-' ? 1 : 0;
    const std::size_t begin = at;
    const std::size_t whole = skipDigits();
    if (whole == 0)
    {
        return "a digit is missing at the front of this number";
    }
    if (whole > 1 && text[begin] == '0')
    {
        return "a number may not begin with a 0 before other digits";
    }
    if (at < text.size() && text[at] == '.')
    {
        ++at;
        if (skipDigits() == 0)
        {
            return "a digit is missing behind the decimal point";
        }
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E'))
    {
        ++at;
        at += at < text.size() && (text[at] == '+' || text[at] == '-') ? 1 : 0;
        if (skipDigits() == 0)
        {
            return "a digit is missing in the exponent";
        }
    }
    return at < text.size() ? "this is not a number" : nullptr;
}

/// Gives what a text that is not a number is meant to be, or an empty text.
std::string MeantNumber(const std::string& text)
{
    const bool isNegative = text[0] == '-';
    std::string meant = text.substr(isNegative || text[0] == '+' ? 1 : 0);
    const bool isHexadecimal =
        meant.size() > 2 && meant[0] == '0' && (meant[1] == 'x' || meant[1] == 'X');
    if (isHexadecimal)
    {
        std::uint64_t number = 0;
        const char* end = meant.data() + meant.size();
        const auto read = std::from_chars(meant.data() + 2, end, number, 16);
        meant = read.ec == std::errc() && read.ptr == end ? std::to_string(number) : "";
    }
    while (meant.size() > 1 && meant[0] == '0' && IsDigit(meant[1]))
    {
        meant.erase(0, 1);
    }
    meant = (!meant.empty() && meant[0] == '.' ? "0" : "") + meant;
    meant += !meant.empty() && meant.back() == '.' ? "0" : "";
    const std::string signedText = (isNegative ? "-" : "") + meant;
    return meant.empty() || FindNumberMistake(signedText) != nullptr ? "" : signedText;
}

/// Sets the number as the library's parser reads it. False when it finds it too large.
bool SetNumber(Value& value)
{
    const std::string& text = value.text;
    const char* end = text.data() + text.size();
    std::uint64_t natural = 0;
    std::int64_t whole = 0;
    if (const auto read = std::from_chars(text.data(), end, natural);
        read.ec == std::errc() && read.ptr == end)
    {
        value.kind = Kind::UInt;
        value.bits = natural;
        value.number = static_cast<double>(natural);
        return true;
    }
    if (const auto read = std::from_chars(text.data(), end, whole);
        read.ec == std::errc() && read.ptr == end)
    {
        value.kind = whole < 0 ? Kind::Int : Kind::UInt;
        value.bits = static_cast<std::uint64_t>(whole);
        value.number = static_cast<double>(whole);
        return true;
    }
    value.kind = Kind::Double;
    rapidjson::Document parsed;
    parsed.Parse(text.c_str());
    if (!parsed.HasParseError() && parsed.IsNumber())
    {
        value.number = parsed.GetDouble();
        return true;
    }
    value.number = std::strtod(text.c_str(), nullptr);
    return false;
}

std::string ToLower(std::string text)
{
    for (char& c : text)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

} // namespace

Problem& TokenReader::Report(Flaw flaw, Span where, std::string message, std::string hint)
{
    Problem problem;
    problem.flaw = flaw;
    problem.where = where;
    problem.message = std::move(message);
    problem.hint = std::move(hint);
    problems.push_back(std::move(problem));
    return problems.back();
}

Problem& TokenReader::Fail(Flaw flaw, Span where, std::string message, std::string hint)
{
    hasFailed = true;
    return Report(flaw, where, std::move(message), std::move(hint));
}

Value TokenReader::ReadScalar()
{
    const char next = cursor.Peek();
    if (next == '"' || next == '\'')
    {
        return ReadQuoted(next);
    }
    if (FindTypographicQuote(cursor.Rest()) != Quote::None)
    {
        return ReadTypographic();
    }
    if (IsDigit(next) || next == '-' || next == '+' || (next == '.' && IsDigit(cursor.Peek(1))))
    {
        return ReadNumber();
    }
    return ReadWord();
}

Value TokenReader::ReadName()
{
    const char next = cursor.Peek();
    if (next == '"' || next == '\'')
    {
        return ReadQuoted(next);
    }
    if (FindTypographicQuote(cursor.Rest()) != Quote::None)
    {
        return ReadTypographic();
    }
    Value name;
    name.kind = Kind::String;
    name.span.begin = cursor.Here();
    name.text = TakeWord();
    name.span.end = cursor.Here();
    if (name.text.empty())
    {
        cursor.AdvanceCharacter();
        name.span.end = cursor.Here();
        Fail(Flaw::Name, name.span, "a member's name is expected here",
             "write it in double quotes");
        return name;
    }
    Report(Flaw::Name, name.span, "the name '" + name.text + "' is not in quotes",
           "write \"" + name.text + "\"");
    return name;
}

Value TokenReader::ReadQuoted(char quote)
{
    Value value;
    value.kind = Kind::String;
    value.span.begin = cursor.Here();
    cursor.Advance();
    bool hasReportedByte = false;
    value.text = cursor.TakePlain(quote);
    while (!cursor.AtEnd() && cursor.Peek() != '\n' && cursor.Peek() != quote)
    {
        ReadCharacter(value, hasReportedByte);
        value.text += cursor.TakePlain(quote);
    }
    if (cursor.Peek() != quote)
    {
        value.span.end = cursor.Here();
        Fail(Flaw::OpenText, value.span, "this text has no closing quote before the line's end",
             "add the quote; a new line within a text is written \\n");
        return value;
    }
    cursor.Advance();
    value.span.end = cursor.Here();
    if (quote != '"')
    {
        Report(Flaw::Word, value.span, "single quotes are not allowed",
               "write \"" + value.text + "\"");
    }
    return value;
}

/// Reads a text in quotes such as a word processor writes, up to the next one of that kind or a
/// plain one.
Value TokenReader::ReadTypographic()
{
    const Quote quote = FindTypographicQuote(cursor.Rest());
    Value value;
    value.kind = Kind::String;
    value.span.begin = cursor.Here();
    cursor.AdvanceCharacter();
    const std::size_t begin = cursor.Offset();
    while (!cursor.AtEnd() && cursor.Peek() != '\n' && cursor.Peek() != '"' &&
           FindTypographicQuote(cursor.Rest()) != quote)
    {
        cursor.AdvanceCharacter();
    }
    value.text = cursor.From(begin);
    const bool isClosed = !cursor.AtEnd() && cursor.Peek() != '\n';
    if (isClosed)
    {
        cursor.AdvanceCharacter();
    }
    value.span.end = cursor.Here();
    const char* const message = "typographic quotes are not allowed";
    if (!isClosed)
    {
        Fail(Flaw::Word, value.span, message, "write \" at both ends of the text");
        return value;
    }
    Report(Flaw::Word, value.span, message, "write \"" + value.text + "\"");
    return value;
}

/// Reads one character of a text that is not its end.
void TokenReader::ReadCharacter(Value& value, bool& hasReportedByte)
{
    const Place begin = cursor.Here();
    const char next = cursor.Peek();
    if (next == '\\')
    {
        ReadEscape(value);
        return;
    }
    const std::size_t from = cursor.Offset();
    const std::size_t size = cursor.AdvanceCharacter();
    value.text += cursor.From(from);
    if (size == 0 && !hasReportedByte)
    {
        hasReportedByte = true;
        Report(Flaw::NotUtf8, {begin, cursor.Here()},
               "the byte " + Hexadecimal(static_cast<unsigned char>(next)) + " is not UTF-8",
               "save the file as UTF-8");
    }
    else if (static_cast<unsigned char>(next) < 0x20)
    {
        const std::string name = next == '\t'   ? "a tab"
                                 : next == '\r' ? "a carriage return"
                                                : "the control character " +
                                                      Hexadecimal(static_cast<unsigned char>(next));
        Report(Flaw::ControlCharacter, {begin, cursor.Here()},
               name + " is not allowed within a text",
               next == '\t'   ? "write \\t"
               : next == '\r' ? "write \\r"
                              : "remove it");
    }
}

void TokenReader::ReadEscape(Value& value)
{
    const Place begin = cursor.Here();
    cursor.Advance();
    constexpr std::string_view kEscapes = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const std::size_t found =
        cursor.Peek() == '\0' ? std::string_view::npos : kEscapes.find(cursor.Peek());
    if (found != std::string_view::npos)
    {
        value.text += kMeanings[found];
        cursor.Advance();
        return;
    }
    if (cursor.Peek() == 'u')
    {
        cursor.Advance();
        ReadUnicodeEscape(begin, value);
        return;
    }
    std::string character;
    if (!cursor.AtEnd() && cursor.Peek() != '\n')
    {
        const std::size_t from = cursor.Offset();
        cursor.AdvanceCharacter();
        character = cursor.From(from);
        value.text += character;
    }
    Report(Flaw::Escape, {begin, cursor.Here()}, "'\\" + character + "' is not an escape",
           "a backslash is written \\\\");
}

void TokenReader::ReadUnicodeEscape(const Place& begin, Value& value)
{
    unsigned int unit = 0;
    if (!ReadHex4(unit))
    {
        Report(Flaw::Escape, {begin, cursor.Here()},
               "'\\u' needs four hexadecimal digits behind it");
        return;
    }
    unsigned int second = 0;
    if (unit >= 0xd800 && unit <= 0xdbff)
    {
        const bool isPair = cursor.Peek() == '\\' && cursor.Peek(1) == 'u';
        cursor.Advance(isPair ? 2 : 0);
        if (!isPair || !ReadHex4(second) || second < 0xdc00 || second > 0xdfff)
        {
            Report(Flaw::Escape, {begin, cursor.Here()},
                   "this is the first half of a character, and the second half is missing");
            return;
        }
        unit = 0x10000u + ((unit - 0xd800u) << 10u) + (second - 0xdc00u);
    }
    else if (unit >= 0xdc00 && unit <= 0xdfff)
    {
        Report(Flaw::NotUtf8, {begin, cursor.Here()},
               "this is the second half of a character, and the first half is missing");
    }
    else if (unit == 0)
    {
        Report(Flaw::NulCharacter, {begin, cursor.Here()},
               "a NUL character ends this text for the library", "remove it");
    }
    AppendUtf8(value.text, unit);
}

bool TokenReader::ReadHex4(unsigned int& unit)
{
    unit = 0;
    for (int i = 0; i < 4; ++i)
    {
        const char next = cursor.Peek();
        if (std::isxdigit(static_cast<unsigned char>(next)) == 0)
        {
            return false;
        }
        const int lower = std::tolower(static_cast<unsigned char>(next));
        unit = unit * 16 + static_cast<unsigned int>(IsDigit(next) ? next - '0' : lower - 'a' + 10);
        cursor.Advance();
    }
    return true;
}

Value TokenReader::ReadNumber()
{
    Value value;
    value.span.begin = cursor.Here();
    const std::size_t begin = cursor.Offset();
    while ((IsWordCharacter(cursor.Peek()) || cursor.Peek() == '.' || cursor.Peek() == '+' ||
            cursor.Peek() == '-') &&
           FindForeignBlank(cursor.Rest()) == nullptr)
    {
        cursor.AdvanceCharacter();
    }
    value.text = cursor.From(begin);
    value.span.end = cursor.Here();
    const char* mistake = FindNumberMistake(value.text);
    if (!SetNumber(value) && mistake == nullptr)
    {
        mistake = "this number is too large";
    }
    if (mistake != nullptr)
    {
        ReportNumber(value, mistake);
    }
    return value;
}

/// The value is then what is meant, or it would be reported once more.
void TokenReader::ReportNumber(Value& value, const char* mistake)
{
    const std::string written = value.text;
    const std::string meant = MeantNumber(written);
    const bool isNumber = !meant.empty() && meant != written;
    if (isNumber)
    {
        value.text = meant;
        SetNumber(value);
    }
    Report(Flaw::Number, value.span, std::string(mistake) + ": " + written,
           isNumber ? "write " + meant : "");
}

bool TokenReader::ReadDecimalComma(Value& number)
{
    if (!number.IsNumber() || number.span.end.offset != cursor.Offset() || cursor.Peek() != ',' ||
        !IsDigit(cursor.Peek(1)) ||
        number.text.find_first_not_of("-0123456789") != std::string::npos)
    {
        return false;
    }
    cursor.Advance();
    const std::size_t begin = cursor.Offset();
    while (IsDigit(cursor.Peek()))
    {
        cursor.Advance();
    }
    number.text += "." + std::string(cursor.From(begin));
    number.span.end = cursor.Here();
    SetNumber(number);
    Report(Flaw::Number, number.span, "a decimal point is written '.'", "write " + number.text);
    return true;
}

bool TokenReader::SkipForeignBlank()
{
    const ForeignBlank* blank = FindForeignBlank(cursor.Rest());
    if (blank == nullptr)
    {
        return false;
    }
    const Place begin = cursor.Here();
    cursor.AdvanceCharacter();
    if (begin.line != lineOfBlank)
    {
        lineOfBlank = begin.line;
        Report(Flaw::Character, {begin, cursor.Here()},
               std::string(blank->name) + " is not allowed here", "write a plain space");
    }
    return true;
}

std::string TokenReader::TakeWord()
{
    const std::size_t begin = cursor.Offset();
    while (!cursor.AtEnd() && IsWordCharacter(cursor.Peek()) &&
           FindForeignBlank(cursor.Rest()) == nullptr)
    {
        cursor.AdvanceCharacter();
    }
    return std::string(cursor.From(begin));
}

Value TokenReader::ReadWord()
{
    Value value;
    value.span.begin = cursor.Here();
    const std::string word = TakeWord();
    value.span.end = cursor.Here();
    const std::string lower = ToLower(word);
    if (word.empty())
    {
        const std::size_t from = cursor.Offset();
        cursor.AdvanceCharacter();
        value.span.end = cursor.Here();
        Fail(Flaw::Character, value.span,
             "a value is expected here, not '" + std::string(cursor.From(from)) + "'");
        return value;
    }
    if (lower == "nan" || lower == "infinity" || lower == "inf" || lower == "undefined")
    {
        Fail(Flaw::Word, value.span, "'" + word + "' is not a JSON value", "write a number");
        return value;
    }
    value.kind = lower == "true" || lower == "false"                    ? Kind::Bool
                 : lower == "null" || lower == "none" || lower == "nil" ? Kind::Null
                                                                        : Kind::String;
    value.boolean = lower == "true";
    const std::string right = value.kind == Kind::Bool   ? lower
                              : value.kind == Kind::Null ? "null"
                                                         : "\"" + word + "\"";
    value.text = value.kind == Kind::String ? word : "";
    if (word != right)
    {
        Report(Flaw::Word, value.span,
               value.kind == Kind::String ? "the text '" + word + "' is not in quotes"
                                          : "unknown word '" + word + "'",
               "write " + right);
    }
    return value;
}

} // namespace vell::source
