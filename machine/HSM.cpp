// VELL: data-driven hierarchical state machines.
// machine/HSM.cpp: making, starting and unmaking of a machine.
#include <vell/HSM.h>
#include <vell/SMState.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <utility>

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
    : HSM(std::make_unique<Internals>(), path, auxiliary, nullptr, {})
{
}

HSM::HSM(const char* text)
    : HSM(std::make_unique<Internals>(), nullptr, nullptr, text, kDefaultMachineType)
{
}

HSM::HSM(std::unique_ptr<Internals> newInternals, const char* path, const char* auxiliary,
         const char* text, __STATE_MACHINE_TYPES__ type)
    : internals(std::move(newInternals)),
      filePath(path),
      auxiliaryName(auxiliary),
      jsonText(text),
      machineType(type)
{
    // Required: this call reaches no override, since the subclass is not constructed yet. A
    // subclass's RegisterBuilders does not run in the constructors that load a document.
    HSM::Create();
}

HSM* HSM::Internals::CreateSharing(const char* path, const char* auxiliary)
{
    auto sharing = std::make_unique<Internals>();
    sharing->mayShare = true;
    return new HSM(std::move(sharing), path, auxiliary, nullptr, {});
}

HSM* HSM::Internals::CreateSharing(const char* text)
{
    auto sharing = std::make_unique<Internals>();
    sharing->mayShare = true;
    return new HSM(std::move(sharing), nullptr, nullptr, text, kDefaultMachineType);
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
