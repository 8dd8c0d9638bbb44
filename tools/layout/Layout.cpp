// VELL: data-driven hierarchical state machines.
// tools/layout/Layout.cpp: the walk over the values, with the comments between them.
#include "tools/layout/Layout.h"

#include <durm/DURMBaseLib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace vell::layout
{
namespace
{

using source::Kind;
using source::Member;
using source::Place;
using source::Span;
using source::Text;
using source::Value;

/// Where a value is in a document, as far as the layout depends on it.
enum class Position : std::uint8_t
{
    Root,
    RootMember,
    Layers, ///< the array of layers
    Layer,
    LayerMember,
    Inner
};

/// A member or an element.
struct Item
{
    const Value* value;
    const Member* member; ///< null for an element
    const Place& Begin() const
    {
        return member != nullptr ? member->nameSpan.begin : value->span.begin;
    }
};

constexpr Place kEnd{UINT32_MAX, 1, UINT32_MAX};

std::string_view SourceOf(const Text& text, const Span& span)
{
    return std::string_view(text.bytes)
        .substr(span.begin.offset, span.end.offset - span.begin.offset);
}

bool IsEmpty(const Value& value)
{
    return value.members.empty() && value.elements.empty();
}

bool IsContainer(const Value& value)
{
    return value.IsArray() || value.IsObject();
}

bool HoldsContainers(const Value& array)
{
    return std::any_of(array.elements.begin(), array.elements.end(), IsContainer);
}

/// Tells whether a value has a line per member or element, comments apart.
bool IsSpread(const Value& value, Position position)
{
    switch (position)
    {
    case Position::Root:
    case Position::Layers:
    case Position::Layer:
        return true;
    case Position::RootMember:
        return value.IsObject() || HoldsContainers(value);
    case Position::LayerMember:
        return value.IsArray() && HoldsContainers(value);
    case Position::Inner:
        break;
    }
    return false;
}

Position PositionOf(const Item& item, Position position)
{
    switch (position)
    {
    case Position::Root:
        return item.member != nullptr && item.value->IsArray() &&
                       item.member->name == DURMBaseLib::GetJsonName(DURMBaseLib::JSON_Layers)
                   ? Position::Layers
                   : Position::RootMember;
    case Position::Layers:
        return item.value->IsObject() ? Position::Layer : Position::Inner;
    case Position::Layer:
        return Position::LayerMember;
    case Position::RootMember:
    case Position::LayerMember:
    case Position::Inner:
        break;
    }
    return Position::Inner;
}

std::vector<Item> ItemsOf(const Value& container)
{
    std::vector<Item> items;
    for (const Member& member : container.members)
    {
        items.push_back({&member.value, &member});
    }
    for (const Value& element : container.elements)
    {
        items.push_back({&element, nullptr});
    }
    return items;
}

/// Which layout it is.
enum class Style : std::uint8_t
{
    Document,
    Source
};

constexpr std::size_t kWidth = 100;

/// The members of a source that have a line per member of their own.
bool IsSpreadInSource(const Member& member)
{
    return (member.name == "states" || member.name == "parameters") && member.value.IsObject() &&
           !member.value.members.empty();
}

class Writer
{
public:
    Writer(const Text& newText, Style newStyle) : text(newText), style(newStyle)
    {
    }

    std::string Write()
    {
        WriteComments(text.root.span.begin, text.root.span.begin.offset, 0);
        StartLine(text.root.span.begin.line, 0);
        WriteValue(text.root, Position::Root, 0);
        left = text.root.span.end;
        WriteTrailing(kEnd.offset);
        WriteComments(kEnd, kEnd.offset, 0);
        return result + "\n";
    }

private:
    std::string_view Source(const Span& span) const
    {
        return SourceOf(text, span);
    }

    bool HasComment() const
    {
        return nextComment < text.comments.size();
    }

    bool HoldsComment(const Value& value) const
    {
        const auto first =
            std::lower_bound(text.comments.begin(), text.comments.end(), value.span.begin.offset,
                             [](const Span& comment, std::uint32_t offset)
                             {
                                 return comment.begin.offset < offset;
                             });
        return first != text.comments.end() && first->begin.offset < value.span.end.offset;
    }

    /// Starts a line for what begins on `line`, after a blank line if the source has one there.
    void StartLine(std::uint32_t line, unsigned int depth)
    {
        if (!result.empty())
        {
            result += line > left.line + 1 && !isOpening ? "\n\n" : "\n";
        }
        isOpening = false;
        result.append(std::size_t{depth} * 4, ' ');
    }

    void TrimEnd()
    {
        while (!result.empty() && std::strchr(" \t\r", result.back()) != nullptr)
        {
            result.pop_back();
        }
    }

    /// Writes the next comment, without the blanks at the ends of its lines.
    void WriteComment()
    {
        const Span& comment = text.comments[nextComment++];
        for (const char c : Source(comment))
        {
            if (c == '\n')
            {
                TrimEnd();
            }
            result += c;
        }
        TrimEnd();
        left = comment.end;
    }

    /// Writes the comments before `offset` that belong to what begins at `next`, each on a line of
    /// its own. They may be behind `next`, between a name and its value.
    void WriteComments(const Place& next, std::uint32_t offset, unsigned int depth)
    {
        while (HasComment() && text.comments[nextComment].begin.offset < offset)
        {
            StartLine(std::min(next.line, text.comments[nextComment].begin.line), depth);
            WriteComment();
        }
    }

    /// Writes the comments before `offset` that end the line of what was written last.
    void WriteTrailing(std::uint32_t offset)
    {
        while (HasComment() && text.comments[nextComment].begin.offset < offset &&
               text.comments[nextComment].begin.line == left.line)
        {
            result += ' ';
            WriteComment();
        }
    }

    /// Gives the offset before which a comment belongs to what was written last, and not to what
    /// begins at `next`: when both are on one line, that of the comma between them.
    std::uint32_t EndOfTrailing(const Place& next) const
    {
        std::size_t comment = nextComment;
        std::uint32_t line = left.line;
        while (comment < text.comments.size() && text.comments[comment].end.offset <= next.offset &&
               text.comments[comment].begin.line == line)
        {
            line = text.comments[comment++].end.line;
        }
        return line == next.line ? FindComma(next.offset) : next.offset;
    }

    /// Gives the offset of the comma before `end`, or where the source was left if there is none.
    std::uint32_t FindComma(std::uint32_t end) const
    {
        std::size_t comment = nextComment;
        for (std::uint32_t at = left.offset; at < end; ++at)
        {
            if (comment < text.comments.size() && at == text.comments[comment].begin.offset)
            {
                at = text.comments[comment++].end.offset - 1;
            }
            else if (text.bytes[at] == ',')
            {
                return at;
            }
        }
        return left.offset;
    }

    void WriteValue(const Value& value, Position position, unsigned int depth)
    {
        if (!IsContainer(value))
        {
            result += Source(value.span);
            return;
        }
        const bool isSpread = style == Style::Source
                                  ? position == Position::Root || !FitsOnLine(value)
                                  : IsSpread(value, position);
        if (HoldsComment(value) || (!IsEmpty(value) && isSpread))
        {
            WriteSpread(value, position, depth);
            return;
        }
        WriteInline(value);
    }

    /// Tells whether a container of a source has nothing that is spread, and fits behind what is
    /// on the line already, with a comma.
    bool FitsOnLine(const Value& container) const
    {
        const std::size_t lineBegin = result.rfind('\n') + 1;
        const std::size_t used = result.size() - lineBegin + 1;
        std::size_t room = used < kWidth ? kWidth - used : 0;
        return Fits(container, &room);
    }

    static bool Take(std::size_t size, std::size_t* room)
    {
        const bool isEnough = size <= *room;
        *room -= isEnough ? size : 0;
        return isEnough;
    }

    bool Fits(const Value& value, std::size_t* room) const
    {
        if (!IsContainer(value))
        {
            return Take(Source(value.span).size(), room);
        }
        const std::size_t count = value.members.size() + value.elements.size();
        bool isFit = Take(count == 0 ? 2 : 2 * count, room); // the brackets, and ", " between
        for (const Member& member : value.members)
        {
            isFit = isFit && !IsSpreadInSource(member) &&
                    Take(Source(member.nameSpan).size() + 2, room) && Fits(member.value, room);
        }
        for (const Value& element : value.elements)
        {
            isFit = isFit && Fits(element, room);
        }
        return isFit;
    }

    void WriteInline(const Value& container)
    {
        const char* separator = "";
        result += container.IsObject() ? '{' : '[';
        for (const Item& item : ItemsOf(container))
        {
            result += separator;
            separator = ", ";
            WriteName(item);
            WriteValue(*item.value, Position::Inner, 0);
        }
        result += container.IsObject() ? '}' : ']';
    }

    /// In a source all positions are the same, but for what is always spread.
    Position Within(const Item& item, Position position) const
    {
        if (style == Style::Document)
        {
            return PositionOf(item, position);
        }
        return item.member != nullptr && IsSpreadInSource(*item.member) ? Position::Root
                                                                        : Position::Inner;
    }

    void WriteSpread(const Value& container, Position position, unsigned int depth)
    {
        const std::vector<Item> items = ItemsOf(container);
        result += container.IsObject() ? '{' : '[';
        isOpening = true;
        left = container.span.begin;
        for (std::size_t i = 0; i < items.size(); ++i)
        {
            const Item& item = items[i];
            WriteTrailing(EndOfTrailing(item.Begin()));
            WriteComments(item.Begin(), item.value->span.begin.offset, depth + 1);
            StartLine(item.Begin().line, depth + 1);
            WriteName(item);
            WriteValue(*item.value, Within(item, position), depth + 1);
            result += i + 1 < items.size() ? "," : "";
            left = item.value->span.end;
        }
        WriteTrailing(container.span.end.offset);
        WriteComments(container.span.end, container.span.end.offset, depth + 1);
        isOpening = false;
        result += '\n';
        result.append(std::size_t{depth} * 4, ' ');
        result += container.IsObject() ? '}' : ']';
    }

    void WriteName(const Item& item)
    {
        if (item.member != nullptr)
        {
            result += Source(item.member->nameSpan);
            result += ": ";
        }
    }

    const Text& text;
    const Style style;
    std::string result;
    std::size_t nextComment = 0;
    Place left;             ///< end of what was written last, in the source
    bool isOpening = false; ///< an opening bracket was written last
};

/// Compares two texts that were read.
class Comparison
{
public:
    Comparison(const Text& newLeft, const Text& newRight) : left(newLeft), right(newRight)
    {
    }

    bool IsSame(const Value& a, const Value& b) const
    {
        if (a.kind != b.kind || a.members.size() != b.members.size() ||
            a.elements.size() != b.elements.size())
        {
            return false;
        }
        for (std::size_t i = 0; i < a.members.size(); ++i)
        {
            if (!IsSame(a.members[i].nameSpan, b.members[i].nameSpan) ||
                !IsSame(a.members[i].value, b.members[i].value))
            {
                return false;
            }
        }
        for (std::size_t i = 0; i < a.elements.size(); ++i)
        {
            if (!IsSame(a.elements[i], b.elements[i]))
            {
                return false;
            }
        }
        return IsContainer(a) || IsSame(a.span, b.span);
    }

private:
    bool IsSame(const Span& a, const Span& b) const
    {
        return SourceOf(left, a) == SourceOf(right, b);
    }

    const Text& left;
    const Text& right;
};

} // namespace

std::string LayOut(const Text& text)
{
    return Writer(text, Style::Document).Write();
}

std::string LayOutSource(const Text& text)
{
    return Writer(text, Style::Source).Write();
}

bool IsSame(const Text& left, const Text& right)
{
    return Comparison(left, right).IsSame(left.root, right.root);
}

} // namespace vell::layout
