// VELL: data-driven hierarchical state machines.
// tests/foundation/ChecksTest.cpp: what the check statements print, and where they lead.
#include "foundation/Checks.h"

#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// Counts its calls and gives a result for each.
struct Step
{
    explicit Step(std::vector<int> callResults) : results(std::move(callResults))
    {
    }
    int Run()
    {
        LogStream(LogInfo) << "run" << EndLine;
        return results[calls++];
    }

    std::vector<int> results;
    std::size_t calls = 0;
};

/// Functions whose names the lines show.
struct Subject
{
    int BreakOn(Step& step);
    static int AssertOn(Step& step);
    int GotoOn(Step& step) const;
    template <class T>
    std::string Print(T value);
    void AssertThenGoOn(Step& step);
    int BreakInLoop();
    int AssertInLoop();
    int BreakInSwitch(int kind);

    int ended = 0;
    int wentOn = 0;
};

int Subject::BreakOn(Step& step)
{
    int result = 0;
    do
    {
        ERROR_BREAK(step.Run());
        result = 1;
    } while (false);
    ++ended;
    return result;
}

int Subject::AssertOn(Step& step)
{
    int result = 0;
    do
    {
        ASSERT_BREAK(step.Run());
        result = 1;
    } while (false);
    return result;
}

int Subject::GotoOn(Step& step) const
{
    ERROR_GOTO(step.Run(), failed);
    return 1;

failed:
    return 0;
}

void Subject::AssertThenGoOn(Step& step)
{
    ERROR_ASSERT(step.Run());
    ++wentOn;
}

template <class T>
std::string Subject::Print(T value)
{
    LogRecorder log;
    do
    {
        ERROR_BREAK(value);
    } while (false);
    const Lines lines = log.Take();
    const std::size_t end = lines.empty() ? std::string::npos : lines[0].find(" at #");
    return end == std::string::npos ? "?" : lines[0].substr(0, end);
}

int Subject::BreakInLoop()
{
    int rounds = 0;
    do
    {
        for (int i = 0; i < 5; ++i)
        {
            ++rounds;
            ERROR_BREAK(i < 2);
        }
        wentOn = 1;
    } while (false);
    return rounds;
}

int Subject::AssertInLoop()
{
    int rounds = 0;
    do
    {
        for (int i = 0; i < 5; ++i)
        {
            ++rounds;
            ASSERT_BREAK(i < 2);
        }
        wentOn = 1;
    } while (false);
    return rounds;
}

int Subject::BreakInSwitch(int kind)
{
    switch (kind)
    {
    case 1:
        ERROR_BREAK(kind != 1);
        return 1;
    default:
        break;
    }
    wentOn = 1;
    return 0;
}

/// The name of a function of Subject as this compiler writes it.
std::string NameOf(const std::string& function)
{
#if defined(__clang__)
    return "vell::test::(anonymous namespace)::Subject::" + function;
#else
    return "vell::test::{anonymous}::Subject::" + function;
#endif
}

} // namespace

TEST(ErrorBreak, EvaluatesAPassingExpressionOnceAndPrintsNothing)
{
    LogRecorder log;
    Step step({1});

    EXPECT_EQ(Subject().BreakOn(step), 1);

    EXPECT_EQ(step.calls, 1u);
    EXPECT_EQ(log.Take(), (Lines{"6 run"}));
}

TEST(ErrorBreak, EvaluatesAFailingExpressionTwiceAndItsLinesComeFirst)
{
    LogRecorder log;
    Step step({0, 0});
    Subject subject;

    EXPECT_EQ(subject.BreakOn(step), 0);

    EXPECT_EQ(step.calls, 2u);
    EXPECT_EQ(subject.ended, 1);
    const Lines lines = log.Take();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "6 run");
    EXPECT_EQ(lines[1], "6 run");
    EXPECT_EQ(lines[2].rfind("3 ERROR_BREAK(0) at # in ", 0), 0u) << lines[2];
}

TEST(ErrorBreak, PrintsTheValueOfTheSecondRunAndFailsAllTheSame)
{
    LogRecorder log;
    Step step({0, 5});

    EXPECT_EQ(Subject().BreakOn(step), 0);

    const Lines lines = log.Take({LogError});
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].rfind("3 ERROR_BREAK(5) at # in ", 0), 0u) << lines[0];
}

TEST(ErrorBreak, PrintsTheFormOfTheExpressionsType)
{
    Subject subject;

    EXPECT_EQ(subject.Print(0), "3 ERROR_BREAK(0)");
    EXPECT_EQ(subject.Print(0u), "3 ERROR_BREAK(0)");
    EXPECT_EQ(subject.Print(false), "3 ERROR_BREAK(0)");
    EXPECT_EQ(subject.Print(static_cast<const Subject*>(nullptr)), "3 ERROR_BREAK(0)");
    EXPECT_EQ(subject.Print(static_cast<const char*>(nullptr)), "3 ERROR_BREAK()");
}

