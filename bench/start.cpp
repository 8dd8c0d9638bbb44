// VELL: data-driven hierarchical state machines.
// bench/start.cpp: a program that loads a document and starts its machine.
#include <vell/vell.h>

int main(int argc, char** argv)
{
    vell::IHSM* machine = argc == 2 ? CreateHSM(argv[1], nullptr) : nullptr;
    if (machine == nullptr || !machine->Init())
    {
        return 1;
    }
    machine->Start();
    machine->Uninit();
    machine->Destroy();
    delete machine;
    return 0;
}
