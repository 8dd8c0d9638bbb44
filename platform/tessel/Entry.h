// VELL: data-driven hierarchical state machines.
// platform/tessel/Entry.h: the value of one key of a table.
#pragma once

#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include "platform/tessel/Memory.h"
#include "platform/tessel/TableHandle.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace Tessel
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

/// The value of one key of a table: 16 bytes on a 64-bit machine, the size that most decides what a
/// tree of many small tables takes. The key is in the table's shape. Behind the pointer that every
/// `KVValue` has is a word: its four low bits are the kind, the rest is a number, a short text,
/// or the address of what does not fit or of the slot.
class Entry final : public KVValue
{
public:
    /// How the value is stored: the number of its type, with a kind of its own for a long text and
    /// for a value in a slot.
    enum Kind : unsigned
    {
        KindNone = ValueType_None,
        KindShortText = ValueType_Text,
        KindLongText = 2,
        KindSlot = 3,
        KindFloat2 = ValueType_Float2,
        KindFloat3 = ValueType_Float3,
        KindFloat4 = ValueType_Float4,
        KindTable = ValueType_Table,
        KindInt = ValueType_Int,
        KindFloat = ValueType_Float,
        KindUInt = ValueType_UInt,
    };

    /// The longest text that is stored in the entry itself.
    static constexpr std::size_t kMaxShortText = 6;

    /// Memory for a value that does not fit into an entry.
    using Buffer = std::unique_ptr<void, Freeing>;

    Entry() = default;
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    int GetValueType() const override;
    int GetIntValue() const override;
    float GetFloatValue() const override;
    const char* GetStringValue() const override;
    int GetFloat2Value(Float2* out) const override;
    int GetFloat3Value(Float3* out) const override;
    unsigned GetUIntValue() const override;

    /// As `GetFloat3Value`, for four floats.
    int GetFloat4Value(Float4* out) const;

    /// Stores a number. What the entry owned is the caller's to release, see `OldValue`.
    template <class Number>
    void Store(Kind kind, Number number)
    {
        static_assert(sizeof(Number) == 4, "a number is the upper half of the word");
        std::uint32_t bits = 0;
        std::memcpy(&bits, &number, sizeof(bits));
        word = static_cast<std::uint64_t>(bits) << 32 | kind;
    }

    /// Stores a handle. What the entry owned is the caller's to release.
    void StoreTable(KVTable table)
    {
        word = TableHandle::GetBits(table) | KindTable;
    }

    /// Stores some floats in place of others. The entry must hold floats, of any number.
    template <class Floats>
    void StoreFloats(Kind kind, const Floats& floats)
    {
        std::memcpy(GetOutside(), &floats, sizeof(floats));
        word = (word & ~kKindMask) | kind;
    }

    /// Stores some floats in `buffer`, which was made for them and is taken over. What the entry
    /// owned is the caller's to release.
    template <class Floats>
    void StoreFloats(Kind kind, const Floats& floats, Buffer buffer)
    {
        SetOutside(KindFloat4, buffer.release());
        StoreFloats(kind, floats);
    }

    /// Gives memory for floats of any number. May throw `std::bad_alloc`.
    static Buffer MakeFloatsBuffer()
    {
        return Buffer(Allocate(sizeof(Float4)));
    }

    /// Tells whether there is an unsigned: the lower half of the word is the kind alone.
    bool HasUInt() const
    {
        return static_cast<std::uint32_t>(word) == KindUInt;
    }

    /// Stores an unsigned in place of one.
    void ReplaceUInt(unsigned number)
    {
        std::memcpy(reinterpret_cast<char*>(&word) + sizeof(word) / 2, &number, sizeof(number));
    }

    /// Moves the value, an int or floats, to `slot`, where it is read and written from now on.
    void MoveToSlot(KVSlot& slot);

    /// Moves the value back from the slot, which must be there, and unbinds the slot.
    void MoveFromSlot();

    /// Stores a value in the slot, if there is one with a value of `kind`. False otherwise.
    template <class Value>
    bool StoreInSlot(Kind kind, const Value& value)
    {
        if (GetKind() != KindSlot || GetValueKind() != kind)
        {
            return false;
        }
        std::memcpy(GetSlot().bytes, &value, sizeof(value));
        return true;
    }

    /// Stores a text that may be in this very entry. A long text that the entry holds is kept as
    /// long as what follows fits into it, so that a text that comes and goes takes no memory each
    /// time. `buffer` is one for a text that is neither short nor fits, and is taken over then. A
    /// table that the entry held is the caller's to release.
    void StoreText(const char* text, std::size_t length, Buffer buffer);

    /// Gives memory for a long text. May throw `std::bad_alloc`.
    static Buffer MakeTextBuffer(std::size_t length);

    /// Unbinds the slot, if there is one, and frees the memory of a value that does not fit into
    /// the entry, whose kind is then none.
    void ReleaseMemory();

    /// Tells whether the entry holds a long text in whose place one of `length` fits.
    bool FitsLongText(std::size_t length) const;

