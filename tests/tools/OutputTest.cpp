// VELL: data-driven hierarchical state machines.
// tests/tools/OutputTest.cpp: output that cannot be written, its order, and its colours.
#include "tests/tools/CommandRun.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/DescriptorBuffer.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <iostream>
#include <optional>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <unistd.h>
#include <vector>

namespace vell::test
{
namespace
{

using tool::DescriptorBuffer;

/// Calls the command with its output on `descriptor`, which is closed.
Outcome CallOn(int descriptor, const std::vector<std::string>& words)
{
    std::vector<const char*> arguments{"vell"};
    for (const std::string& word : words)
    {
        arguments.push_back(word.c_str());
    }
    Outcome outcome;
    std::ostringstream errors;
    {
        DescriptorBuffer buffer(descriptor, DescriptorBuffer::Flush::WhenFull);
        std::ostream out(&buffer);
        outcome.code = tool::RunCommandLine(static_cast<int>(arguments.size()), arguments.data(),
                                            {out, errors});
    }
    close(descriptor);
    outcome.errors = errors.str();
    return outcome;
}

/// Collects what is written through two buffers in the order in which it arrives. Each holds its
/// text back until it is flushed.
class HeldBack : public std::stringbuf
{
public:
    explicit HeldBack(std::string& newArrived) : arrived(newArrived)
    {
    }

protected:
    int sync() override
    {
        arrived += str();
        str("");
        return 0;
    }

private:
    std::string& arrived;
};

/// Sets an environment variable, or unsets it, for as long as it lives.
class Variable
{
public:
    Variable(const char* newName, const char* value) : name(newName)
    {
        const char* old = std::getenv(name);
        saved = old == nullptr ? std::nullopt : std::optional<std::string>(old);
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Variable()
    {
        saved ? setenv(name, saved->c_str(), 1) : unsetenv(name);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name;
    std::optional<std::string> saved;
};

} // namespace

TEST(VellOutput, ExitsWithTwoWhenTheDiskIsFull)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("a.script", "expect stack X\n");
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"run", document, "--no-check"},
             {"graph", document, "--no-check"},
             {"tree", document, "--no-check", "--format", "text"},
             {"context", "save", document, "--no-check", "--after", "/dev/null"},
             {"help"},
             {"run", "--help"},
             {"--version"}})
    {
        const Outcome outcome = CallOn(open("/dev/full", O_WRONLY | O_CLOEXEC), words);

        EXPECT_EQ(outcome.code, tool::ExitUsage) << words[0];
        EXPECT_EQ(outcome.errors, "cannot write standard output: No space left on device\n");
    }
}

TEST(VellOutput, ExitsWithTwoWhenTheLogCannotBeWritten)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());

    // As in the command, whose streams are apart from those of stdio.
    __gnu_cxx::stdio_filebuf<char> buffer(STDERR_FILENO, std::ios::out, 1);
    std::streambuf* const before = std::cerr.rdbuf(&buffer);
    testing::internal::CaptureStderr();
    const Outcome outcome = CallVell({"run", document, "--log", "/dev/full"});
    buffer.pubsync();
    const std::string leaked = testing::internal::GetCapturedStderr();
    std::cerr.rdbuf(before);

    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, "cannot write /dev/full: No space left on device\n");
    EXPECT_EQ(leaked, "");
}

TEST(VellOutput, EndsALongRunWhenNobodyReadsIt)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    close(ends[0]);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    const Folder folder;

    // To its end this run would take hours.
    const Outcome outcome =
        CallOn(ends[1], {"run", folder.Write("a.json", Walker().Text()), "--no-check", "--ticks",
                         "1000000000000", "--explain=all"});

    std::signal(SIGPIPE, before);
    EXPECT_EQ(outcome.code, tool::ExitUsage);
    EXPECT_EQ(outcome.errors, "cannot write standard output: Broken pipe\n");
}

TEST(VellOutput, TellsTheFirstReasonToTheEnd)
{
    DescriptorBuffer buffer(-1, DescriptorBuffer::Flush::ByLine);
    std::ostream out(&buffer);
    out << "a" << std::flush;
    EXPECT_FALSE(out.good());

    out.clear();
    errno = 0;
    out << "\n";
    EXPECT_FALSE(out.good());
    EXPECT_EQ(errno, EBADF);
}

TEST(VellOutput, ComesBeforeTheFailureThatFollowsIt)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string script = folder.Write("a.script", "tick\nexpect stack X\ntick\n");
    const std::vector<const char*> arguments = {"vell",       "run",      document.c_str(),
                                                "--no-check", "--script", script.c_str()};
    std::string arrived;
    HeldBack outBuffer(arrived);
    HeldBack errorBuffer(arrived);
    std::ostream out(&outBuffer);
    std::ostream errors(&errorBuffer);
    errors << std::unitbuf;

    tool::RunCommandLine(static_cast<int>(arguments.size()), arguments.data(), {out, errors});

    EXPECT_EQ(arrived.substr(0, arrived.find("     2  arena")),
              "     0  entered  Locomotion\n"
              "     0  stack    Locomotion\n"
              "     1  entered  Stand\n"
              "     1  stack    Locomotion/Stand\n" +
                  script +
                  ":2: expected stack X, but it is Locomotion/Stand\n"
                  "     2  stack    Locomotion/Stand\n");
    EXPECT_EQ(errors.tie(), nullptr);
}

TEST(VellOutput, IsInColourWhereAPersonWatchesAndWantsIt)
{
    const Variable terminal("TERM", "xterm");
    {
        const Variable wish("NO_COLOR", nullptr);
        EXPECT_TRUE(tool::WantsColor("auto", true));
        EXPECT_FALSE(tool::WantsColor("auto", false));
        EXPECT_TRUE(tool::WantsColor("always", false));
        EXPECT_FALSE(tool::WantsColor("never", true));
        const Variable dumb("TERM", "dumb");
        EXPECT_FALSE(tool::WantsColor("auto", true));
    }
    const Variable wish("NO_COLOR", "1");
    EXPECT_FALSE(tool::WantsColor("auto", true));
    EXPECT_TRUE(tool::WantsColor("always", true));
    const Variable empty("NO_COLOR", "");
    EXPECT_TRUE(tool::WantsColor("auto", true));
}

TEST(VellOutput, HasTheSameTextInColour)
{
    const std::string script = "tick\nset speed 2\ntick\nexpect stack X\n";

    const Outcome plain = RunScript(Walker(), script, {"--explain"});
    Outcome colored = RunScript(Walker(), script, {"--explain", "--color", "always"});

    EXPECT_EQ(plain.out.find('\x1b'), std::string::npos);
    EXPECT_NE(colored.out.find("\x1b[32mentered\x1b[0m  Locomotion\n"), std::string::npos);
    EXPECT_EQ(colored.errors.substr(0, 5), "\x1b[31m");
    for (std::string* text : {&colored.out, &colored.errors})
    {
        for (std::size_t at = 0; (at = text->find('\x1b')) != std::string::npos;)
        {
            text->erase(at, text->find('m', at) + 1 - at);
        }
    }
    EXPECT_EQ(colored.out, plain.out);
    EXPECT_EQ(colored.errors, plain.errors);
}

} // namespace vell::test
