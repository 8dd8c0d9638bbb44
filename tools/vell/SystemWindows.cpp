// VELL: data-driven hierarchical state machines.
// tools/vell/SystemWindows.cpp: the command's system calls on Windows. The manifest (vell.manifest)
// makes UTF-8 the code page of the process, so texts go to the system as they are.
#include "tools/vell/System.h"

#define WIN32_LEAN_AND_MEAN
#include <algorithm>
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

/// Gives the full path of a file that may be written to, behind all links. Returns an empty text,
/// or why it failed.
std::string FindFileToReplace(const std::wstring& path, std::wstring* target)
{
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return LastError();
    }
    target->resize(GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED));
    const auto size = static_cast<DWORD>(target->size());
    target->resize(GetFinalPathNameByHandleW(file, target->data(), size, FILE_NAME_NORMALIZED));
    std::string error = target->empty() ? LastError() : "";
    CloseHandle(file);
    return error;
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

std::string TextOf(const std::filesystem::path& path)
{
    std::string text = path.u8string();
    if (text.rfind("\\\\", 0) != 0)
    {
        std::replace(text.begin(), text.end(), '\\', '/');
    }
    return text;
}

Reference ReferenceOf(const std::string& path)
{
    std::string text = path;
    std::replace(text.begin(), text.end(), '\\', '/');
    if (text.rfind("//?/", 0) == 0)
    {
        const bool isServer = text.rfind("//?/UNC/", 0) == 0;
        text = isServer ? "//" + text.substr(8) : text.substr(4);
    }
    if (text.rfind("//", 0) == 0)
    {
        return {"file:", text};
    }
    const bool hasDrive = text.find(":/") == 1;
    return {hasDrive ? "file:///" + text.substr(0, 2) : "", text.substr(hasDrive ? 2 : 0)};
}

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
    std::wstring target;
    std::string error = FindFileToReplace(PathOf(path).wstring(), &target);
    if (!error.empty())
    {
        return error;
    }
    const std::wstring temporary = target + L".vell-" + std::to_wstring(GetCurrentProcessId());
    // The exchange keeps the attributes and the access list of the file.
    if (!WriteNewFile(temporary.c_str(), bytes) ||
        ReplaceFileW(target.c_str(), temporary.c_str(), nullptr, 0, nullptr, nullptr) == 0)
    {
        error = LastError();
        DeleteFileW(temporary.c_str());
    }
    return error;
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
