// VELL: data-driven hierarchical state machines.
// tests/foundation/StandardErrorTest.cpp: the ways to the standard error stream.
#include "foundation/StandardError.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#if defined(__unix__)
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace
{

/// What the next calls of write do: how many characters they take, or the negative of an error.
std::vector<ssize_t> answers;
std::size_t writes = 0;

} // namespace

extern "C" ssize_t __real_write(int descriptor, const void* characters, size_t count);
extern "C" ssize_t __wrap_write(int descriptor, const void* characters, size_t count);

extern "C" ssize_t __wrap_write(int descriptor, const void* characters, size_t count)
{
    ++writes;
    if (answers.empty())
    {
        return __real_write(descriptor, characters, count);
    }
    const ssize_t answer = answers.front();
    answers.erase(answers.begin());
    if (answer < 0)
    {
        errno = static_cast<int>(-answer);
        return -1;
    }
    return __real_write(descriptor, characters, static_cast<size_t>(answer));
}
#endif

namespace vell::test
{
namespace
{

/// Counts how often it is flushed.
class CountingBuffer : public std::stringbuf
{
public:
    int flushes = 0;

protected:
    int sync() override
    {
        ++flushes;
        return 0;
    }
};

/// Ties the standard error stream to another one for as long as it lives.
class Tied
{
public:
    explicit Tied(std::ostream* other) : own(std::cerr.tie(other))
    {
    }
    ~Tied()
    {
        std::cerr.tie(own);
    }
    Tied(const Tied&) = delete;
    Tied& operator=(const Tied&) = delete;

private:
    std::ostream* own;
};

} // namespace

TEST(StandardError, FlushesFirstWhatItIsTiedTo)
{
    CountingBuffer buffer;
    std::ostream other(&buffer);
    const Tied tied(&other);

    testing::internal::CaptureStderr();
    WriteToStandardError("one", 3);
    WriteToStandardError("two", 3);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "onetwo");
    EXPECT_EQ(buffer.flushes, 2);
}

TEST(StandardError, FlushesNothingWhenItIsTiedToNothing)
{
    CountingBuffer buffer;
    std::ostream other(&buffer);
    const Tied tied(nullptr);

    testing::internal::CaptureStderr();
    WriteToStandardError("one", 3);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one");
    EXPECT_EQ(buffer.flushes, 0);
}

TEST(StandardError, GoesWhereAHostHasTurnedTheStream)
{
    std::ostringstream target;
    std::streambuf* const own = std::cerr.rdbuf(target.rdbuf());

    WriteToStandardError("a line\nand more", 9);
    std::cerr.rdbuf(own);

    EXPECT_EQ(target.str(), "a line\nan");
}

TEST(StandardError, IsFlushedAfterEachLineAlsoWhenAHostHasItBuffered)
{
    CountingBuffer target;
    std::streambuf* const own = std::cerr.rdbuf(&target);
    std::cerr.unsetf(std::ios::unitbuf);

    WriteToStandardError("a line", 6);
    std::cerr.setf(std::ios::unitbuf);
    std::cerr.rdbuf(own);

    EXPECT_EQ(target.str(), "a line");
    EXPECT_EQ(target.flushes, 1);
}

#if defined(__unix__)

namespace
{

/// Turns the descriptor of the standard error stream to a file for as long as it lives.
class TurnedDescriptor
{
public:
    TurnedDescriptor(const std::string& path, int flags) : kept(dup(STDERR_FILENO))
    {
        const int file = open(path.c_str(), flags, 0600);
        EXPECT_NE(file, -1);
        EXPECT_EQ(dup2(file, STDERR_FILENO), STDERR_FILENO);
        close(file);
    }
    ~TurnedDescriptor()
    {
        dup2(kept, STDERR_FILENO);
        close(kept);
    }
    TurnedDescriptor(const TurnedDescriptor&) = delete;
    TurnedDescriptor& operator=(const TurnedDescriptor&) = delete;

private:
    int kept;
};

} // namespace

TEST(StandardError, FollowsWhatTheHostHasWrittenAndNotYetFlushed)
{
    const std::string path = testing::TempDir() + "vell-standard-error.txt";
    char buffer[256];
    {
        const TurnedDescriptor turned(path, O_WRONLY | O_CREAT | O_TRUNC);
        std::setvbuf(stderr, buffer, _IOFBF, sizeof(buffer));
        std::fputs("first ", stderr);
        WriteToStandardError("second", 6);
        std::fflush(stderr);
        std::setvbuf(stderr, nullptr, _IONBF, 0);
    }

    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_EQ(text, "first second");
    std::remove(path.c_str());
}

TEST(StandardError, WritesOnWhereADescriptorTakesAPartOrIsInterrupted)
{
    struct Case
    {
        const char* name;
        std::vector<ssize_t> answers;
        std::string written;
        std::size_t calls;
    };
    const Case cases[] = {
        {"a part", {3}, "one line", 2},
        {"several parts", {1, 2, 3}, "one line", 4},
        {"interrupted before the first", {-EINTR, -EINTR}, "one line", 3},
        {"interrupted after a part", {3, -EINTR, 2}, "one line", 4},
        {"an error", {-EIO}, "", 1},
        {"an error after a part", {3, -EIO}, "one", 2},
        {"nothing taken", {0}, "", 1},
    };
    for (const Case& each : cases)
    {
        testing::internal::CaptureStderr();
        answers = each.answers;
        writes = 0;

        WriteToStandardError("one line", 8);

        const std::size_t calls = writes;
        answers.clear();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), each.written) << each.name;
        EXPECT_EQ(calls, each.calls) << each.name;
    }
}

TEST(StandardError, IsGivenUpWhenNobodyTakesIt)
{
    {
        const TurnedDescriptor turned("/dev/null", O_RDONLY);
        WriteToStandardError("lost", 4);
    }

    EXPECT_TRUE(std::cerr.good());
}

#endif

} // namespace vell::test
