// VELL: data-driven hierarchical state machines.
// tools/vell/FmtCommand.cpp: bringing documents into the one layout.
#include "tools/author/Source.h"
#include "tools/layout/Layout.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentFiles.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kFmtHelp = R"(
A folder stands for all files *.json in it. - formats standard input to standard
output.

The layout: one member per line for the root, the head, the skeleton and layers;
one line per parameter and node. A source, *.hsm.json, has one member per line
for the root, the parameters and the states, and for what is too long for one
line. Only white space changes, and trailing commas go: the order of members,
numbers, escapes, duplicates and comments stay, and one blank line between two
lines. A file that is not JSON is not touched.

Exit codes:
  0  success; with --check, every file has the layout
  1  with --check, a file would change; a file is not JSON
  2  invalid command line, or a file cannot be read or written

Examples:
  vell fmt hero.json
  vell fmt --check hero.json villain.json
  vell fmt - < hero.json | diff hero.json -)";

struct FmtOptions
{
    std::vector<std::string> files;
    bool isCheck = false;
};

/// Gives the text in the layout, after reading it back: nothing is written that says something
/// else.
bool LayOutSafely(const source::Text& text, bool isSource, std::string* result)
{
    *result = isSource ? layout::LayOutSource(text) : layout::LayOut(text);
    source::Options options;
    options.allowComments = true;
    const source::Text again = source::ReadText(*result, options);
    return again.parsed && again.comments.size() == text.comments.size() &&
           layout::IsSame(text, again);
}

int FormatFile(Session& session, const std::string& path, bool isCheck)
{
    source::Text text;
    const int code = ReadDocumentText(session, path, &text);
    if (code != ExitWell)
    {
        return code;
    }
    std::string result;
    if (!LayOutSafely(text, author::IsSource(path, text.bytes), &result))
    {
        session.errors << DocumentName(path) << ": not formatted: the result would differ\n";
        return ExitFailed;
    }
    const bool isChanged = result != text.bytes;
    if (isCheck)
    {
        session.out << (isChanged ? DocumentName(path) + "\n" : "");
        return isChanged ? ExitFailed : ExitWell;
    }
    if (path == "-")
    {
        session.out << result;
        return ExitWell;
    }
    const std::string error = isChanged ? ReplaceContent(path, result) : "";
    if (!error.empty())
    {
        session.errors << path << ": cannot write the file: " << error << '\n';
        return ExitUsage;
    }
    return ExitWell;
}

int FormatFiles(Session& session, const FmtOptions& options)
{
    int code = ExitWell;
    for (const DocumentFile& file : FindDocuments(options.files))
    {
        if (!file.fault.empty())
        {
            session.errors << file.fault << '\n';
            code = ExitUsage;
            continue;
        }
        code = std::max(code, FormatFile(session, file.path, options.isCheck));
    }
    return code;
}

} // namespace

void AddFmtCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<FmtOptions>();
    CLI::App* fmt = session.AddCommand(app, "fmt", "Brings documents into one layout",
                                       [&session, options]
                                       {
                                           return FormatFiles(session, *options);
                                       });
    fmt->add_option("FILE", options->files, "Documents, changed in place")->required();
    fmt->add_flag("--check", options->isCheck, "Change nothing, and print what would change");
    fmt->footer(kFmtHelp);
}

} // namespace vell::tool
