// VELL: data-driven hierarchical state machines.
// include/vell/HSMAlloc.h: the one-block arena of a machine.
#pragma once

#include <tessel/Tessel.h>
#include <vell/ArenaLink.h>
#include <vell/Export.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <memory_resource>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#if defined(VELL_OLD_STANDARD)
// The error is in Export.h; here is only what keeps it the only one.
namespace vell
{
class HSMAlloc
{
};
} // namespace vell
#else

namespace vell
{

/// An arena: allocates memory from one block in ascending order and frees it all at once. A
/// machine's definitions, parameters, tables and states are in its arena, in the order in which
/// they were created.
///
/// The arena calls no destructors. If the class of an object has the functions that ArenaLink.h
/// describes, the object's heap memory (a map, a vector, a string) is freed with the block, and its
/// key/value table is closed when the arena is destroyed.
///
/// Objects are packed without gaps, so an object after a raw allocation of an odd size is
/// misaligned. Only types with an alignment above 8 are aligned. A build with VELL_ARENA_ROUNDING
/// rounds up to 8 after each raw allocation and aligns every object, for targets where misaligned
/// objects do not work.
class VELL_API HSMAlloc
{
    struct VELL_LOCAL Pool;
    std::unique_ptr<Pool> pool; ///< the library's; the memory of `tracked`

public:
    /// Sizes by address. The entries of the arena's own map are close together.
    using SizeMap = std::pmr::map<void*, unsigned int>;

    HSMAlloc();
    ~HSMAlloc();
    HSMAlloc(const HSMAlloc&) = delete;
    HSMAlloc& operator=(const HSMAlloc&) = delete;

    /// Frees the block, if there is one, and allocates a new one of `size` bytes, not cleared.
    /// Returns 1, or 0 without a block when there is no memory.
    int Reserve(unsigned int size);

    /// Frees the block. May be called at any time and any number of times; the objects in the block
    /// are gone. The record `tracked` is kept.
    void Release();

    /// Constructs a T with its default constructor after the last allocation, and records it in
    /// `tracked`. Returns null, and constructs nothing, when there is no block or not enough space.
    /// The constructor may allocate from the arena itself. If it throws, its space is used again,
    /// unless the constructor has allocated from the arena.
    template <class T>
    T* New();

    /// Allocates `size` bytes, all zero. Returns null when `size` is 0, when there is no block, or
    /// when there is not enough space. Not recorded in `tracked`, and not aligned.
    void* AllocRaw(unsigned int size);

    /// Tells whether `object` is in the allocated part of the block.
    bool Holds(const void* object) const
    {
        const auto* byte = static_cast<const unsigned char*>(object);
        return block != nullptr && !std::less<>()(byte, block) && std::less<>()(byte, block + used);
    }

    /// Closes `table` when the arena is destroyed.
    void CloseLater(Tessel::KVTable table);

    unsigned char* block = nullptr; ///< null when there is no block
    unsigned int used = 0;          ///< bytes allocated; offset of the next object
    unsigned int capacity = 0;      ///< size of the block
    SizeMap tracked;                ///< address and size of every typed allocation ever made

private:
    friend class ArenaLink;

    /// What to do about one object: `release` when the block is freed, which turns the object into
    /// what is left of it, and `destroy` when the arena is destroyed. `release` may be null.
    struct Duty
    {
        void* (*release)(void* object);
        void (*destroy)(void* object);
    };

    struct Kept
    {
        void* object;
        const Duty* duty; ///< null when there is nothing to do
    };

    template <class T, class = void>
    struct HasLink : std::false_type
    {
    };
    template <class T>
    struct HasLink<T, std::void_t<decltype(GetArenaLink(std::declval<T&>()))>> : std::true_type
    {
    };

    /// Gives what to do about an object of the class at the end, or null.
    template <class T>
    static const Duty* DutyOf();

    /// The space of one object while its constructor runs. Frees it if the constructor throws.
    class Reservation
    {
    public:
        Reservation(HSMAlloc& owner, unsigned int size)
            : arena(owner), start(owner.used), end(owner.used + size), entry(owner.kept.size())
        {
            arena.ReserveKept();
            arena.kept.push_back(Kept{nullptr, nullptr});
            arena.used = end;
        }
        ~Reservation()
        {
            if (!isFilled)
            {
                GiveBack();
            }
        }
        Reservation(const Reservation&) = delete;
        Reservation& operator=(const Reservation&) = delete;

        /// To be called when the object is constructed. `duty` is what to do about it at the end,
        /// or null.
        void Fill(void* object, const Duty* duty)
        {
            isFilled = true;
            arena.kept[entry] = Kept{object, duty};
        }
        unsigned int Entry() const
        {
            return static_cast<unsigned int>(entry);
        }

    private:
        VELL_API void GiveBack();

        HSMAlloc& arena;
        const unsigned int start;
        const unsigned int end;
        const std::size_t entry; ///< in `kept`, reserved before the object is constructed
        bool isFilled = false;
    };

    /// Gives the number of bytes to leave free before an object.
    unsigned int PaddingFor(std::size_t alignment) const
    {
#if !defined(VELL_ARENA_ROUNDING)
        // Required: an object directly follows a raw allocation, so it may be misaligned.
        if (alignment <= 8)
        {
            return 0;
        }
#endif
        const auto address = reinterpret_cast<std::uintptr_t>(block) + used;
        return static_cast<unsigned int>((alignment - address % alignment) % alignment);
    }
    bool HasSpace(std::uint64_t size) const
    {
        return block != nullptr && size <= capacity - used;
    }
    void ReserveKept()
    {
        if (kept.size() == kept.capacity())
        {
            KeepMore();
        }
    }
    void KeepMore();
    static void* TableToPointer(Tessel::KVTable table);
    static const Duty* TableDuty();

    std::vector<Kept> kept;
};

template <class T>
const HSMAlloc::Duty* HSMAlloc::DutyOf()
{
    if constexpr (HasLink<T>::value)
    {
        static const Duty duty{[](void* held) -> void*
                               {
                                   return TableToPointer(
                                       ReleaseStorage(*static_cast<T*>(held), ArenaLink::AtEnd()));
                               },
                               nullptr};
        return &duty;
    }
    else
    {
        return nullptr;
    }
}

template <class T>
T* HSMAlloc::New()
{
    const unsigned int padding = PaddingFor(alignof(T));
    constexpr auto kSize = static_cast<unsigned int>(sizeof(T));
    if (!HasSpace(std::uint64_t{padding} + kSize))
    {
        return nullptr;
    }
    unsigned char* const address = block + used + padding;
    Reservation space(*this, padding + kSize);
    T* object = new (address) T();
    space.Fill(object, DutyOf<T>());
    if constexpr (HasLink<T>::value)
    {
        ArenaLink& link = GetArenaLink(*object);
        link.arena = this;
        link.entry = space.Entry();
    }
    // Required: an entry of an earlier block for the same address keeps its size.
    tracked.emplace_hint(tracked.end(), object, kSize);
    return object;
}

} // namespace vell

#endif
