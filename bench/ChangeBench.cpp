// VELL: data-driven hierarchical state machines.
// bench/ChangeBench.cpp: ticks that change states, beside bare writes of the same log lines.
#include "bench/Documents.h"
#include "bench/Machines.h"

#include <benchmark/benchmark.h>

namespace vell::bench
{
namespace
{

constexpr float kTimeStep = 0.016f;

/// With the listener and the hook that a host would have.
Machine StartObserved(const std::string& document, Observer& observer)
{
    Machine machine = StartMachine(document);
    machine->SubscribeStateChange(&observer);
    machine->SetStateSwitchCallback(Observer::OnSwitch);
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

void LimitLogOfOneChange(benchmark::State& state)
{
    const std::vector<std::string> lines = LinesOfOneChange();
    std::size_t bytes = 0;
    for (auto _ : state)
    {
        bytes = WriteBare(lines);
    }
    state.counters["checksum"] = static_cast<double>(bytes);
}
BENCHMARK(LimitLogOfOneChange);

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
