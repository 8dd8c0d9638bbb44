// VELL: data-driven hierarchical state machines.
// tools/vell/HelpFormatter.h: the help of a command, in 80 columns.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace vell::tool
{

/// Writes the help of the command and of each subcommand that is added after it was set.
class HelpFormatter : public CLI::FormatterBase
{
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;
};

} // namespace vell::tool
