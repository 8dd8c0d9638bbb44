// VELL: data-driven hierarchical state machines.
// include/vell/HSMAlloc.h: the one-block arena of a machine.
#pragma once

#include <vell/Export.h>

#include <tessel/Tessel.h>

#include <functional>
#include <map>
#include <memory_resource>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace vell
{

/// Hands out memory from one block in ascending order and takes nothing back one by one. A
/// machine's definitions, parameters, tables and run-time states lie in its arena in the order of
/// loading.
///
/// No destructor of an arena object ever runs. Memory that such an object holds on the ordinary
/// heap (a map, a vector, a text) goes back when the block goes, and its key/value table is closed
/// when the arena is destroyed: a class that has such memory offers `Tessel::KVTable
/// ReleaseStorage()`, which gives the memory back and returns the table.
///
/// An object that follows a raw allocation of an odd size stands misaligned. A build with
/// VELL_ARENA_ROUNDING rounds up to 8 after each raw allocation, for targets where that is a fault.
class VELL_API HSMAlloc
{
    /// Where the entries of `tracked` lie, which go all at once.
    std::pmr::monotonic_buffer_resource trackedPool{std::pmr::new_delete_resource()};

public:
    /// Sizes by address. The entries of the arena's own lie close together.
    using SizeMap = std::pmr::map<void*, unsigned int>;

    HSMAlloc() = default;
    ~HSMAlloc();
    HSMAlloc(const HSMAlloc&) = delete;
    HSMAlloc& operator=(const HSMAlloc&) = delete;

    /// Frees the block, if there is one, and takes a new one of `size` bytes, not cleared. Returns
    /// 1, or 0 with no block when there is no memory.
    int Reserve(unsigned int size);

    /// Frees the block. May be called at any time and any number of times; objects in the block are
    /// gone without further notice. The record `tracked` stays.
    void Release();

    /// Constructs a T by its default constructor behind what was handed out last, and records it in
    /// `tracked`. Returns null, and constructs nothing, when there is no block or not enough room.
    template <class T>
    T* New();

    /// Hands out `size` bytes, all zero. Returns null when `size` is 0, when there is no block, or
    /// when there is not enough room. Not recorded in `tracked`, and of no particular alignment.
    void* AllocRaw(unsigned int size);

    /// Tells whether `object` lies in what was handed out of the block.
    bool Holds(const void* object) const
    {
        const auto* byte = static_cast<const unsigned char*>(object);
        return block != nullptr && !std::less<>()(byte, block) && std::less<>()(byte, block + used);
    }

    /// Closes `table` when the arena is destroyed.
    void CloseLater(Tessel::KVTable table);

    /// Deletes `object` when the arena is destroyed.
    template <class T>
    void DeleteLater(T* object);

    /// Deletes `object`, which was given to `DeleteLater`, at once.
    template <class T>
    void DeleteNow(T* object);

    unsigned char* block = nullptr; ///< null while no block is held
    unsigned int used = 0;          ///< bytes handed out; offset of the next object
    unsigned int capacity = 0;      ///< bytes of the block
    SizeMap tracked{&trackedPool};  ///< address and size of every typed allocation ever made

private:
    /// What to do about one object: `release` when the block goes, which turns the object into what
    /// is left of it, and `destroy` when the arena goes. Either may be null.
    struct Duty
    {
        void* (*release)(void* object);
        void (*destroy)(void* object);
    };

    struct Kept
    {
        void* object;
        const Duty* duty;
    };

    template <class T, class = void>
    struct HoldsStorage : std::false_type
    {
    };
    template <class T>
    struct HoldsStorage<T, std::void_t<decltype(std::declval<T&>().ReleaseStorage())>>
        : std::true_type
    {
    };

    bool HasRoom(unsigned int size) const
    {
        return block != nullptr && size <= capacity - used;
    }
    void MakeRoomToKeep();
    void Forget(const void* object);
    static void* TableToPointer(Tessel::KVTable table);
    static const Duty* TableDuty();

    std::vector<Kept> kept;
};

template <class T>
T* HSMAlloc::New()
{
    static_assert(alignof(T) <= 8, "the arena keeps no more than 8-byte alignment");
    if (!HasRoom(sizeof(T)))
    {
        return nullptr;
    }
    MakeRoomToKeep();
    T* object = new (block + used) T();
    if constexpr (HoldsStorage<T>::value)
    {
        static const Duty duty{[](void* held) -> void*
                               {
                                   return TableToPointer(static_cast<T*>(held)->ReleaseStorage());
                               },
                               nullptr};
        kept.push_back(Kept{object, &duty});
    }
    used += static_cast<unsigned int>(sizeof(T));
    tracked.emplace_hint(tracked.end(), object, static_cast<unsigned int>(sizeof(T)));
    return object;
}

template <class T>
void HSMAlloc::DeleteLater(T* object)
{
    static const Duty duty{nullptr, [](void* held)
                           {
                               delete static_cast<T*>(held);
                           }};
    MakeRoomToKeep();
    kept.push_back(Kept{object, &duty});
}

template <class T>
void HSMAlloc::DeleteNow(T* object)
{
    Forget(object);
    delete object;
}

} // namespace vell
