// VELL: data-driven hierarchical state machines.
// foundation/OpenFile.cpp: the one place where the library asks the system for a file.
#include "foundation/OpenFile.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <string>
#include <windows.h>
#endif

namespace vell
{

#if defined(_WIN32)
// There fopen takes a path in the code page of the process, which is seldom UTF-8: a document in a
// folder with an accent in its name would not be found. The wide call takes every path.
std::FILE* OpenFileToRead(const char* path)
{
    if (path == nullptr)
    {
        return nullptr; // the C library there ends the process
    }
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, nullptr, 0);
    if (length > 0)
    {
        std::wstring wide(static_cast<std::size_t>(length), L'\0');
        MultiByteToWideChar(CP_UTF8, 0, path, -1, wide.data(), length);
        if (std::FILE* file = _wfopen(wide.c_str(), L"rb"))
        {
            return file;
        }
    }
    return std::fopen(path, "rb");
}
#else
std::FILE* OpenFileToRead(const char* path)
{
    return std::fopen(path, "rb");
}
#endif

} // namespace vell
