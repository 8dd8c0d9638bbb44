// VELL: data-driven hierarchical state machines.
// tools/vell/HelpFormatter.cpp: the columns of the help.
#include "tools/vell/HelpFormatter.h"

#include "tools/vell/CommandDescription.h"

namespace vell::tool
{
namespace
{

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 26; ///< where the descriptions begin

/// One entry: the left side, and the description beside it, or below when the left side is wide.
std::string Entry(const std::string& left, const std::string& description)
{
    std::string text = "  " + left;
    if (text.size() + 2 > kColumn)
    {
        text += '\n';
        text.append(kColumn, ' ');
    }
    else
    {
        text.append(kColumn - text.size(), ' ');
    }
    bool isFirst = true;
    for (const std::string& line : Wrapped(description, kWidth - kColumn))
    {
        text += (isFirst ? "" : "\n" + std::string(kColumn, ' ')) + line;
        isFirst = false;
    }
    return text + '\n';
}

std::string Section(const std::string& title, const std::string& entries)
{
    return entries.empty() ? "" : "\n" + title + ":\n" + entries;
}

} // namespace

std::string HelpFormatter::make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const
{
    const CommandDescription command = Describe(*app);
    std::string arguments;
    for (const OptionDescription& argument : command.arguments)
    {
        arguments += Entry(argument.longName, argument.description);
    }
    std::string options;
    for (const OptionDescription& option : command.options)
    {
        options += Entry(SignatureOf(option), option.description);
    }
    std::string commands;
    for (const CommandDescription& subcommand : command.commands)
    {
        commands += Entry(subcommand.name, subcommand.description);
    }
    return command.description + "\n\nUsage: " + UsageOf(command) + '\n' +
           Section("Arguments", arguments) + Section("Commands", commands) +
           Section("Options", options) + (command.footer.empty() ? "" : command.footer + '\n');
}

} // namespace vell::tool
