// VELL: data-driven hierarchical state machines.
// machine/HSMInternals.h: what a machine keeps for itself.
#pragma once

#include <vell/HSM.h>

#include "document/SharedDocument.h"
#include "foundation/SlabMemory.h"
#include "idle/IdleCache.h"
#include "introspection/MachineTree.h"

#include <optional>
#include <string>
#include <vector>

namespace vell
{

/// What HSM::Uninit has done. A host's part may throw out of the next step.
enum class UninitStep
{
    None,
    Parameters,
    Nodes
};

struct HSM::Internals : InSlab
{
    static bool IsTickRecord(const HSM& machine, const UpdateResult* result)
    {
        return machine.internals->idle.IsTickRecord(result);
    }
    static bool HasEventListeners(const HSM& machine)
    {
        return !machine.eventListeners.empty();
    }

    static ContextBranch& GetContext(HSM& machine)
    {
        return machine.internals->context;
    }
    /// Gives the array that mirrors `stack`. Only the machine's own two stacks have one.
    static std::optional<MachineTree::Stack> FindArray(const HSM& machine,
                                                       const std::vector<SMState*>* stack)
    {
        if (stack == &machine.stateStack)
        {
            return ContextBranch::MainStack;
        }
        if (stack == &machine.blipStack)
        {
            return ContextBranch::BlipStack;
        }
        return std::nullopt;
    }
    /// Removes the last id of the array that mirrors `stack`. Returns non-zero when it did.
    static int RemoveLast(HSM& machine, const std::vector<SMState*>* stack)
    {
        const auto array = FindArray(machine, stack);
        return array ? MachineTree(machine.kvTable, machine.internals->context).RemoveLast(*array)
                     : 0;
    }

    /// Creates a machine as the constructor with these parameters does. Its class is HSM itself, so
    /// no host reaches its document, and it shares that with other machines of the same text.
    static HSM* CreateSharing(const char* filePath, const char* auxiliaryName);
    static HSM* CreateSharing(const char* jsonText);
    /// Parses a document's text, into `own` unless it may be shared. Only the first one may: its
    /// texts may be in use to the machine's end.
    void Parse(const char* text, GenericDocument& own);
    /// Gives the root of the machine's document.
    const GenericValue& RootOf(const GenericDocument& own) const
    {
        const GenericValue* shared = isSharing ? sharedDocument.Root() : nullptr;
        return shared == nullptr ? own : *shared;
    }

    // What a tick of `machine` reads, in two steps; see UpdateMachines.
    static void PrefetchTick(const HSM& machine);
    static void PrefetchStates(const HSM& machine);

    IdleCache idle;
    ContextBranch context;         ///< of the tree
    std::string fileName;          ///< copy of filePath's text, taken by Create, for the tree
    SharedDocument sharedDocument; ///< of the first Create; the host may keep its texts
    bool mayShare = false;         ///< the next document
    bool isSharing = false;        ///< `sharedDocument` is in the place of the machine's own
    UninitStep uninitStep = {};    ///< since the last Create
    bool isTreeClosed = false;     ///< `kvTable` is closed; it keeps its handle
};

} // namespace vell
