// VELL: data-driven hierarchical state machines.
// tools/stats/Statistics.h: the figures of a document.
#pragma once

#include "tools/source/Reader.h"
#include "tools/stats/LoadCost.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vell::stats
{

/// Numbers by name, the largest first.
using Tally = std::vector<std::pair<std::string, std::size_t>>;

/// What a document has. It need not load.
struct Counts
{
    std::size_t bytes = 0;
    std::size_t layers = 0;
    std::size_t nodes = 0;
    Tally builders;        ///< nodes by builder
    std::size_t depth = 0; ///< of the deepest node: 1 at the top level
    std::size_t parameters = 0;
    Tally parameterTypes;
    std::size_t conditions = 0;
    std::size_t attributes = 0;
};

Counts Count(const source::Text& text);

/// All figures of a document.
struct Statistics
{
    std::string document; ///< its name
    Counts counts;
    std::int64_t declaredMemory = 0;
    MemoryNeed memory;
    LoadTime time; ///< 0 when the document does not load
};

std::string ToText(const Statistics& statistics);
std::string ToJson(const Statistics& statistics);

} // namespace vell::stats
