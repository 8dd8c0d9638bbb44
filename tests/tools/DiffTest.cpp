// VELL: data-driven hierarchical state machines.
// tests/tools/DiffTest.cpp: what vell diff finds, and that it misses nothing.
#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SourceDir.h"
#include "tests/tools/CommandRun.h"
#include "tools/diff/Difference.h"
#include "tools/diff/DifferenceText.h"
#include "tools/source/Reader.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/DocumentFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace vell::test
{
namespace
{

using diff::Change;
using diff::Difference;
using diff::Subject;
using testing::HasSubstr;

/// A document in pieces that a test changes.
struct Pieces
{
    JsonObject head;
    std::vector<JsonObject> parameters = {FloatParameter("speed", 0.0),
                                          BoolParameter("hit", false)};
    std::vector<std::string> layers = {"Base", "More"};
    std::vector<JsonObject> base = {
        Substate("Ground", 10, 20, 21, {102}),
        Enter("In", 20, 11, 10),
        Exit("Out", 21, 10),
        Clip("Stand", 11, "stand", {100, 103}, 10),
        Clip("Walk", 12, "walk", {101}, 10),
        Transition("ToWalk", 100, 11, 12, {FloatCondition("speed", EvaluateGreater, 0.5)}),
        Transition("ToStand", 101, 12, 11, {FloatCondition("speed", EvaluateLess, 0.5)}),
        Transition("Fall", 102, 10, 30, {BoolCondition("hit", true)}),
        Transition("Sit", 103, 11, 12, {BoolCondition("hit", true)})};
    std::vector<JsonObject> more = {Generic("Air", 30), Generic("Sky", 31, {}, 30)};

    std::string Text() const
    {
        DocumentBuilder builder;
        builder.Start(10);
        for (const JsonObject& parameter : parameters)
        {
            builder.Parameter(parameter);
        }
        builder.Layer(layers[0]);
        for (const JsonObject& node : base)
        {
            builder.Node(node);
        }
        builder.Layer(layers[1]);
        for (const JsonObject& node : more)
        {
            builder.Node(node);
        }
        return builder.Text();
    }
};

diff::DocumentModel Model(const std::string& bytes)
{
    return diff::ReadModel(source::ReadText(bytes).root);
}

std::string Diff(const std::string& before, const std::string& after)
{
    return diff::ToText(diff::Compare(Model(before), Model(after)));
}

/// Gives a text for each difference that is the same for the swapped documents, swapped again.
Lines Sides(const std::vector<Difference>& differences, bool isSwapped)
{
    const auto swapped = [isSwapped](Change change)
    {
        const bool isEnd = change == Change::Added || change == Change::Removed;
        return isEnd && isSwapped ? (change == Change::Added ? Change::Removed : Change::Added)
                                  : change;
    };
    Lines lines;
    for (const Difference& difference : differences)
    {
        std::string line = std::to_string(static_cast<int>(difference.subject)) + " " +
                           std::to_string(static_cast<int>(swapped(difference.change)));
        if (difference.change != Change::Changed)
        {
            line += difference.name + std::to_string(difference.id) + difference.description;
        }
        Lines details;
        for (const diff::Detail& detail : difference.details)
        {
            details.push_back("\n  " + std::to_string(static_cast<int>(swapped(detail.change))) +
                              detail.what + "|" + (isSwapped ? detail.after : detail.before) + "|" +
                              (isSwapped ? detail.before : detail.after));
        }
        std::sort(details.begin(), details.end());
        for (const std::string& detail : details)
        {
            line += detail;
        }
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::string ReadSample(const std::string& name)
{
    return tool::ReadWholeFile(std::string(SourceDir()) + "/samples/" + name).bytes;
}

void CollectScalars(const source::Value& value, std::vector<const source::Value*>* scalars)
{
    if (!value.IsArray() && !value.IsObject())
    {
        scalars->push_back(&value);
    }
    for (const source::Member& member : value.members)
    {
        CollectScalars(member.value, scalars);
    }
    for (const source::Value& element : value.elements)
    {
        CollectScalars(element, scalars);
    }
}

std::vector<const source::Value*> ScalarsOf(const source::Text& text)
{
    std::vector<const source::Value*> scalars;
    CollectScalars(text.root, &scalars);
    return scalars;
}

/// Gives the text with another value of the same kind in the place of `value`.
std::string WithAnother(const source::Text& text, const source::Value& value)
{
    std::string bytes = text.bytes;
    const std::size_t begin = value.span.begin.offset;
    const std::size_t end = value.span.end.offset;
    if (value.IsBool())
    {
        return bytes.replace(begin, end - begin, value.boolean ? "false" : "true");
    }
    return bytes.insert(value.IsString() ? end - 1 : end, "1");
}

/// Escapes the underscores that a temporary folder may have in its name.
std::string InMarkdown(const std::string& path)
{
    std::string text;
    for (const char c : path)
    {
        text += c == '_' ? "\\_" : std::string(1, c);
    }
    return text;
}

} // namespace

TEST(Diff, SaysWhatWasAddedRemovedAndChanged)
{
    struct Case
    {
        std::function<void(Pieces&)> edit;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {[](Pieces&) {}, ""},
        {[](Pieces& after)
         {
             after.base[5].Set(JSON_TransitionPriority, 3);
         },
         "transitions\n"
         "  ~ ToWalk (100): Stand (11) \xE2\x86\x92 Walk (12)\n"
         "      ~ priority 5 (default) \xE2\x86\x92 3\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[5].Set(JSON_TransitionPriority, 5);
         },
         ""},
        {[](Pieces& after)
         {
             after.base[5].Set(JSON_TransitionSwitchArgument, 0);
         },
         ""},
        {[](Pieces& after)
         {
             after.base[4].Set(JSON_ClipName, "run").Remove(JSON_ClipFlag);
         },
         "states\n"
         "  ~ Walk (12)\n"
         "      ~ clipName \"walk\" \xE2\x86\x92 \"run\"\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[4].Set(JSON_ParentID, 30);
         },
         "states\n"
         "  ~ Walk (12)\n"
         "      ~ moved from Ground (10) to Air (30)\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[4].Remove(JSON_ParentID);
         },
         "states\n"
         "  ~ Walk (12)\n"
         "      ~ moved from Ground (10) to the top level\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.more.push_back(after.base[4]);
             after.base.erase(after.base.begin() + 4);
         },
         "states\n"
         "  ~ Walk (12)\n"
         "      ~ moved from layer Base to layer More\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.layers[1] = "Rest";
         },
         "layers\n"
         "  ~ Rest\n"
         "      ~ name More \xE2\x86\x92 Rest\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             std::swap(after.base[3], after.base[4]);
         },
         "layers\n"
         "  ~ Base\n"
         "      ~ order of the nodes\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[5] = Transition("ToWalk", 100, 11, 12, {BoolCondition("hit", true)});
         },
         "transitions\n"
         "  ~ ToWalk (100): Stand (11) \xE2\x86\x92 Walk (12)\n"
         "      ~ condition speed greater 0.5 \xE2\x86\x92 hit equal true\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[5] = Transition(
                 "ToWalk", 100, 11, 12,
                 {BoolCondition("hit", true), FloatCondition("speed", EvaluateGreater, 0.75)});
         },
         "transitions\n"
         "  ~ ToWalk (100): Stand (11) \xE2\x86\x92 Walk (12)\n"
         "      ~ condition speed greater 0.5 \xE2\x86\x92 speed greater 0.75\n"
         "      + condition hit equal true\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[5] = Transition("ToWalk", 100, 11, 12);
         },
         "transitions\n"
         "  ~ ToWalk (100): Stand (11) \xE2\x86\x92 Walk (12)\n"
         "      - condition speed greater 0.5\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[3].Set(JSON_Attributes, Json::Array({Attribute("blend", "double", 0.25)}));
         },
         "states\n"
         "  ~ Stand (11)\n"
         "      + attribute blend double 0.25\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[3].Set(JSON_Children, Json::Array(Ids{103, 100}));
         },
         "states\n"
         "  ~ Stand (11)\n"
         "      ~ order of the children: ToWalk (100), Sit (103) \xE2\x86\x92 Sit (103), ToWalk "
         "(100)\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[3].Set(JSON_Children, Json::Array(Ids{100, 99}));
         },
         "states\n"
         "  ~ Stand (11)\n"
         "      + child #99 (no such node)\n"
         "      - child Sit (103)\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[3].Set(JSON_Children, Json::Array(Ids{100}));
             after.base.pop_back();
         },
         "transitions\n"
         "  - Sit (103): Stand (11) \xE2\x86\x92 Walk (12), when hit equal true\n"
         "1 removed\n"},
        {[](Pieces& after)
         {
             after.base[4] = Clip("Walk", 77, "walk", {101}, 10);
             after.base[5].Set(JSON_TransitionTarget, 77);
             after.base[6].Set(JSON_TransitionSource, 77);
             after.base[8].Set(JSON_TransitionTarget, 77);
         },
         "states\n"
         "  ~ Walk (77)\n"
         "      ~ id 12 \xE2\x86\x92 77\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.base[6].Set(JSON_TransitionTarget, 99);
         },
         "transitions\n"
         "  ~ ToStand (101): Walk (12) \xE2\x86\x92 #99 (no such node)\n"
         "      ~ target Stand (11) \xE2\x86\x92 #99 (no such node)\n"
         "1 changed\n"},
        {[](Pieces& after)
         {
             after.more.push_back(Clip("Roll", 40, "roll", {}, 30));
         },
         "states\n"
         "  + Roll (40): animClip in Air (30), layer More, clipName \"roll\"\n"
         "1 added\n"},
        {[](Pieces& after)
         {
             after.parameters[0].Set(JSON_ParameterDefault, 1.5).Set(JSON_ParameterAssign, "host");
             after.parameters[1] = MessageParameter("halt", "now");
             after.base[7].Set(JSON_TransitionUnread, "x");
         },
         "parameters\n"
         "  ~ speed (254213878)\n"
         "      ~ default 0.0 \xE2\x86\x92 1.5\n"
         "      + assign \"host\"\n"
         "  + halt (149106793): parameterType \"message\", default \"now\"\n"
         "  - hit (1523721793): parameterType \"bool\", default false\n"
         "transitions\n"
         "  ~ Fall (102): Ground (10) \xE2\x86\x92 Air (30)\n"
         "      + unread \"x\"\n"
         "      ~ condition hit equal true \xE2\x86\x92 #1523721793 (no such parameter) equal "
         "true\n"
         "  ~ Sit (103): Stand (11) \xE2\x86\x92 Walk (12)\n"
         "      ~ condition hit equal true \xE2\x86\x92 #1523721793 (no such parameter) equal "
         "true\n"
         "1 added, 1 removed, 3 changed\n"}};
    const std::string before = Pieces().Text();
    for (const Case& one : cases)
    {
        Pieces after;
        one.edit(after);

        EXPECT_EQ(Diff(before, after.Text()), one.expected);
    }
}

