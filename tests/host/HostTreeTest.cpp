// VELL: data-driven hierarchical state machines.
// tests/host/HostTreeTest.cpp: a tool beside the host watches and steers a machine by its tree.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestListener.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace vell::test
{
namespace
{

class HostTree : public testing::Test
{
protected:
    void SetUp() override
    {
        DocumentBuilder document;
        document.Start(10)
            .Parameter(FloatParameter("speed", 0.0))
            .Node(Generic("Stand", 10, {100})
                      .Set(JSON_Attributes, Json::Array({Attribute("surface", "QString", "mud")})))
            .Node(Generic("Walk", 11))
            .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)}));
        text = document.Text();
        machine = Start();
        before = TreeLines(machine->GetKVTable());
        log.Clear();
    }

    std::unique_ptr<IHSM> Start() const
    {
        std::unique_ptr<IHSM> made(CreateHSMJson(text.c_str()));
        EXPECT_EQ(made->Init(), 1);
        made->Start();
        return made;
    }

    Tessel::KVTable At(const std::string& path) const
    {
        return TableAt(machine->GetKVTable(), path);
    }

    Lines Changes() const
    {
        return Differences(before, TreeLines(machine->GetKVTable()));
    }

    LogRecorder log;
    std::string text;
    std::unique_ptr<IHSM> machine;
    Lines before;
};

const std::string kSpeed = "parameterTable/" + std::to_string(ParameterId("speed"));

} // namespace

TEST_F(HostTree, IsSteeredByAToolsWriteOfAParameter)
{
    At(kSpeed)->SetFloat("value", 1.0f, 1);
    machine->Update(0.1f);

    EXPECT_STREQ(machine->GetCurrentState()->GetDef()->GetName(), "Walk");
    Lines expected{
        "- " + kSpeed + "/value float 0",           "- contextInfo/nextState uint 0",
        "- contextInfo/previousState uint 0",       "- contextInfo/stackStates[0] uint 10",
        "- contextInfo/transitionTriggered uint 0", "+ " + kSpeed + "/value float 1",
        "+ contextInfo/nextState uint 11",          "+ contextInfo/previousState uint 10",
        "+ contextInfo/stackStates[0] uint 11",     "+ contextInfo/transitionTriggered uint 100"};
    EXPECT_EQ(Differences(expected, Changes()), Lines());
}

TEST_F(HostTree, TellsTheHostsListenersOfTheSwitchOnce)
{
    Lines notes;
    TestListener listener(notes, "host");
    EXPECT_EQ(machine->SubscribeStateChange(&listener), 1);

    At(kSpeed)->SetFloat("value", 1.0f, 1);
    machine->Update(0.1f);
    machine->Update(0.1f);

    EXPECT_EQ(notes, (Lines{"host: change 100: 10 -> 11"}));
}

TEST_F(HostTree, CarriesAToolsTextToTheAttributeOfTheCurrentState)
{
    At("nodeDefTable/10/attribs/surface")->SetString("value", "ice", 1);

    const char* surface = nullptr;
    EXPECT_EQ(machine->GetCurrentState()->GetAttrib("surface", &surface), 1);
    EXPECT_STREQ(surface, "ice");
}

TEST_F(HostTree, OfOneMachinePutsAnotherIntoItsContext)
{
    const std::unique_ptr<IHSM> mirror = Start();
    At(kSpeed)->SetFloat("value", 1.0f, 1);
    machine->Update(0.1f);

    EXPECT_EQ(mirror->SetContextInfo(At("contextInfo")), 1);

    EXPECT_STREQ(mirror->GetCurrentState()->GetDef()->GetName(), "Walk");
    EXPECT_EQ(TableAt(mirror->GetKVTable(), "contextInfo")->GetUInt("nextState"), 11u);
}

TEST_F(HostTree, AnswersNothingToAToolThatOutlivesTheMachine)
{
    const Tessel::KVTable speed = At(kSpeed);
    machine->Uninit();
    machine->Destroy();
    machine.reset();

    EXPECT_EQ(speed->SetFloat("value", 1.0f, 1), 0);
    EXPECT_EQ(speed->GetString("type"), nullptr);
    EXPECT_EQ(Tessel::GetTableName(speed), nullptr);
}

TEST(HostTables, AreAsManyAfterAMachineAsBefore)
{
    LogRecorder log;
    const unsigned before = Tessel::GetOpenTableCount();
    {
        DocumentBuilder document = SmallDocument();
        const std::unique_ptr<IHSM> machine(CreateHSMJson(document.Text().c_str()));
        ASSERT_EQ(machine->Init(), 1);
        EXPECT_GT(Tessel::GetOpenTableCount(), before);
    }

    EXPECT_EQ(Tessel::GetOpenTableCount(), before);
}

} // namespace vell::test