TEST(ErrorBreak, PrintsTheLineOfTheStatement)
{
    LogRecorder log;
    int line = 0;

    do
    {
        line = __LINE__ + 1;
        ERROR_BREAK(false);
    } while (false);

    const std::vector<LogLine> lines = log.TakeRaw();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, 3);
    EXPECT_NE(lines[0].text.find("[ERROR]\t: ERROR_BREAK(0) at " + std::to_string(line) + " in "),
              std::string::npos)
        << lines[0].text;
}

TEST(ErrorBreak, LeavesTheInnermostLoop)
{
    LogRecorder log;
    Subject subject;

    EXPECT_EQ(subject.BreakInLoop(), 3);

    EXPECT_EQ(subject.wentOn, 1);
}

TEST(ErrorBreak, LeavesASwitch)
{
    LogRecorder log;
    Subject subject;

    EXPECT_EQ(subject.BreakInSwitch(1), 0);

    EXPECT_EQ(subject.wentOn, 1);
}

TEST(AssertBreak, EvaluatesAFailingExpressionOnceAndPrintsNoValue)
{
    LogRecorder log;
    Step step({0});

    EXPECT_EQ(Subject::AssertOn(step), 0);

    EXPECT_EQ(step.calls, 1u);
    EXPECT_EQ(log.Take(), (Lines{"6 run", AssertBreak(NameOf("AssertOn"))}));
}

TEST(AssertBreak, EvaluatesAPassingExpressionOnce)
{
    LogRecorder log;
    Step step({1});

    EXPECT_EQ(Subject::AssertOn(step), 1);

    EXPECT_EQ(log.Take(), (Lines{"6 run"}));
}

TEST(AssertBreak, LeavesTheInnermostLoop)
{
    LogRecorder log;
    Subject subject;

    EXPECT_EQ(subject.AssertInLoop(), 3);

    EXPECT_EQ(subject.wentOn, 1);
}

TEST(ErrorGoto, EvaluatesAFailingExpressionOnceAndJumps)
{
    LogRecorder log;
    Step step({0});

    EXPECT_EQ(Subject().GotoOn(step), 0);

    EXPECT_EQ(step.calls, 1u);
    EXPECT_EQ(log.Take(), (Lines{"6 run", ErrorGoto(NameOf("GotoOn"))}));
}

TEST(ErrorGoto, EvaluatesAPassingExpressionOnceAndGoesOn)
{
    LogRecorder log;
    Step step({1});

    EXPECT_EQ(Subject().GotoOn(step), 1);

    EXPECT_EQ(log.Take(), (Lines{"6 run"}));
}

TEST(ErrorAssert, PrintsAndGoesOn)
{
    LogRecorder log;
    Step step({0});
    Subject subject;

    subject.AssertThenGoOn(step);

    EXPECT_EQ(subject.wentOn, 1);
    EXPECT_EQ(step.calls, 1u);
    EXPECT_EQ(log.Take(), (Lines{"6 run", ErrorAssert(NameOf("AssertThenGoOn"))}));
}

TEST(FunctionName, IsTheQualifiedNameWithoutResultAndParameters)
{
    EXPECT_EQ(QualifiedName("int vell::HSM::PushState(unsigned int)"), "vell::HSM::PushState");
    EXPECT_EQ(QualifiedName("virtual int vell::SMState::Update(vell::HSM*, float)"),
              "vell::SMState::Update");
    EXPECT_EQ(QualifiedName("static vell::SMState* vell::SMState::Create(unsigned int)"),
              "vell::SMState::Create");
    EXPECT_EQ(QualifiedName("vell::SMState *vell::SMState::Create(unsigned int)"),
              "vell::SMState::Create");
    EXPECT_EQ(QualifiedName("const char& vell::Text()"), "vell::Text");
    EXPECT_EQ(QualifiedName("int (anonymous namespace)::Step::Run((anonymous namespace)::Kind)"),
              "(anonymous namespace)::Step::Run");
    EXPECT_EQ(QualifiedName("(anonymous namespace)::Kind vell::Read(int)"), "vell::Read");
    EXPECT_EQ(QualifiedName("vell::NodeDefTable::NodeDefTable()"),
              "vell::NodeDefTable::NodeDefTable");
}

TEST(FunctionName, IsKnownWhenCompiling)
{
    static_assert(QualifiedName("int vell::HSM::Create()") == "vell::HSM::Create");
    static_assert(BaseName("some/folder/SMState.cpp") == "SMState.cpp");
    constexpr std::string_view name = VELL_FUNCTION;

    EXPECT_NE(name.find("TestBody"), std::string_view::npos);
    EXPECT_EQ(VELL_FILE, "ChecksTest.cpp");
}

TEST(FunctionName, OfASourceFileIsItsNameWithoutFolders)
{
    EXPECT_EQ(BaseName("SMState.cpp"), "SMState.cpp");
    EXPECT_EQ(BaseName("/a/b/SMState.cpp"), "SMState.cpp");
    EXPECT_EQ(BaseName("a\\b\\SMState.cpp"), "SMState.cpp");
}

} // namespace vell::test
