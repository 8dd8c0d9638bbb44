// VELL: data-driven hierarchical state machines.
// foundation/StandardError.cpp: writing to standard error with as little as possible in between.
#include "foundation/StandardError.h"

#include <iostream>

#if defined(__GLIBC__)
#include <cerrno>
#include <cstdio>
#include <stdio_ext.h>
#include <unistd.h>
#endif

namespace vell
{
namespace
{

void WriteThroughStream(const char* characters, std::size_t count)
{
    std::cerr.write(characters, static_cast<std::streamsize>(count));
    std::cerr.flush();
}

#if defined(__GLIBC__)
/// What stands behind std::cerr before a host changes it: the unbuffered stderr.
const std::streambuf* const kFirstBuffer = std::cerr.rdbuf();

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
#if defined(__GLIBC__)
    // The way through two stream libraries to an unbuffered descriptor costs more than the line
    // itself.
    if (std::cerr.rdbuf() == kFirstBuffer)
    {
        if (__fpending(stderr) != 0)
        {
            std::fflush(stderr);
        }
        WriteToDescriptor(fileno(stderr), characters, count);
        return;
    }
#endif
    WriteThroughStream(characters, count);
}

} // namespace vell
