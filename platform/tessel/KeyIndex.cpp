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
    std::unique_ptr<Place[]> old(new Place[newCount]{});
    std::swap(places, old);
    const std::uint32_t oldCount = std::exchange(placeCount, newCount);
    for (std::uint32_t i = 0; i < oldCount; ++i)
    {
        if (old[i].numberAndOne != 0)
        {
            Insert(old[i].hash, old[i].numberAndOne - 1);
        }
    }
}

void KeyIndex::Insert(std::uint32_t hash, std::uint32_t number)
{
    std::uint32_t at = hash & (placeCount - 1);
    while (places[at].numberAndOne != 0)
    {
        at = (at + 1) & (placeCount - 1);
    }
    places[at] = Place{hash, number + 1};
}

} // namespace Tessel
