// VELL: data-driven hierarchical state machines.
// tests/model/QuietStandardError.h: keeps the log off the terminal.
#pragma once

namespace model
{

/// Sends the process's standard error nowhere as long as it lives, but for what a sanitizer says.
class QuietStandardError
{
public:
    QuietStandardError();
    ~QuietStandardError();
    QuietStandardError(const QuietStandardError&) = delete;
    QuietStandardError& operator=(const QuietStandardError&) = delete;

private:
    int saved;
};

} // namespace model
