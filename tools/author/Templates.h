// VELL: data-driven hierarchical state machines.
// tools/author/Templates.h: sources to begin with.
#pragma once

#include <string>
#include <vector>

namespace vell::author
{

/// A source with remarks, and a script that drives it.
struct Template
{
    const char* name;
    const char* description;
    const char* source; ///< NAME stands for the machine's name
    const char* script;
};

const std::vector<Template>& Templates();

} // namespace vell::author
