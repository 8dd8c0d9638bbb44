// VELL: data-driven hierarchical state machines.
// tools/vell/ObservedMachine.cpp: states that report, and loading with words for what is wrong.
#include "tools/vell/ObservedMachine.h"

#include <durm/DURMBaseLib.h>
#include <vell/HSMAlloc.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "definitions/NodeDefTable.h"
#include "document/JsonReader.h"
#include "foundation/LogStream.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "tools/vell/Losses.h"
#include "tools/vell/System.h"
#include "tools/vell/TextFile.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>

namespace vell::tool
{
namespace
{

/// Bytes that are enough for any object of the library.
constexpr unsigned int kLargeObject = 1024;

/// A standard state that reports. It adds no field, so as many fit in the arena.
template <class Standard>
class Observed : public Standard
{
public:
    static SMState* Create(unsigned int stateId, HSMAlloc* alloc)
    {
        Observed* state = alloc == nullptr ? nullptr : alloc->New<Observed>();
        if (state != nullptr)
        {
            state->id = stateId;
        }
        return state;
    }

    int Enter() override
    {
        const int result = Standard::Enter();
        if (ObservedMachine* machine = result == 0 ? nullptr : Machine())
        {
            machine->ReportEntered(*this);
        }
        return result;
    }

    int Exit() override
    {
        const int result = Standard::Exit();
        if (ObservedMachine* machine = Machine())
        {
            machine->ReportLeft(*this);
        }
        return result;
    }

    int Update(HSM* caller, float dt) override
    {
        const bool wasBlip = caller->IsBlipState();
        const int result = Standard::Update(caller, dt);
        if (ObservedMachine* machine = Machine())
        {
            machine->ReportUpdated(*this, result, wasBlip);
        }
        return result;
    }

    unsigned int ProcessTransitions(HSM* caller, UpdateResult* result) override
    {
        const unsigned int target = Standard::ProcessTransitions(caller, result);
        if (ObservedMachine* machine = Machine())
        {
            machine->ReportTested(*this, *result, target);
        }
        return target;
    }

private:
    ObservedMachine* Machine() const
    {
        return dynamic_cast<ObservedMachine*>(this->hsm);
    }
};

/// Collects the errors and warnings of the library's log during its lifetime. There can be one at a
/// time.
class ComplaintCollector
{
public:
    explicit ComplaintCollector(std::vector<std::string>& complaints)
    {
        list = &complaints;
        DURMBaseLib::SetLogCallBackBase(Take);
    }
    ~ComplaintCollector()
    {
        DURMBaseLib::SetLogCallBackBase(nullptr);
        list = nullptr;
    }
    ComplaintCollector(const ComplaintCollector&) = delete;
    ComplaintCollector& operator=(const ComplaintCollector&) = delete;

private:
    static void Take(int level, const char* text)
    {
        if (list == nullptr || (level != LogError && level != LogWarning))
        {
            return;
        }
        std::string line = text;
        const std::size_t separator = line.find("\t: ");
        line.erase(0, separator == std::string::npos ? 0 : separator + 3);
        while (!line.empty() && line.back() == '\n')
        {
            line.pop_back();
        }
        list->push_back(line);
    }

