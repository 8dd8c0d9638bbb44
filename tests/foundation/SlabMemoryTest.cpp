// VELL: data-driven hierarchical state machines.
// tests/foundation/SlabMemoryTest.cpp: where blocks of slabs are, and when their memory goes back.
#include "foundation/SlabMemory.h"

#include "foundation/Prefetch.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/Sanitizer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

namespace vell::test
{
namespace
{

constexpr std::size_t kSize = 1000;
constexpr std::size_t kMany = 6000; ///< enough for slabs of the largest kind

/// Blocks of one size, freed at the end.
struct Blocks
{
    explicit Blocks(std::size_t count, std::size_t newSize = kSize) : size(newSize)
    {
        while (taken.size() < count)
        {
            taken.push_back(static_cast<unsigned char*>(SlabMemory::Take(size)));
            std::memset(taken.back(), static_cast<int>(taken.size() % 251), size);
        }
    }
    ~Blocks()
    {
        for (unsigned char* block : taken)
        {
            SlabMemory::Free(block, size);
        }
    }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    std::size_t size;
    std::vector<unsigned char*> taken;
};

TEST(SlabMemory, BlocksBeginAtACacheLineAndKeepWhatIsInThem)
{
    constexpr std::size_t kSizes[] = {1, 40, 64, 65, 200, 1000, 2048, 5000, 100000};
    for (const std::size_t size : kSizes)
    {
        const Blocks blocks(300, size);
        for (std::size_t i = 0; i < blocks.taken.size(); ++i)
        {
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks.taken[i]) % kCacheLine, 0u);
            ASSERT_EQ(blocks.taken[i][0], (i + 1) % 251) << size;
            ASSERT_EQ(blocks.taken[i][size - 1], (i + 1) % 251) << size;
        }
    }
}

#if !defined(VELL_ADDRESS_SANITIZER)
TEST(SlabMemory, BlocksOfOneSizeFollowOneAnother)
{
    const Blocks blocks(kMany);
    std::size_t neighbours = 0;
    for (std::size_t i = 1; i < blocks.taken.size(); ++i)
    {
        const std::ptrdiff_t distance = blocks.taken[i] - blocks.taken[i - 1];
        neighbours += distance > 0 && distance < static_cast<std::ptrdiff_t>(2 * kSize) ? 1 : 0;
    }
    EXPECT_GE(neighbours, blocks.taken.size() * 9 / 10) << "there are gaps only between slabs";
}

TEST(SlabMemory, AFreedBlockIsUsedAgain)
{
    const Blocks blocks(100);
    void* const freed = SlabMemory::Take(kSize);
    SlabMemory::Free(freed, kSize);
    const Blocks next(1);
    EXPECT_EQ(next.taken[0], freed);
}
#endif

/// What is common to all slabs is created with the first block, and stays.
void TakeFirstBlock()
{
    const Blocks first(1);
}

TEST(SlabMemory, AllMemoryGoesBackWithTheLastBlock)
{
    TakeFirstBlock();
    const HeapWatch watch;
    {
        const Blocks blocks(kMany);
        EXPECT_GT(watch.MostBytes(), kMany * kSize);
    }
    EXPECT_EQ(watch.BlocksKept(), 0);
}

TEST(SlabMemory, RefusedMemoryLeavesNothingBehind)
{
    TakeFirstBlock();
    HeapWatch watch;
    for (std::size_t refused = 0; refused < 4; ++refused)
    {
        watch.RefuseAfter(refused);
        try
        {
            SlabMemory::Free(SlabMemory::Take(kSize), kSize);
        }
        catch (const std::bad_alloc&)
        {
        }
        watch.RefuseNothing();
        EXPECT_EQ(watch.BlocksKept(), 0) << refused;
    }
    EXPECT_GT(watch.Refused(), 0u);
}

TEST(SlabMemory, ServesThreadsSideBySide)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            []
            {
                for (int round = 0; round < 50; ++round)
                {
                    const Blocks blocks(20);
                    const Blocks more(20, 100);
                    ASSERT_EQ(blocks.taken[7][kSize - 1], 8);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

} // namespace
} // namespace vell::test
