// VELL: data-driven hierarchical state machines.
// tools/layout/SafeFileWindows.cpp: the temporary file and the exchange, by the calls of Windows.
#include "tools/layout/SafeFile.h"
#include "tools/vell/System.h"

#define WIN32_LEAN_AND_MEAN
#include <filesystem>
#include <fstream>
#include <system_error>
#include <windows.h>

namespace vell::layout
{
namespace
{

std::string LastError()
{
    return std::system_category().message(static_cast<int>(GetLastError()));
}

} // namespace

std::string ReplaceFile(const std::string& path, const std::string& bytes)
{
    std::error_code failure;
    const std::filesystem::path target = std::filesystem::canonical(tool::PathOf(path), failure);
    if (failure)
    {
        return failure.message();
    }
    const DWORD attributes = GetFileAttributesW(target.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return LastError();
    }
    wchar_t temporary[MAX_PATH + 1];
    if (GetTempFileNameW(target.parent_path().c_str(), L"vel", 0, temporary) == 0)
    {
        return LastError();
    }
    std::ofstream file(std::filesystem::path(temporary), std::ios::binary);
    file << bytes;
    file.close();
    // The exchange keeps the attributes and the access list of the file.
    if (!file || ReplaceFileW(target.c_str(), temporary, nullptr, 0, nullptr, nullptr) == 0)
    {
        const std::string error = LastError();
        DeleteFileW(temporary);
        return error;
    }
    return "";
}

} // namespace vell::layout
