// VELL: data-driven hierarchical state machines.
// foundation/Sanitizer.h: whether the build has a sanitizer.
#pragma once

// g++ and clang say it each in their own way.
#if defined(__SANITIZE_ADDRESS__)
#define VELL_ADDRESS_SANITIZER
#elif defined(__SANITIZE_THREAD__)
#define VELL_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELL_ADDRESS_SANITIZER
#elif __has_feature(thread_sanitizer)
#define VELL_THREAD_SANITIZER
#endif
#endif
