// VELL: data-driven hierarchical state machines.
// tests/check/Truth.h: what the check says of a document beside what the library says.
#pragma once

#include "tools/check/Check.h"
#include "tools/source/Reader.h"

#include <string>
#include <vector>

namespace vell::test
{

/// What came of loading a document as it is.
struct Loaded
{
    bool isInitialised = false;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;

    bool HasComplaints() const
    {
        return !isInitialised || !errors.empty() || !warnings.empty();
    }
};

/// Loads a document, with plain nodes for the builders of a host, and records the log, which goes
/// nowhere else.
Loaded Load(const std::string& text);

/// What the check says of a text.
struct Checked
{
    explicit Checked(const std::string& text);

    /// Tells whether a finding that is at least a warning is at `span`, contains it or refers to
    /// it.
    bool HasFindingAt(const source::Span& span) const;
    /// Tells whether there is a finding of at least this severity.
    bool Has(check::Severity least) const;
    /// The findings, a line each.
    std::string Lines() const;

    source::Text text;
    check::Findings findings;
};

/// Compares the two. Gives what is untrue about the check, or an empty text:
/// - An error or a warning of the log, or a failed `Init`, has a finding of a rule.
/// - Without a finding that is an error, `Init` succeeds and the log has no error.
std::string Compare(const Loaded& loaded, const Checked& checked);

} // namespace vell::test
