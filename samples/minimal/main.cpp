// VELL: data-driven hierarchical state machines.
// samples/minimal/main.cpp: the smallest host.
#include <vell/vell.h>
#include <cstdio>

bool HasStumbled(vell::IHSM*, vell::SMState*)
{
    return true;
}

int main(int, char** arguments)
{
    vell::IHSM* machine = vell::CreateHSM(arguments[1], nullptr);
    if (!machine->Init())
        return 1; // the log on standard error says why
    static_cast<vell::HSM*>(machine)->AssignTrigger("RunToWalk", HasStumbled);
    machine->Start();
    vell::ParameterDef* speed = machine->GetParameterTable()->FindParameter("speed");
    for (float wanted : {0.0f, 2.0f, 5.0f, 5.0f, 0.0f})
    {
        dynamic_cast<vell::IParameterFloatDef&>(*speed).SetValue(wanted);
        machine->Update(1.0f / 60.0f);
        std::printf("%.0f m/s: %s\n", wanted, machine->GetCurrentState()->GetDef()->GetName());
    }
    delete (machine->Uninit(), machine->Destroy(), machine);
}