TEST(Diff, SaysWhatChangedInTheHeadTheSkeletonAndUnknownMembers)
{
    DocumentBuilder before;
    before.Start(10).Node(Generic("A", 10)).Node(Generic("B", 11));
    DocumentBuilder after = before;
    after.Head().Set(JSON_HeadMemory, 99).Set(JSON_HeadSubstateRoot, 11).Remove(JSON_GUID);
    after.Skeleton(JsonObject().Set(JSON_ModelFileName, "hero.mdl"));
    after.Root().Set("editor", Json::Raw("{\"zoom\": [1, 2.50]}"));

    EXPECT_EQ(Diff(before.Text(), after.Text()), "head\n"
                                                 "  ~ memory 16384 \xE2\x86\x92 99\n"
                                                 "  ~ substateRoot A (10) \xE2\x86\x92 B (11)\n"
                                                 "  - guid \"guid-of-the-test\"\n"
                                                 "skeleton\n"
                                                 "  + modelFile \"hero.mdl\"\n"
                                                 "other members\n"
                                                 "  + editor {\"zoom\": [1, 2.50]}\n"
                                                 "2 added, 1 removed, 2 changed\n");
}

TEST(Diff, SeesEveryOtherValueOfTheSamples)
{
    for (const char* name : {"locomotion.json", "character.json"})
    {
        const source::Text text = source::ReadText(ReadSample(name));
        const diff::DocumentModel before = diff::ReadModel(text.root);
        const std::vector<const source::Value*> scalars = ScalarsOf(text);
        EXPECT_GT(scalars.size(), 200u) << name;
        for (const source::Value* value : scalars)
        {
            const diff::DocumentModel after = Model(WithAnother(text, *value));

            EXPECT_FALSE(diff::Compare(before, after).empty())
                << name << ":" << value->span.begin.line << ":" << value->span.begin.column;
        }
    }
}

