// VELL: data-driven hierarchical state machines.
// tests/support/TempFile.h: a file for the time of a test.
#pragma once

#include "tests/support/System.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace vell::test
{

/// A file in a folder of its own that holds `content`, removed at the end.
class TempFile
{
public:
    explicit TempFile(const std::string& content, const std::string& name = "file")
        : folder(MakeTemporaryFolder()), path(folder + "/" + name)
    {
        std::ofstream file(std::filesystem::u8path(path), std::ios::binary);
        if (!(file << content << std::flush))
        {
            std::perror(path.c_str());
        }
    }
    ~TempFile()
    {
        std::error_code ignored;
        std::filesystem::remove_all(std::filesystem::u8path(folder), ignored);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    /// Gives the path, UTF-8.
    const char* Path() const
    {
        return path.c_str();
    }

private:
    std::string folder;
    std::string path;
};

} // namespace vell::test
