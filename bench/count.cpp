// VELL: data-driven hierarchical state machines.
// bench/count.cpp: one kind of work, a given number of times, for counting instructions and bytes.
#include "bench/Documents.h"
#include "bench/Frame.h"
#include "bench/GameWorks.h"
#include "bench/HeapCount.h"
#include "bench/Machines.h"

#include <rapidjson/document.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vell::bench
{
namespace
{

/// Ends by saying where the machine is, so that the work is there to be seen.
void Tick(IHSM& machine, int ticks)
{
    for (int i = 0; i < ticks; ++i)
    {
        machine.Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(machine));
}

void TickIdle(const TickShape& shape, int ticks)
{
    Tick(*StartMachine(IdleDocument(shape)), ticks);
}

void TickSwitching(int levels, bool held, int ticks)
{
    Observer observer;
    const Machine machine = StartMachine(SwitchingDocument(levels));
    observer.Watch(*machine);
    SetParameter(*machine, kStill, held ? 1.0f : 0.0f);
    Tick(*machine, ticks);
}

void Blip(int times)
{
    const Machine machine = StartMachine(BlipDocument());
    for (int i = 0; i < times; ++i)
    {
        SetParameter(*machine, kInterrupt, 1.0f);
        machine->Update(kTimeStep);
        SetParameter(*machine, kInterrupt, 0.0f);
        machine->Update(kTimeStep);
        machine->Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(*machine));
}

void WriteTable(int times)
{
    const Tessel::KVTable table = Tessel::CreateTable("baseDef");
    table->SetUInt("id", 1, 1);
    table->SetInt("type", 2, 1);
    for (int i = 0; i < times; ++i)
    {
        table->SetFloat("value", 3.0f, 1);
    }
    std::printf("%u\n", table->GetKeyCount());
}

void MakeTables(int times)
{
    for (int i = 0; i < times; ++i)
    {
        const Tessel::KVTable table = Tessel::CreateTable("baseDef");
        table->SetUInt("id", 1, 1);
        table->SetInt("type", 2, 1);
        table->SetFloat("value", 3.0f, 1);
        Tessel::CloseTable(table);
    }
    std::printf("%u\n", Tessel::GetOpenTableCount());
}

void Load(int states)
{
    LoadMachine(LoadDocument(states));
    std::printf("%d\n", states);
}

void Generate(int states)
{
    std::printf("%u\n", static_cast<unsigned int>(LoadDocument(states).size()));
}

void Parse(int states)
{
    GenericDocument document;
    document.Parse(LoadDocument(states).c_str());
    std::printf("%u\n", document.MemberCount());
}

/// Shows the arena, which only a class of the machine's own kind reaches.
class ShownMachine : public HSM
{
public:
    explicit ShownMachine(const char* text)
    {
        jsonText = text;
        Create();
    }

    unsigned int ArenaUsed() const
    {
        return alloc.used;
    }
};

/// Prints the bytes of a loaded machine of `states` states beyond its parsed document.
void PrintMemory(int states)
{
    const std::string text = LoadDocument(states);
    const HeapCount before = CountHeap();
    auto* machine = new ShownMachine(text.c_str());
    if (!machine->Init())
    {
        Fail("a generated document was refused");
    }
    const HeapCount after = CountHeap();
    std::printf("%u %lld %lld\n", machine->ArenaUsed(), after.others - before.others,
                after.tables - before.tables);
    EndMachine()(machine);
}

/// Prints the bytes of `count` tables of three short keys each.
void PrintTableMemory(int count)
{
    const HeapCount before = CountHeap();
    for (int i = 0; i < count; ++i)
    {
        const Tessel::KVTable table = Tessel::CreateTable("baseDef");
        table->SetUInt("id", 1, 1);
        table->SetInt("type", 2, 1);
        table->SetFloat("value", 3.0f, 1);
    }
    std::printf("%lld\n", CountHeap().tables - before.tables);
}

/// Leaves out the log lines.
template <void (*run)(int)>
void Quietly(int times)
{
    const QuietLog quiet;
    run(times);
}

struct Work
{
    const char* name;
    void (*run)(int times);
};

constexpr Work kWorks[] = {
    {"idle",
     [](int times)
     {
         TickIdle({}, times);
     }},
    {"idle24",
     [](int times)
     {
         TickIdle({3, 2, 0}, times);
     }},
    {"idle-large",
     [](int times)
     {
         TickIdle({3, 1, 20000}, times);
     }},
    {"idle-deep",
     [](int times)
     {
         TickIdle({8, 1, 0}, times);
     }},
    {"switching",
     [](int times)
     {
         TickSwitching(3, false, times);
     }},
    {"held",
     [](int times)
     {
         TickSwitching(3, true, times);
     }},
    {"switching-quiet",
     [](int times)
     {
         const QuietLog quiet;
         TickSwitching(3, false, times);
     }},
    {"load-quiet", Quietly<Load>},
    {"blip", Blip},
    {"sample", TickSample},
    {"settled", TickSettled},
    {"triggered", TickTriggered},
    {"resetting", TickResetting},
    {"set-value", SetHotFloat},
    {"frame", Frames<Extra::Nothing>},
    {"frame-actions", Frames<Extra::Actions>},
    {"frame-trigger", Frames<Extra::Trigger>},
    {"frame-reset", Frames<Extra::Reset>},
    {"frame-listen", Frames<Extra::Listener>},
    {"frame-limit", FramesByHand<Extra::Nothing>},
    {"limit-actions", FramesByHand<Extra::Actions>},
    {"limit-trigger", FramesByHand<Extra::Trigger>},
    {"limit-reset", FramesByHand<Extra::Reset>},
    {"limit-listen", FramesByHand<Extra::Listener>},
    {"switch", Switches},
    {"switch-quiet", Quietly<Switches>},
    {"switch-limit", SwitchesByHand},
    {"spawn", Spawns},
    {"spawn-quiet", Quietly<Spawns>},
    {"spawn-limit", Parses},
    {"table-write", WriteTable},
    {"table-make", MakeTables},
    {"load", Load},
    {"generate", Generate},
    {"parse", Parse},
    {"memory", PrintMemory},
    {"table-memory", PrintTableMemory},
};

const Work* FindWork(const char* name)
{
    for (const Work& work : kWorks)
    {
        if (std::strcmp(work.name, name) == 0)
        {
            return &work;
        }
    }
    return nullptr;
}

} // namespace
} // namespace vell::bench

int main(int argc, char** argv)
{
    const vell::bench::Work* work = argc == 3 ? vell::bench::FindWork(argv[1]) : nullptr;
    if (work == nullptr)
    {
        std::puts("usage: vell_count WORK TIMES");
        return 1;
    }
    vell::bench::DiscardStandardError();
    work->run(std::atoi(argv[2]));
    return 0;
}
