// VELL: data-driven hierarchical state machines.
// tests/tools/RepairTest.cpp: what vell check --fix writes, and what it leaves.
#include "tools/repair/Repair.h"

#include "tests/support/LogRecorder.h"
#include "tests/support/SourceDir.h"
#include "tests/tools/CommandRun.h"
#include "tools/check/Check.h"
#include "tools/layout/Layout.h"
#include "tools/repair/LineDiff.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/DocumentFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using repair::Repaired;

Repaired RepairText(const std::string& bytes)
{
    return repair::Repair(source::ReadText(bytes), [](check::Findings&) {});
}

std::string Sample()
{
    return tool::ReadWholeFile(std::string(SourceDir()) + "/samples/character.json").bytes;
}

/// Gives the text with each `from` replaced by `to`.
std::string Replace(std::string text, const std::string& from, const std::string& to)
{
    bool isFound = false;
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    {
        text.replace(at, from.size(), to);
        isFound = true;
    }
    EXPECT_TRUE(isFound) << from;
    return text;
}

/// A mistake in the sample that has one answer: the right text and the wrong one.
using Mistakes = std::vector<std::pair<std::string, std::string>>;

Mistakes OneAnswer()
{
    return {{"\"id\": 254213878", "\"id\": 7"},               // not the CRC
            {"\"parameter\": 254213878", "\"parameter\": 7"}, // conditions follow
            {"\"parameter\": 2971444007", "\"parameter\": \"armed\""},
            {"\"target\": 1012", "\"target\": \"Run\""},
            {"\"entryTarget\": 2010", "\"entryTarget\": \"2010\""},
            {"\"substateRoot\": 1000", "\"substateRoot\": \"Locomotion\""},
            {"\"children\": [2090]", "\"children\": [\"SheatheWeapon\"]"},
            {"\"id\": 1523721793, ", ""},
            {"\"id\": 538973511", "\"id\": 0"},
            {"\"id\": 3483019650", "\"id\": \"busy\""},
            {"\"source\": 1010, \"target\": 1011", "\"source\": 1012, \"target\": 1011"},
            {"\"id\": 1011, \"parentId\": 1000", "\"id\": 1011, \"parentId\": 2000"},
            {"\"id\": 2110, \"parentId\": 2011", "\"id\": 2110"},
            {"\"id\": 2101, \"parentId\": 2011", "\"id\": 2101, \"parentId\": 0"}, // an enter node
            {"\"children\": [1021, 1022]", "\"children\": [1021]"},
            {"\"children\": [1023]", "\"children\": []"},
            {"\"children\": [5001, 5002]", "\"children\": [5001]"}, // of the global node
            {"\"builder\": \"animClip\", \"children\": [5011]", "\"builder\": \"animClip\""}};
}

/// The text without white space outside of strings.
std::string Compact(const std::string& text)
{
    std::string compact;
    bool isString = false;
    for (const char c : text)
    {
        isString = isString != (c == '"');
        compact += isString || (c != ' ' && c != '\n') ? std::string(1, c) : "";
    }
    return compact;
}

/// The text with a line per member and element.
std::string Spread(const std::string& text)
{
    std::string spread;
    std::string indent = "\n";
    bool isString = false;
    for (const char c : Compact(text))
    {
        isString = isString != (c == '"');
        if (!isString && (c == '}' || c == ']'))
        {
            indent.pop_back();
            spread += indent;
        }
        spread += c;
        if (!isString && (c == '{' || c == '['))
        {
            indent += "\t";
        }
        spread += !isString && c == ':' ? " " : "";
        spread += !isString && (c == '{' || c == '[' || c == ',') ? indent : "";
    }
    return spread;
}

std::size_t CountErrors(const std::string& bytes)
{
    const check::Findings findings = check::CheckDocument(source::ReadText(bytes));
    return static_cast<std::size_t>(
        std::count_if(findings.list.begin(), findings.list.end(),
                      [](const check::Finding& finding)
                      {
                          return check::GetEntry(finding.code).severity == check::Severity::Error;
                      }));
}

std::vector<source::Span> ScalarSpans(const source::Value& value)
{
    std::vector<source::Span> spans;
    if (!value.IsArray() && !value.IsObject())
    {
        spans.push_back(value.span);
    }
    for (const source::Member& member : value.members)
    {
        const std::vector<source::Span> inner = ScalarSpans(member.value);
        spans.insert(spans.end(), inner.begin(), inner.end());
    }
    for (const source::Value& element : value.elements)
    {
        const std::vector<source::Span> inner = ScalarSpans(element);
        spans.insert(spans.end(), inner.begin(), inner.end());
    }
    return spans;
}

