// VELL: data-driven hierarchical state machines.
// tests/support/System.h: what the tests ask of the operating system, in the words of each.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace vell::test
{

/// Sends what is written to standard error nowhere, and gives the descriptor that it had.
inline int SilenceStandardError()
{
    std::fflush(stderr);
#if defined(_WIN32)
    const int saved = _dup(2);
    const int nowhere = _open("NUL", _O_WRONLY);
    _dup2(nowhere, 2);
    _close(nowhere);
#else
    const int saved = dup(STDERR_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
#endif
    return saved;
}

/// Gives standard error back the descriptor that `SilenceStandardError` gave.
inline void RestoreStandardError(int saved)
{
    std::fflush(stderr);
#if defined(_WIN32)
    _dup2(saved, 2);
    _close(saved);
#else
    dup2(saved, STDERR_FILENO);
    close(saved);
#endif
}

/// Creates a folder of its own and gives its path, UTF-8 and with slashes; empty on failure.
inline std::string MakeTemporaryFolder()
{
    std::string folder = std::filesystem::temp_directory_path().generic_u8string();
    if (folder.back() == '/')
    {
        folder.pop_back();
    }
#if defined(_WIN32)
    static int count = 0;
    const std::string path =
        folder + "/vell-test-" + std::to_string(_getpid()) + "-" + std::to_string(++count);
    return std::filesystem::create_directory(std::filesystem::u8path(path)) ? path : "";
#else
    std::string path = folder + "/vell-test-XXXXXX";
    return mkdtemp(path.data()) == nullptr ? "" : path;
#endif
}

/// Sets a variable of the environment, or removes it for a null `value`.
inline void SetVariable(const char* name, const char* value)
{
#if defined(_WIN32)
    _putenv_s(name, value == nullptr ? "" : value);
#else
    value == nullptr ? unsetenv(name) : setenv(name, value, 1);
#endif
}

/// Gives the ways to write the path of a file: as it is, and on Windows also with backslashes, and
/// as one that the system takes as it is.
inline std::vector<std::string> SpellingsOf(const std::string& path)
{
#if defined(_WIN32)
    std::filesystem::path native = std::filesystem::u8path(path);
    const std::string backslashes = native.make_preferred().u8string();
    return {path, backslashes, "\\\\?\\" + std::filesystem::absolute(native).u8string()};
#else
    return {path};
#endif
}

} // namespace vell::test
