// VELL: data-driven hierarchical state machines.
// tests/tools/GraphThemeTest.cpp: whether pictures can be read, light and dark.
#include "tools/vell/GraphTheme.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <set>
#include <string>

namespace vell::test
{
namespace
{

using tool::Colour;
using Channels = std::array<double, 3>;

/// Red, green and blue in linear light. The formula is that of sRGB (IEC 61966-2-1).
Channels Linear(const std::string& text)
{
    Channels channels{};
    for (std::size_t i = 0; i < 3; ++i)
    {
        const double value = std::stoi(text.substr(1 + 2 * i, 2), nullptr, 16) / 255.0;
        channels[i] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    }
    return channels;
}

double Luminance(const Channels& linear)
{
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}

/// The contrast of two colours, 1 to 21, as the Web Content Accessibility Guidelines define it.
double Contrast(const std::string& one, const std::string& other)
{
    const double first = Luminance(Linear(one));
    const double second = Luminance(Linear(other));
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

/// The difference of two colours in CIELAB, for eyes that do not see green light (deuteranopia).
/// The matrix is that of Machado, Oliveira and Fernandes (2009) for full severity.
double DifferenceWithoutGreen(const std::string& one, const std::string& other)
{
    const auto lab = [](const Channels& seen)
    {
        const Channels linear{0.367322 * seen[0] + 0.860646 * seen[1] - 0.227968 * seen[2],
                              0.280085 * seen[0] + 0.672501 * seen[1] + 0.047413 * seen[2],
                              -0.011820 * seen[0] + 0.042940 * seen[1] + 0.968881 * seen[2]};
        const Channels xyz{(0.4124 * linear[0] + 0.3576 * linear[1] + 0.1805 * linear[2]) / 0.9505,
                           0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2],
                           (0.0193 * linear[0] + 0.1192 * linear[1] + 0.9505 * linear[2]) / 1.089};
        Channels root{};
        std::transform(xyz.begin(), xyz.end(), root.begin(),
                       [](double value)
                       {
                           return value > 0.008856 ? std::cbrt(value) : 7.787 * value + 16.0 / 116;
                       });
        return Channels{116 * root[1] - 16, 500 * (root[0] - root[1]), 200 * (root[1] - root[2])};
    };
    const Channels first = lab(Linear(one));
    const Channels second = lab(Linear(other));
    return std::hypot(first[0] - second[0], first[1] - second[1], first[2] - second[2]);
}

TEST(GraphTheme, HasNoTwoColoursThatAreTheSameInLight)
{
    std::set<std::string> seen;
    for (const Colour& colour : tool::AllColours())
    {
        EXPECT_TRUE(seen.insert(colour.light).second) << colour.light;
        EXPECT_EQ(std::string(colour.light).size(), 7u);
        EXPECT_EQ(std::string(colour.dark).size(), 7u);
    }
    EXPECT_GE(seen.size(), 20u);
}

TEST(GraphTheme, CanBeReadOnEveryGround)
{
    constexpr double kTextContrast = 4.5;
    constexpr double kLineContrast = 3.0;
    std::vector<Colour> grounds{tool::kGround, tool::kBox};
    grounds.insert(grounds.end(), std::begin(tool::kLevelGrounds), std::end(tool::kLevelGrounds));
    for (const Colour& ground : grounds)
    {
        EXPECT_GE(Contrast(tool::kInk.light, ground.light), kTextContrast) << ground.light;
        EXPECT_GE(Contrast(tool::kInk.dark, ground.dark), kTextContrast) << ground.dark;
        EXPECT_GE(Contrast(tool::kFaintInk.light, ground.light), kTextContrast) << ground.light;
        EXPECT_GE(Contrast(tool::kFaintInk.dark, ground.dark), kTextContrast) << ground.dark;
        for (const Colour& edge : tool::kEdgeColours)
        {
            EXPECT_GE(Contrast(edge.light, ground.light), kLineContrast) << edge.light;
            EXPECT_GE(Contrast(edge.dark, ground.dark), kLineContrast) << edge.dark;
        }
    }
    for (const Colour& box : {tool::kGlobalBox, tool::kLevelBox, tool::kMarkBox})
    {
        EXPECT_GE(Contrast(tool::kInk.light, box.light), kTextContrast) << box.light;
        EXPECT_GE(Contrast(tool::kInk.dark, box.dark), kTextContrast) << box.dark;
    }
    for (const Colour& lit : {tool::kActive, tool::kWaiting})
    {
        EXPECT_GE(Contrast(tool::kLitInk.light, lit.light), kTextContrast) << lit.light;
        EXPECT_GE(Contrast(tool::kLitInk.dark, lit.dark), kTextContrast) << lit.dark;
    }
}

TEST(GraphTheme, GivesNeighboursColoursThatColourBlindEyesTellApart)
{
    constexpr double kPlainDifference = 20.0; // 2 is the least that a trained eye sees
    const std::size_t count = std::size(tool::kEdgeColours);
    for (std::size_t i = 0; i < count; ++i)
    {
        const Colour& one = tool::EdgeColour(i);
        const Colour& next = tool::EdgeColour(i + 1);
        EXPECT_GE(DifferenceWithoutGreen(one.light, next.light), kPlainDifference)
            << one.light << ' ' << next.light;
        EXPECT_GE(DifferenceWithoutGreen(one.dark, next.dark), kPlainDifference)
            << one.dark << ' ' << next.dark;
    }
}

} // namespace
} // namespace vell::test
