// VELL: data-driven hierarchical state machines.
// document/DocumentParser.h: from text to a parsed document.
#pragma once

#include <vell/Json.h>

namespace vell
{

/// Parses the text of a file. A file that cannot be read counts as empty, which is a parse error.
/// The result is in the document.
void ParseFile(const char* path, GenericDocument& document);

/// Parses a terminated text, which is read and not modified.
void ParseText(const char* text, GenericDocument& document);

} // namespace vell
