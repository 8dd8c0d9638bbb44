// VELL: data-driven hierarchical state machines.
// tools/check/Finding.h: what the check found in a document.
#pragma once

#include "tools/check/Code.h"
#include "tools/source/Value.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vell::check
{

/// A value that a member has to have. `object` belongs to the document that was checked.
struct Fix
{
    const source::Value* object = nullptr;
    std::string member;
    unsigned int id = 0;
    bool isElement = false; ///< `id` is to be added to the array `member`
};

/// One thing that is wrong with a document.
struct Finding
{
    Code code = Code::Empty;
    source::Span where;
    std::size_t file = 0; ///< of a source: which of its files; see `CheckedDocument::parts`
    std::string message;  ///< a sentence without a capital and a full stop
    std::string hint;     ///< what to do: "did you mean 'less'?"; empty when there is none
    bool hasOther = false;
    source::Span other; ///< a second place, such as that of the first of two equal ids
    std::size_t otherFile = 0;
    std::string otherNote;  ///< what is there: "the first is here"
    std::vector<Fix> fixes; ///< what makes it go away; empty unless there is one answer
};

/// Collects what is found.
class Findings
{
public:
    Finding& Add(Code code, const source::Span& where, std::string message, std::string hint = {});
    /// The same, with a second place.
    Finding& Add(Code code, const source::Span& where, std::string message, std::string hint,
                 const source::Span& other, std::string otherNote);

    /// Adds a fix to the finding that was added last.
    void AddFix(Fix fix);

    bool HasErrors() const;

    std::vector<Finding> list;
    /// Nodes are missing or of no known kind: what refers to them is wrong only because of that.
    bool hasLostNodes = false;
    /// A list that is not required has a name that is not read: states may seem to be out of reach
    /// only because of that.
    bool hasMisspeltList = false;
};

} // namespace vell::check
