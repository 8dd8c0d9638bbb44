// VELL: data-driven hierarchical state machines.
// introspection/MachineTree.cpp: writing and reading of the tree.
#include "introspection/MachineTree.h"

#include "foundation/TreeKeys.h"

namespace vell
{

void MachineTree::WriteFileName(const std::string& name)
{
    if (root && !name.empty())
    {
        root->SetString(kFileNameKey, name.c_str(), 1);
    }
}

void MachineTree::CreateContext()
{
    if (Tessel::KVTable context = root ? root->AddTable(kContextKey, 1) : Tessel::KVTable())
    {
        context->AddTable(kMainStackKey, 1);
        context->AddTable(kBlipStackKey, 1);
        context->SetUInt(kNextStateKey, 0, 1);
        context->SetUInt(kPreviousStateKey, 0, 1);
        context->SetUInt(kTransitionKey, 0, 1);
    }
}

int MachineTree::AttachParameters(Tessel::KVTable table)
{
    return root ? root->AttachTable(kParametersKey, table, 1) : 0;
}

int MachineTree::AttachNodes(Tessel::KVTable table)
{
    return root ? root->AttachTable(kNodesKey, table, 1) : 0;
}

Tessel::KVTable MachineTree::GetStack(Stack stack) const
{
    const char* key = stack == ContextBranch::MainStack ? kMainStackKey : kBlipStackKey;
    Tessel::KVTable context = GetContext();
    return context ? context->GetTable(key) : Tessel::KVTable();
}

int MachineTree::PushByKey(Stack stack, unsigned int id)
{
    Tessel::KVTable array = GetStack(stack);
    return array ? array->PushUInt(id, 1) : 0;
}

int MachineTree::RemoveLastByKey(Stack stack)
{
    Tessel::KVTable array = GetStack(stack);
    const unsigned int count = array ? array->GetCount() : 0;
    return count == 0 ? 0 : array->RemoveAt(count - 1, 1);
}

void MachineTree::WriteTransitionByKey(unsigned int transitionID)
{
    if (Tessel::KVTable context = GetContext())
    {
        context->SetUInt(kTransitionKey, transitionID, 1);
    }
}

void MachineTree::WriteChangeByKey(unsigned int previousID, unsigned int nextID)
{
    if (Tessel::KVTable context = GetContext())
    {
        context->SetUInt(kPreviousStateKey, previousID, 1);
        context->SetUInt(kNextStateKey, nextID, 1);
    }
}

StateChangeEvent MachineTree::ReadChange() const
{
    StateChangeEvent change{0, 0, 0};
    if (Tessel::KVTable context = GetContext())
    {
        change.nextID = context->GetUInt(kNextStateKey);
        change.previousID = context->GetUInt(kPreviousStateKey);
        change.transitionID = context->GetUInt(kTransitionKey);
    }
    return change;
}

void MachineTree::ClearChangeByKey()
{
    if (Tessel::KVTable context = GetContext())
    {
        context->SetUInt(kNextStateKey, 0, 1);
        context->SetUInt(kPreviousStateKey, 0, 1);
        context->SetUInt(kTransitionKey, 0, 1);
    }
}

void MachineTree::RestoreChange(Tessel::KVTable recorded)
{
    if (Tessel::KVTable context = GetContext())
    {
        for (const char* key : {kNextStateKey, kPreviousStateKey, kTransitionKey})
        {
            // Required: the flag of these three writes is 0, unlike that of all others.
            context->SetUInt(key, recorded ? recorded->GetUInt(key) : 0, 0);
        }
    }
}

Tessel::KVTable MachineTree::GetContext() const
{
    const Tessel::KVTable context = root ? root->GetTable(kContextKey) : Tessel::KVTable();
    branch.Follow(root, context);
    return context;
}

} // namespace vell
