// VELL: data-driven hierarchical state machines.
// tools/author/Source.h: the files of a source, places in them, and what is wrong there.
#pragma once

#include "tools/check/Finding.h"
#include "tools/source/Reader.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace vell::author
{

/// The extension of a source.
constexpr const char* kSourceExtension = ".hsm.json";

/// Tells whether a file is a source: by its name or, for standard input, "-", by its members.
bool IsSource(const std::string& path, const std::string& bytes);

/// A place in one of the files of a source.
struct Origin
{
    std::size_t file = 0;
    source::Span span;
    bool isKnown = false;
};

/// A file that was read.
struct SourceFile
{
    std::string path; ///< as the user or an `include` wrote it, from the folder of the main file on
    source::Text text;
};

/// What is in a file, or why it cannot be read.
struct FileContent
{
    std::string bytes;
    std::string error; ///< empty when it was read
};

/// Reads the file of a path.
using FileReader = std::function<FileContent(const std::string& path)>;

/// Collects what is wrong with a source.
class Problems
{
public:
    check::Finding& Add(const Origin& where, std::string message, std::string hint = {},
                        check::Code code = check::Code::SourceMember);
    /// The same of a name that is not known, and of two that are the same.
    check::Finding& AddUnknown(const Origin& where, std::string message, std::string hint = {});
    check::Finding& AddTwice(const Origin& where, std::string message, std::string hint,
                             const Origin& first, std::string firstNote);

    std::vector<check::Finding> list;
};

/// Options to read a source with: comments and trailing commas are allowed.
constexpr source::Options kSourceOptions{true, true};

/// Gives the default name of a transition: `CallHelpToSearch` for the states "Call help" and
/// "Search".
std::string TransitionName(const std::string& source, const std::string& target);

/// Gives a piece of a decoded text, from byte `begin` to byte `end` of it, as a place in the file
/// that it was written in. `bytes` is the file, `text` a String of it.
source::Span SpanWithin(const std::string& bytes, const source::Value& text, std::size_t begin,
                        std::size_t end);

} // namespace vell::author
