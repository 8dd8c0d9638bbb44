// VELL: data-driven hierarchical state machines.
// bench/LoadBench.cpp: loading, beside a bare parse and bare writes of the log.
#include "bench/Documents.h"
#include "bench/Machines.h"

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <map>

namespace vell::bench
{
namespace
{

/// A document and the lines that loading it logs; made once in a process.
struct LoadCase
{
    explicit LoadCase(int states) : document(LoadDocument(states))
    {
        const LogRecord record;
        LoadMachine(document);
        lines = record.Lines();
    }

    std::string document;
    std::vector<std::string> lines;
};

const LoadCase& GetCase(int states)
{
    static std::map<int, LoadCase> cases;
    return cases.try_emplace(states, states).first->second;
}

/// Only the load is timed, not the machine's end.
void Load(benchmark::State& state)
{
    const LoadCase& load = GetCase(static_cast<int>(state.range(0)));
    unsigned int checksum = 0;
    for (auto _ : state)
    {
        const double start = ProcessorSeconds();
        const Machine machine = LoadMachine(load.document);
        state.SetIterationTime(ProcessorSeconds() - start);
        checksum = machine->FindDef(static_cast<unsigned int>(state.range(0)))->GetID();
    }
    state.counters["checksum"] = checksum;
}
BENCHMARK(Load)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

void LoadQuiet(benchmark::State& state)
{
    // The case's lines are recorded first.
    GetCase(static_cast<int>(state.range(0)));
    const QuietLog quiet;
    Load(state);
}
BENCHMARK(LoadQuiet)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

void LimitLoadParse(benchmark::State& state)
{
    const LoadCase& load = GetCase(static_cast<int>(state.range(0)));
    std::size_t checksum = 0;
    for (auto _ : state)
    {
        GenericDocument document;
        const double start = ProcessorSeconds();
        document.Parse(load.document.c_str());
        state.SetIterationTime(ProcessorSeconds() - start);
        checksum = document.MemberCount();
    }
    state.counters["checksum"] = static_cast<double>(checksum);
}
BENCHMARK(LimitLoadParse)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

void LimitLoadWrites(benchmark::State& state)
{
    const LoadCase& load = GetCase(static_cast<int>(state.range(0)));
    std::size_t bytes = 0;
    for (auto _ : state)
    {
        const double start = ProcessorSeconds();
        bytes = WriteBare(load.lines);
        state.SetIterationTime(ProcessorSeconds() - start);
    }
    state.counters["checksum"] = static_cast<double>(bytes);
}
BENCHMARK(LimitLoadWrites)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

} // namespace
} // namespace vell::bench
