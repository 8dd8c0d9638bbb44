// VELL: data-driven hierarchical state machines.
// tools/check/Check.h: the families of rules, and all of them on one document.
#pragma once

#include "tools/check/Finding.h"
#include "tools/source/Reader.h"

namespace vell::check
{

/// The document that is checked.
struct Document
{
    const source::Text& text;
    const source::Value& root; ///< of `text`
};

// The families. Each may be called for any document whose text is whole, CheckText for any text.
// CheckMembers reports what is missing or of the wrong type; the families behind it say nothing
// about such a member, nor about a word that CheckWords does not know.
void CheckText(const Document& document, Findings& findings);
void CheckMembers(const Document& document, Findings& findings);
void CheckWords(const Document& document, Findings& findings);

/// Checks a text by all families, and gives what they found in the order of the text, but for what
/// a member "$allow" of the document leaves out. When the text is not whole, only the text is
/// checked.
Findings CheckDocument(const source::Text& text);

/// The member by which an object allows what is wrong with it: an array of codes.
constexpr const char* kAllowMember = "$allow";
/// The member that any object may have, and nobody reads.
constexpr const char* kCommentMember = "$comment";
/// The member of the root by which an editor finds the schema.
constexpr const char* kSchemaMember = "$schema";

} // namespace vell::check
