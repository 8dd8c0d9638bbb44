// VELL: data-driven hierarchical state machines.
// tests/tools/StatsCommandTest.cpp: what vell stats counts and measures.
#include <vell/Types.h>

#include "tests/tools/CommandRun.h"
#include "tools/source/Reader.h"
#include "tools/stats/LoadCost.h"
#include "tools/stats/Statistics.h"
#include "tools/vell/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

stats::MemoryNeed NeedOf(const std::string& text)
{
    return stats::MeasureMemory(source::ReadText(text));
}

DocumentBuilder WithMemory(DocumentBuilder builder, std::uint64_t memory)
{
    builder.Head().Set(JSON_HeadMemory, static_cast<unsigned int>(memory));
    return builder;
}

} // namespace

TEST(Statistics, CountNodesLevelsParametersConditionsAndAttributes)
{
    DocumentBuilder builder = Walker();
    builder.Node(
        Generic("Deep", 60, {}, 12).Set(JSON_Attributes, Json::Array({Attribute("a", "int", 1)})));

    const stats::Counts counts = stats::Count(source::ReadText(builder.Text()));

    EXPECT_EQ(counts.bytes, builder.Text().size());
    EXPECT_EQ(counts.layers, 1u);
    EXPECT_EQ(counts.nodes, 14u);
    EXPECT_EQ(counts.builders, (stats::Tally{{"transition", 5},
                                             {"generic", 4},
                                             {"exit", 2},
                                             {"enter", 1},
                                             {"global", 1},
                                             {"substate", 1}}));
    EXPECT_EQ(counts.depth, 3u);
    EXPECT_EQ(counts.parameters, 3u);
    EXPECT_EQ(counts.parameterTypes, (stats::Tally{{"bool", 1}, {"float", 1}, {"message", 1}}));
    EXPECT_EQ(counts.conditions, 6u);
    EXPECT_EQ(counts.attributes, 1u);
}

TEST(Statistics, EndAtACycleOfParents)
{
    DocumentBuilder builder;
    builder.Node(Generic("A", 1, {}, 2)).Node(Generic("B", 2, {}, 1)).Node(Generic("C", 3, {}, 3));

    EXPECT_EQ(stats::Count(source::ReadText(builder.Text())).depth, 2u);
}

TEST(LoadCost, IsTheSmallestMemoryInWhichEveryStateCanBeEntered)
{
    const stats::MemoryNeed need = NeedOf(Walker().Text());
    ASSERT_TRUE(need.loads);
    EXPECT_GT(need.complete, need.loaded);
    const Folder folder;
    const auto run = [&folder](std::uint64_t memory)
    {
        // Enters every state of the document but enter and exit nodes.
        const std::string path = folder.Write("a.json", WithMemory(Walker(), memory).Text());
        const std::string script =
            folder.Write("a.script", "tick\nset speed 2\ntick 2\nset hit true\ntick 2\n");
        return CallVell({"run", path, "--script", script});
    };

    EXPECT_EQ(run(need.Units()).code, tool::ExitWell);
    EXPECT_EQ(run(need.loaded / stats::kBytesPerUnit - 1).code, tool::ExitFailed);
    EXPECT_EQ(run(need.Units()).out, run(need.Units() + 1000).out);
}

TEST(LoadCost, DoesNotDependOnWhatTheHeadDeclares)
{
    const std::uint64_t complete = NeedOf(Walker().Text()).complete;
    DocumentBuilder none = Walker();
    none.Head().Remove(JSON_HeadMemory);

    EXPECT_EQ(NeedOf(WithMemory(Walker(), 1).Text()).complete, complete);
    EXPECT_EQ(NeedOf(WithMemory(Walker(), 2000000).Text()).complete, complete);
    EXPECT_EQ(NeedOf(none.Text()).complete, complete);
}

