// VELL: data-driven hierarchical state machines.
// tools/check/Output.h: findings as text, JSON and SARIF.
#pragma once

#include "tools/check/Finding.h"
#include "tools/source/Reader.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vell::check
{

/// The path of standard input in findings.
constexpr const char* kStandardInput = "<stdin>";

/// A file that a source includes.
struct CheckedPart
{
    std::string path;
    std::string bytes;
};

/// A document that was checked, or a source whose document was.
struct CheckedDocument
{
    std::string path; ///< as the user wrote it
    source::Text text;
    Findings findings;
    std::vector<CheckedPart> parts; ///< of a source: its files 1, 2 and so on; file 0 is `text`

    const std::string& PathOf(std::size_t file) const
    {
        return file == 0 ? path : parts[file - 1].path;
    }
    const std::string& BytesOf(std::size_t file) const
    {
        return file == 0 ? text.bytes : parts[file - 1].bytes;
    }
};

using CheckedDocuments = std::vector<CheckedDocument>;

struct Counts
{
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
};

Counts Count(const Findings& findings);
Counts Count(const CheckedDocuments& documents);

/// Gives the findings of a document, each on a line of its own, with the line of the document and a
/// mark below it.
std::string ToText(const CheckedDocument& document, bool hasColor);
/// Gives the last line: "2 errors and 1 warning in 3 documents".
std::string SummaryOf(const CheckedDocuments& documents);

/// Gives one object with all documents.
std::string ToJson(const CheckedDocuments& documents);
/// Gives a log of the Static Analysis Results Interchange Format, version 2.1.0 (OASIS).
std::string ToSarif(const CheckedDocuments& documents, const std::string& version);

} // namespace vell::check
