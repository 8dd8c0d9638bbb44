// VELL: data-driven hierarchical state machines.
// tools/check/Printable.cpp: replacing what a terminal would obey.
#include "tools/check/Printable.h"

#include "tools/source/Cursor.h"

namespace vell::check
{

std::string ToPrintable(std::string_view text)
{
    constexpr const char* kReplacement = "\xef\xbf\xbd"; // U+FFFD
    std::string printable;
    source::Cursor cursor(text);
    while (!cursor.AtEnd())
    {
        const char first = cursor.Peek();
        const std::size_t begin = cursor.Offset();
        const std::size_t size = cursor.AdvanceCharacter();
        const auto byte = static_cast<unsigned char>(first);
        // U+0080 to U+009F are control characters too.
        const bool isControl =
            byte < 0x20 || byte == 0x7f ||
            (size == 2 && byte == 0xc2 && static_cast<unsigned char>(text[begin + 1]) < 0xa0);
        if (first == '\t')
        {
            printable += ' ';
        }
        else if (size == 0 || isControl)
        {
            printable += kReplacement;
        }
        else
        {
            printable += cursor.From(begin);
        }
    }
    return printable;
}

} // namespace vell::check
