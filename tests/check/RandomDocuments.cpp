// VELL: data-driven hierarchical state machines.
// tests/check/RandomDocuments.cpp: which documents are tried, and those of the grammar.
#include "tests/check/RandomDocuments.h"

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/GrammarDocument.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace vell::test
{
namespace
{

/// Gives a number from the environment, or `otherwise`.
int CountFromEnvironment(const std::string& name, int otherwise)
{
    const char* text = std::getenv(name.c_str());
    return text == nullptr ? otherwise : std::atoi(text);
}

} // namespace

RandomShare::RandomShare(const std::string& name, int otherwise, int index)
    : documentCount(CountFromEnvironment(name + "S", otherwise))
{
    const int only = CountFromEnvironment(name, -1);
    isOnlyOne = only >= 0;
    first = isOnlyOne ? only : index;
    end = isOnlyOne ? only + 1 : documentCount;
}

std::string RandomGrammarText(std::mt19937& random)
{
    std::vector<unsigned char> bytes(3000);
    std::generate(bytes.begin(), bytes.end(),
                  [&random]
                  {
                      return static_cast<unsigned char>(random());
                  });
    fuzz::Bytes decisions(bytes.data(), bytes.size());
    return fuzz::GrammarDocument(decisions);
}

} // namespace vell::test
