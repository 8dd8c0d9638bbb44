// VELL: data-driven hierarchical state machines.
// platform/tessel/OwnKeys.h: the keys of a table that no other table shares.
#pragma once

#include "platform/tessel/Entry.h"
#include "platform/tessel/Key.h"
#include "platform/tessel/KeyIndex.h"
#include "platform/tessel/Shape.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace Tessel
{

/// A key of one table: a short text that is not shared, or the address of a key. Eight bytes, so
/// that the decimal ids of a large table need no memory but this.
class OwnKey
{
public:
    /// Takes the shared key.
    explicit OwnKey(const Key& key) : bits(reinterpret_cast<std::uintptr_t>(&key))
    {
    }

    /// Takes a copy of a text, or a key with it. May throw `std::bad_alloc`.
    explicit OwnKey(const KeyText& name);

    /// As above; the key of a decimal id is placed in `pool`.
    OwnKey(const KeyText& name, KeyPool& pool);

    void Release() const
    {
        if (!IsText())
        {
            Key::Release(&GetKey());
        }
    }

    /// Gives the text; when it is short, it is in this object.
    KeyText GetKeyText() const
    {
        return IsText() ? KeyText(reinterpret_cast<const char*>(&bits)) : GetKey().GetKeyText();
    }

    const char* GetText() const
    {
        return IsText() ? reinterpret_cast<const char*>(&bits) : GetKey().GetText();
    }

    std::uint32_t GetHash() const
    {
        return IsText() ? GetKeyText().ComputeHash() : GetKey().GetHash();
    }

    /// Tells whether this is the shared `key`.
    bool Is(const Key& key) const
    {
        return bits == reinterpret_cast<std::uintptr_t>(&key);
    }

    /// Tells whether this is the text of `name`.
    bool Is(const KeyText& name) const
    {
        return IsText() ? bits == GetTextBits(name) : GetKey().Is(name);
    }

    /// Gives the shared key that this is, or null.
    const Key* GetShared() const
    {
        return IsText() || !GetKey().IsShared() ? nullptr : &GetKey();
    }

private:
    /// Gives the bits of a short text, or 0 for one that cannot be told from an address or is long.
    static std::uint64_t GetTextBits(const KeyText& name)
    {
        std::uint64_t made = 0;
        if (name.length < sizeof(made))
        {
            std::memcpy(&made, name.text, name.length);
        }
        return (made & kFreeBits) != 0 ? made : 0;
    }

    bool IsText() const
    {
        return (bits & kFreeBits) != 0;
    }

    const Key& GetKey() const
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the word is an address or a text.
        return *reinterpret_cast<const Key*>(static_cast<std::uintptr_t>(bits));
    }

    std::uint64_t bits;
};

/// The keys of a table that no other table shares, and its entries behind the first eight. Up to
/// eight keys are found by a tag of one byte, more by an index.
class OwnKeys
{
public:
    /// The keys whose entries are the table's.
    static constexpr std::uint32_t kFirstKeys = Shape::kMaxKeys;

    /// Begins with the keys of `shape`.
    explicit OwnKeys(const Shape& shape);
    ~OwnKeys();

    OwnKeys(const OwnKeys&) = delete;
    OwnKeys& operator=(const OwnKeys&) = delete;

    /// Adds `name`, which is not there yet, and makes space for its entry, unless that is the
    /// table's. May throw `std::bad_alloc`; nothing but space is added then.
    void Add(const KeyText& name);

    /// Give the place of a key, or `Shape::kNoKey`. The first is for a shared key.
    std::uint32_t Find(const Key& key) const;
    std::uint32_t Find(const KeyText& name) const;

    std::uint32_t GetKeyCount() const
    {
        return keyCount;
    }

    const OwnKey& GetKey(std::uint32_t index) const
    {
        return index < kFirstKeys ? GetFirst()[index]
                                  : GetPart(index).GetKeys()[(index - kFirstKeys) % kPartKeys];
    }

    /// Gives the entry of a key behind the first ones.
    Entry* GetEntry(std::uint32_t index) const
    {
        return GetPart(index).GetEntries() + (index - kFirstKeys) % kPartKeys;
    }

private:
    static constexpr std::uint32_t kPartKeys = 16;

    /// Some keys with their entries, which stay where they are.
    struct Part
    {
        Entry* GetEntries()
        {
            return reinterpret_cast<Entry*>(entries);
        }

        OwnKey* GetKeys()
        {
            return reinterpret_cast<OwnKey*>(keys);
        }

        alignas(Entry) unsigned char entries[kPartKeys * sizeof(Entry)];
        alignas(OwnKey) unsigned char keys[kPartKeys * sizeof(OwnKey)];
    };

    Part& GetPart(std::uint32_t index) const
    {
        return *parts[(index - kFirstKeys) / kPartKeys];
    }

    OwnKey* GetFirst()
    {
        return reinterpret_cast<OwnKey*>(first);
    }

    const OwnKey* GetFirst() const
    {
        return reinterpret_cast<const OwnKey*>(first);
    }

    void AddFirst(const OwnKey& key);
    void AddFurther(const KeyText& name);

    alignas(OwnKey) unsigned char first[kFirstKeys * sizeof(OwnKey)];
    std::uint64_t tags = 0; ///< those of the first keys, a byte each
    std::uint32_t keyCount = 0;
    KeyIndex keyIndex; ///< of all keys, as soon as there are more than the first ones
    KeyPool pool;      ///< for those behind the first ones
    std::vector<std::unique_ptr<Part>> parts; ///< of those behind the first ones
};

} // namespace Tessel
