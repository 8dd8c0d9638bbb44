// VELL: data-driven hierarchical state machines.
// tools/source/Reader.cpp: the brackets, commas and members of a text, without recursion.
#include "tools/source/Reader.h"

#include "tools/source/Cursor.h"
#include "tools/source/Token.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vell::source
{
namespace
{

constexpr std::size_t kFewMembers = 16;           ///< each is compared with each
constexpr std::size_t kLargestText = 0xfffffff0u; ///< of the offsets in a Place

/// An array or object that is being read.
struct Frame
{
    enum class Next
    {
        Name,
        Colon,
        Value,
        Comma
    };

    Value value;
    Member member; ///< whose value is read
    Next next = Next::Value;
    std::optional<Span> comma; ///< the last one, while nothing is behind it
    Place last;                ///< the end of the last name or value
};

class TextReader
{
public:
    TextReader(Text& filledText, const Options& newOptions)
        : text(filledText),
          options(newOptions),
          cursor(filledText.bytes),
          tokens(cursor, filledText.problems)
    {
    }

    void Read()
    {
        if (SkipMark())
        {
            while (!hasEnded)
            {
                SkipSpace();
                Step();
            }
        }
        text.isWhole = hasRoot && !hasFailed && !tokens.HasFailed();
        const auto isRefused = [](const Problem& problem)
        {
            return problem.flaw < Flaw::TooDeep;
        };
        text.parsed =
            text.isWhole && std::none_of(text.problems.begin(), text.problems.end(), isRefused);
        text.isWhole = text.isWhole && !hasSkipped;
    }

private:
    static bool StartsWith(std::string_view all, std::string_view piece)
    {
        return all.substr(0, piece.size()) == piece;
    }

    Problem& Report(Flaw flaw, Span where, std::string message, std::string hint = {})
    {
        return tokens.Report(flaw, where, std::move(message), std::move(hint));
    }

    /// Reports and ends the reading.
    Problem& Fail(Flaw flaw, Span where, std::string message, std::string hint = {})
    {
        hasFailed = true;
        hasEnded = true;
        return Report(flaw, where, std::move(message), std::move(hint));
    }

    /// The next character, whatever it is.
    Span NextCharacter() const
    {
        Cursor behind = cursor;
        behind.AdvanceCharacter();
        return {cursor.Here(), behind.Here()};
    }

    /// Skips a byte order mark. False when the rest cannot be read.
    bool SkipMark()
    {
        const std::string_view bytes = cursor.Rest();
        const Place begin = cursor.Here();
        if (bytes.size() > kLargestText)
        {
            Fail(Flaw::Character, {begin, begin}, "the document is 4 GiB or longer");
            return false;
        }
        const bool isWide = StartsWith(bytes, "\xff\xfe") || StartsWith(bytes, "\xfe\xff") ||
                            (bytes.size() > 1 && (bytes[0] == '\0') != (bytes[1] == '\0'));
        if (isWide)
        {
            Fail(Flaw::Character, {begin, begin}, "the document is UTF-16", "save it as UTF-8");
            return false;
        }
        if (StartsWith(bytes, "\xef\xbb\xbf"))
        {
            cursor.AdvanceCharacter();
            Report(Flaw::ByteOrderMark, {begin, cursor.Here()},
                   "a byte order mark before the document is not allowed",
                   "save the file as UTF-8 without a byte order mark");
        }
        return true;
    }

    void SkipSpace()
    {
        while (!cursor.AtEnd())
        {
            switch (cursor.Peek())
            {
            case ' ':
            case '\t':
            case '\r':
                cursor.SkipBlanks();
                break;
            case '\n':
                cursor.AdvanceLine();
                break;
            case '/':
            case '#':
                if (!SkipComment())
                {
                    return;
                }
                break;
            default:
                if (!tokens.SkipForeignBlank())
                {
                    return;
                }
                break;
            }
        }
    }

    /// Skips a comment. False when there is none, or it has no end and the reading has ended.
    bool SkipComment()
    {
        const Place begin = cursor.Here();
        const bool isBlock = StartsWith(cursor.Rest(), "/*");
        if (!isBlock && cursor.Peek() != '#' && !StartsWith(cursor.Rest(), "//"))
        {
            return false;
        }
        const bool isAllowed = options.allowComments && cursor.Peek() != '#';
        cursor.Advance(isBlock ? 2 : 1);
        while (!cursor.AtEnd() && !(isBlock && StartsWith(cursor.Rest(), "*/")))
        {
            if (cursor.Peek() != '\n')
            {
                cursor.AdvanceCharacter();
            }
            else if (isBlock)
            {
                cursor.AdvanceLine();
            }
            else
            {
                break;
            }
        }
        if (isBlock && cursor.AtEnd())
        {
            Fail(Flaw::Comment, {begin, cursor.Here()}, "this comment is never closed",
                 "add '*/' at its end");
            return false;
        }
        cursor.Advance(isBlock ? 2 : 0);
        text.comments.push_back({begin, cursor.Here()});
        if (!isAllowed)
        {
            Report(Flaw::Comment, text.comments.back(), "a comment is not allowed", "remove it");
        }
        return true;
    }

    void Step()
    {
        if (hasEnded)
        {
            return;
        }
        if (cursor.AtEnd())
        {
            EndText();
        }
        else if (cursor.Peek() == '\0')
        {
            EndAtNul();
        }
        else if (frames.empty() && hasRoot)
        {
            Fail(Flaw::AfterRoot, NextCharacter(), "nothing is allowed behind the document's end",
                 "remove it, or a closing bracket too many before it");
        }
        else if (frames.empty() || frames.back().next == Frame::Next::Value)
        {
            StepValue();
        }
        else if (frames.back().next == Frame::Next::Comma)
        {
            StepComma();
        }
        else if (frames.back().next == Frame::Next::Name)
        {
            StepName();
        }
        else
        {
            StepColon();
        }
    }

    void EndText()
    {
        hasEnded = true;
        if (frames.empty() && !hasRoot)
        {
            const Place begin;
            Fail(Flaw::Empty, {begin, begin}, "the document is empty");
        }
        else if (!frames.empty())
        {
            const Value& open = frames.back().value;
            const Span bracket = OpeningBracket(open);
            Fail(Flaw::Bracket, bracket,
                 std::string("this '") + Opening(open) + "' is never closed",
                 std::string("add the '") + Closing(open) + "'");
        }
    }

    /// The library reads a document up to the first such character.
    void EndAtNul()
    {
        const Span where = NextCharacter();
        if (hasRoot && frames.empty())
        {
            Report(Flaw::NulCharacter, where, "the library reads nothing behind this NUL character",
                   "remove it");
            hasEnded = true;
            return;
        }
        Fail(Flaw::Character, where, "a NUL character ends the document here", "remove it");
    }

    void StepValue()
    {
        const char next = cursor.Peek();
        const bool isEmpty = !frames.empty() && frames.back().value.IsArray() &&
                             (frames.back().comma || frames.back().value.elements.empty());
        if (next == '{' || next == '[')
        {
            Open();
        }
        else if (next == ']' && isEmpty)
        {
            Close();
        }
        else if (next == ',' || next == ']' || next == '}')
        {
            const std::string place = next == ',' ? "comma" : std::string("'") + next + "'";
            Fail(Flaw::MissingValue, NextCharacter(), "a value is missing before this " + place);
        }
        else if (next == ':')
        {
            const bool isInArray = !frames.empty() && frames.back().value.IsArray();
            Problem& problem =
                Fail(Flaw::Character, NextCharacter(), "a value is expected here, not ':'",
                     isInArray ? "members belong in an object: {\"name\": value}" : "");
            isInArray ? ShowOpening(problem) : void();
        }
        else
        {
            Add(tokens.ReadScalar());
        }
    }

    void StepComma()
    {
        Frame& frame = frames.back();
        const char next = cursor.Peek();
        if (next == ']' || next == '}')
        {
            Close();
            return;
        }
        const Frame::Next following =
            frame.value.IsObject() ? Frame::Next::Name : Frame::Next::Value;
        if (next == ',' && frame.value.IsObject() && !frame.value.members.empty() &&
            tokens.ReadDecimalComma(frame.value.members.back().value))
        {
            frame.last = frame.value.members.back().value.span.end;
        }
        else if (next == ',' || next == ';')
        {
            frame.comma = NextCharacter();
            if (next == ';')
            {
                Report(Flaw::MissingComma, *frame.comma, "';' is not allowed here", "write ','");
            }
            cursor.Advance();
            frame.next = following;
        }
        else if (next == ':')
        {
            Problem& problem = Fail(Flaw::Character, NextCharacter(),
                                    "',' or a closing bracket is expected here, not ':'");
            frame.value.IsArray() ? ShowOpening(problem) : void();
        }
        else
        {
            Report(Flaw::MissingComma, {frame.last, frame.last}, "missing comma",
                   "add ',' behind this");
            frame.next = following;
            frame.comma.reset();
        }
    }

    void StepName()
    {
        Frame& frame = frames.back();
        const char next = cursor.Peek();
        if (next == ']' || next == '}')
        {
            Close();
        }
        else if (next == ',')
        {
            Fail(Flaw::Name, NextCharacter(), "one comma too many");
        }
        else if (next == '{' || next == '[')
        {
            Fail(Flaw::Name, NextCharacter(),
                 std::string("a member's name is expected here, not '") + next + "'");
        }
        else
        {
            const Value name = tokens.ReadName();
            hasEnded = tokens.HasFailed();
            frame.member.name = name.text;
            frame.member.nameSpan = name.span;
            frame.last = name.span.end;
            frame.comma.reset();
            frame.next = Frame::Next::Colon;
        }
    }

    void StepColon()
    {
        Frame& frame = frames.back();
        const char next = cursor.Peek();
        frame.next = Frame::Next::Value;
        if (next == ':')
        {
            cursor.Advance();
        }
        else if (next == '=')
        {
            Report(Flaw::MissingColon, NextCharacter(), "'=' is not allowed here", "write ':'");
            cursor.Advance();
        }
        else if (next == ',' || next == '}' || next == ']')
        {
            Fail(Flaw::MissingValue, {frame.last, frame.last},
                 "the member '" + frame.member.name + "' has no value", "add ':' and a value");
        }
        else
        {
            Report(Flaw::MissingColon, {frame.last, frame.last}, "missing ':' behind the name");
        }
    }

    void Open()
    {
        Frame frame;
        frame.value.kind = cursor.Peek() == '{' ? Kind::Object : Kind::Array;
        frame.next = frame.value.IsObject() ? Frame::Next::Name : Frame::Next::Value;
        frame.value.span.begin = cursor.Here();
        cursor.Advance();
        if (frames.size() == kMaxDepth && !hasSkipped)
        {
            hasSkipped = true;
            Report(Flaw::TooDeep, {frame.value.span.begin, cursor.Here()},
                   "nested more than " + std::to_string(kMaxDepth) + " deep");
        }
        frames.push_back(std::move(frame));
    }

    void Close()
    {
        Frame& frame = frames.back();
        const Span bracket = NextCharacter();
        if (cursor.Peek() != Closing(frame.value))
        {
            Problem& problem =
                Fail(Flaw::Bracket, bracket,
                     std::string("'") + Closing(frame.value) + "' is expected here, not '" +
                         cursor.Peek() + "'",
                     std::string("the '") + Opening(frame.value) + "' of line " +
                         std::to_string(frame.value.span.begin.line) + " is still open");
            problem.other = OpeningBracket(frame.value);
            problem.hasOther = true;
            return;
        }
        if (frame.comma && !options.allowTrailingCommas)
        {
            Report(Flaw::TrailingComma, *frame.comma, "trailing comma is not allowed", "remove it");
        }
        cursor.Advance();
        frame.value.span.end = cursor.Here();
        FindDuplicates(frame.value);
        Value value = std::move(frame.value);
        frames.pop_back();
        Add(std::move(value));
    }

    void Add(Value value)
    {
        if (tokens.HasFailed())
        {
            hasEnded = true;
        }
        if (frames.empty())
        {
            text.root = std::move(value);
            hasRoot = true;
            return;
        }
        Frame& frame = frames.back();
        frame.last = value.span.end;
        frame.next = Frame::Next::Comma;
        frame.comma.reset();
        if (frames.size() > kMaxDepth)
        {
            return;
        }
        if (frame.value.IsArray())
        {
            frame.value.elements.push_back(std::move(value));
            return;
        }
        if (frame.value.members.empty())
        {
            frame.value.members.reserve(8); // Most nodes have so many.
        }
        frame.member.value = std::move(value);
        frame.value.members.push_back(std::move(frame.member));
    }

    static bool HasDuplicate(const std::vector<Member>& members)
    {
        for (std::size_t i = 1; i < members.size(); ++i)
        {
            for (std::size_t j = 0; j < i; ++j)
            {
                if (members[i].name == members[j].name)
                {
                    return true;
                }
            }
        }
        return false;
    }

    void FindDuplicates(Value& object)
    {
        std::vector<Member>& members = object.members;
        if (members.size() < 2 || (members.size() <= kFewMembers && !HasDuplicate(members)))
        {
            return;
        }
        std::vector<std::uint32_t>& order = scratch;
        order.resize(members.size());
        std::iota(order.begin(), order.end(), 0u);
        std::sort(order.begin(), order.end(),
                  [&members](std::uint32_t left, std::uint32_t right)
                  {
                      const int compared = members[left].name.compare(members[right].name);
                      return compared < 0 || (compared == 0 && left < right);
                  });
        std::size_t first = 0;
        for (std::size_t i = 1; i < order.size(); ++i)
        {
            const Member& earlier = members[order[first]];
            Member& member = members[order[i]];
            if (member.name != earlier.name)
            {
                first = i;
                continue;
            }
            member.isRepeated = true;
            Problem& problem = Report(Flaw::Duplicate, member.nameSpan,
                                      "the member '" + member.name + "' is already on line " +
                                          std::to_string(earlier.nameSpan.begin.line) +
                                          ", and only the first counts",
                                      "remove one of them");
            problem.other = earlier.nameSpan;
            problem.hasOther = true;
        }
    }

    /// Where members are written in an array, its closing bracket may be missing.
    void ShowOpening(Problem& problem)
    {
        problem.other = OpeningBracket(frames.back().value);
        problem.hasOther = true;
    }

    static char Opening(const Value& value)
    {
        return value.IsObject() ? '{' : '[';
    }

    static char Closing(const Value& value)
    {
        return value.IsObject() ? '}' : ']';
    }

    static Span OpeningBracket(const Value& value)
    {
        Span bracket{value.span.begin, value.span.begin};
        ++bracket.end.column;
        ++bracket.end.offset;
        return bracket;
    }

    Text& text;
    const Options& options;
    Cursor cursor;
    TokenReader tokens;
    std::vector<Frame> frames;
    std::vector<std::uint32_t> scratch;
    bool hasRoot = false;
    bool hasEnded = false;
    bool hasFailed = false;
    bool hasSkipped = false;
};

} // namespace

Text ReadText(std::string bytes, const Options& options)
{
    Text text;
    text.bytes = std::move(bytes);
    TextReader(text, options).Read();
    return text;
}

std::string GetLine(const std::string& bytes, const Place& place)
{
    const std::size_t at = std::min<std::size_t>(place.offset, bytes.size());
    const std::size_t before = at == 0 ? std::string::npos : bytes.rfind('\n', at - 1);
    const std::size_t begin = before == std::string::npos ? 0 : before + 1;
    std::size_t end = std::min(bytes.find('\n', at), bytes.size());
    end -= end > begin && bytes[end - 1] == '\r' ? 1 : 0;
    return bytes.substr(begin, end - begin);
}

} // namespace vell::source
