// VELL: data-driven hierarchical state machines.
// tests/robustness/DictionaryTest.cpp: the fuzzers know the vocabulary.
#include "tests/fuzz/Dictionary.h"

#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace vell::test
{

TEST(FuzzDictionary, HoldsEveryWordOfTheVocabulary)
{
    const std::string path = std::string(SourceDir()) + "/tests/fuzz/vell.dict";
    const std::string expected = fuzz::DictionaryText();
    if (std::getenv("VELL_WRITE_DICTIONARY") != nullptr)
    {
        std::ofstream(path, std::ios::binary) << expected;
    }

    std::ifstream file(path, std::ios::binary);
    std::ostringstream found;
    found << file.rdbuf();

    EXPECT_GE(std::count(expected.begin(), expected.end(), '\n'), 100);
    EXPECT_EQ(found.str(), expected) << "VELL_WRITE_DICTIONARY=1 robustness_tests writes it again";
}

} // namespace vell::test
