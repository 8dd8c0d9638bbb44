// VELL: data-driven hierarchical state machines.
// platform/tessel/KeyIndex.h: the hash index over the keys of a large table.
#pragma once

#include <cstdint>
#include <memory>

namespace Tessel
{

/// Finds the keys of a large table. It keeps the hash of each beside its number, so that looking,
/// and growing, reaches for the keys that are the right ones almost only.
class KeyIndex
{
public:
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    /// Makes space for `count` keys in all. May throw `std::bad_alloc`; nothing is lost then.
    void Reserve(std::uint32_t count);

    /// Adds the key `number`, which is not there yet. There must be space for it.
    void Insert(std::uint32_t hash, std::uint32_t number);

    /// Gives the number of the key with the hash `hash` for which `isIt(number)` is true, or
    /// `kNone`.
    template <class IsIt>
    std::uint32_t Find(std::uint32_t hash, const IsIt& isIt) const
    {
        std::uint32_t at = hash & (placeCount - 1);
        for (; places[at].numberAndOne != 0; at = (at + 1) & (placeCount - 1))
        {
            if (places[at].hash == hash && isIt(places[at].numberAndOne - 1))
            {
                return places[at].numberAndOne - 1;
            }
        }
        return kNone;
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
