// VELL: data-driven hierarchical state machines.
// tools/source/Cursor.cpp: the length of a UTF-8 character.
#include "tools/source/Cursor.h"

namespace vell::source
{
namespace
{

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0u) == 0x80u;
}

/// The size of the character at the front of `text`, which is not empty; 0 when it is not UTF-8
/// (Unicode 15, table 3-7).
std::size_t CharacterSize(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
    {
        return 1;
    }
    const std::size_t size = first < 0xc2   ? 0
                             : first < 0xe0 ? 2
                             : first < 0xf0 ? 3
                             : first < 0xf5 ? 4
                                            : 0;
    if (size == 0 || text.size() < size)
    {
        return 0;
    }
    for (std::size_t i = 1; i < size; ++i)
    {
        if (!IsContinuation(text[i]))
        {
            return 0;
        }
    }
    const auto second = static_cast<unsigned char>(text[1]);
    const bool isInvalid = (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||
                           (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f);
    return isInvalid ? 0 : size;
}

} // namespace

std::size_t Cursor::AdvanceCharacter()
{
    const std::size_t size = CharacterSize(Rest());
    const std::size_t skipped = size == 0 ? 1 : size;
    at += skipped;
    silent += skipped - 1;
    return size;
}

} // namespace vell::source