TEST(Diff, OfADocumentWithItselfIsEmptyAndMirrorsTheDiffOfSwappedDocuments)
{
    const std::string original =
        tool::ReadWholeFile(std::string(SourceDir()) + "/tests/data/character.json").bytes;
    for (unsigned int seed = 0; seed < 150; ++seed)
    {
        std::mt19937 random(seed);
        std::string bytes = original;
        for (unsigned int count = random() % 8 + 1; count != 0; --count)
        {
            const source::Text text = source::ReadText(bytes);
            const std::vector<const source::Value*> scalars = ScalarsOf(text);
            const source::Value& from = *scalars[random() % scalars.size()];
            const source::Value& to = *scalars[random() % scalars.size()];
            bytes.replace(to.span.begin.offset, to.span.end.offset - to.span.begin.offset,
                          text.bytes.substr(from.span.begin.offset,
                                            from.span.end.offset - from.span.begin.offset));
        }
        const diff::DocumentModel before = Model(original);
        const diff::DocumentModel after = Model(bytes);

        EXPECT_EQ(diff::ToText(diff::Compare(after, after)), "") << "seed " << seed;
        EXPECT_EQ(Sides(diff::Compare(before, after), false),
                  Sides(diff::Compare(after, before), true))
            << "seed " << seed;
    }
}

