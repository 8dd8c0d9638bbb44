// VELL: data-driven hierarchical state machines.
// tools/source/Printable.cpp: replacing what a terminal would obey or a picture cannot show.
#include "tools/source/Printable.h"

#include "tools/source/Cursor.h"

namespace vell::source
{
namespace
{

/// U+0000 to U+001F, U+007F to U+009F, U+FFFE and U+FFFF.
bool IsShowable(std::string_view character)
{
    const auto byte = [character](std::size_t i)
    {
        return static_cast<unsigned char>(character[i]);
    };
    return byte(0) >= 0x20 && byte(0) != 0x7f && !(byte(0) == 0xc2 && byte(1) < 0xa0) &&
           character != "\xef\xbf\xbe" && character != "\xef\xbf\xbf";
}

std::string ToPrintable(std::string_view text, bool keepsLines)
{
    constexpr const char* kReplacement = "\xef\xbf\xbd"; // U+FFFD
    std::string printable;
    Cursor cursor(text);
    while (!cursor.AtEnd())
    {
        const char first = cursor.Peek();
        const std::size_t begin = cursor.Offset();
        const bool isCharacter = cursor.AdvanceCharacter() != 0;
        if (first == '\t')
        {
            printable += ' ';
        }
        else if (isCharacter && (IsShowable(cursor.From(begin)) || (keepsLines && first == '\n')))
        {
            printable += cursor.From(begin);
        }
        else
        {
            printable += kReplacement;
        }
    }
    return printable;
}

} // namespace

std::string ToPrintable(std::string_view text)
{
    return ToPrintable(text, false);
}

std::string ToPrintableLines(std::string_view text)
{
    return ToPrintable(text, true);
}

} // namespace vell::source
