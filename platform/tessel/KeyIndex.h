// VELL: data-driven hierarchical state machines.
// platform/tessel/KeyIndex.h: the hash index over the keys of a large table.
#pragma once

#include "platform/tessel/Entry.h"

#include <cstdint>
#include <memory>

namespace Tessel
{

/// Finds the entries of a large table by key. The entries are the table's.
class KeyIndex
{
public:
    /// Makes room for `count` entries in all. May throw `std::bad_alloc`; nothing is lost then.
    void Reserve(std::uint32_t count);

    /// Adds an entry whose key is not there yet. There must be room for it.
    void Insert(Entry* entry);

    /// Gives the entry of `name`, or null.
    Entry* Find(const KeyText& name) const;

private:
    std::unique_ptr<Entry*[]> places; ///< null where empty; never more than three quarters full
    std::uint32_t placeCount = 0;     ///< a power of two, or 0
};

} // namespace Tessel
