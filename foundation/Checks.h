// VELL: data-driven hierarchical state machines.
// foundation/Checks.h: the check statements. They are the only macros that change control
// flow.
#pragma once

#include "foundation/FunctionName.h"
#include "foundation/LogStream.h"

// Each statement tests an expression, and when it is zero, null or false writes a line at error
// level that names the function it is in. A function with checks looks like this:
//
//     ERROR_RETURN(pointer, 0);     // returns 0 when null
//     ERROR_RETURN(Step(), 0);      // returns 0 when Step gives 0; Step then ran twice
//     return 1;
//
// Where code runs on the good and on the bad path, or a loop is left, the checks break:
//
//     do
//     {
//         ERROR_BREAK(pointer);
//         return 1;
//     } while (false);
//     Uninit();
//     return 0;
//
// ERROR_BREAK and ASSERT_BREAK are a plain `break`: they leave the innermost loop, switch or
// one-pass block. ERROR_RETURN writes the line of ERROR_BREAK and returns. ERROR_GOTO jumps to a
// label of the function, ERROR_ASSERT goes on.

// Writing the line is left to functions that no passing check enters.
#if defined(__GNUC__)
#define VELL_COLD __attribute__((cold, noinline))
#else
#define VELL_COLD
#endif

namespace vell
{

VELL_COLD void LogErrorBreak(bool value, int line, const char* function);
VELL_COLD void LogErrorBreak(int value, int line, const char* function);
VELL_COLD void LogErrorBreak(unsigned int value, int line, const char* function);
VELL_COLD void LogErrorBreak(const void* value, int line, const char* function);
VELL_COLD void LogErrorBreak(const char* value, int line, const char* function);
VELL_COLD void LogAssertBreak(int line, const char* function);
VELL_COLD void LogErrorGoto(int line, const char* function);
VELL_COLD void LogErrorAssert(int line, const char* function);

} // namespace vell

// Required: a failing `expr` is evaluated again for the line, so a call in it runs twice, with all
// its effects, and its own lines come out before this one. Hosts count such calls. Do not store the
// first result here.
// Required: the line shows the value of the second run, and the step fails even when that run
// succeeds.
#define ERROR_BREAK(expr)                                                                          \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogErrorBreak((expr), __LINE__, VELL_FUNCTION);                                    \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

#define ERROR_RETURN(expr, result)                                                                 \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogErrorBreak((expr), __LINE__, VELL_FUNCTION);                                    \
        return result;                                                                             \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

// Required: unlike ERROR_BREAK, this evaluates `expr` once and its line shows no value.
#define ASSERT_BREAK(expr)                                                                         \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogAssertBreak(__LINE__, VELL_FUNCTION);                                           \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

#define ERROR_GOTO(expr, label)                                                                    \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogErrorGoto(__LINE__, VELL_FUNCTION);                                             \
        goto label;                                                                                \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

// Required: the line is all that happens; the function continues with what failed the test.
#define ERROR_ASSERT(expr)                                                                         \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogErrorAssert(__LINE__, VELL_FUNCTION);                                           \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
