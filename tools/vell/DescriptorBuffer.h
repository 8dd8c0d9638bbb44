// VELL: data-driven hierarchical state machines.
// tools/vell/DescriptorBuffer.h: a stream buffer that writes to a file descriptor.
#pragma once

#include <streambuf>
#include <string>

namespace vell::tool
{

/// Writes to a file descriptor. After a write that failed, every other one fails too and sets
/// `errno` to the same reason, so that the reason can still be told at the end.
class DescriptorBuffer : public std::streambuf
{
public:
    enum class Flush
    {
        ByLine,  ///< after a write that ends with a newline, and as below
        WhenFull ///< when a block is full, and when the stream is flushed
    };

    /// Does not close `descriptor`.
    DescriptorBuffer(int descriptor, Flush flush);
    /// Writes what is left.
    ~DescriptorBuffer() override;
    DescriptorBuffer(const DescriptorBuffer&) = delete;
    DescriptorBuffer& operator=(const DescriptorBuffer&) = delete;

protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    bool WriteOut();

    int descriptor;
    Flush flush;
    int error = 0; ///< of the first write that failed
    std::string pending;
};

} // namespace vell::tool
