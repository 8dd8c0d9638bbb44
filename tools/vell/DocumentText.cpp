// VELL: data-driven hierarchical state machines.
// tools/vell/DocumentText.cpp: reading, and the first thing that is wrong.
#include "tools/vell/DocumentText.h"

#include "tools/vell/CommandLine.h"
#include "tools/vell/DocumentFiles.h"
#include "tools/vell/Session.h"

#include <ostream>
#include <utility>

namespace vell::tool
{
namespace
{

/// The library can parse a text with these.
bool IsHarmless(source::Flaw flaw)
{
    return flaw == source::Flaw::Duplicate || flaw == source::Flaw::NotUtf8 ||
           flaw == source::Flaw::NulCharacter;
}

void ShowFirstProblem(Session& session, const std::string& path, const source::Text& text)
{
    for (const source::Problem& problem : text.problems)
    {
        if (IsHarmless(problem.flaw))
        {
            continue;
        }
        session.errors << DocumentName(path) << ':' << problem.where.begin.line << ':'
                       << problem.where.begin.column << ": error: " << problem.message
                       << (problem.hint.empty() ? "" : "; " + problem.hint) << '\n';
        return;
    }
    session.errors << DocumentName(path) << ": error: not JSON\n";
}

} // namespace

std::string DocumentName(const std::string& path)
{
    return path == "-" ? "<stdin>" : path;
}

int ReadDocumentBytes(Session& session, const std::string& path, std::string* bytes)
{
    FileText file = ReadWholeFile(path);
    *bytes = std::move(file.bytes);
    if (!file.error.empty())
    {
        session.errors << CannotRead(path, file.error) << '\n';
        return ExitUsage;
    }
    return ExitWell;
}

int ParseDocument(Session& session, const std::string& path, std::string bytes, source::Text* text,
                  const source::Options& options)
{
    *text = source::ReadText(std::move(bytes), options);
    if (!text->parsed)
    {
        ShowFirstProblem(session, path, *text);
        return ExitFailed;
    }
    return ExitWell;
}

int ReadDocumentText(Session& session, const std::string& path, source::Text* text,
                     const source::Options& options)
{
    std::string bytes;
    const int code = ReadDocumentBytes(session, path, &bytes);
    return code != ExitWell ? code : ParseDocument(session, path, std::move(bytes), text, options);
}

} // namespace vell::tool
