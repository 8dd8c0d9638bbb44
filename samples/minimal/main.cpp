// VELL: data-driven hierarchical state machines.
// samples/minimal/main.cpp: the smallest host.
#include <vell/vell.h>

#include <cstdio>

namespace
{

bool hasStumbled = false; // the game's collision code sets it

/// A trigger: fires its transition in any tick in which the character stumbles.
bool HasStumbled(vell::IHSM*, vell::SMState*)
{
    return hasStumbled;
}

void Play(vell::IHSM& machine, vell::IParameterFloatDef& speed)
{
    struct Frame
    {
        float speed;
        bool stumbles;
    };
    const Frame frames[] = {{0, false}, {2, false}, {5, false}, {5, true}, {5, false}, {1, false}};
    for (const Frame& frame : frames)
    {
        speed.SetValue(frame.speed);
        hasStumbled = frame.stumbles;
        machine.Update(1.0f / 60.0f);
        std::printf("%.0f m/s%s: %s\n", static_cast<double>(frame.speed),
                    frame.stumbles ? ", stumbling" : "",
                    machine.GetCurrentState()->GetDef()->GetName());
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2)
    {
        std::fprintf(stderr, "usage: %s locomotion.json\n", arguments[0]);
        return 2;
    }
    int result = 1; // the log on standard error says why
    vell::IHSM* machine = vell::CreateHSM(arguments[1], nullptr);
    if (machine->Init())
    {
        auto* speed = dynamic_cast<vell::IParameterFloatDef*>(
            machine->GetParameterTable()->FindParameter("speed"));
        static_cast<vell::HSM*>(machine)->AssignTrigger("RunToWalk", HasStumbled);
        machine->Start();
        if (speed != nullptr && machine->GetCurrentState() != nullptr)
        {
            Play(*machine, *speed);
            result = 0;
        }
        machine->Uninit();
    }
    machine->Destroy();
    delete machine;
    return result;
}
