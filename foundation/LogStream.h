// VELL: data-driven hierarchical state machines.
// foundation/LogStream.h: one log line, from its tag to its newline.
#pragma once

#include <string>
#include <string_view>

namespace vell
{

/// The levels of log lines, as the host's callback receives them.
enum LogLevel : int
{
    LogError = 3,
    LogWarning = 4,
    LogInfo = 6,
    LogLua = 8,  ///< has a tag; no line of the library uses it
    LogPlain = 9 ///< has no tag: banners and section lines
};

/// Builds one line and writes it. The text of each value is that of a standard stream in its
/// default state. A null text inserts nothing; a null pointer inserts 0.
///
/// Lines nest: while one is being built, a call in it may write lines of its own, which come out
/// first.
class LogStream
{
public:
    /// The end of a line, to be inserted last: writes the line to standard error and hands it, with
    /// its tag and newline, to the logger.
    struct End
    {
    };

    /// Starts a line with the tag of `level`. Any number may be given; those without a tag start
    /// empty.
    explicit LogStream(int level);
    ~LogStream();
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    LogStream& operator<<(std::string_view value);
    LogStream& operator<<(const char* value);
    LogStream& operator<<(const std::string& value);
    LogStream& operator<<(bool value);
    LogStream& operator<<(int value);
    LogStream& operator<<(unsigned int value);
    LogStream& operator<<(const void* value);
    void operator<<(End);

    void Flush();

private:
    std::string* text; ///< one of the thread's line buffers, given back at the end
    int level;
};

/// What ends every log statement.
inline constexpr LogStream::End EndLine{};

} // namespace vell
