// VELL: data-driven hierarchical state machines.
// tools/vell/DiffCommand.cpp: what differs between two documents.
#include "tools/diff/Difference.h"
#include "tools/diff/DifferenceText.h"
#include "tools/diff/DocumentModel.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kDiffHelp = R"(
Nodes and parameters are matched by id and name, so a new id alone does not make
every reference to it a change. Layout, the order of members and default values
do not count. An empty file, such as /dev/null, is an empty document.

Exit codes:
  0  no differences
  1  differences, or a document is not JSON as the library reads it
  2  invalid command line, or a file cannot be read

Examples:
  vell diff old.json new.json
  vell diff old.json new.json --format markdown -o review.md
  git difftool --extcmd 'vell diff' --no-prompt main -- hero.json)";

struct DiffOptions
{
    std::string before;
    std::string after;
};

/// Reads a file once: it may be a pipe.
int ReadModelOf(Session& session, const std::string& path, diff::DocumentModel* model)
{
    source::Text text;
    const int code = ReadEitherForm(session, path, &text, {}, true); // as the library does
    if (code == ExitWell && !text.bytes.empty())
    {
        *model = diff::ReadModel(text.root);
    }
    return code;
}

/// Paints each line by the mark that it begins with.
std::string PaintText(const std::string& text)
{
    std::string painted;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t first = line.find_first_not_of(' ');
        const char mark = first == std::string::npos ? ' ' : line[first];
        const Color color = mark == '+'   ? Color::Green
                            : mark == '-' ? Color::Red
                            : mark == '~' ? Color::Yellow
                                          : Color::Bold;
        painted += Painted(true, color, line) + "\n";
    }
    return painted;
}

std::string FormatDifferences(const Session& session, const DiffOptions& options,
                              const std::vector<diff::Difference>& differences)
{
    const std::string& format = session.options.format;
    if (format == "json")
    {
        return diff::ToJson(differences, options.before, options.after);
    }
    if (format == "markdown")
    {
        return diff::ToMarkdown(differences, options.before, options.after);
    }
    const bool isShown = session.options.output.empty() && session.isOutTerminal;
    const std::string text = diff::ToText(differences);
    return WantsColor(session.options.color, isShown) ? PaintText(text) : text;
}

int ShowDifferences(Session& session, const DiffOptions& options)
{
    diff::DocumentModel before;
    diff::DocumentModel after;
    const int beforeCode = ReadModelOf(session, options.before, &before);
    const int afterCode = ReadModelOf(session, options.after, &after);
    if (beforeCode != ExitWell || afterCode != ExitWell)
    {
        return std::max(beforeCode, afterCode);
    }
    const std::vector<diff::Difference> differences = diff::Compare(before, after);
    const int code = session.Write(FormatDifferences(session, options, differences));
    return code != ExitWell || differences.empty() ? code : ExitFailed;
}

} // namespace

void AddDiffCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<DiffOptions>();
    CLI::App* command = session.AddCommand(app, "diff", "Shows what differs between two documents",
                                           [&session, options]
                                           {
                                               return ShowDifferences(session, *options);
                                           });
    command->add_option("A", options->before, "The document before; - is standard input")
        ->required();
    command->add_option("B", options->after, "The document after")->required();
    session.AddFormat(*command, "text (default), json, or markdown: for a review",
                      {"text", "json", "markdown"});
    session.AddOutput(*command);
    session.AddColor(*command);
    command->footer(kDiffHelp);
}

} // namespace vell::tool
