// VELL: data-driven hierarchical state machines.
// tests/document/NumberTextTest.cpp: reading of vectors and ranges, and comparing of texts.
#include "document/NumberText.h"

#include "foundation/TextCompare.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// Gives the first `count` numbers of `text`; empty when there are too few.
std::vector<float> Floats(const char* text, int count)
{
    std::vector<float> numbers(4, -99.0f);
    if (!ReadNumbers(text, numbers.data(), count))
    {
        EXPECT_EQ(numbers, std::vector<float>(4, -99.0f)) << "touched by a failed read";
        return {};
    }
    numbers.resize(static_cast<std::size_t>(count));
    return numbers;
}

using Numbers = std::vector<float>;

} // namespace

TEST(NumberText, ReadsNumbersBetweenCommas)
{
    EXPECT_EQ(Floats("0.5,-1", 2), (Numbers{0.5f, -1.0f}));
    EXPECT_EQ(Floats("1,2,3", 3), (Numbers{1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(Floats("1e2,0.25,-0,7", 4), (Numbers{100.0f, 0.25f, 0.0f, 7.0f}));
    EXPECT_EQ(Floats(" 1 , 2 ", 2), (Numbers{1.0f, 2.0f}));
}

TEST(NumberText, IgnoresFurtherNumbers)
{
    EXPECT_EQ(Floats("1,2,3", 2), (Numbers{1.0f, 2.0f}));
}

TEST(NumberText, FailsAndTouchesNothingWhenThereAreTooFew)
{
    EXPECT_EQ(Floats("1", 2), Numbers{});
    EXPECT_EQ(Floats("1,2", 3), Numbers{});
    EXPECT_EQ(Floats("", 2), Numbers{});
    EXPECT_EQ(Floats(",,,", 2), Numbers{});
    EXPECT_EQ(Floats("1,", 2), Numbers{});
}

TEST(NumberText, PassesOverEmptyPieces)
{
    EXPECT_EQ(Floats(",1,,2,", 2), (Numbers{1.0f, 2.0f}));
}

TEST(NumberText, ReadsInfinityAndHexadecimalDigitsOnEverySystem)
{
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Floats("inf,-Infinity,1e39,0x1p4", 4), (Numbers{infinity, -infinity, infinity, 16}));
    EXPECT_TRUE(std::isnan(Floats("nan,0", 2)[0]));
}

TEST(NumberText, TakesAPieceThatIsNoNumberAsZero)
{
    EXPECT_EQ(Floats("one,2", 2), (Numbers{0.0f, 2.0f}));
    EXPECT_EQ(Floats("3metres,2", 2), (Numbers{3.0f, 2.0f}));
    EXPECT_EQ(Floats("2,two,-", 3), (Numbers{2.0f, 0.0f, 0.0f}));
    double numbers[2] = {7.0, 7.0};
    EXPECT_EQ(ReadNumbers("one,2x", numbers, 2), 1);
    EXPECT_EQ(numbers[0], 0.0);
    EXPECT_EQ(numbers[1], 2.0);
}

TEST(NumberText, RefusesATextOf128Characters)
{
    const std::string longest = "1,2," + std::string(123, '0');
    ASSERT_EQ(longest.size(), 127u);

    EXPECT_EQ(Floats(longest.c_str(), 2), (Numbers{1.0f, 2.0f}));
    EXPECT_EQ(Floats((longest + "0").c_str(), 2), Numbers{});
    EXPECT_EQ(Floats((longest + std::string(1000, '0')).c_str(), 2), Numbers{});
}

TEST(NumberText, RefusesNullArgumentsAndMoreThanFourNumbers)
{
    float numbers[8] = {};
    double exact[8] = {};

    EXPECT_EQ(ReadNumbers(nullptr, numbers, 2), 0);
    EXPECT_EQ(ReadNumbers(nullptr, exact, 2), 0);
    EXPECT_EQ(ReadNumbers("1,2", static_cast<float*>(nullptr), 2), 0);
    EXPECT_EQ(ReadNumbers("1,2", static_cast<double*>(nullptr), 2), 0);
    EXPECT_EQ(ReadNumbers("1,2,3,4,5", numbers, 5), 0);
}

TEST(NumberText, ReadsDoublesWithoutNarrowing)
{
    double numbers[2] = {};

    EXPECT_EQ(ReadNumbers("0.1,16777217", numbers, 2), 1);

    EXPECT_EQ(numbers[0], 0.1);
    EXPECT_EQ(numbers[1], 16777217.0);
}

TEST(NumberText, CutsTheFractionOff)
{
    EXPECT_EQ(TruncateToInt(2.9), 2);
    EXPECT_EQ(TruncateToInt(-2.9), -2);
    EXPECT_EQ(TruncateToInt(0.0), 0);
}

TEST(NumberText, EndsAtTheNearestIntWhatAnIntCannotHold)
{
    EXPECT_EQ(TruncateToInt(1e20), INT_MAX);
    EXPECT_EQ(TruncateToInt(-1e20), INT_MIN);
    EXPECT_EQ(TruncateToInt(std::numeric_limits<double>::infinity()), INT_MAX);
    EXPECT_EQ(TruncateToInt(std::nan("")), 0);
}

TEST(TextCompare, IgnoresTheCaseOfAsciiLettersAlone)
{
    EXPECT_TRUE(EqualsIgnoringCase("ENTER", "enter"));
    EXPECT_TRUE(EqualsIgnoringCase("", ""));
    EXPECT_FALSE(EqualsIgnoringCase("enter", "ente"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
    EXPECT_FALSE(EqualsText("Enter", "enter"));
    EXPECT_TRUE(EqualsText("enter", std::string("enter").c_str()));
}

TEST(TextCompare, FindsANullTextEqualToNothing)
{
    EXPECT_FALSE(EqualsIgnoringCase(nullptr, ""));
    EXPECT_FALSE(EqualsIgnoringCase("", nullptr));
    EXPECT_FALSE(EqualsIgnoringCase(nullptr, nullptr));
    EXPECT_FALSE(EqualsText(nullptr, nullptr));
    EXPECT_FALSE(EqualsText("", nullptr));
}

} // namespace vell::test
