// VELL: data-driven hierarchical state machines.
// tools/check/Finding.cpp: collecting what was found.
#include "tools/check/Finding.h"

#include <algorithm>
#include <utility>

namespace vell::check
{

Finding& Findings::Add(Code code, const source::Span& where, std::string message, std::string hint)
{
    Finding finding;
    finding.code = code;
    finding.where = where;
    finding.message = std::move(message);
    finding.hint = std::move(hint);
    list.push_back(std::move(finding));
    return list.back();
}

Finding& Findings::Add(Code code, const source::Span& where, std::string message, std::string hint,
                       const source::Span& other, std::string otherNote)
{
    Finding& finding = Add(code, where, std::move(message), std::move(hint));
    finding.hasOther = true;
    finding.other = other;
    finding.otherNote = std::move(otherNote);
    return finding;
}

void Findings::AddFix(Fix fix)
{
    list.back().fixes.push_back(std::move(fix));
}

bool Findings::HasErrors() const
{
    return std::any_of(list.begin(), list.end(),
                       [](const Finding& finding)
                       {
                           return GetEntry(finding.code).severity == Severity::Error;
                       });
}

} // namespace vell::check
