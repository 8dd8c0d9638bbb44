// VELL: data-driven hierarchical state machines.
// tools/vell/CheckFirst.h: the check before a document is run, drawn or printed.
#pragma once

#include <iosfwd>
#include <string>

namespace vell::tool
{

/// Checks the text of a document and shows its errors, and its warnings when asked. Returns false
/// when it has errors.
bool ShowFindings(const std::string& path, const std::string& text, bool showsWarnings,
                  bool hasColor, std::ostream& errors);

/// The same, for a command that then stops; it says how to go on.
bool PassesCheck(const std::string& path, const std::string& text, bool showsWarnings,
                 bool hasColor, std::ostream& errors);

} // namespace vell::tool
