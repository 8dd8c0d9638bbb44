// VELL: data-driven hierarchical state machines.
// tools/source/Cursor.h: a place in a text that moves forward and knows its line and column.
#pragma once

#include "tools/source/Value.h"

#include <cstddef>
#include <string_view>

namespace vell::source
{

/// Moves over a text of bytes. A byte that is not UTF-8 counts as a character.
class Cursor
{
public:
    explicit Cursor(std::string_view newBytes) : bytes(newBytes)
    {
    }

    bool AtEnd() const
    {
        return at == bytes.size();
    }
    /// Gives the next byte, or 0 at the end.
    char Peek(std::size_t ahead = 0) const
    {
        return at + ahead < bytes.size() ? bytes[at + ahead] : '\0';
    }
    std::size_t Offset() const
    {
        return at;
    }
    std::string_view Rest() const
    {
        return bytes.substr(at);
    }
    std::string_view From(std::size_t begin) const
    {
        return bytes.substr(begin, at - begin);
    }
    Place Here() const
    {
        return {line, static_cast<std::uint32_t>(at - lineStart - silent + 1),
                static_cast<std::uint32_t>(at)};
    }

    /// Moves behind `count` bytes, none of them the end of a line or part of a longer character.
    void Advance(std::size_t count = 1)
    {
        at += count;
    }
    /// Moves behind a character that is not the end of a line, and gives its size in bytes: 0, and
    /// one byte is skipped, when it is not UTF-8.
    std::size_t AdvanceCharacter();
    /// Moves behind blanks, tabs and carriage returns.
    void SkipBlanks()
    {
        while (at < bytes.size() && (bytes[at] == ' ' || bytes[at] == '\t' || bytes[at] == '\r'))
        {
            ++at;
        }
    }
    /// Moves behind characters of ASCII that a text has as they are, and gives them.
    std::string_view TakePlain(char quote)
    {
        const std::size_t begin = at;
        while (at < bytes.size() && IsPlain(bytes[at]) && bytes[at] != quote)
        {
            ++at;
        }
        return bytes.substr(begin, at - begin);
    }
    /// Moves behind the end of a line.
    void AdvanceLine()
    {
        ++at;
        ++line;
        lineStart = at;
        silent = 0;
    }

private:
    static bool IsPlain(char c)
    {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 && byte < 0x80 && c != '\\';
    }

    std::string_view bytes;
    std::size_t at = 0;
    std::size_t lineStart = 0;
    std::size_t silent = 0; ///< bytes of this line that begin no character
    std::uint32_t line = 1;
};

} // namespace vell::source
