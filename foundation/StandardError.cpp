// VELL: data-driven hierarchical state machines.
// foundation/StandardError.cpp: writing to standard error with as little as possible in between.
#include "foundation/StandardError.h"

#include <iostream>

// Writing around the streams requires knowing what is behind them.
#if defined(__GLIBC__) && defined(__GLIBCXX__)
#define VELL_DIRECT_STANDARD_ERROR
#include <cerrno>
#include <cstdio>
#include <ext/stdio_sync_filebuf.h>
#include <stdio_ext.h>
#include <unistd.h>
#endif

namespace vell
{
namespace
{

void WriteThroughStream(const char* characters, std::size_t count)
{
    // A host's static object may run a machine before the streams are there.
    static const std::ios_base::Init streams;
    std::cerr.write(characters, static_cast<std::streamsize>(count));
    if ((std::cerr.flags() & std::ios::unitbuf) == 0)
    {
        std::cerr.flush(); // which flushes what the stream is tied to once more
    }
}

#if defined(VELL_DIRECT_STANDARD_ERROR)
using StdioBuffer = __gnu_cxx::stdio_sync_filebuf<char>;

/// Gives what is behind `stream`, or null when a host has changed it before this library was
/// loaded: at first it is `file` itself.
StdioBuffer* FindBuffer(const std::ostream& stream, const std::FILE* file)
{
    auto* buffer = dynamic_cast<StdioBuffer*>(stream.rdbuf());
    return buffer != nullptr && buffer->file() == file ? buffer : nullptr;
}

StdioBuffer* const kStderrBuffer = FindBuffer(std::cerr, stderr);
StdioBuffer* const kStdoutBuffer = FindBuffer(std::cout, stdout);
// The common parts of the two streams, which are at an offset that is looked up at each use.
const std::ios* const kErrorState = &std::cerr;
const std::ios* const kOutputState = &std::cout;

bool IsErrorUntouched()
{
    return kStderrBuffer != nullptr && kErrorState->rdbuf() == kStderrBuffer;
}

bool IsOutputUntouched()
{
    return kStdoutBuffer != nullptr && kOutputState->rdbuf() == kStdoutBuffer &&
           kOutputState->tie() == nullptr;
}

/// Flushes what std::cerr is tied to, as each output to it does: std::cout, unless the host says
/// otherwise. What the host has written before a line comes out before it.
void FlushTiedStream()
{
    std::ostream* const tied = kErrorState->tie();
    if (tied == nullptr)
    {
        return;
    }
    if (tied == &std::cout && IsOutputUntouched() && __fpending(kStdoutBuffer->file()) == 0)
    {
        return; // saves the way through both libraries when nothing waits
    }
    tied->flush();
}

void WriteToDescriptor(int descriptor, const char* characters, std::size_t count)
{
    while (count != 0)
    {
        const ssize_t written = write(descriptor, characters, count);
        if (written < 0 && errno == EINTR)
        {
            continue;
        }
        if (written <= 0)
        {
            return;
        }
        characters += written;
        count -= static_cast<std::size_t>(written);
    }
}
#endif

} // namespace

void WriteToStandardError(const char* characters, std::size_t count)
{
#if defined(VELL_DIRECT_STANDARD_ERROR)
    // The way through two stream libraries to an unbuffered descriptor costs more than the line
    // itself.
    if (IsErrorUntouched())
    {
        FlushTiedStream();
        std::FILE* const file = kStderrBuffer->file();
        if (__fpending(file) != 0)
        {
            std::fflush(file);
        }
        WriteToDescriptor(fileno(file), characters, count);
        return;
    }
#endif
    WriteThroughStream(characters, count);
}

} // namespace vell
