// VELL: data-driven hierarchical state machines.
// tools/vell/IdsCommand.cpp: the ids of a machine as constants for a host.
#include <durm/DURMBaseLib.h>

#include "tools/check/DocumentModel.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace vell::tool
{
namespace
{

using namespace DURMBaseLib;

constexpr const char* kIdsHelp = R"(
The header has a constant for each state, transition and parameter, in a
namespace for each, so that a host need not write a number:

  if (id == guard::states::Patrol_WalkRoute)

A state within a level has the name of the level in front. What C++ does not
allow in a name is an underscore; the second of two equal names ends in _2.

Example:
  vell ids guard.hsm.json --lang cpp -o guard_ids.h)";

struct IdsOptions
{
    std::string language = "cpp";
    std::string nameSpace;
};

/// Gives a name that C++ allows: letters, digits and single underscores.
std::string Identifier(const std::string& text)
{
    std::string name;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPart = byte < 0x80 && std::isalnum(byte) != 0;
        if (isPart || name.empty() || name.back() != '_')
        {
            name += isPart ? c : '_';
        }
    }
    static const std::unordered_set<std::string> kKeywords = {
        "and",     "auto",   "bool",    "break",   "case",    "catch", "char",   "class",
        "const",   "delete", "do",      "double",  "else",    "enum",  "export", "false",
        "float",   "for",    "friend",  "goto",    "if",      "int",   "long",   "new",
        "not",     "or",     "private", "public",  "return",  "short", "signed", "static",
        "struct",  "switch", "this",    "throw",   "true",    "try",   "union",  "using",
        "virtual", "void",   "while",   "default", "operator"};
    const bool isDigit = !name.empty() && std::isdigit(static_cast<unsigned char>(name[0])) != 0;
    return name.empty() || isDigit || kKeywords.count(name) != 0 ? "_" + name : name;
}

/// The constants of one namespace.
class Constants
{
public:
    Constants(const char* newName, const char* newTitle) : name(newName), title(newTitle)
    {
    }

    void Add(const std::string& path, unsigned int id)
    {
        const std::string plain = Identifier(path);
        std::string unique = plain;
        for (int number = 2; !known.insert(unique).second; ++number)
        {
            unique = plain + "_" + std::to_string(number);
        }
        lines += "constexpr unsigned int " + unique + " = " + std::to_string(id) + "u;\n";
    }

    std::string Text() const
    {
        return std::string("\n/// ") + title + "\nnamespace " + name + "\n{\n" + lines +
               "} // namespace " + name + "\n";
    }

private:
    const char* name;
    const char* title;
    std::string lines;
    std::unordered_set<std::string> known;
};

std::string NameOf(const check::NodeModel& node)
{
    return node.name.empty() ? "node " + std::to_string(node.id) : std::string(node.name);
}

/// The names of a state and of the levels around it.
std::string PathOf(const check::DocumentModel& model, const check::NodeModel& node)
{
    std::string path = NameOf(node);
    std::unordered_set<const check::NodeModel*> seen{&node};
    const check::NodeModel* parent = model.FindNode(node.parentId);
    for (; parent != nullptr && seen.insert(parent).second;
         parent = model.FindNode(parent->parentId))
    {
        path = NameOf(*parent) + "_" + path;
    }
    return path;
}

std::string CppHeader(const source::Text& text, const std::string& name)
{
    const check::DocumentModel model(text.root);
    Constants states("states", "The states.");
    Constants transitions("transitions", "The transitions.");
    Constants parameters("parameters", "The parameters.");
    for (const check::NodeModel& node : model.nodes)
    {
        if (node.Is(BUILDER_Transition))
        {
            transitions.Add(NameOf(node), node.id);
        }
        else if (node.CanRun() && !node.Is(BUILDER_Enter))
        {
            states.Add(PathOf(model, node), node.id);
        }
    }
    for (const check::ParameterModel& parameter : model.parameters)
    {
        parameters.Add(std::string(parameter.name), parameter.id);
    }
    return "// The ids of the machine '" + name +
           "', written by `vell ids`.\n#pragma once\n\nnamespace " + Identifier(name) + "\n{\n" +
           states.Text() + transitions.Text() + parameters.Text() + "\n} // namespace " +
           Identifier(name) + "\n";
}

/// The name of the file up to its first point.
std::string DefaultName(const std::string& path)
{
    const std::string name = path == "-" ? "machine" : TextOf(tool::PathOf(path).filename());
    return name.substr(0, name.find('.'));
}

int WriteIds(Session& session, const IdsOptions& options)
{
    source::Text text;
    const int code = ReadEitherForm(session, session.options.document, &text, {});
    if (code != ExitWell)
    {
        return code;
    }
    const std::string name =
        options.nameSpace.empty() ? DefaultName(session.options.document) : options.nameSpace;
    return session.Write(CppHeader(text, name));
}

} // namespace

void AddIdsCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<IdsOptions>();
    CLI::App* command =
        session.AddCommand(app, "ids", "Writes the ids of a machine as constants for a host",
                           [&session, options]
                           {
                               return WriteIds(session, *options);
                           });
    command
        ->add_option("DOCUMENT", session.options.document,
                     "The document or source; - is standard input")
        ->required();
    session.AddChoice(*command, "--lang", options->language, "The language; cpp (default)",
                      {"cpp"});
    command
        ->add_option("--namespace", options->nameSpace,
                     "The namespace around all; default is the name of the file")
        ->type_name("NAME");
    session.AddOutput(*command);
    command->footer(kIdsHelp);
}

} // namespace vell::tool
