// VELL: data-driven hierarchical state machines.
// tools/vell/Completion.h: scripts that complete the command's words in a shell.
#pragma once

#include <string>

namespace vell::tool
{

struct CommandDescription;

/// Each gives a whole script. The words are commands, options, their choices, and file names.
std::string BashCompletion(const CommandDescription& program);
std::string ZshCompletion(const CommandDescription& program);
std::string FishCompletion(const CommandDescription& program);

} // namespace vell::tool
