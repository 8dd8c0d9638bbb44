// VELL: data-driven hierarchical state machines.
// states/EnterState.h: the run-time state of an enter node.
#pragma once

#include <vell/SMState.h>

namespace vell
{

class EnterDef;

/// A plain state. It is on a stack only when a transition leads to the enter node: the start of a
/// substate does not pass through it.
class EnterState : public SMState
{
public:
    /// The factory. Null with a log line when `alloc` is null or has no space.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    ~EnterState() override;
    int Init(BaseDef* newDef) override;
    int Enter() override;
    int Exit() override;

    EnterDef* typedDef = nullptr; ///< the definition as its own class; null until Init
    unsigned int unread[3] = {};  ///< nobody reads them
};

} // namespace vell
