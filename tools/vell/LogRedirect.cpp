// VELL: data-driven hierarchical state machines.
// tools/vell/LogRedirect.cpp: the exchange of the file descriptor.
#include "tools/vell/LogRedirect.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace vell::tool
{

LogRedirect::LogRedirect(const std::string& path)
{
    const char* target = path.empty() ? "/dev/null" : path.c_str();
    const int file = open(target, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0)
    {
        return;
    }
    std::fflush(stderr);
    saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    dup2(file, STDERR_FILENO);
    close(file);
}

LogRedirect::~LogRedirect()
{
    if (saved < 0)
    {
        return;
    }
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
}

bool LogRedirect::IsActive() const
{
    return saved >= 0;
}

} // namespace vell::tool
