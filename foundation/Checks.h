// VELL: data-driven hierarchical state machines.
// foundation/Checks.h: the four check statements. They are the only macros that change control
// flow.
#pragma once

#include "foundation/FunctionName.h"
#include "foundation/LogStream.h"

// Each statement tests an expression, and when it is zero, null or false writes a line at error
// level that names the function it stands in. A function with checks looks like this:
//
//     int result = 0;
//     do
//     {
//         ERROR_BREAK(pointer);     // leaves the block when null
//         ERROR_BREAK(Step());      // leaves the block when 0; Step then ran twice
//         result = 1;
//     } while (false);
//     return result;                // runs on the good and on the bad path
//
// ERROR_BREAK and ASSERT_BREAK are a plain `break`: they leave the innermost loop, switch or
// one-pass block. ERROR_GOTO jumps to a label of the function, ERROR_ASSERT goes on.

// Required: a failing `expr` is evaluated again for the line, so a call in it runs twice, with all
// its effects, and its own lines come out before this one; the value shown is that of the second
// run. Hosts count such calls. Do not store the first result here.
#define ERROR_BREAK(expr)                                                                          \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogStream(::vell::LogError) << "ERROR_BREAK(" << (expr) << ") at " << __LINE__     \
                                            << " in " << VELL_FUNCTION << ::vell::EndLine;         \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

#define ASSERT_BREAK(expr)                                                                         \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogStream(::vell::LogError)                                                        \
            << "ASSERT_BREAK at line: " << __LINE__ << " in function: " << VELL_FUNCTION           \
            << ::vell::EndLine;                                                                    \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

#define ERROR_GOTO(expr, label)                                                                    \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogStream(::vell::LogError)                                                        \
            << "ERROR_GOTO at line: " << __LINE__ << " in function: " << VELL_FUNCTION             \
            << ::vell::EndLine;                                                                    \
        goto label;                                                                                \
    }                                                                                              \
    static_assert(true, "a semicolon follows")

#define ERROR_ASSERT(expr)                                                                         \
    if (!(expr))                                                                                   \
    {                                                                                              \
        ::vell::LogStream(::vell::LogError)                                                        \
            << "ERROR_ASSERT at line: " << __LINE__ << " in " << VELL_FUNCTION << ::vell::EndLine; \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
