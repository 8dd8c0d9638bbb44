// VELL: data-driven hierarchical state machines.
// foundation/LogStream.h: one log line, from its tag to its newline.
#pragma once

#include <vell/LogLevel.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace vell
{

/// What a line of a log level starts with. The text is as wide for every level, so that it is
/// copied without a call; `size` says how much of it counts.
struct LineTag
{
    char text[16];
    std::size_t size;
};

class LineBuffers;

/// Where a line is built. Grows as needed and keeps its space.
class LineBuffer
{
public:
    /// `bufferOwner` gets it back; null when it is nobody's.
    explicit LineBuffer(LineBuffers* bufferOwner) : owner(bufferOwner)
    {
        Grow(kFirstCapacity);
    }
    /// Starts again with a tag. Cannot fail.
    void Start(const LineTag& tag)
    {
        static_assert(kFirstCapacity >= sizeof(tag.text), "there is space for any tag");
        std::memcpy(storage.get(), tag.text, sizeof(tag.text));
        size = tag.size;
    }
    void Append(const char* characters, std::size_t count)
    {
        if (count > capacity - size)
        {
            Grow(count);
        }
        if (count != 0) // an empty text may have no address, which memcpy does not take
        {
            std::memcpy(storage.get() + size, characters, count);
            size += count;
        }
    }
    void Append(int value);
    void Append(unsigned int value);
    void Append(const void* value);
    /// Gives space for `count` more characters, for writing them in place.
    char* Reserve(std::size_t count)
    {
        if (count > capacity - size)
        {
            Grow(count);
        }
        return storage.get() + size;
    }
    /// Takes over what was written in place, up to `end`.
    void AppendUpTo(const char* end)
    {
        size = static_cast<std::size_t>(end - storage.get());
    }
    const char* Characters() const
    {
        return storage.get();
    }
    std::size_t Size() const
    {
        return size;
    }
    LineBuffers* Owner() const
    {
        return owner;
    }

private:
    static constexpr std::size_t kFirstCapacity = 256;

    void Grow(std::size_t count);

    std::unique_ptr<char[]> storage;
    std::size_t size = 0;
    std::size_t capacity = 0;
    LineBuffers* owner;
};

/// The level of `SetLogLevel`.
extern std::atomic<int> loggedLevel;

/// Tells whether lines of `level` are written.
inline bool IsLogged(int level)
{
    return level <= loggedLevel.load(std::memory_order_relaxed);
}

/// Builds one line and writes it. The text of each value is that of a standard stream in its
/// default state. A null text inserts nothing; a null pointer inserts 0.
///
/// Lines nest: while one is being built, a call in it may write lines of its own, which come out
/// first. A line above the level of `SetLogLevel` is not built: what is inserted is left out.
class LogStream
{
public:
    /// The end of a line, to be inserted last: writes the line to standard error and hands it, with
    /// its tag and newline, to the logger.
    struct End
    {
    };

    /// Starts a line with the tag of `level`. Any number may be given; those without a tag start
    /// empty.
    explicit LogStream(int lineLevel)
        : text(IsLogged(lineLevel) ? Begin(lineLevel) : nullptr), level(lineLevel)
    {
    }
    ~LogStream()
    {
        if (text != nullptr)
        {
            GiveBack(text);
        }
    }
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    LogStream& operator<<(std::string_view value)
    {
        if (text != nullptr)
        {
            text->Append(value.data(), value.size());
        }
        return *this;
    }
    // Required: a null text leaves a gap, and the line continues.
    LogStream& operator<<(const char* value)
    {
        if (text != nullptr && value != nullptr)
        {
            text->Append(value, std::strlen(value));
        }
        return *this;
    }
    LogStream& operator<<(const std::string& value)
    {
        return *this << std::string_view(value);
    }
    /// A character would come out as its number. A text of one character says what is meant.
    LogStream& operator<<(char value) = delete;
    LogStream& operator<<(signed char value) = delete;
    LogStream& operator<<(unsigned char value) = delete;
    LogStream& operator<<(wchar_t value) = delete;
    LogStream& operator<<(char16_t value) = delete;
    LogStream& operator<<(char32_t value) = delete;
    LogStream& operator<<(bool value)
    {
        return *this << std::string_view(value ? "1" : "0");
    }
    LogStream& operator<<(int value)
    {
        return Insert(value);
    }
    LogStream& operator<<(unsigned int value)
    {
        return Insert(value);
    }
    LogStream& operator<<(const void* value)
    {
        return Insert(value);
    }
    void operator<<(End)
    {
        Flush();
    }

    void Flush()
    {
        if (text != nullptr)
        {
            Write(*text, level);
        }
    }

private:
    // Static, so that the compiler can keep a stream's members in registers.
    static LineBuffer* Begin(int level);
    static void Write(LineBuffer& text, int level);
    static void GiveBack(LineBuffer* text);

    template <class Value>
    LogStream& Insert(Value value)
    {
        if (text != nullptr)
        {
            text->Append(value);
        }
        return *this;
    }

    LineBuffer* const text; ///< one of the thread's; null when the line is left out
    const int level;
};

/// What ends every log statement, as std::endl does.
// NOLINTNEXTLINE(readability-identifier-naming): it reads like a manipulator.
inline constexpr LogStream::End EndLine{};

} // namespace vell
