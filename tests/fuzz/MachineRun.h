// VELL: data-driven hierarchical state machines.
// tests/fuzz/MachineRun.h: a machine's whole life, and what has to hold after it.
#pragma once

#include <vell/IHSM.h>

#include <memory>
#include <string>

namespace vell::fuzz
{

class Bytes;

/// Ends the process with `what` when `holds` is false, so that the fuzzer keeps the input.
void Require(bool holds, const char* what);

/// One tick. The one exception that a tick may throw ends here.
void Tick(IHSM& machine, float timeStep);

/// Makes a machine of `text`, initialises, starts and ticks it twenty times, and takes it down. A
/// tool's writes between the ticks come from `writes`, when it is not null. No table is left.
void RunDocument(const std::string& text, Bytes* writes);

} // namespace vell::fuzz
