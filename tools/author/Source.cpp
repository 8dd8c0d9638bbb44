// VELL: data-driven hierarchical state machines.
// tools/author/Source.cpp: places within texts, and the collection of problems.
#include "tools/author/Source.h"

#include "tools/source/Cursor.h"

#include <cctype>
#include <string_view>
#include <utility>

namespace vell::author
{
namespace
{

using source::Place;

bool EndsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// Leaves blanks out, and has a capital behind each.
std::string Joined(const std::string& words)
{
    std::string joined;
    bool isBehindBlank = false;
    for (const char c : words)
    {
        if (c != ' ')
        {
            const auto byte = static_cast<unsigned char>(c);
            joined += isBehindBlank ? static_cast<char>(std::toupper(byte)) : c;
        }
        isBehindBlank = c == ' ';
    }
    return joined;
}

/// The bytes that the escape behind a backslash decodes to; `digits` are those of a \u.
std::size_t DecodedSize(char escape, std::string_view digits)
{
    if (escape != 'u')
    {
        return 1;
    }
    unsigned int unit = 0;
    for (const char c : digits)
    {
        const int letter = c | 0x20;
        unit = unit * 16 + static_cast<unsigned int>(c <= '9' ? c - '0' : letter - 'a' + 10);
    }
    // Each half of a pair counts for two of its four bytes.
    const bool isHalf = unit >= 0xd800 && unit < 0xe000;
    return unit < 0x80 ? 1 : unit < 0x800 || isHalf ? 2 : 3;
}

/// Moves over the raw bytes of a text until `decoded` bytes of it are behind.
void AdvanceDecoded(source::Cursor& cursor, std::size_t decoded, std::uint32_t end)
{
    std::size_t passed = 0;
    while (passed < decoded && cursor.Offset() < end)
    {
        const std::size_t before = cursor.Offset();
        if (cursor.Peek() == '\n')
        {
            cursor.AdvanceLine();
            ++passed;
        }
        else if (cursor.Peek() == '\\')
        {
            passed += DecodedSize(cursor.Peek(1), cursor.Rest().substr(2, 4));
            cursor.Advance(cursor.Peek(1) == 'u' ? 6 : 2);
        }
        else
        {
            cursor.AdvanceCharacter();
            passed += cursor.Offset() - before;
        }
    }
}

/// Gives a place in the file for a place in a piece of one line of it that begins at `base`.
Place Shifted(const Place& base, const Place& inner)
{
    Place place = base;
    place.offset += inner.offset;
    place.line += inner.line - 1;
    place.column = inner.line == 1 ? base.column + inner.column - 1 : inner.column;
    return place;
}

} // namespace

bool IsSource(const std::string& path, const std::string& bytes)
{
    if (EndsWith(path, kSourceExtension))
    {
        return true;
    }
    if (path != "-")
    {
        return false;
    }
    const source::Value root = source::ReadText(bytes, kSourceOptions).root;
    return root.Find("machine") != nullptr || root.Find("states") != nullptr;
}

check::Finding& Problems::Add(const Origin& where, std::string message, std::string hint,
                              check::Code code)
{
    check::Finding finding;
    finding.code = code;
    finding.where = where.span;
    finding.file = where.file;
    finding.message = std::move(message);
    finding.hint = std::move(hint);
    list.push_back(std::move(finding));
    return list.back();
}

check::Finding& Problems::AddUnknown(const Origin& where, std::string message, std::string hint)
{
    return Add(where, std::move(message), std::move(hint), check::Code::SourceName);
}

check::Finding& Problems::AddTwice(const Origin& where, std::string message, std::string hint,
                                   const Origin& first, std::string firstNote)
{
    check::Finding& finding =
        Add(where, std::move(message), std::move(hint), check::Code::SourceTwice);
    finding.hasOther = true;
    finding.other = first.span;
    finding.otherFile = first.file;
    finding.otherNote = std::move(firstNote);
    return finding;
}

std::string TransitionName(const std::string& source, const std::string& target)
{
    return Joined(source) + "To" + Joined(target);
}

source::Span SpanWithin(const std::string& bytes, const source::Value& text, std::size_t begin,
                        std::size_t end)
{
    const source::Span& span = text.span;
    const std::string_view piece =
        std::string_view(bytes).substr(span.begin.offset, span.end.offset - span.begin.offset);
    if (piece.size() < 2)
    {
        return span;
    }
    source::Cursor cursor(piece);
    cursor.Advance(); // the quote
    const auto last = static_cast<std::uint32_t>(piece.size() - 1);
    AdvanceDecoded(cursor, begin, last);
    source::Span within;
    within.begin = Shifted(span.begin, cursor.Here());
    AdvanceDecoded(cursor, end - begin, last);
    within.end = Shifted(span.begin, cursor.Here());
    return within;
}

} // namespace vell::author
