// VELL: data-driven hierarchical state machines.
// tools/check/LibraryLoad.h: what the library says about a document, and how much room it takes.
#pragma once

#include "tools/check/DocumentModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vell::check
{

/// A line of the library's log, without its tag.
struct Complaint
{
    bool isError = false; ///< a warning otherwise
    std::string text;
};

/// What came of loading a document.
struct Loading
{
    bool isLoaded = false;             ///< `Create` and `Init` succeeded.
    std::uint64_t used = 0;            ///< bytes of the arena
    std::vector<Complaint> complaints; ///< the errors and warnings of the log, in order
};

/// Loads the document of a text into a machine with more than enough memory, whatever its head
/// says. Takes the place of the log's callback, and removes it. Keeps the log off standard error.
Loading LoadDocument(const DocumentModel& model, const std::string& text);

/// Gives the bytes that the states of all nodes take in the arena once they run.
std::uint64_t CountStateBytes(const DocumentModel& model);

/// Gives the bytes that the arena of this document has.
std::uint32_t GetArenaSize(const DocumentModel& model);

} // namespace vell::check
