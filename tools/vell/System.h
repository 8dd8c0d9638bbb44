// VELL: data-driven hierarchical state machines.
// tools/vell/System.h: what the command asks of the operating system. SystemPosix.cpp and
// SystemWindows.cpp implement it; nothing else in the command depends on the system.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace vell::tool
{

/// Makes the standard streams carry the same bytes on every system, and a write fail that nobody
/// can read. To be called first in `main`.
void PrepareStandardStreams();

/// Gives the path of a text: the command's texts are UTF-8 on every system.
inline std::filesystem::path PathOf(const std::string& text)
{
    return std::filesystem::u8path(text);
}
/// Gives the text of a path, with slashes. One that begins with two backslashes stays as it is.
std::string TextOf(const std::filesystem::path& path);

/// A path as two parts of a reference (RFC 3986).
struct Reference
{
    std::string start; ///< file: and so on; empty when the path is relative
    std::string path;  ///< what is behind, with slashes, to be escaped
};
Reference ReferenceOf(const std::string& path);

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

/// Tells whether a person watches what is written to the descriptor.
bool IsTerminal(int descriptor);
/// Gives another descriptor of the same file, which a child process does not inherit; -1 on
/// failure.
int DuplicateDescriptor(int descriptor);
/// Makes `descriptor` refer to the file of `target`.
void RedirectDescriptor(int descriptor, int target);
void CloseDescriptor(int descriptor);
/// Gives how many bytes were written; negative on failure.
std::ptrdiff_t WriteToDescriptor(int descriptor, const char* bytes, std::size_t size);
/// Creates or empties the file and gives its descriptor, which a child process does not inherit; -1
/// on failure. An empty path is a file that keeps nothing.
int OpenFileToWrite(const std::string& path);

/// Replaces the content of a file: it is written to a temporary file beside it, which then takes
/// its place with its permissions. If this fails or is interrupted, the file is as before. A link
/// is followed. Returns an empty text, or why it failed.
std::string ReplaceContent(const std::string& path, const std::string& bytes);

/// A new temporary file with a content, deleted with the object.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& content);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Gives the path, empty when the file could not be created or filled.
    const std::string& Path() const
    {
        return path;
    }

private:
    std::string path;
};

enum class ProgramEnd
{
    Well,       ///< it ended with the exit code 0
    Failed,     ///< with another one, or by a signal
    NotFound,   ///< there is no such program
    NotStarted, ///< the system could not start one
};

/// Runs `program` with `option` and the file `path`, and reads all that it writes.
ProgramEnd ReadFromProgram(const char* program, const char* option, const std::string& path,
                           std::string* output);

} // namespace vell::tool
