// VELL: data-driven hierarchical state machines.
// tests/host/FactoriesTest.cpp: what the exported functions give and write.
#include <durm/DURMBaseLib.h>
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/TempFile.h"

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vell::test
{
namespace
{

using Machine = std::unique_ptr<IHSM>;

struct Line
{
    int level;
    std::string text;

    bool operator==(const Line& other) const
    {
        return level == other.level && text == other.text;
    }
};

std::vector<Line> heard;

void Hear(int level, const char* text)
{
    heard.push_back({level, text});
}

/// What was written to both streams while `call` ran.
struct Written
{
    std::string output;
    std::string error;
};

template <class Call>
Written Capture(Call call)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    call();
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

/// Gives the function that the loaded libraries export under the name, or null.
void* FindExported(const char* name)
{
#if defined(_WIN32)
    for (const char* library : {"VELLLibX64.dll", "DURMBaseX64.dll"})
    {
        if (const FARPROC function = GetProcAddress(GetModuleHandleA(library), name))
        {
            return reinterpret_cast<void*>(function);
        }
    }
    return nullptr;
#else
    return dlsym(RTLD_DEFAULT, name);
#endif
}

std::string WithoutLineNumbers(const std::string& text)
{
    return std::regex_replace(text, std::regex(" at [0-9]+ in "), " at # in ");
}

std::string SmallDocument()
{
    DocumentBuilder document;
    document.Start(10).Node(Generic("Stand", 10));
    return document.Text();
}

const std::string kParseError =
    "[ERROR]\t: JSON file has errors, please run a validator on it and correct issues: ";
const std::string kCreateFailed = "[ERROR]\t: ERROR_BREAK(0) at # in vell::HSM::Create\n";

/// Takes the callback away again.
class Factories : public testing::Test
{
protected:
    Factories()
    {
        heard.clear();
    }
    ~Factories() override
    {
        SetLogCallBackBase(nullptr);
    }
};

} // namespace

TEST_F(Factories, GiveAMachineAlsoForAMissingFile)
{
    Machine machine;

    const Written written = Capture(
        [&machine]
        {
            machine.reset(CreateHSM("/no/such/file.json", "unused"));
        });

    ASSERT_NE(machine, nullptr);
    EXPECT_EQ(WithoutLineNumbers(written.error), kParseError + "1\n" + kCreateFailed);
    EXPECT_EQ(written.output, "");
    Capture(
        [&machine]
        {
            EXPECT_EQ(machine->Init(), 0);
        });
}

TEST_F(Factories, GiveAMachineAlsoForAMalformedText)
{
    Machine machine;

    const Written written = Capture(
        [&machine]
        {
            machine.reset(CreateHSMJson("{\"a\":1,}"));
        });

    ASSERT_NE(machine, nullptr);
    EXPECT_EQ(WithoutLineNumbers(written.error), kParseError + "0\n" + kCreateFailed);
}

TEST_F(Factories, GiveAMachineAlsoForNull)
{
    Capture(
        []
        {
            EXPECT_NE(Machine(CreateHSM(nullptr, nullptr)), nullptr);
            EXPECT_NE(Machine(CreateHSMJson(nullptr)), nullptr);
        });
}

TEST_F(Factories, TakeAPathInUtf8WhateverTheCodePageOfTheHost)
{
    const TempFile file(SmallDocument(), "caf\u00e9 \u4e16\u754c.json");
    for (const std::string& path : SpellingsOf(file.Path()))
    {
        Machine machine;

        Capture(
            [&]
            {
                machine.reset(CreateHSM(path.c_str(), nullptr));
                EXPECT_EQ(machine->Init(), 1) << path;
            });
    }
}

#if defined(_WIN32)
TEST_F(Factories, TakeAPathInTheCodePageOfTheHostWhereItIsNotUtf8)
{
    const TempFile file(SmallDocument(), "caf\u00e9.json");
    std::string path = file.Path();
    path.replace(path.find("\u00e9"), 2, "\xe9");
    ASSERT_EQ(GetACP(), 1252u);
    Machine machine;

    Capture(
        [&]
        {
            machine.reset(CreateHSM(path.c_str(), nullptr));
            EXPECT_EQ(machine->Init(), 1);
        });
}
#endif

TEST_F(Factories, ReadTheSameDocumentFromAFileAndFromText)
{
    const TempFile file(SmallDocument());
    for (const bool fromFile : {true, false})
    {
        Machine machine;

        const Written written = Capture(
            [&]
            {
                machine.reset(fromFile ? CreateHSM(file.Path(), nullptr)
                                       : CreateHSMJson(SmallDocument().c_str()));
                EXPECT_EQ(machine->Init(), 1);
                machine->Start();
            });

        EXPECT_EQ(written.error.find("ERROR_BREAK"), std::string::npos);
        ASSERT_NE(machine->GetCurrentState(), nullptr);
        EXPECT_EQ(machine->GetCurrentState()->GetID(), 10u);
        EXPECT_STREQ(machine->GetKVTable()->GetString("filename"),
                     fromFile ? file.Path() : nullptr);
    }
}

TEST_F(Factories, GiveMachinesOfOneDocumentLivesOfTheirOwn)
{
    const std::string text = SmallDocument();
    const TempFile file(text);
    Machine first(CreateHSMJson(text.c_str()));
    Machine second(CreateHSM(file.Path(), nullptr));
    ASSERT_EQ(first->Init(), 1);
    ASSERT_EQ(second->Init(), 1);
    Machine third(CreateHSMJson(text.c_str()));
    second->Start();

    first->Uninit();
    first->Destroy();
    first.reset();

    EXPECT_STREQ(second->FindDef(10)->GetName(), "Stand");
    EXPECT_EQ(second->GetCurrentState()->GetID(), 10u);
    // Deleting a machine takes the builders of the process with it; Create brings them back.
    EXPECT_EQ(third->Create(), 1);
    EXPECT_EQ(third->Init(), 1);
    EXPECT_STREQ(third->FindDef(10)->GetName(), "Stand");
}

TEST_F(Factories, KeepTheTextsOfADocumentThatIsCreatedAgain)
{
    std::string text = SmallDocument();
    Machine machine(CreateHSMJson(text.c_str()));
    ASSERT_EQ(machine->Init(), 1);
    const char* name = machine->FindDef(10)->GetName();
    machine->Uninit();
    text.replace(text.find("Stand"), 5, "Squat");

    ASSERT_EQ(machine->Create(), 1);
    // It fails in the last step, the tree, but the definitions are there.
    EXPECT_EQ(machine->Init(), 0);

    EXPECT_STREQ(name, "Stand");
    EXPECT_STREQ(machine->FindDef(10)->GetName(), "Squat");
}

TEST_F(Factories, ReportATextThatIsMalformedOnlyWhenItIsCreatedAgain)
{
    std::string text = SmallDocument();
    Machine machine(CreateHSMJson(text.c_str()));
    text[0] = '[';

    const Written written = Capture(
        [&machine]
        {
            EXPECT_EQ(machine->Create(), 0);
        });

    EXPECT_EQ(WithoutLineNumbers(written.error), kParseError + "0\n" + kCreateFailed);
}

TEST_F(Factories, WriteToStandardOutputWhenACallbackIsSet)
{
    const Written written = Capture(
        []
        {
            SetLogCallBack(Hear);
        });

    EXPECT_EQ(written.output, "Callback being setup\n");
    EXPECT_EQ(written.error, "");
    EXPECT_TRUE(heard.empty());
}

TEST_F(Factories, WriteToStandardOutputAlsoWhenTheCallbackIsTakenAway)
{
    const Written written = Capture(
        []
        {
            SetLogCallBack(Hear);
            SetLogCallBack(nullptr);
            Machine(CreateHSMJson("{"));
        });

    EXPECT_EQ(written.output, "Callback being setup\nCallback being setup\n");
    EXPECT_EQ(WithoutLineNumbers(written.error), kParseError + "0\n" + kCreateFailed);
    EXPECT_TRUE(heard.empty());
}

TEST_F(Factories, LetTheCallbackHearEveryLineOfStandardErrorAndItsLevel)
{
    const Written written = Capture(
        []
        {
            SetLogCallBack(Hear);
            const Machine machine(CreateHSMJson(SmallDocument().c_str()));
            machine->Init();
            machine->Start();
        });

    std::string all;
    for (const Line& line : heard)
    {
        all += line.text;
    }
    EXPECT_EQ(all, written.error);
    ASSERT_GE(heard.size(), 2u);
    EXPECT_EQ(heard[0], (Line{9, "\n\nImporting HSM layers\n"}));
    EXPECT_EQ(heard.back().level, 6);
}

TEST_F(Factories, WriteToStandardErrorBeforeACallbackIsSet)
{
    const Written written = Capture(
        []
        {
            Machine(CreateHSMJson("{"));
        });

    EXPECT_EQ(WithoutLineNumbers(written.error), kParseError + "0\n" + kCreateFailed);
}

TEST_F(Factories, ForwardALineOfTheHostsToTheCallbackAlone)
{
    const Written written = Capture(
        []
        {
            SetLogCallBack(Hear);
            LogImpl(8, "from a script");
        });

    EXPECT_EQ(heard, (std::vector<Line>{{8, "from a script"}}));
    EXPECT_EQ(written.error, "");
}

TEST_F(Factories, AreExportedUnderTheirPlainNames)
{
    for (const char* name :
         {"CreateHSM", "CreateHSMJson", "SetLogCallBack", "LogImpl", "SetLogCallBackBase"})
    {
        EXPECT_NE(FindExported(name), nullptr) << name;
    }
    EXPECT_EQ(FindExported("CreateHSMJson"), reinterpret_cast<void*>(&vell::CreateHSMJson));
    EXPECT_EQ(&::CreateHSMJson, &vell::CreateHSMJson);
    EXPECT_EQ(&::SetLogCallBack, &vell::SetLogCallBack);
}

} // namespace vell::test
