// VELL: data-driven hierarchical state machines.
// include/vell/SubstateState.h: a state that holds a nested level.
#pragma once

#include <vell/SMState.h>

namespace vell
{

class EnterDef;
class ExitDef;
class SubstateDef;

/// Stands on the stack below the active state of its nested level. Its first update pushes that
/// level's first state, or, when the level was active before, the state at which it was left. A
/// host reaches it by SMState::GetParent; what it writes into the fields counts from the next tick
/// on.
class VELL_API SubstateState : public SMState
{
public:
    /// The factory. Null with a log line when `alloc` is null or has no room.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    ~SubstateState() override;
    /// Takes the definition and tests that the level's enter and exit node exist. Returns 1, or 0
    /// with log lines.
    int Init(BaseDef* newDef) override;
    /// Starts or resumes the nested level; with an active child runs the execute actions. Returns
    /// 1, or 0 with log lines.
    int Update(HSM* machine, float dt) override;
    int Enter() override;
    int Exit() override;
    unsigned int ProcessTransitions(HSM* machine, UpdateResult* result) override;

    /// Gives the child before the current one, or the enter node when there is none.
    unsigned int GetEnterID() const;
    /// Gives the exit node.
    unsigned int GetExitID() const;
    /// Finds the level's enter and exit node. Returns 1, or 0 with log lines.
    int InitEnterExit(BaseDef* newDef);

    SubstateDef* subDef = nullptr;    ///< the definition as its own class
    unsigned int previousChildID = 0; ///< 0 until a child was recorded
    unsigned int enterStateID = 0;    ///< first state of the level
    unsigned int currentChildID = 0;  ///< 0 when no child is active
    SMState* currentChild = nullptr;  ///< not owned; null when no child is active
    SMState* previousChild = nullptr; ///< not owned; where a resume goes on
    EnterDef* enterDef = nullptr;     ///< a subclass's; not read again
    ExitDef* exitDef = nullptr;       ///< a subclass's; not read again
};

} // namespace vell
