// VELL: data-driven hierarchical state machines.
// tests/callbacks/Process.h: processes that run a function of this one, with limits.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vell::callbacks
{

/// Where a process writes what is to be shown only when it fails.
class Report
{
public:
    Report();
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// Forgets what was written.
    void Clear();
    /// Makes standard output and standard error of this process write into the report.
    void TakeOutput() const;
    /// Writes `line` to standard error as it was when the program began, and below it the end of
    /// what was written: a sanitizer's report, or the last lines.
    void Tell(const std::string& line) const;

private:
    int file = -1;
};

/// Runs `function` in a process of its own, which starts as a copy of this one. Gives an empty text
/// when it returned, else how the process ended: by a signal, by the time limit, with an exit code.
std::string RunInProcess(Report& report, const std::function<void()>& function);

/// Ends this process, started by `RunInProcess`, as one that failed, with `what` in its report.
[[noreturn]] void FailProcess(const std::string& what);

/// Asks the leak sanitizer of this build, if it has one, and lets it report.
bool HasLeaked();

/// Runs functions in processes of their own, a few at a time.
class SideBySide
{
public:
    explicit SideBySide(std::size_t most);

    /// Starts one, as soon as there is room.
    void Start(const std::function<void()>& function);
    /// Waits for all. Gives how many did not return.
    int Wait();

private:
    void WaitForOne();

    std::size_t room;
    std::vector<pid_t> running;
    int failed = 0;
};

/// Gives zeroed memory that all processes share which are started later. It is never given back.
void* MakeSharedBytes(std::size_t size);

template <class T>
T* MakeShared(std::size_t count)
{
    auto* first = static_cast<T*>(MakeSharedBytes(count * sizeof(T)));
    for (std::size_t i = 0; i < count; ++i)
    {
        new (first + i) T();
    }
    return first;
}

} // namespace vell::callbacks
