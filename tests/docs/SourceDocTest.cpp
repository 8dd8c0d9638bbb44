// VELL: data-driven hierarchical state machines.
// tests/docs/SourceDocTest.cpp: the pages about sources say what the compiler does.
#include "tests/docs/Pages.h"
#include "tools/author/CheckSource.h"
#include "tools/author/Compile.h"
#include "tools/author/SourceTable.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>

namespace vell::test
{
namespace
{

std::string Joined(const TextLines& lines)
{
    std::string text;
    for (const std::string& line : lines)
    {
        text += line + "\n";
    }
    return text;
}

/// The blocks of a page that begin with ```jsonc, also those that name a file.
std::vector<std::string> SourcesOf(const std::string& page)
{
    std::vector<std::string> sources;
    bool isInside = false;
    for (const std::string& line : ReadLines(page))
    {
        if (line.rfind("```jsonc", 0) == 0)
        {
            sources.emplace_back();
            isInside = true;
        }
        else if (line == "```")
        {
            isInside = false;
        }
        else if (isInside)
        {
            sources.back() += line + "\n";
        }
    }
    return sources;
}

author::Compiled CompilePage(const std::string& source)
{
    return author::Compile("a.hsm.json",
                           [&source](const std::string&)
                           {
                               return author::FileContent{source, ""};
                           });
}

/// A document as JSON is usually written, a member a line.
std::string Spread(const std::string& bytes)
{
    rapidjson::Document document;
    document.Parse(bytes.c_str());
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

std::ptrdiff_t LinesOf(const std::string& text)
{
    return std::count(text.begin(), text.end(), '\n');
}

} // namespace

TEST(TutorialDoc, EndsWithAGuardOfFewLinesForADocumentOfMany)
{
    const std::vector<std::string> sources = SourcesOf("docs/tutorial.md");
    ASSERT_GE(sources.size(), 6u);

    const author::Compiled compiled = CompilePage(sources.back());
    const std::ptrdiff_t sourceLines = LinesOf(sources.back());
    const std::ptrdiff_t documentLines = LinesOf(Spread(compiled.bytes));

    EXPECT_TRUE(compiled.IsGood());
    EXPECT_EQ(check::ToText(author::CheckSource("guard.hsm.json", compiled), false), "");
    std::printf("the guard: %td lines of source, %td of the document\n", sourceLines,
                documentLines);
    EXPECT_LE(sourceLines, 40);
    EXPECT_GE(documentLines, 150);
}

TEST(SourceFormDoc, BeginsWithASourceThatHasNothingWrong)
{
    const std::vector<std::string> sources = SourcesOf("docs/source-form.md");
    ASSERT_FALSE(sources.empty());

    const author::Compiled compiled = CompilePage(sources.front());

    EXPECT_TRUE(compiled.IsGood());
    EXPECT_FALSE(author::CheckSource("a", compiled).findings.HasErrors());
}

TEST(SourceFormDoc, NamesEveryMember)
{
    const std::string page = Joined(ReadLines("docs/source-form.md"));
    int found = 0;
    for (const author::SourceKind kind :
         {author::SourceKind::Machine, author::SourceKind::State, author::SourceKind::Transition,
          author::SourceKind::Condition, author::SourceKind::Parameter, author::SourceKind::End})
    {
        for (const author::SourceRule& rule : author::RulesOf(kind))
        {
            const std::string name(rule.name);
            const bool isNamed = page.find("`" + name + "`") != std::string::npos ||
                                 page.find("\"" + name + "\":") != std::string::npos ||
                                 name == "$schema";
            EXPECT_TRUE(isNamed) << author::TitleOf(kind) << ": " << name;
            ++found;
        }
    }
    EXPECT_GT(found, 60);
}

TEST(SourceFuzzer, KnowsEveryMemberByItsDictionary)
{
    const std::string words = Joined(ReadLines("tests/fuzz/source.dict"));
    for (const author::SourceKind kind :
         {author::SourceKind::Machine, author::SourceKind::State, author::SourceKind::Transition,
          author::SourceKind::Condition, author::SourceKind::Parameter, author::SourceKind::Global})
    {
        for (const author::SourceRule& rule : author::RulesOf(kind))
        {
            EXPECT_NE(words.find("\"\\\"" + std::string(rule.name) + "\\\":\""), std::string::npos)
                << rule.name;
        }
    }
}

} // namespace vell::test
