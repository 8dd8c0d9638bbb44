// VELL: data-driven hierarchical state machines.
// bench/Process.h: what this process has used of the machine it runs on.
#pragma once

namespace vell::bench
{

/// Says why the program cannot go on, and ends it.
[[noreturn]] void Fail(const char* reason);

/// Sends standard error to where nobody reads it: writing a line then costs what the system takes
/// for the call.
void DiscardStandardError();

/// The seconds that this process has had of a processor, which others on the machine do not add to.
double ProcessorSeconds();

/// The bytes of memory that the system has given to this process.
double ResidentBytes();

/// Gives freed memory back to the system, so that what is allocated next is new memory.
void TrimHeap();

} // namespace vell::bench
