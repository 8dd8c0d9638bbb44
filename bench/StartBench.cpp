// VELL: data-driven hierarchical state machines.
// bench/StartBench.cpp: from the start of a process to its first state entered.
#include "bench/Machines.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace vell::bench
{
namespace
{

constexpr const char* kSample = VELL_SOURCE_DIR "/samples/locomotion.json";

/// Starts a program with the sample document, its standard error in a pipe.
pid_t Spawn(const char* program, int* errorPipe)
{
    int ends[2];
    if (pipe(ends) != 0)
    {
        Fail("no pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string arguments[] = {program, kSample};
    char* argv[] = {arguments[0].data(), arguments[1].data(), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, program, &actions, nullptr, argv, environ) != 0)
    {
        Fail("a program cannot be started");
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    *errorPipe = ends[0];
    return child;
}

/// Reads until `mark` has come, then to the end. Gives the seconds until the mark, -1 without it.
double SecondsUntil(const char* program, const std::string& mark)
{
    const auto start = std::chrono::steady_clock::now();
    int from = -1;
    const pid_t child = Spawn(program, &from);
    std::string text;
    double seconds = -1.0;
    char piece[4096];
    for (ssize_t count = 0; (count = read(from, piece, sizeof(piece))) > 0;)
    {
        text.append(piece, static_cast<std::size_t>(count));
        if (seconds < 0.0 && text.find(mark) != std::string::npos)
        {
            const auto now = std::chrono::steady_clock::now();
            seconds = std::chrono::duration<double>(now - start).count();
        }
    }
    close(from);
    waitpid(child, nullptr, 0);
    return seconds;
}

void TimeProcess(benchmark::State& state, const char* program, const std::string& mark)
{
    for (auto _ : state)
    {
        const double seconds = SecondsUntil(program, mark);
        if (seconds < 0.0)
        {
            state.SkipWithError("the program did not come to its mark");
            return;
        }
        state.SetIterationTime(seconds);
    }
    // The same counters everywhere: the CSV has one header.
    state.counters["checksum"] = static_cast<double>(mark.size());
}

void ProcessToFirstState(benchmark::State& state)
{
    TimeProcess(state, VELL_START_PROGRAM, "[Enter] ");
}
BENCHMARK(ProcessToFirstState)->UseManualTime();

void LimitProcessToParse(benchmark::State& state)
{
    TimeProcess(state, VELL_PARSE_PROGRAM, "parsed");
}
BENCHMARK(LimitProcessToParse)->UseManualTime();

} // namespace
} // namespace vell::bench
