// VELL: data-driven hierarchical state machines.
// platform/tessel/Shape.cpp: the name and the keys of all tables that were made the same way.
#include "platform/tessel/Shape.h"

#include <algorithm>
#include <iterator>
#include <mutex>

namespace Tessel
{

namespace
{

// Never more than half full, so a probe always meets an empty place. Places are only ever filled:
// readers need no lock.
constexpr std::uint32_t kPlaces = 2 * Shape::kMaxShapes;

std::atomic<const Shape*> filed[kPlaces];
std::atomic<std::uint32_t> shapeCount{Shape::kUnnamed + 1};
std::mutex shapeMutex;

} // namespace

static_assert(sizeof(void*) != 8 || sizeof(Shape) == 128, "found by a shift");

Shape Shape::shapes[kMaxShapes];

std::atomic<std::uint8_t> Shape::expectedKeys[kMaxShapes];
std::atomic<std::uint16_t> Shape::empty[Key::kMaxShared];

const Shape& Shape::AddEmpty(const Key& name)
{
    const std::lock_guard<std::mutex> lock(shapeMutex);
    std::atomic<std::uint16_t>& number = empty[name.GetNumber()];
    const std::uint32_t count = GetCount();
    if (number.load(std::memory_order_relaxed) == kNone)
    {
        if (count == kMaxShapes)
        {
            return Get(kUnnamed);
        }
        Shape& shape = shapes[count];
        shape.name = &name;
        shapeCount.store(count + 1, std::memory_order_release);
        number.store(shape.GetNumber(), std::memory_order_release);
    }
    return Get(number.load(std::memory_order_relaxed));
}

std::uint32_t Shape::GetCount()
{
    return shapeCount.load(std::memory_order_acquire);
}

std::uint32_t Shape::FindAmongAll(const Key& key) const
{
    for (std::uint32_t i = 0; i < keyCount; ++i)
    {
        if (&GetKey(i) == &key)
        {
            return i;
        }
    }
    return kNoKey;
}

const Shape* Shape::FindNext(const Key& key) const
{
    if (keyCount == kMaxKeys || !key.IsShared())
    {
        return nullptr;
    }
    // The odd constants of xxHash32 (PRIME32_1 and PRIME32_2).
    const std::uint32_t mixed =
        static_cast<std::uint32_t>(key.GetNumber()) * 0x9E3779B1u ^ GetNumber() * 0x85EBCA77u;
    const std::uint32_t place = (mixed ^ mixed >> 15) % kPlaces;
    const Shape* next = FindFiled(key, place);
    return next != nullptr ? next : AddNext(key, place);
}

const Shape* Shape::FindFiled(const Key& key, std::uint32_t place) const
{
    for (std::uint32_t at = place;; at = (at + 1) % kPlaces)
    {
        const Shape* shape = filed[at].load(std::memory_order_acquire);
        if (shape == nullptr || (shape->parent == GetNumber() && shape->keys[keyCount + 1] == &key))
        {
            return shape;
        }
    }
}

const Shape* Shape::AddNext(const Key& key, std::uint32_t place) const
{
    // Another thread may have filed it meanwhile, as the last one for which there was space.
    if (GetCount() == kMaxShapes)
    {
        return FindFiled(key, place);
    }
    const std::lock_guard<std::mutex> lock(shapeMutex);
    const Shape* found = FindFiled(key, place);
    const std::uint32_t count = GetCount();
    if (found != nullptr || count == kMaxShapes)
    {
        return found;
    }
    Shape& shape = shapes[count];
    shape.Follow(*this, key);
    std::uint32_t at = place;
    while (filed[at].load(std::memory_order_relaxed) != nullptr)
    {
        at = (at + 1) % kPlaces;
    }
    filed[at].store(&shape, std::memory_order_release);
    shapeCount.store(count + 1, std::memory_order_release);
    if (firstNext.load(std::memory_order_relaxed) == nullptr)
    {
        firstNext.store(&shape, std::memory_order_release);
    }
    return &shape;
}

/// Makes this the shape that has `key` behind the keys of `before`.
void Shape::Follow(const Shape& before, const Key& key)
{
    name = before.name;
    keyCount = before.keyCount + 1;
    std::copy(std::begin(before.keys), std::end(before.keys), keys);
    keys[keyCount] = &key;
    std::copy(std::begin(before.likelyPlaces), std::end(before.likelyPlaces), likelyPlaces);
    std::uint8_t& likely = likelyPlaces[GetLikely(key)];
    likely = likely == 0 ? static_cast<std::uint8_t>(keyCount) : likely;
    const std::uint64_t tag = key.GetKeyText().GetTag();
    tags = before.tags | tag << (8 * before.keyCount);
    parent = before.GetNumber();
    root = before.keyCount == 0 ? parent : before.root;
}

} // namespace Tessel
