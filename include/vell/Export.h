// VELL: data-driven hierarchical state machines.
// include/vell/Export.h: what makes a name visible outside the library.
#pragma once

// VELL_STATIC: the objects are linked directly into the host. VELL_BUILDING: the library itself is
// being built. Neither: a host uses the shared library.
#if defined(VELL_STATIC)
#define VELL_API
#elif defined(_WIN32)
#if defined(VELL_BUILDING)
#define VELL_API __declspec(dllexport)
#else
#define VELL_API __declspec(dllimport)
#endif
#else
#define VELL_API __attribute__((visibility("default")))
#endif

// VELL_LOCAL: an internal part of an exported class, which is not exported.
#if defined(_WIN32)
#define VELL_LOCAL
#else
#define VELL_LOCAL __attribute__((visibility("hidden")))
#endif
