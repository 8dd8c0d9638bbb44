// VELL: data-driven hierarchical state machines.
// platform/tessel/Key.cpp: the stored text of a key, shared by all tables or owned by one.
#include "platform/tessel/Key.h"

#include <atomic>
#include <mutex>
#include <new>

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
    const bool isNumber = name.text[0] >= '0' && name.text[0] <= '9';
    return !isNumber && name.length <= Key::kMaxSharedLength;
}

// The aligned forms of new are slower, and not needed where the plain ones align enough.
constexpr bool kIsPlainNewEnough = __STDCPP_DEFAULT_NEW_ALIGNMENT__ >= Key::kAlignment;

void* Allocate(std::size_t size)
{
    return kIsPlainNewEnough ? ::operator new(size)
                             : ::operator new (size, std::align_val_t{Key::kAlignment});
}

void Free(void* memory)
{
    if (kIsPlainNewEnough)
    {
        ::operator delete(memory);
    }
    else
    {
        ::operator delete (memory, std::align_val_t{Key::kAlignment});
    }
}

} // namespace

Key::Key(const KeyText& name, std::uint32_t nameHash, bool isShared)
    : hash(nameHash), length(name.length & KeyText::kMaxLength), shared(isShared ? 1u : 0u)
{
    char* text = reinterpret_cast<char*>(this + 1);
    std::memcpy(text, name.text, name.length);
    text[name.length] = '\0';
}

const Key* Key::Acquire(const KeyText& name)
{
    const std::uint32_t hash = name.ComputeHash();
    if (!IsWorthSharing(name))
    {
        return Create(name, hash, false);
    }
    if (const Key* key = FindShared(name, hash))
    {
        return key;
    }
    if (sharedCount.load(std::memory_order_relaxed) >= kMaxShared)
    {
        return Create(name, hash, false);
    }
    return AddShared(name, hash);
}

void Key::Release(const Key* key)
{
    if (key != nullptr && !key->IsShared())
    {
        Free(const_cast<Key*>(key));
    }
}

std::uint32_t Key::GetSharedCount()
{
    return sharedCount.load(std::memory_order_relaxed);
}

const Key* Key::Create(const KeyText& name, std::uint32_t hash, bool isShared)
{
    if (name.length > KeyText::kMaxLength)
    {
        throw std::bad_alloc();
    }
    return new (Allocate(sizeof(Key) + name.length + 1)) Key(name, hash, isShared);
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
    if (const Key* key = FindShared(name, hash))
    {
        return key;
    }
    const std::uint32_t count = sharedCount.load(std::memory_order_relaxed);
    const bool isRoom = count < kMaxShared;
    const Key* key = Create(name, hash, isRoom);
    if (isRoom)
    {
        std::uint32_t at = hash % kPlaces;
        while (sharedKeys[at].load(std::memory_order_relaxed) != nullptr)
        {
            at = (at + 1) % kPlaces;
        }
        sharedKeys[at].store(key, std::memory_order_release);
        sharedCount.store(count + 1, std::memory_order_relaxed);
    }
    return key;
}

} // namespace Tessel
