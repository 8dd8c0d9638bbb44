// VELL: data-driven hierarchical state machines.
// tests/robustness/LongLifeTest.cpp: many machines and many ticks in one process.
#include <tessel/Tessel.h>
#include <vell/HSM.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "tests/robustness/Conditions.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/SourceDir.h"
#include "tools/vell/ParameterText.h"
#include "tools/vell/Script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
// after windows.h
#include <psapi.h>
#else
#include <unistd.h>
#endif

#if defined(VELL_ADDRESS_SANITIZER)
/// The address sanitizer asks for this: it is to keep little of what was freed.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "quarantine_size_mb=1";
}
#endif

namespace vell::test
{
namespace
{

// A short run by default. CI sets the counts of a long one in the release build alone.
constexpr unsigned long long kMachines = 500;
constexpr unsigned long long kTicks = 100000;
/// What the resident memory may grow by after warm-up, however long a run is.
#if defined(VELL_ADDRESS_SANITIZER)
constexpr long kPlayKilobytes = 4096; // the sanitizer keeps a record of each place of allocation
#else
constexpr long kPlayKilobytes = 1024;
#endif

std::string ReadSample(const std::string& name)
{
    std::ifstream file(std::string(SourceDir()) + "/samples/" + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Resident memory in kilobytes.
long ResidentMemory()
{
#if defined(_WIN32)
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return static_cast<long>(counters.WorkingSetSize / 1024);
#else
    std::ifstream file("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    file >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
#endif
}

/// Holds the largest resident memory of the first half against that of the second.
class FlatMemory
{
public:
    explicit FlatMemory(unsigned long long stepCount) : steps(stepCount)
    {
    }

    /// To be called at each step; the first tenth is warm-up.
    void Note(unsigned long long step)
    {
        const unsigned long long every = steps < 100 ? 1 : steps / 100;
        if (step % every != 0 || step < steps / 10)
        {
            return;
        }
        long& most = step < steps / 2 ? firstHalf : secondHalf;
        most = std::max(most, ResidentMemory());
    }

    void Expect(const std::string& what) const
    {
        EXPECT_GT(firstHalf, 0);
        EXPECT_LE(secondHalf, firstHalf + kPlayKilobytes);
        std::cout << what << ": " << firstHalf << " kB resident in the first half, " << secondHalf
                  << " kB in the second\n";
    }

private:
    unsigned long long steps;
    long firstHalf = 0;
    long secondHalf = 0;
};

/// A host's machine that a script drives. What the script expects is for other tests.
class DrivenMachine : public HSM
{
public:
    explicit DrivenMachine(const std::string& text) : HSM(text.c_str())
    {
    }

    void Set(const std::string& name, const std::string& value)
    {
        ParameterDef* parameter = GetParameterTable()->FindParameter(name.c_str());
        ASSERT_NE(parameter, nullptr) << name;
        ASSERT_EQ(tool::SetValueFromText(*parameter, value), "") << name;
    }

    void CarryOut(const tool::Script& script)
    {
        for (const tool::Instruction& instruction : script.instructions)
        {
            switch (instruction.operation)
            {
            case tool::Operation::Tick:
                for (std::uint64_t i = 0; i < instruction.count; ++i)
                {
                    Update(1.0f / 60.0f);
                }
                break;
            case tool::Operation::Set:
                Set(instruction.name, instruction.value);
                break;
            case tool::Operation::Message:
                BroadcastMessage(instruction.name.c_str());
                break;
            default:
                break;
            }
        }
    }
};

/// Writes a parameter of the character at random.
void WriteAtRandom(DrivenMachine& machine, std::mt19937& random)
{
    IParameterTable* table = machine.GetParameterTable();
    const auto count = static_cast<unsigned int>(table->GetParameterCount());
    ParameterDef* parameter = table->FindParameter(
        table->GetParameterIDByIndex(static_cast<unsigned int>(random()) % count));
    if (auto* asBool = dynamic_cast<IParameterBoolDef*>(parameter))
    {
        asBool->SetValue(random() % 2 == 0);
    }
    else if (auto* asFloat = dynamic_cast<IParameterFloatDef*>(parameter))
    {
        asFloat->SetValue(static_cast<float>(random() % 60) / 10.0f);
    }
    else if (auto* asInt = dynamic_cast<IParameterIntDef*>(parameter))
    {
        asInt->SetValue(static_cast<int>(random() % 5));
    }
    else if (auto* asMessage = dynamic_cast<IParameterMessageDef*>(parameter))
    {
        asMessage->SetValue(std::string(random() % 40, 'm'));
    }
}

} // namespace

TEST(LongLife, OfManyMachinesKeepsTheResidentMemoryFlat)
{
    const QuietLog log;
    const std::string text = ReadSample("character.json");
    std::istringstream lines(ReadSample("character.script"));
    const tool::Script script = tool::ReadScript(lines, "character.script");
    ASSERT_TRUE(script.errors.empty());
    ASSERT_GT(script.instructions.size(), 20u);
    const unsigned long long machines = CountFromEnvironment("VELL_LONG_LIFE_MACHINES", kMachines);
    const unsigned int openBefore = Tessel::GetOpenTableCount();
    FlatMemory memory(machines);

    for (unsigned long long i = 0; i < machines; ++i)
    {
        DrivenMachine machine(text);
        ASSERT_EQ(machine.Init(), 1);
        machine.Start();
        machine.CarryOut(script);
        machine.Uninit();
        machine.Destroy();
        memory.Note(i);
    }

    memory.Expect(std::to_string(machines) + " machines");
    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
    EXPECT_EQ(log.Errors(), 0u);
}

TEST(LongLife, OfManyTicksKeepsTheResidentMemoryFlat)
{
    const QuietLog log;
    const std::string text = ReadSample("character.json");
    const unsigned long long ticks = CountFromEnvironment("VELL_LONG_LIFE_TICKS", kTicks);
    DrivenMachine machine(text);
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    std::mt19937 random(20240614);
    FlatMemory memory(ticks);
    const std::size_t linesBefore = log.Lines();

    for (unsigned long long i = 0; i < ticks; ++i)
    {
        WriteAtRandom(machine, random);
        machine.Update(1.0f / 60.0f);
        memory.Note(i);
    }

    memory.Expect(std::to_string(ticks) + " ticks");
    EXPECT_GT(log.Lines() - linesBefore, ticks / 10) << "the inputs drive the machine";
    machine.Uninit();
    machine.Destroy();
}

} // namespace vell::test
