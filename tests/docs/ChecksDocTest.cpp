// VELL: data-driven hierarchical state machines.
// tests/docs/ChecksDocTest.cpp: docs/checks.md explains the codes as the command does.
#include "tests/docs/Pages.h"
#include "tools/check/Check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace vell::test
{

TEST(ChecksDoc, IsWhatTheCommandExplains)
{
    std::string page;
    for (const std::string& line : ReadLines("docs/checks.md"))
    {
        page += line + "\n";
    }

    EXPECT_TRUE(page == check::CodesPage()) << "vell check --explain all > docs/checks.md";
}

TEST(ChecksDoc, HasAnEntryForEachCodeWithAnExampleBeforeAndAfter)
{
    EXPECT_GE(check::AllCodes().size(), 80u);
    std::set<std::string> titles;
    for (const check::CodeEntry* entry : check::AllCodes())
    {
        const std::string name = check::NameOf(entry->code);
        EXPECT_EQ(check::FindEntry(name), entry) << name;
        EXPECT_TRUE(titles.insert(entry->title).second) << name;
        EXPECT_STRNE(entry->bad, entry->good) << name;
        EXPECT_NE(std::string(entry->explanation), "") << name;
        EXPECT_EQ(std::string(entry->explanation).back(), '.') << name;
    }
}

TEST(ChecksDoc, ShowsExamplesOfTheTextThatAreReported)
{
    for (const check::CodeEntry& entry : check::TextCodes())
    {
        if (entry.code == check::Code::TooDeep)
        {
            continue; // A thousand brackets are no example.
        }
        // Most examples are members without the object around them.
        const auto reported = [&entry](const std::string& piece)
        {
            const bool isObject = piece.empty() || piece.find('{') != std::string::npos;
            const source::Text text = source::ReadText(isObject ? piece : "{" + piece + "\n}");
            check::Findings findings;
            check::CheckText({text, text.root}, findings);
            return std::any_of(findings.list.begin(), findings.list.end(),
                               [&entry](const check::Finding& finding)
                               {
                                   return finding.code == entry.code;
                               });
        };

        EXPECT_TRUE(reported(entry.bad)) << entry.bad;
        EXPECT_FALSE(reported(entry.good)) << entry.good;
    }
}

} // namespace vell::test
