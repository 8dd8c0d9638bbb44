// VELL: data-driven hierarchical state machines.
// tests/twin/TwinTest.cpp: a machine that passes over idle states, beside its twin that does not.
#include "tests/model/QuietStandardError.h"
#include "tests/model/Sanitizer.h"
#include "tests/twin/TwinRun.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace
{

constexpr unsigned long long kDefaultSeed = 1;
constexpr unsigned long long kDefaultDocuments = 1000;

unsigned long long FromEnvironment(const char* name, unsigned long long otherwise)
{
    const char* const text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

TEST(Twin, DoesTheSameWithTheShortcutAsWithout)
{
    const unsigned long long documents = FromEnvironment("VELL_TWIN_DOCUMENTS", kDefaultDocuments);
    const unsigned long long first = FromEnvironment("VELL_TWIN_SEED", kDefaultSeed);
    const unsigned long long failuresWanted = FromEnvironment("VELL_TWIN_FAILURES", 1);
    const char* const without = std::getenv("VELL_TWIN_WITHOUT");
    unsigned long long failures = 0;
    std::cout << "seeds " << first << " to " << first + documents - 1 << std::endl;
    const model::QuietStandardError quiet;

    for (unsigned long long seed = first; seed < first + documents; ++seed)
    {
        const twin::Case twinCase = twin::MakeCase(seed, without == nullptr ? "" : without);
        if (twin::Compare(twinCase, twin::Look::Often).isFound)
        {
            const twin::Case small = twin::Shrink(twinCase);
            ADD_FAILURE() << "seed " << seed << "\n" << twin::Report(small);
            if (++failures == failuresWanted)
            {
                return;
            }
        }
    }
}

} // namespace
