// VELL: data-driven hierarchical state machines.
// tools/vell/LogRedirect.cpp: the exchange of the file descriptor.
#include "tools/vell/LogRedirect.h"

#include "tools/vell/System.h"

#include <cerrno>
#include <cstdio>
#include <iostream>

namespace vell::tool
{

namespace
{

/// Writes out what waits in the two ways to standard error. False when that, or a write before,
/// failed.
bool Flush()
{
    std::cerr.clear(); // or it would not try again, and give no reason
    std::cerr.flush();
    return std::fflush(stderr) == 0 && std::ferror(stderr) == 0 && std::cerr.good();
}

/// What could not be written to the file must not appear where standard error leads afterwards.
void DiscardPending()
{
    const int nowhere = OpenFileToWrite("");
    if (nowhere >= 0)
    {
        RedirectDescriptor(kStandardError, nowhere);
        CloseDescriptor(nowhere);
        Flush();
    }
    std::clearerr(stderr);
    std::cerr.clear();
}

} // namespace

LogRedirect::LogRedirect(const std::string& path)
{
    const int file = OpenFileToWrite(path);
    if (file < 0)
    {
        return;
    }
    std::fflush(stderr);
    saved = DuplicateDescriptor(kStandardError);
    RedirectDescriptor(kStandardError, file);
    CloseDescriptor(file);
}

LogRedirect::~LogRedirect()
{
    Finish();
}

int LogRedirect::Finish()
{
    if (saved < 0)
    {
        return 0;
    }
    const bool wasWell = std::cerr.good();
    errno = 0;
    const bool isWell = Flush() && wasWell;
    if (!isWell && errno == 0)
    {
        WriteToDescriptor(kStandardError, "\n", 1); // fails again, and gives the reason
    }
    const int error = isWell ? 0 : errno == 0 ? EIO : errno;
    if (error != 0)
    {
        DiscardPending();
    }
    RedirectDescriptor(kStandardError, saved);
    CloseDescriptor(saved);
    saved = -1;
    return error;
}

bool LogRedirect::IsActive() const
{
    return saved >= 0;
}

} // namespace vell::tool
