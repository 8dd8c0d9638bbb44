// VELL: data-driven hierarchical state machines.
// document/NumberText.cpp: reading of comma-separated numbers.
#include "document/NumberText.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace vell
{
namespace
{

constexpr std::size_t kBufferSize = 128;
constexpr int kMaxCount = 4;

} // namespace

int ReadNumbers(const char* text, double* numbers, int count)
{
    if (text == nullptr || numbers == nullptr || count > kMaxCount)
    {
        return 0;
    }
    const std::size_t length = strnlen(text, kBufferSize);
    if (length == kBufferSize)
    {
        return 0;
    }
    char buffer[kBufferSize];
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';

    double found[kMaxCount];
    char* piece = buffer;
    for (int i = 0; i < count; ++i)
    {
        piece += std::strspn(piece, ",");
        if (*piece == '\0')
        {
            return 0;
        }
        char* end = piece + std::strcspn(piece, ",");
        const bool last = *end == '\0';
        *end = '\0';
        // As atof, but for C libraries whose atof knows neither infinity nor hexadecimal digits.
        found[i] = std::strtod(piece, nullptr);
        piece = last ? end : end + 1;
    }
    std::memcpy(numbers, found, static_cast<std::size_t>(count) * sizeof(double));
    return 1;
}

int ReadNumbers(const char* text, float* numbers, int count)
{
    double found[kMaxCount];
    if (numbers == nullptr || !ReadNumbers(text, found, count))
    {
        return 0;
    }
    for (int i = 0; i < count; ++i)
    {
        numbers[i] = static_cast<float>(found[i]);
    }
    return 1;
}

int TruncateToInt(double number)
{
    if (std::isnan(number))
    {
        return 0;
    }
    if (number <= static_cast<double>(INT_MIN))
    {
        return INT_MIN;
    }
    if (number >= static_cast<double>(INT_MAX))
    {
        return INT_MAX;
    }
    return static_cast<int>(number);
}

} // namespace vell
