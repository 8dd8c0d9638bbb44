// VELL: data-driven hierarchical state machines.
// tests/robustness/MemoryRunsOutTest.cpp: arenas of every size, and every block refused in turn.
#include <tessel/Tessel.h>
#include <vell/HSM.h>

#include "tests/robustness/Conditions.h"
#include "tests/robustness/RefusedMemory.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

unsigned int ArenaNeed(const std::string& text)
{
    CrampedMachine machine(text, kRoomyArena);
    EXPECT_EQ(machine.Create(), 1);
    EXPECT_EQ(machine.Init(), 1);
    RunThrough(machine);
    const unsigned int used = machine.Used();
    machine.Uninit();
    machine.Destroy();
    return used;
}

} // namespace

TEST(ArenaRunsOut, AtEverySizeWithTheStatedFailuresAndNothingLeft)
{
    const std::string text = WholeDocument().Text();
    QuietLog log;
    const unsigned int need = ArenaNeed(text);
    const unsigned int step = Scaled(1, 3);
    const unsigned int openBefore = Tessel::GetOpenTableCount();
    unsigned int failedLoads = 0;
    unsigned int failedRuns = 0;

    for (unsigned int size = 0; size < need; size += step)
    {
        log.Clear();
        const HeapWatch heap;
        {
            CrampedMachine machine(text, size);
            const int created = machine.Create();
            const int initialised = machine.Init();
            ASSERT_EQ(initialised == 0 ? 1u : 0u, log.FailedInits()) << size;
            ASSERT_TRUE(created != 0 || initialised == 0) << size;
            failedLoads += initialised == 0 ? 1 : 0;
            failedRuns += initialised == 0 ? 0 : 1;
            if (initialised != 0)
            {
                RunThrough(machine);
            }
            ASSERT_NE(log.Errors(), 0u) << size;
            machine.Uninit();
            machine.Destroy();
        }
        ASSERT_EQ(heap.BlocksKept(), 0) << size;
    }

    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
    EXPECT_GT(need, 5000u);
    EXPECT_GT(failedLoads, 1000u / step);
    EXPECT_GT(failedRuns, 1000u / step);
    RecordProperty("arena_bytes_needed", static_cast<int>(need));
}

TEST(ArenaRunsOut, NotAtTheSizeThatTheDocumentNeeds)
{
    const std::string text = WholeDocument().Text();
    const QuietLog log;
    const unsigned int need = ArenaNeed(text);

    CrampedMachine machine(text, need);
    EXPECT_EQ(machine.Create(), 1);
    EXPECT_EQ(machine.Init(), 1);
    RunThrough(machine);
    machine.Uninit();

    EXPECT_EQ(log.Errors(), 0u);
}

TEST(ArenaRunsOut, AtEveryFigureOfTheDocument)
{
    QuietLog log;
    const unsigned int need = ArenaNeed(WholeDocument().Text());

    for (unsigned int figure = 0; figure <= need / 100; ++figure)
    {
        DocumentBuilder document = WholeDocument();
        document.Head().Set(DURMBaseLib::JSON_HeadMemory, figure);
        const std::string text = document.Text();
        log.Clear();
        const HeapWatch heap;
        {
            HSM machine(text.c_str());
            if (machine.Init() != 0)
            {
                RunThrough(machine);
            }
            EXPECT_NE(log.Errors(), 0u) << figure;
            machine.Uninit();
            machine.Destroy();
        }
        EXPECT_EQ(heap.BlocksKept(), 0) << figure;
    }
}

TEST(HeapRunsOut, AtEveryBlockWithAFailureOrBadAllocAndNothingLeft)
{
    const std::string text = WholeDocument().Text();
    QuietLog log;
    {
        // Fills what the process keeps.
        HeapWatch heap;
        const Fate fate = LiveWithout(text, heap, 1000000);
        ASSERT_TRUE(fate.initialised == 1 && !fate.threw && !fate.refused);
    }
    const ParserBlocks parser = CountParserBlocks(text);
    ASSERT_GT(parser.count, 0u);
    const unsigned int openBefore = Tessel::GetOpenTableCount();
    unsigned int thrown = 0;
    unsigned int failed = 0;

    bool refused = true;
    for (std::size_t count = 0; refused; count += count == parser.before ? parser.count : 1)
    {
        if (count == parser.before)
        {
            // The parser does not survive a refusal of its own blocks.
            continue;
        }
        log.Clear();
        HeapWatch heap;
        const Fate fate = LiveWithout(text, heap, count);
        refused = fate.refused;
        thrown += fate.threw ? 1 : 0;
        failed += refused && !fate.threw ? 1 : 0;
        if (refused && !fate.threw && fate.initialised != 1)
        {
            ASSERT_NE(log.Errors(), 0u) << count;
        }
        ASSERT_EQ(heap.BlocksKept(), 0) << count;
    }

    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
    EXPECT_GT(thrown, 150u);
    EXPECT_GT(failed, 0u);
    RecordProperty("blocks_refused", static_cast<int>(thrown + failed));
}

} // namespace vell::test
