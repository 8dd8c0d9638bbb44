// VELL: data-driven hierarchical state machines.
// bench/FrameBench.cpp: frames of one machine, beside hand-written ones.
#include "bench/Character.h"
#include "bench/Limits.h"

#include <benchmark/benchmark.h>

namespace vell::bench
{
namespace
{

template <Extra kExtra>
void Frame(benchmark::State& state)
{
    Character character(kExtra);
    int frame = 0;
    for (auto _ : state)
    {
        RunFrame<kExtra>(character, frame++);
    }
    state.counters["checksum"] = character.Current();
}
BENCHMARK_TEMPLATE(Frame, Extra::Nothing)->Name("Frame");
BENCHMARK_TEMPLATE(Frame, Extra::Actions)->Name("FrameActions");
BENCHMARK_TEMPLATE(Frame, Extra::Trigger)->Name("FrameTrigger");
BENCHMARK_TEMPLATE(Frame, Extra::Reset)->Name("FrameReset");
BENCHMARK_TEMPLATE(Frame, Extra::Listener)->Name("FrameListener");

template <Extra kExtra>
void LimitFrame(benchmark::State& state)
{
    LimitInBlock<CharacterLimit<kExtra>> limit;
    int frame = 0;
    for (auto _ : state)
    {
        RunFrame<kExtra>(limit.machine, frame++);
    }
    state.counters["checksum"] = limit.machine.Current();
}
BENCHMARK_TEMPLATE(LimitFrame, Extra::Nothing)->Name("LimitFrame");
BENCHMARK_TEMPLATE(LimitFrame, Extra::Actions)->Name("LimitFrameActions");
BENCHMARK_TEMPLATE(LimitFrame, Extra::Trigger)->Name("LimitFrameTrigger");
BENCHMARK_TEMPLATE(LimitFrame, Extra::Reset)->Name("LimitFrameReset");
BENCHMARK_TEMPLATE(LimitFrame, Extra::Listener)->Name("LimitFrameListener");

void CharacterTick(benchmark::State& state)
{
    Character character;
    for (auto _ : state)
    {
        character.Update(kTimeStep);
    }
    state.counters["checksum"] = character.Current();
}
BENCHMARK(CharacterTick);

void SetValueHot(benchmark::State& state)
{
    Character character;
    int frame = 0;
    for (auto _ : state)
    {
        character.SetSpeed(InTurn(frame++, 1.5f, 1.75f));
    }
    state.counters["checksum"] = character.Current();
}
BENCHMARK(SetValueHot);

void LimitSetValue(benchmark::State& state)
{
    LimitInBlock<VirtualMachine<kCharacterTransitions>> limit;
    int frame = 0;
    for (auto _ : state)
    {
        limit.machine.SetValue(0, InTurn(frame++, 0.5f, 0.75f));
    }
    state.counters["checksum"] = limit.machine.Current();
}
BENCHMARK(LimitSetValue);

} // namespace
} // namespace vell::bench
