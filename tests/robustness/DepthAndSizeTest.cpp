// VELL: data-driven hierarchical state machines.
// tests/robustness/DepthAndSizeTest.cpp: deep and large documents, and memory that grows with them.
#include <tessel/Tessel.h>
#include <vell/HSM.h>
#include <vell/IParameterTable.h>
#include <vell/SMState.h>

#include "document/DocumentParser.h"
#include "tests/robustness/Conditions.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// What one machine took.
struct Cost
{
    int initialised = 0;
    std::size_t bytes = 0; ///< the most at one time, the document's text apart
    std::ptrdiff_t blocksLeft = 0;
};

/// Makes, starts and ticks a machine of `text`.
Cost LifeOf(const std::string& text, int ticks = 2)
{
    Cost cost;
    const HeapWatch heap;
    {
        HSM machine(text.c_str());
        cost.initialised = machine.Init();
        if (cost.initialised != 0)
        {
            machine.Start();
            for (int i = 0; i < ticks; ++i)
            {
                machine.Update(0.1f);
            }
        }
        machine.Uninit();
        machine.Destroy();
    }
    cost.bytes = heap.MostBytes();
    cost.blocksLeft = heap.BlocksKept();
    return cost;
}

/// Runs a quarter and the whole and gives the cost of the whole: four times as much takes at most
/// five times the memory, where lists that double leave some play, and a second run, which finds
/// what the process keeps for good, leaves nothing.
Cost LinearLifeOf(const std::string& quarter, const std::string& whole, int ticks = 2)
{
    const Cost small = LifeOf(quarter, ticks / 4);
    const Cost large = LifeOf(whole, ticks);
    EXPECT_LE(large.bytes, small.bytes * 5) << small.bytes << " bytes for a quarter";
    EXPECT_EQ(LifeOf(whole, ticks).blocksLeft, 0);
    testing::Test::RecordProperty("bytes", std::to_string(large.bytes));
    return large;
}

/// A document's text with one member more in its root, built as text: the builder copies its parts
/// too often for texts of this size.
std::string WithRootMember(const DocumentBuilder& builder, const std::string& member,
                           const std::string& value)
{
    std::string text = builder.Text();
    text.pop_back();
    return text + ",\"" + member + "\":" + value + "}";
}

DocumentBuilder SmallDocument(unsigned int figure)
{
    DocumentBuilder document;
    document.Start(1).GlobalNode(Global("Anywhere", 4000000000u));
    document.Head().Set(JSON_HeadMemory, figure);
    return document;
}

std::string ManyNodes(unsigned int count)
{
    DocumentBuilder document = SmallDocument(count * 8);
    for (unsigned int id = 1; id <= count; ++id)
    {
        document.Node(Generic("State", id));
    }
    return document.Text();
}

std::string ManyLayers(unsigned int count)
{
    DocumentBuilder document = SmallDocument(count * 8);
    for (unsigned int id = 1; id <= count; ++id)
    {
        document.Layer("L").Node(Generic("State", id));
    }
    return document.Text();
}

std::string ManyParameters(unsigned int count)
{
    DocumentBuilder document = SmallDocument(count * 8);
    document.Node(Generic("State", 1));
    for (unsigned int i = 0; i < count; ++i)
    {
        document.Parameter(FloatParameter("p" + std::to_string(i), 0.5));
    }
    return document.Text();
}

/// Substates 10, 20, 30 ... each of which starts the next.
std::string SubstateChain(unsigned int count)
{
    DocumentBuilder document = SmallDocument(count * 40);
    document.Start(10);
    for (unsigned int i = 1; i <= count; ++i)
    {
        document.Level("Level", i * 10, i * 10 + 10, {}, (i - 1) * 10);
    }
    document.Node(Generic("Innermost", count * 10 + 10, {}, count * 10));
    return document.Text();
}

std::string Brackets(unsigned int count, bool closed)
{
    return std::string(count, '[') + (closed ? std::string(count, ']') : std::string());
}

std::uintptr_t lowestFrame = 0;
std::uintptr_t highestFrame = 0;

/// A state-switch callback that notes how deep the call stack is.
void NoteFrame(HSM*, SMState*, SMState*, float)
{
    const volatile char here = 0;
    const auto frame = reinterpret_cast<std::uintptr_t>(&here);
    lowestFrame = lowestFrame == 0 ? frame : std::min(lowestFrame, frame);
    highestFrame = std::max(highestFrame, frame);
}

} // namespace

TEST(DeepDocument, OfAMillionBracketsFailsToLoad)
{
    const QuietLog log;
    const unsigned int count = Scaled(1000000, 500000);

    for (const bool closed : {false, true})
    {
        EXPECT_EQ(LinearLifeOf(Brackets(count / 4, closed), Brackets(count, closed)).initialised,
                  0);
    }
}

