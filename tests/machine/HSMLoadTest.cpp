// VELL: data-driven hierarchical state machines.
// tests/machine/HSMLoadTest.cpp: what Create makes of a document, and how it fails.
#include <durm/DURMBaseLib.h>

#include "definitions/NodeDefTable.h"
#include "machine/StateBuilders.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TempFile.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

const std::string kCreate = "vell::HSM::Create";
constexpr unsigned int kTableSize = sizeof(NodeDefTable);

/// The line that a document with a parse error leaves.
std::string ParseErrorLine(int code)
{
    return "3 JSON file has errors, please run a validator on it and correct issues: " +
           std::to_string(code);
}

std::string TextWithMemory(const Json& figure)
{
    return WithHead(SmallDocument(), JSON_HeadMemory, figure).Text();
}

/// The figure of the head whose arena is the smallest that holds the node table.
unsigned int SmallestFigure()
{
    return (kTableSize + 99) / 100;
}

/// A machine on the file at `path`.
class FileMachine : public TestMachine
{
public:
    explicit FileMachine(const char* path)
    {
        filePath = path;
    }
};

/// Tests with a machine that has no document yet.
class HSMCreate : public LogTest
{
protected:
    TestMachine machine;
};

bool HasStandardBuilders()
{
    for (const int builder : {8, 9, 10, 21, 23, 24})
    {
        if (FindStateBuilder(static_cast<__DURM_BUILDERS__>(builder)) == nullptr)
        {
            return false;
        }
    }
    return true;
}

} // namespace

TEST_F(HSMCreate, SizesTheArenaAndPlacesTheNodeTableFirst)
{
    EXPECT_EQ(machine.Load(TextWithMemory(50)), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(machine.alloc.capacity, 5000u);
    EXPECT_EQ(static_cast<void*>(machine.nodeDefTable), machine.alloc.block);
    EXPECT_EQ(machine.alloc.used, kTableSize);
    EXPECT_EQ(machine.alloc.tracked, (HSMAlloc::SizeMap{{machine.nodeDefTable, kTableSize}}));
    EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
    EXPECT_EQ(machine.parameterTable, nullptr);
    EXPECT_FALSE(machine.kvTable);
}

TEST_F(HSMCreate, TakesTheModelsMemoryByOneMalloc)
{
    const std::string text = TextWithMemory(1234);
    HeapWatch heap;
    heap.RefuseMalloc(123400, 1);

    EXPECT_EQ(machine.Load(text), 0);

    EXPECT_EQ(heap.Refused(), 1u);
}

TEST_F(HSMCreate, TakesADefaultOf100MebibytesWithoutAFigure)
{
    DocumentBuilder document = SmallDocument();
    document.Head().Remove(JSON_HeadMemory);
    machine.Load(document.Text());

    EXPECT_EQ(machine.alloc.capacity, 0x6400000u);
    EXPECT_EQ(machine.GetMemoryRequirements(machine.document[DURMBaseLib::GetJsonName(JSON_Head)]),
              0x100000);
    EXPECT_EQ(machine.Init(), 1);
}

TEST_F(HSMCreate, GivesTheFigureOfTheHeadAsItIs)
{
    GenericDocument head;

    head.Parse(JsonObject().Set(JSON_HeadMemory, 77).Text().c_str());
    EXPECT_EQ(machine.GetMemoryRequirements(head), 77);
    head.Parse(JsonObject().Set(JSON_HeadMemory, 0).Text().c_str());
    EXPECT_EQ(machine.GetMemoryRequirements(head), 0);
    head.Parse(JsonObject().Set(JSON_HeadMemory, "77").Text().c_str());
    EXPECT_EQ(machine.GetMemoryRequirements(head), 0);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(HSMCreate, MultipliesTheFigureIn32Bits)
{
    EXPECT_EQ(machine.Load(TextWithMemory(42949673 + static_cast<int>(kTableSize))), 1);

    EXPECT_EQ(machine.alloc.capacity, 4u + 100u * kTableSize);
}

TEST_F(HSMCreate, NeedsRoomForTheNodeTable)
{
    TestMachine fits;
    TestMachine tooSmall;

    EXPECT_EQ(fits.Load(TextWithMemory(SmallestFigure())), 1);
    EXPECT_EQ(log.Take(), Lines{});
    ClearStateBuilders();
    EXPECT_EQ(tooSmall.Load(TextWithMemory(SmallestFigure() - 1)), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
    EXPECT_EQ(tooSmall.nodeDefTable, nullptr);
    EXPECT_EQ(tooSmall.alloc.used, 0u);
    EXPECT_NE(tooSmall.alloc.block, nullptr);
    EXPECT_TRUE(HasStandardBuilders());
}

TEST_F(HSMCreate, AsksTwiceForABlockThatIsRefused)
{
    const std::string text = TextWithMemory(5000);
    HeapWatch heap;
    heap.RefuseMalloc(500000, 2);

    EXPECT_EQ(machine.Load(text), 0);

    EXPECT_EQ(heap.Refused(), 2u);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate, "0")}));
    EXPECT_EQ(machine.alloc.block, nullptr);
    EXPECT_EQ(machine.alloc.capacity, 0u);
    EXPECT_EQ(machine.nodeDefTable, nullptr);
}

