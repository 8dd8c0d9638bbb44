// VELL: data-driven hierarchical state machines.
// platform/durm/Vocabulary.cpp: the lookups over the vocabulary's tables, by number and by text.
#include "platform/durm/Vocabulary.h"

#include <zlib.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string_view>
#include <system_error>

namespace DURMBaseLib
{
namespace
{
constexpr bool MembersAreInOrder()
{
    int last = -1;
    for (const Member& member : kMembers)
    {
        if (member.number != member.type || member.number <= last)
        {
            return false;
        }
        last = member.number;
    }
    return true;
}

static_assert(MembersAreInOrder(), "each member's number is its enumerator's, in ascending order");

constexpr std::size_t kNameCount = static_cast<std::size_t>(std::end(kMembers)[-1].number) + 1;

/// The texts of the members by number, with null where no member is.
constexpr std::array<const char*, kNameCount> MakeNames()
{
    std::array<const char*, kNameCount> names{};
    for (const Member& member : kMembers)
    {
        names[static_cast<std::size_t>(member.number)] = member.text;
    }
    return names;
}

constexpr std::array<const char*, kNameCount> kNames = MakeNames();

/// Gives the number of a word, 0 for another. Most words of a table begin with another letter.
template <std::size_t Count>
int FindNumber(const Word (&words)[Count], const char* text)
{
    if (text == nullptr)
    {
        return 0;
    }
    for (const Word& word : words)
    {
        if (word.text[0] == text[0] && std::strcmp(word.text, text) == 0)
        {
            return word.number;
        }
    }
    return 0;
}

template <std::size_t Count>
const char* FindText(const Word (&words)[Count], int number)
{
    for (const Word& word : words)
    {
        if (word.number == number)
        {
            return word.text;
        }
    }
    return nullptr;
}

/// The number that `text` writes in decimal digits and nothing else; 0 when it is not one or does
/// not fit an int.
int ReadDecimal(std::string_view text)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos)
    {
        return 0;
    }
    int number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() ? number : 0;
}
} // namespace

const char* GetJsonName(__JSONTYPES__ type)
{
    const auto number = static_cast<std::size_t>(type);
    return number < kNames.size() ? kNames[number] : nullptr;
}

const char* GetParameterName(__ePARAMTYPE__ type)
{
    return FindText(kParameterTypes, type);
}

int GetParameterName(const char* name)
{
    return FindNumber(kParameterTypes, name);
}

__ePARAMTYPE__ GetParameterTypeByName(const char* name)
{
    return static_cast<__ePARAMTYPE__>(GetParameterName(name));
}

int GetBuilderIndex(const char* name)
{
    const int number = FindNumber(kBuilders, name);
    return number == 0 && name != nullptr ? ReadDecimal(name) : number;
}

int GetAssignName(const char* name)
{
    return FindNumber(kAssigns, name);
}

const char* GetConnectorName(__CONNECTOR_TYPES__ type)
{
    return FindText(kConnectors, type);
}

int GetEvaluationEnum(const char* name)
{
    return FindNumber(kOperators, name);
}

__STATE_MACHINE_TYPES__ GetStateMachineTypeByName(const char* name)
{
    return static_cast<__STATE_MACHINE_TYPES__>(FindNumber(kMachineTypes, name));
}

unsigned ConvertStringToCRC(std::string& text)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    return static_cast<unsigned>(crc32_z(0, bytes, text.size()));
}
} // namespace DURMBaseLib
