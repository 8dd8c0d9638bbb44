// VELL: data-driven hierarchical state machines.
// tools/author/SourceSchema.h: the JSON Schema of sources.
#pragma once

#include <string>

namespace vell::author
{

/// Gives the JSON Schema (2020-12) of sources, for editors: of main files, of those that they
/// include and of those that levels are taken from. Comments and trailing commas are the editor's
/// to allow.
std::string MakeSourceSchema();

} // namespace vell::author
