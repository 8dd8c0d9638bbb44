// VELL: data-driven hierarchical state machines.
// platform/tessel/Shape.h: the name and the keys of all tables that were made the same way.
#pragma once

#include "platform/tessel/Key.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Tessel
{

/// The name and the keys, in their order, of all tables that were made the same way. A table that
/// gets a key changes to the shape that has this key more, which is made when it is the first.
///
/// Shapes are shared by all tables of the process and kept for good, like the keys that they have:
/// finding them takes no lock, and nothing counts the tables of a shape. There are at most
/// `kMaxShapes`. A table for which there is no shape has keys of its own (OwnKeys.h): it has more
/// than `kMaxKeys` keys, or one that is not shared, or there is no space for a further shape.
/// Nobody can tell the two apart but by the memory that they take.
class alignas(64) Shape
{
public:
    static constexpr std::uint32_t kMaxKeys = 8;
    static constexpr std::uint32_t kMaxShapes = 4096;

    /// What `Find` gives when there is no such key.
    static constexpr std::uint32_t kNoKey = ~std::uint32_t{0};

    /// The number of a table that has keys of its own. Nothing is ever found in this shape.
    static constexpr std::uint16_t kNone = 0;

    /// The number of the shape without keys of the tables whose names are not shared.
    static constexpr std::uint16_t kUnnamed = 1;

    constexpr Shape() = default;
    Shape(const Shape&) = delete;
    Shape& operator=(const Shape&) = delete;

    static const Shape& Get(std::uint16_t number)
    {
        return shapes[number];
    }

    /// Gives the shape of an empty table named `name`, or the unnamed one when there is none.
    static const Shape& GetEmpty(const Key& name)
    {
        if (!name.IsShared())
        {
            return Get(kUnnamed);
        }
        const std::uint16_t number = empty[name.GetNumber()].load(std::memory_order_acquire);
        return number != kNone ? Get(number) : AddEmpty(name);
    }

    /// Gives the number of shapes that are kept for good.
    static std::uint32_t GetCount();

    /// Gives the shape that has `key`, which this one does not have, behind its keys; null when
    /// there is none.
    const Shape* GetNext(const Key& key) const
    {
        const Shape* next = firstNext.load(std::memory_order_acquire);
        return next != nullptr && next->keys[keyCount + 1] == &key ? next : FindNext(key);
    }

    /// Gives the place of a shared key, or `kNoKey`. A text that is shared is in no other key, so
    /// the address tells.
    std::uint32_t Find(const Key& key) const
    {
        const std::uint32_t likely = likelyPlaces[GetLikely(key)];
        if (keys[likely] == &key)
        {
            return likely - 1;
        }
        return likely == 0 ? kNoKey : FindAmongAll(key);
    }

    /// Gives the place of a key by its text, or `kNoKey`.
    std::uint32_t Find(const KeyText& key) const;

    std::uint16_t GetNumber() const
    {
        return static_cast<std::uint16_t>(this - shapes);
    }

    std::uint32_t GetKeyCount() const
    {
        return keyCount;
    }

    const Key& GetKey(std::uint32_t index) const
    {
        return *keys[index + 1];
    }

    /// Gives the name, or null in an unnamed shape.
    const Key* GetName() const
    {
        return name;
    }

    /// Gives the number of keys that the next table of this empty shape is expected to get: as many
    /// as the last one has, and the most for the first one. Any table may get any number; this only
    /// decides where its values are.
    std::uint32_t ExpectKeys() const
    {
        std::atomic<std::uint8_t>& expected = expectedKeys[GetNumber()];
        const std::uint8_t count = expected.load(std::memory_order_relaxed);
        if (count == kNotKnown)
        {
            expected.store(kNoKeys, std::memory_order_relaxed);
            return kMaxKeys;
        }
        return count == kNoKeys ? 0 : count;
    }

    /// Notes that a table has got this shape.
    void NoteUse() const
    {
        NoteKeys(root, keyCount);
    }

    /// Notes that a table of this empty shape has got `count` keys, at most `kMaxKeys`, that no
    /// shape has.
    void NoteOwnKeys(std::uint32_t count) const
    {
        NoteKeys(GetNumber(), count);
    }

private:
    static constexpr std::uint8_t kNotKnown = 0;
    static constexpr std::uint8_t kNoKeys = 0xff;

    static constexpr std::uint32_t kLikelyPlaces = 16;

    static std::uint32_t GetLikely(const Key& key)
    {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&key) /
                                          Key::kSharedSize % kLikelyPlaces);
    }

    static void NoteKeys(std::uint16_t root, std::uint32_t count)
    {
        expectedKeys[root].store(static_cast<std::uint8_t>(count), std::memory_order_relaxed);
    }

    std::uint32_t FindAmongAll(const Key& key) const;
    const Shape* FindNext(const Key& key) const;
    static const Shape& AddEmpty(const Key& name);
    const Shape* FindFiled(const Key& key, std::uint32_t place) const;
    const Shape* AddNext(const Key& key, std::uint32_t place) const;
    void Follow(const Shape& before, const Key& key);

    static Shape shapes[kMaxShapes];

    /// What `ExpectKeys` gives, by the number of the empty shape. Apart from the shapes: they are
    /// read by all threads, and this is written with each key that a table gets.
    static std::atomic<std::uint8_t> expectedKeys[kMaxShapes];

    /// The number of the empty shape of each name, by the number of its key.
    static std::atomic<std::uint16_t> empty[Key::kMaxShared];

    const Key* name = nullptr;
    const Key* keys[kMaxKeys + 1] = {}; ///< from 1 on
    std::uint64_t tags = 0;             ///< those of the keys, a byte each
    mutable std::atomic<const Shape*> firstNext{nullptr};
    std::uint8_t likelyPlaces[kLikelyPlaces] = {}; ///< where a key is, by its address; 0: nowhere
    std::uint32_t keyCount = 0;
    std::uint16_t parent = kNone; ///< the shape that this one follows
    std::uint16_t root = kNone;   ///< the empty shape of the name
};

