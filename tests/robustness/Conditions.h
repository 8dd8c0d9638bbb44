// VELL: data-driven hierarchical state machines.
// tests/robustness/Conditions.h: what the tests of hard conditions share.
#pragma once

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Sanitizer.h"

#include <cstddef>
#include <string>

namespace vell::test
{

/// Gives `full`, or `reduced` where a sanitizer makes every step slow.
constexpr unsigned int Scaled(unsigned int full, unsigned int reduced)
{
    return kIsSanitized ? reduced : full;
}

/// Gives the number in the environment variable `name`, or `otherwise`.
unsigned long long CountFromEnvironment(const char* name, unsigned long long otherwise);

/// Counts lines by what they mean and keeps none, so that it takes no memory, and keeps standard
/// error off the terminal. Lines may come from any number of threads.
class QuietLog
{
public:
    QuietLog();
    ~QuietLog();
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;

    /// Lines since the last `Clear`: all, those at the level of errors, and the last line of a
    /// failed Init.
    std::size_t Lines() const;
    std::size_t Errors() const;
    std::size_t FailedInits() const;
    void Clear();
    /// Sets the callback again, as a host may at any time.
    void Resume();

private:
    LogRecorder recorder;
};

/// A document with every kind of node, parameter, condition and attribute, a level, a blip that
/// ends, a skeleton and a script.
DocumentBuilder WholeDocument();

} // namespace vell::test
