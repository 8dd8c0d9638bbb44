// VELL: data-driven hierarchical state machines.
// tools/vell/LogRedirect.h: keeping the library's log off the terminal.
#pragma once

#include <string>

namespace vell::tool
{

/// Sends what is written to standard error into a file, or nowhere, for as long as it lives: the
/// library's log always goes there.
class LogRedirect
{
public:
    /// An empty `path` sends it nowhere.
    explicit LogRedirect(const std::string& path);
    ~LogRedirect();
    LogRedirect(const LogRedirect&) = delete;
    LogRedirect& operator=(const LogRedirect&) = delete;

    /// Tells whether the file could be opened; if not, nothing is redirected.
    bool IsActive() const;

private:
    int saved = -1; ///< the former standard error; -1 when nothing is redirected
};

} // namespace vell::tool