/// Finds tags in words of eight of them, see `KeyText::GetTag`.
class TagHits
{
public:
    /// `tags` are eight of them, 0 where there is no key.
    TagHits(std::uint64_t tags, std::uint32_t tag)
    {
        // A byte of `others` is zero where the tag is the wanted one. The bytes of `hits` that this
        // extra finds come after a true hit, and the comparison of the texts sorts them out.
        constexpr std::uint64_t kLowest = 0x0101010101010101u;
        const std::uint64_t others = tags ^ kLowest * tag;
        hits = (others - kLowest) & ~others & (kLowest << 7);
    }

    bool IsAny() const
    {
        return hits != 0;
    }

    /// Gives the place of the first hit, which there must be, and drops it.
    std::uint32_t Take()
    {
        const std::uint32_t place = CountTrailingZeros(hits) / 8;
        hits &= hits - 1;
        return place;
    }

private:
    /// The number of zero bits below the lowest one that is set; `bits` is not 0.
    static std::uint32_t CountTrailingZeros(std::uint64_t bits)
    {
#if defined(__GNUC__)
        return static_cast<std::uint32_t>(__builtin_ctzll(bits));
#else
        std::uint32_t count = 0;
        for (; (bits & 1) == 0; bits >>= 1)
        {
            ++count;
        }
        return count;
#endif
    }

    std::uint64_t hits;
};

inline std::uint32_t Shape::Find(const KeyText& key) const
{
    for (TagHits hits(tags, key.GetTag()); hits.IsAny();)
    {
        const std::uint32_t place = hits.Take();
        if (GetKey(place).Is(key))
        {
            return place;
        }
    }
    return kNoKey;
}

} // namespace Tessel
