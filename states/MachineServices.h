// VELL: data-driven hierarchical state machines.
// states/MachineServices.h: what a state asks of the machine that runs it.
#pragma once

#include <vell/Events.h>

namespace vell
{

class HSM;
class IBaseDef;
class SMState;
class TransitionDef;
struct UpdateResult;

/// The machine as a state sees it. The states are below the machine and include nothing of it;
/// machine/HSMServices.cpp answers these.
struct MachineServices
{
    static IBaseDef* FindDef(HSM& machine, unsigned int id);
    static SMState* PushState(HSM& machine, unsigned int id);
    static SMState* PushState(HSM& machine, SMState* state);
    static bool IsBlipState(HSM& machine);
    static void RevertToPreviousState(HSM& machine);
    static bool HasEventListeners(const HSM& machine);
    static void SendAnimation(HSM& machine, const __PlayAnimEvent__& event);
    /// Writes the transition that fired into the tree that the machine shows, and notes when
    /// `result` gives a host its address.
    static void ReportTransition(HSM& machine, TransitionDef& transition,
                                 const UpdateResult* result);
};

} // namespace vell
