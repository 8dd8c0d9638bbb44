// VELL: data-driven hierarchical state machines.
// tests/support/LogRecorder.h: what the library logs while a test runs.
#pragma once

#include <string>
#include <vector>

namespace vell::test
{

using Lines = std::vector<std::string>;

/// One line as the logger received it.
struct LogLine
{
    int level;
    std::string text; ///< with tag and newline
};

/// Records every line for as long as it lives, in place of the callback that was set, and keeps the
/// lines off the terminal. One recorder lives at a time.
class LogRecorder
{
public:
    LogRecorder();
    ~LogRecorder();
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    /// The lines since the last call, each as "LEVEL TEXT": the level's number, a blank, and the
    /// text without tag and last newline. Numbers of source lines are shown as #, so that
    /// "ERROR_BREAK(0) at 12 in f" reads "3 ERROR_BREAK(0) at # in f" and "x - SMState.cpp : 7"
    /// reads "6 x - SMState.cpp : #".
    Lines Take();
    /// The same, of the levels given only.
    Lines Take(const std::vector<int>& levels);
    /// The lines since the last call as they came.
    std::vector<LogLine> TakeRaw();
    /// Forgets the lines.
    void Clear();

    /// Adds a line of the test's own between those of the library. `Take` shows it as it is,
    /// without a level; `Take` with levels leaves it out. Does nothing to what the library logs.
    static void Note(const std::string& text);

private:
    int savedError = -1; ///< standard error as it was
};

/// The lines that the checks write, as `LogRecorder::Take` shows them.
std::string ErrorBreak(const std::string& function, const std::string& value = "0");
std::string AssertBreak(const std::string& function);
std::string ErrorGoto(const std::string& function);
std::string ErrorAssert(const std::string& function);

} // namespace vell::test
