// VELL: data-driven hierarchical state machines.
// tools/vell/Context.h: a machine's recorded situation as JSON, and back into a machine.
#pragma once

#include <tessel/Tessel.h>

#include <string>

namespace vell::tool
{

class ObservedMachine;

/// Gives the "contextInfo" of a loaded machine as JSON: both stacks and the last state change.
std::string SaveContext(const ObservedMachine& machine);

/// Restores the context in `json` in a started machine. Returns an empty text, or an error message.
/// A context with an unknown state is restored up to that state.
std::string RestoreContext(ObservedMachine& machine, const std::string& json);

/// Creates a table like "contextInfo" from the text of `SaveContext`; the caller closes it. Null,
/// with an error message in `fault`, when the text is invalid.
Tessel::KVTable ContextFromJson(const std::string& json, std::string* fault);

} // namespace vell::tool
