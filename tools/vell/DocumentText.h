// VELL: data-driven hierarchical state machines.
// tools/vell/DocumentText.h: reading a document as a text, for commands that do not run it.
#pragma once

#include "tools/source/Reader.h"

#include <string>

namespace vell::tool
{

class Session;

/// Allows comments and trailing commas, for commands that do not hand the document to the library.
constexpr source::Options kLenient{true, true};

/// Reads a document, or standard input for "-". Returns `ExitWell`, `ExitUsage` when the file
/// cannot be read, or `ExitFailed` when it is not JSON; both with an error line, the latter with
/// line and column.
int ReadDocumentText(Session& session, const std::string& path, source::Text* text,
                     const source::Options& options = kLenient);

// The two steps of it.

int ReadDocumentBytes(Session& session, const std::string& path, std::string* bytes);
int ParseDocument(Session& session, const std::string& path, std::string bytes, source::Text* text,
                  const source::Options& options = kLenient);

/// The name of a document in messages.
std::string DocumentName(const std::string& path);

} // namespace vell::tool
