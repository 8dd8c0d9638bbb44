// VELL: data-driven hierarchical state machines.
// tests/foundation/HSMAllocTest.cpp: what the arena hands out, records and gives back.
#include <vell/HSMAlloc.h>

#include "tests/support/Definitions.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace vell::test
{
namespace
{

using Sizes = HSMAlloc::SizeMap;

struct Small
{
    Small()
    {
        ++constructed;
    }
    ~Small()
    {
        ++destroyed;
    }
    std::uint64_t value = 7;

    static int constructed;
    static int destroyed;
};

int Small::constructed = 0;
int Small::destroyed = 0;

struct Large
{
    std::uint64_t values[3] = {1, 2, 3};
};

struct Throwing
{
    Throwing()
    {
        throw 1;
    }
    std::uint64_t value;
};

/// Holds heap memory and a table, as definitions do.
struct Holder
{
    std::vector<std::string> texts = {std::string(100, 'x'), std::string(200, 'y')};
    Tessel::KVTable table = Tessel::CreateTable("holder");

    ArenaLink arenaLink;

    friend ArenaLink& GetArenaLink(Holder& holder)
    {
        return holder.arenaLink;
    }
    friend Tessel::KVTable ReleaseStorage(Holder& holder, ArenaLink::AtEnd)
    {
        std::vector<std::string>().swap(holder.texts);
        return holder.table;
    }
};

template <std::size_t Alignment>
struct alignas(Alignment) Aligned
{
    unsigned char bytes[Alignment] = {};
};

/// What the constructors of Maker and of ThrowingMaker allocate from, and what they got.
HSMAlloc* constructorArena = nullptr;
Small* madeSmall = nullptr;
Holder* madeHolder = nullptr;
void* madeBytes = nullptr;

/// Allocates from the arena that it is being built in, as a host's class that reaches the machine.
struct Maker : Holder
{
    Maker()
    {
        madeSmall = constructorArena->New<Small>();
        madeHolder = constructorArena->New<Holder>();
        madeBytes = constructorArena->AllocRaw(8);
    }
    std::uint64_t value = 5;
};

struct ThrowingMaker : Maker
{
    ThrowingMaker()
    {
        throw 1;
    }
};

struct ThrowingHolder : Holder
{
    ThrowingHolder()
    {
        Tessel::CloseTable(table);
        throw 1;
    }
};

/// Has operations of its own by the name that the arena uses.
struct Namesake : Holder
{
    void ReleaseStorage()
    {
        ++called;
    }
    int ReleaseStorage(int)
    {
        return ++called;
    }
    int called = 0;
};

/// Has a second table, which its ReleaseStorage leaves to the arena with many more.
struct TwoTables : Holder
{
    HSMAlloc* arena = nullptr;
    Tessel::KVTable second = Tessel::CreateTable("second");

    friend Tessel::KVTable ReleaseStorage(TwoTables& object, ArenaLink::AtEnd atEnd)
    {
        object.arena->CloseLater(object.second);
        for (int i = 0; i < 100; ++i)
        {
            object.arena->CloseLater(Tessel::CreateTable("further"));
        }
        return ReleaseStorage(static_cast<Holder&>(object), atEnd);
    }
};

bool IsZero(const void* bytes, std::size_t size)
{
    const auto* first = static_cast<const unsigned char*>(bytes);
    return std::all_of(first, first + size,
                       [](unsigned char byte)
                       {
                           return byte == 0;
                       });
}

std::ptrdiff_t OffsetOf(const void* object, const HSMAlloc& arena)
{
    return static_cast<const unsigned char*>(object) - arena.block;
}

} // namespace

TEST(HSMAlloc, CannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<HSMAlloc>);
    EXPECT_FALSE(std::is_copy_assignable_v<HSMAlloc>);
}

TEST(HSMAlloc, StartsWithoutABlock)
{
    const HSMAlloc arena;

    EXPECT_EQ(arena.block, nullptr);
    EXPECT_EQ(arena.used, 0u);
    EXPECT_EQ(arena.capacity, 0u);
    EXPECT_TRUE(arena.tracked.empty());
}

TEST(HSMAlloc, HandsOutNothingWithoutABlock)
{
    HSMAlloc arena;
    Small::constructed = 0;

    EXPECT_EQ(arena.New<Small>(), nullptr);
    EXPECT_EQ(arena.AllocRaw(1), nullptr);
    EXPECT_EQ(Small::constructed, 0);
    EXPECT_TRUE(arena.tracked.empty());
}

