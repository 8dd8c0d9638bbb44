// VELL: data-driven hierarchical state machines.
// bench/ChangeBench.cpp: ticks that change states, beside bare writes of the same log lines.
#include "bench/Character.h"
#include "bench/Documents.h"
#include "bench/Limits.h"

#include <benchmark/benchmark.h>

namespace vell::bench
{
namespace
{

/// With the listener and the hook that a host would have.
Machine StartObserved(const std::string& document, Observer& observer)
{
    Machine machine = StartMachine(document);
    observer.Watch(*machine);
    return machine;
}

void SwitchingTick(benchmark::State& state)
{
    Observer observer;
    const Machine machine =
        StartObserved(SwitchingDocument(static_cast<int>(state.range(0))), observer);
    for (auto _ : state)
    {
        machine->Update(kTimeStep);
    }
    state.counters["checksum"] = CurrentId(*machine) / 1000;
}
BENCHMARK(SwitchingTick)->Arg(1)->Arg(3)->Arg(8);

/// The same machine held still: what a switching tick costs without the change.
void HeldTick(benchmark::State& state)
{
    Observer observer;
    const Machine machine =
        StartObserved(SwitchingDocument(static_cast<int>(state.range(0))), observer);
    SetParameter(*machine, kStill, 1.0f);
    for (auto _ : state)
    {
        machine->Update(kTimeStep);
    }
    state.counters["checksum"] = CurrentId(*machine) / 1000;
}
BENCHMARK(HeldTick)->Arg(1)->Arg(3)->Arg(8);

std::vector<std::string> LinesOfOneChange()
{
    const Machine machine = StartMachine(SwitchingDocument(1));
    const LogRecord record;
    machine->Update(kTimeStep);
    return record.Lines();
}

void TimeBareWrites(benchmark::State& state, const std::vector<std::string>& lines)
{
    std::size_t bytes = 0;
    for (auto _ : state)
    {
        bytes = WriteBare(lines);
    }
    state.counters["checksum"] = static_cast<double>(bytes);
}

void LimitLogOfOneChange(benchmark::State& state)
{
    TimeBareWrites(state, LinesOfOneChange());
}
BENCHMARK(LimitLogOfOneChange);

/// A frame of the sample character that sets one parameter and changes the innermost state.
void SwitchCharacter(benchmark::State& state)
{
    Observer observer;
    Character character;
    observer.Watch(character.Get());
    int frame = 0;
    for (auto _ : state)
    {
        RunSwitch(character, frame++);
    }
    state.counters["checksum"] = observer.heard > 0 ? 1 : 0;
}

void SwitchWithLines(benchmark::State& state)
{
    SwitchCharacter(state);
}
BENCHMARK(SwitchWithLines);

void SwitchQuiet(benchmark::State& state)
{
    const QuietLog quiet;
    SwitchCharacter(state);
}
BENCHMARK(SwitchQuiet);

void LimitSwitchByHand(benchmark::State& state)
{
    LimitInBlock<ChangingLimit> limit;
    int frame = 0;
    for (auto _ : state)
    {
        RunSwitch(limit.machine, frame++);
    }
    state.counters["checksum"] = limit.machine.Current() > 0 ? 1 : 0;
}
BENCHMARK(LimitSwitchByHand);

/// The lines that the sample character logs when it starts to run.
std::vector<std::string> LinesOfOneSwitch()
{
    Observer observer;
    Character character;
    observer.Watch(character.Get());
    const LogRecord record;
    RunSwitch(character, 0);
    return record.Lines();
}

void LimitSwitchWrites(benchmark::State& state)
{
    TimeBareWrites(state, LinesOfOneSwitch());
}
BENCHMARK(LimitSwitchWrites);

/// An interruption by the global state, its transition to the exit node, and the tick in which that
/// ends it.
void BlipStartAndEnd(benchmark::State& state)
{
    const Machine machine = StartMachine(BlipDocument());
    for (auto _ : state)
    {
        SetParameter(*machine, kInterrupt, 1.0f);
        machine->Update(kTimeStep);
        SetParameter(*machine, kInterrupt, 0.0f);
        machine->Update(kTimeStep);
        machine->Update(kTimeStep);
    }
    state.counters["checksum"] = CurrentId(*machine);
}
BENCHMARK(BlipStartAndEnd);

} // namespace
} // namespace vell::bench
