// VELL: data-driven hierarchical state machines.
// tools/check/OutputText.cpp: findings for people.
#include "tools/check/Output.h"
#include "tools/source/Cursor.h"
#include "tools/source/Printable.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vell::check
{
namespace
{

constexpr std::size_t kWidth = 100; ///< characters of a line that are shown
constexpr std::size_t kBefore = 40; ///< of them before the mark, where the line is longer

/// The escape sequences of a terminal (ECMA-48), or nothing.
struct Colors
{
    const char* bold = "";
    const char* severity = "";
    const char* mark = "";
    const char* end = "";
};

Colors ColorsOf(Severity severity, bool hasColor)
{
    if (!hasColor)
    {
        return {};
    }
    const char* color = severity == Severity::Error     ? "\033[1;31m"
                        : severity == Severity::Warning ? "\033[1;35m"
                                                        : "\033[1;36m";
    return {"\033[1m", color, "\033[1;32m", "\033[0m"};
}

/// The bytes of `line` from its character `from` on, `count` characters.
std::string_view Characters(std::string_view line, std::size_t from, std::size_t count)
{
    source::Cursor cursor(line);
    for (std::size_t i = 0; i < from && !cursor.AtEnd(); ++i)
    {
        cursor.AdvanceCharacter();
    }
    const std::size_t begin = cursor.Offset();
    for (std::size_t i = 0; i < count && !cursor.AtEnd(); ++i)
    {
        cursor.AdvanceCharacter();
    }
    return cursor.From(begin);
}

std::size_t CharactersIn(std::string_view text)
{
    source::Cursor cursor(text);
    std::size_t count = 0;
    for (; !cursor.AtEnd(); ++count)
    {
        cursor.AdvanceCharacter();
    }
    return count;
}

/// Gives the cells of a terminal that a character takes: 2 for those of East Asia and pictures, 0
/// for marks on the character before (Unicode 15, EastAsianWidth.txt, in large pieces).
std::size_t CellsOf(std::string_view character)
{
    if (character.size() == 1)
    {
        return 1;
    }
    std::uint32_t code = static_cast<unsigned char>(character[0]) & (0x7fu >> character.size());
    for (const char byte : character.substr(1))
    {
        code = code << 6u | (static_cast<unsigned char>(byte) & 0x3fu);
    }
    const auto isIn = [code](std::uint32_t first, std::uint32_t last)
    {
        return code >= first && code <= last;
    };
    if (isIn(0x300, 0x36f) || isIn(0x20d0, 0x20ff) || isIn(0x200b, 0x200f) || isIn(0xfe00, 0xfe0f))
    {
        return 0;
    }
    const bool isWide = isIn(0x1100, 0x115f) || isIn(0x2e80, 0x303e) || isIn(0x3041, 0xa4cf) ||
                        isIn(0xac00, 0xd7a3) || isIn(0xf900, 0xfaff) || isIn(0xfe30, 0xfe6f) ||
                        isIn(0xff00, 0xff60) || isIn(0xffe0, 0xffe6) || isIn(0x1f300, 0x1f64f) ||
                        isIn(0x1f900, 0x1f9ff) || isIn(0x20000, 0x3fffd);
    return isWide ? 2 : 1;
}

/// Gives the cells that a text takes as it is shown.
std::size_t CellsIn(std::string_view text)
{
    const std::string shown = source::ToPrintable(text);
    source::Cursor cursor(shown);
    std::size_t cells = 0;
    while (!cursor.AtEnd())
    {
        const std::size_t begin = cursor.Offset();
        cursor.AdvanceCharacter();
        cells += CellsOf(cursor.From(begin));
    }
    return cells;
}

/// The line of the document and, below it, a mark.
std::string ShowPlace(const std::string& bytes, const source::Span& span, const Colors& colors)
{
    const std::string line = source::GetLine(bytes, span.begin);
    const std::size_t length = CharactersIn(line);
    const std::size_t at = std::min<std::size_t>(span.begin.column - 1, length);
    const std::size_t first = length <= kWidth || at <= kBefore ? 0 : at - kBefore;
    const bool isCut = first + kWidth < length;
    const std::string_view shown = Characters(line, first, kWidth);
    const bool isOneLine = span.end.line == span.begin.line;
    const std::size_t end = isOneLine ? span.end.column - 1 : length;
    const std::size_t last = std::min(end, first + kWidth);
    const std::string front = first == 0 ? "" : "...";
    std::string all = "    " + front + source::ToPrintable(shown) + (isCut ? "..." : "") + "\n";
    const std::size_t before = CellsIn(Characters(line, first, at - first));
    const std::size_t marked = last > at ? CellsIn(Characters(line, at, last - at)) : 0;
    all += "    " + std::string(front.size() + before, ' ') + colors.mark + "^";
    all += std::string(marked > 1 ? marked - 1 : 0, '~') + colors.end + "\n";
    return all;
}

std::string PlaceText(const std::string& path, const source::Place& place)
{
    return source::ToPrintable(path) + ":" + std::to_string(place.line) + ":" +
           std::to_string(place.column) + ": ";
}

std::string Plural(std::size_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

Counts Count(const Findings& findings)
{
    Counts counts;
    for (const Finding& finding : findings.list)
    {
        const Severity severity = GetEntry(finding.code).severity;
        ++(severity == Severity::Error     ? counts.errors
           : severity == Severity::Warning ? counts.warnings
                                           : counts.notes);
    }
    return counts;
}

Counts Count(const CheckedDocuments& documents)
{
    Counts all;
    for (const CheckedDocument& document : documents)
    {
        const Counts counts = Count(document.findings);
        all.errors += counts.errors;
        all.warnings += counts.warnings;
        all.notes += counts.notes;
    }
    return all;
}

std::string ToText(const CheckedDocument& document, bool hasColor)
{
    std::string all;
    for (const Finding& finding : document.findings.list)
    {
        const Severity severity = GetEntry(finding.code).severity;
        const Colors colors = ColorsOf(severity, hasColor);
        all += colors.bold + PlaceText(document.PathOf(finding.file), finding.where.begin) +
               colors.end;
        all += std::string(colors.severity) + NameOf(severity) + " " + NameOf(finding.code) + ":" +
               colors.end + " ";
        all += source::ToPrintable(finding.message);
        all += finding.hint.empty() ? "\n" : "; " + source::ToPrintable(finding.hint) + "\n";
        all += ShowPlace(document.BytesOf(finding.file), finding.where, colors);
        if (finding.hasOther)
        {
            const Colors note = ColorsOf(Severity::Note, hasColor);
            all += note.bold + PlaceText(document.PathOf(finding.otherFile), finding.other.begin) +
                   note.end + note.severity + "note:" + note.end + " " +
                   source::ToPrintable(finding.otherNote) + "\n";
            all += ShowPlace(document.BytesOf(finding.otherFile), finding.other, note);
        }
    }
    return all;
}

std::string SummaryOf(const CheckedDocuments& documents)
{
    const Counts counts = Count(documents);
    std::vector<std::string> parts;
    const auto add = [&parts](std::size_t count, const char* noun)
    {
        if (count != 0)
        {
            parts.push_back(Plural(count, noun));
        }
    };
    add(counts.errors, "error");
    add(counts.warnings, "warning");
    add(counts.notes, "note");
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        text += i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ";
        text += parts[i];
    }
    return (text.empty() ? "nothing found" : text) + " in " + Plural(documents.size(), "document") +
           "\n";
}

} // namespace vell::check
