// VELL: data-driven hierarchical state machines.
// tests/tools/PrintableTest.cpp: pieces of a document that are safe to show.
#include "tools/source/Printable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

constexpr const char* kReplacement = "\xEF\xBF\xBD";

/// A text in which "?" is a replacement character.
std::string Replaced(const std::string& text)
{
    std::string replaced;
    for (const char c : text)
    {
        replaced += c == '?' ? kReplacement : std::string(1, c);
    }
    return replaced;
}

TEST(Printable, KeepsWhatATerminalAndAPictureCanShow)
{
    for (const std::string text :
         {"", "plain", "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80", "\xC2\xA0", "\xEF\xBF\xBD"})
    {
        EXPECT_EQ(source::ToPrintable(text), text);
        EXPECT_EQ(source::ToPrintableLines(text), text);
    }
}

TEST(Printable, ReplacesControlCharactersAndWhatIsNotUtf8)
{
    struct Case
    {
        std::string text;
        std::string printable;
    };
    const std::vector<Case> cases{{"\x01\t\x7F", "? ?"},
                                  {"\x1B[2J", "?[2J"},
                                  {"\xC2\x80\xC2\x9F", "??"},
                                  {std::string("a\0b", 3), "a?b"},
                                  {"\xE9", "?"},
                                  {"\xC3", "?"},
                                  {"\xC3(", "?("},
                                  {"\xC0\x80", "??"},
                                  {"\xE0\x80\x80", "???"},
                                  {"\xED\xA0\x80", "???"},
                                  {"\xF4\x90\x80\x80", "????"},
                                  {"\xEF\xBF\xBE\xEF\xBF\xBF", "??"},
                                  {"\xF0\x80\x80\x80", "????"}};
    for (const Case& one : cases)
    {
        SCOPED_TRACE(one.printable);
        EXPECT_EQ(source::ToPrintable(one.text), Replaced(one.printable));
        EXPECT_EQ(source::ToPrintableLines(one.text), Replaced(one.printable));
    }
}

TEST(Printable, KeepsEndsOfLinesOnlyWhereLinesAreAskedFor)
{
    EXPECT_EQ(source::ToPrintable("a\nb\r\n"), Replaced("a?b??"));
    EXPECT_EQ(source::ToPrintableLines("a\nb\r\n"), Replaced("a\nb?\n"));
}

} // namespace
} // namespace vell::test