TEST(HSMAlloc, HandsOutNothingAfterARefusedReserve)
{
    HSMAlloc arena;
    ASSERT_EQ(arena.Reserve(64), 1);
    HeapWatch heap;
    heap.RefuseMalloc(4096, 1);

    const int reserved = arena.Reserve(4096);

    EXPECT_EQ(reserved, 0);
    EXPECT_EQ(heap.Refused(), 1u);
    EXPECT_EQ(arena.block, nullptr);
    EXPECT_EQ(arena.capacity, 0u);
    EXPECT_EQ(arena.used, 0u);
    EXPECT_EQ(arena.New<Small>(), nullptr);
    EXPECT_EQ(arena.AllocRaw(1), nullptr);
}

TEST(HSMAlloc, ReservesByOneMallocOfTheSize)
{
    HSMAlloc arena;
    HeapWatch heap;

    const int reserved = arena.Reserve(100);

    EXPECT_EQ(reserved, 1);
    EXPECT_EQ(heap.Mallocs(), 1u);
    EXPECT_EQ(heap.News(), 0u);
    EXPECT_EQ(arena.capacity, 100u);
    EXPECT_EQ(arena.used, 0u);
    EXPECT_NE(arena.block, nullptr);
}

TEST(HSMAlloc, ReserveFreesTheBlockBefore)
{
    HSMAlloc arena;
    HeapWatch heap;
    arena.Reserve(100);
    arena.AllocRaw(10);

    const int reserved = arena.Reserve(200);

    EXPECT_EQ(reserved, 1);
    EXPECT_EQ(arena.used, 0u);
    EXPECT_EQ(arena.capacity, 200u);
    EXPECT_EQ(heap.BlocksKept(), 1);
}

TEST(HSMAlloc, ReserveRunsNoDestructorOfTheObjectsBefore)
{
    Arena arena(64);
    arena.New<Small>();
    Small::destroyed = 0;

    arena.Reserve(64);

    EXPECT_EQ(Small::destroyed, 0);
}

TEST(HSMAlloc, PlacesObjectsAtTheExactSumOfTheirSizes)
{
    Arena arena(100);

    Small* first = arena.New<Small>();
    Large* second = arena.New<Large>();
    Small* third = arena.New<Small>();

    EXPECT_EQ(OffsetOf(first, arena), 0);
    EXPECT_EQ(OffsetOf(second, arena), 8);
    EXPECT_EQ(OffsetOf(third, arena), 32);
    EXPECT_EQ(arena.used, 40u);
}

#if !defined(VELL_ARENA_ROUNDING)
TEST(HSMAlloc, PlacesWhatFollowsARawAllocationWithoutAligningIt)
{
    Arena arena(100);

    void* text = arena.AllocRaw(5);
    void* next = arena.AllocRaw(3);

    EXPECT_EQ(OffsetOf(text, arena), 0);
    EXPECT_EQ(OffsetOf(next, arena), 5);
    EXPECT_EQ(arena.used, 8u);
}
#else
TEST(HSMAlloc, RoundsUpAfterARawAllocation)
{
    Arena arena(20);

    arena.AllocRaw(5);
    Small* object = arena.New<Small>();
    void* last = arena.AllocRaw(4);

    EXPECT_EQ(OffsetOf(object, arena), 8);
    EXPECT_EQ(OffsetOf(last, arena), 16);
    EXPECT_EQ(arena.used, 20u);
}
#endif

TEST(HSMAlloc, ConstructsObjectsByTheirDefaultConstructor)
{
    Arena arena(64);
    std::memset(arena.block, 0xff, 64);

    const Small* object = arena.New<Small>();

    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->value, 7u);
}

TEST(HSMAlloc, RecordsTypedAllocationsWithTheirSizes)
{
    Arena arena(64);

    void* first = arena.New<Small>();
    arena.AllocRaw(8);
    void* second = arena.New<Large>();

    EXPECT_EQ(arena.tracked, (Sizes{{first, 8u}, {second, 24u}}));
}

TEST(HSMAlloc, ConstructsBeforeItRecords)
{
    Arena arena(64);

    EXPECT_THROW(arena.New<Throwing>(), int);

    EXPECT_EQ(arena.used, 0u);
    EXPECT_TRUE(arena.tracked.empty());
}

