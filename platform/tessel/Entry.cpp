// VELL: data-driven hierarchical state machines.
// platform/tessel/Entry.cpp: one key of a table with its value.
#include "platform/tessel/Entry.h"

namespace Tessel
{

int Entry::GetValueType() const
{
    const Kind kind = GetKind();
    return kind == KindLongText ? static_cast<int>(ValueType_Text) : static_cast<int>(kind);
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
    if (FitsLongText(length))
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

bool Entry::FitsLongText(std::size_t length) const
{
    return GetKind() == KindLongText && length < Load<LongText>().capacity;
}

} // namespace Tessel
