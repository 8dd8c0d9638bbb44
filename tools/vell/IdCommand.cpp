// VELL: data-driven hierarchical state machines.
// tools/vell/IdCommand.cpp: printing the ids that parameters have by their names.
#include <durm/DURMBaseLib.h>

#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kIdHelp = R"(
The id of a parameter is the CRC of its name. One id per line, in the order of
the names. With -, names are read from standard input, one per line; empty lines
are skipped.

Examples:
  vell id speed                    254213878
  printf 'speed\njump\n' | vell id -)";

void PrintId(Session& session, std::string name)
{
    session.out << DURMBaseLib::ConvertStringToCRC(name) << '\n';
}

void PrintIdsOfInput(Session& session)
{
    std::string line;
    while (std::getline(std::cin, line))
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        if (!line.empty())
        {
            PrintId(session, line);
        }
    }
}

int PrintIds(Session& session, const std::vector<std::string>& names)
{
    for (const std::string& name : names)
    {
        if (name.empty())
        {
            session.errors << "a parameter needs a name: an empty one has the id 0, which means "
                              "none\n";
            return ExitUsage;
        }
    }
    for (const std::string& name : names)
    {
        if (name == "-")
        {
            PrintIdsOfInput(session);
            continue;
        }
        PrintId(session, name);
    }
    return ExitWell;
}

} // namespace

void AddIdCommand(CLI::App& app, Session& session)
{
    const auto names = std::make_shared<std::vector<std::string>>();
    CLI::App* id = session.AddCommand(app, "id", "Prints the ids of parameters by their names",
                                      [&session, names]
                                      {
                                          return PrintIds(session, *names);
                                      });
    id->add_option("NAME", *names, "Names of parameters; - is standard input")->required();
    id->footer(kIdHelp);
}

} // namespace vell::tool
