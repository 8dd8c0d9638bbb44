// VELL: data-driven hierarchical state machines.
// tests/foundation/LogStreamTest.cpp: the text of log lines and where they go.
#include "foundation/LogStream.h"

#include <durm/DURMBaseLib.h>

#include "tests/support/HeapWatch.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace vell::test
{
namespace
{

/// Writes one line of `level` that holds `value`, and gives it as the logger received it.
template <class Value>
std::string LineWith(const Value& value, int level = LogPlain)
{
    LogRecorder log;
    LogStream(level) << value << EndLine;
    const std::vector<LogLine> lines = log.TakeRaw();
    return lines.size() == 1 ? lines[0].text : std::to_string(lines.size()) + " lines";
}

/// Gives what a standard stream in its default state writes for `value`, with a newline.
template <class Value>
std::string Streamed(const Value& value)
{
    std::ostringstream stream;
    stream << value << std::endl;
    return stream.str();
}

template <class Value, class = void>
struct IsInsertable : std::false_type
{
};
template <class Value>
struct IsInsertable<
    Value, std::void_t<decltype(std::declval<LogStream&>() << std::declval<const Value&>())>>
    : std::true_type
{
};

const char* WriteInnerLine()
{
    LogStream(LogInfo) << "inner" << EndLine;
    return "value";
}

/// Sets a log level for as long as it lives.
class LoggedLevel
{
public:
    explicit LoggedLevel(int level)
    {
        SetLogLevel(level);
    }
    ~LoggedLevel()
    {
        SetLogLevel(INT_MAX);
    }
    LoggedLevel(const LoggedLevel&) = delete;
    LoggedLevel& operator=(const LoggedLevel&) = delete;
};

} // namespace

TEST(LogStream, BeginsEachLineWithTheTagOfItsLevelAndASeparator)
{
    EXPECT_EQ(LineWith("text", 3), "[ERROR]\t: text\n");
    EXPECT_EQ(LineWith("text", 4), "[WARNING]\t: text\n");
    EXPECT_EQ(LineWith("text", 6), "[INFO]\t: text\n");
    EXPECT_EQ(LineWith("text", 8), "[LUA]\t: text\n");
}

TEST(LogStream, WritesLinesOfOtherLevelsWithoutTagAndSeparator)
{
    for (const int level : {9, 0, 1, 2, 5, 7, 10, -1, INT_MAX, INT_MIN})
    {
        EXPECT_EQ(LineWith("text", level), "text\n") << level;
    }
}

TEST(LogStream, PassesNewlinesOfAMessageThroughAndAddsTheFinalOne)
{
    EXPECT_EQ(LineWith("\n\nImporting HSM layers"), "\n\nImporting HSM layers\n");
    EXPECT_EQ(LineWith("\n"), "\n\n");
}

TEST(LogStream, WritesTextsAsTheyAre)
{
    EXPECT_EQ(LineWith("a\tb"), "a\tb\n");
    EXPECT_EQ(LineWith(std::string(5000, 'x')), std::string(5000, 'x') + "\n");
    EXPECT_EQ(LineWith(std::string_view("part of it").substr(0, 4)), "part\n");
}

TEST(LogStream, InsertsNothingForANullTextAndGoesOn)
{
    const char* text = nullptr;
    LogRecorder log;

    LogStream(LogInfo) << "before (" << text << ") after" << EndLine;

    EXPECT_EQ(log.Take(), (Lines{"6 before () after"}));
}

TEST(LogStream, WritesNumbersLikeAStandardStream)
{
    for (const int number : {0, 7, -7, INT_MAX, INT_MIN})
    {
        EXPECT_EQ(LineWith(number), Streamed(number));
    }
    for (const unsigned int number : {0u, 7u, UINT_MAX})
    {
        EXPECT_EQ(LineWith(number), Streamed(number));
    }
}

TEST(LogStream, TakesNoSingleCharacter)
{
    EXPECT_FALSE(IsInsertable<char>::value);
    EXPECT_FALSE(IsInsertable<signed char>::value);
    EXPECT_FALSE(IsInsertable<unsigned char>::value);
    EXPECT_FALSE(IsInsertable<wchar_t>::value);
    EXPECT_FALSE(IsInsertable<char16_t>::value);
    EXPECT_FALSE(IsInsertable<char32_t>::value);
    EXPECT_TRUE(IsInsertable<int>::value);
    EXPECT_TRUE(IsInsertable<bool>::value);
    EXPECT_TRUE(IsInsertable<const char*>::value);
    EXPECT_TRUE(IsInsertable<std::string>::value);
}

TEST(LogStream, WritesTruthAsANumber)
{
    EXPECT_EQ(LineWith(true), "1\n");
    EXPECT_EQ(LineWith(false), "0\n");
}

TEST(LogStream, WritesPointersLikeAStandardStream)
{
    const int object = 0;
    const void* pointer = &object;
    const void* none = nullptr;

    EXPECT_EQ(LineWith(pointer), Streamed(pointer));
    EXPECT_EQ(LineWith(none), "0\n");
}

TEST(LogStream, WritesTheSameLineToStandardErrorAndToTheLogger)
{
    LogRecorder log;
    testing::internal::CaptureStderr();

    LogStream(LogWarning) << "number " << 5 << EndLine;

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[WARNING]\t: number 5\n");
    const std::vector<LogLine> lines = log.TakeRaw();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, 4);
    EXPECT_EQ(lines[0].text, "[WARNING]\t: number 5\n");
}

