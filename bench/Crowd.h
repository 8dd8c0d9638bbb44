// VELL: data-driven hierarchical state machines.
// bench/Crowd.h: many machines, which are updated in turn or in shuffled order.
#pragma once

#include "bench/Frame.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <deque>
#include <vector>

namespace vell::bench
{

inline constexpr std::size_t kLargestCrowd = 10000;

/// Gives the places 0 to `count` - 1, in turn, or in a shuffled order that is always the same.
std::vector<std::size_t> UpdateOrder(std::size_t count, bool shuffled);

/// Measures crowds of each size, in both orders: the arguments are the size and 1 for shuffled.
void EachCrowd(benchmark::internal::Benchmark* benchmark);

/// Machines that are created once, when first needed, and kept to the end of the process. A small
/// crowd is the beginning of a large one.
template <class Machine>
class Crowd
{
public:
    using Item = Machine;

    void Grow(std::size_t count)
    {
        while (items.size() < count)
        {
            items.emplace_back();
        }
    }

    Machine& operator[](std::size_t i)
    {
        return items[i];
    }

private:
    std::deque<Machine> items;
};

/// Hand-written machines, all in one block one after the other.
template <class Machine>
class LimitCrowd
{
public:
    using Item = Machine;

    void Grow(std::size_t count)
    {
        while (items.size() < count)
        {
            items.emplace_back(&block[items.size() * Machine::BlockSize()]);
        }
    }

    Machine& operator[](std::size_t i)
    {
        return items[i];
    }

private:
    std::vector<unsigned char> block =
        std::vector<unsigned char>(kLargestCrowd * Machine::BlockSize());
    std::deque<Machine> items;
};

/// Gives the machines of the process's crowd that the benchmark asks for, in the order of updates.
template <class AnyCrowd>
std::vector<typename AnyCrowd::Item*> TakeCrowd(const benchmark::State& state)
{
    static AnyCrowd crowd;
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    crowd.Grow(count);
    std::vector<typename AnyCrowd::Item*> machines;
    for (const std::size_t i : UpdateOrder(count, state.range(1) != 0))
    {
        machines.push_back(&crowd[i]);
    }
    return machines;
}

template <class Machine>
void CheckSum(benchmark::State& state, const std::vector<Machine*>& machines)
{
    unsigned int sum = 0;
    for (const Machine* machine : machines)
    {
        sum += machine->Current();
    }
    state.counters["checksum"] = sum;
}

/// Ticks a crowd.
template <class AnyCrowd>
void TickCrowd(benchmark::State& state)
{
    const auto machines = TakeCrowd<AnyCrowd>(state);
    for (auto _ : state)
    {
        for (auto* machine : machines)
        {
            machine->Update(kTimeStep);
        }
    }
    CheckSum(state, machines);
}

/// Runs a frame of a crowd.
template <class AnyCrowd>
void FrameCrowd(benchmark::State& state)
{
    const auto machines = TakeCrowd<AnyCrowd>(state);
    int frame = 0;
    for (auto _ : state)
    {
        for (auto* machine : machines)
        {
            RunFrame<Extra::Nothing>(*machine, frame);
        }
        ++frame;
    }
    CheckSum(state, machines);
}

} // namespace vell::bench
