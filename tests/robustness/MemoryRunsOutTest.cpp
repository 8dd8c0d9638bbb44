// VELL: data-driven hierarchical state machines.
// tests/robustness/MemoryRunsOutTest.cpp: arenas of every size, and every block refused in turn.
#include "tests/robustness/Conditions.h"
#include "tests/support/HeapWatch.h"

#include "machine/DocumentParser.h"

#include <vell/HSM.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace vell::test
{
namespace
{

/// A machine whose arena is made anew, with a size of the test's own, before anything stands in it.
class CrampedMachine : public HSM
{
public:
    CrampedMachine(const std::string& text, unsigned int arenaSize) : size(arenaSize)
    {
        jsonText = text.c_str();
    }
    unsigned int Used() const
    {
        return alloc.used;
    }

protected:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        if (size != 0)
        {
            alloc.Reserve(size);
        }
        else
        {
            alloc.Release();
        }
    }

private:
    unsigned int size;
};

constexpr unsigned int kRoomy = 1000000;

template <class Interface, class Value>
void Set(IHSM& machine, const char* name, const Value& value)
{
    IParameterTable* table = machine.GetParameterTable();
    ParameterDef* parameter = table == nullptr ? nullptr : table->FindParameter(name);
    if (auto* typed = dynamic_cast<Interface*>(parameter))
    {
        typed->SetValue(value);
    }
}

/// Brings every state of the document onto a stack: a level, a blip and its end.
void RunThrough(IHSM& machine)
{
    machine.Start();
    machine.Update(0.1f);
    Set<IParameterIntDef>(machine, "count", 3);
    machine.Update(0.1f);
    machine.Update(0.1f);
    Set<IParameterMessageDef>(machine, "shout", std::string(100, 's'));
    Set<IParameterBoolDef>(machine, "hit", true);
    machine.Update(0.1f);
    Set<IParameterFloatDef>(machine, "speed", 2.0f);
    machine.Update(0.1f);
    machine.Update(0.1f);
    Set<IParameterBoolDef>(machine, "go", true);
    machine.Update(0.1f);
    machine.Update(0.1f);
}

unsigned int ArenaNeed(const std::string& text)
{
    CrampedMachine machine(text, kRoomy);
    EXPECT_EQ(machine.Create(), 1);
    EXPECT_EQ(machine.Init(), 1);
    RunThrough(machine);
    const unsigned int used = machine.Used();
    machine.Uninit();
    machine.Destroy();
    return used;
}

/// What became of one machine.
struct Fate
{
    int created = 0;
    int initialised = 0;
    bool threw = false;
    bool refused = false;
};

/// A whole life in which the block after `count` others is refused.
Fate LiveWithout(const std::string& text, HeapWatch& heap, std::size_t count)
{
    Fate fate;
    std::unique_ptr<CrampedMachine> machine;
    heap.RefuseAfter(count);
    try
    {
        machine = std::make_unique<CrampedMachine>(text, kRoomy);
        fate.created = machine->Create();
        fate.initialised = machine->Init();
        if (fate.initialised != 0)
        {
            RunThrough(*machine);
        }
    }
    catch (const std::bad_alloc&)
    {
        fate.threw = true;
    }
    fate.refused = heap.Refused() != 0;
    heap.RefuseNothing();
    if (machine != nullptr)
    {
        if (fate.initialised != 0)
        {
            machine->Update(0.1f);
            machine->Update(0.1f);
        }
        machine->Uninit();
        machine->Destroy();
    }
    return fate;
}

/// The blocks that making a machine takes before the parser begins, and those that parsing takes.
struct ParserBlocks
{
    std::size_t before;
    std::size_t count;
};

ParserBlocks CountParserBlocks(const std::string& text)
{
    const HeapWatch heap;
    const auto machine = std::make_unique<CrampedMachine>(text, kRoomy);
    const std::size_t before = heap.Asked();
    GenericDocument document;
    const std::size_t made = heap.Asked();
    ParseText(text.c_str(), document);
    return {before, heap.Asked() - made};
}

} // namespace

TEST(ArenaRunsOut, AtEverySizeWithTheStatedFailuresAndNothingLeft)
{
    const std::string text = WholeDocument().Text();
    QuietLog log;
    const unsigned int need = ArenaNeed(text);
    const unsigned int step = Scaled(1, 13);
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
        if (refused && !fate.threw)
        {
            ASSERT_NE(log.Errors(), 0u) << count;
        }
        ASSERT_EQ(heap.BlocksKept(), 0) << count;
    }

    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
    EXPECT_GT(thrown, 200u);
    EXPECT_GT(failed, 0u);
    RecordProperty("blocks_refused", static_cast<int>(thrown + failed));
}

} // namespace vell::test
