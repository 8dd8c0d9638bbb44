// VELL: data-driven hierarchical state machines.
// tools/source/Reader.h: from a text to values with places, and what is wrong with the text.
#pragma once

#include "tools/source/Value.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vell::source
{

/// What can be wrong with a text. The library accepts the last three.
enum class Flaw : std::uint8_t
{
    Empty,
    ByteOrderMark,
    Comment,
    TrailingComma,
    MissingComma,
    MissingColon,
    Name,         ///< a member's name that is not a text in double quotes
    MissingValue, ///< a comma or a bracket where a value belongs
    Bracket,      ///< never closed, closed by the wrong one, or closed twice
    OpenText,     ///< a text without its closing quote
    Escape,
    ControlCharacter, ///< in a text
    Number,
    Word, ///< a word without quotes, or single quotes
    Character,
    AfterRoot,
    TooDeep, ///< nested deeper than kMaxDepth
    Duplicate,
    NotUtf8,
    NulCharacter
};

/// Values nested deeper than this are left out. A machine needs eight levels.
constexpr std::uint32_t kMaxDepth = 1000;

/// One thing that is wrong with a text.
struct Problem
{
    Flaw flaw = Flaw::Empty;
    Span where;
    Span other; ///< of Duplicate: the first name; of Bracket and Character: the opening one, if any
    bool hasOther = false;
    std::string message; ///< a sentence without a capital and a full stop
    std::string hint;    ///< what to do, or empty
};

struct Options
{
    bool allowComments = false;
    bool allowTrailingCommas = false;
};

/// A text that was read.
struct Text
{
    std::string bytes;
    Value root;                    ///< Null when the root has no end
    std::vector<Problem> problems; ///< in the order of the text, but for duplicates
    std::vector<Span> comments;    ///< in the order of the text
    bool parsed = false;  ///< The library can parse the text, but for what the options allow.
    bool isWhole = false; ///< `root` is the whole document: what is wrong with the text is harmless
                          ///< or could be repaired in one way only.
};

/// Reads a text. After a mistake that can be repaired in one way only, such as a trailing comma,
/// the reading goes on; after any other it ends.
Text ReadText(std::string bytes, const Options& options = {});

/// Gives the line of `bytes` that `place` is in, without its end.
std::string GetLine(const std::string& bytes, const Place& place);

} // namespace vell::source
