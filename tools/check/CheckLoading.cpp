// VELL: data-driven hierarchical state machines.
// tools/check/CheckLoading.cpp: the memory that a document needs, and what the library says of it.
#include "tools/check/LibraryLoad.h"
#include "tools/check/Rules.h"

#include <algorithm>
#include <string>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

constexpr std::uint64_t kMemoryFactor = 100;
constexpr std::uint64_t kTooLarge = 10;
constexpr std::uint64_t kMostMemory = 0xffffffff / kMemoryFactor;

/// Gives 27,016 for 27016.
std::string Grouped(std::uint64_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;)
    {
        at -= 3;
        text.insert(at, ",");
    }
    return text;
}

void CheckMemory(const DocumentModel& model, const Loading& loading, Findings& findings)
{
    const source::Value* memory = Find(*model.head, JSON_HeadMemory);
    const std::uint64_t bytes = loading.used + CountStateBytes(model);
    const std::uint64_t needed = (bytes + kMemoryFactor - 1) / kMemoryFactor;
    const std::uint64_t size = GetArenaSize(model);
    const std::string need =
        "at least " + Grouped(needed) + " are needed (" + Grouped(bytes) + " bytes)";
    if (memory != nullptr && !memory->IsInteger())
    {
        return;
    }
    if (memory == nullptr)
    {
        if (size < bytes)
        {
            findings.Add(Code::MemoryTooSmall, TitlePlace(*model.head),
                         "the memory of a head without 'memory', 1048576, is too small, " + need);
        }
        return;
    }
    const std::string figure = "memory " + memory->text;
    const std::uint64_t written = memory->ReadUInt();
    if (size < bytes)
    {
        const bool wraps = written > kMostMemory;
        findings.Add(Code::MemoryTooSmall, memory->span, figure + " is too small, " + need,
                     wraps ? "a hundred times the figure does not fit 32 bits" : "");
    }
    else if (written > kMostMemory)
    {
        findings.Add(Code::MemoryTooLarge, memory->span,
                     figure + " is too large: a hundred times the figure does not fit 32 bits",
                     Grouped(needed) + " are enough (" + Grouped(bytes) + " bytes)");
    }
    else if (written > kTooLarge * needed)
    {
        findings.Add(Code::MemoryTooLarge, memory->span,
                     figure + " is more than ten times too large",
                     Grouped(needed) + " are enough (" + Grouped(bytes) + " bytes)");
    }
}

/// A failed layer is built up to eight times, so its use of the arena says nothing.
bool IsWhole(const Loading& loading)
{
    return loading.isLoaded &&
           std::none_of(loading.complaints.begin(), loading.complaints.end(),
                        [](const Complaint& complaint)
                        {
                            return complaint.text.find("Failed to create") != std::string::npos ||
                                   complaint.text.find("ERROR_GOTO") != std::string::npos;
                        });
}

Severity WorstOf(const Findings& findings)
{
    Severity worst = Severity::Note;
    for (const Finding& finding : findings.list)
    {
        worst = std::max(worst, GetEntry(finding.code).severity);
    }
    return worst;
}

void CheckComplaints(const DocumentModel& model, const Loading& loading, Findings& findings)
{
    const Severity worst = WorstOf(findings);
    for (const Complaint& complaint : loading.complaints)
    {
        const Severity own = complaint.isError ? Severity::Error : Severity::Warning;
        if (own > worst)
        {
            findings.Add(complaint.isError ? Code::LibraryError : Code::LibraryWarning,
                         TitlePlace(model.head == nullptr ? model.root : *model.head),
                         "the library says: " + complaint.text);
            return;
        }
    }
}

} // namespace

void CheckRules(const Document& document, Findings& findings)
{
    const DocumentModel model(document.root);
    CheckIds(model, findings);
    CheckReferences(model, findings);
    CheckLevels(model, findings);
    CheckTypes(model, findings);
    CheckReach(model, findings);
    CheckTransitions(model, findings);
    if (document.text.parsed)
    {
        CheckLoading(model, document.text.bytes, findings);
    }
}

void CheckLoading(const DocumentModel& model, const std::string& text, Findings& findings)
{
    const Loading loading = LoadDocument(model, text);
    if (model.head != nullptr && IsWhole(loading))
    {
        CheckMemory(model, loading, findings);
    }
    CheckComplaints(model, loading, findings);
}

} // namespace vell::check
