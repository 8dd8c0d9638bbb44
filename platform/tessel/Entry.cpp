// VELL: data-driven hierarchical state machines.
// platform/tessel/Entry.cpp: one key of a table with its value.
#include "platform/tessel/Entry.h"

#include <limits>

namespace Tessel
{

namespace
{

/// Cuts off toward 0 and holds at the limits; a plain cast of a value beyond them is undefined.
template <class Integer>
Integer Saturate(float value)
{
    constexpr Integer kMin = std::numeric_limits<Integer>::min();
    constexpr Integer kMax = std::numeric_limits<Integer>::max();

    if (!(value == value))
    {
        return 0;
    }
    const double exact = static_cast<double>(value);
    if (exact <= static_cast<double>(kMin))
    {
        return kMin;
    }
    if (exact >= static_cast<double>(kMax))
    {
        return kMax;
    }
    return static_cast<Integer>(exact);
}

} // namespace

int Entry::GetValueType() const
{
    const Kind kind = GetKind();
    return kind == KindLongText ? static_cast<int>(ValueType_Text) : static_cast<int>(kind);
}

int Entry::GetIntValue() const
{
    switch (GetKind())
    {
    case KindInt:
    case KindUInt:
        return Load<int>();
    case KindFloat:
        return Saturate<int>(Load<float>());
    default:
        return 0;
    }
}

float Entry::GetFloatValue() const
{
    switch (GetKind())
    {
    case KindFloat:
        return Load<float>();
    case KindInt:
        return static_cast<float>(Load<int>());
    case KindUInt:
        return static_cast<float>(Load<unsigned>());
    default:
        return 0.0f;
    }
}

const char* Entry::GetStringValue() const
{
    switch (GetKind())
    {
    case KindShortText:
        return reinterpret_cast<const char*>(payload);
    case KindLongText:
        return Load<LongText>().text;
    default:
        return nullptr;
    }
}

int Entry::GetFloat2Value(Float2* out) const
{
    if (out == nullptr || GetKind() != KindFloat2)
    {
        return 0;
    }
    *out = Load<Float2>();
    return 1;
}

int Entry::GetFloat3Value(Float3* out) const
{
    if (out == nullptr || GetKind() != KindFloat3)
    {
        return 0;
    }
    *out = Load<Float3>();
    return 1;
}

int Entry::GetFloat4Value(Float4* out) const
{
    if (out == nullptr || GetKind() != KindFloat4)
    {
        return 0;
    }
    *out = Load<Float4>();
    return 1;
}

unsigned Entry::GetUIntValue() const
{
    switch (GetKind())
    {
    case KindInt:
    case KindUInt:
        return Load<unsigned>();
    case KindFloat:
    {
        const float value = Load<float>();
        return value < 0.0f ? static_cast<unsigned>(Saturate<int>(value))
                            : Saturate<unsigned>(value);
    }
    default:
        return 0;
    }
}

void Entry::StoreText(const char* text, std::size_t length, std::unique_ptr<char[]>& buffer)
{
    if (length <= kMaxShortText)
    {
        // By way of a copy: `text` may lie in the long text that is freed here.
        unsigned char copy[sizeof(payload)] = {};
        std::memcpy(copy, text, length);
        ReleaseText();
        std::memcpy(payload, copy, sizeof(copy));
        SetKind(KindShortText);
        return;
    }
    if (HasRoomForLongText(length))
    {
        char* held = Load<LongText>().text;
        std::memmove(held, text, length);
        held[length] = '\0';
        return;
    }
    std::memcpy(buffer.get(), text, length);
    buffer[length] = '\0';
    ReleaseText();
    Store(KindLongText, LongText{buffer.release(), static_cast<std::uint32_t>(length + 1)});
}

void Entry::ReleaseText()
{
    if (GetKind() == KindLongText)
    {
        delete[] Load<LongText>().text;
        SetKind(KindNone);
    }
}

bool Entry::HasRoomForLongText(std::size_t length) const
{
    return GetKind() == KindLongText && length < Load<LongText>().capacity;
}

} // namespace Tessel
