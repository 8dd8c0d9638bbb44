// VELL: data-driven hierarchical state machines.
// document/DocumentParser.h: from text to a parsed document.
#pragma once

#include <vell/Json.h>

#include <string>

namespace vell
{

/// Gives the text of a file. A file that cannot be read counts as empty, which is a parse error.
std::string ReadWholeFile(const char* path);

/// Parses a terminated text, which is read and not modified. The result is in the document.
void ParseText(const char* text, GenericDocument& document);

} // namespace vell