TEST(VellDiff, EndsWithZeroWithoutAndOneWithDifferences)
{
    const Folder folder;
    const std::string before = folder.Write("a.json", Pieces().Text());
    Pieces pieces;
    pieces.base[5].Set(JSON_TransitionPriority, 3);
    const std::string after = folder.Write("b.json", pieces.Text());

    const Outcome same = CallVell({"diff", before, before});
    const Outcome other = CallVell({"diff", before, after});

    EXPECT_EQ(same.code, tool::ExitWell);
    EXPECT_EQ(same.out + same.errors, "");
    EXPECT_EQ(other.code, tool::ExitFailed);
    EXPECT_EQ(other.out, "transitions\n"
                         "  ~ ToWalk (100): Stand (11) \xE2\x86\x92 Walk (12)\n"
                         "      ~ priority 5 (default) \xE2\x86\x92 3\n"
                         "1 changed\n");
    EXPECT_EQ(other.errors, "");
}

TEST(VellDiff, TakesNumbersForEqualThatTheLibraryReadsAsEqual)
{
    const Folder folder;
    const std::string sample =
        tool::ReadWholeFile(std::string(SourceDir()) + "/tests/data/character.json").bytes;
    const std::string before = folder.Write("a.json", sample);
    struct Case
    {
        const char* old;
        const char* now;
        const char* shown; ///< a piece of what is printed; empty when there is no difference
    };
    const std::vector<Case> cases = {
        {"\"default\": 0.0", "\"default\": 0", ""},
        {"\"value\": 3.0}", "\"value\": 3}", ""},
        {"\"3,9\"", "\"3, 9\"", ""},
        {"\"0,0\"", "\"0, 0\"", ""},
        {"\"3,9\"", "\"3,8\"", "~ condition combo range \"3,9\" \u2192 combo range \"3,8\""},
        {"\"default\": 0}", "\"default\": 0.0}", "~ default 0 \u2192 0.0"},
        {"\"name\": \"combo less\"", "\"name\": \"c2\"", "~ condition name combo less \u2192 c2\n"},
    };
    for (const Case& one : cases)
    {
        std::string changed = sample;
        const std::size_t at = changed.find(one.old);
        ASSERT_NE(at, std::string::npos) << one.old;
        changed.replace(at, std::string(one.old).size(), one.now);

        const Outcome outcome = CallVell({"diff", before, folder.Write("b.json", changed)});

        EXPECT_EQ(outcome.out.empty(), std::string(one.shown).empty()) << outcome.out;
        EXPECT_NE(outcome.out.find(one.shown), std::string::npos) << outcome.out;
    }
}

TEST(VellDiff, WritesMarkdownForAReview)
{
    const Folder folder;
    const std::string before = folder.Write("a.json", Pieces().Text());
    Pieces pieces;
    pieces.base[4].Set(JSON_ClipName, "walk_*");
    pieces.more.pop_back();
    const std::string after = folder.Write("b.json", pieces.Text());

    const Outcome other = CallVell({"diff", before, after, "--format", "markdown"});
    const Outcome same = CallVell({"diff", before, before, "--format", "markdown"});

    EXPECT_EQ(other.code, tool::ExitFailed);
    EXPECT_EQ(other.out, "### " + InMarkdown(before) + " \xE2\x86\x92 " + InMarkdown(after) +
                             "\n\n1 removed, 1 changed\n\n**states**\n\n"
                             "- changed **Walk (12)**\n"
                             "  - clipName \"walk\" \xE2\x86\x92 \"walk\\_\\*\"\n"
                             "- removed **Sky (31)**: generic in Air (30), layer More\n");
    EXPECT_EQ(same.code, tool::ExitWell);
    EXPECT_EQ(same.out, "### " + InMarkdown(before) + " \xE2\x86\x92 " + InMarkdown(before) +
                            "\n\nNo differences.\n");
}

