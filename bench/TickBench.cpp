// VELL: data-driven hierarchical state machines.
// bench/TickBench.cpp: ticks, beside hand-written machines that do the same.
#include "bench/Documents.h"
#include "bench/Frame.h"
#include "bench/Limits.h"
#include "bench/Machines.h"

#include <benchmark/benchmark.h>

namespace vell::bench
{
namespace
{

void TickMachine(benchmark::State& state, const std::string& document)
{
    const Machine machine = StartMachine(document);
    for (auto _ : state)
    {
        machine->Update(kTimeStep);
    }
    state.counters["checksum"] = CurrentId(*machine);
}

void IdleTickByConditions(benchmark::State& state)
{
    TickMachine(state, IdleDocument({3, static_cast<int>(state.range(0)) / 12, 0}));
}
BENCHMARK(IdleTickByConditions)->Arg(12)->Arg(24)->Arg(48)->Arg(96);

void IdleTickByNodes(benchmark::State& state)
{
    TickMachine(state, IdleDocument({1, 4, static_cast<int>(state.range(0))}));
}
BENCHMARK(IdleTickByNodes)->Arg(10)->Arg(1000)->Arg(10000)->Arg(100000);

void IdleTickByDepth(benchmark::State& state)
{
    TickMachine(state, IdleDocument({static_cast<int>(state.range(0)), 1, 0}));
}
BENCHMARK(IdleTickByDepth)->Arg(1)->Arg(2)->Arg(4)->Arg(8);

template <class Limit>
void TickLimit(benchmark::State& state, Limit& machine)
{
    Limit* ticked = &machine;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(ticked);
        ticked->Update(kTimeStep);
    }
    state.counters["checksum"] = ticked->current;
}

void LimitSwitch(benchmark::State& state)
{
    SwitchMachine machine;
    TickLimit(state, machine);
}
BENCHMARK(LimitSwitch);

/// As many conditions as the machines above, each of a transition of its own.
template <int kTransitions>
void LimitVirtualBlock(benchmark::State& state)
{
    LimitInBlock<VirtualMachine<kTransitions>> limit;
    TickLimit(state, limit.machine);
}
BENCHMARK_TEMPLATE(LimitVirtualBlock, kLimitTransitions)->Name("LimitVirtualBlock/12");
BENCHMARK_TEMPLATE(LimitVirtualBlock, 2 * kLimitTransitions)->Name("LimitVirtualBlock/24");
BENCHMARK_TEMPLATE(LimitVirtualBlock, 4 * kLimitTransitions)->Name("LimitVirtualBlock/48");
BENCHMARK_TEMPLATE(LimitVirtualBlock, 8 * kLimitTransitions)->Name("LimitVirtualBlock/96");

void LimitVirtualScattered(benchmark::State& state)
{
    VirtualMachine<kLimitTransitions> machine(nullptr);
    TickLimit(state, machine);
}
BENCHMARK(LimitVirtualScattered);

} // namespace
} // namespace vell::bench
