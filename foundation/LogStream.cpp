// VELL: data-driven hierarchical state machines.
// foundation/LogStream.cpp: building and writing of log lines.
#include "foundation/LogStream.h"

#include <durm/DURMBaseLib.h>

#include <charconv>
#include <cstdint>
#include <iostream>
#include <memory>
#include <vector>

namespace vell
{
namespace
{

constexpr std::size_t kFirstCapacity = 256; ///< holds any tag, so that starting a line cannot fail

/// The line buffers of a thread: one for each line that is being built at the same time. They are
/// kept, so that writing a line allocates nothing after the first few.
class LineBuffers
{
public:
    LineBuffers() = default;
    LineBuffers(const LineBuffers&) = delete;
    LineBuffers& operator=(const LineBuffers&) = delete;
    ~LineBuffers();

    std::string* Take()
    {
        if (inUse == buffers.size())
        {
            buffers.push_back(NewBuffer());
        }
        return buffers[inUse++].get();
    }

    static std::unique_ptr<std::string> NewBuffer()
    {
        auto buffer = std::make_unique<std::string>();
        buffer->reserve(kFirstCapacity);
        return buffer;
    }

    void GiveBack(std::string* buffer)
    {
        buffer->clear();
        --inUse;
    }

private:
    std::vector<std::unique_ptr<std::string>> buffers;
    std::size_t inUse = 0;
};

/// A host may still log from the destructors of its static objects, when the thread's buffers are
/// gone.
thread_local bool buffersGone = false;

LineBuffers::~LineBuffers()
{
    buffersGone = true;
}

LineBuffers& ThreadBuffers()
{
    thread_local LineBuffers buffers;
    return buffers;
}

std::string* TakeBuffer()
{
    return buffersGone ? LineBuffers::NewBuffer().release() : ThreadBuffers().Take();
}

void GiveBuffer(std::string* buffer)
{
    if (buffersGone)
    {
        delete buffer;
        return;
    }
    ThreadBuffers().GiveBack(buffer);
}

std::string_view Tag(int level)
{
    switch (level)
    {
    case LogError:
        return "[ERROR]";
    case LogWarning:
        return "[WARNING]";
    case LogInfo:
        return "[INFO]";
    case LogLua:
        return "[LUA]";
    default:
        return {};
    }
}

template <class Number>
void AppendNumber(std::string& text, Number value, int base)
{
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), value, base);
    text.append(digits, end.ptr);
}

} // namespace

LogStream::LogStream(int lineLevel) : text(TakeBuffer()), level(lineLevel)
{
    const std::string_view tag = Tag(level);
    if (!tag.empty())
    {
        text->append(tag).append("\t: ");
    }
}

LogStream::~LogStream()
{
    GiveBuffer(text);
}

LogStream& LogStream::operator<<(std::string_view value)
{
    text->append(value);
    return *this;
}

LogStream& LogStream::operator<<(const char* value)
{
    if (value != nullptr)
    {
        text->append(value);
    }
    return *this;
}

LogStream& LogStream::operator<<(const std::string& value)
{
    text->append(value);
    return *this;
}

LogStream& LogStream::operator<<(bool value)
{
    text->push_back(value ? '1' : '0');
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
        text->push_back('0');
        return *this;
    }
    text->append("0x");
    AppendNumber(*text, reinterpret_cast<std::uintptr_t>(value), 16);
    return *this;
}

void LogStream::operator<<(End)
{
    Flush();
}

void LogStream::Flush()
{
    text->push_back('\n');
    std::cerr.write(text->data(), static_cast<std::streamsize>(text->size()));
    std::cerr.flush();
    LogImpl(level, text->c_str());
}

} // namespace vell
