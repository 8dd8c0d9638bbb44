// VELL: data-driven hierarchical state machines.
// tests/foundation/ArenaMemoryTest.cpp: texts and arrays in the arena.
#include "foundation/ArenaMemory.h"

#include <gtest/gtest.h>

#include <climits>

namespace vell::test
{

TEST(ArenaMemory, TakesTwoBytesMoreThanATextHasCharacters)
{
    HSMAlloc arena;
    arena.Reserve(64);

    const char* text = AllocText(arena, 6);

    ASSERT_NE(text, nullptr);
    EXPECT_EQ(arena.used, 8u);
    EXPECT_EQ(text[7], '\0');
}

TEST(ArenaMemory, HasRoomForATextThatEndsAtTheArenasEnd)
{
    HSMAlloc arena;
    arena.Reserve(8);

    EXPECT_EQ(AllocText(arena, 7), nullptr);
    EXPECT_NE(AllocText(arena, 6), nullptr);
}

TEST(ArenaMemory, TakesAnArrayAtItsExactSize)
{
    HSMAlloc arena;
    arena.Reserve(64);

    EXPECT_NE(AllocArray<unsigned int>(arena, 4), nullptr);
    EXPECT_NE(AllocArray<void*>(arena, 2), nullptr);
    EXPECT_EQ(arena.used, 16u + 2 * sizeof(void*));
}

TEST(ArenaMemory, GivesNoArrayOfNoElements)
{
    HSMAlloc arena;
    arena.Reserve(64);

    EXPECT_EQ(AllocArray<unsigned int>(arena, 0), nullptr);
}

TEST(ArenaMemory, RefusesWhatDoesNotFitInto32Bits)
{
    HSMAlloc arena;
    arena.Reserve(64);

    EXPECT_EQ(AllocArray<unsigned int>(arena, UINT_MAX / 4 + 2), nullptr);
    EXPECT_EQ(AllocText(arena, UINT_MAX), nullptr);
    EXPECT_EQ(AllocText(arena, std::size_t{UINT_MAX} * 4), nullptr);
    EXPECT_EQ(arena.used, 0u);
}

TEST(ArenaMemory, KeepsTheElementsOfAnArrayThatStandsMisaligned)
{
    HSMAlloc arena;
    arena.Reserve(64);
    auto* array = reinterpret_cast<unsigned int*>(arena.block + 3);

    StoreElement(array, 0, 0x01020304u);
    StoreElement(array, 1, 7u);

    EXPECT_EQ(LoadElement(array, 0), 0x01020304u);
    EXPECT_EQ(LoadElement(array, 1), 7u);
}

} // namespace vell::test
