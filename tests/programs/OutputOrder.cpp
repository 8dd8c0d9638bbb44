// VELL: data-driven hierarchical state machines.
// tests/programs/OutputOrder.cpp: a host whose own output and the library's lines go to one file.
#include <vell/vell.h>

#include <cstdio>
#include <cstring>
#include <iostream>

namespace
{

void OnLogLine(int, const char* text)
{
    std::printf("the callback hears: %s", text);
}

} // namespace

/// `OutputOrder [untied]`: writes by all ways in turn and flushes nothing.
int main(int count, char** arguments)
{
    if (count > 1 && std::strcmp(arguments[1], "untied") == 0)
    {
        std::cerr.tie(nullptr);
    }
    std::cout << "std::cout before\n";
    std::printf("printf before\n");
    vell::IHSM* machine = vell::CreateHSMJson("no document");
    std::cout << "std::cout between\n";
    machine->FindDef("Nobody");
    std::printf("printf between\n");
    std::cerr << "std::cerr itself\n";
    std::printf("printf after\n");
    vell::SetLogCallBack(OnLogLine);
    machine->GetGUID();
    machine->GetGUID();
    machine->Destroy();
    delete machine;
    std::cout << "std::cout at the end\n";
    return 0;
}