TEST(HSMAlloc, GivesAConstructorThatAllocatesRoomBehindItsObject)
{
    Arena arena(1024);
    constructorArena = &arena;

    const Maker* maker = arena.New<Maker>();

    const auto size = static_cast<unsigned int>(sizeof(Maker));
    constexpr auto kHolderSize = static_cast<unsigned int>(sizeof(Holder));
    EXPECT_EQ(OffsetOf(maker, arena), 0);
    EXPECT_EQ(OffsetOf(madeSmall, arena), size);
    EXPECT_EQ(OffsetOf(madeHolder, arena), size + 8);
    EXPECT_EQ(OffsetOf(madeBytes, arena), size + 8 + kHolderSize);
    EXPECT_EQ(arena.used, size + 8 + kHolderSize + 8);
    EXPECT_EQ(maker->value, 5u);
    EXPECT_EQ(maker->texts.size(), 2u);
    EXPECT_EQ(arena.tracked, (Sizes{{arena.block, size},
                                    {arena.block + size, 8u},
                                    {arena.block + size + 8, kHolderSize}}));
}

TEST(HSMAlloc, KeepsWhatAConstructorHasAllocatedBeforeItThrows)
{
    Arena arena(1024);
    constructorArena = &arena;

    EXPECT_THROW(arena.New<ThrowingMaker>(), int);

    const auto size = static_cast<unsigned int>(sizeof(ThrowingMaker));
    constexpr auto kHolderSize = static_cast<unsigned int>(sizeof(Holder));
    EXPECT_EQ(arena.used, size + 8 + kHolderSize + 8);
    EXPECT_EQ(arena.tracked,
              (Sizes{{arena.block + size, 8u}, {arena.block + size + 8, kHolderSize}}));
    EXPECT_EQ(OffsetOf(arena.New<Small>(), arena), size + 8 + kHolderSize + 8);
    EXPECT_EQ(madeSmall->value, 7u);
    EXPECT_EQ(madeHolder->texts.size(), 2u);
}

TEST(HSMAlloc, FreesTheHeapMemoryOfAllThatAConstructorHasAllocated)
{
    Arena arena(1024);
    constructorArena = &arena;
    arena.New<Maker>();
    HeapWatch heap;

    arena.Release();

    // The block, and for each of two holders a vector and two texts.
    EXPECT_EQ(heap.BlocksKept(), -7);
}

TEST(HSMAlloc, FreesOnlyWhatIsThereAfterAConstructorHasThrown)
{
    Arena arena(1024);
    constructorArena = &arena;
    EXPECT_THROW(arena.New<ThrowingMaker>(), int);
    EXPECT_THROW(arena.New<ThrowingHolder>(), int);
    arena.New<Holder>();
    HeapWatch heap;

    arena.Release();

    EXPECT_EQ(heap.BlocksKept(), -7);
}

TEST(HSMAlloc, HandsTheRoomOfAnObjectThatWasNotBuiltOutAgain)
{
    Arena arena(sizeof(Holder));

    EXPECT_THROW(arena.New<ThrowingHolder>(), int);

    EXPECT_EQ(OffsetOf(arena.New<Holder>(), arena), 0);
    EXPECT_EQ(arena.tracked.size(), 1u);
}

TEST(HSMAlloc, AlignsAnObjectThatAsksForMoreThanEight)
{
    const auto isAligned = [](const void* object, std::size_t alignment)
    {
        return reinterpret_cast<std::uintptr_t>(object) % alignment == 0;
    };
    for (const unsigned int before : {1u, 8u, 15u, 16u, 17u})
    {
        Arena arena(1024);
        arena.AllocRaw(before);
        EXPECT_TRUE(isAligned(arena.New<Aligned<16>>(), 16)) << before;
        arena.AllocRaw(before);
        EXPECT_TRUE(isAligned(arena.New<Aligned<32>>(), 32)) << before;
        arena.AllocRaw(before);
        EXPECT_TRUE(isAligned(arena.New<Aligned<64>>(), 64)) << before;
    }
}

TEST(HSMAlloc, LeavesNoMoreInFrontOfAnAlignedObjectThanItNeeds)
{
    Arena arena(64);
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(arena.block) % 16, 0u);
    arena.New<Small>();

    const void* aligned = arena.New<Aligned<16>>();
    const void* small = arena.New<Small>();

    EXPECT_EQ(OffsetOf(aligned, arena), 16);
    EXPECT_EQ(OffsetOf(small, arena), 32);
    EXPECT_EQ(arena.used, 40u);
    EXPECT_EQ(arena.tracked,
              (Sizes{{arena.block, 8u}, {arena.block + 16, 16u}, {arena.block + 32, 8u}}));
}

