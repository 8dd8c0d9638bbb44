// VELL: data-driven hierarchical state machines.
// tests/model/QuietStandardError.cpp: standard error, sent nowhere.
#include "tests/model/QuietStandardError.h"

#include "tests/model/Sanitizer.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace model
{

QuietStandardError::QuietStandardError()
{
    std::fflush(stderr);
    saved = dup(STDERR_FILENO);
    SendSanitizerReports(saved);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietStandardError::~QuietStandardError()
{
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    SendSanitizerReports(STDERR_FILENO);
    close(saved);
}

} // namespace model
