// VELL: data-driven hierarchical state machines.
// tests/author/RoundTripTest.cpp: a document, its source, and the document of that.
#include "tests/author/Life.h"
#include "tests/author/SoundDocument.h"
#include "tests/check/RandomDocuments.h"
#include "tests/check/Truth.h"
#include "tests/introspection/RichDocument.h"
#include "tests/model/ModelCase.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/SourceDir.h"
#include "tools/author/Compile.h"
#include "tools/author/Decompile.h"
#include "tools/layout/Layout.h"
#include "tools/vell/DocumentFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

constexpr int kSoundOfTen = 8; ///< of ten documents; the others are of the model and the grammar

std::string MakeDocument(int number)
{
    std::mt19937 random(static_cast<unsigned int>(number));
    const auto seed = static_cast<unsigned int>(number);
    return number % 10 < kSoundOfTen    ? SoundDocument(seed)
           : number % 10 == kSoundOfTen ? model::WriteDocument(model::MakeCase(seed).document)
                                        : RandomGrammarText(random);
}

std::string CompileSource(const std::string& bytes, std::string* problems)
{
    const author::Compiled compiled = author::Compile("a.hsm.json",
                                                      [&bytes](const std::string&)
                                                      {
                                                          return author::FileContent{bytes, ""};
                                                      });
    for (const check::Finding& finding : compiled.problems.list)
    {
        *problems += std::to_string(finding.where.begin.line) + ": " + finding.message + "\n";
    }
    return compiled.bytes;
}

int secondTimes = 0; ///< documents that came from a source, and were given again

/// Gives what is untrue about the way there and back, or an empty text.
std::string FaultOf(const std::string& document, unsigned int seed)
{
    const source::Text text = source::ReadText(document);
    const std::string source = author::Decompile(text, {"machine", false});
    std::string fault;
    const std::string again = CompileSource(source, &fault);
    if (!fault.empty())
    {
        return "the source does not compile: " + fault + source;
    }
    if (!author::IsSameDocument(text, source::ReadText(again)))
    {
        return "the document says something else:\n" + source + again;
    }
    const Life before = Live(document, seed);
    const Life after = Live(again, seed);
    fault += before.load == after.load ? "" : "the log of loading differs\n";
    fault += before.tree == after.tree ? "" : "the tree differs\n";
    fault += before.run == after.run ? "" : "the log differs\n";
    fault += before.stacks == after.stacks ? "" : "the stacks differ\n";
    // Nodes without a place are copied behind all others, and may have a place from then on.
    if (source.find("\"nodes\":") == std::string::npos)
    {
        const std::string second = author::Decompile(source::ReadText(again), {"machine", false});
        fault += CompileSource(second, &fault) == again ? "" : "a second time gives other bytes\n";
        ++secondTimes;
    }
    const std::string formatted =
        layout::LayOutSource(source::ReadText(source, author::kSourceOptions));
    fault += formatted == source ? "" : "the source has not the one layout\n";
    return fault.empty() ? "" : fault + source + again;
}

/// A node that fails takes others with it, by their order.
bool LosesNodes(const Loaded& loaded)
{
    return std::any_of(loaded.errors.begin(), loaded.errors.end(),
                       [](const std::string& line)
                       {
                           return line.find("Failed to create") != std::string::npos ||
                                  line.find("exception") != std::string::npos ||
                                  line.find("Duplicate ID") != std::string::npos ||
                                  line.find("Import") != std::string::npos;
                       });
}

class RandomRoundTrip : public testing::TestWithParam<int>
{
};

} // namespace

// A document is valid here when the library loads all of its nodes, however much the check has to
// say of it.
// VELL_SOURCE_DOCUMENTS is how many documents are tried. A counterexample is shown with its number:
// VELL_SOURCE_DOCUMENT=NUMBER runs that one alone.
TEST_P(RandomRoundTrip, GivesADocumentThatDoesTheSame)
{
    const RandomShare share("VELL_SOURCE_DOCUMENT", kIsSanitized ? 200 : 1000, GetParam());
    int failures = 0;
    int valid = 0;
    for (int number = share.first; number < share.end && failures < 3;
         number += RandomShare::kCount)
    {
        const std::string document = MakeDocument(number);
        const source::Text text = source::ReadText(document);
        const Loaded loaded = text.parsed ? Load(document) : Loaded();
        if (!loaded.isInitialised || LosesNodes(loaded))
        {
            continue;
        }
        ++valid;
        const std::string fault = FaultOf(document, static_cast<unsigned int>(number));
        failures += fault.empty() ? 0 : 1;
        EXPECT_EQ(fault, "") << "document " << number << "\n" << document;
    }
    EXPECT_TRUE(share.isOnlyOne || valid * RandomShare::kCount > share.documentCount / 2) << valid;
    EXPECT_TRUE(share.isOnlyOne || secondTimes > 0);
}

TEST(RoundTrip, HoldsForTheSamples)
{
    for (const char* name : {"locomotion", "character", "guard"})
    {
        const std::string document =
            tool::ReadWholeFile(std::string(SourceDir()) + "/samples/" + name + ".json").bytes;
        ASSERT_NE(document, "");

        EXPECT_EQ(FaultOf(document, 1), "") << name;
    }
}

TEST(RoundTrip, HoldsForTheDocumentsOfTests)
{
    EXPECT_EQ(FaultOf(RichDocument().Text(), 1), "");
    int valid = 0;
    for (const char* const folder : {"tests/data", "tests/fuzz/corpus/document"})
    {
        const std::string path = std::string(SourceDir()) + "/" + folder;
        for (const auto& entry : std::filesystem::directory_iterator(path))
        {
            const std::string document = tool::ReadWholeFile(entry.path().string()).bytes;
            const source::Text text = source::ReadText(document);
            const Loaded loaded = text.parsed ? Load(document) : Loaded();
            if (loaded.isInitialised && !LosesNodes(loaded))
            {
                ++valid;
                EXPECT_EQ(FaultOf(document, 1), "") << entry.path();
            }
        }
    }
    EXPECT_GE(valid, 3);
}

TEST(RoundTrip, HoldsForDocumentsThatAreWrong)
{
    int parsed = 0;
    for (int number = 0; number < 400; ++number)
    {
        std::mt19937 random(static_cast<unsigned int>(number));
        const std::string document = RandomGrammarText(random);
        const source::Text text = source::ReadText(document);
        if (!text.isWhole || !text.root.IsObject())
        {
            continue;
        }
        ++parsed;
        std::string problems;
        const std::string again = CompileSource(author::Decompile(text, {"m", false}), &problems);

        EXPECT_EQ(problems, "") << document;
        EXPECT_TRUE(author::IsSameDocument(text, source::ReadText(again)))
            << number << "\n"
            << document << "\n"
            << author::Decompile(text, {"m", false}) << again;
        if (HasFailure())
        {
            break;
        }
    }
    EXPECT_GT(parsed, 100);
}

INSTANTIATE_TEST_SUITE_P(Shards, RandomRoundTrip, testing::Range(0, RandomShare::kCount));

} // namespace vell::test
