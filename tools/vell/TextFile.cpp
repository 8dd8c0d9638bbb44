// VELL: data-driven hierarchical state machines.
// tools/vell/TextFile.cpp: whole files, and the reasons of the system.
#include "tools/vell/TextFile.h"

#include "tools/vell/System.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <system_error>

namespace vell::tool
{
namespace
{

struct CloseFile
{
    void operator()(std::FILE* file) const
    {
        std::fclose(file);
    }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

std::string Reason(int error)
{
    return error == EISDIR ? "it is a folder" : std::strerror(error);
}

} // namespace

std::string FileName(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

std::string ReadTextFile(const std::string& path, std::string* text)
{
    text->clear();
    if (path == "-")
    {
        text->assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
        return "";
    }
    errno = 0;
    const File file(std::fopen(path.c_str(), "rb"));
    if (file != nullptr)
    {
        char block[65536];
        while (const std::size_t size = std::fread(block, 1, sizeof(block), file.get()))
        {
            text->append(block, size);
        }
        if (std::ferror(file.get()) == 0)
        {
            return "";
        }
    }
    const int error = errno;
    std::error_code ignored;
    // Windows does not open a folder, and says that it is not permitted.
    const bool isFolder = std::filesystem::is_directory(PathOf(path), ignored);
    return "cannot read " + path + ": " + Reason(isFolder ? EISDIR : error);
}

std::string WriteTextFile(const std::string& path, const std::string& text)
{
    errno = 0;
    File file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr)
    {
        return CannotWrite(path, errno);
    }
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    // A full disk may show only when the text is written out.
    const bool isFlushed = std::fflush(file.get()) == 0;
    return isWritten && isFlushed ? "" : CannotWrite(path, errno);
}

bool IsSameFile(const std::string& path, const std::string& other)
{
    std::error_code error;
    return std::filesystem::equivalent(PathOf(path), PathOf(other), error) && !error;
}

std::string CannotWrite(const std::string& name, int error)
{
    return "cannot write " + name + (error == 0 ? "" : ": " + Reason(error));
}

} // namespace vell::tool
