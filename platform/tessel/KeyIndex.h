// VELL: data-driven hierarchical state machines.
// platform/tessel/KeyIndex.h: the hash index over the keys of a large table.
#pragma once

#include "platform/tessel/Entry.h"

#include <cstdint>
#include <memory>

namespace Tessel
{

/// Finds the entries of a large table by key. It keeps the hash of each beside its number, so that
/// looking, and growing, reaches for the entries that are the right ones almost only.
class KeyIndex
{
public:
    /// Makes space for `count` entries in all. May throw `std::bad_alloc`; nothing is lost then.
    void Reserve(std::uint32_t count);

    /// Adds the entry `number`, whose key is not there yet. There must be space for it.
    void Insert(std::uint32_t hash, std::uint32_t number);

    /// Gives the entry of `name`, or null. `getEntry` gives the entry of a number.
    template <class GetEntry>
    Entry* Find(const KeyText& name, const GetEntry& getEntry) const
    {
        const std::uint32_t hash = name.ComputeHash();
        std::uint32_t at = hash & (placeCount - 1);
        for (; places[at].numberAndOne != 0; at = (at + 1) & (placeCount - 1))
        {
            if (places[at].hash == hash)
            {
                Entry* entry = getEntry(places[at].numberAndOne - 1);
                if (entry->GetKey()->Is(name))
                {
                    return entry;
                }
            }
        }
        return nullptr;
    }

private:
    struct Place
    {
        std::uint32_t hash;
        std::uint32_t numberAndOne; ///< 0 where empty
    };

    std::unique_ptr<Place[]> places; ///< never more than three quarters full
    std::uint32_t placeCount = 0;    ///< a power of two, or 0
};

} // namespace Tessel
