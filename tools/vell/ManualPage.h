// VELL: data-driven hierarchical state machines.
// tools/vell/ManualPage.h: the manual page of the command.
#pragma once

#include <string>

namespace vell::tool
{

struct CommandDescription;

/// Gives the page vell(1) for `man`, made of the same descriptions as the help.
std::string ManualPage(const CommandDescription& program, const std::string& version);

} // namespace vell::tool
