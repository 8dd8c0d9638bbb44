// VELL: data-driven hierarchical state machines.
// bench/TickBench.cpp: ticks, beside hand-written machines that do the same.
#include "bench/Documents.h"
#include "bench/Limits.h"
#include "bench/Machines.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace vell::bench
{
namespace
{

constexpr float kTimeStep = 0.016f;

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

void LimitVirtualBlock(benchmark::State& state)
{
    std::vector<unsigned char> block(VirtualMachine::BlockSize());
    VirtualMachine machine(block.data());
    TickLimit(state, machine);
}
BENCHMARK(LimitVirtualBlock);

void LimitVirtualScattered(benchmark::State& state)
{
    VirtualMachine machine(nullptr);
    TickLimit(state, machine);
}
BENCHMARK(LimitVirtualScattered);

/// The order in which many machines are ticked: in turn, or in the same shuffled order each time.
std::vector<std::size_t> Order(std::size_t count, bool shuffled)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (shuffled)
    {
        std::shuffle(order.begin(), order.end(), std::mt19937(20));
    }
    return order;
}

template <class Machines>
void TickMany(benchmark::State& state, const Machines& machines)
{
    const std::vector<std::size_t> order = Order(machines.size(), state.range(1) != 0);
    for (auto _ : state)
    {
        for (const std::size_t i : order)
        {
            machines[i]->Update(kTimeStep);
        }
    }
}

void ManyMachines(benchmark::State& state)
{
    const std::string document = IdleDocument({});
    std::vector<Machine> machines;
    for (int i = 0; i < state.range(0); ++i)
    {
        machines.push_back(StartMachine(document));
    }
    TickMany(state, machines);
    unsigned int checksum = 0;
    for (const Machine& machine : machines)
    {
        checksum += CurrentId(*machine);
    }
    state.counters["checksum"] = checksum;
}
BENCHMARK(ManyMachines)
    ->ArgsProduct({{1, 10, 100, 1000, 10000}, {0, 1}})
    ->ArgNames({"machines", "shuffled"});

void ManyMachinesTogether(benchmark::State& state)
{
    const std::string document = IdleDocument({});
    std::vector<Machine> machines;
    for (int i = 0; i < state.range(0); ++i)
    {
        machines.push_back(StartMachine(document));
    }
    std::vector<IHSM*> pointers;
    for (const std::size_t i : Order(machines.size(), state.range(1) != 0))
    {
        pointers.push_back(machines[i].get());
    }
    for (auto _ : state)
    {
        UpdateMachines(pointers.data(), pointers.size(), kTimeStep);
    }
}
BENCHMARK(ManyMachinesTogether)
    ->ArgsProduct({{1, 10, 100, 1000, 10000}, {0, 1}})
    ->ArgNames({"machines", "shuffled"});

template <class MakeBlock>
void TickManyLimits(benchmark::State& state, const MakeBlock& makeBlock)
{
    std::vector<std::unique_ptr<VirtualMachine>> machines;
    for (int i = 0; i < state.range(0); ++i)
    {
        machines.push_back(std::make_unique<VirtualMachine>(makeBlock(i)));
    }
    TickMany(state, machines);
    unsigned int checksum = 0;
    for (const auto& machine : machines)
    {
        checksum += machine->current;
    }
    state.counters["checksum"] = checksum;
}

void ManyLimitVirtualBlock(benchmark::State& state)
{
    const std::size_t size = VirtualMachine::BlockSize();
    std::vector<unsigned char> blocks(size * static_cast<std::size_t>(state.range(0)));
    TickManyLimits(state,
                   [&blocks, size](int i)
                   {
                       return blocks.data() + size * static_cast<std::size_t>(i);
                   });
}
BENCHMARK(ManyLimitVirtualBlock)
    ->ArgsProduct({{1, 10, 100, 1000, 10000}, {0, 1}})
    ->ArgNames({"machines", "shuffled"});

/// Fills the heap with blocks and frees them in a shuffled order, so that what is allocated next
/// is scattered over it.
void ScatterHeap(std::size_t blockCount)
{
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t i = 0; i < blockCount; ++i)
    {
        blocks.push_back(std::make_unique<char[]>(24));
    }
    for (const std::size_t i : Order(blockCount, true))
    {
        blocks[i].reset();
    }
}

void ManyLimitVirtualScattered(benchmark::State& state)
{
    ScatterHeap(static_cast<std::size_t>(state.range(0)) * 40);
    TickManyLimits(state,
                   [](int) -> unsigned char*
                   {
                       return nullptr;
                   });
}
BENCHMARK(ManyLimitVirtualScattered)
    ->ArgsProduct({{10000}, {0, 1}})
    ->ArgNames({"machines", "shuffled"});

} // namespace
} // namespace vell::bench