TEST(DeepDocument, OfAMillionObjectsFailsToLoad)
{
    const QuietLog log;
    std::string text;
    for (unsigned int i = 0; i < Scaled(1000000, 100000); ++i)
    {
        text += "{\"a\":";
    }

    EXPECT_EQ(LifeOf(text).initialised, 0);
}

TEST(DeepDocument, WithAMillionBracketsInAnUnknownMemberLoads)
{
    const QuietLog log;
    DocumentBuilder document = SmallDocument(1000);
    document.Node(Generic("State", 1));
    const unsigned int count = Scaled(1000000, 500000);

    const std::string small = WithRootMember(document, "unknown", Brackets(count / 4, true));
    const std::string large = WithRootMember(document, "unknown", Brackets(count, true));

    EXPECT_EQ(LinearLifeOf(small, large).initialised, 1);
}

TEST(DeepDocument, WithBracketsInPlaceOfEveryMemberIsRefusedOrRuns)
{
    const QuietLog log;
    const Json brackets = Json::Raw(Brackets(Scaled(20000, 5000), true));
    LifeOf(WholeDocument().Text());

    for (int number = 0; number < 256; ++number)
    {
        const auto member = static_cast<__JSONTYPES__>(number);
        if (GetJsonName(member) == nullptr)
        {
            continue;
        }
        DocumentBuilder inRoot = WholeDocument();
        inRoot.Root().Set(member, brackets);
        DocumentBuilder inHead = WholeDocument();
        inHead.Head().Set(member, brackets);
        DocumentBuilder inNode = WholeDocument();
        inNode.Node(Generic("More", 999).Set(member, brackets));
        DocumentBuilder inParameter = WholeDocument();
        inParameter.Parameter(FloatParameter("more", 1.0).Set(member, brackets));
        for (const DocumentBuilder& document : {inRoot, inHead, inNode, inParameter})
        {
            EXPECT_EQ(LifeOf(document.Text()).blocksLeft, 0) << GetJsonName(member);
        }
    }
}

TEST(ParserMemory, IsBoundedByTheSizeOfTheText)
{
    std::string numbers = "[";
    std::string members = "{";
    std::string deepObjects;
    for (int i = 0; i < 200000; ++i)
    {
        numbers += "1,";
        members += "\"\":1,";
        deepObjects += "{\"\":";
    }
    const std::vector<std::string> texts = {Brackets(400000, false),
                                            Brackets(400000, true),
                                            numbers + "1]",
                                            members + "\"\":1}",
                                            deepObjects,
                                            "[\"" + std::string(400000, 'x'),
                                            "[" + numbers,
                                            "\"" + std::string(400000, 'x') + "\""};
    double most = 0;

    for (const std::string& text : texts)
    {
        const HeapWatch heap;
        {
            GenericDocument document;
            ParseText(text.c_str(), document);
        }
        most = std::max(most,
                        static_cast<double>(heap.MostBytes()) / static_cast<double>(text.size()));
    }

    // A list that grows may stand twice for a moment.
    EXPECT_LT(most, 64.0);
    RecordProperty("bytes_per_byte", std::to_string(most));
}

TEST(LargeDocument, WithATextOf100MegabytesLoads)
{
    const QuietLog log;
    DocumentBuilder document = SmallDocument(1000);
    document.Node(Generic("State", 1));
    const unsigned int length = Scaled(100000000, 40000000);

    const std::string quarter =
        WithRootMember(document, "unknown", "\"" + std::string(length / 4, 'x') + "\"");
    const std::string whole =
        WithRootMember(document, "unknown", "\"" + std::string(length, 'x') + "\"");

    EXPECT_EQ(LinearLifeOf(quarter, whole).initialised, 1);
}

TEST(LargeDocument, WhoseNamesAreOf10MegabytesLoadsAndLogsThem)
{
    const QuietLog log;
    const std::string name(Scaled(10000000, 1000000), 'n');
    DocumentBuilder document = SmallDocument(1000);
    document.Parameter(FloatParameter(name, 0.5)).Node(Generic(name, 1));

    const Cost cost = LifeOf(document.Text());

    EXPECT_EQ(cost.initialised, 1);
    EXPECT_LE(cost.bytes, name.size() * 20);
}

TEST(LargeDocument, WhoseScriptNameIsLongerThanTheArenaFailsToLoadTheNode)
{
    const QuietLog log;
    DocumentBuilder document = SmallDocument(1000);
    document.Node(Generic("State", 1).Set(JSON_ScriptName, std::string(10000000, 's')));

    LifeOf(document.Text());

    EXPECT_NE(log.Errors(), 0u);
}

