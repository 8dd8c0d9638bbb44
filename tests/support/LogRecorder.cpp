// VELL: data-driven hierarchical state machines.
// tests/support/LogRecorder.cpp: recording of log lines.
#include "tests/support/LogRecorder.h"

#include <durm/DURMBaseLib.h>

#include "tests/support/System.h"

#include <algorithm>
#include <iostream>
#include <regex>

namespace vell::test
{
namespace
{

std::vector<LogLine>& Recorded()
{
    static std::vector<LogLine> lines;
    return lines;
}

void Record(int level, const char* text)
{
    Recorded().push_back({level, text});
}

std::string WithoutLineNumbers(const std::string& text)
{
    static const std::regex check("(\\) at |at line: )[0-9]+ in ");
    static const std::regex place("(\\.cpp : )[0-9]+$");
    return std::regex_replace(std::regex_replace(text, check, "$1# in "), place, "$1#");
}

/// The level of a test's own lines.
constexpr int kNote = 0;

std::string Shown(const LogLine& line)
{
    if (line.level == kNote)
    {
        return line.text;
    }
    std::string text = line.text;
    const std::size_t tagEnd = text.find("\t: ");
    if (text.rfind('[', 0) == 0 && tagEnd != std::string::npos)
    {
        text.erase(0, tagEnd + 3);
    }
    if (!text.empty() && text.back() == '\n')
    {
        text.pop_back();
    }
    return std::to_string(line.level) + " " + WithoutLineNumbers(text);
}

} // namespace

LogRecorder::LogRecorder()
{
    Recorded().clear();
    std::cerr.flush();
    savedError = SilenceStandardError();
    SetLogCallBackBase(Record);
}

LogRecorder::~LogRecorder()
{
    SetLogCallBackBase(nullptr);
    std::cerr.flush();
    RestoreStandardError(savedError);
}

Lines LogRecorder::Take()
{
    Lines shown;
    for (const LogLine& line : TakeRaw())
    {
        shown.push_back(Shown(line));
    }
    return shown;
}

Lines LogRecorder::Take(const std::vector<int>& levels)
{
    Lines shown;
    for (const LogLine& line : TakeRaw())
    {
        if (std::find(levels.begin(), levels.end(), line.level) != levels.end())
        {
            shown.push_back(Shown(line));
        }
    }
    return shown;
}

std::vector<LogLine> LogRecorder::TakeRaw()
{
    std::vector<LogLine> lines;
    lines.swap(Recorded());
    return lines;
}

void LogRecorder::Clear()
{
    Recorded().clear();
}

void LogRecorder::Note(const std::string& text)
{
    Recorded().push_back({kNote, text});
}

std::string ErrorBreak(const std::string& function, const std::string& value)
{
    return "3 ERROR_BREAK(" + value + ") at # in " + function;
}

std::string AssertBreak(const std::string& function)
{
    return "3 ASSERT_BREAK at line: # in function: " + function;
}

std::string ErrorGoto(const std::string& function)
{
    return "3 ERROR_GOTO at line: # in function: " + function;
}

std::string ErrorAssert(const std::string& function)
{
    return "3 ERROR_ASSERT at line: # in " + function;
}

} // namespace vell::test
