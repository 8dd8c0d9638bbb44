// VELL: data-driven hierarchical state machines.
// tests/model/Sanitizer.h: whether a sanitizer is at work, and where it reports.
#pragma once

// clang tells of its sanitizers in its own way.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VELL_MODEL_IS_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELL_MODEL_IS_SANITIZED 1
#endif

#if defined(VELL_MODEL_IS_SANITIZED)
#include <cstdint>
#include <sanitizer/common_interface_defs.h>
#endif

namespace model
{

/// Makes a sanitizer's reports go to the file `descriptor`; does nothing without one.
inline void SendSanitizerReports([[maybe_unused]] int descriptor)
{
#if defined(VELL_MODEL_IS_SANITIZED)
    // The interface wants the number of the file as a pointer.
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)));
#endif
}

} // namespace model
