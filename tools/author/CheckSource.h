// VELL: data-driven hierarchical state machines.
// tools/author/CheckSource.h: what is wrong with a source and with the document that it makes.
#pragma once

#include "tools/author/Compile.h"
#include "tools/check/Output.h"

#include <string>

namespace vell::author
{

/// Gives the problems of a source or, when it has none, what the check finds in its document, at
/// the places in the source that it comes from. `path` is what messages call the main file.
check::CheckedDocument CheckSource(const std::string& path, const Compiled& compiled);

} // namespace vell::author
