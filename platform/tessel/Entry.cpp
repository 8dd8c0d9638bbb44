// VELL: data-driven hierarchical state machines.
// platform/tessel/Entry.cpp: the value of one key of a table.
#include "platform/tessel/Entry.h"

#include "platform/tessel/TableStore.h"

namespace Tessel
{

static_assert(sizeof(void*) != 8 || sizeof(Entry) == 16, "entries decide what a table weighs");

#if defined(__BYTE_ORDER__)
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kind is in the first byte");
#endif

Entry::OldValue::~OldValue()
{
    held.ReleaseMemory();
    TableStore::ReleaseChild(child);
}

int Entry::GetValueType() const
{
    const Kind kind = GetValueKind();
    return kind == KindLongText ? static_cast<int>(ValueType_Text) : static_cast<int>(kind);
}

template <class Floats>
int Entry::GetFloats(Kind kind, Floats* out) const
{
    if (out == nullptr || GetValueKind() != kind)
    {
        return 0;
    }
    std::memcpy(out, GetKind() == KindSlot ? GetSlot().bytes : GetOutside(), sizeof(*out));
    return 1;
}

int Entry::GetFloat2Value(Float2* out) const
{
    return GetFloats(KindFloat2, out);
}

int Entry::GetFloat3Value(Float3* out) const
{
    return GetFloats(KindFloat3, out);
}

int Entry::GetFloat4Value(Float4* out) const
{
    return GetFloats(KindFloat4, out);
}

/// Gives where the int or the floats are while no slot has them.
void* Entry::GetOwnBytes()
{
    return HasFloats() ? GetOutside() : reinterpret_cast<char*>(&word) + sizeof(word) / 2;
}

// All four floats, whatever their number: the memory for them has room for four.
std::size_t Entry::GetOwnSize() const
{
    return HasFloats() ? sizeof(Float4) : sizeof(int);
}

void Entry::MoveToSlot(KVSlot& slot)
{
    std::memcpy(slot.bytes, GetOwnBytes(), GetOwnSize());
    slot.value = this;
    slot.held = word;
    SetOutside(KindSlot, &slot);
}

void Entry::MoveFromSlot()
{
    KVSlot& slot = GetSlot();
    slot.value = nullptr;
    word = slot.held;
    std::memcpy(GetOwnBytes(), slot.bytes, GetOwnSize());
}

Entry Entry::GetSlotNumber() const
{
    const KVSlot& slot = GetSlot();
    const Kind kind = ToKind(slot.held);
    if (kind != KindInt && kind != KindFloat)
    {
        return Entry(KindNone);
    }
    std::uint32_t bits = 0;
    std::memcpy(&bits, slot.bytes, sizeof(bits));
    return Entry(static_cast<std::uint64_t>(bits) << 32 | kind);
}

Entry::Buffer Entry::MakeTextBuffer(std::size_t length)
{
    Buffer buffer(Allocate(sizeof(LongText) + length + 1));
    static_cast<LongText*>(buffer.get())->capacity = static_cast<std::uint32_t>(length + 1);
    return buffer;
}

void Entry::StoreText(const char* text, std::size_t length, Buffer buffer)
{
    if (FitsLongText(length))
    {
        char* held = GetLongText().GetText();
        std::memmove(held, text, length);
        held[length] = '\0';
        return;
    }
    if (length <= kMaxShortText)
    {
        // By way of a copy: `text` may lie in the long text that is freed here.
        std::uint64_t made = 0;
        std::memcpy(reinterpret_cast<char*>(&made) + 1, text, length);
        ReleaseMemory();
        word = made | KindShortText;
        return;
    }
    char* taken = static_cast<LongText*>(buffer.get())->GetText();
    std::memcpy(taken, text, length);
    taken[length] = '\0';
    ReleaseMemory();
    SetOutside(KindLongText, buffer.release());
}

void Entry::ReleaseMemory()
{
    if (GetKind() == KindSlot)
    {
        MoveFromSlot();
    }
    if ((kHasMemory >> GetKind() & 1) != 0)
    {
        Free(GetOutside());
        word = KindNone;
    }
}

bool Entry::FitsLongText(std::size_t length) const
{
    return GetKind() == KindLongText && length < GetLongText().capacity;
}

} // namespace Tessel
