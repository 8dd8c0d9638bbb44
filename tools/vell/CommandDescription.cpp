// VELL: data-driven hierarchical state machines.
// tools/vell/CommandDescription.cpp: the walk over the commands and their options.
#include "tools/vell/CommandDescription.h"

#include "tools/check/Code.h"
#include "tools/vell/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <iterator>

namespace vell::tool
{
namespace
{

/// The words in `text|jsonl|NAME` that are to be typed as they are: those in lower case, or all
/// where none is in lower case.
std::vector<std::string> ChoicesOf(const std::string& valueName)
{
    std::vector<std::string> choices;
    if (valueName.find('|') == std::string::npos)
    {
        return choices;
    }
    const bool hasLower = std::any_of(valueName.begin(), valueName.end(),
                                      [](unsigned char c)
                                      {
                                          return std::islower(c) != 0;
                                      });
    for (std::size_t begin = 0; begin <= valueName.size();)
    {
        const std::size_t end = std::min(valueName.find('|', begin), valueName.size());
        const std::string word = valueName.substr(begin, end - begin);
        if (!hasLower || std::none_of(word.begin(), word.end(),
                                      [](unsigned char c)
                                      {
                                          return std::isupper(c) != 0;
                                      }))
        {
            choices.push_back(word);
        }
        begin = end + 1;
    }
    return choices;
}

/// The codes of the check.
std::vector<std::string> Codes(bool withAll)
{
    std::vector<std::string> codes;
    if (withAll)
    {
        codes.emplace_back("all");
    }
    for (const check::CodeEntry* entry : check::AllCodes())
    {
        codes.push_back(check::NameOf(entry->code));
    }
    return codes;
}

OptionDescription Describe(const CLI::Option& option)
{
    OptionDescription description;
    description.description = option.get_description();
    description.isRequired = option.get_required();
    const std::string typeName = option.get_type_name();
    description.valueName = typeName;
    description.choices = ChoicesOf(typeName);
    if (option.get_positional())
    {
        description.longName = option.get_name(true);
        description.isRepeated = option.get_items_expected_max() > 1;
        return description;
    }
    description.hasOptionalValue = option.get_expected_max() == 0 && !typeName.empty();
    description.shortName = option.get_snames().empty() ? "" : "-" + option.get_snames().front();
    description.longName = option.get_lnames().empty() ? "" : "--" + option.get_lnames().front();
    if (typeName == "CODE")
    {
        description.choices = Codes(description.longName == "--explain");
    }
    return description;
}

/// An argument that is the name of a command takes those beside it.
void OfferCommands(CommandDescription& command)
{
    std::vector<std::string> names;
    for (const CommandDescription& subcommand : command.commands)
    {
        names.push_back(subcommand.name);
    }
    for (CommandDescription& subcommand : command.commands)
    {
        for (OptionDescription& argument : subcommand.arguments)
        {
            if (argument.longName == "COMMAND")
            {
                argument.choices = names;
            }
        }
    }
}

} // namespace

CommandDescription Describe(const CLI::App& app)
{
    CommandDescription command;
    command.path = CommandPath(app);
    command.name = app.get_name();
    command.description = app.get_description();
    command.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options())
    {
        (option->get_positional() ? command.arguments : command.options)
            .push_back(Describe(*option));
    }
    for (const CLI::App* subcommand : app.get_subcommands(
             [](const CLI::App*)
             {
                 return true;
             }))
    {
        command.commands.push_back(Describe(*subcommand));
    }
    OfferCommands(command);
    return command;
}

std::vector<const CommandDescription*> Leaves(const CommandDescription& command)
{
    std::vector<const CommandDescription*> leaves;
    for (const CommandDescription& subcommand : command.commands)
    {
        const std::vector<const CommandDescription*> inner = Leaves(subcommand);
        leaves.insert(leaves.end(), inner.begin(), inner.end());
    }
    if (command.commands.empty())
    {
        leaves.push_back(&command);
    }
    return leaves;
}

std::string UsageOf(const CommandDescription& command)
{
    std::string usage = command.path;
    usage += command.options.empty() ? "" : " [OPTIONS]";
    for (const OptionDescription& option : command.options)
    {
        usage += option.isRequired ? " " + option.longName + " " + option.valueName : "";
    }
    for (const OptionDescription& argument : command.arguments)
    {
        const std::string name = argument.longName + (argument.isRepeated ? "..." : "");
        usage += argument.isRequired ? " " + name : " [" + name + "]";
    }
    return usage + (command.commands.empty() ? "" : " COMMAND");
}

std::string SignatureOf(const OptionDescription& option)
{
    std::string text = option.shortName;
    text += text.empty() || option.longName.empty() ? "" : ", ";
    text += option.longName;
    if (option.hasOptionalValue)
    {
        return text + "[=" + option.valueName + "]";
    }
    return text + (option.valueName.empty() ? "" : " " + option.valueName);
}

bool IsFileValue(const std::string& valueName)
{
    static const char* const names[] = {"FILE", "SCRIPT", "DOCUMENT", "CONTEXT", "A", "B"};
    return std::find(std::begin(names), std::end(names), valueName) != std::end(names);
}

std::vector<std::string> Wrapped(const std::string& text, std::size_t width)
{
    std::vector<std::string> lines(1);
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        if (!lines.back().empty() && lines.back().size() + 1 + word.size() > width)
        {
            lines.emplace_back();
        }
        lines.back() += (lines.back().empty() ? "" : " ") + word;
        begin = end + 1;
    }
    return lines;
}

} // namespace vell::tool
