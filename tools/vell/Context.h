// VELL: data-driven hierarchical state machines.
// tools/vell/Context.h: a machine's recorded situation as JSON, and back into a machine.
#pragma once

#include <tessel/Tessel.h>

#include <string>

namespace vell::tool
{

class ObservedMachine;

/// Gives the "contextInfo" of a loaded machine as JSON: both stacks and the last change of state.
std::string SaveContext(const ObservedMachine& machine);

/// Puts the context in `json` into a machine that was started. Gives an empty text, or what is
/// wrong; a context that names a state which the machine does not have is restored up to there.
std::string RestoreContext(ObservedMachine& machine, const std::string& json);

/// Makes a table of the shape of "contextInfo" from what `SaveContext` gave; the caller closes it.
/// Null, with what is wrong in `fault`, when the text is not of that shape.
Tessel::KVTable ContextFromJson(const std::string& json, std::string* fault);

} // namespace vell::tool
