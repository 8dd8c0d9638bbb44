// VELL: data-driven hierarchical state machines.
// tools/author/Compile.h: from a source to the document that the library reads.
#pragma once

#include "tools/author/Made.h"
#include "tools/author/Source.h"

#include <deque>
#include <string>

namespace vell::author
{

/// What came of compiling.
struct Compiled
{
    std::deque<SourceFile> files; ///< all that were read, the main file first
    Problems problems;            ///< in the order of the files; none when it went well
    Made document;                ///< what it makes, with the places that it is made from
    std::string bytes;            ///< the same as a text in the one layout; empty after a problem

    bool IsGood() const
    {
        return problems.list.empty();
    }
};

/// Compiles the source in the file `path`. `reader` reads it and the files that it names. The same
/// files give the same bytes.
Compiled Compile(const std::string& path, const FileReader& reader);

/// Gives the text of a value in the one layout of documents.
std::string LaidOut(const Made& document);

} // namespace vell::author
