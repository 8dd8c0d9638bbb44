// VELL: data-driven hierarchical state machines.
// bench/Spawning.h: the time and the memory that one more machine takes.
#pragma once

#include "bench/Process.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace vell::bench
{

/// Times `spawn`, whose results are kept until a batch is complete. Their end is not timed. With
/// `isNew`, each batch is created in memory that the system has not given out before.
template <class Spawn>
void TimeSpawns(benchmark::State& state, bool isNew, const Spawn& spawn)
{
    constexpr int kBatch = 50;
    std::vector<decltype(spawn())> kept;
    kept.reserve(kBatch);
    while (state.KeepRunningBatch(kBatch))
    {
        const double start = ProcessorSeconds();
        for (int i = 0; i < kBatch; ++i)
        {
            kept.push_back(spawn());
        }
        state.SetIterationTime(ProcessorSeconds() - start);
        kept.clear();
        if (isNew)
        {
            TrimHeap();
        }
    }
    state.counters["checksum"] = static_cast<double>(kept.size());
}

/// Counts the resident bytes of one more result of `spawn`, when there are some already. None is
/// ended: what is freed would be used again.
template <class Spawn>
void CountResident(benchmark::State& state, int count, const Spawn& spawn)
{
    using Kept = std::vector<decltype(spawn())>;
    Kept& kept = *new Kept;
    kept.reserve(static_cast<std::size_t>(2 * count));
    for (auto _ : state)
    {
        for (int i = 0; i < count; ++i)
        {
            kept.push_back(spawn());
        }
    }
    const double before = ResidentBytes();
    for (int i = 0; i < count; ++i)
    {
        kept.push_back(spawn());
    }
    state.counters["bytes"] = (ResidentBytes() - before) / count;
}

} // namespace vell::bench
