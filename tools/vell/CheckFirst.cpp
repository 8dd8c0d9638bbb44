// VELL: data-driven hierarchical state machines.
// tools/vell/CheckFirst.cpp: the check before a document is run, drawn or printed.
#include "tools/vell/CheckFirst.h"

#include <algorithm>
#include <ostream>
#include <utility>
#include <vector>

namespace vell::tool
{
namespace
{

using check::Finding;
using check::Severity;

void KeepFrom(Severity lowest, std::vector<Finding>& list)
{
    list.erase(std::remove_if(list.begin(), list.end(),
                              [lowest](const Finding& finding)
                              {
                                  return check::GetEntry(finding.code).severity < lowest;
                              }),
               list.end());
}

} // namespace

bool ShowFindings(check::CheckedDocument document, bool showsWarnings, bool hasColor,
                  std::ostream& errors)
{
    KeepFrom(showsWarnings ? Severity::Warning : Severity::Error, document.findings.list);
    errors << check::ToText(document, hasColor);
    if (!document.findings.HasErrors())
    {
        return true;
    }
    check::CheckedDocuments documents;
    documents.push_back(std::move(document));
    errors << check::SummaryOf(documents);
    return false;
}

bool PassesCheck(check::CheckedDocument document, bool showsWarnings, bool hasColor,
                 std::ostream& errors)
{
    const bool passes = ShowFindings(std::move(document), showsWarnings, hasColor, errors);
    errors << (passes ? "" : "use --no-check to go on all the same\n");
    return passes;
}

} // namespace vell::tool
