// VELL: data-driven hierarchical state machines.
// tools/author/SourceWriter.h: the source of a document's tree.
#pragma once

#include "tools/author/Decompile.h"
#include "tools/author/DocumentTree.h"
#include "tools/author/Made.h"

#include <unordered_map>
#include <unordered_set>

namespace vell::author
{

/// What a source has to say besides its short forms, by the object of the document.
struct Additions
{
    /// For `members`.
    std::unordered_map<const source::Value*, Made> members;
    /// Conditions that are copied.
    std::unordered_set<const source::Value*> verbatim;

    void Put(const source::Value* object, Made added);
};

/// Writes the source.
Made WriteSource(const source::Text& document, const DocumentTree& tree, const Additions& additions,
                 const DecompileOptions& options);

} // namespace vell::author
