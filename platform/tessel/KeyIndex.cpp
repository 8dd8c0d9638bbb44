// VELL: data-driven hierarchical state machines.
// platform/tessel/KeyIndex.cpp: the hash index over the keys of a large table.
#include "platform/tessel/KeyIndex.h"

#include <algorithm>
#include <utility>

namespace Tessel
{

void KeyIndex::Reserve(std::uint32_t count)
{
    if (count <= placeCount / 4 * 3)
    {
        return;
    }
    const std::uint32_t newCount = std::max<std::uint32_t>(16, placeCount * 2);
    std::unique_ptr<Entry*[]> old(new Entry* [newCount] {});
    std::swap(places, old);
    const std::uint32_t oldCount = std::exchange(placeCount, newCount);
    for (std::uint32_t i = 0; i < oldCount; ++i)
    {
        if (old[i] != nullptr)
        {
            Insert(old[i]);
        }
    }
}

void KeyIndex::Insert(Entry* entry)
{
    std::uint32_t at = entry->GetKey()->GetHash() & (placeCount - 1);
    while (places[at] != nullptr)
    {
        at = (at + 1) & (placeCount - 1);
    }
    places[at] = entry;
}

Entry* KeyIndex::Find(const KeyText& name) const
{
    const std::uint32_t hash = name.ComputeHash();
    std::uint32_t at = hash & (placeCount - 1);
    while (places[at] != nullptr)
    {
        const Key& key = *places[at]->GetKey();
        if (key.GetHash() == hash && key.Is(name))
        {
            break;
        }
        at = (at + 1) & (placeCount - 1);
    }
    return places[at];
}

} // namespace Tessel
