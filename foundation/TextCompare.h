// VELL: data-driven hierarchical state machines.
// foundation/TextCompare.h: comparing of texts that may be null.
#pragma once

#include <cstring>

namespace vell
{

/// Tells whether two texts are equal but for the case of ASCII letters. A null text equals nothing.
inline bool EqualsIgnoringCase(const char* left, const char* right)
{
    const auto lower = [](char c)
    {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    };
    if (left == nullptr || right == nullptr)
    {
        return false;
    }
    while (*left != '\0' && lower(*left) == lower(*right))
    {
        ++left;
        ++right;
    }
    return lower(*left) == lower(*right);
}

/// Tells whether two texts are equal. A null text equals nothing.
inline bool EqualsText(const char* left, const char* right)
{
    return left != nullptr && right != nullptr && std::strcmp(left, right) == 0;
}

} // namespace vell
