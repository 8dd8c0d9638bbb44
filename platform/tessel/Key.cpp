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

Key::Key(const KeyText& name, bool isShared)
    : hash(name.hash), length(name.length & KeyText::kMaxLength), shared(isShared ? 1u : 0u)
{
    char* text = reinterpret_cast<char*>(this + 1);
    std::memcpy(text, name.text, name.length);
    text[name.length] = '\0';
}

const Key* Key::Acquire(const KeyText& name)
{
    if (!IsWorthSharing(name))
    {
        return Create(name, false);
    }
    if (const Key* key = FindShared(name))
    {
        return key;
    }
    if (sharedCount.load(std::memory_order_relaxed) >= kMaxShared)
    {
        return Create(name, false);
    }
    return AddShared(name);
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

const Key* Key::Create(const KeyText& name, bool isShared)
{
    if (name.length > KeyText::kMaxLength)
    {
        throw std::bad_alloc();
    }
    return new (Allocate(sizeof(Key) + name.length + 1)) Key(name, isShared);
}

const Key* Key::FindShared(const KeyText& name)
{
    for (std::uint32_t at = name.hash % kPlaces;; at = (at + 1) % kPlaces)
    {
        const Key* key = sharedKeys[at].load(std::memory_order_acquire);
        if (key == nullptr || key->Is(name))
        {
            return key;
        }
    }
}

const Key* Key::AddShared(const KeyText& name)
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    if (const Key* key = FindShared(name))
    {
        return key;
    }
    const std::uint32_t count = sharedCount.load(std::memory_order_relaxed);
    const bool isRoom = count < kMaxShared;
    const Key* key = Create(name, isRoom);
    if (isRoom)
    {
        std::uint32_t at = name.hash % kPlaces;
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
