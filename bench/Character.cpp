// VELL: data-driven hierarchical state machines.
// bench/Character.cpp: the sample character, as a game drives it.
#include "bench/Character.h"

#include <fstream>
#include <iterator>

namespace vell::bench
{
namespace
{

/// Gives the parameter as a host keeps it.
template <class Value>
Value* Find(IHSM& machine, const char* name)
{
    return &dynamic_cast<Value&>(*machine.GetParameterTable()->FindParameter(name));
}

Machine SpawnSample()
{
    static const std::string text = ReadSample("character.json");
    return SpawnMachine(text);
}

/// What an action or a listener of a game is, at its least.
class CountingAction : public Action
{
public:
    int Perform(__ActType__, float timeStep) override
    {
        total += timeStep;
        return 1;
    }

private:
    float total = 0.0f;
};

unsigned int heard = 0;

int CountValue(void*, Tessel::opResult, Tessel::KVTable, const char*)
{
    ++heard;
    return 1;
}

bool Never(IHSM*, SMState*)
{
    return false;
}

} // namespace

std::string ReadSample(const char* name)
{
    std::ifstream file(std::string(VELL_SOURCE_DIR "/samples/") + name);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

Character::Character(Extra extra)
    : CrowdMember(SpawnSample()),
      speed(Find<IParameterFloatDef>(*machine, "speed")),
      stick(Find<IParameterAnalogDef>(*machine, "stick")),
      armed(Find<IParameterBoolDef>(*machine, "armed")),
      combo(Find<IParameterIntDef>(*machine, "combo")),
      settled(Find<IParameterBoolDef>(*machine, "settled")),
      attack(Find<IParameterBoolDef>(*machine, "attack"))
{
    constexpr int kTicksUntilSettled = 8;
    Add(extra);
    SetInputs(0);
    for (int i = 0; i < kTicksUntilSettled; ++i)
    {
        Update(kTimeStep);
    }
}

void Character::Add(Extra extra)
{
    switch (extra)
    {
    case Extra::Actions:
        for (const char* state : {"Interruptions", "Locomotion", "Walk"})
        {
            machine->FindDef(state)->RegisterExecute(new CountingAction);
        }
        break;
    case Extra::Trigger:
        if (!dynamic_cast<HSM&>(*machine).AssignTrigger("WalkToRun", Never))
        {
            Fail("the sample has no such transition");
        }
        break;
    case Extra::Listener:
    {
        ParameterDef* parameter = machine->GetParameterTable()->FindParameter("speed");
        parameter->GetKVTable()->GetValueListener("value")->function = CountValue;
        break;
    }
    case Extra::Reset:
    case Extra::Nothing:
        break;
    }
}

} // namespace vell::bench
