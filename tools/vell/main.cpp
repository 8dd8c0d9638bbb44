// VELL: data-driven hierarchical state machines.
// tools/vell/main.cpp: the command `vell`.
#include "tools/vell/CommandLine.h"
#include "tools/vell/DescriptorBuffer.h"
#include "tools/vell/System.h"

#include <exception>
#include <iostream>
#include <ostream>

int main(int argc, char** argv)
{
    using namespace vell::tool;
    PrepareStandardStreams();
    const bool isTerminal = IsTerminal(kStandardOutput);
    DescriptorBuffer outBuffer(kStandardOutput, isTerminal ? DescriptorBuffer::Flush::ByLine
                                                           : DescriptorBuffer::Flush::WhenFull);
    // Standard error is redirected for the library's log; the command writes its own errors to a
    // copy.
    DescriptorBuffer errorBuffer(DuplicateDescriptor(kStandardError),
                                 DescriptorBuffer::Flush::ByLine);
    std::ostream out(&outBuffer);
    std::ostream errors(&errorBuffer);
    try
    {
        std::ios::sync_with_stdio(false);
        Console console{out, errors};
        console.isOutTerminal = isTerminal;
        console.isErrorTerminal = IsTerminal(kStandardError);
        return RunCommandLine(argc, argv, console);
    }
    catch (const std::exception& exception)
    {
        errors << "vell: " << exception.what() << '\n';
        return ExitFailed;
    }
}