TEST_F(HSMCreate, FailsAlsoWhenTheSecondAttemptGetsTheBlock)
{
    const std::string text = TextWithMemory(5000);
    HeapWatch heap;
    heap.RefuseMalloc(500000, 1);

    EXPECT_EQ(machine.Load(text), 0);

    EXPECT_EQ(heap.Refused(), 1u);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate, "1")}));
    EXPECT_NE(machine.alloc.block, nullptr);
    EXPECT_EQ(machine.alloc.capacity, 500000u);
    EXPECT_EQ(machine.nodeDefTable, nullptr);
    EXPECT_EQ(machine.Init(), 0);
}

TEST_F(HSMCreate, GivesTheBlockOfASecondAttemptBackWithTheMachine)
{
    const std::string text = TextWithMemory(5000);
    HeapWatch heap;
    {
        TestMachine warmUp;
        heap.RefuseMalloc(500000, 1);
        warmUp.Load(text);
    }
    log.Clear();
    const std::ptrdiff_t before = heap.BlocksKept();
    {
        TestMachine fresh;
        heap.RefuseMalloc(500000, 1);
        fresh.Load(text);
        EXPECT_NE(fresh.alloc.block, nullptr);
    }
    log.Clear();

    EXPECT_EQ(heap.BlocksKept(), before);
}

TEST_F(HSMCreate, ReportsAMissingFileWithTheCode1)
{
    FileMachine fromFile("/no/such/file.json");

    EXPECT_EQ(fromFile.Create(), 0);

    EXPECT_EQ(log.Take(), (Lines{ParseErrorLine(1), ErrorBreak(kCreate)}));
    EXPECT_TRUE(fromFile.document.IsNull());
    EXPECT_EQ(fromFile.alloc.block, nullptr);
    EXPECT_EQ(fromFile.nodeDefTable, nullptr);
}

TEST_F(HSMCreate, ReportsAFileThatIsNoJsonWithTheParsersCode)
{
    for (const auto& [text, code] : {std::pair("", 1), std::pair("{\"a\":1,}", 4)})
    {
        const TempFile file(text);
        FileMachine fromFile(file.Path());

        EXPECT_EQ(fromFile.Create(), 0);

        EXPECT_EQ(log.Take(), (Lines{ParseErrorLine(code), ErrorBreak(kCreate)})) << text;
        EXPECT_TRUE(fromFile.document.IsNull());
        EXPECT_EQ(fromFile.nodeDefTable, nullptr);
    }
}

// Pins down that the parser's code is lost when the document comes as text.
TEST_F(HSMCreate, ReportsASyntaxErrorInATextAlwaysWithZero)
{
    for (const char* text : {"", "{", "{\"a\":1,}", "[1e999]", "{} {}"})
    {
        TestMachine fresh;

        EXPECT_EQ(fresh.Load(text), 0);

        EXPECT_EQ(log.Take(), (Lines{ParseErrorLine(0), ErrorBreak(kCreate)})) << text;
        EXPECT_EQ(fresh.nodeDefTable, nullptr);
    }
}

