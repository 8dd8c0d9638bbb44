// VELL: data-driven hierarchical state machines.
// platform/tessel/Key.cpp: the stored text of a key, shared by all tables or owned by one.
#include "platform/tessel/Key.h"

#include "platform/tessel/Memory.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace Tessel
{

namespace
{

// Never more than half full, so a probe always meets an empty place. Places are only ever filled:
// readers need no lock.
constexpr std::uint32_t kPlaces = 2 * Key::kMaxShared;

std::atomic<const Key*> sharedKeys[kPlaces];
std::atomic<std::uint32_t> sharedCount{0};
std::mutex sharedMutex;

bool IsWorthSharing(const KeyText& name)
{
    return !Key::IsId(name) && name.length <= Key::kMaxSharedLength;
}

} // namespace

struct alignas(kAlignment) KeyPool::Block
{
    Block* next;
};

KeyPool::~KeyPool()
{
    while (blocks != nullptr)
    {
        Block* block = blocks;
        blocks = block->next;
        Free(block);
    }
}

void* KeyPool::Take(std::size_t size)
{
    constexpr std::size_t kFirstSize = 256;
    constexpr std::size_t kLastSize = 4096;

    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (size > left)
    {
        nextSize = std::clamp(nextSize * 2, kFirstSize, kLastSize);
        blocks = new (Allocate(nextSize)) Block{blocks};
        next = reinterpret_cast<char*>(blocks + 1);
        left = nextSize - sizeof(Block);
    }
    void* taken = next;
    next += size;
    left -= size;
    return taken;
}

alignas(Key::kSharedSize) unsigned char Key::sharedRow[kMaxShared * kSharedSize];
std::atomic<const Key*> Key::remembered[kRememberedCount];

Key::Key(const KeyText& name, std::uint32_t nameHash, bool isOwned)
    : hash(nameHash), length(name.length & KeyText::kMaxLength), owned(isOwned ? 1u : 0u)
{
    char* text = reinterpret_cast<char*>(this + 1);
    std::memcpy(text, name.text, name.length);
    text[name.length] = '\0';
}

const Key* Key::Acquire(const KeyText& name)
{
    const std::uint32_t hash = name.ComputeHash();
    const Key* key = AcquireShared(name, hash);
    return key != nullptr ? key : CreateOwned(name, hash);
}

const Key* Key::Acquire(const KeyText& name, KeyPool& pool)
{
    const bool isShort = name.length <= kMaxSharedLength;
    return isShort && !IsWorthSharing(name) ? new (pool.Take(GetSize(name)))
                                                  Key(name, name.ComputeHash(), false)
                                            : Acquire(name);
}

const Key* Key::AcquireRemembered(const char* text)
{
    const Key* key = Recall(text);
    if (key == nullptr)
    {
        key = Acquire(KeyText(text));
        Remember(text, *key);
    }
    return key;
}

const Key* Key::Share(const char* text)
{
    const Key* key = Recall(text);
    if (key == nullptr)
    {
        key = FindOrShare(KeyText(text));
        if (key != nullptr)
        {
            Remember(text, *key);
        }
    }
    return key;
}

const Key* Key::FindOrShare(const KeyText& name)
{
    return AcquireShared(name, name.ComputeHash());
}

void Key::Release(const Key* key)
{
    if (key != nullptr && key->owned != 0)
    {
        Free(const_cast<Key*>(key));
    }
}

std::uint32_t Key::GetSharedCount()
{
    return sharedCount.load(std::memory_order_acquire);
}

const Key* Key::CreateOwned(const KeyText& name, std::uint32_t hash)
{
    if (name.length > KeyText::kMaxLength)
    {
        throw std::bad_alloc(); // GCOVR_EXCL_LINE: a key of 2 GB
    }
    return new (Allocate(GetSize(name))) Key(name, hash, true);
}

/// Gives the shared key of `name`, made when it is the first one; null when there is none.
const Key* Key::AcquireShared(const KeyText& name, std::uint32_t hash)
{
    if (!IsWorthSharing(name))
    {
        return nullptr;
    }
    if (const Key* key = FindShared(name, hash))
    {
        return key;
    }
    // Another thread may have filed it meanwhile as the last one for which there was space.
    return GetSharedCount() < kMaxShared ? AddShared(name, hash) : FindShared(name, hash);
}

const Key* Key::FindShared(const KeyText& name, std::uint32_t hash)
{
    for (std::uint32_t at = hash % kPlaces;; at = (at + 1) % kPlaces)
    {
        const Key* key = sharedKeys[at].load(std::memory_order_acquire);
        if (key == nullptr || (key->hash == hash && key->Is(name)))
        {
            return key;
        }
    }
}

const Key* Key::AddShared(const KeyText& name, std::uint32_t hash)
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    const Key* key = FindShared(name, hash);
    const std::uint32_t count = GetSharedCount();
    if (key == nullptr && count < kMaxShared)
    {
        key = new (sharedRow + count * kSharedSize) Key(name, hash, false);
        std::uint32_t at = hash % kPlaces;
        while (sharedKeys[at].load(std::memory_order_relaxed) != nullptr)
        {
            at = (at + 1) % kPlaces;
        }
        sharedKeys[at].store(key, std::memory_order_release);
        sharedCount.store(count + 1, std::memory_order_release);
    }
    return key;
}

} // namespace Tessel
