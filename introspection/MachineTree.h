// VELL: data-driven hierarchical state machines.
// introspection/MachineTree.h: the tree of tables that mirrors a machine.
#pragma once

#include <tessel/Tessel.h>
#include <vell/Events.h>

#include "introspection/ContextBranch.h"

#include <string>

namespace vell
{

/// The tree under a machine's root table. Tables are looked up at every step, since a tool may have
/// put others in their place; what is not there is skipped. `ContextBranch` takes over a step that
/// nobody can hear of.
class MachineTree
{
public:
    using Stack = ContextBranch::Stack;

    /// `rootTable` may be null: there is then no tree, and nothing happens. `shortcut` is the
    /// machine's.
    MachineTree(Tessel::KVTable rootTable, ContextBranch& shortcut)
        : root(rootTable), branch(shortcut)
    {
    }

    /// Writes the file that the machine came from, unless the name is empty.
    void WriteFileName(const std::string& name);
    /// Creates "contextInfo" with its arrays and with its numbers at 0.
    void CreateContext();
    /// Attaches the table of the parameters or of the nodes. Returns non-zero on success.
    int AttachParameters(Tessel::KVTable table);
    int AttachNodes(Tessel::KVTable table);

    /// Gives the array of a stack, or null.
    Tessel::KVTable GetStack(Stack stack) const;
    /// Appends an id to the array of a stack. Returns non-zero when it did.
    int Push(Stack stack, unsigned int id)
    {
        return branch.Push(root, stack, id) ? 1 : PushByKey(stack, id);
    }
    /// Removes the last id of the array of a stack. Returns non-zero when it did.
    int RemoveLast(Stack stack)
    {
        return branch.RemoveLast(root, stack) ? 1 : RemoveLastByKey(stack);
    }

    /// Writes the transition that fired.
    void WriteTransition(unsigned int transitionID)
    {
        if (!branch.WriteTransition(root, transitionID))
        {
            WriteTransitionByKey(transitionID);
        }
    }
    /// Writes the state that was left, or 0, and then the state that was entered. Gives what the
    /// tree says of the change after that; zeros without a tree.
    StateChangeEvent WriteChange(unsigned int previousID, unsigned int nextID)
    {
        StateChangeEvent change;
        if (branch.WriteChange(root, previousID, nextID, &change))
        {
            return change;
        }
        WriteChangeByKey(previousID, nextID);
        return ReadChange();
    }
    /// Gives what the tree says of the last change; zeros without a tree.
    StateChangeEvent ReadChange() const;
    /// Writes zeros over the last change.
    void ClearChange()
    {
        if (!branch.ClearChange(root))
        {
            ClearChangeByKey();
        }
    }
    /// Takes the last change over from the table `context` of a recorded context, which may be
    /// null.
    void RestoreChange(Tessel::KVTable context);

private:
    Tessel::KVTable GetContext() const;
    int PushByKey(Stack stack, unsigned int id);
    int RemoveLastByKey(Stack stack);
    void WriteTransitionByKey(unsigned int transitionID);
    void WriteChangeByKey(unsigned int previousID, unsigned int nextID);
    void ClearChangeByKey();

    Tessel::KVTable root;
    ContextBranch& branch;
};

} // namespace vell
