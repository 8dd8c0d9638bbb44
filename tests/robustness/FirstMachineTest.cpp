// VELL: data-driven hierarchical state machines.
// tests/robustness/FirstMachineTest.cpp: blocks refused to the first machine of a process.
#include <tessel/Tessel.h>

#include "tests/robustness/Conditions.h"
#include "tests/robustness/RefusedMemory.h"
#include "tests/support/HeapWatch.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vell::test
{
namespace
{

enum Ending
{
    Refused = 10,    ///< a failure or std::bad_alloc, and no table left
    NotReached = 11, ///< the life asks for fewer blocks
    TablesLeft = 12,
    Faulted = 13
};

/// Runs a life in a process of its own, in which no machine was made before: registries, kept keys
/// and line buffers are made there, too.
int EndingOf(const std::string& text, std::size_t count)
{
    const pid_t child = fork();
    if (child == 0)
    {
        int ending = NotReached;
        {
            HeapWatch heap;
            ending = LiveWithout(text, heap, count).refused ? Refused : NotReached;
        }
        {
            // The process is as good as new: the next machine finds what it needs.
            HeapWatch heap;
            const Fate next = LiveWithout(text, heap, 1000000);
            ending = next.initialised == 1 && !next.threw ? ending : Faulted;
        }
        _exit(Tessel::GetOpenTableCount() == 0 ? ending : TablesLeft);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : Faulted;
}

} // namespace

TEST(FirstMachine, SurvivesTheRefusalOfEveryBlock)
{
    const std::string text = WholeDocument().Text();
    const QuietLog log;
    const ParserBlocks parser = CountParserBlocks(text);
    unsigned int refused = 0;

    for (std::size_t count = 0;; ++count)
    {
        if (count == parser.before)
        {
            // The parser does not survive a refusal of its own blocks.
            count += parser.count;
        }
        const int ending = EndingOf(text, count);
        if (ending == NotReached)
        {
            break;
        }
        ASSERT_EQ(ending, Refused) << count;
        ++refused;
    }

    EXPECT_GT(refused, 150u);
    RecordProperty("blocks_refused", static_cast<int>(refused));
}

} // namespace vell::test
