// VELL: data-driven hierarchical state machines.
// tools/vell/LogRedirect.h: keeping the library's log off the terminal.
#pragma once

#include <string>

namespace vell::tool
{

/// Redirects standard error, to which the library always logs, to a file, or discards it, for the
/// lifetime of the object.
class LogRedirect
{
public:
    /// With an empty `path` it is discarded.
    explicit LogRedirect(const std::string& path);
    ~LogRedirect();
    LogRedirect(const LogRedirect&) = delete;
    LogRedirect& operator=(const LogRedirect&) = delete;

    /// Tells whether the file could be opened; if not, nothing is redirected.
    bool IsActive() const;
    /// Ends the redirection. Returns 0, or the system's number for why not all of the log could be
    /// written, such as ENOSPC.
    int Finish();

private:
    int saved = -1; ///< the former standard error; -1 when nothing is redirected
};

} // namespace vell::tool
