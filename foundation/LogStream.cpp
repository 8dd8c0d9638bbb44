// VELL: data-driven hierarchical state machines.
// foundation/LogStream.cpp: building and writing of log lines.
#include "foundation/LogStream.h"

#include "foundation/StandardError.h"

#include <durm/DURMBaseLib.h>

#include <charconv>
#include <cstdint>
#include <vector>

namespace vell
{

/// The line buffers of a thread: one for each line that is being built at the same time. They are
/// kept, so that writing a line allocates nothing after the first few.
class LineBuffers
{
public:
    LineBuffer* Take()
    {
        if (inUse == buffers.size())
        {
            buffers.push_back(std::make_unique<LineBuffer>());
        }
        return buffers[inUse++].get();
    }

    void GiveBack(LineBuffer* buffer)
    {
        buffer->Clear();
        --inUse;
    }

private:
    std::vector<std::unique_ptr<LineBuffer>> buffers;
    std::size_t inUse = 0;
};

namespace
{

/// Holds any tag, so that starting a line in a buffer that was made cannot fail.
constexpr std::size_t kFirstCapacity = 256;

thread_local LineBuffers* threadBuffers = nullptr;
thread_local bool buffersGone = false; ///< a host may still log from static objects' destructors

/// Makes the thread's buffers, and takes them away when the thread ends.
class BufferOwner
{
public:
    BufferOwner() : owned(std::make_unique<LineBuffers>())
    {
        threadBuffers = owned.get();
    }
    ~BufferOwner()
    {
        threadBuffers = nullptr;
        buffersGone = true;
    }
    BufferOwner(const BufferOwner&) = delete;
    BufferOwner& operator=(const BufferOwner&) = delete;

private:
    std::unique_ptr<LineBuffers> owned;
};

LineBuffers* MakeThreadBuffers()
{
    if (buffersGone)
    {
        return nullptr;
    }
    thread_local BufferOwner owner;
    return threadBuffers;
}

std::string_view Tag(int level)
{
    switch (level)
    {
    case LogError:
        return "[ERROR]\t: ";
    case LogWarning:
        return "[WARNING]\t: ";
    case LogInfo:
        return "[INFO]\t: ";
    case LogLua:
        return "[LUA]\t: ";
    default:
        return {};
    }
}

template <class Number>
void AppendNumber(LineBuffer& text, Number value, int base)
{
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), value, base);
    text.Append(digits, static_cast<std::size_t>(end.ptr - digits));
}

} // namespace

void LineBuffer::Grow(std::size_t count)
{
    std::size_t larger = capacity < kFirstCapacity ? kFirstCapacity : capacity * 2;
    while (larger - size < count)
    {
        larger *= 2;
    }
    std::unique_ptr<char[]> grown(new char[larger]);
    if (size != 0)
    {
        std::memcpy(grown.get(), room.get(), size);
    }
    room = std::move(grown);
    capacity = larger;
}

LogStream::LogStream(int lineLevel)
    : buffers(threadBuffers != nullptr ? threadBuffers : MakeThreadBuffers()),
      text(buffers != nullptr ? buffers->Take() : new LineBuffer),
      level(lineLevel)
{
    const std::string_view tag = Tag(level);
    text->Append(tag.data(), tag.size());
}

LogStream::~LogStream()
{
    if (buffers == nullptr)
    {
        delete text;
        return;
    }
    buffers->GiveBack(text);
}

LogStream& LogStream::operator<<(bool value)
{
    text->Append(value ? "1" : "0", 1);
    return *this;
}

LogStream& LogStream::operator<<(int value)
{
    AppendNumber(*text, value, 10);
    return *this;
}

LogStream& LogStream::operator<<(unsigned int value)
{
    AppendNumber(*text, value, 10);
    return *this;
}

LogStream& LogStream::operator<<(const void* value)
{
    if (value == nullptr)
    {
        text->Append("0", 1);
        return *this;
    }
    text->Append("0x", 2);
    AppendNumber(*text, reinterpret_cast<std::uintptr_t>(value), 16);
    return *this;
}

void LogStream::Flush()
{
    text->Append("\n", 1);
    text->Terminate();
    WriteToStandardError(text->Characters(), text->Size());
    LogImpl(level, text->Characters());
}

} // namespace vell
