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

#if defined(__unix__)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace vell::test
{

TEST(StandardError, GoesWhereAHostHasTurnedTheStream)
{
    std::ostringstream target;
    std::streambuf* const own = std::cerr.rdbuf(target.rdbuf());

    WriteToStandardError("a line\nand more", 9);
    std::cerr.rdbuf(own);

    EXPECT_EQ(target.str(), "a line\nan");
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
