// VELL: data-driven hierarchical state machines.
// tools/author/Decompile.h: from a document to a source that gives it again.
#pragma once

#include "tools/author/Made.h"
#include "tools/source/Reader.h"

#include <string>

namespace vell::author
{

struct DecompileOptions
{
    std::string name;    ///< of the machine, when the document has no guid
    bool isTidy = false; ///< ids and the names of conditions are left to the compiler
};

/// Gives the source of a document, in the one layout of sources. A document that `Compile` made is
/// given again byte by byte; any other one with the same nodes, perhaps in another order. Empty for
/// a text that is not whole or not an object.
std::string Decompile(const source::Text& document, const DecompileOptions& options);

/// Tells whether two documents say the same: nodes and members in any order, numbers in the text of
/// a vector with any blanks.
bool IsSameDocument(const source::Text& left, const source::Text& right);

} // namespace vell::author
