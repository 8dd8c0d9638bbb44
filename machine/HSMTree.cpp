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
    MachineTree(kvTable, internals->context).WriteFileName(internals->fileName);
    return kvTable ? 1 : 0;
}

int HSM::InitKVTable_ContextTable()
{
    MachineTree(kvTable, internals->context).CreateContext();
    return 1;
}

int HSM::InitKVTable_ParameterTable()
{
    return parameterTable == nullptr ? 0
                                     : MachineTree(kvTable, internals->context)
                                           .AttachParameters(parameterTable->GetKVTable());
}

int HSM::InitKVTable_NodeDefTable()
{
    return nodeDefTable == nullptr
               ? 0
               : MachineTree(kvTable, internals->context).AttachNodes(nodeDefTable->kvTable);
}

int HSM::GetCurrentStackTable(Tessel::KVTable* out)
{
    const auto array = Internals::FindArray(*this, currentStack);
    if (out == nullptr || !array)
    {
        return 0;
    }
    *out = MachineTree(kvTable, internals->context).GetStack(*array);
    return 1;
}

int HSM::UpdateKVTable_OnPushState(SMState* state)
{
    if (state == nullptr)
    {
        return 0;
    }
    const unsigned int id = state->GetID();
    const auto array = Internals::FindArray(*this, currentStack);
    return array ? MachineTree(kvTable, internals->context).Push(*array, id) : 0;
}

int HSM::UpdateKVTable_OnPopState()
{
    return Internals::RemoveLast(*this, currentStack);
}

/// Writes what left and what came into the tree. Gives what the tree says then.
StateChangeEvent HSM::ReportStateChange(SMState* previous, unsigned int nextId)
{
    // Required: the tree is read also when nobody listens.
    return MachineTree(kvTable, internals->context)
        .WriteChange(previous == nullptr ? 0 : previous->GetID(), nextId);
}

} // namespace vell
