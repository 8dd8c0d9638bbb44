// VELL: data-driven hierarchical state machines.
// tests/check/TruthTest.cpp: the check says no less than the library, for every document.
#include "tests/check/Truth.h"

#include "tests/check/Mutation.h"
#include "tests/check/RandomDocuments.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/GrammarDocument.h"
#include "tests/model/ModelCase.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// So many of ten documents come from the fuzzers' grammar, the others from the model's and the
/// samples, with one mistake more.
constexpr int kGrammarOfTen = 4;
constexpr int kModelOfTen = 2;

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string ReadSample(const std::string& name)
{
    return ReadFile(std::string(SourceDir()) + "/samples/" + name);
}

/// A document, and where the mistake is, if that is known.
struct Document
{
    std::string text;
    source::Span mistake;
    bool isPlaceKnown = false;
};

Document MakeDocument(int number)
{
    std::mt19937 random(static_cast<unsigned int>(number));
    const int kind = number % 10;
    if (kind < kGrammarOfTen)
    {
        return {RandomGrammarText(random), {}, false};
    }
    if (kind < kGrammarOfTen + kModelOfTen)
    {
        const auto seed = static_cast<unsigned long long>(number);
        return {
            Mutate(model::WriteDocument(model::MakeCase(seed).document), random).text, {}, false};
    }
    static const std::string samples[] = {ReadSample("character.json"),
                                          ReadSample("locomotion.json")};
    const Mutated mutated = Mutate(samples[number % 2], random);
    return {mutated.text, mutated.object, !mutated.isId};
}

class RandomTruth : public testing::TestWithParam<int>
{
};

} // namespace

// A counterexample is shown with its number: VELL_CHECK_DOCUMENT=NUMBER checks that one alone.
TEST_P(RandomTruth, HoldsForRandomDocuments)
{
    const RandomShare share("VELL_CHECK_DOCUMENT", kIsSanitized ? 2000 : 10000, GetParam());
    int failures = 0;
    for (int number = share.first; number < share.end && failures < 5;
         number += RandomShare::kCount)
    {
        const Document document = MakeDocument(number);
        const Loaded loaded = Load(document.text);
        const Checked checked(document.text);
        std::string untrue = Compare(loaded, checked);
        const bool isMisplaced = document.isPlaceKnown && loaded.HasComplaints() &&
                                 !checked.HasFindingAt(document.mistake);
        untrue += isMisplaced ? "no finding is where the mistake is" : "";
        failures += untrue.empty() ? 0 : 1;
        EXPECT_EQ(untrue, "") << "document " << number << "\n"
                              << checked.Lines() << (share.isOnlyOne ? document.text : "");
    }
}

TEST(CheckTruth, HoldsForTheDocumentsOfTheFuzzers)
{
    int count = 0;
    for (const char* const folder : {"document", "grammar"})
    {
        const std::string path = std::string(SourceDir()) + "/tests/fuzz/corpus/" + folder;
        for (const auto& entry : std::filesystem::directory_iterator(path))
        {
            const std::string bytes = ReadFile(entry.path());
            const bool isText = folder == std::string("document");
            const auto* first = reinterpret_cast<const unsigned char*>(bytes.data());
            fuzz::Bytes decisions(first, bytes.size());
            const std::string text = isText ? bytes : fuzz::GrammarDocument(decisions);
            const Checked checked(text);

            EXPECT_EQ(Compare(Load(text), checked), "") << entry.path() << "\n" << checked.Lines();
            ++count;
        }
    }
    EXPECT_GT(count, 30);
}

INSTANTIATE_TEST_SUITE_P(Shards, RandomTruth, testing::Range(0, RandomShare::kCount));

} // namespace vell::test
