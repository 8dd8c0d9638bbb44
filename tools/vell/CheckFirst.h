// VELL: data-driven hierarchical state machines.
// tools/vell/CheckFirst.h: the check before a document is run, drawn or printed.
#pragma once

#include "tools/check/Output.h"

#include <iosfwd>

namespace vell::tool
{

/// Shows the errors of a document that was checked, and its warnings when asked. Returns false
/// when it has errors.
bool ShowFindings(check::CheckedDocument document, bool showsWarnings, bool hasColor,
                  std::ostream& errors);

/// The same, for a command that then stops; it says how to go on.
bool PassesCheck(check::CheckedDocument document, bool showsWarnings, bool hasColor,
                 std::ostream& errors);

} // namespace vell::tool
