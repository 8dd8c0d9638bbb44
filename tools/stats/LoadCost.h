// VELL: data-driven hierarchical state machines.
// tools/stats/LoadCost.h: the memory and the time that a document needs.
#pragma once

#include "tools/source/Reader.h"

#include <cstdint>
#include <string>

namespace vell::stats
{

/// The bytes of an arena per unit of the head's `memory`.
constexpr std::uint64_t kBytesPerUnit = 100;

/// What a document needs of its arena, in bytes.
struct MemoryNeed
{
    bool loads = false;         ///< with enough memory; what follows is 0 otherwise
    std::string losses;         ///< the nodes that are lost all the same; empty when there are none
    std::uint64_t loaded = 0;   ///< after `Init`
    std::uint64_t complete = 0; ///< when each state has been entered once, which is the most

    /// Tells whether the figures are those of the whole machine.
    bool IsKnown() const
    {
        return loads && losses.empty();
    }
    /// Gives the smallest `memory` that is enough.
    std::uint64_t Units() const;
};

/// Loads a document in memory that is large enough whatever the head declares, and activates each
/// state. Plain nodes stand in for those that only a host can build. The library writes its log.
MemoryNeed MeasureMemory(const source::Text& text);

/// Gives the head's `memory`, or what the library takes when it is absent.
std::int64_t DeclaredMemory(const source::Text& text);

/// Times in milliseconds, each the median of several runs.
struct LoadTime
{
    double load = 0.0;  ///< `Create` and `Init`, with the parse
    double parse = 0.0; ///< the parse alone
};

LoadTime MeasureTime(const source::Text& text);

} // namespace vell::stats
