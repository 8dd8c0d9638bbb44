// VELL: data-driven hierarchical state machines.
// tests/check/Truth.cpp: loading a document as it is, and the comparison with the check.
#include "tests/check/Truth.h"

#include <durm/DURMBaseLib.h>
#include <vell/Factories.h>
#include <vell/IHSM.h>

#include "definitions/GenericDef.h"
#include "foundation/LogStream.h"
#include "tools/check/DocumentModel.h"
#include "tools/vell/LogRedirect.h"

#include <algorithm>
#include <memory>

namespace vell::test
{
namespace
{

Loaded* recorded = nullptr;

void Record(int level, const char* text)
{
    if (level == LogError)
    {
        recorded->errors.emplace_back(text);
    }
    else if (level == LogWarning)
    {
        recorded->warnings.emplace_back(text);
    }
}

bool IsOfLibrary(const check::Finding& finding)
{
    return finding.code == check::Code::LibraryError || finding.code == check::Code::LibraryWarning;
}

bool Overlaps(const source::Span& left, const source::Span& right)
{
    return left.begin.offset <= right.end.offset && right.begin.offset <= left.end.offset;
}

} // namespace

Loaded Load(const std::string& text)
{
    Loaded loaded;
    const source::Text read = source::ReadText(text);
    const check::DocumentModel model(read.root);
    const tool::LogRedirect silence("");
    recorded = &loaded;
    DURMBaseLib::SetLogCallBackBase(Record);
    {
        const std::unique_ptr<IHSM> machine(CreateHSMJson(text.c_str()));
        for (const check::NodeModel& node : model.nodes)
        {
            if (node.IsOfHost())
            {
                machine->RegisterNodeDef(static_cast<__DURM_BUILDERS__>(node.builder),
                                         GenericDef::Create);
            }
        }
        loaded.isInitialised = machine->Init() != 0;
        DURMBaseLib::SetLogCallBackBase(nullptr);
        machine->Uninit();
        machine->Destroy();
    }
    recorded = nullptr;
    return loaded;
}

Checked::Checked(const std::string& bytes)
    : text(source::ReadText(bytes)), findings(check::CheckDocument(text))
{
}

bool Checked::HasFindingAt(const source::Span& span) const
{
    return std::any_of(findings.list.begin(), findings.list.end(),
                       [&span](const check::Finding& finding)
                       {
                           const bool counts =
                               check::GetEntry(finding.code).severity != check::Severity::Note;
                           return counts && (Overlaps(finding.where, span) ||
                                             (finding.hasOther && Overlaps(finding.other, span)));
                       });
}

bool Checked::Has(check::Severity least) const
{
    return std::any_of(findings.list.begin(), findings.list.end(),
                       [least](const check::Finding& finding)
                       {
                           return check::GetEntry(finding.code).severity >= least;
                       });
}

std::string Checked::Lines() const
{
    std::string lines;
    for (const check::Finding& finding : findings.list)
    {
        lines += check::NameOf(finding.code) + " at " + std::to_string(finding.where.begin.offset) +
                 ": " + finding.message + "\n";
    }
    return lines;
}

std::string Compare(const Loaded& loaded, const Checked& checked)
{
    const auto& list = checked.findings.list;
    const auto unexplained = std::find_if(list.begin(), list.end(), IsOfLibrary);
    if (unexplained != list.end())
    {
        return "no rule explains: " + unexplained->message;
    }
    if (loaded.HasComplaints() && !checked.Has(check::Severity::Warning))
    {
        return "the library complains and the check does not: " +
               (!loaded.errors.empty()     ? loaded.errors.front()
                : !loaded.warnings.empty() ? loaded.warnings.front()
                                           : "Init fails");
    }
    const bool isClean = loaded.isInitialised && loaded.errors.empty();
    if (!isClean && !checked.Has(check::Severity::Error))
    {
        return "no error is found, but " +
               (loaded.errors.empty() ? std::string("Init fails") : loaded.errors.front());
    }
    return "";
}

} // namespace vell::test
