// VELL: data-driven hierarchical state machines.
// include/vell/SubstateState.h: a state with states of its own inside.
#pragma once

#include <vell/SMState.h>

namespace vell
{

class EnterDef;
class ExitDef;
class SubstateDef;

/// A state with states of its own inside. It is on the stack below its active child. Its first
/// update pushes the first child or, if the substate was active before, the child at which it was
/// left. A host reaches it through SMState::GetParent; writes to the fields count from the next
/// tick on.
class VELL_API SubstateState : public SMState
{
public:
    /// The factory. Null with a log line when `alloc` is null or full.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    ~SubstateState() override;
    /// Takes the definition and tests that the enter and exit node exist. Returns 1, or 0 with log
    /// lines.
    int Init(BaseDef* newDef) override;
    /// Pushes the first child or resumes; with an active child, performs the execute actions.
    /// Returns 1, or 0 with log lines.
    int Update(HSM* machine, float dt) override;
    int Enter() override;
    int Exit() override;
    unsigned int ProcessTransitions(HSM* machine, UpdateResult* result) override;

    /// Gives the child before the current one, or the enter node when there is none.
    unsigned int GetEnterID() const;
    /// Gives the exit node.
    unsigned int GetExitID() const;
    /// Finds the enter and exit node. Returns 1, or 0 with log lines.
    int InitEnterExit(BaseDef* newDef);

    SubstateDef* subDef = nullptr;    ///< the definition as its own class
    unsigned int previousChildID = 0; ///< 0 until a child has been recorded
    unsigned int enterStateID = 0;    ///< first child
    unsigned int currentChildID = 0;  ///< 0 when no child is active
    SMState* currentChild = nullptr;  ///< not owned; null when no child is active
    SMState* previousChild = nullptr; ///< not owned; the child to resume
    EnterDef* enterDef = nullptr;     ///< for subclasses; not read again
    ExitDef* exitDef = nullptr;       ///< for subclasses; not read again
};

} // namespace vell
