// VELL: data-driven hierarchical state machines.
// tests/docs/ExampleDocTest.cpp: the example of docs/document-format.md loads and runs.
#include <vell/IParameterTable.h>
#include <vell/ParameterDef.h>
#include <vell/ParameterValues.h>

#include "tests/docs/Pages.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

std::string TextOf(const CodeBlock& block)
{
    std::string text;
    for (const std::string& line : block.lines)
    {
        text += line + "\n";
    }
    return text;
}

std::string ReadExample()
{
    return TextOf(ReadBlocks("docs/document-format.md", "json").back());
}

} // namespace

TEST(DocumentFormatPage, BeginsWithAnExampleThatIsSwitchedOn)
{
    LogRecorder log;
    TestMachine machine(TextOf(ReadBlocks("docs/document-format.md", "json").front()));

    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    machine.SetBool("on", true);
    machine.Update(0.1f);

    EXPECT_EQ(log.Take({3, 4}), Lines());
    EXPECT_EQ(machine.MainStack(), "On");
}

TEST(DocumentFormatPage, EndsWithAnExampleThatLoadsWithoutAnErrorStartsAndTicks)
{
    LogRecorder log;
    TestMachine machine(ReadExample());

    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    machine.Update(0.1f);

    EXPECT_EQ(log.Take({3, 4}), Lines());
    EXPECT_EQ(machine.MainStack(), "Stand");
}

TEST(DocumentFormatPage, EndsWithAnExampleThatWalksAndStandsStillAgain)
{
    LogRecorder log;
    TestMachine machine(ReadExample());
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    auto* speed =
        dynamic_cast<IParameterFloatDef*>(machine.GetParameterTable()->FindParameter("speed"));
    ASSERT_NE(speed, nullptr);

    speed->SetValue(1.0f);
    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Walk");

    machine.BroadcastMessage("halt");
    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Stand");
    EXPECT_EQ(log.Take({3, 4}), Lines());
}

} // namespace vell::test