/// Applies a unified diff, as `patch` does, and gives the result; checks each line that it has.
std::string Patch(const std::string& before, const std::string& diff)
{
    std::istringstream in(diff);
    std::string line;
    std::vector<std::string> old;
    for (std::size_t at = 0; at < before.size();)
    {
        const std::size_t end = std::min(before.find('\n', at), before.size() - 1) + 1;
        old.push_back(before.substr(at, end - at));
        at = end;
    }
    std::string result;
    char mark = ' '; // of the line before
    std::size_t done = 0;
    while (std::getline(in, line))
    {
        if (line.substr(0, 3) == "@@ ")
        {
            const bool isEmpty = line.find(",0 +") != std::string::npos;
            const std::size_t first = std::stoul(line.substr(4)) - (isEmpty ? 0 : 1);
            for (; done < first; ++done)
            {
                result += old.at(done);
            }
        }
        else if (line[0] == '\\')
        {
            result.erase(mark == '-' ? result.size() : result.size() - 1);
        }
        else if (line.substr(0, 4) != "--- " && line.substr(0, 4) != "+++ ")
        {
            mark = line[0];
            result += mark == '-' ? "" : line.substr(1) + "\n";
            if (line[0] != '+')
            {
                EXPECT_EQ(old.at(done).substr(0, line.size() - 1), line.substr(1));
                ++done;
            }
        }
    }
    for (; done < old.size(); ++done)
    {
        result += old[done];
    }
    return result;
}

} // namespace

TEST(Repair, WritesWhatHasOneAnswerAndKeepsTheRestByteForByte)
{
    const std::string sample = Sample();
    std::string wrong = sample;
    for (const auto& [right, mistake] : OneAnswer())
    {
        wrong = Replace(wrong, right, mistake);
    }
    EXPECT_EQ(RepairText(wrong).bytes, sample);
    EXPECT_EQ(RepairText(Compact(wrong)).bytes, Compact(sample));
    EXPECT_EQ(layout::LayOut(source::ReadText(RepairText(Spread(wrong)).bytes)), sample);
    EXPECT_EQ(RepairText(sample).edits, 0u);
}

TEST(Repair, WritesEachMistakeThatHasOneAnswerByItself)
{
    const std::string sample = Sample();
    Mistakes mistakes = OneAnswer();
    mistakes.erase(mistakes.begin() + 1); // cannot be told by itself: no parameter has the id 7
    mistakes.erase(mistakes.begin());     // its conditions have the right id
    for (const auto& [right, mistake] : mistakes)
    {
        const std::string wrong = Replace(sample, right, mistake);

        const Repaired repaired = RepairText(wrong);

        EXPECT_EQ(repaired.bytes, sample) << mistake;
        EXPECT_GE(repaired.edits, 1u) << mistake;
    }
}

TEST(Repair, PutsALoneChildIntoAList)
{
    const std::string sample = Sample();

    for (const std::string mistake : {"1020", "\"1020\"", "\"StandToWalk\""})
    {
        const std::string wrong =
            Replace(sample, "\"children\": [1020]", "\"children\": " + mistake);

        EXPECT_EQ(RepairText(wrong).bytes, sample) << mistake;
    }
}

TEST(Repair, WritesAMemberOfASpreadObjectOnALineOfItsOwn)
{
    const std::string spread = Spread(Sample());
    const std::string wrong = Replace(
        Replace(spread, "\"id\": 2110,\n\t\t\t\t\t\"parentId\": 2011,", "\"id\": 2110,"),
        "[\n\t\t\t\t\t\t1021,\n\t\t\t\t\t\t1022\n\t\t\t\t\t]", "[\n\t\t\t\t\t\t1021\n\t\t\t\t\t]");

    EXPECT_EQ(RepairText(wrong).bytes, spread);
}

TEST(Repair, LeavesWhatHasMoreThanOneAnswer)
{
    const std::string sample = Sample();
    const Mistakes mistakes = {
        {"\"target\": 1012", "\"target\": 1013"},               // no such node
        {"\"children\": [1023]", "\"children\": [1023, 1022]"}, // two lists
        {"\"name\": \"Run\", \"id\": 1012", "\"name\": \"Run\", \"id\": 1011"},
        {"\"operator\": \"range\"", "\"operator\": \"between\""}};
    for (const auto& [right, mistake] : mistakes)
    {
        const std::string wrong = Replace(sample, right, mistake);

        const Repaired repaired = RepairText(wrong);

        EXPECT_THAT(repaired.bytes, testing::HasSubstr(mistake));
        EXPECT_LE(CountErrors(repaired.bytes), CountErrors(wrong)) << mistake;
    }
}

TEST(Repair, LeavesATextThatIsNotJson)
{
    const std::string broken = "{\"parameters\": [{\"name\": \"speed\", \"id\": 7}";

    EXPECT_EQ(RepairText(broken).edits, 0u);
    EXPECT_EQ(RepairText(broken).bytes, broken);
}

