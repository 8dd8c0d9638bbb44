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
    int Push(Stack stack, unsigned int id);
    /// Removes the last id of the array of a stack. Returns non-zero when it did.
    int RemoveLast(Stack stack);

    /// Writes the transition that fired.
    void WriteTransition(unsigned int transitionID);
    /// Writes the state that was left, or 0, and then the state that was entered.
    void WriteChange(unsigned int previousID, unsigned int nextID);
    /// Gives what the tree says of the last change; zeros without a tree.
    StateChangeEvent ReadChange() const;
    /// Writes zeros over the last change.
    void ClearChange();
    /// Takes the last change over from the table `context` of a recorded context, which may be
    /// null.
    void RestoreChange(Tessel::KVTable context);

private:
    Tessel::KVTable GetContext() const;

    Tessel::KVTable root;
    ContextBranch& branch;
};

} // namespace vell
