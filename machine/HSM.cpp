// VELL: data-driven hierarchical state machines.
// machine/HSM.cpp: making, starting and unmaking of a machine.
#include <vell/HSM.h>
#include <vell/SMState.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

namespace vell
{
namespace
{

constexpr auto kDefaultMachineType = static_cast<__STATE_MACHINE_TYPES__>(1);

} // namespace

HSM::HSM() : internals(std::make_unique<Internals>()), machineType(kDefaultMachineType)
{
}

HSM::HSM(const char* path, const char* auxiliary)
    : internals(std::make_unique<Internals>()), filePath(path), auxiliaryName(auxiliary)
{
    // Required: this call reaches no override, since the subclass is not constructed yet. A
    // subclass's RegisterBuilders does not run in the constructors that load a document.
    HSM::Create();
}

HSM::HSM(const char* text)
    : internals(std::make_unique<Internals>()), jsonText(text), machineType(kDefaultMachineType)
{
    HSM::Create();
}

HSM::~HSM()
{
    // Required: the registry of states serves the whole process. Deleting any machine empties it
    // for all of them.
    HSM::UnRegisterBuilders();
    // Required: the registry of definitions serves the whole process too, and deleting any machine
    // empties it as well.
    NodeDefTable::ClearBuilders();
    HSM::DestroyKVTable();
}

void HSM::Start()
{
    currentStack = &stateStack;
    if (nodeDefTable != nullptr && globalState == nullptr)
    {
        // Required: without a global node the id is 0, and the line of a failed activation is
        // written.
        globalState = ActivateState(nodeDefTable->globalNodeId, 0.0f);
    }
    // Required: a second Start pushes the start state again, on top of what is there.
    PushState(startStateID);
}

int HSM::Uninit()
{
    internals->idle.revision.Raise();
    UninitStep& step = internals->uninitStep;
    // A step that a host's part threw out of goes on in the next call. After the last one the
    // tables go with the arena, while the pointers stay.
    if (step == UninitStep::None)
    {
        if (parameterTable != nullptr)
        {
            parameterTable->Uninit();
        }
        step = UninitStep::Parameters;
    }
    if (step == UninitStep::Parameters)
    {
        if (nodeDefTable != nullptr)
        {
            nodeDefTable->Uninit();
        }
        step = UninitStep::Nodes;
    }
    // Required: the pointers, states and stacks keep their values, although what they lead to is
    // gone.
    alloc.Release();
    DestroyKVTable();
    return 1;
}

int HSM::Destroy()
{
    // Required: this empties the registry of states for all machines of the process.
    // Required: nothing is freed here. The memory goes with the machine.
    UnRegisterBuilders();
    return 1;
}

IParameterTable* HSM::GetParameterTable()
{
    return parameterTable;
}

Tessel::KVTable HSM::GetKVTable() const
{
    return kvTable;
}

__STATE_MACHINE_TYPES__ HSM::GetHSMType() const
{
    return machineType;
}

int HSM::InitCond(NodeDefTable* table)
{
    ERROR_RETURN(table, 0);
    return 1;
}

} // namespace vell
