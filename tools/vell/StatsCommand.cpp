// VELL: data-driven hierarchical state machines.
// tools/vell/StatsCommand.cpp: the size of a document, and what it costs.
#include "tools/vell/StatsCommand.h"

#include "tools/stats/LoadCost.h"
#include "tools/stats/Statistics.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/DocumentText.h"
#include "tools/vell/EitherForm.h"
#include "tools/vell/HelpText.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <string>

namespace vell::tool
{
namespace
{

constexpr const char* kStatsHelp = R"(
The memory that is needed is the smallest value of the head's "memory" with
which the machine loads and can enter each of its states. It is for a machine
without builders of the host's own. Times are medians of several runs on this
computer, with the log discarded.

Exit codes:
  0  success
  1  the document does not load; what can be counted is printed
  2  invalid command line, or the file cannot be read)";

int ShowStatistics(Session& session)
{
    source::Text text;
    const int code = ReadEitherForm(session, session.options.document, &text, {});
    if (code != ExitWell)
    {
        return code;
    }
    stats::Statistics statistics;
    statistics.document = DocumentName(session.options.document);
    statistics.counts = stats::Count(text);
    statistics.declaredMemory = stats::DeclaredMemory(text);
    statistics.memory = stats::MeasureMemory(text);
    if (statistics.memory.loads)
    {
        statistics.time = stats::MeasureTime(text);
    }
    const int writeCode = session.Write(
        session.options.format == "json" ? stats::ToJson(statistics) : stats::ToText(statistics));
    return writeCode == ExitWell && !statistics.memory.loads ? int{ExitFailed} : writeCode;
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
