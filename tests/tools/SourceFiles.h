// VELL: data-driven hierarchical state machines.
// tests/tools/SourceFiles.h: sources for tests, without a disk.
#pragma once

#include <durm/DURMBaseLib.h>

#include "tools/author/CheckSource.h"
#include "tools/author/Compile.h"

#include <map>
#include <string>

namespace vell::test
{

/// Texts by their paths.
using Files = std::map<std::string, std::string>;

/// Compiles the file "a.hsm.json" of `files`.
author::Compiled CompileFiles(const Files& files);
/// The same of one file.
author::Compiled CompileText(const std::string& text);
/// Gives a source with parameters of each type, the states Stand and Walk, and `members`, which
/// begin with a comma.
std::string SourceWith(const std::string& states, const std::string& members = "");

/// Gives the problems of a source as lines `FILE:LINE:COLUMN: MESSAGE; HINT`.
std::string ProblemsOf(const author::Compiled& compiled);

/// Gives a member of the root of a document, laid out with all members in the order of their names.
std::string PartOf(const std::string& document, DURMBaseLib::__JSONTYPES__ member);
/// The same of the whole document.
std::string Sorted(const std::string& document);

} // namespace vell::test
