// VELL: data-driven hierarchical state machines.
// bench/Crowd.cpp: many machines, which are updated in turn or in shuffled order.
#include "bench/Crowd.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace vell::bench
{

std::vector<std::size_t> UpdateOrder(std::size_t count, bool shuffled)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (shuffled)
    {
        std::shuffle(order.begin(), order.end(), std::mt19937(20));
    }
    return order;
}

void EachCrowd(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgsProduct({{1, 10, 100, 1000, static_cast<int64_t>(kLargestCrowd)}, {0, 1}});
    benchmark->ArgNames({"machines", "shuffled"});
}

} // namespace vell::bench