TEST(LogStream, WritesToStandardErrorBeforeItCallsTheLogger)
{
    static std::string captured;
    captured.clear();
    SetLogCallBackBase(
        [](int, const char*)
        {
            captured = testing::internal::GetCapturedStderr();
        });
    testing::internal::CaptureStderr();

    LogStream(LogInfo) << "first" << EndLine;
    SetLogCallBackBase(nullptr);

    EXPECT_EQ(captured, "[INFO]\t: first\n");
}

TEST(LogStream, WritesToStandardErrorAlsoWithoutACallback)
{
    SetLogCallBackBase(nullptr);
    testing::internal::CaptureStderr();

    LogStream(LogPlain) << "nobody listens" << EndLine;

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "nobody listens\n");
}

TEST(LogStream, WritesOnlyWhenItIsFinished)
{
    LogRecorder log;

    LogStream line(LogInfo);
    line << "half";

    EXPECT_EQ(log.Take(), Lines{});
    line.Flush();
    EXPECT_EQ(log.Take(), (Lines{"6 half"}));
}

TEST(LogStream, LetsALineThatIsWrittenMeanwhileComeOutFirst)
{
    LogRecorder log;

    LogStream(LogError) << "outer " << WriteInnerLine() << EndLine;

    EXPECT_EQ(log.Take(), (Lines{"6 inner", "3 outer value"}));
}

TEST(LogStream, AllocatesNothingOnceItHasWrittenALineOfTheLength)
{
    // The recorder would keep the lines.
    LogRecorder log;
    SetLogCallBackBase(nullptr);
    LogStream(LogInfo) << std::string(1000, 'x') << EndLine;
    HeapWatch heap;

    LogStream(LogInfo) << "some text " << 5 << " " << true << EndLine;

    EXPECT_EQ(heap.Mallocs() + heap.News(), 0u);
}

TEST(LogStream, LeavesOutWhatIsAboveTheLevelButEvaluatesIt)
{
    LogRecorder log;
    const LoggedLevel level(LogInfo);

    LogStream(LogPlain) << "outer " << WriteInnerLine() << std::string("s") << 1 << 1u << true
                        << static_cast<const void*>(&log) << EndLine;

    EXPECT_EQ(log.Take(), (Lines{"6 inner"}));
}

TEST(LogStream, AllocatesNothingForALineThatIsLeftOut)
{
    const LoggedLevel level(LogInfo - 1);
    std::size_t blocks = 1;

    std::thread(
        [&blocks]
        {
            HeapWatch heap;
            LogStream(LogInfo) << "some text " << 5 << EndLine;
            blocks = heap.Mallocs() + heap.News();
        })
        .join();

    EXPECT_EQ(blocks, 0u);
}

TEST(LogStream, WritesANumberBehindATextOfAnyLength)
{
    LogRecorder log;
    const auto writeInFreshThread = [](std::size_t length)
    {
        std::thread(
            [length]
            {
                LogStream(LogInfo) << std::string(length, 'x') << 12345 << EndLine;
            })
            .join();
    };

    for (std::size_t length = 0; length < 300; ++length)
    {
        writeInFreshThread(length);
        ASSERT_EQ(log.Take(), (Lines{"6 " + std::string(length, 'x') + "12345"}));
    }
}

TEST(LogStream, StillWritesWhileItsThreadEnds)
{
    struct LateLine
    {
        ~LateLine()
        {
            LogStream(LogInfo) << "late" << EndLine;
        }
    };
    LogRecorder log;

    std::thread(
        []
        {
            thread_local LateLine late;
            static_cast<void>(&late);
            LogStream(LogInfo) << "early" << EndLine;
        })
        .join();

    EXPECT_EQ(log.Take(), (Lines{"6 early", "6 late"}));
}

} // namespace vell::test
