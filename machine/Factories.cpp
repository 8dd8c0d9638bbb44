// VELL: data-driven hierarchical state machines.
// machine/Factories.cpp: the exported functions.
#include <durm/DURMBaseLib.h>
#include <vell/Factories.h>
#include <vell/HSM.h>

#include "machine/HSMInternals.h"

#include <iostream>

namespace vell
{

IHSM* CreateHSM(const char* filePath, const char* auxiliaryName)
{
    // Required: a machine is returned even when the document cannot be read. Its Init then fails.
    return HSM::Internals::CreateSharing(filePath, auxiliaryName);
}

IHSM* CreateHSMJson(const char* jsonText)
{
    return HSM::Internals::CreateSharing(jsonText);
}

void SetLogCallBack(LogCallBack callback)
{
    std::cout << "Callback being setup" << std::endl;
    SetLogCallBackBase(callback);
}

} // namespace vell
