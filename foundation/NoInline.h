// VELL: data-driven hierarchical state machines.
// foundation/NoInline.h: keeping a function out of those that call it.
#pragma once

/// In front of a function that is seldom needed by one that is often called: in line, each call
/// would pay for its registers and its space.
#if defined(__GNUC__)
#define VELL_NOINLINE __attribute__((noinline))
#else
#define VELL_NOINLINE
#endif
