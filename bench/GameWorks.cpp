// VELL: data-driven hierarchical state machines.
// bench/GameWorks.cpp: what a game does with a machine in a frame, a given number of times.
#include "bench/GameWorks.h"

#include "bench/Limits.h"
#include "bench/Machines.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vell::bench
{
namespace
{

constexpr float kTimeStep = 0.016f;

/// Two walking speeds in turn.
float SpeedOf(int time)
{
    return time % 2 == 0 ? 1.5f : 1.75f;
}

Machine StartSample(const char* name)
{
    std::ifstream file(std::string(VELL_SOURCE_DIR "/samples/") + name);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    return StartMachine(text);
}

/// Gives the parameter as a host keeps it.
template <class Value>
Value& Find(IHSM& machine, const char* name)
{
    return dynamic_cast<Value&>(*machine.GetParameterTable()->FindParameter(name));
}

Machine StartWalking()
{
    constexpr int kTicksUntilSettled = 8;
    Machine machine = StartSample("character.json");
    Find<IParameterFloatDef>(*machine, "speed").SetValue(SpeedOf(0));
    for (int i = 0; i < kTicksUntilSettled; ++i)
    {
        machine->Update(kTimeStep);
    }
    return machine;
}

/// Ticks and shows where the machine is, so that the work has a result.
void Tick(IHSM& machine, int times)
{
    for (int i = 0; i < times; ++i)
    {
        machine.Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(machine));
}

bool Never(IHSM*, SMState*)
{
    return false;
}

} // namespace

void TickSample(int times)
{
    Tick(*StartWalking(), times);
}

void TickSettled(int times)
{
    Tick(*StartSample("locomotion.json"), times);
}

void TickTriggered(int times)
{
    const Machine machine = StartWalking();
    if (!dynamic_cast<HSM&>(*machine).AssignTrigger("WalkToRun", Never))
    {
        Fail("the sample has no such transition");
    }
    Tick(*machine, times);
}

void TickResetting(int times)
{
    const Machine machine = StartWalking();
    auto& attack = Find<IParameterBoolDef>(*machine, "attack");
    for (int i = 0; i < times; ++i)
    {
        attack.SetValue(true);
        machine->Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(*machine));
}

void SetHotFloat(int times)
{
    const Machine machine = StartWalking();
    auto& speed = Find<IParameterFloatDef>(*machine, "speed");
    for (int i = 0; i < times; ++i)
    {
        speed.SetValue(SpeedOf(i));
    }
    std::printf("%f\n", static_cast<double>(speed.GetValue()));
}

void Frame(int times)
{
    const Machine machine = StartWalking();
    auto& speed = Find<IParameterFloatDef>(*machine, "speed");
    auto& stick = Find<IParameterAnalogDef>(*machine, "stick");
    auto& armed = Find<IParameterBoolDef>(*machine, "armed");
    auto& combo = Find<IParameterIntDef>(*machine, "combo");
    auto& settled = Find<IParameterBoolDef>(*machine, "settled");
    for (int i = 0; i < times; ++i)
    {
        speed.SetValue(SpeedOf(i));
        stick.SetValue(Tessel::Float2{SpeedOf(i), 0.5f});
        armed.SetValue(false);
        combo.SetValue(0);
        settled.SetValue(false);
        machine->Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(*machine));
}

void FrameLimit(int times)
{
    std::vector<unsigned char> block(VirtualMachine::BlockSize());
    VirtualMachine machine(block.data());
    for (int i = 0; i < times; ++i)
    {
        machine.SetValue(0, i % 2 == 0 ? 0.5f : 0.75f);
        machine.SetValue(1, i % 2 == 0 ? 0.25f : 0.5f);
        machine.SetValue(2, 0.0f);
        machine.SetValue(3, 0.0f);
        machine.SetValue(4, 0.0f);
        machine.Update(kTimeStep);
    }
    std::printf("%u\n", machine.current);
}

} // namespace vell::bench
