// VELL: data-driven hierarchical state machines.
// tools/vell/SchemaCommand.cpp: printing the schema of documents.
#include "tools/vell/SchemaCommand.h"

#include "tools/check/Schema.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

namespace vell::tool
{
namespace
{

constexpr const char* kSchemaHelp = R"(
The JSON Schema (2020-12) lets an editor complete and explain the members of a
document. In a document, "$schema": "machine.schema.json" names the file.)";

} // namespace

void AddSchemaCommand(CLI::App& app, Session& session)
{
    CLI::App* command =
        session.AddCommand(app, "schema", "Prints the JSON Schema of documents, for editors",
                           [&session]
                           {
                               return session.Write(check::MakeSchema());
                           });
    session.AddOutput(*command);
    command->footer(kSchemaHelp);
}

} // namespace vell::tool
