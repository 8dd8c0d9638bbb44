// VELL: data-driven hierarchical state machines.
// tools/vell/DocumentFiles.cpp: reading files and walking folders.
#include "tools/vell/DocumentFiles.h"

#include "tools/vell/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

namespace vell::tool
{
namespace
{

namespace fs = std::filesystem;

constexpr std::size_t kPiece = 4096;

bool IsHidden(const fs::path& path)
{
    const std::string name = TextOf(path.filename());
    return name.size() > 1 && name[0] == '.' && name != "..";
}

/// Adds the documents of a folder. False when it cannot be read.
bool AddFolder(const std::string& folder, std::vector<DocumentFile>& files)
{
    std::vector<std::string> found;
    std::error_code error;
    fs::recursive_directory_iterator walk(PathOf(folder),
                                          fs::directory_options::skip_permission_denied, error);
    for (const fs::recursive_directory_iterator end; !error && walk != end; walk.increment(error))
    {
        std::error_code ignored;
        if (walk->is_directory(ignored) && IsHidden(walk->path()))
        {
            walk.disable_recursion_pending();
        }
        else if (walk->is_regular_file(ignored) && walk->path().extension() == ".json")
        {
            found.push_back(TextOf(walk->path()));
        }
    }
    std::sort(found.begin(), found.end());
    for (std::string& path : found)
    {
        files.push_back({std::move(path), false, ""});
    }
    if (!error && found.empty())
    {
        files.push_back({folder, true, folder + ": no *.json in this folder"});
    }
    return !error;
}

/// Leaves out what came before, under whatever path.
void LeaveOutRepeated(std::vector<DocumentFile>& files)
{
    std::set<fs::path> known;
    const auto isRepeated = [&known](const DocumentFile& file)
    {
        std::error_code error;
        const fs::path path = fs::canonical(PathOf(file.path), error);
        return file.path != "-" && !error && !known.insert(path).second;
    };
    // Not remove_if, which may ask in any order.
    std::vector<DocumentFile> once;
    for (DocumentFile& file : files)
    {
        if (!isRepeated(file))
        {
            once.push_back(std::move(file));
        }
    }
    files = std::move(once);
}

} // namespace

FileText ReadWholeFile(const std::string& path)
{
    FileText text;
    if (path == "-")
    {
        text.bytes.assign(std::istreambuf_iterator<char>(std::cin), {});
        return text;
    }
    std::error_code ignored;
    if (fs::is_directory(PathOf(path), ignored))
    {
        text.error = "it is a folder";
        return text;
    }
    errno = 0;
    std::ifstream in(PathOf(path), std::ios::binary);
    const std::uintmax_t size = fs::file_size(PathOf(path), ignored);
    // A file without a size of its own, such as a pipe, is read in pieces.
    text.bytes.resize(ignored ? 0 : static_cast<std::size_t>(size) + 1);
    std::size_t filled = 0;
    while (in)
    {
        if (filled == text.bytes.size())
        {
            text.bytes.resize(2 * filled + kPiece);
        }
        in.read(&text.bytes[filled], static_cast<std::streamsize>(text.bytes.size() - filled));
        filled += static_cast<std::size_t>(in.gcount());
    }
    text.bytes.resize(filled);
    if (!in.eof())
    {
        text.error = std::strerror(errno == 0 ? EIO : errno);
    }
    return text;
}

std::vector<DocumentFile> FindDocuments(const std::vector<std::string>& paths)
{
    std::vector<DocumentFile> files;
    for (const std::string& path : paths)
    {
        std::error_code ignored;
        if (path == "-" || !fs::is_directory(PathOf(path), ignored) || !AddFolder(path, files))
        {
            files.push_back({path, true, ""});
        }
    }
    LeaveOutRepeated(files);
    return files;
}

std::string CannotRead(const std::string& path, const std::string& reason)
{
    return "cannot read " + path + ": " + reason;
}

} // namespace vell::tool