TEST_F(HSMCreate, TakesTheTextWhenThereAreAFileAndAText)
{
    FileMachine fromFile("/no/such/file.json");

    EXPECT_EQ(fromFile.Load(SmallDocument().Text()), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(fromFile.Init(), 1);
}

TEST_F(HSMCreate, NeedsAHeadWithAFigureAndATypeInADocumentThatIsAnObject)
{
    const Lines refused = {ErrorBreak(kCreate)};
    const struct
    {
        std::string text;
        Lines lines;
    } failures[] = {
        {"null", refused},
        {"7", refused},
        {"\"text\"", refused},
        {"[]", refused},
        {"[{}]", refused},
        {SmallDocument().LeaveOut(JSON_Head).Text(), refused},
        {WithRoot(SmallDocument(), JSON_Head, 5).Text(),
         {ErrorBreak("vell::HSM::GetMemoryRequirements"), ErrorBreak("vell::HSM::GetHSMType"),
          ErrorBreak(kCreate, "")}},
        {TextWithMemory(0), refused},
        {WithHead(SmallDocument(), JSON_HeadMachineType, 2).Text(), {ErrorBreak(kCreate, "")}}};
    for (const auto& failure : failures)
    {
        SCOPED_TRACE(failure.text);
        log.Clear();
        TestMachine fresh;

        EXPECT_EQ(fresh.Load(failure.text), 0);

        EXPECT_EQ(log.Take(), failure.lines);
        EXPECT_EQ(fresh.nodeDefTable, nullptr);
        EXPECT_EQ(fresh.Init(), 0);
    }
}

TEST_F(HSMCreate, TakesNoBlockWithoutAHeadAndNoneOfTheSizeZero)
{
    ClearStateBuilders();

    TestMachine headless(SmallDocument().LeaveOut(JSON_Head));
    TestMachine withoutFigure(WithRoot(SmallDocument(), JSON_Head, 5));
    EXPECT_EQ(headless.alloc.block, nullptr);
    EXPECT_EQ(withoutFigure.alloc.capacity, 0u);
    EXPECT_FALSE(HasStandardBuilders());

    TestMachine withoutMemory(TextWithMemory(0));
    EXPECT_EQ(withoutMemory.alloc.capacity, 0u);
    EXPECT_TRUE(HasStandardBuilders()) << "the last step is the first that fails";
}

TEST_F(HSMCreate, FailsWithoutADocument)
{
    EXPECT_EQ(machine.Create(), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate)}));
}

TEST_F(HSMCreate, NeedsTheNameOfAMachineType)
{
    DocumentBuilder document = SmallDocument();
    document.Head().Set(JSON_HeadMemory, 5000).Remove(JSON_HeadMachineType);
    ClearStateBuilders();
    EXPECT_EQ(machine.Load(document.Text()), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreate, "")}));
    EXPECT_EQ(machine.alloc.capacity, 500000u);
    EXPECT_EQ(machine.nodeDefTable, nullptr);
    EXPECT_FALSE(HasStandardBuilders());
    EXPECT_EQ(machine.machineType, 1);
}

TEST_F(HSMCreate, TakesTheMachineTypeThatTheHeadNames)
{
    for (const int type : {1, 2, 3})
    {
        TestMachine typed(WithHead(SmallDocument(), JSON_HeadMachineType, MachineTypeName(type)));

        EXPECT_EQ(static_cast<const IHSM&>(typed).GetHSMType(), type);
        EXPECT_EQ(DURMBaseLib::GetStateMachineTypeByName(MachineTypeName(type).c_str()), type);
        EXPECT_EQ(typed.GetHSMType(typed.document[DURMBaseLib::GetJsonName(JSON_Head)]),
                  MachineTypeName(type));
    }
}

TEST_F(HSMCreate, TakesAnUnknownMachineTypeForZero)
{
    EXPECT_EQ(machine.Load(WithHead(SmallDocument(), JSON_HeadMachineType, "no such type").Text()),
              1);

    EXPECT_EQ(machine.machineType, 0);
}

TEST_F(HSMCreate, ReadsTheHostsTextAndLeavesItAsItIs)
{
    const std::string before = SmallDocument().Text();
    std::string text = before;
    HSM host(text.c_str());

    EXPECT_EQ(text, before);
    text.assign(text.size(), '#');
    EXPECT_EQ(host.Init(), 1);
    EXPECT_STREQ(host.FindDef(10u)->GetName(), "Stand");
    host.Uninit();
}

TEST_F(HSMCreate, KeepsATextOfTheFilesNameForTheTree)
{
    const TempFile file(SmallDocument().Text());
    std::string path = file.Path();
    HSM host(path.c_str(), nullptr);

    path.assign(path.size(), '#');

    ASSERT_EQ(host.Init(), 1);
    EXPECT_STREQ(host.GetKVTable()->GetString("filename"), file.Path());
    host.Uninit();
}

TEST_F(HSMCreate, RunsAnewAfterUninitAndTakesANewBlock)
{
    machine.Load(TextWithMemory(100));
    machine.HSM::Uninit();

    EXPECT_EQ(machine.Load(TextWithMemory(200)), 1);

    EXPECT_EQ(machine.alloc.capacity, 20000u);
    EXPECT_EQ(static_cast<void*>(machine.nodeDefTable), machine.alloc.block);
}

} // namespace vell::test