TEST(HSMAlloc, PlacesAnAlignedObjectThatEndsExactlyAtItsEndAndNoneBeyond)
{
    HSMAlloc exact;
    exact.Reserve(32);
    exact.New<Small>();
    HSMAlloc tooSmall;
    tooSmall.Reserve(31);
    tooSmall.New<Small>();

    EXPECT_EQ(OffsetOf(exact.New<Aligned<16>>(), exact), 16);
    EXPECT_EQ(exact.used, 32u);
    EXPECT_EQ(tooSmall.New<Aligned<16>>(), nullptr);
    EXPECT_EQ(tooSmall.used, 8u);
    EXPECT_EQ(tooSmall.tracked.size(), 1u);
}

TEST(HSMAlloc, HandsOutZeroedBytes)
{
    Arena arena(64);
    std::memset(arena.block, 0xff, 64);

    void* bytes = arena.AllocRaw(16);

    ASSERT_NE(bytes, nullptr);
    EXPECT_TRUE(IsZero(bytes, 16));
    EXPECT_EQ(arena.block[16], 0xff);
    EXPECT_EQ(arena.used, 16u);
    EXPECT_TRUE(arena.tracked.empty());
}

TEST(HSMAlloc, PlacesAnObjectThatEndsExactlyAtItsEnd)
{
    Arena arena(24);

    EXPECT_NE(arena.New<Large>(), nullptr);
    EXPECT_EQ(arena.used, 24u);
}

TEST(HSMAlloc, RefusesAnObjectThatIsOneByteTooLarge)
{
    Arena arena(15);
    arena.New<Small>();
    Small::constructed = 0;

    EXPECT_EQ(arena.New<Small>(), nullptr);

    EXPECT_EQ(Small::constructed, 0);
    EXPECT_EQ(arena.used, 8u);
    EXPECT_EQ(arena.tracked.size(), 1u);
}

TEST(HSMAlloc, HandsOutRawBytesUpToItsEnd)
{
    const struct
    {
        const char* what;
        unsigned int capacity;
        unsigned int used;
        unsigned int size;
        bool isHandedOut;
    } cases[] = {{"all that is left", 24, 8, 16, true},
                 {"one byte too many", 16, 8, 9, false},
                 {"a byte of a block that is full", 8, 8, 1, false},
                 {"a byte of a block of no bytes", 0, 0, 1, false},
                 {"nothing", 64, 0, 0, false},
                 {"a size that wraps the 32 bits", 64, 16, UINT_MAX, false},
                 {"a size that wraps them to the start", 64, 16, UINT_MAX - 8, false}};
    for (const auto& example : cases)
    {
        SCOPED_TRACE(example.what);
        Arena arena(example.capacity);
        arena.AllocRaw(example.used);

        EXPECT_EQ(arena.AllocRaw(example.size) != nullptr, example.isHandedOut);

        EXPECT_EQ(arena.used, example.used + (example.isHandedOut ? example.size : 0));
    }
}

TEST(HSMAlloc, HandsOutNoObjectWhenItIsFull)
{
    for (const unsigned int capacity : {0u, 8u})
    {
        Arena arena(capacity);
        arena.AllocRaw(capacity);

        EXPECT_EQ(arena.New<Small>(), nullptr) << capacity;
    }
}

TEST(HSMAlloc, ReleaseFreesTheBlockAndKeepsTheRecord)
{
    Arena arena(64);
    void* object = arena.New<Small>();
    Small::destroyed = 0;

    arena.Release();

    EXPECT_EQ(arena.block, nullptr);
    EXPECT_EQ(arena.used, 0u);
    EXPECT_EQ(arena.capacity, 0u);
    EXPECT_EQ(arena.tracked, (Sizes{{object, 8u}}));
    EXPECT_EQ(Small::destroyed, 0);
}

TEST(HSMAlloc, KeepsTheRecordOfEarlierBlocksInANewOne)
{
    Arena arena(64);
    void* object = arena.New<Small>();

    arena.Release();
    ASSERT_EQ(arena.Reserve(64), 1);
    EXPECT_EQ(arena.tracked, (Sizes{{object, 8u}}));
    ASSERT_EQ(arena.Reserve(128), 1);

    EXPECT_EQ(arena.tracked, (Sizes{{object, 8u}}));
}

TEST(HSMAlloc, MayBeReleasedRepeatedly)
{
    HSMAlloc arena;
    arena.Release();
    arena.Reserve(64);
    arena.Release();

    arena.Release();

    EXPECT_EQ(arena.block, nullptr);
    EXPECT_EQ(arena.AllocRaw(1), nullptr);
}

