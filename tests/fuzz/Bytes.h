// VELL: data-driven hierarchical state machines.
// tests/fuzz/Bytes.h: a fuzzer's bytes, taken as decisions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace vell::fuzz
{

/// Hands the bytes out from the front. Past the end everything is 0, so every input is a whole
/// sequence of decisions.
class Bytes
{
public:
    Bytes(const std::uint8_t* first, std::size_t count) : next(first), left(count)
    {
    }

    bool Empty() const
    {
        return left == 0;
    }
    unsigned int Byte()
    {
        if (left == 0)
        {
            return 0;
        }
        --left;
        return *next++;
    }
    /// Gives a number below `limit`, which is at least 1 and at most 256.
    unsigned int Below(unsigned int limit)
    {
        return Byte() % limit;
    }
    unsigned int Word()
    {
        unsigned int word = 0;
        for (int i = 0; i < 4; ++i)
        {
            word = word << 8 | Byte();
        }
        return word;
    }
    float Float()
    {
        const unsigned int word = Word();
        float value = 0.0f;
        std::memcpy(&value, &word, sizeof(value));
        return value;
    }
    /// Gives up to `longest` bytes as they come.
    std::string Text(unsigned int longest)
    {
        std::string text;
        for (unsigned int count = Below(longest + 1); count != 0 && left != 0; --count)
        {
            text += static_cast<char>(Byte());
        }
        return text;
    }

private:
    const std::uint8_t* next;
    std::size_t left;
};

} // namespace vell::fuzz
