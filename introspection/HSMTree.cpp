// VELL: data-driven hierarchical state machines.
// introspection/HSMTree.cpp: the tree of tables that mirrors a machine.
#include <vell/HSM.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "foundation/TreeKeys.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <vell/SMState.h>

namespace vell
{

int HSM::CreateKVTable()
{
    int result = 0;
    do
    {
        ERROR_BREAK(!kvTable);
        kvTable = Tessel::CreateTable("HSM");
        ERROR_BREAK(static_cast<bool>(kvTable));
        InitKVTable_Self();
        ERROR_BREAK(InitKVTable_ContextTable());
        // Required: a machine without a parameter table is refused here; its document lacks the
        // member.
        if (parameterTable == nullptr || parameterTable->GetKVTable())
        {
            ERROR_BREAK(InitKVTable_ParameterTable());
        }
        if (nodeDefTable != nullptr && nodeDefTable->kvTable)
        {
            ERROR_BREAK(InitKVTable_NodeDefTable());
        }
        result = 1;
    } while (false);
    return result;
}

int HSM::DestroyKVTable()
{
    if (kvTable)
    {
        Tessel::CloseTable(kvTable);
    }
    return 1;
}

int HSM::InitKVTable_Self()
{
    if (!kvTable)
    {
        return 0;
    }
    const std::string& fileName = internals->fileName;
    if (!fileName.empty())
    {
        kvTable->SetString(kFileNameKey, fileName.c_str(), 1);
    }
    return 1;
}

int HSM::InitKVTable_ContextTable()
{
    if (!kvTable)
    {
        return 1;
    }
    if (Tessel::KVTable context = kvTable->AddTable(kContextKey, 1))
    {
        context->AddTable(kMainStackKey, 1);
        context->AddTable(kBlipStackKey, 1);
        context->SetUInt(kNextStateKey, 0, 1);
        context->SetUInt(kPreviousStateKey, 0, 1);
        context->SetUInt(kTransitionKey, 0, 1);
    }
    return 1;
}

int HSM::InitKVTable_ParameterTable()
{
    if (!kvTable || parameterTable == nullptr)
    {
        return 0;
    }
    return kvTable->AttachTable(kParametersKey, parameterTable->GetKVTable(), 1);
}

int HSM::InitKVTable_NodeDefTable()
{
    if (!kvTable || nodeDefTable == nullptr)
    {
        return 0;
    }
    return kvTable->AttachTable(kNodesKey, nodeDefTable->kvTable, 1);
}

/// Gives the table "contextInfo" that the tree has now, or null. A tool may have put another one in
/// its place, so it is looked up each time.
Tessel::KVTable HSM::GetContextTable() const
{
    return kvTable ? kvTable->GetTable(kContextKey) : Tessel::KVTable();
}

/// Gives the array that mirrors `stack`, or null. Only the machine's own two stacks have one.
Tessel::KVTable HSM::GetStackTable(const std::vector<SMState*>* stack) const
{
    Tessel::KVTable context;
    if (stack == &stateStack || stack == &blipStack)
    {
        context = GetContextTable();
    }
    return context ? context->GetTable(stack == &stateStack ? kMainStackKey : kBlipStackKey)
                   : Tessel::KVTable();
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

int HSM::UpdateKVTable_OnPushState(SMState* state)
{
    if (state == nullptr)
    {
        return 0;
    }
    const unsigned int id = state->GetID();
    Tessel::KVTable stack;
    GetCurrentStackTable(&stack);
    return stack ? stack->PushUInt(id, 1) : 0;
}

int HSM::UpdateKVTable_OnPopState()
{
    return RemoveLastInTree(currentStack);
}

/// Removes the last id of the array that mirrors `stack`.
int HSM::RemoveLastInTree(const std::vector<SMState*>* stack)
{
    Tessel::KVTable array = GetStackTable(stack);
    const unsigned int count = array ? array->GetCount() : 0;
    return count == 0 ? 0 : array->RemoveAt(count - 1, 1);
}

/// Writes what left and what came into the tree.
void HSM::ReportStateChange(SMState* previous, unsigned int nextId)
{
    if (Tessel::KVTable context = GetContextTable())
    {
        context->SetUInt(kPreviousStateKey, previous == nullptr ? 0 : previous->GetID(), 1);
        context->SetUInt(kNextStateKey, nextId, 1);
    }
}

} // namespace vell
