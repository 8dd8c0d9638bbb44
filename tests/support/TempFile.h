// VELL: data-driven hierarchical state machines.
// tests/support/TempFile.h: a file for the time of a test.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace vell::test
{

/// A file with a name of its own that holds `content`, removed at the end.
class TempFile
{
public:
    explicit TempFile(const std::string& content)
    {
        std::string pattern = std::filesystem::temp_directory_path() / "vellXXXXXX";
        const int file = mkstemp(pattern.data());
        path = pattern;
        if (file < 0 ||
            write(file, content.data(), content.size()) != static_cast<ssize_t>(content.size()))
        {
            std::perror(path.c_str());
        }
        close(file);
    }
    ~TempFile()
    {
        std::remove(path.c_str());
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const char* Path() const
    {
        return path.c_str();
    }

private:
    std::string path;
};

} // namespace vell::test
