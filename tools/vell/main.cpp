// VELL: data-driven hierarchical state machines.
// tools/vell/main.cpp: the command `vell`.
#include "tools/vell/CommandLine.h"

#include <exception>
#include <iostream>
#include <ostream>
#include <streambuf>
#include <unistd.h>

namespace
{

/// Writes to a file descriptor, unbuffered.
class DescriptorBuffer : public std::streambuf
{
public:
    explicit DescriptorBuffer(int newDescriptor) : descriptor(newDescriptor)
    {
    }

protected:
    int_type overflow(int_type c) override
    {
        const char byte = traits_type::to_char_type(c);
        return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        return write(descriptor, text, static_cast<std::size_t>(size));
    }

private:
    int descriptor;
};

} // namespace

int main(int argc, char** argv)
{
    // Standard error is redirected for the library's log; the command writes its own errors to a
    // copy.
    DescriptorBuffer buffer(dup(STDERR_FILENO));
    std::ostream errors(&buffer);
    try
    {
        std::ios::sync_with_stdio(false);
        if (isatty(STDOUT_FILENO) != 0)
        {
            std::cout << std::unitbuf; // show output at once on a terminal
        }
        return vell::tool::RunCommandLine(argc, argv, std::cout, errors,
                                          isatty(STDERR_FILENO) != 0);
    }
    catch (const std::exception& exception)
    {
        errors << "vell: " << exception.what() << '\n';
        return vell::tool::ExitFailed;
    }
}
