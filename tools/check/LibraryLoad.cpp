// VELL: data-driven hierarchical state machines.
// tools/check/LibraryLoad.cpp: a machine that is created only to listen to the log.
#include "tools/check/LibraryLoad.h"

#include <durm/DURMBaseLib.h>
#include <vell/HSM.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>

#include "definitions/GenericDef.h"
#include "foundation/LogStream.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "tools/vell/LogRedirect.h"

#include <algorithm>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

constexpr std::uint32_t kMemoryFactor = 100;
constexpr std::uint32_t kDefaultMemory = 0x100000;
/// A byte of text never takes more than this in the arena, not even when a bad layer is built
/// eight times: a text attribute takes 1,100 bytes and at least 45 of text.
constexpr std::uint64_t kBytesPerByte = 256;
constexpr std::uint64_t kMostBytes = 0xf0000000; ///< the size of an arena has 32 bits

/// Collects errors and warnings while it lives. There is one at a time.
class Collector
{
public:
    explicit Collector(std::vector<Complaint>& filledList)
    {
        list = &filledList;
        SetLogCallBackBase(Take);
    }
    ~Collector()
    {
        SetLogCallBackBase(nullptr);
        list = nullptr;
    }
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;

private:
    static void Take(int level, const char* text)
    {
        if (level != LogError && level != LogWarning)
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
        list->push_back({level == LogError, line});
    }

    static std::vector<Complaint>* list;
};

std::vector<Complaint>* Collector::list = nullptr;

/// A machine whose arena can be looked at.
class Probe : public HSM
{
public:
    ~Probe() override
    {
        if (isCreated)
        {
            Uninit();
        }
        Destroy();
    }

    bool Load(const DocumentModel& model, const std::string& text)
    {
        jsonText = text.c_str();
        isCreated = Create() != 0;
        if (isCreated)
        {
            RegisterHostBuilders(model);
        }
        const bool isLoaded = isCreated && Init() != 0;
        used = alloc.used;
        return isLoaded;
    }

    std::uint64_t used = 0;

private:
    /// Plain nodes stand in for those that only a host can build.
    void RegisterHostBuilders(const DocumentModel& model)
    {
        for (const NodeModel& node : model.nodes)
        {
            if (node.IsOfHost())
            {
                RegisterNodeDef(static_cast<__DURM_BUILDERS__>(node.builder), GenericDef::Create);
            }
        }
    }

    bool isCreated = false;
};

/// Gives the text with another figure for the memory.
std::string WithMemory(const DocumentModel& model, const std::string& text, std::uint64_t figure)
{
    if (model.head == nullptr)
    {
        return text;
    }
    const source::Value* memory = Find(*model.head, JSON_HeadMemory);
    std::string changed = text;
    if (memory != nullptr)
    {
        const source::Span& span = memory->span;
        changed.replace(span.begin.offset, span.end.offset - span.begin.offset,
                        std::to_string(figure));
        return changed;
    }
    const std::string member = "\"" + std::string(GetJsonName(JSON_HeadMemory)) +
                               "\":" + std::to_string(figure) +
                               (model.head->members.empty() ? "" : ",");
    return changed.insert(model.head->span.begin.offset + 1, member);
}

std::uint64_t StateBytes(const NodeModel& node)
{
    switch (node.builder)
    {
    case BUILDER_Enter:
        return sizeof(EnterState);
    case BUILDER_Exit:
        return sizeof(ExitState);
    case BUILDER_Global:
        return sizeof(GlobalState);
    case BUILDER_Substate:
        return sizeof(SubstateState);
    default:
        return node.CanRun() ? sizeof(SMState) : 0;
    }
}

} // namespace

Loading LoadDocument(const DocumentModel& model, const std::string& text)
{
    Loading loading;
    const std::uint64_t bytes = text.size() * kBytesPerByte + kDefaultMemory;
    const std::uint64_t figure = std::min(bytes / kMemoryFactor, kMostBytes / kMemoryFactor);
    const std::string changed = WithMemory(model, text, figure);
    const tool::LogRedirect silence("");
    const Collector collector(loading.complaints);
    Probe machine;
    loading.isLoaded = machine.Load(model, changed);
    loading.used = machine.used;
    return loading;
}

std::uint64_t CountStateBytes(const DocumentModel& model)
{
    std::uint64_t bytes = 0;
    for (const NodeModel& node : model.nodes)
    {
        bytes += node.isFirst ? StateBytes(node) : 0;
    }
    return bytes;
}

std::uint32_t GetArenaSize(const DocumentModel& model)
{
    const source::Value* memory =
        model.head == nullptr ? nullptr : Find(*model.head, JSON_HeadMemory);
    return (memory == nullptr ? kDefaultMemory : memory->ReadUInt()) * kMemoryFactor;
}

} // namespace vell::check
