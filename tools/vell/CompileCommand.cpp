// VELL: data-driven hierarchical state machines.
// tools/vell/CompileCommand.cpp: from a source to the document that the library reads.
#include "tools/vell/CheckFirst.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentFiles.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/Session.h"
#include "tools/vell/TextFile.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <utility>

namespace vell::tool
{
namespace
{

constexpr const char* kCompileHelp = R"(
A source, *.hsm.json, is what people write; docs/source-form.md explains it. The
document is what the library reads. The same source always gives the same bytes.
The document is checked as vell check does it; with errors it is not written.

Exit codes:
  0  success; with --check, the document is what the source gives
  1  the source or its document has errors; with --check, the document is
     missing or differs
  2  invalid command line, or a file cannot be read or written

Examples:
  vell compile guard.hsm.json -o guard.json
  vell compile --check guard.hsm.json -o guard.json
  vell compile guard.hsm.json | vell stats -)";

struct CompileOptions
{
    std::string dependencies;
    bool isCheck = false;
    bool noCheck = false;
    bool showsWarnings = false;
};

/// A path as make reads it.
std::string ToMake(const std::string& path)
{
    std::string text;
    for (const char c : path)
    {
        text += c == ' ' || c == '#' ? "\\" : c == '$' ? "$" : "";
        text += c;
    }
    return text;
}

/// The files that the document is made from, as a rule of make.
std::string DependencyRule(const std::string& target, const author::Compiled& compiled)
{
    std::string rule = ToMake(target) + ":";
    for (const author::SourceFile& file : compiled.files)
    {
        rule += " \\\n  " + ToMake(file.path);
    }
    return rule + "\n";
}

class CompileRun
{
public:
    CompileRun(Session& newSession, const CompileOptions& newOptions)
        : session(newSession), options(newOptions)
    {
    }

    int Run()
    {
        if ((options.isCheck || !options.dependencies.empty()) && session.options.output.empty())
        {
            session.errors << (options.isCheck ? "--check" : "--depfile")
                           << " needs the document: add -o FILE\n";
            return ExitUsage;
        }
        std::string bytes;
        const int code = ReadDocumentBytes(session, session.options.document, &bytes);
        if (code != ExitWell)
        {
            return code;
        }
        const GivenDocument given = TakeGiven(session.options.document, std::move(bytes));
        if (!IsFit(given))
        {
            return ExitFailed;
        }
        return options.isCheck ? Compare(given.bytes) : Write(given);
    }

private:
    bool IsFit(const GivenDocument& given)
    {
        if (!given.isSource)
        {
            session.errors << session.options.document << ": a source is named *"
                           << author::kSourceExtension
                           << "; vell decompile makes one of a document\n";
            return false;
        }
        if (!given.compiled.IsGood())
        {
            ShowProblems(session, given);
            return false;
        }
        const bool hasColor = WantsColor(session.options.color, session.isErrorTerminal);
        return options.noCheck ||
               PassesCheck(CheckGiven(given), options.showsWarnings, hasColor, session.errors);
    }

    int Compare(const std::string& bytes)
    {
        const std::string& path = session.options.output;
        const FileText file = ReadWholeFile(path);
        if (!file.error.empty())
        {
            session.errors << path << ": cannot read the file: " << file.error << '\n';
            return ExitFailed;
        }
        if (file.bytes != bytes)
        {
            session.errors << path << ": not what " << session.options.document
                           << " gives; write it with: vell compile " << session.options.document
                           << " -o " << path << '\n';
            return ExitFailed;
        }
        return ExitWell;
    }

    int Write(const GivenDocument& given)
    {
        const std::string& path = session.options.output;
        if (path.empty())
        {
            session.out << given.bytes;
            return ExitWell;
        }
        std::string fault = WriteTextFile(path, given.bytes);
        if (fault.empty() && !options.dependencies.empty())
        {
            fault = WriteTextFile(options.dependencies, DependencyRule(path, given.compiled));
        }
        if (!fault.empty())
        {
            session.errors << fault << '\n';
            return ExitUsage;
        }
        return ExitWell;
    }

    Session& session;
    const CompileOptions& options;
};

} // namespace

void AddCompileCommand(CLI::App& app, Session& session)
{
    const auto options = std::make_shared<CompileOptions>();
    CLI::App* command = session.AddCommand(app, "compile", "Makes the document of a source",
                                           [&session, options]
                                           {
                                               return CompileRun(session, *options).Run();
                                           });
    command
        ->add_option("FILE", session.options.document,
                     "The source, *.hsm.json; - is standard input")
        ->required();
    session.AddOutput(*command);
    command->add_flag("--check", options->isCheck,
                      "Write nothing, and tell whether the file of -o is up to date");
    command
        ->add_option("--depfile", options->dependencies,
                     "Write which files the document is made from, as make and Ninja read it")
        ->type_name("FILE");
    command->add_flag("--no-check", options->noCheck, "Write a document that has errors too");
    command->add_flag("-W,--warnings", options->showsWarnings,
                      "Show the warnings of vell check too");
    session.AddColor(*command);
    command->footer(kCompileHelp);
}

} // namespace vell::tool