TEST(LargeDocument, ThatAsksForGigabytesIsLoadedOrRefusedAndLeavesNothing)
{
    if (kIsSanitized)
    {
        GTEST_SKIP() << "a sanitizer marks every byte of an arena";
    }
    QuietLog log;
    LifeOf(WholeDocument().Text());

    for (const Json& figure : {Json(-1), Json(42949672), Json(2147483647), Json(4294967295u),
                               Json::Raw("42949673"), Json::Raw("1e300")})
    {
        DocumentBuilder document = WholeDocument();
        document.Head().Set(JSON_HeadMemory, figure);
        log.Clear();

        const Cost cost = LifeOf(document.Text());

        // Times 100 in 32 bits: the one before the last asks for 4 bytes.
        EXPECT_EQ(cost.initialised != 0, log.Errors() == 0) << figure.Text();
        EXPECT_EQ(cost.blocksLeft, 0) << figure.Text();
    }
}

TEST(LargeDocument, Of100000NodesInOneLayerTakesMemoryByTheirNumber)
{
    const QuietLog log;
    const unsigned int count = Scaled(100000, 50000);

    EXPECT_EQ(LinearLifeOf(ManyNodes(count / 4), ManyNodes(count)).initialised, 1);
    EXPECT_EQ(log.Errors(), 0u);
}

TEST(LargeDocument, Of10000LayersTakesMemoryByTheirNumber)
{
    const QuietLog log;
    const unsigned int count = Scaled(10000, 5000);

    EXPECT_EQ(LinearLifeOf(ManyLayers(count / 4), ManyLayers(count)).initialised, 1);
    EXPECT_EQ(log.Errors(), 0u);
}

TEST(LargeDocument, Of10000ParametersTakesMemoryByTheirNumber)
{
    const QuietLog log;
    const unsigned int count = Scaled(10000, 5000);

    EXPECT_EQ(LinearLifeOf(ManyParameters(count / 4), ManyParameters(count)).initialised, 1);
    EXPECT_EQ(log.Errors(), 0u);
}

TEST(DeepMachine, Of10000LevelsGrowsItsStackAndNotTheCallStack)
{
    const QuietLog log;
    const unsigned int levels = Scaled(10000, 3000);
    const std::string text = SubstateChain(levels);
    LifeOf(text);
    lowestFrame = 0;
    highestFrame = 0;
    const HeapWatch heap;
    {
        HSM machine(text.c_str());
        ASSERT_EQ(machine.Init(), 1);
        machine.SetStateSwitchCallback(NoteFrame);
        machine.Start();
        for (unsigned int tick = 0; tick <= levels; ++tick)
        {
            machine.Update(0.1f);
        }

        EXPECT_EQ(machine.GetCurrentState()->GetID(), levels * 10 + 10);
        EXPECT_EQ(log.Errors(), 0u);
        // All at once, from the innermost to the outermost.
        while (machine.PopState() != nullptr)
        {
        }
        EXPECT_EQ(machine.GetCurrentState(), nullptr);
        machine.Uninit();
        machine.Destroy();
    }

    EXPECT_LT(highestFrame - lowestFrame, 4096u);
    EXPECT_EQ(heap.BlocksKept(), 0);
}

TEST(DeepMachine, OfManyLevelsTakesMemoryByTheirNumber)
{
    const QuietLog log;
    const unsigned int levels = Scaled(2000, 400);
    const auto ticks = static_cast<int>(levels);

    EXPECT_EQ(LinearLifeOf(SubstateChain(levels / 4), SubstateChain(levels), ticks).initialised, 1);
}

TEST(DeepTree, Of100000TablesThatAToolNestsIsClosedWithItsMachine)
{
    const QuietLog log;
    const unsigned int depth = Scaled(100000, 20000);
    const unsigned int openBefore = Tessel::GetOpenTableCount();
    const std::string text = WholeDocument().Text();
    {
        HSM machine(text.c_str());
        ASSERT_EQ(machine.Init(), 1);
        machine.Start();
        const Tessel::KVTable top = machine.GetKVTable()->AddTable("deep", 1);
        Tessel::KVTable table = top;
        for (unsigned int i = 1; i < depth; ++i)
        {
            table = table->AddTable("below", 1);
        }
        EXPECT_TRUE(static_cast<bool>(table));
        // What is so deep below may not hold what is above it.
        EXPECT_EQ(table->AttachTable("circle", top, 1), 0);
        EXPECT_GE(Tessel::GetOpenTableCount(), depth);
        machine.Update(0.1f);
        machine.Uninit();
        machine.Destroy();
    }

    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
}

} // namespace vell::test