    /// Tells whether there is memory, a slot or a table, which has to be released.
    bool IsOwner() const
    {
        return ((kHasMemory | 1u << KindSlot | 1u << KindTable) >> GetKind() & 1) != 0;
    }

    /// Tells whether there are floats of any number.
    bool HasFloats() const
    {
        return (kHasFloats >> GetKind() & 1) != 0;
    }

    /// Tells whether the value may be in a slot.
    bool CanMoveToSlot() const
    {
        return ((kHasFloats | 1u << KindInt | 1u << KindFloat) >> GetKind() & 1) != 0;
    }

    /// Gives the handle that is stored, live or stale; null when the entry holds no table.
    KVTable GetStoredTable() const
    {
        return GetKind() == KindTable
                   ? TableHandle::FromBits(static_cast<std::uintptr_t>(word - KindTable))
                   : KVTable();
    }

    /// Tells whether the entry holds `table`, live or stale.
    bool IsTable(KVTable table) const
    {
        return word == (TableHandle::GetBits(table) | KindTable);
    }

    /// Gives how the entry stores the value.
    Kind GetKind() const
    {
        return ToKind(word);
    }

    /// Gives how the value is stored, wherever it is.
    Kind GetValueKind() const
    {
        return GetKind() == KindSlot ? ToKind(GetSlot().held) : GetKind();
    }

    class OldValue;

private:
    static constexpr std::uint64_t kKindMask = kFreeBits;
    static constexpr unsigned kHasFloats = 1u << KindFloat2 | 1u << KindFloat3 | 1u << KindFloat4;
    static constexpr unsigned kHasMemory = kHasFloats | 1u << KindLongText;

    /// What a long text begins with; its characters follow.
    struct LongText
    {
        std::uint32_t capacity; ///< bytes, the final zero among them

        char* GetText()
        {
            return reinterpret_cast<char*>(this + 1);
        }
    };

    explicit Entry(std::uint64_t newWord) : word(newWord)
    {
    }

    static Kind ToKind(std::uint64_t word)
    {
        return static_cast<Kind>(word & kKindMask);
    }

    KVSlot& GetSlot() const
    {
        return *static_cast<KVSlot*>(GetOutside());
    }

    /// Gives the number in the slot as a value of its own, an empty one when there is no number.
    Entry GetSlotNumber() const;

    void* GetOwnBytes();
    std::size_t GetOwnSize() const;

    void* GetOutside() const
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the pointer shares its word with the kind.
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word & ~kKindMask));
    }

    void SetOutside(Kind kind, void* memory)
    {
        word = reinterpret_cast<std::uintptr_t>(memory) | kind;
    }

    LongText& GetLongText() const
    {
        return *static_cast<LongText*>(GetOutside());
    }

    template <class Number>
    Number LoadNumber() const
    {
        static_assert(sizeof(Number) == 4, "a number is the upper half of the word");
        const std::uint32_t bits = static_cast<std::uint32_t>(word >> 32);
        Number number;
        std::memcpy(&number, &bits, sizeof(number));
        return number;
    }

    template <class Floats>
    int GetFloats(Kind kind, Floats* out) const;

    std::uint64_t word = KindNone; ///< a short text is behind the byte that has the kind
};

/// What an entry held before a write, released at the end of its scope.
class Entry::OldValue
{
public:
    explicit OldValue(const Entry& entry) : child(entry.GetStoredTable())
    {
        held.word = entry.word;
    }

    ~OldValue();

    OldValue(const OldValue&) = delete;
    OldValue& operator=(const OldValue&) = delete;

private:
    Entry held;
    KVTable child;
};

// In line: these are what most reads come to.

inline int Entry::GetIntValue() const
{
    const Kind kind = GetKind();
    if (kind == KindInt || kind == KindUInt)
    {
        return LoadNumber<int>();
    }
    if (kind == KindFloat)
    {
        return Saturate<int>(LoadNumber<float>());
    }
    return kind == KindSlot ? GetSlotNumber().GetIntValue() : 0;
}

inline float Entry::GetFloatValue() const
{
    switch (GetKind())
    {
    case KindFloat:
        return LoadNumber<float>();
    case KindInt:
        return static_cast<float>(LoadNumber<int>());
    case KindUInt:
        return static_cast<float>(LoadNumber<unsigned>());
    case KindSlot:
        return GetSlotNumber().GetFloatValue();
    default:
        return 0.0f;
    }
}

inline const char* Entry::GetStringValue() const
{
    switch (GetKind())
    {
    case KindShortText:
        return reinterpret_cast<const char*>(&word) + 1;
    case KindLongText:
        return GetLongText().GetText();
    default:
        return nullptr;
    }
}

inline unsigned Entry::GetUIntValue() const
{
    const Kind kind = GetKind();
    if (kind == KindInt || kind == KindUInt)
    {
        return LoadNumber<unsigned>();
    }
    if (kind != KindFloat)
    {
        return kind == KindSlot ? GetSlotNumber().GetUIntValue() : 0;
    }
    const float value = LoadNumber<float>();
    return value < 0.0f ? static_cast<unsigned>(Saturate<int>(value)) : Saturate<unsigned>(value);
}

} // namespace Tessel