    static std::vector<std::string>* list;
};

std::vector<std::string>* ComplaintCollector::list = nullptr;

} // namespace

ObservedMachine::~ObservedMachine()
{
    if (isCreated)
    {
        Uninit();
    }
    Destroy();
}

void ObservedMachine::RegisterBuilders()
{
    HSM::RegisterBuilders();
    RegisterState(DURMBaseLib::BUILDER_Generic, Observed<SMState>::Create);
    RegisterState(DURMBaseLib::BUILDER_Enter, Observed<EnterState>::Create);
    RegisterState(DURMBaseLib::BUILDER_Exit, Observed<ExitState>::Create);
    RegisterState(DURMBaseLib::BUILDER_Global, Observed<GlobalState>::Create);
    RegisterState(DURMBaseLib::BUILDER_Substate, Observed<SubstateState>::Create);
    RegisterState(DURMBaseLib::BUILDER_AnimClip, Observed<SMState>::Create);
}

std::string ObservedMachine::Load(const std::string& newPath)
{
    std::string newText;
    const std::string fault = ReadTextFile(newPath, &newText);
    return fault.empty() ? LoadText(newPath, std::move(newText)) : fault;
}

std::string ObservedMachine::LoadText(const std::string& newPath, std::string newText, bool isMade)
{
    path = newPath;
    text = std::move(newText);
    const ComplaintCollector collector(complaints);
    std::error_code error;
    if (!isMade && std::filesystem::is_regular_file(PathOf(path), error))
    {
        filePath = path.c_str();
    }
    else
    {
        jsonText = text.c_str(); // a pipe cannot be read a second time
    }
    isCreated = Create() != 0;
    if (document.HasParseError())
    {
        complaints.clear();
        return ParseFault();
    }
    if (!isCreated)
    {
        return FileName(path) + ": not a machine document: " + HeadFault();
    }
    if (Init() == 0)
    {
        return FileName(path) + ": cannot build the machine";
    }
    return "";
}

/// Says why `Create` failed.
std::string ObservedMachine::HeadFault() const
{
    if (!document.IsObject())
    {
        return "its root is not an object";
    }
    const GenericValue& head = GetMember(document, JSON_Head);
    if (!head.IsObject())
    {
        return "it has no object \"head\"";
    }
    if (ReadText(head, JSON_HeadMachineType) == nullptr)
    {
        return "its head has no text \"machineType\"";
    }
    const GenericValue* memory = FindMember(head, JSON_HeadMemory);
    return memory != nullptr && ReadInt(*memory) == 0 ? "\"memory\" in its head is 0"
                                                      : "there is no memory for its arena";
}

std::string ObservedMachine::Losses() const
{
    return LossText(document, *nodeDefTable);
}

std::string ObservedMachine::ParseFault() const
{
    const std::size_t offset = std::min(document.GetErrorOffset(), text.size());
    const auto fault = text.begin() + static_cast<std::ptrdiff_t>(offset);
    const auto line = 1 + std::count(text.begin(), fault, '\n');
    const std::size_t lineStart = offset == 0 ? std::string::npos : text.rfind('\n', offset - 1);
    const std::size_t column = lineStart == std::string::npos ? offset + 1 : offset - lineStart;
    return FileName(path) + ":" + std::to_string(line) + ":" + std::to_string(column) +
           ": invalid JSON: " + rapidjson::GetParseError_En(document.GetParseError());
}

std::string ObservedMachine::StartRunning()
{
    const ComplaintCollector collector(complaints);
    Start();
    if (GetCurrentState() != nullptr)
    {
        return "";
    }
    return FileName(path) + ": " +
           (CanRun() ? "only the global state runs: " : "nothing to run: ") + StartFault() +
           ArenaHint();
}

bool ObservedMachine::CanRun() const
{
    return !Stack().empty() || globalState != nullptr;
}

std::string ObservedMachine::StartFault() const
{
    if (startStateID == 0)
    {
        return "the head names no start state: \"substateRoot\" is missing or 0, or \"version\" is "
               "below 3";
    }
    BaseDef* def = nodeDefTable == nullptr ? nullptr : nodeDefTable->Find(startStateID);
    const std::string id = std::to_string(startStateID);
    return def == nullptr ? "the start state does not exist: no node has the id " + id
                          : "the start state " + NameOf(*def) + " (" + id + ") cannot be entered";
}

std::string ObservedMachine::StartStateFault() const
{
    BaseDef* def =
        nodeDefTable == nullptr || startStateID == 0 ? nullptr : nodeDefTable->Find(startStateID);
    const bool canStart =
        def != nullptr && def->GetType() != DefTypeTransition && def->GetType() != DefTypeConnector;
    return canStart ? "" : "nothing to run: " + StartFault();
}

unsigned int ObservedMachine::ArenaUsed() const
{
    return alloc.used;
}

std::string ObservedMachine::ArenaHint() const
{
    // A failed allocation leaves some room that was too small for it.
    const unsigned int room = alloc.capacity - alloc.used;
    return alloc.used == 0 || room >= std::max(alloc.capacity / 10, kLargeObject)
               ? ""
               : "; the arena is nearly full, raise \"memory\" in the head";
}

unsigned int ObservedMachine::ArenaSize() const
{
    return alloc.capacity;
}

const std::vector<std::string>& ObservedMachine::Complaints() const
{
    return complaints;
}

void ObservedMachine::SetObserver(MachineObserver* newObserver)
{
    observer = newObserver;
}

std::string ObservedMachine::Tick(float seconds)
{
    try
    {
        Update(seconds);
    }
    catch (const std::exception&)
    {
        return "the tick was aborted: a blip ended at an exit node whose index on the blip stack "
               "is "
               "greater than the size of the main stack";
    }
    CheckTarget();
    return "";
}

const std::vector<SMState*>& ObservedMachine::MainStack() const
{
    return stateStack;
}

const std::vector<SMState*>& ObservedMachine::BlipStack() const
{
    return blipStack;
}

const std::vector<SMState*>& ObservedMachine::Stack() const
{
    return currentStack == nullptr ? stateStack : *currentStack;
}

std::string ObservedMachine::StackPath() const
{
    return PathOf(Stack());
}

int ObservedMachine::BlipPriority() const
{
    return blipPriority;
}

bool ObservedMachine::IsGlobalState(const SMState& state) const
{
    return &state == globalState;
}

NodeDefTable* ObservedMachine::Nodes() const
{
    return nodeDefTable;
}

unsigned int ObservedMachine::StartStateId() const
{
    return startStateID;
}

void ObservedMachine::ReportEntered(const SMState& state)
{
    pendingTarget = state.GetID() == pendingTarget ? 0 : pendingTarget;
    if (observer != nullptr)
    {
        observer->OnEntered(state);
    }
}

void ObservedMachine::ReportLeft(const SMState& state)
{
    if (observer != nullptr)
    {
        observer->OnLeft(state);
    }
}

void ObservedMachine::ReportTested(const SMState& state, const UpdateResult& result,
                                   unsigned int target)
{
    CheckTarget();
    const bool isGlobal = IsGlobalState(state);
    const bool isRefused = target != 0 && isGlobal && result.priority < blipPriority;
    if (target != 0 && !isRefused)
    {
        pendingTarget = target;
    }
    if (observer == nullptr)
    {
        return;
    }
    observer->OnTested(state, target == 0 ? nullptr : result.transition, isRefused);
    if (target != 0 && isGlobal && !isRefused)
    {
        observer->OnBlipStarted(result.priority, blipActive);
    }
}

void ObservedMachine::ReportUpdated(const SMState& state, int updateResult, bool wasBlip)
{
    CheckTarget();
    if (observer == nullptr)
    {
        return;
    }
    if (wasBlip && !blipActive)
    {
        observer->OnBlipEnded();
    }
    if (updateResult == 0)
    {
        observer->OnUpdateFailed(state);
    }
}

void ObservedMachine::CheckTarget()
{
    if (pendingTarget != 0 && observer != nullptr)
    {
        observer->OnTargetMissed(pendingTarget);
    }
    pendingTarget = 0;
}

std::string NameOf(BaseDef& def)
{
    const char* name = def.GetName();
    const bool hasName = name != nullptr && *name != '\0';
    return hasName ? std::string(name) : "#" + std::to_string(def.GetID());
}

std::string NameOf(const SMState& state)
{
    BaseDef* def = state.GetDef();
    return def == nullptr ? std::string("?") : NameOf(*def);
}

std::string PathOf(const std::vector<SMState*>& stack)
{
    std::string text;
    for (const SMState* state : stack)
    {
        text += (text.empty() ? "" : "/") + (state == nullptr ? std::string("?") : NameOf(*state));
    }
    return text;
}

} // namespace vell::tool
