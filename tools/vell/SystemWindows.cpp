// VELL: data-driven hierarchical state machines.
// tools/vell/SystemWindows.cpp: the command's system calls on Windows. The manifest (vell.manifest)
// makes UTF-8 the code page of the process, so texts go to the system as they are.
#include "tools/vell/System.h"

#define WIN32_LEAN_AND_MEAN
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <system_error>
#include <windows.h>

namespace vell::tool
{
namespace
{

/// Tells whether the command line interpreter would find the program.
bool IsInstalled(const char* program)
{
    for (const char* extension : {".exe", ".bat", ".cmd"})
    {
        if (SearchPathA(nullptr, program, extension, 0, nullptr, nullptr) != 0)
        {
            return true;
        }
    }
    return false;
}

std::string LastError()
{
    return std::system_category().message(static_cast<int>(GetLastError()));
}

/// Creates the file `path`, which must not exist, and fills it.
bool WriteNewFile(const wchar_t* path, const std::string& bytes)
{
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    DWORD done = 0;
    const auto size = static_cast<DWORD>(bytes.size());
    const bool isWritten = WriteFile(file, bytes.data(), size, &done, nullptr) != 0 &&
                           done == size && FlushFileBuffers(file) != 0;
    const DWORD error = GetLastError();
    CloseHandle(file);
    SetLastError(error);
    return isWritten;
}

} // namespace

void PrepareStandardStreams()
{
    // A line ends with one character in files and pipes, as on other systems.
    _setmode(kStandardInput, _O_BINARY);
    _setmode(kStandardOutput, _O_BINARY);
    _setmode(kStandardError, _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

bool IsTerminal(int descriptor)
{
    return _isatty(descriptor) != 0;
}

int DuplicateDescriptor(int descriptor)
{
    const int copy = _dup(descriptor);
    if (copy >= 0)
    {
        const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(copy));
        SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
    }
    return copy;
}

void RedirectDescriptor(int descriptor, int target)
{
    _dup2(target, descriptor);
}

void CloseDescriptor(int descriptor)
{
    _close(descriptor);
}

std::ptrdiff_t WriteToDescriptor(int descriptor, const char* bytes, std::size_t size)
{
    return _write(descriptor, bytes, static_cast<unsigned int>(size));
}

int OpenFileToWrite(const std::string& path)
{
    const char* target = path.empty() ? "NUL" : path.c_str();
    return _open(target, _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT,
                 _S_IREAD | _S_IWRITE);
}

std::string ReplaceContent(const std::string& path, const std::string& bytes)
{
    std::error_code failure;
    const std::filesystem::path target = std::filesystem::canonical(PathOf(path), failure);
    if (failure)
    {
        return failure.message();
    }
    const DWORD attributes = GetFileAttributesW(target.c_str());
    constexpr DWORD kNotReplaced = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & kNotReplaced) != 0)
    {
        return std::system_category().message(ERROR_ACCESS_DENIED);
    }
    std::filesystem::path temporary = target;
    temporary += ".vell-" + std::to_string(GetCurrentProcessId());
    if (!WriteNewFile(temporary.c_str(), bytes))
    {
        std::string error = LastError();
        DeleteFileW(temporary.c_str());
        return error;
    }
    // The exchange keeps the attributes and the access list of the file.
    if (ReplaceFileW(target.c_str(), temporary.c_str(), nullptr, 0, nullptr, nullptr) == 0)
    {
        std::string error = LastError();
        DeleteFileW(temporary.c_str());
        return error;
    }
    return "";
}

TemporaryFile::TemporaryFile(const std::string& content)
{
    char folder[MAX_PATH + 1];
    char name[MAX_PATH + 1];
    const DWORD length = GetTempPathA(sizeof(folder), folder);
    if (length == 0 || length >= sizeof(folder) || GetTempFileNameA(folder, "vel", 0, name) == 0)
    {
        return;
    }
    std::FILE* const file = std::fopen(name, "wb");
    const bool isWritten =
        file != nullptr && std::fwrite(content.data(), 1, content.size(), file) == content.size();
    const bool isClosed = file != nullptr && std::fclose(file) == 0;
    if (isWritten && isClosed)
    {
        path = name;
        return;
    }
    DeleteFileA(name);
}

TemporaryFile::~TemporaryFile()
{
    if (!path.empty())
    {
        DeleteFileA(path.c_str());
    }
}

ProgramEnd ReadFromProgram(const char* program, const char* option, const std::string& path,
                           std::string* output)
{
    if (!IsInstalled(program))
    {
        return ProgramEnd::NotFound;
    }
    const std::string line = std::string(program) + " " + option + " \"" + path + "\"";
    std::FILE* pipe = _popen(line.c_str(), "rb");
    if (pipe == nullptr)
    {
        return ProgramEnd::NotStarted;
    }
    char block[4096];
    for (std::size_t size = 0; (size = std::fread(block, 1, sizeof(block), pipe)) != 0;)
    {
        output->append(block, size);
    }
    return _pclose(pipe) == 0 ? ProgramEnd::Well : ProgramEnd::Failed;
}

} // namespace vell::tool
