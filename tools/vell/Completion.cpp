// VELL: data-driven hierarchical state machines.
// tools/vell/Completion.cpp: the scripts for bash, zsh and fish.
#include "tools/vell/Completion.h"

#include "tools/vell/CommandDescription.h"

#include <functional>

namespace vell::tool
{
namespace
{

using Visitor = std::function<void(const CommandDescription& command, const std::string& words)>;

/// Visits a command and all below it. `words` are the names behind the program's, with spaces.
void Visit(const CommandDescription& command, const std::string& words, const Visitor& visit)
{
    visit(command, words);
    for (const CommandDescription& subcommand : command.commands)
    {
        Visit(subcommand, words + (words.empty() ? "" : " ") + subcommand.name, visit);
    }
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
    {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

/// The words that a user can type behind a command, without its options.
std::string NextWords(const CommandDescription& command)
{
    std::vector<std::string> words;
    for (const CommandDescription& subcommand : command.commands)
    {
        words.push_back(subcommand.name);
    }
    for (const OptionDescription& argument : command.arguments)
    {
        words.insert(words.end(), argument.choices.begin(), argument.choices.end());
    }
    return Joined(words);
}

std::string OptionWords(const CommandDescription& command)
{
    std::vector<std::string> words;
    for (const OptionDescription& option : command.options)
    {
        words.push_back(option.longName);
    }
    return Joined(words);
}

bool TakesFiles(const CommandDescription& command)
{
    for (const OptionDescription& argument : command.arguments)
    {
        if (IsFileValue(argument.longName))
        {
            return true;
        }
    }
    return false;
}

/// Quotes a text for any of the shells.
std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text)
    {
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return quoted + "'";
}

/// A text in what zsh is told of an option: brackets and colons are marks there.
std::string ZshText(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
    {
        escaped += c == '[' || c == ']' || c == ':' ? "\\" : "";
        escaped += c;
    }
    return escaped;
}

std::string ZshValue(const OptionDescription& option)
{
    if (!option.choices.empty())
    {
        return "(" + Joined(option.choices) + ")";
    }
    const bool isFile = IsFileValue(option.valueName) || IsFileValue(option.longName);
    return isFile ? "_files" : " ";
}

std::string ZshOption(const OptionDescription& option)
{
    const std::string mark = option.hasOptionalValue ? "=-" : option.valueName.empty() ? "" : "=";
    std::string text = option.longName + mark + "[" + ZshText(option.description) + "]";
    if (option.hasOptionalValue)
    {
        text += "::" + ZshText(option.valueName) + ":" + ZshValue(option);
    }
    else if (!option.valueName.empty())
    {
        text += ":" + ZshText(option.valueName) + ":" + ZshValue(option);
    }
    return Quoted(text);
}

/// A function of zsh that completes what is behind one command.
std::string ZshFunction(const CommandDescription& command, const std::string& words)
{
    std::string name = "_vell";
    for (const char c : words.empty() ? words : " " + words)
    {
        name += c == ' ' ? '_' : c;
    }
    std::string text =
        name + "() {\n  local context state state_descr line\n  typeset -A opt_args\n";
    text += "  _arguments -C";
    for (const OptionDescription& option : command.options)
    {
        text += " \\\n    " + ZshOption(option);
    }
    for (const OptionDescription& argument : command.arguments)
    {
        text += " \\\n    " + Quoted(":" + argument.longName + ":" + ZshValue(argument));
    }
    if (command.commands.empty())
    {
        return text + "\n}\n\n";
    }
    text +=
        " \\\n    '1:command:->command' '*::argument:->argument'\n  case $state in\n  command)\n";
    text += "    local -a commands=(";
    std::string cases;
    for (const CommandDescription& subcommand : command.commands)
    {
        text += "\n      " + Quoted(ZshText(subcommand.name) + ":" + subcommand.description);
        cases += "    " + subcommand.name + ") " + name + "_" + subcommand.name + " ;;\n";
    }
    return text + ")\n    _describe command commands ;;\n  argument)\n    case $line[1] in\n" +
           cases + "    esac ;;\n  esac\n}\n\n";
}

/// Branches of `case` statements of bash.
struct BashCases
{
    std::string known;  ///< steps into a command
    std::string values; ///< what an option takes, behind the command and the option
    std::string next;   ///< what is behind a command
};

void AddBashCases(const CommandDescription& command, const std::string& words, BashCases& cases)
{
    const std::string margin = "        ";
    cases.known += words.empty() ? "" : margin + Quoted(words) + ") path=$try ;;\n";
    for (const OptionDescription& option : command.options)
    {
        if (option.valueName.empty() || option.hasOptionalValue)
        {
            continue;
        }
        cases.values += margin + Quoted(words + " " + option.longName);
        cases.values +=
            option.shortName.empty() ? "" : "|" + Quoted(words + " " + option.shortName);
        const bool isFile = IsFileValue(option.valueName);
        cases.values +=
            ") " + (isFile ? "files=1" : "words=" + Quoted(Joined(option.choices))) + " ;;\n";
    }
    cases.next += margin + Quoted(words) + ") words=" + Quoted(NextWords(command)) +
                  " options=" + Quoted(OptionWords(command)) +
                  (TakesFiles(command) ? " files=1" : "") + " ;;\n";
}

} // namespace

std::string BashCompletion(const CommandDescription& program)
{
    BashCases cases;
    Visit(program, "",
          [&cases](const CommandDescription& command, const std::string& words)
          {
              AddBashCases(command, words, cases);
          });
    return "# bash completion of vell. Load it with: source <(vell completion bash)\n"
           "_vell() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} path='' try i words='' options='' "
           "files=''\n"
           "    local previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    COMPREPLY=()\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        try=\"${path:+$path }${COMP_WORDS[i]}\"\n"
           "        case $try in\n" +
           cases.known +
           "        esac\n"
           "    done\n"
           "    # bash splits --option=value at the equals sign.\n"
           "    [[ $current == '=' ]] && current=''\n"
           "    [[ $previous == '=' ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    case \"$path $previous\" in\n" +
           cases.values +
           "        *)\n"
           "        case $path in\n" +
           cases.next +
           "        esac ;;\n"
           "    esac\n"
           "    [[ $current == -* || -z $words$files ]] && words=$options\n"
           "    if [[ -z $files || $current == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    else\n"
           "        compopt -o filenames 2>/dev/null\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "    return 0\n"
           "}\n"
           "complete -F _vell vell\n";
}

std::string ZshCompletion(const CommandDescription& program)
{
    std::string text = "#compdef vell\n# zsh completion of vell. Put it as _vell in a folder of "
                       "$fpath.\n\n";
    Visit(program, "",
          [&text](const CommandDescription& command, const std::string& words)
          {
              text += ZshFunction(command, words);
          });
    return text + "_vell \"$@\"\n";
}

std::string FishCompletion(const CommandDescription& program)
{
    std::string text = "# fish completion of vell. Load it with: vell completion fish | source\n"
                       "function __vell_at\n"
                       "    set -l words (commandline -opc)\n"
                       "    set -l names (string match -v -- '-*' $words[2..-1])\n"
                       "    test (count $names) -ge (count $argv); or return 1\n"
                       "    test (count $argv) -eq 0; and return (count $names)\n"
                       "    test \"$names[1..\"(count $argv)\"]\" = \"$argv\"\n"
                       "end\n"
                       "complete -c vell -f\n";
    Visit(program, "",
          [&text](const CommandDescription& command, const std::string& words)
          {
              const std::string start = "complete -c vell -n '__vell_at " + words + "'";
              for (const CommandDescription& subcommand : command.commands)
              {
                  text += start + " -a " + Quoted(subcommand.name) + " -d " +
                          Quoted(subcommand.description) + '\n';
              }
              for (const OptionDescription& argument : command.arguments)
              {
                  const bool isFile = IsFileValue(argument.longName);
                  const std::string value =
                      isFile ? "-F" : "-a " + Quoted(Joined(argument.choices));
                  text += start + " " + value + '\n';
              }
              for (const OptionDescription& option : command.options)
              {
                  text += start +
                          (option.shortName.empty() ? "" : " -s " + option.shortName.substr(1)) +
                          " -l " + option.longName.substr(2);
                  const bool takesValue = !option.hasOptionalValue && !option.valueName.empty();
                  const bool isFile = IsFileValue(option.valueName);
                  // Without -x fish would offer the files that an argument may be.
                  text += takesValue ? isFile ? " -r -F" : " -x" : "";
                  text += option.choices.empty() ? "" : " -a " + Quoted(Joined(option.choices));
                  text += " -d " + Quoted(option.description) + '\n';
              }
          });
    return text;
}

} // namespace vell::tool
