// VELL: data-driven hierarchical state machines.
// tests/check/RandomDocuments.h: random documents, which tests try by their numbers.
#pragma once

#include <random>
#include <string>

namespace vell::test
{

/// Shares the numbers of the documents that a test tries among processes that run side by side.
struct RandomShare
{
    static constexpr int kCount = 8; ///< of shares

    /// The share `index`. The environment variable `name` with an S says how many documents are
    /// tried, or `otherwise`; `name` itself is the number of the only one.
    RandomShare(const std::string& name, int otherwise, int index);

    int documentCount; ///< of all shares
    bool isOnlyOne;
    int first; ///< every `kCount`th from here on
    int end;
};

/// Gives a document of the grammar of the fuzzers.
std::string RandomGrammarText(std::mt19937& random);

} // namespace vell::test
