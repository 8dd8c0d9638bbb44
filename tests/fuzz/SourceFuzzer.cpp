// VELL: data-driven hierarchical state machines.
// tests/fuzz/SourceFuzzer.cpp: any bytes as a source, and as the files that it includes.
#include "tests/fuzz/MachineRun.h"
#include "tools/author/CheckSource.h"
#include "tools/author/Decompile.h"
#include "tools/layout/Layout.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace
{

using namespace vell;

constexpr char kSeparator = '\x01'; ///< between two files

/// The main file, and those named "1" and so on.
std::vector<std::string> FilesOf(const std::string& bytes)
{
    std::vector<std::string> files(1);
    for (const char c : bytes)
    {
        if (c == kSeparator)
        {
            files.emplace_back();
        }
        else
        {
            files.back() += c;
        }
    }
    return files;
}

author::Compiled Compile(const std::vector<std::string>& files)
{
    return author::Compile("0",
                           [&files](const std::string& path)
                           {
                               const std::size_t index =
                                   path.empty() || path.size() > 1
                                       ? files.size()
                                       : static_cast<std::size_t>(path[0]) - '0';
                               return index < files.size()
                                          ? author::FileContent{files[index], ""}
                                          : author::FileContent{"", "no such file"};
                           });
}

/// A problem is in one of the files.
void CheckPlaces(const author::Compiled& compiled)
{
    for (const check::Finding& finding : compiled.problems.list)
    {
        fuzz::Require(finding.file < compiled.files.size(), "a problem is in a file");
        const std::size_t size = compiled.files[finding.file].text.bytes.size();
        fuzz::Require(finding.where.begin.offset <= finding.where.end.offset, "a place has an end");
        fuzz::Require(finding.where.end.offset <= size, "a place is within its file");
        fuzz::Require(!finding.message.empty(), "a problem is told");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::string> files =
        FilesOf(std::string(reinterpret_cast<const char*>(data), size));
    const author::Compiled compiled = Compile(files);
    CheckPlaces(compiled);
    if (!compiled.IsGood())
    {
        return 0;
    }
    const source::Text document = source::ReadText(compiled.bytes);
    fuzz::Require(document.parsed, "a document is JSON");
    fuzz::Require(Compile(files).bytes == compiled.bytes, "the same source gives the same bytes");
    author::CheckSource("0", compiled);
    const std::string source = author::Decompile(document, {"machine", false});
    const author::Compiled again = Compile({source});
    fuzz::Require(again.IsGood(), "a source that was decompiled compiles");
    fuzz::Require(author::IsSameDocument(document, source::ReadText(again.bytes)),
                  "a source that was decompiled gives the same document");
    return 0;
}
