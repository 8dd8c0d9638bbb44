// VELL: data-driven hierarchical state machines.
// tools/vell/DescriptorBuffer.cpp: writes that are interrupted, cut short or refused.
#include "tools/vell/DescriptorBuffer.h"

#include "tools/vell/System.h"

#include <cerrno>

namespace vell::tool
{
namespace
{

constexpr std::size_t kBlockSize = 65536;

} // namespace

DescriptorBuffer::DescriptorBuffer(int newDescriptor, Flush newFlush)
    : descriptor(newDescriptor), flush(newFlush)
{
}

DescriptorBuffer::~DescriptorBuffer()
{
    WriteOut();
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type c)
{
    if (traits_type::eq_int_type(c, traits_type::eof()))
    {
        return traits_type::not_eof(c);
    }
    const char byte = traits_type::to_char_type(c);
    return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
}

std::streamsize DescriptorBuffer::xsputn(const char* text, std::streamsize size)
{
    pending.append(text, static_cast<std::size_t>(size));
    const bool isLineEnd = !pending.empty() && pending.back() == '\n';
    const bool isDue = (flush == Flush::ByLine && isLineEnd) || pending.size() >= kBlockSize;
    return !isDue || WriteOut() ? size : 0;
}

int DescriptorBuffer::sync()
{
    return WriteOut() ? 0 : -1;
}

bool DescriptorBuffer::WriteOut()
{
    std::size_t done = 0;
    while (error == 0 && done < pending.size())
    {
        const std::ptrdiff_t count =
            WriteToDescriptor(descriptor, pending.data() + done, pending.size() - done);
        if (count >= 0)
        {
            done += static_cast<std::size_t>(count);
        }
        else if (errno != EINTR)
        {
            error = errno;
        }
    }
    pending.clear();
    errno = error;
    return error == 0;
}

} // namespace vell::tool
