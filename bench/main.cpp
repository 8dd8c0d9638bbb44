// VELL: data-driven hierarchical state machines.
// bench/main.cpp: the benchmark program.
#include "bench/Process.h"

#include <benchmark/benchmark.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
#if defined(__GLIBC__)
    // Large blocks come from the heap and stay in it, so that no run pays for pages that another
    // one had already.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
#endif
    vell::bench::DiscardStandardError();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
