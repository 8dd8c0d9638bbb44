// VELL: data-driven hierarchical state machines.
// tools/vell/SystemPosix.cpp: the command's system calls where POSIX is spoken.
#include "tools/vell/System.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace vell::tool
{
namespace
{

constexpr int kCommandNotFound = 127;

/// Opens standard streams that the caller closed. Otherwise the first file that is opened, perhaps
/// the document, would take the place of one of them.
void OpenStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(descriptor, F_GETFD) < 0)
        {
            // Opened for reading, so that writes to it fail as they do on a closed one.
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

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
bool FillLike(const std::string& path, int file, const std::string& bytes)
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

std::string TextOf(const std::filesystem::path& path)
{
    return path.string();
}

Reference ReferenceOf(const std::string& path)
{
    return {path.rfind('/', 0) == 0 ? "file://" : "", path};
}

void PrepareStandardStreams()
{
    OpenStandardStreams();
    // A reader that has seen enough closes its pipe: the write then fails, and the command ends
    // with a message and its own exit code.
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsTerminal(int descriptor)
{
    return isatty(descriptor) != 0;
}

int DuplicateDescriptor(int descriptor)
{
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
}

void RedirectDescriptor(int descriptor, int target)
{
    dup2(target, descriptor);
}

void CloseDescriptor(int descriptor)
{
    close(descriptor);
}

std::ptrdiff_t WriteToDescriptor(int descriptor, const char* bytes, std::size_t size)
{
    return write(descriptor, bytes, size);
}

int OpenFileToWrite(const std::string& path)
{
    const char* target = path.empty() ? "/dev/null" : path.c_str();
    return open(target, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

std::string ReplaceContent(const std::string& path, const std::string& bytes)
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
    std::string error = FillLike(target.string(), file, bytes) ? "" : LastError();
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

TemporaryFile::TemporaryFile(const std::string& content)
{
    path = (std::filesystem::temp_directory_path() / "vell-XXXXXX").string();
    const int file = mkstemp(path.data());
    if (file < 0)
    {
        path.clear();
        return;
    }
    const bool isFilled = WriteAll(file, content);
    close(file);
    if (!isFilled)
    {
        unlink(path.c_str());
        path.clear();
    }
}

TemporaryFile::~TemporaryFile()
{
    if (!path.empty())
    {
        unlink(path.c_str());
    }
}

ProgramEnd ReadFromProgram(const char* program, const char* option, const std::string& path,
                           std::string* output)
{
    const std::string line = std::string(program) + " " + option + " '" + path + "'";
    std::FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr)
    {
        return ProgramEnd::NotStarted;
    }
    char block[4096];
    for (std::size_t size = 0; (size = std::fread(block, 1, sizeof(block), pipe)) != 0;)
    {
        output->append(block, size);
    }
    const int status = pclose(pipe);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
    {
        const bool isMissing = WIFEXITED(status) && WEXITSTATUS(status) == kCommandNotFound;
        return isMissing ? ProgramEnd::NotFound : ProgramEnd::Failed;
    }
    return ProgramEnd::Well;
}

} // namespace vell::tool
