// VELL: data-driven hierarchical state machines.
// tests/platform/DURMBaseLibLogTest.cpp: the logger and its callback.
#include <durm/DURMBaseLib.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Lines = std::vector<std::string>;

Lines recordedLines;

void Record(int level, const char* text)
{
    recordedLines.push_back(std::to_string(level) + " " + text);
}

void RecordLoudly(int level, const char* text)
{
    recordedLines.push_back("loud " + std::to_string(level) + " " + text);
}

const char* const kThreadLine = "a line of a thread";
std::atomic<int> evenLines{0};
std::atomic<int> oddLines{0};
std::atomic<int> wrongLines{0};

void Count(std::atomic<int>& lines, int level, const char* text)
{
    lines.fetch_add(1);
    if (level != 6 || std::strcmp(text, kThreadLine) != 0)
    {
        wrongLines.fetch_add(1);
    }
}

void CountEven(int level, const char* text)
{
    Count(evenLines, level, text);
}

void CountOdd(int level, const char* text)
{
    Count(oddLines, level, text);
}

class DURMBaseLibLog : public testing::Test
{
protected:
    void SetUp() override
    {
        recordedLines.clear();
        SetLogCallBackBase(nullptr);
    }

    void TearDown() override
    {
        SetLogCallBackBase(nullptr);
    }
};
} // namespace

TEST_F(DURMBaseLibLog, LinesBeforeACallbackIsSetReachNobody)
{
    LogImpl(3, "lost\n");
    SetLogCallBackBase(Record);
    LogImpl(3, "kept\n");

    EXPECT_EQ(recordedLines, (Lines{"3 kept\n"}));
}

TEST_F(DURMBaseLibLog, TheCallbackHearsLevelAndTextUnchangedInOrder)
{
    SetLogCallBackBase(Record);

    LogImpl(6, "[INFO]\t: one\n");
    LogImpl(-1, "");
    LogImpl(9, "\n\ntwo\n");

    EXPECT_EQ(recordedLines, (Lines{"6 [INFO]\t: one\n", "-1 ", "9 \n\ntwo\n"}));
}

TEST_F(DURMBaseLibLog, ALaterCallbackTakesThePlaceOfTheEarlierOne)
{
    SetLogCallBackBase(Record);
    LogImpl(4, "a");
    SetLogCallBackBase(RecordLoudly);
    LogImpl(4, "b");

    EXPECT_EQ(recordedLines, (Lines{"4 a", "loud 4 b"}));
}

TEST_F(DURMBaseLibLog, ANullCallbackTakesTheCallbackAway)
{
    SetLogCallBackBase(Record);
    LogImpl(4, "a");
    SetLogCallBackBase(nullptr);
    LogImpl(4, "b");

    EXPECT_EQ(recordedLines, (Lines{"4 a"}));
}

TEST_F(DURMBaseLibLog, ThePlainNamesAndTheNamesInTheNamespaceAreTheSameFunctions)
{
    DURMBaseLib::SetLogCallBackBase(Record);

    ::LogImpl(3, "plain");
    DURMBaseLib::LogImpl(3, "in the namespace");

    EXPECT_EQ(recordedLines, (Lines{"3 plain", "3 in the namespace"}));
}

TEST_F(DURMBaseLibLog, EveryLineReachesOneCallbackWhileAnotherThreadExchangesThem)
{
    constexpr int kThreadCount = 4;
    constexpr int kLineCount = 5000;
    evenLines = oddLines = wrongLines = 0;
    SetLogCallBackBase(CountEven);

    std::vector<std::thread> threads;
    for (int i = 0; i < kThreadCount; ++i)
    {
        threads.emplace_back(
            []
            {
                for (int line = 0; line < kLineCount; ++line)
                {
                    LogImpl(6, kThreadLine);
                }
            });
    }
    for (int i = 0; i < kLineCount; ++i)
    {
        SetLogCallBackBase(i % 2 == 0 ? CountOdd : CountEven);
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }

    EXPECT_EQ(evenLines + oddLines, kThreadCount * kLineCount);
    EXPECT_EQ(wrongLines, 0);
}
