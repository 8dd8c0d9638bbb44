// VELL: data-driven hierarchical state machines.
// tools/vell/CheckCommand.cpp: checking documents.
#include <durm/DURMBaseLib.h>

#include "tools/check/Check.h"
#include "tools/check/Nearest.h"
#include "tools/check/Output.h"
#include "tools/repair/LineDiff.h"
#include "tools/repair/Repair.h"
#include "tools/source/Printable.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentFiles.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/Session.h"
#include "tools/vell/System.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vell::tool
{
namespace
{

using check::CheckedDocument;
using check::CheckedDocuments;

constexpr const char* kCheckHelp = R"(
A DOCUMENT may be a folder, which stands for all files *.json in it, or - for
standard input. A file of a folder that has no member of a machine document is
left out, with a note. A source, *.hsm.json, is checked with the files that it
includes. Each finding is a line such as

  a.json:12:9: error VELL041: unknown operator 'les'; did you mean 'less'?

An error: the library refuses the document or loses a part of it, or a
reference leads nowhere. A warning: it is accepted, but hardly meant.

In a document, the member "$allow": ["CODE"] leaves a code out for the object
it is in and for all within it.

--fix writes ids of parameters (also in their conditions), ids in place of
names, 'source', 'parentId' and missing 'children' entries where there is one
answer, and nothing else; the rest of the text stays as it is. With --dry-run it
writes nothing and prints a unified diff, and exits with 1 if there is anything
to fix.

Exit codes: 0 no errors, 1 errors (with --strict also warnings), 2 invalid
command line, or a file that cannot be read.)";

struct CheckOptions
{
    std::vector<std::string> paths;
    std::vector<std::string> allowed;
    std::string explained;
    bool isStrict = false;
    bool isFix = false;
    bool isDryRun = false;
};

/// A file of a folder that is JSON, but has nothing of a machine, not even misspelt.
bool IsNoMachine(const source::Text& text)
{
    using namespace DURMBaseLib;
    const std::vector<std::string_view> members = {
        GetJsonName(JSON_Head), GetJsonName(JSON_Layers), GetJsonName(JSON_Parameters),
        GetJsonName(JSON_Nodes), GetJsonName(JSON_Global)};
    return text.isWhole &&
           std::none_of(text.root.members.begin(), text.root.members.end(),
                        [&members](const source::Member& member)
                        {
                            return !check::FindNearest(member.name, members).empty();
                        });
}

class CheckRun
{
public:
    CheckRun(Session& newSession, const CheckOptions& newOptions)
        : session(newSession), options(newOptions)
    {
    }

    int Run()
    {
        if (!options.explained.empty())
        {
            return ExplainCode();
        }
        if (options.paths.empty())
        {
            session.errors << "DOCUMENT is required; see: vell check --help\n";
            return ExitUsage;
        }
        for (const std::string& name : options.allowed)
        {
            if (check::FindEntry(name) == nullptr)
            {
                session.errors << "--allow: unknown code '" << name << "'\n";
                return ExitUsage;
            }
        }
        if (options.isFix && HasStandardInput())
        {
            session.errors << "--fix writes files; it cannot fix standard input\n";
            return ExitUsage;
        }
        CheckAll();
        if (options.isDryRun)
        {
            documents.empty() ? void() : Show(); // those that are not JSON
            return hasUnread                           ? ExitUsage
                   : wouldChange || !documents.empty() ? ExitFailed
                                                       : ExitWell;
        }
        Show();
        return ExitCode();
    }

private:
    int ExplainCode()
    {
        if (options.explained == "all")
        {
            session.out << check::CodesPage();
            return ExitWell;
        }
        const check::CodeEntry* entry = check::FindEntry(options.explained);
        if (entry == nullptr)
        {
            session.errors << "--explain: unknown code '" << options.explained << "'\n";
            return ExitUsage;
        }
        session.out << check::Explain(*entry);
        return ExitWell;
    }

    /// Reads a file. False, with an error, when that fails.
    bool Read(const DocumentFile& file, FileText* text)
    {
        *text = file.fault.empty() ? ReadWholeFile(file.path) : FileText();
        const bool isRead = file.fault.empty() && text->error.empty();
        if (!isRead)
        {
            session.errors << (file.fault.empty() ? CannotRead(file.path, text->error) : file.fault)
                           << '\n';
        }
        return isRead;
    }

    void CheckAll()
    {
        for (const DocumentFile& file : FindDocuments(options.paths))
        {
            FileText text;
            if (!Read(file, &text))
            {
                hasUnread = true;
                continue;
            }
            if (author::IsSource(file.path, text.bytes))
            {
                AddSource(file, std::move(text.bytes));
                continue;
            }
            CheckedDocument document;
            document.path = DocumentName(file.path);
            document.text = source::ReadText(std::move(text.bytes));
            if (!file.isNamed && IsNoMachine(document.text))
            {
                leftOut.push_back(file.path);
                continue;
            }
            if (options.isFix && !Fix(document))
            {
                hasUnread = true;
                continue;
            }
            if (options.isDryRun && document.text.parsed)
            {
                continue;
            }
            document.findings = check::CheckDocument(document.text);
            LeaveOutAllowed(document.findings);
            document.text.root = source::Value(); // Only the bytes are needed to show it.
            documents.push_back(std::move(document));
        }
    }

    /// A source without a machine, in a folder, is checked with those that include it.
    void AddSource(const DocumentFile& file, std::string bytes)
    {
        const GivenDocument given = TakeGiven(file.path, std::move(bytes));
        const source::Value& root = given.compiled.files.front().text.root;
        if (!file.isNamed && root.IsObject() && root.Find("machine") == nullptr)
        {
            return;
        }
        if (options.isFix)
        {
            session.errors << file.path << ": a source is not fixed\n";
        }
        if (!options.isDryRun)
        {
            documents.push_back(CheckGiven(given));
            LeaveOutAllowed(documents.back().findings);
        }
    }

    bool HasStandardInput() const
    {
        return std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end();
    }

    /// Fixes what has one answer, in the file or, as a dry run, in a diff. False, with an error,
    /// when the file cannot be written.
    bool Fix(CheckedDocument& document)
    {
        const repair::Repaired repaired = repair::Repair(document.text,
                                                         [this](check::Findings& findings)
                                                         {
                                                             LeaveOutAllowed(findings);
                                                         });
        if (repaired.edits == 0)
        {
            return true;
        }
        wouldChange = true;
        if (options.isDryRun)
        {
            session.out << repair::UnifiedDiff(document.path, document.text.bytes, repaired.bytes);
            return true;
        }
        const std::string error = ReplaceContent(document.path, repaired.bytes);
        if (!error.empty())
        {
            session.errors << document.path << ": cannot write the file: " << error << '\n';
            return false;
        }
        session.errors << document.path << ": fixed " << repaired.edits
                       << (repaired.edits == 1 ? " place\n" : " places\n");
        document.text = source::ReadText(repaired.bytes);
        return true;
    }

    void LeaveOutAllowed(check::Findings& findings) const
    {
        const auto isAllowed = [this](const check::Finding& finding)
        {
            return std::any_of(options.allowed.begin(), options.allowed.end(),
                               [&finding](const std::string& name)
                               {
                                   return check::FindEntry(name)->code == finding.code;
                               });
        };
        std::vector<check::Finding>& list = findings.list;
        list.erase(std::remove_if(list.begin(), list.end(), isAllowed), list.end());
    }

    void Show()
    {
        if (session.options.format == "json")
        {
            session.out << check::ToJson(documents);
            return;
        }
        if (session.options.format == "sarif")
        {
            session.out << check::ToSarif(documents, VELL_VERSION);
            return;
        }
        const bool hasColor = WantsColor(session.options.color, session.isOutTerminal);
        for (const std::string& path : leftOut)
        {
            session.out << source::ToPrintable(path)
                        << ": note: left out, it has no member of a machine document\n";
        }
        for (const CheckedDocument& document : documents)
        {
            session.out << check::ToText(document, hasColor);
        }
        if (!documents.empty())
        {
            session.out << check::SummaryOf(documents);
        }
    }

    int ExitCode() const
    {
        if (hasUnread || documents.empty())
        {
            return ExitUsage;
        }
        const check::Counts counts = check::Count(documents);
        const bool hasFailed = counts.errors != 0 || (options.isStrict && counts.warnings != 0);
        return hasFailed ? ExitFailed : ExitWell;
    }

    Session& session;
    const CheckOptions& options;
    CheckedDocuments documents;
    std::vector<std::string> leftOut; ///< paths of what is in a folder and no machine
    bool hasUnread = false;
    bool wouldChange = false; ///< --fix has something to write
};

} // namespace

void AddCheckCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* command = session.AddCommand(app, "check", "Finds what is wrong with documents",
                                           [&session, options]
                                           {
                                               return CheckRun(session, *options).Run();
                                           });
    command->add_option("DOCUMENT", options->paths, "Machine documents and folders of them");
    command->add_option("--allow", options->allowed, "Leave this code out; may be repeated")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->type_name("CODE");
    command
        ->add_option("--explain", options->explained,
                     "Print what a code means, with an example; all: the page of all codes")
        ->type_name("CODE");
    command->add_flag("--strict", options->isStrict, "Exit with 1 for warnings too");
    CLI::Option* fix = command->add_flag("--fix", options->isFix, "Write what has one answer");
    command->add_flag("--dry-run", options->isDryRun, "With --fix: only show what would change")
        ->needs(fix);
    session.AddFormat(*command, "text (default), json, or sarif", {"text", "json", "sarif"});
    session.AddColor(*command);
    command->footer(kCheckHelp);
}

} // namespace vell::tool
