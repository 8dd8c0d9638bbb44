// VELL: data-driven hierarchical state machines.
// platform/tessel/KeyText.h: a key as a caller gives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Tessel
{

/// Reads eight bytes from any address.
inline std::uint64_t LoadWord(const char* from)
{
    std::uint64_t word;
    std::memcpy(&word, from, sizeof(word));
    return word;
}

/// Reads four bytes from any address.
inline std::uint64_t LoadHalf(const char* from)
{
    std::uint32_t half;
    std::memcpy(&half, from, sizeof(half));
    return half;
}

/// Tells whether `length` bytes are equal. In line and without a call: keys are short.
inline bool IsSameText(const char* left, const char* right, std::size_t length)
{
    for (; length > 16; length -= 8, left += 8, right += 8)
    {
        if (LoadWord(left) != LoadWord(right))
        {
            return false; // GCOVR_EXCL_LINE: two keys of one length and hash that differ here
        }
    }
    if (length >= 8)
    {
        return LoadWord(left) == LoadWord(right) &&
               LoadWord(left + length - 8) == LoadWord(right + length - 8);
    }
    if (length >= 4)
    {
        return LoadHalf(left) == LoadHalf(right) &&
               LoadHalf(left + length - 4) == LoadHalf(right + length - 4);
    }
    for (std::size_t i = 0; i < length; ++i)
    {
        if (left[i] != right[i])
        {
            return false;
        }
    }
    return true;
}

/// Gives a well mixed hash of `length` bytes; for the process only, it depends on the byte order.
inline std::uint32_t HashText(const char* text, std::size_t length)
{
    // The multipliers are the odd constants of xxHash64 (PRIME64_1 and PRIME64_2).
    constexpr std::uint64_t kFirst = 0x9E3779B185EBCA87u;
    constexpr std::uint64_t kSecond = 0xC2B2AE3D27D4EB4Fu;

    std::uint64_t mixed = length * kSecond;
    while (length > 16)
    {
        mixed = (mixed ^ LoadWord(text)) * kFirst;
        mixed ^= mixed >> 32;
        text += 8;
        length -= 8;
    }
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    if (length >= 8)
    {
        head = LoadWord(text);
        tail = LoadWord(text + length - 8);
    }
    else if (length >= 4)
    {
        head = LoadHalf(text);
        tail = LoadHalf(text + length - 4);
    }
    else if (length > 0)
    {
        head = static_cast<unsigned char>(text[0]);
        tail = static_cast<std::uint64_t>(static_cast<unsigned char>(text[length / 2])) << 8 |
               static_cast<unsigned char>(text[length - 1]);
    }
    mixed = (mixed ^ head) * kFirst ^ tail * kSecond;
    mixed ^= mixed >> 32;
    mixed *= kFirst;
    return static_cast<std::uint32_t>(mixed >> 32);
}

/// A key as a caller gives it. The text is the caller's.
struct KeyText
{
    /// The longest key; a longer one is refused.
    static constexpr std::size_t kMaxLength = 0x7fffffff;

    /// Takes a text that is not null.
    explicit KeyText(const char* key) : text(key), length(std::strlen(key))
    {
    }

    /// Takes a text whose length is known.
    KeyText(const char* key, std::size_t keyLength) : text(key), length(keyLength)
    {
    }

    /// Gives one byte that tells most keys of a short table apart, for far less than a hash. It is
    /// never below 128: 0 is the byte of a place without a key.
    std::uint32_t GetTag() const
    {
        const unsigned first = static_cast<unsigned char>(text[0]);
        const unsigned last = static_cast<unsigned char>(text[length - (length != 0 ? 1 : 0)]);
        return 0x80 | ((static_cast<unsigned>(length) + first * 9 + last * 5) & 0x7f);
    }

    /// Computes the hash, which only large tables and the making of keys need.
    std::uint32_t ComputeHash() const
    {
        return HashText(text, length);
    }

    const char* text;
    std::size_t length;
};

} // namespace Tessel
