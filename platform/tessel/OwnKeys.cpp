// VELL: data-driven hierarchical state machines.
// platform/tessel/OwnKeys.cpp: the keys of a table that no other table shares.
#include "platform/tessel/OwnKeys.h"

#include <new>
#include <utility>

namespace Tessel
{

static_assert(sizeof(OwnKey) == 8, "a large table has one for each of its keys");
static_assert(Shape::kNoKey == KeyIndex::kNone, "one number for what is not there");

OwnKey::OwnKey(const KeyText& name) : bits(reinterpret_cast<std::uintptr_t>(Key::FindOrShare(name)))
{
    if (bits == 0)
    {
        bits = GetTextBits(name);
    }
    if (bits == 0)
    {
        bits = reinterpret_cast<std::uintptr_t>(Key::Acquire(name));
    }
}

OwnKey::OwnKey(const KeyText& name, KeyPool& pool) : bits(0)
{
    if (!Key::IsId(name))
    {
        *this = OwnKey(name);
        return;
    }
    bits = GetTextBits(name);
    if (bits == 0)
    {
        bits = reinterpret_cast<std::uintptr_t>(Key::Acquire(name, pool));
    }
}

OwnKeys::OwnKeys(const Shape& shape)
{
    for (std::uint32_t i = 0; i < shape.GetKeyCount(); ++i)
    {
        AddFirst(OwnKey(shape.GetKey(i)));
    }
}

OwnKeys::~OwnKeys()
{
    for (std::uint32_t i = 0; i < keyCount; ++i)
    {
        GetKey(i).Release();
    }
}

void OwnKeys::Add(const KeyText& name)
{
    if (keyCount < kFirstKeys)
    {
        AddFirst(OwnKey(name));
    }
    else
    {
        AddFurther(name);
    }
}

void OwnKeys::AddFirst(const OwnKey& key)
{
    new (GetFirst() + keyCount) OwnKey(key);
    tags |= static_cast<std::uint64_t>(key.GetKeyText().GetTag()) << (8 * keyCount);
    ++keyCount;
}

void OwnKeys::AddFurther(const KeyText& name)
{
    const std::uint32_t place = keyCount - kFirstKeys;
    if (place / kPartKeys == parts.size())
    {
        std::unique_ptr<Part> part(new Part);
        parts.push_back(std::move(part));
    }
    keyIndex.Reserve(keyCount + 1);
    OwnKey* key = new (parts.back()->GetKeys() + place % kPartKeys) OwnKey(name, pool);
    if (keyCount == kFirstKeys)
    {
        for (std::uint32_t i = 0; i < kFirstKeys; ++i)
        {
            keyIndex.Insert(GetFirst()[i].GetHash(), i);
        }
    }
    keyIndex.Insert(key->GetHash(), keyCount);
    ++keyCount;
}

std::uint32_t OwnKeys::Find(const Key& key) const
{
    if (keyCount > kFirstKeys)
    {
        return Find(key.GetKeyText());
    }
    for (std::uint32_t i = 0; i < keyCount; ++i)
    {
        if (GetFirst()[i].Is(key))
        {
            return i;
        }
    }
    return Shape::kNoKey;
}

std::uint32_t OwnKeys::Find(const KeyText& name) const
{
    if (keyCount > kFirstKeys)
    {
        return keyIndex.Find(name.ComputeHash(),
                             [&](std::uint32_t number)
                             {
                                 return GetKey(number).Is(name);
                             });
    }
    for (TagHits hits(tags, name.GetTag()); hits.IsAny();)
    {
        const std::uint32_t place = hits.Take();
        if (GetFirst()[place].Is(name))
        {
            return place;
        }
    }
    return Shape::kNoKey;
}

} // namespace Tessel
