// VELL: data-driven hierarchical state machines.
// tools/check/Schema.h: the schema of machine documents, for editors.
#pragma once

#include <string>

namespace vell::check
{

/// Gives a JSON Schema (draft 2020-12) with the members and words of this vocabulary.
std::string MakeSchema();

} // namespace vell::check
