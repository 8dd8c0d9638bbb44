// VELL: data-driven hierarchical state machines.
// tools/vell/SchemaCommand.cpp: printing the schema of documents.
#include "tools/author/SourceSchema.h"
#include "tools/check/Schema.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace vell::tool
{
namespace
{

constexpr const char* kSchemaHelp = R"(
The JSON Schema (2020-12) lets an editor complete and explain the members of a
document, or with --source of a source. In it, "$schema": "machine.schema.json"
names the file.)";

} // namespace

void AddSchemaCommand(CLI::App& app, Session& session)
{
    const auto isOfSources = std::make_shared<bool>(false);
    CLI::App* command = session.AddCommand(
        app, "schema", "Prints the JSON Schema of documents, for editors",
        [&session, isOfSources]
        {
            return session.Write(*isOfSources ? author::MakeSourceSchema() : check::MakeSchema());
        });
    session.AddOutput(*command);
    command->add_flag("--source", *isOfSources, "Of sources, *.hsm.json");
    command->footer(kSchemaHelp);
}

} // namespace vell::tool
