// VELL: data-driven hierarchical state machines.
// bench/CrowdBench.cpp: ticks and frames of many machines, beside as many hand-written ones.
#include "bench/Character.h"
#include "bench/Crowd.h"
#include "bench/Documents.h"
#include "bench/Limits.h"

#include <memory>

namespace vell::bench
{
namespace
{

/// A machine of a generated document, three states on the stack with four transitions each.
class IdleMachine : public CrowdMember
{
public:
    IdleMachine() : CrowdMember(StartMachine(IdleDocument({})))
    {
    }
};

/// Ticks the machines by one call, after their inputs are set when `setsInputs`.
template <class AnyCrowd, bool kSetsInputs>
void UpdateTogether(benchmark::State& state)
{
    const auto machines = TakeCrowd<AnyCrowd>(state);
    std::vector<IHSM*> updated;
    for (const auto* machine : machines)
    {
        updated.push_back(&machine->Get());
    }
    int frame = 0;
    for (auto _ : state)
    {
        if constexpr (kSetsInputs)
        {
            for (auto* machine : machines)
            {
                machine->SetInputs(frame);
            }
            ++frame;
        }
        UpdateMachines(updated.data(), updated.size(), kTimeStep);
    }
    CheckSum(state, machines);
}

using Limit = VirtualMachine<kLimitTransitions>;

/// A hand-written machine whose objects are all over the heap.
class ScatteredLimit : public Limit
{
public:
    ScatteredLimit() : Limit(nullptr)
    {
    }
};

/// As `Crowd`, on a heap that was filled and freed in a shuffled order.
class ScatteredCrowd : public Crowd<ScatteredLimit>
{
public:
    ScatteredCrowd()
    {
        constexpr std::size_t kBlocksOfMachine = 40;
        std::vector<std::unique_ptr<char[]>> blocks;
        for (std::size_t i = 0; i < kLargestCrowd * kBlocksOfMachine; ++i)
        {
            blocks.push_back(std::make_unique<char[]>(24));
        }
        for (const std::size_t i : UpdateOrder(blocks.size(), true))
        {
            blocks[i].reset();
        }
    }
};

BENCHMARK_TEMPLATE(TickCrowd, Crowd<IdleMachine>)->Name("ManyMachines")->Apply(EachCrowd);
BENCHMARK_TEMPLATE(UpdateTogether, Crowd<IdleMachine>, false)
    ->Name("ManyMachinesTogether")
    ->Apply(EachCrowd);
BENCHMARK_TEMPLATE(TickCrowd, LimitCrowd<Limit>)->Name("ManyLimitVirtualBlock")->Apply(EachCrowd);
BENCHMARK_TEMPLATE(TickCrowd, ScatteredCrowd)
    ->Name("ManyLimitVirtualScattered")
    ->ArgsProduct({{static_cast<int64_t>(kLargestCrowd)}, {0, 1}})
    ->ArgNames({"machines", "shuffled"});

BENCHMARK_TEMPLATE(TickCrowd, Crowd<Character>)->Name("TicksOfMany")->Apply(EachCrowd);
BENCHMARK_TEMPLATE(UpdateTogether, Crowd<Character>, false)
    ->Name("TicksOfManyTogether")
    ->Apply(EachCrowd);
BENCHMARK_TEMPLATE(TickCrowd, LimitCrowd<CharacterWalk>)
    ->Name("TicksOfManyLimits")
    ->Apply(EachCrowd);
BENCHMARK_TEMPLATE(FrameCrowd, Crowd<Character>)->Name("FramesOfMany")->Apply(EachCrowd);
BENCHMARK_TEMPLATE(UpdateTogether, Crowd<Character>, true)
    ->Name("FramesOfManyTogether")
    ->Apply(EachCrowd);
BENCHMARK_TEMPLATE(FrameCrowd, LimitCrowd<CharacterLimit<Extra::Nothing>>)
    ->Name("FramesOfManyLimits")
    ->Apply(EachCrowd);

} // namespace
} // namespace vell::bench
