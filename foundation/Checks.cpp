// VELL: data-driven hierarchical state machines.
// foundation/Checks.cpp: the lines of failed checks.
#include "foundation/Checks.h"

namespace vell
{
namespace
{

template <class Value>
void WriteErrorBreak(Value value, int line, const char* function)
{
    LogStream(LogError) << "ERROR_BREAK(" << value << ") at " << line << " in "
                        << QualifiedName(function) << EndLine;
}

} // namespace

void LogErrorBreak(bool value, int line, const char* function)
{
    WriteErrorBreak(value, line, function);
}

void LogErrorBreak(int value, int line, const char* function)
{
    WriteErrorBreak(value, line, function);
}

void LogErrorBreak(unsigned int value, int line, const char* function)
{
    WriteErrorBreak(value, line, function);
}

void LogErrorBreak(const void* value, int line, const char* function)
{
    WriteErrorBreak(value, line, function);
}

void LogErrorBreak(const char* value, int line, const char* function)
{
    WriteErrorBreak(value, line, function);
}

void LogAssertBreak(int line, const char* function)
{
    LogStream(LogError) << "ASSERT_BREAK at line: " << line
                        << " in function: " << QualifiedName(function) << EndLine;
}

void LogErrorGoto(int line, const char* function)
{
    LogStream(LogError) << "ERROR_GOTO at line: " << line
                        << " in function: " << QualifiedName(function) << EndLine;
}

void LogErrorAssert(int line, const char* function)
{
    LogStream(LogError) << "ERROR_ASSERT at line: " << line << " in " << QualifiedName(function)
                        << EndLine;
}

} // namespace vell
