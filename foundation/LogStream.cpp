// VELL: data-driven hierarchical state machines.
// foundation/LogStream.cpp: building and writing of log lines.
#include "foundation/LogStream.h"

#include <durm/DURMBaseLib.h>

#include "foundation/NoInline.h"
#include "foundation/StandardError.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <vector>

#if defined(__MINGW32__)
#include <cxxabi.h>
#endif

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
            Add();
        }
        return buffers[inUse++].get();
    }

    void GiveBack()
    {
        --inUse;
    }

private:
    VELL_NOINLINE void Add()
    {
        buffers.push_back(std::make_unique<LineBuffer>(this));
    }

    std::vector<std::unique_ptr<LineBuffer>> buffers;
    std::size_t inUse = 0;
};

namespace
{

thread_local LineBuffers* threadBuffers = nullptr;
thread_local bool buffersGone = false; ///< a host may still log from static objects' destructors

void ForgetThreadBuffers()
{
    threadBuffers = nullptr;
    buffersGone = true;
}

#if defined(__MINGW32__)
// There a thread's own memory is freed before the objects in it are destroyed, so the buffers are
// not an object in it: the thread is told of them, in the way of the compiler.
extern "C" char __dso_handle; // NOLINT(bugprone-reserved-identifier): the compiler's

void DeleteThreadBuffers(void* buffers)
{
    ForgetThreadBuffers();
    delete static_cast<LineBuffers*>(buffers);
}

LineBuffers* MakeOwnedBuffers()
{
    auto owned = std::make_unique<LineBuffers>();
    abi::__cxa_thread_atexit(DeleteThreadBuffers, owned.get(), &__dso_handle);
    threadBuffers = owned.release();
    return threadBuffers;
}
#else
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
        ForgetThreadBuffers();
    }
    BufferOwner(const BufferOwner&) = delete;
    BufferOwner& operator=(const BufferOwner&) = delete;

private:
    std::unique_ptr<LineBuffers> owned;
};

LineBuffers* MakeOwnedBuffers()
{
    thread_local BufferOwner owner;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the owner lives as long as its thread.
    return threadBuffers;
}
#endif

VELL_NOINLINE LineBuffers* MakeThreadBuffers()
{
    return buffersGone ? nullptr : MakeOwnedBuffers();
}

/// The tags by level, and none for the levels between.
constexpr LineTag kTags[] = {
    {"", 0}, {"", 0},           {"", 0}, {"[ERROR]\t: ", 10}, {"[WARNING]\t: ", 12},
    {"", 0}, {"[INFO]\t: ", 9}, {"", 0}, {"[LUA]\t: ", 8}};

const LineTag& TagOf(int level)
{
    constexpr int kCount = static_cast<int>(sizeof(kTags) / sizeof(kTags[0]));
    return kTags[level >= 0 && level < kCount ? level : 0];
}

/// The most digits of any number here, and a prefix.
constexpr std::size_t kMaxDigits = 24;

template <class Number>
void AppendNumber(LineBuffer& text, Number value, int base)
{
    char* digits = text.Reserve(kMaxDigits);
    text.AppendUpTo(std::to_chars(digits, digits + kMaxDigits, value, base).ptr);
}

} // namespace

VELL_NOINLINE void LineBuffer::Grow(std::size_t count)
{
    std::size_t larger = capacity == 0 ? kFirstCapacity : capacity * 2;
    while (larger - size < count)
    {
        larger *= 2;
    }
    std::unique_ptr<char[]> grown(new char[larger]);
    if (size != 0)
    {
        std::memcpy(grown.get(), storage.get(), size);
    }
    storage = std::move(grown);
    capacity = larger;
}

// Machines on several threads log while a host may set another level.
std::atomic<int> loggedLevel{std::numeric_limits<int>::max()};

void SetLogLevel(int level)
{
    loggedLevel.store(level, std::memory_order_relaxed);
}

void LineBuffer::Append(int value)
{
    AppendNumber(*this, value, 10);
}

void LineBuffer::Append(unsigned int value)
{
    AppendNumber(*this, value, 10);
}

void LineBuffer::Append(const void* value)
{
    if (value == nullptr)
    {
        Append("0", 1);
        return;
    }
    Append("0x", 2);
    AppendNumber(*this, reinterpret_cast<std::uintptr_t>(value), 16);
}

// Required: each line has a buffer of its own. A line that is written while this one is being built
// comes out first.
LineBuffer* LogStream::Begin(int level)
{
    LineBuffers* buffers = threadBuffers != nullptr ? threadBuffers : MakeThreadBuffers();
    LineBuffer* text = buffers != nullptr ? buffers->Take() : new LineBuffer(nullptr);
    text->Start(TagOf(level));
    return text;
}

void LogStream::Write(LineBuffer& text, int level)
{
    char* end = text.Reserve(2);
    end[0] = '\n';
    end[1] = '\0';
    text.AppendUpTo(end + 1);
    // Required: standard error gets the line even when a host has set a callback.
    WriteToStandardError(text.Characters(), text.Size());
    LogImpl(level, text.Characters());
}

void LogStream::GiveBack(LineBuffer* text)
{
    if (text->Owner() == nullptr)
    {
        delete text;
        return;
    }
    text->Owner()->GiveBack();
}

} // namespace vell
