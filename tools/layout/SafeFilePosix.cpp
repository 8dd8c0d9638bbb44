// VELL: data-driven hierarchical state machines.
// tools/layout/SafeFilePosix.cpp: the temporary file and the exchange, by the calls of POSIX.
#include "tools/layout/SafeFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vell::layout
{
namespace
{

bool WriteAll(int file, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR)
        {
            return false;
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

/// Fills the open file `file` and gives it the permissions of `path`.
bool Fill(int file, const std::string& path, const std::string& bytes)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && WriteAll(file, bytes) &&
           fchmod(file, status.st_mode & 07777) == 0 && fsync(file) == 0;
}

std::string LastError()
{
    return std::strerror(errno);
}

} // namespace

std::string ReplaceFile(const std::string& path, const std::string& bytes)
{
    std::error_code failure;
    const std::filesystem::path target = std::filesystem::canonical(path, failure);
    if (failure)
    {
        return failure.message();
    }
    // rename() asks for the right to write to the folder only.
    if (access(target.c_str(), W_OK) != 0)
    {
        return LastError();
    }
    std::string temporary = (target.parent_path() / ".vell-XXXXXX").string();
    const int file = mkstemp(temporary.data());
    if (file < 0)
    {
        return LastError();
    }
    std::string error = Fill(file, target.string(), bytes) ? "" : LastError();
    close(file);
    if (error.empty() && std::rename(temporary.c_str(), target.c_str()) != 0)
    {
        error = LastError();
    }
    if (!error.empty())
    {
        unlink(temporary.c_str());
    }
    return error;
}

} // namespace vell::layout
