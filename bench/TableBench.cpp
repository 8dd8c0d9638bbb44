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

/// Keys as a host writes them, or interned, as the machines' own are.
struct Keys
{
    explicit Keys(bool interned)
        : id(interned ? Tessel::InternKey(kKeys[0]) : kKeys[0]),
          type(interned ? Tessel::InternKey(kKeys[1]) : kKeys[1]),
          value(interned ? Tessel::InternKey(kKeys[2]) : kKeys[2])
    {
    }

    const char* id;
    const char* type;
    const char* value;
};

Tessel::KVTable MakeTable(const Keys& keys)
{
    const Tessel::KVTable table = Tessel::CreateTable("baseDef");
    table->SetUInt(keys.id, 1, 1);
    table->SetInt(keys.type, 2, 1);
    table->SetFloat(keys.value, 3.0f, 1);
    return table;
}

/// Making and closing.
void TableMake(benchmark::State& state)
{
    const Keys keys(state.range(0) != 0);
    unsigned int checksum = 0;
    for (auto _ : state)
    {
        const Tessel::KVTable table = MakeTable(keys);
        checksum = table->GetKeyCount();
        Tessel::CloseTable(table);
    }
    state.counters["checksum"] = checksum;
}
BENCHMARK(TableMake)->ArgName("interned")->Arg(0)->Arg(1);

void TableRead(benchmark::State& state)
{
    const Keys keys(state.range(0) != 0);
    const Tessel::KVTable table = MakeTable(keys);
    float sum = 0.0f;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(sum += table->GetFloat(keys.value));
    }
    state.counters["checksum"] = table->GetKeyCount();
    Tessel::CloseTable(table);
}
BENCHMARK(TableRead)->ArgName("interned")->Arg(0)->Arg(1);

void TableWrite(benchmark::State& state)
{
    const Keys keys(state.range(0) != 0);
    const Tessel::KVTable table = MakeTable(keys);
    for (auto _ : state)
    {
        table->SetFloat(keys.value, 4.0f, 1);
    }
    state.counters["checksum"] = table->GetFloat(keys.value);
    Tessel::CloseTable(table);
}
BENCHMARK(TableWrite)->ArgName("interned")->Arg(0)->Arg(1);

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
