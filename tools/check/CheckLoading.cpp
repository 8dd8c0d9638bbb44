// VELL: data-driven hierarchical state machines.
// tools/check/CheckLoading.cpp: the memory that a document needs, and what the library says of it.
#include "tools/check/LibraryLoad.h"
#include "tools/check/Rules.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

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
    // What a document needs that lacks something is no advice for the whole.
    const bool isSaid = !findings.HasErrors();
    const source::Value* memory = Find(*model.head, JSON_HeadMemory);
    const std::uint64_t bytes = loading.used + CountStateBytes(model);
    const std::uint64_t needed = (bytes + kMemoryFactor - 1) / kMemoryFactor;
    const std::uint64_t size = GetArenaSize(model);
    const std::string need =
        "at least " + Grouped(needed) + " are needed (" + Grouped(bytes) + " bytes)";
    if (memory != nullptr && (!memory->IsInteger() || memory->kind == source::Kind::Int))
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
    else if (!isSaid)
    {
        return;
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

/// The library cannot build these nodes alone; each builder is told once.
void CheckHostBuilders(const DocumentModel& model, Findings& findings)
{
    std::set<int> told;
    for (const NodeModel& node : model.nodes)
    {
        if (node.IsOfHost() && told.insert(node.builder).second)
        {
            findings.Add(Code::HostBuilder, PlaceOf(*node.value, JSON_BuilderType),
                         "the builder " + std::to_string(node.builder) + " of " + Titled(node) +
                             " is not one of the library's: the host has to register it");
        }
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

/// Which findings stand for a line of the log.
struct Explanation
{
    const char* piece; ///< of the line
    std::set<Code> codes;
};

/// Values that the library reads as others, wherever they are, and members that it looks for in
/// vain.
const std::set<Code> kMisread = {Code::MissingMember, Code::WrongType, Code::OutOfRange,
                                 Code::Fraction,      Code::EmptyText, Code::NoElement,
                                 Code::NameForId};

/// The lines that tell of one thing. Any error stands for all other lines, which are mostly
/// consequences.
const std::vector<Explanation>& Explanations()
{
    static const std::set<Code> parameters = {Code::ParameterWithoutId, Code::DuplicateParameterId,
                                              Code::DuplicateParameterName};
    static const std::set<Code> ids = {Code::DuplicateNodeId, Code::NodeWithoutId, Code::NoLayers};
    static const std::set<Code> conditions = {
        Code::NoConditions, Code::RangeText,          Code::RangeNotText,
        Code::OperandType,  Code::OperandEmpty,       Code::UnknownConditionType,
        Code::TooLong,      Code::ConditionParameter, Code::ConditionTypeDiffers};
    static const std::set<Code> unbound = {Code::ConditionParameter, Code::ParameterWithoutId,
                                           Code::DuplicateParameterId,
                                           Code::DuplicateParameterName};
    static const std::vector<Explanation> explanations = {
        {"Parameter definition is NULL", unbound},
        {"::ParameterBind", unbound},
        {"Entry Node doesn't exist",
         {Code::EnterNodeAbsent, Code::DuplicateNodeId, Code::NodeWithoutId, Code::NoLayers}},
        {"::InsertEnterNode", {Code::SecondEnterNode}},
        {"Duplicate ID", ids},
        {"::InsertNode", ids},
        {"Conditions failed", conditions},
        {"::InitConditions", conditions},
        {"initilizing a condition", conditions},
        {"::Init_Attrib", {Code::UnknownAttributeType, Code::VectorText, Code::TooLong}},
        {"isn't implemented", {Code::UnknownAttributeType}},
        {"::ImportSkel", {}},
        {"::AddParameter", parameters},
    };
    return explanations;
}

/// Tells whether the library lost nodes, which has consequences everywhere.
bool IsLost(const Complaint& complaint)
{
    return complaint.text.find("Failed to create") != std::string::npos ||
           complaint.text.find("::ImportStates") != std::string::npos ||
           complaint.text.find("has caused an exception") != std::string::npos ||
           complaint.text.find("::Create") != std::string::npos;
}

bool IsExplained(const Complaint& complaint, const std::set<Code>& found)
{
    for (const Explanation& explanation : Explanations())
    {
        if (complaint.text.find(explanation.piece) == std::string::npos)
        {
            continue;
        }
        const auto isExplaining = [&explanation](Code code)
        {
            return kMisread.count(code) != 0 || explanation.codes.count(code) != 0;
        };
        return std::any_of(found.begin(), found.end(), isExplaining);
    }
    const auto isError = [](Code code)
    {
        return GetEntry(code).severity == Severity::Error;
    };
    return std::any_of(found.begin(), found.end(), isError);
}

/// Gives the place of the node that a line names at its end or, as an id, in brackets.
source::Span FindPlace(const DocumentModel& model, const std::string& line)
{
    const std::size_t bracket = line.find("ID (");
    for (const NodeModel& node : model.nodes)
    {
        const std::string_view name = node.name;
        const bool isNamed = !name.empty() && line.size() >= name.size() &&
                             line.compare(line.size() - name.size(), name.size(), name) == 0;
        const std::string id = std::to_string(node.id) + ")";
        if (isNamed ||
            (bracket != std::string::npos && line.compare(bracket + 4, id.size(), id) == 0))
        {
            return TitlePlace(*node.value);
        }
    }
    return TitlePlace(model.head == nullptr ? model.root : *model.head);
}

void CheckComplaints(const DocumentModel& model, const Loading& loading, Findings& findings)
{
    std::set<Code> found;
    for (const Finding& finding : findings.list)
    {
        found.insert(finding.code);
    }
    const bool isLost = std::any_of(loading.complaints.begin(), loading.complaints.end(), IsLost);
    if (isLost && findings.HasErrors())
    {
        return;
    }
    std::set<std::string> told;
    for (const Complaint& complaint : loading.complaints)
    {
        if (!IsExplained(complaint, found) && told.insert(complaint.text).second)
        {
            findings.Add(complaint.isError ? Code::LibraryError : Code::LibraryWarning,
                         FindPlace(model, complaint.text), "the library says: " + complaint.text);
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
    CheckHostBuilders(model, findings);
    if (model.head != nullptr && IsWhole(loading))
    {
        CheckMemory(model, loading, findings);
    }
    CheckComplaints(model, loading, findings);
}

} // namespace vell::check
