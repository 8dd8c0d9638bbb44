// VELL: data-driven hierarchical state machines.
// tools/vell/main.cpp: the command `vell`.
#include "tools/vell/CommandLine.h"
#include "tools/vell/DescriptorBuffer.h"

#include <csignal>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <ostream>
#include <unistd.h>

namespace
{

using vell::tool::DescriptorBuffer;

/// Opens standard streams that the caller closed. Otherwise the first file that is opened, perhaps
/// the document, would take the place of one of them.
void OpenStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(descriptor, F_GETFD) < 0)
        {
            // Opened for reading, so that writes to it fail as they do on a closed one.
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    OpenStandardStreams();
    // A reader that has seen enough closes its pipe: the write then fails, and the command ends
    // with a message and its own exit code.
    std::signal(SIGPIPE, SIG_IGN);
    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
    DescriptorBuffer outBuffer(STDOUT_FILENO, isTerminal ? DescriptorBuffer::Flush::ByLine
                                                         : DescriptorBuffer::Flush::WhenFull);
    // Standard error is redirected for the library's log; the command writes its own errors to a
    // copy.
    DescriptorBuffer errorBuffer(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0),
                                 DescriptorBuffer::Flush::ByLine);
    std::ostream out(&outBuffer);
    std::ostream errors(&errorBuffer);
    try
    {
        std::ios::sync_with_stdio(false);
        vell::tool::Console console{out, errors};
        console.isOutTerminal = isTerminal;
        console.isErrorTerminal = isatty(STDERR_FILENO) != 0;
        return vell::tool::RunCommandLine(argc, argv, console);
    }
    catch (const std::exception& exception)
    {
        errors << "vell: " << exception.what() << '\n';
        return vell::tool::ExitFailed;
    }
}
