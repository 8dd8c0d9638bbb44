// VELL: data-driven hierarchical state machines.
// platform/tessel/Key.h: the stored text of a key, shared by all tables or owned by one.
#pragma once

#include "platform/tessel/KeyText.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Tessel
{

/// Space for the keys of one large table, which are freed all at once.
class KeyPool
{
public:
    KeyPool() = default;
    ~KeyPool();

    KeyPool(const KeyPool&) = delete;
    KeyPool& operator=(const KeyPool&) = delete;

    /// Gives `size` bytes, aligned as keys are. May throw `std::bad_alloc`; nothing is lost
    /// then.
    void* Take(std::size_t size);

private:
    struct Block;

    Block* blocks = nullptr;
    char* next = nullptr;     ///< what is left of the first block
    std::size_t left = 0;     ///< bytes of it
    std::size_t nextSize = 0; ///< bytes of the block to come, which grow up to a limit
};

/// The stored text of a key. Its address is a multiple of 16. Names are shared by all tables and
/// kept for good: tables that have them share their shapes (Shape.h), and take no lock for them.
/// What is not worth keeping (decimal ids, long texts, names beyond the first 4096) belongs to its
/// one user, or is in the pool of the table that it is a key of. No text is both: once there is no
/// space for further shared ones, there never is.
class Key
{
public:
    /// The most keys that are shared and kept for good.
    static constexpr std::uint32_t kMaxShared = 4096;

    /// What a shared key takes, its text and the final zero with it. They are contiguous.
    static constexpr std::size_t kSharedSize = 64;

    /// The longest text that is shared.
    static constexpr std::size_t kMaxSharedLength = kSharedSize - 9;

    /// Tells whether `name` is like a decimal id, of which there are too many to share them.
    static bool IsId(const KeyText& name)
    {
        return name.text[0] >= '0' && name.text[0] <= '9';
    }

    /// Gives a key with the text of `name`, to be given back by `Release`. Takes a lock only for a
    /// name that is seen for the first time. May throw `std::bad_alloc`.
    static const Key* Acquire(const KeyText& name);

    /// Gives the shared key with the text of `name`, or null when it is not worth sharing or there
    /// is no space for it. Takes a lock only for a name that is seen for the first time.
    static const Key* FindOrShare(const KeyText& name);

    /// As `Acquire`; a decimal id is placed in `pool`.
    static const Key* Acquire(const KeyText& name, KeyPool& pool);

    /// Gives the shared key that `Remember` was last told of for the address `text`, if that is the
    /// text there now; otherwise null, also for null. Programs look up with the same literals again
    /// and again, and this is the shortest way to their keys.
    static const Key* Recall(const char* text)
    {
        if (text == nullptr)
        {
            return nullptr;
        }
        const Key* key = GetRemembered(text).load(std::memory_order_acquire);
        return key != nullptr && std::strcmp(key->GetText(), text) == 0 ? key : nullptr;
    }

    /// Notes that `key` has the text at the address `text`, for `Recall`. Only shared keys are.
    static void Remember(const char* text, const Key& key)
    {
        if (key.IsShared())
        {
            GetRemembered(text).store(&key, std::memory_order_release);
        }
    }

    /// As `Acquire`, for a text that may be looked up again.
    static const Key* AcquireRemembered(const char* text);

    /// As `FindOrShare`, for a text that may be looked up again.
    static const Key* Share(const char* text);

    /// Ends the use of a key; null is allowed. No other user of a shared key is touched.
    static void Release(const Key* key);

    /// Gives the number of keys that are kept for good.
    static std::uint32_t GetSharedCount();

    /// Gives the number of a shared key, below `kMaxShared`; of another one a larger number.
    std::uintptr_t GetNumber() const
    {
        return (reinterpret_cast<std::uintptr_t>(this) -
                reinterpret_cast<std::uintptr_t>(sharedRow)) /
               kSharedSize;
    }

    bool IsShared() const
    {
        return reinterpret_cast<std::uintptr_t>(this) -
                   reinterpret_cast<std::uintptr_t>(sharedRow) <
               sizeof(sharedRow);
    }

    const char* GetText() const
    {
        return reinterpret_cast<const char*>(this + 1);
    }

    std::uint32_t GetHash() const
    {
        return hash;
    }

    KeyText GetKeyText() const
    {
        return KeyText(GetText(), length);
    }

    /// Tells whether this is the text of `name`.
    bool Is(const KeyText& name) const
    {
        return length == name.length && IsSameText(GetText(), name.text, name.length);
    }

    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

private:
    Key(const KeyText& name, std::uint32_t nameHash, bool isOwned);

    /// Gives the bytes of a key with its text.
    static std::size_t GetSize(const KeyText& name)
    {
        return sizeof(Key) + name.length + 1;
    }

    /// As many as there are addresses in a page: the place of a literal is then the same in every
    /// run of a program.
    static constexpr std::size_t kRememberedCount = 4096;

    static std::atomic<const Key*>& GetRemembered(const char* text)
    {
        return remembered[reinterpret_cast<std::uintptr_t>(text) % kRememberedCount];
    }

    static const Key* CreateOwned(const KeyText& name, std::uint32_t hash);
    static const Key* AcquireShared(const KeyText& name, std::uint32_t hash);
    static const Key* FindShared(const KeyText& name, std::uint32_t hash);
    static const Key* AddShared(const KeyText& name, std::uint32_t hash);

    alignas(kSharedSize) static unsigned char sharedRow[kMaxShared * kSharedSize];
    static std::atomic<const Key*> remembered[kRememberedCount];

    std::uint32_t hash;
    std::uint32_t length : 31;
    std::uint32_t owned : 1; ///< 1 when `Release` frees it; the text follows the record
};

static_assert(sizeof(Key) == 8, "the longest shared text is what it leaves of its place");

} // namespace Tessel
