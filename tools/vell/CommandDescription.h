// VELL: data-driven hierarchical state machines.
// tools/vell/CommandDescription.h: what help, manual page and completions know of a command.
#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
} // namespace CLI

namespace vell::tool
{

struct OptionDescription
{
    std::string shortName; ///< such as `-o`; empty when there is none
    std::string longName;  ///< such as `--output`; of an argument its name, such as `DOCUMENT`
    std::string valueName; ///< such as `FILE` or `text|jsonl`; empty when it takes no value
    std::vector<std::string> choices; ///< the words that it takes; empty for any
    bool hasOptionalValue = false;    ///< the value may be left out, and is given with `=`
    bool isRequired = false;
    bool isRepeated = false; ///< an argument that may be given several times
    std::string description;
};

struct CommandDescription
{
    std::string path; ///< such as `vell context save`
    std::string name;
    std::string description;
    std::string footer; ///< lines of at most 80 columns
    std::vector<OptionDescription> arguments;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;
};

/// Describes `app` with its commands, in the order in which they were added.
CommandDescription Describe(const CLI::App& app);

/// Gives all commands that a user can call, in the order of the help: those without commands of
/// their own.
std::vector<const CommandDescription*> Leaves(const CommandDescription& command);

/// Gives `vell run [OPTIONS] DOCUMENT`.
std::string UsageOf(const CommandDescription& command);
/// Gives `-o, --output FILE`.
std::string SignatureOf(const OptionDescription& option);

/// Tells whether a value is the name of a file, by its name.
bool IsFileValue(const std::string& valueName);

/// Breaks a text into lines of at most `width` columns, at spaces.
std::vector<std::string> Wrapped(const std::string& text, std::size_t width);

} // namespace vell::tool
