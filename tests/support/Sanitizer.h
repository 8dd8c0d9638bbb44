// VELL: data-driven hierarchical state machines.
// tests/support/Sanitizer.h: whether a sanitizer is at work, and where it reports.
#pragma once

#include "foundation/Sanitizer.h"

#if defined(VELL_ADDRESS_SANITIZER) || defined(VELL_THREAD_SANITIZER)
#define VELL_SANITIZER
#include <cstdint>
#include <sanitizer/common_interface_defs.h>
#endif

namespace vell::test
{

#if defined(VELL_SANITIZER)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// Makes a sanitizer's reports go to the file `descriptor`; does nothing without one.
inline void SendSanitizerReports([[maybe_unused]] int descriptor)
{
#if defined(VELL_SANITIZER)
    // The interface wants the number of the file as a pointer.
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)));
#endif
}

} // namespace vell::test
