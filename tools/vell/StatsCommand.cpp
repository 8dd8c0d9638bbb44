// VELL: data-driven hierarchical state machines.
// tools/vell/StatsCommand.cpp: the size of a document, and what it costs.
#include "tools/stats/LoadCost.h"
#include "tools/stats/Statistics.h"
#include "tools/vell/CheckFirst.h"
#include "tools/vell/Color.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/Commands.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <string>
#include <utility>

namespace vell::tool
{
namespace
{

constexpr const char* kStatsHelp = R"(
The memory that is needed is the smallest value of the head's "memory" with
which the machine loads and can enter each of its states. A node with a builder
of the host's own counts as a plain one, so the host needs as much or more.
Times are medians of several runs on this computer, with the log discarded.

Exit codes:
  0  success
  1  the document has errors, does not load, or loses nodes; what can be
     counted is printed
  2  invalid command line, or the file cannot be read)";

int ShowStatistics(Session& session)
{
    const Options& options = session.options;
    std::string bytes;
    int code = ReadDocumentBytes(session, options.document, &bytes);
    if (code != ExitWell)
    {
        return code;
    }
    GivenDocument given = TakeGiven(options.document, std::move(bytes));
    if (given.isSource && !given.compiled.IsGood())
    {
        ShowProblems(session, given);
        return ExitFailed;
    }
    const bool hasColor = WantsColor(options.color, session.isErrorTerminal);
    const bool isSound = options.noCheck || ShowFindings(CheckGiven(given), options.showsWarnings,
                                                         hasColor, session.errors);
    source::Text text = source::ReadText(std::move(given.bytes));
    if (!text.parsed)
    {
        return isSound ? ParseDocument(session, options.document, text.bytes, &text, {})
                       : int{ExitFailed};
    }
    stats::Statistics statistics;
    statistics.document = DocumentName(options.document);
    statistics.counts = stats::Count(text);
    statistics.declaredMemory = stats::DeclaredMemory(text);
    statistics.memory = stats::MeasureMemory(text);
    if (statistics.memory.IsKnown())
    {
        statistics.time = stats::MeasureTime(text);
    }
    code = session.Write(options.format == "json" ? stats::ToJson(statistics)
                                                  : stats::ToText(statistics));
    const bool isFailed = !isSound || !statistics.memory.IsKnown();
    return code == ExitWell && isFailed ? int{ExitFailed} : code;
}

} // namespace

void AddStatsCommand(CLI::App& app, Session& session)
{
    CLI::App* stats =
        session.AddCommand(app, "stats", "Counts nodes and parameters, memory and load time",
                           [&session]
                           {
                               return ShowStatistics(session);
                           });
    session.AddDocument(*stats);
    session.AddFormat(*stats, "text (default), or json", {"text", "json"});
    session.AddOutput(*stats);
    stats->footer(kStatsHelp);
}

} // namespace vell::tool
