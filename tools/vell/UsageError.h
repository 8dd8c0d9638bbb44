// VELL: data-driven hierarchical state machines.
// tools/vell/UsageError.h: what is wrong with a command line, in words.
#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
class ParseError;
} // namespace CLI

namespace vell::tool
{

/// Gives the command that the names at the start of `words` lead to, such as context save. They do
/// not include the program's name. Gives null, with an error message in `fault`, when a word in the
/// place of a command names none.
const CLI::App* FindCommand(const CLI::App& app, const std::vector<std::string>& words,
                            std::string* fault);

/// Gives the error message for a command line that `app` could not parse.
std::string UsageErrorText(const CLI::App& app, const CLI::ParseError& error);

/// Gives the whole name of a command, such as `vell context save`.
std::string CommandPath(const CLI::App& command);

} // namespace vell::tool
