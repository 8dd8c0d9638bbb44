// VELL: data-driven hierarchical state machines.
// tools/vell/EitherForm.h: documents for commands that take them as sources too.
#pragma once

#include "tools/author/Compile.h"
#include "tools/check/Output.h"
#include "tools/source/Reader.h"

#include <string>

namespace vell::tool
{

class Session;

/// A document that a command was given, in either form.
struct GivenDocument
{
    std::string path; ///< as the user wrote it
    std::string bytes;
    bool isSource = false;     ///< `bytes` was made from a source
    author::Compiled compiled; ///< of a source
};

/// Takes the bytes of a file. A source is compiled: `bytes` is empty when that failed.
GivenDocument TakeGiven(const std::string& path, std::string bytes);

/// Checks a document, or what is wrong with its source.
check::CheckedDocument CheckGiven(const GivenDocument& given);

/// Shows what is wrong with the source that could not be compiled.
void ShowProblems(Session& session, const GivenDocument& given);

/// Reads a document in either form. Returns `ExitWell`, `ExitUsage` when the file cannot be read,
/// or `ExitFailed` when it is not JSON or cannot be compiled; both with errors. An empty file is
/// not JSON, unless `mayBeEmpty`: then the text is empty too.
int ReadEitherForm(Session& session, const std::string& path, source::Text* text,
                   const source::Options& options, bool mayBeEmpty = false);

} // namespace vell::tool
