// VELL: data-driven hierarchical state machines.
// tests/model/ModelTest.cpp: random machines on the library and on a second, naive machine.

#include "tests/model/Comparison.h"
#include "tests/model/QuietStandardError.h"
#include "tests/support/Sanitizer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace
{

using model::Case;
using model::Counts;
using model::Difference;
using model::Fault;

#if defined(VELL_SANITIZER)
constexpr unsigned long long kDefaultMachines = 500;
#elif defined(NDEBUG)
constexpr unsigned long long kDefaultMachines = 10000;
#else
constexpr unsigned long long kDefaultMachines = 1500;
#endif
constexpr unsigned long long kDefaultSeed = 20240601;

unsigned long long FromEnvironment(const char* name, unsigned long long otherwise)
{
    const char* const text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

unsigned long long FirstSeed()
{
    return FromEnvironment("VELL_MODEL_SEED", kDefaultSeed);
}

TEST(Model, AgreesWithTheLibraryOnRandomMachines)
{
    const unsigned long long machines = FromEnvironment("VELL_MODEL_MACHINES", kDefaultMachines);
    const unsigned long long first = FirstSeed();
    ASSERT_GT(machines, 0u);
    std::cout << "seeds " << first << " to " << first + machines - 1 << std::endl;
    Counts counts;
    const model::QuietStandardError quiet;

    for (unsigned long long seed = first; seed < first + machines; ++seed)
    {
        const Case modelCase = model::MakeCase(seed);
        if (model::Compare(modelCase, Fault::None, &counts).isFound)
        {
            const Case small = model::Shrink(modelCase, Fault::None);
            FAIL() << "seed " << seed << "\n"
                   << model::Report(small, model::Compare(small, Fault::None, nullptr));
        }
    }

    for (const auto& count : counts)
    {
        std::cout << count.second << " x " << count.first << std::endl;
        EXPECT_TRUE(count.second > 0 || machines < 500) << count.first;
    }
    EXPECT_TRUE(counts["threw"] > 0 || machines < 500);
}

struct PlantedFault
{
    const char* name;
    Fault fault;
};

class ModelWithAFault : public testing::TestWithParam<PlantedFault>
{
};

TEST_P(ModelWithAFault, IsFoundAndShrunk)
{
    const Fault fault = GetParam().fault;
    const model::QuietStandardError quiet;
    unsigned long long seed = kDefaultSeed;
    while (seed < kDefaultSeed + 1000 &&
           !model::Compare(model::MakeCase(seed), fault, nullptr).isFound)
    {
        ++seed;
    }
    const Case modelCase = model::MakeCase(seed);
    ASSERT_TRUE(model::Compare(modelCase, fault, nullptr).isFound);

    const Case small = model::Shrink(modelCase, fault);

    const Difference difference = model::Compare(small, fault, nullptr);
    EXPECT_TRUE(difference.isFound);
    EXPECT_FALSE(model::Compare(small, Fault::None, nullptr).isFound);
    EXPECT_LE(model::CountNodes(small.document), 10u) << model::Report(small, difference);
    EXPECT_LE(small.inputs.size(), 12u) << model::Report(small, difference);
    EXPECT_NE(model::Report(small, difference).find("library: "), std::string::npos);
    std::cout << "found by seed " << seed << ", shrunk from "
              << model::CountNodes(modelCase.document) << " nodes to "
              << model::CountNodes(small.document) << std::endl;
}

INSTANTIATE_TEST_SUITE_P(
    Planted, ModelWithAFault,
    testing::Values(PlantedFault{"RefusesAnEqualBlip", Fault::RefusesAnEqualBlip},
                    PlantedFault{"TestsEqualPrioritiesBackwards",
                                 Fault::TestsEqualPrioritiesBackwards},
                    PlantedFault{"NeedsAllConditions", Fault::NeedsAllConditions},
                    PlantedFault{"ResumesAtTheEntry", Fault::ResumesAtTheEntry},
                    PlantedFault{"RunsExitActionsOfExitNodes", Fault::RunsExitActionsOfExitNodes},
                    PlantedFault{"ForgetsTheResets", Fault::ForgetsTheResets}),
    [](const auto& planted)
    {
        return std::string(planted.param.name);
    });

TEST(ModelCase, IsTheSameForTheSameSeed)
{
    const Case one = model::MakeCase(7);
    const Case two = model::MakeCase(7);
    const Case other = model::MakeCase(8);

    EXPECT_EQ(model::WriteDocument(one.document), model::WriteDocument(two.document));
    EXPECT_EQ(model::Report(one, {}), model::Report(two, {}));
    EXPECT_NE(model::Report(one, {}), model::Report(other, {}));
}

} // namespace
