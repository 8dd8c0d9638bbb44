// VELL: data-driven hierarchical state machines.
// tools/vell/UsageError.cpp: unknown commands and options, and what is missing.
#include "tools/vell/UsageError.h"

#include "tools/vell/Suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace vell::tool
{
namespace
{

std::vector<const CLI::App*> SubcommandsOf(const CLI::App& app)
{
    return app.get_subcommands(
        [](const CLI::App*)
        {
            return true;
        });
}

std::vector<std::string> NamesOf(const std::vector<const CLI::App*>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const CLI::App* command : commands)
    {
        names.push_back(command->get_name());
    }
    return names;
}

/// The command that the command line named: the innermost one that was reached.
const CLI::App& ParsedCommand(const CLI::App& app)
{
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
    {
        command = command->get_subcommands().back();
    }
    return *command;
}

std::string SeeHelp(const CLI::App& command)
{
    return "\nSee: " + CommandPath(command) + " --help";
}

std::vector<std::string> OptionNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
    {
        for (const std::string& name : option->get_lnames())
        {
            names.push_back("--" + name);
        }
    }
    return names;
}

bool IsOption(const std::string& word)
{
    return word.size() > 1 && word[0] == '-';
}

/// Says how an option takes a value that may be left out, when there was such an option.
std::string ValueHint(const CLI::App& command, const std::string& word)
{
    for (const CLI::Option* option : command.get_options())
    {
        if (option->count() != 0 && option->get_expected_max() == 0 &&
            !option->get_type_name().empty())
        {
            return "; did you mean '" + option->get_name() + "=" + word + "'?";
        }
    }
    return "";
}

/// What is wrong with the words that were left over. An option that is unknown explains more than
/// an argument that is too many.
std::string UnexpectedText(const CLI::App& command, const std::vector<std::string>& words)
{
    const auto option = std::find_if(words.begin(), words.end(), IsOption);
    const std::string& word = option == words.end() ? words.front() : *option;
    if (!IsOption(word))
    {
        return "unexpected argument '" + word + "'" + ValueHint(command, word);
    }
    const std::string name = word.substr(0, word.find('='));
    return "unknown option '" + name + "'" + DidYouMean(name, OptionNames(command));
}

std::string MissingText(const CLI::App& command, const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::vector<std::string> names = NamesOf(SubcommandsOf(command));
    if (!names.empty())
    {
        return "the command is missing; expected " + ListOfWords(names);
    }
    const std::string tail = " is required";
    const std::size_t at = text.rfind(tail);
    return at == std::string::npos ? text : text.substr(0, at) + " is missing";
}

/// An option without its value, or given twice.
std::string MismatchText(const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find(':'));
    return text.find("received") == std::string::npos ? name + ": the value is missing"
                                                      : name + " is given more than once";
}

} // namespace

std::string CommandPath(const CLI::App& command)
{
    const CLI::App* parent = command.get_parent();
    return parent == nullptr ? command.get_name() : CommandPath(*parent) + " " + command.get_name();
}

const CLI::App* FindCommand(const CLI::App& app, const std::vector<std::string>& words,
                            std::string* fault)
{
    const CLI::App* command = &app;
    for (const std::string& word : words)
    {
        const std::vector<const CLI::App*> known = SubcommandsOf(*command);
        if (known.empty() || IsOption(word))
        {
            break;
        }
        const std::vector<std::string> names = NamesOf(known);
        const auto found = std::find(names.begin(), names.end(), word);
        if (found == names.end())
        {
            std::string hint = DidYouMean(word, names);
            if (hint.empty() && word.find('.') != std::string::npos)
            {
                hint = "; to run a document: " + CommandPath(app) + " run " + word;
            }
            *fault = "unknown command '" + word + "'" +
                     (hint.empty() ? "; expected " + ListOfWords(names) : hint) + SeeHelp(*command);
            return nullptr;
        }
        command = known[static_cast<std::size_t>(found - names.begin())];
    }
    return command;
}

std::string UsageErrorText(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App& command = ParsedCommand(app);
    std::string text = error.what();
    const std::vector<std::string> rest = app.remaining(true);
    const bool hasUnknownOption = std::any_of(rest.begin(), rest.end(), IsOption);
    if (hasUnknownOption)
    {
        text = UnexpectedText(command, rest);
    }
    else if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
    {
        text = UnexpectedText(command, {text.substr(text.rfind(": ") + 2)});
    }
    else if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
    {
        text = MissingText(command, error);
    }
    else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
    {
        text = MismatchText(error);
    }
    return text + SeeHelp(command);
}

} // namespace vell::tool
