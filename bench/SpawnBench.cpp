// VELL: data-driven hierarchical state machines.
// bench/SpawnBench.cpp: one more machine of the sample character, beside a bare parse of its text.
#include "bench/Character.h"
#include "bench/Spawning.h"

#include <rapidjson/document.h>

#include <memory>

namespace vell::bench
{
namespace
{

const std::string& CharacterText()
{
    static const std::string text = ReadSample("character.json");
    return text;
}

Machine Spawn()
{
    return SpawnMachine(CharacterText());
}

std::unique_ptr<GenericDocument> Parse()
{
    auto document = std::make_unique<GenericDocument>();
    document->Parse(CharacterText().c_str());
    return document;
}

void SpawnWithLines(benchmark::State& state)
{
    TimeSpawns(state, true, Spawn);
}
BENCHMARK(SpawnWithLines)->UseManualTime();

void SpawnQuiet(benchmark::State& state)
{
    const QuietLog quiet;
    TimeSpawns(state, true, Spawn);
}
BENCHMARK(SpawnQuiet)->UseManualTime();

void LimitSpawnParse(benchmark::State& state)
{
    TimeSpawns(state, true, Parse);
}
BENCHMARK(LimitSpawnParse)->UseManualTime();

/// Where earlier machines have ended and left their memory.
void SpawnQuietAgain(benchmark::State& state)
{
    const QuietLog quiet;
    TimeSpawns(state, false, Spawn);
}
BENCHMARK(SpawnQuietAgain)->UseManualTime();

void LimitSpawnParseAgain(benchmark::State& state)
{
    TimeSpawns(state, false, Parse);
}
BENCHMARK(LimitSpawnParseAgain)->UseManualTime();

constexpr int kResidentCount = 200;

void ResidentMachine(benchmark::State& state)
{
    const QuietLog quiet;
    CountResident(state, kResidentCount, Spawn);
}
BENCHMARK(ResidentMachine)->Iterations(1);

void LimitResidentParse(benchmark::State& state)
{
    CountResident(state, kResidentCount, Parse);
}
BENCHMARK(LimitResidentParse)->Iterations(1);

} // namespace
} // namespace vell::bench
