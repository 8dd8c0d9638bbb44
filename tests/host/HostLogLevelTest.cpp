// VELL: data-driven hierarchical state machines.
// tests/host/HostLogLevelTest.cpp: a host that wants fewer log lines.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>

namespace vell::test
{
namespace
{

class HostLogLevel : public LogTest
{
protected:
    ~HostLogLevel() override
    {
        SetLogLevel(INT_MAX);
    }

    /// Loads, starts and ticks a machine that changes its state and fails to change it again, and
    /// gives its tree as it then is.
    static Lines Play()
    {
        const DocumentBuilder document =
            DocumentBuilder()
                .Start(10)
                .Parameter(BoolParameter("go", true))
                .Node(Generic("Stand", 10, {100}))
                .Node(Generic("Walk", 11, {101}))
                .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
                .Node(Transition("Astray", 101, 11, 99, {BoolCondition("go", true)}));
        const std::unique_ptr<IHSM> machine(CreateHSMJson(document.Text().c_str()));
        machine->Init();
        machine->Start();
        machine->Update(0.1f);
        machine->Update(0.1f);
        Lines tree = TreeLines(machine->GetKVTable());
        machine->Uninit();
        machine->Destroy();
        return tree;
    }
};

} // namespace

TEST_F(HostLogLevel, LeavesOutTheLinesAboveItAndChangesNothingElse)
{
    const Lines tree = Play();
    const std::vector<LogLine> all = log.TakeRaw();

    for (const int level : {0, 3, 4, 6, 8, 9, INT_MAX})
    {
        std::vector<std::string> expected;
        for (const LogLine& line : all)
        {
            if (line.level <= level)
            {
                expected.push_back(line.text);
            }
        }

        SetLogLevel(level);
        EXPECT_EQ(Play(), tree) << level;

        std::vector<std::string> heard;
        for (const LogLine& line : log.TakeRaw())
        {
            heard.push_back(line.text);
        }
        EXPECT_EQ(heard, expected) << level;
    }
}

TEST_F(HostLogLevel, KeepsStandardErrorQuietToo)
{
    testing::internal::CaptureStderr();
    SetLogLevel(LogError);
    Play();
    const std::string errors = testing::internal::GetCapturedStderr();

    std::string expected;
    for (const LogLine& line : log.TakeRaw())
    {
        EXPECT_EQ(line.level, LogError);
        expected += line.text;
    }
    EXPECT_NE(expected, "");
    EXPECT_EQ(errors, expected);
}

TEST_F(HostLogLevel, LeavesLinesOfTheHostAlone)
{
    SetLogLevel(0);

    LogImpl(LogInfo, "mine\n");

    const std::vector<LogLine> lines = log.TakeRaw();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, "mine\n");
}

} // namespace vell::test
