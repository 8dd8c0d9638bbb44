// VELL: data-driven hierarchical state machines.
// machine/HSMInternals.h: what a machine keeps for itself.
#pragma once

#include <vell/HSM.h>

#include "idle/IdleCache.h"

#include <string>

namespace vell
{

/// What HSM::Uninit has done. A host's part may throw out of the next step.
enum class UninitStep
{
    None,
    Parameters,
    Nodes
};

struct HSM::Internals
{
    static bool IsTickRecord(const HSM& machine, const UpdateResult* result)
    {
        return machine.internals->idle.IsTickRecord(result);
    }
    static bool HasEventListeners(const HSM& machine)
    {
        return !machine.eventListeners.empty();
    }

    // What a tick of `machine` reads, in two steps; see UpdateMachines.
    static void PrefetchTick(const HSM& machine);
    static void PrefetchStates(const HSM& machine);

    IdleCache idle;
    std::string fileName;       ///< copy of filePath's text, taken by Create, for the tree
    UninitStep uninitStep = {}; ///< since the last Create
    bool isTreeClosed = false;  ///< `kvTable` is closed; it keeps its handle
};

} // namespace vell
