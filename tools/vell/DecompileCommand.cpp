// VELL: data-driven hierarchical state machines.
// tools/vell/DecompileCommand.cpp: from a document to a source.
#include "tools/author/Decompile.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <utility>

namespace vell::tool
{
namespace
{

constexpr const char* kDecompileHelp = R"(
The source gives the same nodes again, with the same ids, so that saved contexts
stay valid. A node that has no name gets one, and so does the second of two that
have the same. What no short form says is copied into "members".

--tidy leaves out the ids, the memory and the names of conditions: the compiler
gives others. The machine then does the same under other numbers.

Exit codes:
  0  success
  1  the file is not JSON, or not a document
  2  invalid command line, or a file cannot be read or written

Examples:
  vell decompile guard.json -o guard.hsm.json
  vell decompile guard.json --tidy | vell compile -)";

struct DecompileChoice
{
    bool isTidy = false;
};

int DecompileDocument(Session& session, const DecompileChoice& choice)
{
    const std::string& path = session.options.document;
    std::string document;
    int code = ReadDocumentBytes(session, path, &document);
    if (code == ExitWell && author::IsSource(path, document))
    {
        session.errors << DocumentName(path) << ": it is a source already\n";
        return ExitFailed;
    }
    source::Text text;
    code = code == ExitWell ? ParseDocument(session, path, std::move(document), &text, {}) : code;
    if (code != ExitWell)
    {
        return code;
    }
    author::DecompileOptions options;
    options.isTidy = choice.isTidy;
    options.name = path == "-" ? "machine" : TextOf(PathOf(path).stem());
    const std::string bytes = author::Decompile(text, options);
    if (bytes.empty())
    {
        session.errors << DocumentName(path) << ": not a document\n";
        return ExitFailed;
    }
    return session.Write(bytes);
}

} // namespace

void AddDecompileCommand(CLI::App& app, Session& session)
{
    const auto choice = std::make_shared<DecompileChoice>();
    CLI::App* command = session.AddCommand(app, "decompile", "Makes a source of a document",
                                           [&session, choice]
                                           {
                                               return DecompileDocument(session, *choice);
                                           });
    command->add_option("FILE", session.options.document, "The document; - is standard input")
        ->required();
    session.AddOutput(*command);
    command->add_flag("--tidy", choice->isTidy, "Leave out ids, memory and names of conditions");
    command->footer(kDecompileHelp);
}

} // namespace vell::tool