TEST(VellDiff, PrintsNoControlCharacterOfADocument)
{
    const Folder folder;
    const std::string before = folder.Write("a.json", Pieces().Text());
    Pieces pieces;
    pieces.more.push_back(Generic("Rain\x1B[2J\n", 32, {}, 30));
    const std::string after = folder.Write("b.json", pieces.Text());
    const std::string shown = "Rain\xEF\xBF\xBD[2J\xEF\xBF\xBD";

    const Outcome text = CallVell({"diff", before, after});
    const Outcome markdown = CallVell({"diff", before, after, "--format", "markdown"});

    EXPECT_EQ(text.out,
              "states\n  + " + shown + " (32): generic in Air (30), layer More\n1 added\n");
    EXPECT_THAT(markdown.out, HasSubstr("- added **Rain\xEF\xBF\xBD\\[2J\xEF\xBF\xBD (32)**: "));
}

TEST(VellDiff, WritesJsonForPrograms)
{
    const Folder folder;
    const std::string before = folder.Write("a.json", Pieces().Text());
    Pieces pieces;
    pieces.base[4].Set(JSON_ClipName, "run");
    const std::string after = folder.Write("b.json", pieces.Text());

    const Outcome other = CallVell({"diff", before, after, "--format", "json"});

    EXPECT_EQ(other.code, tool::ExitFailed);
    EXPECT_EQ(other.out, "{\n    \"before\": \"" + before + "\",\n    \"after\": \"" + after +
                             R"(",
    "differences": [
        {
            "subject": "state",
            "change": "changed",
            "name": "Walk",
            "id": 12,
            "description": "",
            "details": [
                {
                    "change": "changed",
                    "what": "clipName",
                    "before": "\"walk\"",
                    "after": "\"run\""
                }
            ]
        }
    ]
}
)");
}

TEST(VellDiff, TakesAnEmptyFileForAnEmptyDocument)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", "{\"head\": {\"id\": 7}}");

    const Outcome outcome = CallVell({"diff", folder.Write("empty.json", ""), path});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.out, "head\n  + id 7\n1 added\n");
}

TEST(VellDiff, PaintsAddedGreenRemovedRedAndChangedYellow)
{
    const Folder folder;
    const std::string before = folder.Write("a.json", "{\"head\": {\"id\": 7, \"guid\": \"a\"}}");
    const std::string after = folder.Write("b.json", "{\"head\": {\"id\": 8, \"note\": \"b\"}}");

    const Outcome painted = CallVell({"diff", before, after, "--color", "always"});

    EXPECT_EQ(painted.out, "\x1b[1mhead\x1b[0m\n"
                           "\x1b[33m  ~ id 7 \xE2\x86\x92 8\x1b[0m\n"
                           "\x1b[32m  + note \"b\"\x1b[0m\n"
                           "\x1b[31m  - guid \"a\"\x1b[0m\n"
                           "\x1b[1m1 added, 1 removed, 1 changed\x1b[0m\n");
}

#if !defined(_WIN32) // which has no pipes among the files
TEST(VellDiff, ReadsAPipeOnce)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", "{\"head\": {\"id\": 7}}");
    const std::string pipe = folder.PathOf("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer(
        [&pipe]
        {
            std::ofstream(pipe) << "{\"head\": {\"id\": 7}}";
        });

    const Outcome outcome = CallVell({"diff", pipe, path});

    writer.join();
    EXPECT_EQ(outcome.code, tool::ExitWell);
    EXPECT_EQ(outcome.out + outcome.errors, "");
}
#endif

TEST(VellDiff, SaysWhatItCannotRead)
{
    const Folder folder;
    const std::string good = folder.Write("a.json", "{}");
    const std::string broken = folder.Write("b.json", "{\"a\": }");
    const std::string comma = folder.Write("c.json", "{\"a\": 1,}");
    const std::string comment = folder.Write("d.json", "{} // a");
    const std::string none = folder.PathOf("none.json");

    const Outcome notJson = CallVell({"diff", good, broken});
    const Outcome unreadable = CallVell({"diff", none, broken});

    EXPECT_EQ(notJson.code, tool::ExitFailed);
    EXPECT_EQ(notJson.errors.substr(0, broken.size() + 11), broken + ":1:7: error");
    EXPECT_EQ(unreadable.code, tool::ExitUsage);
    EXPECT_EQ(unreadable.errors.substr(0, 13 + none.size()), "cannot read " + none + ":");
    EXPECT_EQ(CallVell({"diff", good, comma}).errors,
              comma + ":1:8: error: trailing comma is not allowed; remove it\n");
    EXPECT_EQ(CallVell({"diff", good, comma}).code, tool::ExitFailed);
    EXPECT_EQ(CallVell({"diff", comment, good}).errors,
              comment + ":1:4: error: a comment is not allowed; remove it\n");
}

} // namespace vell::test
