// VELL: data-driven hierarchical state machines.
// tests/consumer/machine/main.cpp: a host of a machine that was compiled with it.
#include <vell/vell.h>

#include "door_ids.h"

#include <cstdio>
#include <memory>

int main()
{
    const std::unique_ptr<vell::IHSM> machine(vell::CreateHSM(DOOR, nullptr));
    if (machine->Init() == 0)
    {
        return 1;
    }
    machine->Start();
    machine->Update(0.1f);
    machine->Update(0.1f);
    const bool isOpen = machine->GetCurrentState()->GetID() == door::states::Open;
    std::printf("%s\n", isOpen ? "open" : "closed");
    machine->Uninit();
    machine->Destroy();
    return 0;
}
