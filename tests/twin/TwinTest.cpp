// VELL: data-driven hierarchical state machines.
// tests/twin/TwinTest.cpp: a machine that passes over idle states, beside its twin that does not.
#include "tests/model/QuietStandardError.h"
#include "tests/support/Sanitizer.h"
#include "tests/twin/TwinRun.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace
{

constexpr unsigned long long kDefaultSeed = 1;
#if defined(VELL_SANITIZER)
constexpr unsigned long long kDefaultDocuments = 200;
#else
constexpr unsigned long long kDefaultDocuments = 1000;
#endif
/// The documents are shared by so many tests, which may run side by side.
constexpr unsigned long long kSlices = 4;

unsigned long long FromEnvironment(const char* name, unsigned long long otherwise)
{
    const char* const text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

/// One slice of the documents.
class Twin : public testing::TestWithParam<unsigned long long>
{
};

TEST_P(Twin, DoesTheSameWithTheShortcutAsWithout)
{
    const unsigned long long documents = FromEnvironment("VELL_TWIN_DOCUMENTS", kDefaultDocuments);
    const unsigned long long first = FromEnvironment("VELL_TWIN_SEED", kDefaultSeed);
    const unsigned long long failuresWanted = FromEnvironment("VELL_TWIN_FAILURES", 1);
    const char* const without = std::getenv("VELL_TWIN_WITHOUT");
    unsigned long long failures = 0;
    std::cout << "seeds " << first << " to " << first + documents - 1 << std::endl;
    const model::QuietStandardError quiet;

    for (unsigned long long seed = first + GetParam(); seed < first + documents; seed += kSlices)
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

INSTANTIATE_TEST_SUITE_P(Slices, Twin, testing::Range(0ull, kSlices));

} // namespace
