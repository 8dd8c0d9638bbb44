// VELL: data-driven hierarchical state machines.
// tools/vell/HelpCommand.cpp: printing the help of a command.
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/HelpFormatter.h"
#include "tools/vell/Session.h"
#include "tools/vell/UsageError.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vell::tool
{
namespace
{

int ShowHelp(const CLI::App& app, Session& session, const std::vector<std::string>& words)
{
    std::string fault;
    const CLI::App* command = FindCommand(app, words, &fault);
    if (command == nullptr)
    {
        session.errors << fault << '\n';
        return ExitUsage;
    }
    // `App::help` would show the help of the command that was called, which is this one.
    session.out << HelpFormatter().make_help(command, "", CLI::AppFormatMode::Normal);
    return ExitWell;
}

} // namespace

void AddHelpCommand(CLI::App& app, Session& session)
{
    const auto words = std::make_shared<std::vector<std::string>>();
    CLI::App* help = session.AddCommand(app, "help", "Shows the help of a command",
                                        [&app, &session, words]
                                        {
                                            return ShowHelp(app, session, *words);
                                        });
    help->add_option("COMMAND", *words, "Such as: run, or: context save");
}

} // namespace vell::tool