TEST(Repair, EndsAndAddsNoErrorForRandomMistakes)
{
    const std::string sample = Sample();
    std::size_t repairs = 0;
    for (unsigned int seed = 0; seed < 60; ++seed)
    {
        std::mt19937 random(seed);
        std::string wrong = sample;
        for (unsigned long count = random() % 6 + 1; count != 0; --count)
        {
            const source::Text text = source::ReadText(wrong);
            const std::vector<source::Span> spans = ScalarSpans(text.root);
            const source::Span from = spans[random() % spans.size()];
            const source::Span to = spans[random() % spans.size()];
            wrong.replace(
                to.begin.offset, to.end.offset - to.begin.offset,
                text.bytes.substr(from.begin.offset, from.end.offset - from.begin.offset));
        }
        const Repaired repaired = RepairText(wrong);
        repairs += repaired.edits;

        EXPECT_EQ(RepairText(repaired.bytes).edits, 0u) << "seed " << seed;
        EXPECT_LE(CountErrors(repaired.bytes), CountErrors(wrong)) << "seed " << seed;
    }
    EXPECT_GT(repairs, 10u);
}

TEST(LineDiff, ShowsThreeLinesAroundEachChange)
{
    EXPECT_EQ(repair::UnifiedDiff("a.json", "1\n2\n3\n4\n5\n6\n7\n", "1\n2\n3\n4\nfive\n6\n7\n"),
              "--- a.json\n+++ a.json\n@@ -2,6 +2,6 @@\n 2\n 3\n 4\n-5\n+five\n 6\n 7\n");
    EXPECT_EQ(repair::UnifiedDiff("a", "1\n", "1"),
              "--- a\n+++ a\n@@ -1 +1 @@\n-1\n+1\n\\ No newline at end of file\n");
    EXPECT_EQ(repair::UnifiedDiff("a", "", "1\n2\n"), "--- a\n+++ a\n@@ -0,0 +1,2 @@\n+1\n+2\n");
    EXPECT_EQ(repair::UnifiedDiff("a", "same\n", "same\n"), "");
}

TEST(LineDiff, LeadsFromOneTextToTheOther)
{
    for (unsigned int seed = 0; seed < 2000; ++seed)
    {
        std::mt19937 random(seed);
        const auto write = [&random]
        {
            std::string text;
            for (unsigned long count = random() % 30; count != 0; --count)
            {
                text += std::string(1, static_cast<char>('a' + random() % 4)) + "\n";
            }
            return text + (random() % 3 == 0 ? "end" : "");
        };
        const std::string before = write();
        const std::string after = write();

        ASSERT_EQ(Patch(before, repair::UnifiedDiff("a", before, after)), after) << seed;
    }
}

TEST(VellCheckFix, WritesTheFileAndChecksTheResult)
{
    const Folder folder;
    const std::string wrong = Replace(Sample(), "\"id\": 538973511", "\"id\": 12");
    const std::string path = folder.Write("a.json", wrong);

    const Outcome outcome = CallVell({"check", "--fix", path});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.errors, path + ": fixed 1 place\n");
    EXPECT_THAT(outcome.out, testing::Not(testing::HasSubstr("538973511")));
    EXPECT_EQ(folder.Read("a.json"), Sample());
}

TEST(VellCheckFix, ShowsADiffAndWritesNothingInADryRun)
{
    const Folder folder;
    const std::string wrong = Replace(Sample(), "\"id\": 538973511", "\"id\": 12");
    const std::string path = folder.Write("a.json", wrong);
    const std::string right = folder.Write("b.json", Sample());

    const Outcome outcome = CallVell({"check", "--fix", "--dry-run", path, right});
    const Outcome nothing = CallVell({"check", "--fix", "--dry-run", right});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, repair::UnifiedDiff(path, wrong, Sample()));
    EXPECT_EQ(folder.Read("a.json"), wrong);
    EXPECT_EQ(nothing.code, tool::ExitWell);
    EXPECT_EQ(nothing.out + nothing.errors, "");
}

TEST(VellCheckFix, ShowsInADryRunWhyATextIsNotJson)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", "{\"a\": 1,}");

    const Outcome outcome = CallVellAsIs({"check", "--fix", "--dry-run", path});

    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find(path + ":1:8: error VELL004: trailing comma"), std::string::npos)
        << outcome.out;
}

TEST(VellCheckFix, LeavesWhatIsAllowed)
{
    const Folder folder;
    const std::string wrong = Replace(Sample(), "\"id\": 538973511", "\"id\": 12");
    const std::string path = folder.Write("a.json", wrong);

    CallVell({"check", "--fix", "--allow", "VELL055,VELL092", path});

    EXPECT_EQ(folder.Read("a.json"), wrong);
}

TEST(VellCheckFix, RefusesStandardInputAndADryRunOfNothing)
{
    EXPECT_EQ(CallVell({"check", "--fix", "-"}).code, tool::ExitUsage);
    EXPECT_EQ(CallVell({"check", "--dry-run", "a.json"}).code, tool::ExitUsage);
}

} // namespace vell::test
