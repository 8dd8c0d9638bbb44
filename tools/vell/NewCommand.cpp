// VELL: data-driven hierarchical state machines.
// tools/vell/NewCommand.cpp: a source to begin with.
#include "tools/author/Source.h"
#include "tools/author/Templates.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"
#include "tools/vell/TextFile.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kNewHelp = R"(
Writes NAME.hsm.json, a source with remarks, and NAME.script, which drives it.
NAME may have a folder in front. A file that exists is not written over.

Templates:
  minimal     two states and a parameter (default)
  character   a level of clips, and a hit that interrupts
  ai          a guard that patrols, becomes alert and fights
  door        a prop that a message opens)";

struct NewOptions
{
    std::string path;
    std::string templateName = "minimal";
};

std::string WithName(std::string text, const std::string& name)
{
    static const std::string kPlace = "NAME";
    for (std::size_t at = 0; (at = text.find(kPlace, at)) != std::string::npos; at += name.size())
    {
        text.replace(at, kPlace.size(), name);
    }
    return text;
}

bool Exists(Session& session, const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::exists(PathOf(path), error))
    {
        return false;
    }
    session.errors << path << ": there is such a file already\n";
    return true;
}

int WriteNew(Session& session, const NewOptions& options)
{
    const std::string name = TextOf(PathOf(options.path).filename());
    const std::string source = options.path + author::kSourceExtension;
    const std::string script = options.path + ".script";
    if (name.empty() || name.find_first_of("\"\\") != std::string::npos)
    {
        session.errors << "'" << options.path << "' is no name for a machine\n";
        return ExitUsage;
    }
    if (Exists(session, source) || Exists(session, script))
    {
        return ExitUsage;
    }
    for (const author::Template& each : author::Templates())
    {
        if (options.templateName != each.name)
        {
            continue;
        }
        std::string fault = WriteTextFile(source, WithName(each.source, name));
        fault = fault.empty() ? WriteTextFile(script, WithName(each.script, name)) : fault;
        if (!fault.empty())
        {
            session.errors << fault << '\n';
            return ExitUsage;
        }
    }
    session.out << "wrote " << source << " and " << script << "\nrun it with: vell run " << source
                << " --script " << script << '\n';
    return ExitWell;
}

} // namespace

void AddNewCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<NewOptions>();
    std::vector<std::string> names;
    for (const author::Template& each : author::Templates())
    {
        names.emplace_back(each.name);
    }
    CLI::App* command = session.AddCommand(app, "new", "Writes a source to begin with",
                                           [&session, options]
                                           {
                                               return WriteNew(session, *options);
                                           });
    command->add_option("NAME", options->path, "The machine's name")->required();
    session.AddChoice(*command, "--template", options->templateName,
                      "What it is: minimal (default), character, ai or door", names);
    command->footer(kNewHelp);
}

} // namespace vell::tool
