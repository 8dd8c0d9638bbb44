// VELL: data-driven hierarchical state machines.
// introspection/HSMTree.cpp: the tree of tables that mirrors a machine.
#include <vell/HSM.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "introspection/TreeKeys.h"
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
    if (kvTable && !fileName.empty())
    {
        kvTable->SetString("filename", fileName.c_str(), 1);
    }
    return 1;
}

int HSM::InitKVTable_ContextTable()
{
    if (!kvTable)
    {
        return 1;
    }
    mirror = MirrorTables();
    mirror.root = kvTable;
    if (Tessel::KVTable context = kvTable->AddTable(kContextKey, 1))
    {
        mirror.context = context;
        mirror.mainStack = context->AddTable(kMainStackKey, 1);
        mirror.blipStack = context->AddTable(kBlipStackKey, 1);
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

/// Forgets the kept handles when the machine has another tree, or none. Returns whether there is a
/// tree.
bool HSM::IsMirrorCurrent()
{
    if (mirror.root != kvTable)
    {
        mirror = MirrorTables();
        mirror.root = kvTable;
        FindContextTable();
    }
    return static_cast<bool>(kvTable);
}

Tessel::KVTable HSM::FindContextTable()
{
    mirror.context = kvTable ? kvTable->GetTable(kContextKey) : Tessel::KVTable();
    return mirror.context;
}

void HSM::WriteContext(const char* key, unsigned int value, int flag)
{
    if (!IsMirrorCurrent() || (mirror.context && mirror.context->SetUInt(key, value, flag)))
    {
        return;
    }
    if (Tessel::KVTable context = FindContextTable())
    {
        context->SetUInt(key, value, flag);
    }
}

int HSM::GetCurrentStackTable(Tessel::KVTable* out)
{
    const bool isMain = currentStack == &stateStack;
    if (out == nullptr || (!isMain && currentStack != &blipStack))
    {
        return 0;
    }
    Tessel::KVTable context = FindContextTable();
    *out = context ? context->GetTable(isMain ? kMainStackKey : kBlipStackKey) : Tessel::KVTable();
    return 1;
}

/// Looks the table of the active stack up and keeps its handle.
Tessel::KVTable HSM::FindStackTable()
{
    Tessel::KVTable& kept = currentStack == &blipStack ? mirror.blipStack : mirror.mainStack;
    kept = Tessel::KVTable();
    GetCurrentStackTable(&kept);
    return kept;
}

int HSM::UpdateKVTable_OnPushState(SMState* state)
{
    if (state == nullptr)
    {
        return 0;
    }
    const unsigned int id = state->GetID();
    const bool isOwnStack = currentStack == &stateStack || currentStack == &blipStack;
    if (!isOwnStack || !IsMirrorCurrent())
    {
        return 0;
    }
    Tessel::KVTable stack = currentStack == &blipStack ? mirror.blipStack : mirror.mainStack;
    if (stack)
    {
        if (const int result = stack->PushUInt(id, 1))
        {
            return result;
        }
    }
    stack = FindStackTable();
    return stack ? stack->PushUInt(id, 1) : 0;
}

int HSM::UpdateKVTable_OnPopState()
{
    const bool isOwnStack = currentStack == &stateStack || currentStack == &blipStack;
    if (!isOwnStack || !IsMirrorCurrent())
    {
        return 0;
    }
    Tessel::KVTable stack = currentStack == &blipStack ? mirror.blipStack : mirror.mainStack;
    unsigned int count = stack ? stack->GetCount() : 0;
    if (count == 0)
    {
        stack = FindStackTable();
        count = stack ? stack->GetCount() : 0;
    }
    return count == 0 ? 0 : stack->RemoveAt(count - 1, 1);
}

} // namespace vell
