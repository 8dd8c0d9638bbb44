// VELL: data-driven hierarchical state machines.
// bench/TableBench.cpp: small key/value tables.
#include <tessel/Tessel.h>

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace vell::bench
{
namespace
{

constexpr const char* kKeys[] = {"id", "type", "value"};

Tessel::KVTable MakeTable()
{
    const Tessel::KVTable table = Tessel::CreateTable("baseDef");
    table->SetUInt(kKeys[0], 1, 1);
    table->SetInt(kKeys[1], 2, 1);
    table->SetFloat(kKeys[2], 3.0f, 1);
    return table;
}

/// Making and closing.
void TableMake(benchmark::State& state)
{
    unsigned int checksum = 0;
    for (auto _ : state)
    {
        const Tessel::KVTable table = MakeTable();
        checksum = table->GetKeyCount();
        Tessel::CloseTable(table);
    }
    state.counters["checksum"] = checksum;
}
BENCHMARK(TableMake);

void TableRead(benchmark::State& state)
{
    const Tessel::KVTable table = MakeTable();
    float sum = 0.0f;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(sum += table->GetFloat(kKeys[2]));
    }
    state.counters["checksum"] = table->GetKeyCount();
    Tessel::CloseTable(table);
}
BENCHMARK(TableRead);

void TableWrite(benchmark::State& state)
{
    const Tessel::KVTable table = MakeTable();
    for (auto _ : state)
    {
        table->SetFloat(kKeys[2], 4.0f, 1);
    }
    state.counters["checksum"] = table->GetFloat(kKeys[2]);
    Tessel::CloseTable(table);
}
BENCHMARK(TableWrite);

/// What the same costs with the standard library's map.
void LimitMapMake(benchmark::State& state)
{
    std::size_t checksum = 0;
    for (auto _ : state)
    {
        std::map<std::string, float> table;
        table[kKeys[0]] = 1.0f;
        table[kKeys[1]] = 2.0f;
        table[kKeys[2]] = 3.0f;
        checksum = table.size();
    }
    state.counters["checksum"] = static_cast<double>(checksum);
}
BENCHMARK(LimitMapMake);

} // namespace
} // namespace vell::bench
