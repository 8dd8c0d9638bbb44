// VELL: data-driven hierarchical state machines.
// tools/vell/SystemWindows.cpp: the command's system calls on Windows. The manifest (vell.manifest)
// makes UTF-8 the code page of the process, so texts go to the system as they are.
#include "tools/vell/System.h"

#define WIN32_LEAN_AND_MEAN
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
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

} // namespace

void PrepareStandardStreams()
{
    // A line ends with one character in files and pipes, as on other systems.
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
