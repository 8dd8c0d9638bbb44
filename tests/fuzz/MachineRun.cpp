// VELL: data-driven hierarchical state machines.
// tests/fuzz/MachineRun.cpp: a machine's whole life.
#include "tests/fuzz/MachineRun.h"

#include <tessel/Tessel.h>
#include <vell/Factories.h>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/TreeWrites.h"

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

// An arena of more than 24 MB is refused, as a system without memory would; the program sets these,
// so that a fuzzer needs no options of a shell.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "max_allocation_size_mb=24:allocator_may_return_null=1:detect_leaks=1";
}

namespace vell::fuzz
{
namespace
{

constexpr int kTicks = 20;

} // namespace

void Require(bool holds, const char* what)
{
    if (!holds)
    {
        // Standard error may be closed; the debugger and the fuzzer's stack trace still show it.
        const std::string line = std::string("Fails: ") + what + "\n";
        if (write(STDOUT_FILENO, line.data(), line.size()) < 0)
        {
            std::abort();
        }
        std::abort();
    }
}

void Tick(IHSM& machine, float timeStep)
{
    try
    {
        machine.Update(timeStep);
    }
    catch (const std::out_of_range&)
    {
        // A blip that ends above a shorter main stack.
    }
}

void RunDocument(const std::string& text, Bytes* writes)
{
    Require(Tessel::GetOpenTableCount() == 0, "no table is open before a machine is made");
    const std::unique_ptr<IHSM> machine(CreateHSMJson(text.c_str()));
    Require(machine != nullptr, "a machine is always made");
    if (machine->Init() != 0)
    {
        machine->Start();
        for (int i = 0; i < kTicks; ++i)
        {
            if (writes != nullptr && !writes->Empty())
            {
                WriteIntoTree(machine->GetKVTable(), *writes);
            }
            Tick(*machine, 0.1f);
        }
        machine->GetCurrentState();
    }
    machine->Uninit();
    machine->Destroy();
}

} // namespace vell::fuzz
