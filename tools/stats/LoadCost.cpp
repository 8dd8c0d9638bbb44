// VELL: data-driven hierarchical state machines.
// tools/stats/LoadCost.cpp: loading for the sake of measuring.
#include "tools/stats/LoadCost.h"

#include <durm/DURMBaseLib.h>
#include <vell/BaseDef.h>
#include <vell/HSM.h>

#include "definitions/GenericDef.h"
#include "definitions/NodeDefTable.h"
#include "document/DocumentParser.h"
#include "tools/check/DocumentModel.h"
#include "tools/vell/Losses.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace vell::stats
{
namespace
{

using namespace DURMBaseLib;
using Clock = std::chrono::steady_clock;

constexpr std::int64_t kDefaultMemory = 1048576;
constexpr std::int64_t kAmpleMemory = 1000000;
constexpr std::int64_t kMostMemory = 42949672; ///< the arena's size has 32 bits
constexpr std::size_t kUnitsPerByteOfText = 5; ///< an arena of 20 bytes for each byte of text

constexpr int kFewestRuns = 5;
constexpr double kMilliseconds = 100.0; ///< time spent on each figure, unless the runs take longer

/// A machine that is loaded to be measured.
class MeasuredMachine : public HSM
{
public:
    MeasuredMachine(const std::string& text, const std::set<int>& newHostBuilders)
        : hostBuilders(newHostBuilders)
    {
        jsonText = text.c_str();
    }
    ~MeasuredMachine() override
    {
        if (isCreated)
        {
            Uninit();
        }
        Destroy();
    }

    bool Load()
    {
        isCreated = Create() != 0;
        if (isCreated)
        {
            for (const int builder : hostBuilders)
            {
                RegisterNodeDef(static_cast<__DURM_BUILDERS__>(builder), GenericDef::Create);
            }
        }
        return isCreated && Init() != 0;
    }

    std::string Losses() const
    {
        return tool::LossText(document, *nodeDefTable);
    }

    std::uint64_t Used() const
    {
        return alloc.used;
    }

    void ActivateStates()
    {
        for (BaseDef* def = nodeDefTable->FindFirst(kStates); def != nullptr;
             def = nodeDefTable->FindNext(kStates))
        {
            ids.push_back(def->GetID());
        }
        for (const unsigned int id : ids)
        {
            ActivateState(id, 0.0f);
        }
    }

private:
    static constexpr unsigned int kStates = DefTypesState | DefTypesSubstate;

    const std::set<int>& hostBuilders;
    std::vector<unsigned int> ids;
    bool isCreated = false;
};

const source::Value* FindMemory(const source::Text& text)
{
    const source::Value* head = text.root.Find(GetJsonName(JSON_Head));
    return head == nullptr ? nullptr : head->Find(GetJsonName(JSON_HeadMemory));
}

/// Gives the document with enough memory.
std::string WithAmpleMemory(const source::Text& text)
{
    std::string bytes = text.bytes;
    if (const source::Value* memory = FindMemory(text))
    {
        const auto bySize = static_cast<std::int64_t>(bytes.size() / kUnitsPerByteOfText);
        const std::int64_t ample =
            std::min(std::max({DeclaredMemory(text), kAmpleMemory, bySize}), kMostMemory);
        const std::size_t begin = memory->span.begin.offset;
        bytes.replace(begin, memory->span.end.offset - begin, std::to_string(ample));
    }
    return bytes;
}

std::set<int> FindHostBuilders(const source::Text& text)
{
    std::set<int> builders;
    const check::DocumentModel model(text.root);
    for (const check::NodeModel& node : model.nodes)
    {
        if (node.IsOfHost())
        {
            builders.insert(node.builder);
        }
    }
    return builders;
}

template <class Work>
double MedianOf(Work work)
{
    std::vector<double> times;
    double sum = 0.0;
    while (times.size() < kFewestRuns || sum < kMilliseconds)
    {
        times.push_back(work());
        sum += times.back();
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

} // namespace

std::uint64_t MemoryNeed::Units() const
{
    return (complete + kBytesPerUnit - 1) / kBytesPerUnit;
}

std::int64_t DeclaredMemory(const source::Text& text)
{
    const source::Value* memory = FindMemory(text);
    return memory == nullptr ? kDefaultMemory : static_cast<std::int32_t>(memory->ReadUInt());
}

MemoryNeed MeasureMemory(const source::Text& text)
{
    const std::string bytes = WithAmpleMemory(text);
    const std::set<int> hostBuilders = FindHostBuilders(text);
    MeasuredMachine machine(bytes, hostBuilders);
    MemoryNeed need;
    need.loads = machine.Load();
    if (need.loads)
    {
        need.losses = machine.Losses();
        need.loaded = machine.Used();
        machine.ActivateStates();
        need.complete = machine.Used();
    }
    return need;
}

LoadTime MeasureTime(const source::Text& text)
{
    const std::string bytes = WithAmpleMemory(text);
    const std::set<int> hostBuilders = FindHostBuilders(text);
    LoadTime time;
    time.load = MedianOf(
        [&bytes, &hostBuilders]
        {
            MeasuredMachine machine(bytes, hostBuilders);
            const Clock::time_point start = Clock::now();
            machine.Load();
            return MillisecondsSince(start);
        });
    time.parse = MedianOf(
        [&bytes]
        {
            GenericDocument document;
            const Clock::time_point start = Clock::now();
            ParseText(bytes.c_str(), document);
            return MillisecondsSince(start);
        });
    return time;
}

} // namespace vell::stats
