// VELL: data-driven hierarchical state machines.
// bench/Process.cpp: what this process has used of the machine it runs on.
#include "bench/Process.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <time.h>
#include <unistd.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace vell::bench
{

void Fail(const char* reason)
{
    std::puts(reason);
    std::exit(1);
}

void DiscardStandardError()
{
    const int nowhere = open("/dev/null", O_WRONLY);
    if (nowhere < 0 || dup2(nowhere, STDERR_FILENO) < 0)
    {
        Fail("standard error cannot be discarded");
    }
    close(nowhere);
}

double ProcessorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double ResidentBytes()
{
    std::ifstream file("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    if (!(file >> total >> resident))
    {
        Fail("/proc/self/statm cannot be read");
    }
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void TrimHeap()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace vell::bench
