// VELL: data-driven hierarchical state machines.
// tools/repair/Repair.h: writing what a finding has one answer to.
#pragma once

#include "tools/check/Finding.h"
#include "tools/source/Reader.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vell::repair
{

/// A piece of a text and what takes its place, by offsets.
struct Edit
{
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::string text;
};

/// Gives the edits for the fixes of `findings`, which belong to `text`: in the order of the text,
/// and none that overlap. Where two fixes disagree, neither is made. What is inserted is written as
/// its neighbours are. A parameter that gets another id gets it in its conditions too. Where the
/// text has names in place of ids, the ids are all that is written.
std::vector<Edit> FindEdits(const source::Text& text, const check::Findings& findings);

/// Gives the text after the edits.
std::string Apply(const std::string& bytes, const std::vector<Edit>& edits);

/// A document after its repair.
struct Repaired
{
    std::string bytes;
    std::size_t edits = 0; ///< 0 when nothing had one answer
};

/// Repairs a document until nothing has one answer any more: a fix can show what else is wrong.
/// After each round the text is read again; a round that leaves a text that the library cannot
/// parse, or more errors than before, is taken back. `leaveOut` removes findings that are not to be
/// fixed.
Repaired Repair(const source::Text& text, const std::function<void(check::Findings&)>& leaveOut);

} // namespace vell::repair
