// VELL: data-driven hierarchical state machines.
// tests/callbacks/Process.cpp: starting, limiting and waiting for processes.
#include "tests/callbacks/Process.h"

#include "tests/support/Sanitizer.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(VELL_ADDRESS_SANITIZER)
#include <sanitizer/lsan_interface.h>
#endif

namespace vell::callbacks
{
namespace
{

constexpr rlim_t kProcessorSeconds = 10;
constexpr unsigned int kSeconds = 120;
constexpr rlim_t kMostOutput = 8u << 20;
constexpr std::size_t kShown = 4000;
constexpr int kThrew = 99;
constexpr int kCheckFailed = 98;

/// Standard error of the program.
int errorOfProgram = -1;

[[noreturn]] void Stop(const char* what)
{
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
    std::abort();
}

void Limit(int what, rlim_t most)
{
    const rlimit limit{most, most};
    ::setrlimit(static_cast<__rlimit_resource>(what), &limit);
}

/// Ends this process when it loops, or writes without end.
void LimitThisProcess()
{
    Limit(RLIMIT_CPU, kProcessorSeconds);
    Limit(RLIMIT_FSIZE, kMostOutput);
    Limit(RLIMIT_CORE, 0);
    ::alarm(kSeconds);
}

/// Runs `function` and ends this process, without what a program does at its end.
[[noreturn]] void RunAndLeave(const std::function<void()>& function)
{
    int code = 0;
    try
    {
        function();
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "threw: %s\n", error.what());
        code = kThrew;
    }
    std::fflush(nullptr);
    ::_exit(code);
}

pid_t Split()
{
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process < 0)
    {
        Stop("fork");
    }
    return process;
}

int WaitFor(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0)
    {
        if (errno != EINTR)
        {
            Stop("waitpid");
        }
    }
    return status;
}

std::string DescribeEnd(int status)
{
    if (WIFSIGNALED(status))
    {
        const int number = WTERMSIG(status);
        const bool isLimit = number == SIGXCPU || number == SIGALRM || number == SIGKILL;
        return std::string(isLimit ? "time limit, " : "") + ::strsignal(number);
    }
    if (WEXITSTATUS(status) == kThrew)
    {
        return "an exception";
    }
    if (WEXITSTATUS(status) == kCheckFailed)
    {
        return "a check after it";
    }
    return WEXITSTATUS(status) == 0 ? std::string()
                                    : "exit code " + std::to_string(WEXITSTATUS(status));
}

} // namespace

Report::Report() : file(::memfd_create("report", MFD_CLOEXEC))
{
    if (file < 0)
    {
        Stop("memfd_create");
    }
    if (errorOfProgram < 0)
    {
        errorOfProgram = ::dup(STDERR_FILENO);
    }
}

Report::~Report()
{
    ::close(file);
}

void Report::Clear()
{
    if (::ftruncate(file, 0) != 0 || ::lseek(file, 0, SEEK_SET) != 0)
    {
        Stop("report");
    }
}

void Report::TakeOutput() const
{
    ::dup2(file, STDOUT_FILENO);
    ::dup2(file, STDERR_FILENO);
}

void Report::Tell(const std::string& line) const
{
    const off_t size = ::lseek(file, 0, SEEK_END);
    std::string written(static_cast<std::size_t>(size), '\0');
    const ssize_t read = ::pread(file, &written[0], written.size(), 0);
    written.resize(read < 0 ? 0 : static_cast<std::size_t>(read));
    std::size_t begin = written.size() < kShown ? 0 : written.size() - kShown;
    for (const char* mark : {"ERROR: AddressSanitizer", "runtime error:", "ERROR: LeakSanitizer"})
    {
        const std::size_t place = written.find(mark);
        begin = place == std::string::npos ? begin : place;
    }
    const std::string text = line + "\n" + written.substr(begin, kShown) + "\n";
    if (::write(errorOfProgram, text.data(), text.size()) < 0)
    {
        Stop("write");
    }
}

std::string RunInProcess(Report& report, const std::function<void()>& function)
{
    report.Clear();
    const pid_t process = Split();
    if (process == 0)
    {
        LimitThisProcess();
        report.TakeOutput();
        RunAndLeave(function);
    }
    return DescribeEnd(WaitFor(process));
}

void FailProcess(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::fflush(nullptr);
    ::_exit(kCheckFailed);
}

bool HasLeaked()
{
#if defined(VELL_ADDRESS_SANITIZER)
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

SideBySide::SideBySide(std::size_t most) : room(most)
{
}

void SideBySide::Start(const std::function<void()>& function)
{
    if (running.size() == room)
    {
        WaitForOne();
    }
    const pid_t process = Split();
    if (process == 0)
    {
        // What the preparation writes is nobody's concern.
        Report silence;
        silence.TakeOutput();
        RunAndLeave(function);
    }
    running.push_back(process);
}

int SideBySide::Wait()
{
    while (!running.empty())
    {
        WaitForOne();
    }
    return failed;
}

/// Waits for whichever ends first.
void SideBySide::WaitForOne()
{
    int status = 0;
    const pid_t ended = ::wait(&status);
    if (ended < 0 && errno != EINTR)
    {
        Stop("wait");
    }
    for (std::size_t i = 0; i < running.size(); ++i)
    {
        if (running[i] == ended)
        {
            failed += status == 0 ? 0 : 1;
            running.erase(running.begin() + static_cast<std::ptrdiff_t>(i));
            return;
        }
    }
}

void* MakeSharedBytes(std::size_t size)
{
    void* bytes = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (bytes == MAP_FAILED)
    {
        Stop("mmap");
    }
    return bytes;
}

} // namespace vell::callbacks