TEST(VellStats, PrintsALinePerFigure)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", WithMemory(Walker(), 10).Text());

    const Outcome outcome = CallVell({"stats", path});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(
        outcome.out,
        MatchesPattern(
            ".*/a.json\n"
            "text +2,[0-9]+  bytes\n"
            "nodes               13  in 1 layer, 2 levels deep\n"
            "  transition         5\n"
            "  generic            3\n"
            "  exit               2\n"
            "  enter              1\n"
            "  global             1\n"
            "  substate           1\n"
            "parameters           3  bool 1, float 1, message 1\n"
            "conditions           6\n"
            "attributes           0\n"
            "memory              10  declared, which is too little\n"
            "  needed +[0-9]+  [0-9,]+ bytes with every state entered, [0-9,]+ after loading\n"
            "load +[0-9.]+ ms  [0-9.]+ times the parse alone, [0-9.]+ ms\n"));
}

TEST(VellStats, ShowsWhatTheCheckFindsAndFails)
{
    const Folder folder;
    DocumentBuilder builder = Walker();
    builder.Node(Generic("Deep", 60).Set(JSON_BuilderType, "state"));
    const std::string path = folder.Write("a.json", builder.Text());

    const Outcome checked = CallVellAsIs({"stats", path});
    const Outcome unchecked = CallVell({"stats", path});

    EXPECT_EQ(checked.code, tool::ExitFailed);
    EXPECT_THAT(checked.errors, testing::HasSubstr("error VELL040: unknown builder 'state'"));
    EXPECT_THAT(checked.out, testing::HasSubstr("nodes               14"));
    EXPECT_EQ(unchecked.code, tool::ExitFailed);
    EXPECT_EQ(unchecked.errors, "");
    EXPECT_EQ(unchecked.out, checked.out);
    EXPECT_THAT(unchecked.out, testing::HasSubstr("the need is unknown: 13 of 14 nodes are lost"));
}

TEST(VellStats, ShowsTheWarningsOfTheCheckWhenAsked)
{
    const Folder folder;
    DocumentBuilder builder;
    builder.Start(10).Node(Generic("Stand", 10));
    const std::string path = folder.Write("a.json", WithMemory(builder, 1000000).Text());

    EXPECT_THAT(CallVellAsIs({"stats", path, "-W"}).errors,
                testing::HasSubstr("warning VELL151: memory 1000000"));
    EXPECT_EQ(CallVellAsIs({"stats", path}).errors, "");
}

TEST(VellStats, CountsAPlainNodeForOneThatOnlyAHostCanBuild)
{
    const std::uint64_t without = NeedOf(Walker().Text()).complete;
    DocumentBuilder plain = Walker();
    plain.Node(Generic("Deep", 60));
    DocumentBuilder hosted = Walker();
    hosted.Node(Generic("Deep", 60).Set(JSON_BuilderType, "1000"));

    const stats::MemoryNeed need = NeedOf(hosted.Text());

    EXPECT_EQ(need.losses, "");
    EXPECT_GT(need.complete, without);
    EXPECT_LE(need.complete, NeedOf(plain.Text()).complete);
}

TEST(VellStats, WritesJsonForPrograms)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());

    const Outcome outcome = CallVell({"stats", path, "--format", "json"});

    EXPECT_EQ(outcome.code, tool::ExitWell);
    const source::Text text = source::ReadText(outcome.out);
    ASSERT_TRUE(text.parsed);
    std::string names;
    for (const source::Member& member : text.root.members)
    {
        names += member.name + " ";
    }
    EXPECT_EQ(names, "document bytes layers nodes builders depth parameters parameterTypes "
                     "conditions attributes loads memory loadMilliseconds parseMilliseconds ");
}

TEST(VellStats, CountsADocumentThatDoesNotLoadAndFails)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().LeaveOut(JSON_Head).Text());

    const Outcome outcome = CallVell({"stats", path});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_THAT(outcome.out, testing::HasSubstr("nodes               13"));
    EXPECT_THAT(outcome.out,
                testing::EndsWith("the need is unknown: the document does not load\n"));
}

} // namespace vell::test
