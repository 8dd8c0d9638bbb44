// VELL: data-driven hierarchical state machines.
// include/vell/Export.h: what makes a name visible outside the library.
#pragma once

// Where a class says that the order of its virtual functions is part of the interface, that is
// their order in the table of g++, clang and MinGW. Visual C++ puts functions that share a name
// side by side, last one first: FindDef of IHSM, FindParameter of IParameterTable, SetValue and
// GetValue of attributes. A host built by one kind does not fit a library built by the other.

// MSVC says its standard in a macro of its own. Under an older standard this is the only error of
// the headers; VELL_OLD_STANDARD leaves out what would give others.
#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 201703L
#define VELL_OLD_STANDARD
#error "VELL needs C++17 or later: compile with -std=c++17 (MSVC: /std:c++17)"
#endif

// VELL_STATIC: the library is linked statically, or its objects directly. VELL_BUILDING: the shared
// library itself is being built. Neither: a host uses the shared library.
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
#if defined(VELL_STATIC) || defined(_WIN32)
#define VELL_LOCAL
#else
#define VELL_LOCAL __attribute__((visibility("hidden")))
#endif
