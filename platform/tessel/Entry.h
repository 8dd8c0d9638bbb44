// VELL: data-driven hierarchical state machines.
// platform/tessel/Entry.h: one key of a table with its value.
#pragma once

#include <tessel/Tessel.h>

#include "platform/tessel/Key.h"

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

/// One key of a table with its value: 32 bytes on a 64-bit machine, the size that most decides what
/// a tree of many small tables takes. The low bits of the key's address are the kind.
class Entry final : public KVValue
{
public:
    /// How the value is stored: the type numbers, and a kind of its own for a text outside.
    enum Kind : unsigned
    {
        KindNone = ValueType_None,
        KindShortText = ValueType_Text,
        KindLongText = 2,
        KindFloat2 = ValueType_Float2,
        KindFloat3 = ValueType_Float3,
        KindFloat4 = ValueType_Float4,
        KindTable = ValueType_Table,
        KindInt = ValueType_Int,
        KindFloat = ValueType_Float,
        KindUInt = ValueType_UInt,
    };

    /// The longest text that is stored in the entry itself.
    static constexpr std::size_t kMaxShortText = 15;

    /// Takes over `key`, which whoever removes the entry gives back.
    explicit Entry(const Key* key) : keyAndKind(reinterpret_cast<std::uintptr_t>(key)), payload{}
    {
    }

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

    /// Stores a plain value. A long text or a table that the entry held is the caller's to release.
    template <class Value>
    void Store(Kind kind, const Value& value)
    {
        static_assert(sizeof(Value) <= sizeof(payload), "a value fits into the entry");
        std::memcpy(payload, &value, sizeof(value));
        SetKind(kind);
    }

    /// Stores a plain value in place of one of the same kind.
    template <class Value>
    void Overwrite(const Value& value)
    {
        static_assert(sizeof(Value) <= sizeof(payload), "a value fits into the entry");
        std::memcpy(payload, &value, sizeof(value));
    }

    /// Tells whether this is the entry of `key`, null allowed, with a value of `kind`: one compare.
    bool Is(const Key* key, Kind kind) const
    {
        return keyAndKind == (reinterpret_cast<std::uintptr_t>(key) | kind);
    }

    /// Stores a text that may be in this very entry. `buffer` has space for it when it is neither
    /// short nor fits into the long text that the entry holds, and is taken over then. A table that
    /// the entry held is the caller's to release.
    void StoreText(const char* text, std::size_t length, std::unique_ptr<char[]>& buffer);

    /// Frees a long text, if there is one. The kind is none then.
    void ReleaseText();

    /// Tells whether the entry holds a long text in whose place one of `length` fits.
    bool FitsLongText(std::size_t length) const;

    /// Tells whether there is a long text or a table, which has to be released.
    bool IsOwner() const
    {
        return ((1u << KindLongText | 1u << KindTable) >> GetKind() & 1) != 0;
    }

    /// Gives the long text that is stored, or null.
    char* GetLongText() const
    {
        return GetKind() == KindLongText ? Load<LongText>().text : nullptr;
    }

    /// Gives the handle that is stored, live or stale; null when the entry holds no table.
    KVTable GetStoredTable() const
    {
        KVTable table;
        if (GetKind() == KindTable)
        {
            std::memcpy(&table, payload, sizeof(table));
        }
        return table;
    }

    /// Tells whether the entry holds `table`, live or stale.
    bool IsTable(KVTable table) const
    {
        return GetKind() == KindTable && Load<KVTable>() == table;
    }

    Kind GetKind() const
    {
        return static_cast<Kind>(keyAndKind & kKindMask);
    }

    const Key* GetKey() const
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the pointer shares its word with the kind.
        return reinterpret_cast<const Key*>(keyAndKind & ~kKindMask);
    }

private:
    static constexpr std::uintptr_t kKindMask = Key::kAlignment - 1;

    struct LongText
    {
        char* text;             ///< owned
        std::uint32_t capacity; ///< bytes, the final zero among them
    };

    template <class Value>
    Value Load() const
    {
        Value value;
        std::memcpy(&value, payload, sizeof(value));
        return value;
    }

    void SetKind(Kind kind)
    {
        keyAndKind = (keyAndKind & ~kKindMask) | kind;
    }

    std::uintptr_t keyAndKind;
    alignas(8) unsigned char payload[16];
};

// In line: these are what most reads come to.

inline int Entry::GetIntValue() const
{
    const Kind kind = GetKind();
    if (kind == KindInt || kind == KindUInt)
    {
        return Load<int>();
    }
    return kind == KindFloat ? Saturate<int>(Load<float>()) : 0;
}

inline float Entry::GetFloatValue() const
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

inline const char* Entry::GetStringValue() const
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

inline unsigned Entry::GetUIntValue() const
{
    const Kind kind = GetKind();
    if (kind == KindInt || kind == KindUInt)
    {
        return Load<unsigned>();
    }
    if (kind != KindFloat)
    {
        return 0;
    }
    const float value = Load<float>();
    return value < 0.0f ? static_cast<unsigned>(Saturate<int>(value)) : Saturate<unsigned>(value);
}

} // namespace Tessel