TEST(HSMAlloc, KeepsTheOldSizeOnRecordForANewObjectAtAnOldAddress)
{
    Arena arena(64);
    // The same block stands in for one that comes back at the address of the last.
    void* first = arena.New<Small>();
    arena.used = 0;

    void* second = arena.New<Large>();

    ASSERT_EQ(second, first);
    EXPECT_EQ(arena.tracked, (Sizes{{first, 8u}}));
    EXPECT_EQ(arena.used, 24u);
}

TEST(HSMAlloc, DestructionRunsNoDestructorOfAnObject)
{
    Small::destroyed = 0;
    {
        Arena arena(64);
        arena.New<Small>();
    }

    EXPECT_EQ(Small::destroyed, 0);
}

TEST(HSMAlloc, GivesBackTheHeapMemoryOfItsObjectsWhenReleased)
{
    Arena arena(1024);
    arena.New<Holder>();
    HeapWatch heap;

    arena.Release();

    // The block, the vector and its two texts.
    EXPECT_EQ(heap.BlocksKept(), -4);
}

TEST(HSMAlloc, TakesNoOperationOfAHostsClassForItsOwn)
{
    Arena arena(1024);
    const Namesake* object = arena.New<Namesake>();
    HeapWatch heap;
    EXPECT_EQ(object->called, 0);

    arena.Release();

    // The block, and the vector and its two texts of the base.
    EXPECT_EQ(heap.BlocksKept(), -4);
}

TEST(HSMAlloc, LeavesAnObjectAloneThatWasDestroyedByHand)
{
    // Makes what the process keeps of the key.
    const Tessel::KVTable first = Tessel::CreateTable("first");
    first->SetInt("key", 1, 1);
    Tessel::CloseTable(first);
    int table = 0;
    HeapWatch heap;
    {
        Arena arena(1024);
        arena.New<Holder>();
        Holder* destroyed = arena.New<Holder>();
        arena.New<Holder>();
        table = destroyed->table->SetInt("key", 1, 1);
        Tessel::CloseTable(destroyed->table);

        destroyed->~Holder();
        // Whoever takes the room for something else is not disturbed either.
        std::memset(static_cast<void*>(destroyed), 0xff, sizeof(Holder));
        arena.Release();
    }

    EXPECT_EQ(table, 1);
    EXPECT_EQ(heap.BlocksKept(), 0);
}

TEST(HSMAlloc, ForgetsNothingAboutTheSourceOfACopyThatIsDestroyed)
{
    Arena arena(1024);
    const Holder* source = arena.New<Holder>();
    {
        Holder copy = *source;
        Holder other;
        other = *source;
        Tessel::CloseTable(copy.table);
    }
    HeapWatch heap;

    arena.Release();

    EXPECT_EQ(heap.BlocksKept(), -4);
}

TEST(HSMAlloc, ClosesTheTablesOfItsObjectsAtItsEndAndNotBefore)
{
    Tessel::KVTable table;
    {
        Arena arena(1024);
        table = arena.New<Holder>()->table;
        table->SetInt("key", 5, 1);

        arena.Release();

        EXPECT_EQ(table->GetInt("key"), 5);
    }
    EXPECT_EQ(table->GetInt("key"), 0);
}

TEST(HSMAlloc, ClosesAtItsEndWhatItWasToldToCloseLater)
{
    Tessel::KVTable table = Tessel::CreateTable("later");
    table->SetInt("key", 5, 1);
    {
        HSMAlloc arena;
        arena.CloseLater(table);
        arena.Release();
        EXPECT_EQ(table->GetInt("key"), 5);
    }

    EXPECT_EQ(table->GetInt("key"), 0);
}

TEST(HSMAlloc, TakesTablesToCloseLaterWhileItReleasesItsObjects)
{
    const unsigned int tablesBefore = Tessel::GetOpenTableCount();
    {
        Arena arena(4096);
        auto* first = arena.New<TwoTables>();
        first->arena = &arena;
        const Tessel::KVTable last = arena.New<Holder>()->table;

        arena.Release();

        EXPECT_EQ(Tessel::GetOpenTableCount(), tablesBefore + 103);
        EXPECT_EQ(last->SetInt("key", 5, 1), 1);
    }
    EXPECT_EQ(Tessel::GetOpenTableCount(), tablesBefore);
}

} // namespace vell::test
