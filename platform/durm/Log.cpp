// VELL: data-driven hierarchical state machines.
// platform/durm/Log.cpp: the logger, which hands each line to the host's callback.
#include <durm/DURMBaseLib.h>

#include <atomic>

namespace
{
using LogCallBack = void (*)(int level, const char* text);

// Machines on several threads log while a host may set or take away the callback.
std::atomic<LogCallBack> logCallBack{nullptr};
} // namespace

void LogImpl(int level, const char* text)
{
    const LogCallBack callBack = logCallBack.load(std::memory_order_acquire);
    if (callBack != nullptr)
    {
        callBack(level, text);
    }
}

void SetLogCallBackBase(void (*callback)(int level, const char* text))
{
    logCallBack.store(callback, std::memory_order_release);
}
