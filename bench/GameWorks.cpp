// VELL: data-driven hierarchical state machines.
// bench/GameWorks.cpp: what a game does with a machine in a frame, a given number of times.
#include "bench/GameWorks.h"

#include "bench/Character.h"
#include "bench/Limits.h"

#include <rapidjson/document.h>

#include <cstdio>

namespace vell::bench
{
namespace
{

/// Ticks and shows where the machine is, so that the work has a result.
void Tick(IHSM& machine, int times)
{
    for (int i = 0; i < times; ++i)
    {
        machine.Update(kTimeStep);
    }
    std::printf("%u\n", CurrentId(machine));
}

} // namespace

void TickSample(int times)
{
    Tick(Character().Get(), times);
}

void TickSettled(int times)
{
    Tick(*StartMachine(ReadSample("locomotion.json")), times);
}

void TickTriggered(int times)
{
    Tick(Character(Extra::Trigger).Get(), times);
}

void TickResetting(int times)
{
    Character character;
    for (int i = 0; i < times; ++i)
    {
        character.SetResetting();
        character.Update(kTimeStep);
    }
    std::printf("%u\n", character.Current());
}

void SetHotFloat(int times)
{
    Character character;
    for (int i = 0; i < times; ++i)
    {
        character.SetSpeed(InTurn(i, 1.5f, 1.75f));
    }
    std::printf("%u\n", character.Current());
}

template <Extra kExtra>
void Frames(int times)
{
    Character character(kExtra);
    for (int i = 0; i < times; ++i)
    {
        RunFrame<kExtra>(character, i);
    }
    std::printf("%u\n", character.Current());
}

template <Extra kExtra>
void FramesByHand(int times)
{
    LimitInBlock<CharacterLimit<kExtra>> limit;
    for (int i = 0; i < times; ++i)
    {
        RunFrame<kExtra>(limit.machine, i);
    }
    std::printf("%u\n", limit.machine.Current());
}

template void Frames<Extra::Nothing>(int);
template void Frames<Extra::Actions>(int);
template void Frames<Extra::Trigger>(int);
template void Frames<Extra::Reset>(int);
template void Frames<Extra::Listener>(int);
template void FramesByHand<Extra::Nothing>(int);
template void FramesByHand<Extra::Actions>(int);
template void FramesByHand<Extra::Trigger>(int);
template void FramesByHand<Extra::Reset>(int);
template void FramesByHand<Extra::Listener>(int);

void Switches(int times)
{
    Observer observer;
    Character character;
    observer.Watch(character.Get());
    for (int i = 0; i < times; ++i)
    {
        RunSwitch(character, i);
    }
    std::printf("%u\n", character.Current());
}

void SwitchesByHand(int times)
{
    LimitInBlock<ChangingLimit> limit;
    for (int i = 0; i < times; ++i)
    {
        RunSwitch(limit.machine, i);
    }
    std::printf("%u\n", limit.machine.Current());
}

void Spawns(int times)
{
    const std::string text = ReadSample("character.json");
    const auto first = SpawnMachine(text); // whose document the others share
    for (int i = 0; i < times; ++i)
    {
        SpawnMachine(text);
    }
    std::printf("%d\n", times);
}

void Parses(int times)
{
    const std::string text = ReadSample("character.json");
    unsigned int members = 0;
    for (int i = 0; i < times; ++i)
    {
        GenericDocument document;
        document.Parse(text.c_str());
        members += document.MemberCount();
    }
    std::printf("%u\n", members);
}

} // namespace vell::bench
