// VELL: data-driven hierarchical state machines.
// tools/vell/EitherForm.cpp: compiling what is a source.
#include "tools/vell/EitherForm.h"

#include "tools/author/CheckSource.h"
#include "tools/check/Check.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/DocumentFiles.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/Session.h"

#include <ostream>
#include <utility>

namespace vell::tool
{

GivenDocument TakeGiven(const std::string& path, std::string bytes)
{
    GivenDocument given;
    given.path = path;
    given.isSource = author::IsSource(path, bytes);
    if (!given.isSource)
    {
        given.bytes = std::move(bytes);
        return given;
    }
    // The main file is read once: it may be a pipe.
    const auto read = [&path, &bytes, isMain = true](const std::string& name) mutable
    {
        if (isMain && name == path)
        {
            isMain = false;
            return author::FileContent{bytes, ""};
        }
        FileText text = ReadWholeFile(name);
        return author::FileContent{std::move(text.bytes), std::move(text.error)};
    };
    given.compiled = author::Compile(path, read);
    given.bytes = given.compiled.bytes;
    return given;
}

check::CheckedDocument CheckGiven(const GivenDocument& given)
{
    const std::string name = DocumentName(given.path);
    if (given.isSource)
    {
        return author::CheckSource(name, given.compiled);
    }
    check::CheckedDocument document;
    document.path = name;
    document.text = source::ReadText(given.bytes);
    document.findings = check::CheckDocument(document.text);
    return document;
}

void ShowProblems(Session& session, const GivenDocument& given)
{
    check::CheckedDocuments documents;
    documents.push_back(CheckGiven(given));
    const bool hasColor = WantsColor(session.options.color, session.isErrorTerminal);
    session.errors << check::ToText(documents.front(), hasColor) << check::SummaryOf(documents);
}

int ReadEitherForm(Session& session, const std::string& path, source::Text* text,
                   const source::Options& options, bool mayBeEmpty)
{
    std::string bytes;
    const int code = ReadDocumentBytes(session, path, &bytes);
    if (code != ExitWell || (bytes.empty() && mayBeEmpty))
    {
        return code;
    }
    GivenDocument given = TakeGiven(path, std::move(bytes));
    if (given.isSource && !given.compiled.IsGood())
    {
        ShowProblems(session, given);
        return ExitFailed;
    }
    return ParseDocument(session, path, std::move(given.bytes), text, options);
}

} // namespace vell::tool
