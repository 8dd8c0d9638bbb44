// VELL: data-driven hierarchical state machines.
// tools/vell/LogRedirect.cpp: the exchange of the file descriptor.
#include "tools/vell/LogRedirect.h"

#include "tools/vell/System.h"

#include <cstdio>

namespace vell::tool
{

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
    if (saved < 0)
    {
        return;
    }
    std::fflush(stderr);
    RedirectDescriptor(kStandardError, saved);
    CloseDescriptor(saved);
}

bool LogRedirect::IsActive() const
{
    return saved >= 0;
}

} // namespace vell::tool
