// VELL: data-driven hierarchical state machines.
// platform/tessel/TableHandle.h: the slot and the generation inside a table handle.
#pragma once

#include <tessel/Tessel.h>

#include <cstdint>

namespace Tessel
{

/// Packs a slot and a generation into a handle and takes them out again. A slot is never 0, so a
/// null handle has slot 0, and a multiple of `kSlotStep`. The generation of an open table is odd.
struct TableHandle
{
    static constexpr unsigned kSlotBits = sizeof(std::uintptr_t) == 8 ? 32 : 20;
    static constexpr unsigned kGenerationBits = sizeof(std::uintptr_t) * 8 - kSlotBits;

    /// The low bits of a handle are free, as those of an address.
    static constexpr std::uint32_t kSlotStep = 16;

    /// The last generation that a slot may have; after it the slot is not used again.
    static constexpr std::uint32_t kLastGeneration =
        static_cast<std::uint32_t>((std::uint64_t{1} << kGenerationBits) - 1);

    static KVTable Make(std::uint32_t slot, std::uint32_t generation)
    {
        return FromBits(static_cast<std::uintptr_t>(generation) << kSlotBits | slot);
    }

    /// Gives the bits of a handle, and the handle of such bits.
    static std::uintptr_t GetBits(KVTable table)
    {
        return table.bits;
    }

    static KVTable FromBits(std::uintptr_t bits)
    {
        KVTable table;
        table.bits = bits;
        return table;
    }

    static std::uint32_t GetSlot(KVTable table)
    {
        return static_cast<std::uint32_t>(table.bits & ((std::uintptr_t{1} << kSlotBits) - 1));
    }

    static std::uint32_t GetGeneration(KVTable table)
    {
        return static_cast<std::uint32_t>(table.bits >> kSlotBits);
    }
};

} // namespace Tessel
