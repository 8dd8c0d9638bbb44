// VELL: data-driven hierarchical state machines.
// machine/HSMTree.cpp: the tree of tables that mirrors a machine.
#include <vell/HSM.h>
#include <vell/SMState.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "introspection/MachineTree.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

namespace vell
{

int HSM::CreateKVTable()
{
    // Required: a second call fails here, and the log shows only this line.
    ERROR_RETURN(!kvTable, 0);
    kvTable = Tessel::CreateTable("HSM");
    internals->isTreeClosed = false;
    ERROR_RETURN(static_cast<bool>(kvTable), 0);
    InitKVTable_Self();
    ERROR_RETURN(InitKVTable_ContextTable(), 0);
    // Required: a machine without a parameter table is refused here; its document lacks the
    // member.
    if (parameterTable == nullptr || parameterTable->GetKVTable())
    {
        ERROR_RETURN(InitKVTable_ParameterTable(), 0);
    }
    if (nodeDefTable != nullptr && nodeDefTable->kvTable)
    {
        ERROR_RETURN(InitKVTable_NodeDefTable(), 0);
    }
    return 1;
}

int HSM::DestroyKVTable()
{
    if (kvTable && !internals->isTreeClosed)
    {
        internals->isTreeClosed = true;
        // Required: the machine keeps its handle, which now leads to a closed table.
        Tessel::CloseTable(kvTable);
    }
    return 1;
}

int HSM::InitKVTable_Self()
{
    MachineTree(kvTable).WriteFileName(internals->fileName);
    return kvTable ? 1 : 0;
}

int HSM::InitKVTable_ContextTable()
{
    MachineTree(kvTable).CreateContext();
    return 1;
}

int HSM::InitKVTable_ParameterTable()
{
    return parameterTable == nullptr
               ? 0
               : MachineTree(kvTable).AttachParameters(parameterTable->GetKVTable());
}

int HSM::InitKVTable_NodeDefTable()
{
    return nodeDefTable == nullptr ? 0 : MachineTree(kvTable).AttachNodes(nodeDefTable->kvTable);
}

int HSM::GetCurrentStackTable(Tessel::KVTable* out)
{
    if (out == nullptr || (currentStack != &stateStack && currentStack != &blipStack))
    {
        return 0;
    }
    *out = GetStackTable(currentStack);
    return 1;
}

/// Gives the array that mirrors `stack`, or null. Only the machine's own two stacks have one.
Tessel::KVTable HSM::GetStackTable(const std::vector<SMState*>* stack) const
{
    if (stack != &stateStack && stack != &blipStack)
    {
        return Tessel::KVTable();
    }
    const bool isMain = stack == &stateStack;
    return MachineTree(kvTable).GetStack(isMain ? MachineTree::Stack::Main
                                                : MachineTree::Stack::Blip);
}

int HSM::UpdateKVTable_OnPushState(SMState* state)
{
    if (state == nullptr)
    {
        return 0;
    }
    const unsigned int id = state->GetID();
    Tessel::KVTable array = GetStackTable(currentStack);
    return array ? array->PushUInt(id, 1) : 0;
}

int HSM::UpdateKVTable_OnPopState()
{
    return MachineTree::RemoveLast(GetStackTable(currentStack));
}

/// Writes what left and what came into the tree.
void HSM::ReportStateChange(SMState* previous, unsigned int nextId)
{
    MachineTree(kvTable).WriteChange(previous == nullptr ? 0 : previous->GetID(), nextId);
}

} // namespace vell
